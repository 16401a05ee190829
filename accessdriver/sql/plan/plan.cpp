#include "accessdriver/sql/plan/plan.h"

#include <algorithm>

#include "accessdriver/sql/values/caseFold.h"
#include "accessdriver/sql/values/error.h"
#include "accessdriver/sql/values/key.h"
#include "accessdriver/sql/values/numbers.h"

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

class Columns {
  public:
    Columns(const jet::TableInfo& table, std::string_view alias) : table_(table), alias_(alias) {}

    const ColumnInfo& operator[](std::size_t at) const { return table_.columns[at]; }

    // Lists mostly name the columns in the table's order, so the search starts behind the one found last.
    std::size_t find(const Name& name) {
        requireTable(name.qualifier);
        const std::size_t count = table_.columns.size();
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t at = (next_ + i) % count;
            if (sameName(table_.columns[at].name, name.text)) {
                next_ = at + 1;
                return at;
            }
        }
        throw Error("42S22", "The table '" + table_.name + "' has no column '" + std::string(name.text) + "'.");
    }

    // A name before a column's is the alias, or the table's own name where there is none.
    void requireTable(std::string_view qualifier) const {
        if (qualifier.empty() || sameName(qualifier, alias_.empty() ? table_.name : alias_)) return;
        throw Error("42S22", "The statement has no table '" + std::string(qualifier) + "'.");
    }

  private:
    const jet::TableInfo& table_;
    std::string_view alias_;
    std::size_t next_ = 0;
};

ColumnInfo unknownColumn() { return {.name = "?", .type = ColumnType::text, .length = 255}; }

// The column that plain values are compared as.
ColumnInfo columnFor(const std::vector<Plan::Operand>& operands) {
    ColumnInfo as = {.name = "?", .type = ColumnType::memo};
    for (const Plan::Operand& operand : operands) {
        const Literal::Kind kind = operand.term.literal.kind;
        if (kind == Literal::Kind::number || kind == Literal::Kind::boolean) as.type = ColumnType::doubleFloat;
        if (kind == Literal::Kind::date) as.type = ColumnType::dateTime;
    }
    return as;
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
                for (const Equation& setting : statement_.settings) addTarget(setting.column, setting.term);
                break;
            case Statement::Kind::select:
                planSelect();
                break;
            case Statement::Kind::remove:
                break;
        }
        if (statement_.where) plan_.where = condition(*statement_.where);
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

    void addTarget(const Name& name, const Term& term) {
        const std::size_t column = columns_.find(name);
        if (taken_.size() <= column) taken_.resize(plan_.table->columns.size());
        if (taken_[column]) throw Error("42000", "The column '" + std::string(name.text) + "' is set twice.");
        taken_[column] = true;
        note(term, columns_[column]);
        plan_.targets.push_back({column, term});
    }

    void note(const Term& term, const ColumnInfo& column) {
        if (term.parameter != Term::noParameter) plan_.parameters[term.parameter] = column;
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
                addItem({item.kind, hasColumn ? columns_.find(item.column) : Plan::noColumn, item.value.literal},
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
            if (column == Plan::noColumn) refuse("a column that is none of the table's");
            return column;
        }
        for (std::size_t i = 0; i < plan_.items.size() && item.column.qualifier.empty(); ++i) {
            const bool aliased =
                plan_.items[i].kind == SelectItem::Kind::column && sameName(plan_.columns[i].name, item.column.text);
            if (aliased) return plan_.items[i].column;
        }
        return columns_.find(item.column);
    }

    // --- conditions

    Plan::Condition condition(const Condition& given) {
        Plan::Condition out{.kind = given.kind};
        for (const Condition& part : given.parts) out.parts.push_back(condition(part));
        for (const Operand& operand : given.operands) {
            out.operands.push_back({operand.column ? columns_.find(*operand.column) : Plan::noColumn, operand.term});
        }
        if (out.operands.empty()) return out;
        out.as = comparedAs(out.operands);
        const bool likened = out.kind == Condition::Kind::like;
        for (const Plan::Operand& operand : out.operands) {
            note(operand.term, likened ? unknownColumn() : out.as);
            if (operand.column == Plan::noColumn || out.kind == Condition::Kind::isNull) continue;
            requireComparable(out.as, columns_[operand.column]);
        }
        return out;
    }

    // The first column; but numbers are compared exactly where one of them is a Currency or Decimal, and as
    // floating-point ones where one of them is that.
    ColumnInfo comparedAs(const std::vector<Plan::Operand>& operands) const {
        const auto rank = [](ColumnType type) {
            return type == ColumnType::single || type == ColumnType::doubleFloat ? 2 : isExact(type) ? 1 : 0;
        };
        const ColumnInfo* as = nullptr;
        for (const Plan::Operand& operand : operands) {
            if (operand.column == Plan::noColumn) continue;
            const ColumnInfo& column = columns_[operand.column];
            if (as == nullptr || rank(column.type) > rank(as->type)) as = &column;
        }
        return as == nullptr ? columnFor(operands) : *as;
    }

    static void requireComparable(const ColumnInfo& left, const ColumnInfo& right) {
        for (const ColumnInfo* column : {&left, &right}) {
            if (isComparable(column->type)) continue;
            throw Error("42000", "The column '" + column->name + "' is of a type that WHERE can't compare.");
        }
        if (kindOf(left.type) == kindOf(right.type)) return;
        throw Error("42000", "The columns '" + left.name + "' and '" + right.name + "' can't be compared.");
    }

    const Statement& statement_;
    Columns columns_;
    Plan plan_;
    std::vector<bool> taken_;
    int unnamed_ = 0;
};

ResultColumn valueColumn(const Literal& value) {
    switch (value.kind) {
        case Literal::Kind::number: {
            const bool whole = value.text.find_first_of(".eE") == std::string_view::npos && value.text.size() < 10;
            return {.name = {}, .type = whole ? ColumnType::longInteger : ColumnType::doubleFloat};
        }
        case Literal::Kind::boolean:
            return {.name = {}, .type = ColumnType::boolean};
        case Literal::Kind::date:
            return {.name = {}, .type = ColumnType::dateTime};
        default:
            return {.name = {}, .type = value.text.size() > 255 ? ColumnType::memo : ColumnType::text, .length = 255};
    }
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
        ResultColumn column = valueColumn(item.value.literal);
        column.name = item.alias.empty() ? "Expr" + std::to_string(1000 + plan.items.size()) : std::string(item.alias);
        plan.columns.push_back(std::move(column));
        plan.items.push_back({.kind = item.kind, .value = item.value.literal});
    }
    return plan;
}

void addColumns(const Plan::Condition& condition, std::vector<std::size_t>& columns) {
    for (const Plan::Operand& operand : condition.operands) columns.push_back(operand.column);
    for (const Plan::Condition& part : condition.parts) addColumns(part, columns);
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
