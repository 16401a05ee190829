#include "accessdriver/sql/plan.h"

#include <numeric>

#include "accessdriver/sql/error.h"
#include "accessdriver/sql/fold.h"

namespace sql {

namespace {

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
    explicit Columns(const jet::TableInfo& table) : table_(table) {}

    // Lists mostly name the columns in the table's order, so the search starts behind the one found last.
    std::size_t find(Name name) {
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

  private:
    const jet::TableInfo& table_;
    std::size_t next_ = 0;
};

class Planner {
  public:
    Planner(const Statement& statement, const jet::TableInfo& table) : statement_(statement), columns_(table) {
        plan_.kind = statement.kind;
        plan_.table = &table;
        plan_.parameters.resize(statement.parameters);
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
                for (const Name& name : statement_.columns) plan_.columns.push_back(columns_.find(name));
                break;
            case Statement::Kind::selectAll:
                plan_.columns.resize(plan_.table->columns.size());
                std::iota(plan_.columns.begin(), plan_.columns.end(), std::size_t{0});
                break;
            case Statement::Kind::count:
                break;
        }
        for (const Equation& condition : statement_.where) {
            plan_.where.push_back(target(columns_.find(condition.column), condition.term));
        }
        return std::move(plan_);
    }

  private:
    void planInsert() {
        const std::size_t count = statement_.columns.size();
        plan_.targets.reserve(count);
        for (std::size_t i = 0; i < count; ++i) {
            addTarget(statement_.columns[i], i < statement_.values.size() ? statement_.values[i] : Term{});
        }
        if (statement_.values.size() == count) return;
        throw Error("21S01", "The statement names " + std::to_string(count) + " columns and gives " +
                                 std::to_string(statement_.values.size()) + " values.");
    }

    void addTarget(Name name, const Term& term) {
        const std::size_t column = columns_.find(name);
        if (taken_.size() <= column) taken_.resize(plan_.table->columns.size());
        if (taken_[column]) throw Error("42000", "The column '" + std::string(name.text) + "' is set twice.");
        taken_[column] = true;
        plan_.targets.push_back(target(column, term));
    }

    Plan::Target target(std::size_t column, const Term& term) {
        if (term.parameter != Term::noParameter) plan_.parameters[term.parameter] = column;
        return {column, term};
    }

    const Statement& statement_;
    Columns columns_;
    Plan plan_;
    std::vector<bool> taken_;
};

}  // namespace

Plan makePlan(const Statement& statement, jet::Database& database) {
    return Planner(statement, findTable(database, statement.table.text)).plan();
}

std::vector<ResultColumn> resultColumns(const Plan& plan) {
    // Access calls the first column without a name of its own so.
    if (plan.kind == Statement::Kind::count) return {{"Expr1000", jet::ColumnType::longInteger, 4, false}};
    std::vector<ResultColumn> columns;
    for (const std::size_t at : plan.columns) {
        const jet::ColumnInfo& column = plan.table->columns[at];
        columns.push_back({column.name, column.type, column.length, !column.required, column.autoNumber,
                           plan.table->name, column.name, column.precision, column.scale});
    }
    return columns;
}

}  // namespace sql
