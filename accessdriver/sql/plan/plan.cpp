#include "accessdriver/sql/plan/plan.h"

#include <algorithm>

#include "accessdriver/sql/plan/resolve.h"
#include "accessdriver/sql/values/caseFold.h"
#include "accessdriver/sql/values/error.h"
#include "accessdriver/sql/values/valueKind.h"

namespace sql {

namespace {

using jet::ColumnInfo;
using jet::ColumnType;

const jet::TableInfo& findTable(jet::Database& database, std::string_view name) try {
    return database.table(name);
} catch (const jet::Error& error) {
    if (error.fault() != jet::Fault::noSuchTable) throw;
    // The file's own search knows the letter cases of western alphabets only.
    for (const std::string& known : database.tableNames()) {
        if (sameName(known, name)) return database.table(known);
    }
    throw Error("42S02", "There is no table '" + std::string(name) + "'.");
}

class Planner {
  public:
    Planner(const Statement& statement, const jet::TableInfo& table)
        : statement_(statement), columns_(table, statement.tableAlias) {
        plan_.kind = statement.kind;
        plan_.table = &table;
        plan_.parameters.resize(statement.parameters, unknownColumn());
    }

    Plan plan() {
        switch (statement_.kind) {
            case Statement::Kind::insert:
                planInsert();
                break;
            case Statement::Kind::update:
                for (const Setting& setting : statement_.settings) addTarget(setting.column, setting.term, setting.sum);
                break;
            case Statement::Kind::select:
                planSelect();
                break;
            case Statement::Kind::remove:
                for (const SelectItem& item : statement_.items) columns_.requireTable(item.column.qualifier);
                break;
        }
        if (statement_.where) {
            plan_.where = *statement_.where;
            resolve(*plan_.where, columns_, plan_.parameters);
        }
        return std::move(plan_);
    }

  private:
    void planInsert() {
        std::vector<Name> all;
        if (statement_.columns.empty()) {
            for (const ColumnInfo& column : plan_.table->columns) all.push_back({.text = column.name});
        }
        const std::vector<Name>& names = statement_.columns.empty() ? all : statement_.columns;
        plan_.targets.reserve(names.size());
        for (std::size_t i = 0; i < names.size(); ++i) {
            addTarget(names[i], i < statement_.values.size() ? statement_.values[i] : Term{});
        }
        if (statement_.values.size() == names.size()) return;
        throw Error("21S01", "The statement names " + std::to_string(names.size()) + " columns and gives " +
                                 std::to_string(statement_.values.size()) + " values.");
    }

    void addTarget(const Name& name, const Term& term, std::vector<Summand> sum = {}) {
        const std::size_t column = columns_.find(name);
        if (taken_.size() <= column) taken_.resize(plan_.table->columns.size());
        if (taken_[column]) throw Error("42000", "The column '" + std::string(name.text) + "' is set twice.");
        taken_[column] = true;
        note(term, columns_[column]);
        for (Summand& summand : sum) {
            if (summand.operand.isColumn()) summand.operand.column = columns_.find(*summand.operand.name);
            note(summand.operand.term, columns_[column]);
            if (sum.size() > 1) requireSummand(summand.operand);
        }
        plan_.targets.push_back({column, term, std::move(sum)});
    }

    void requireSummand(const Operand& operand) const {
        if (!operand.isColumn()) return;
        const ColumnInfo& column = columns_[operand.column];
        if (kindOf(column.type) == ValueKind::number || kindOf(column.type) == ValueKind::date) return;
        throw Error("42000", "The column '" + column.name + "' is of a type that can't be added.");
    }

    void note(const Term& term, const ColumnInfo& column) {
        if (term.isParameter()) plan_.parameters[term.parameter] = column;
    }

    // --- what is selected

    void planSelect() {
        plan_.distinct = statement_.distinct;
        plan_.top = statement_.top;
        for (const SelectItem& item : statement_.items) {
            if (item.kind == SelectItem::Kind::everyColumn) {
                columns_.requireTable(item.column.qualifier);
                for (std::size_t at = 0; at < plan_.table->columns.size(); ++at) addItem({.column = at}, {});
            } else {
                const bool hasColumn = item.kind != SelectItem::Kind::value && item.kind != SelectItem::Kind::countAll;
                addItem({item.kind, hasColumn ? columns_.find(item.column) : Operand::noColumn, item.value},
                        item.alias);
            }
        }
        const auto aggregates = [](const Plan::Item& item) { return item.kind >= SelectItem::Kind::count; };
        const auto some = std::count_if(plan_.items.begin(), plan_.items.end(), aggregates);
        if (some > 0 && static_cast<std::size_t>(some) < plan_.items.size()) {
            throw Error("42000", "Without GROUP BY, COUNT, MIN, MAX, SUM and AVG do not go with plain columns.");
        }
        for (const OrderItem& item : statement_.order) plan_.order.push_back({orderColumn(item), item.descending});
    }

    void addItem(const Plan::Item& item, std::string_view alias) {
        ResultColumn column = described(item);
        if (!alias.empty()) column.name = alias;
        // Access calls columns without a name of their own so.
        if (column.name.empty()) column.name = "Expr" + std::to_string(1000 + unnamed_++);
        plan_.columns.push_back(std::move(column));
        plan_.items.push_back(item);
    }

    ResultColumn described(const Plan::Item& item) const;

    std::size_t orderColumn(const OrderItem& item) {
        const auto refuse = [](const std::string& what) { throw Error("42000", "ORDER BY can't use " + what + "."); };
        if (item.number > plan_.items.size()) refuse("the column number " + std::to_string(item.number));
        if (item.number > 0) {
            const std::size_t column = plan_.items[item.number - 1].column;
            if (column == Operand::noColumn) refuse("a column that is none of the table's");
            return column;
        }
        for (std::size_t i = 0; i < plan_.items.size() && item.column.qualifier.empty(); ++i) {
            const bool aliased =
                plan_.items[i].kind == SelectItem::Kind::column && sameName(plan_.columns[i].name, item.column.text);
            if (aliased) return plan_.items[i].column;
        }
        return columns_.find(item.column);
    }

    const Statement& statement_;
    ColumnNames columns_;
    Plan plan_;
    std::vector<bool> taken_;
    int unnamed_ = 0;
};

ResultColumn valueColumn(const Term& value) {
    const std::string_view text = value.literal.text;
    switch (value.kind()) {
        case Literal::Kind::number: {
            const bool whole = text.find_first_of(".eE") == std::string_view::npos && text.size() < 10;
            return {.name = {}, .type = whole ? ColumnType::longInteger : ColumnType::doubleFloat};
        }
        case Literal::Kind::boolean:
            return {.name = {}, .type = ColumnType::boolean};
        case Literal::Kind::date:
            return {.name = {}, .type = ColumnType::dateTime};
        case Literal::Kind::null:
        case Literal::Kind::text:
        case Literal::Kind::bytes:
            break;
    }
    return {.name = {}, .type = text.size() > 255 ? ColumnType::memo : ColumnType::text, .length = 255};
}

ResultColumn Planner::described(const Plan::Item& item) const {
    using Kind = SelectItem::Kind;
    if (item.kind == Kind::value) return valueColumn(item.value);
    if (item.kind == Kind::count || item.kind == Kind::countAll) {
        return {.name = {}, .type = ColumnType::longInteger, .length = 4, .nullable = false};
    }
    const ColumnInfo& column = columns_[item.column];
    ResultColumn out{.name = column.name,
                     .type = column.type,
                     .length = column.length,
                     .nullable = !column.required,
                     .autoNumber = column.autoNumber,
                     .table = plan_.table->name,
                     .base = column.name,
                     .precision = column.precision,
                     .scale = column.scale};
    if (item.kind == Kind::column) return out;
    const bool isSum = item.kind == Kind::sum || item.kind == Kind::average;
    if (isSum ? kindOf(column.type) != ValueKind::number : !isComparable(column.type)) {
        throw Error("42000", "The column '" + column.name + "' is of a type for which this function is not made.");
    }
    if (isSum && column.type != ColumnType::currency) out.type = ColumnType::doubleFloat;
    return {.name = {}, .type = out.type, .length = out.length, .precision = out.precision, .scale = out.scale};
}

Plan planValues(const Statement& statement) {
    Plan plan{.kind = statement.kind};
    for (const SelectItem& item : statement.items) {
        ResultColumn column = valueColumn(item.value);
        column.name = item.alias.empty() ? "Expr" + std::to_string(1000 + plan.items.size()) : std::string(item.alias);
        plan.columns.push_back(std::move(column));
        plan.items.push_back({.kind = item.kind, .value = item.value});
    }
    return plan;
}

void addColumns(const Predicate& predicate, std::vector<std::size_t>& columns) {
    for (const Operand& operand : predicate.operands) columns.push_back(operand.column);
    for (const Predicate& part : predicate.parts) addColumns(part, columns);
}

}  // namespace

std::vector<std::size_t> Plan::columnsRead() const {
    std::vector<std::size_t> read;
    for (const Item& item : items) read.push_back(item.column);
    for (const Order& one : order) read.push_back(one.column);
    if (where) addColumns(*where, read);
    return read;
}

Plan makePlan(const Statement& statement, jet::Database& database) {
    if (!statement.table) return planValues(statement);
    return Planner(statement, findTable(database, statement.table->text)).plan();
}

}  // namespace sql
