#include "accessdriver/sql/session.h"

#include <algorithm>

#include "accessdriver/sql/convert.h"
#include "accessdriver/sql/error.h"

namespace sql {

namespace {

// A row that an UPDATE changes, and what it held before.
struct Change {
    jet::RowId row;
    std::vector<jet::Assignment> before;
};

const Literal& resolve(const Term& term, std::span<const Literal> parameters) {
    return term.parameter == Term::noParameter ? term.literal : parameters[term.parameter];
}

}  // namespace

Outcome Session::run(const Plan& plan, std::span<const Literal> parameters) {
    if (parameters.size() != plan.parameters.size()) {
        throw Error("07002", "The statement has " + std::to_string(plan.parameters.size()) + " parameters, and " +
                                 std::to_string(parameters.size()) + " are bound.");
    }
    switch (plan.kind) {
        case Statement::Kind::insert:
            return {nullptr, insert(plan, parameters)};
        case Statement::Kind::update:
            return {nullptr, update(plan, parameters)};
        case Statement::Kind::count:
            return {count(plan, parameters)};
        default:
            return {select(plan, parameters)};
    }
}

std::vector<jet::Assignment> Session::assignments(const Plan& plan, std::span<const Literal> parameters) const {
    std::vector<jet::Assignment> values;
    values.reserve(plan.targets.size());
    for (const Plan::Target& target : plan.targets) {
        const Literal& literal = resolve(target.term, parameters);
        values.push_back({target.column, fit(literal, plan.table->columns[target.column], order_)});
    }
    return values;
}

std::int64_t Session::insert(const Plan& plan, std::span<const Literal> parameters) {
    const auto values = assignments(plan, parameters);
    const jet::RowId row = database_->insert(*plan.table, values);
    open_ = true;
    lookups_.noteInsert(*plan.table, row, values);
    settle();
    return 1;
}

// The condition that the fewest rows may meet. Columns behind one that is rare enough are not looked at, so that no
// lookup is built over them.
const Session::Condition& Session::rarest(const jet::TableInfo& table, const std::vector<Condition>& conditions) {
    if (conditions.size() == 1) return conditions.front();
    constexpr std::size_t few = 16;
    for (std::size_t limit = few;; limit *= 4) {
        for (const Condition& condition : conditions) {
            if (lookups_.count(table, condition.column, condition.key, limit) < limit) return condition;
        }
    }
}

// Calls visit with a cursor on each row that meets the plan's conditions.
template <class Visit>
void Session::eachMatch(const Plan& plan, std::span<const Literal> parameters, const Visit& visit) {
    const jet::TableInfo& table = *plan.table;
    if (plan.where.empty()) {
        const auto cursor = database_->scan(table);
        while (cursor->next()) visit(*cursor);
        return;
    }
    std::vector<Condition> conditions;
    for (const Plan::Target& target : plan.where) {
        const jet::ColumnInfo& column = table.columns[target.column];
        conditions.push_back({target.column, keyFor(resolve(target.term, parameters), column, order_)});
    }
    const auto holds = [&](const jet::Cursor& cursor) {
        return std::all_of(conditions.begin(), conditions.end(), [&](const Condition& condition) {
            return matches(condition.key, keyOf(cursor.value(condition.column), table.columns[condition.column]));
        });
    };
    const Condition& asked = rarest(table, conditions);
    for (const jet::RowId row : lookups_.candidates(table, asked.column, asked.key)) {
        const auto cursor = database_->fetch(table, row);
        if (cursor && holds(*cursor)) visit(*cursor);
    }
}

std::int64_t Session::update(const Plan& plan, std::span<const Literal> parameters) {
    const auto values = assignments(plan, parameters);
    // A row that has the values already is counted and not written: the same update often comes once for each child.
    std::int64_t matched = 0;
    std::vector<Change> changes;
    eachMatch(plan, parameters, [&](const jet::Cursor& cursor) {
        ++matched;
        std::vector<jet::Assignment> before;
        for (const jet::Assignment& v : values) before.push_back({v.column, cursor.value(v.column)});
        const bool same = std::equal(values.begin(), values.end(), before.begin(),
                                     [](const auto& a, const auto& b) { return a.value == b.value; });
        if (!same) changes.push_back({cursor.rowId(), std::move(before)});
    });
    std::size_t done = 0;
    try {
        for (; done < changes.size(); ++done) {
            database_->update(*plan.table, changes[done].row, values);
            open_ = true;
            lookups_.noteUpdate(*plan.table, changes[done].row, values);
        }
    } catch (...) {
        lookups_.drop();
        if (autocommit_) {
            rollback();
        } else {
            changes.resize(done);
            std::for_each(changes.rbegin(), changes.rend(),
                          [&](const Change& change) { database_->update(*plan.table, change.row, change.before); });
        }
        throw;
    }
    if (!changes.empty()) settle();
    return matched;
}

std::shared_ptr<RowSet> Session::select(const Plan& plan, std::span<const Literal> parameters) {
    auto rows = std::make_shared<RowSet>(resultColumns(plan));
    std::vector<jet::Value> row(plan.columns.size());
    eachMatch(plan, parameters, [&](const jet::Cursor& cursor) {
        std::transform(plan.columns.begin(), plan.columns.end(), row.begin(),
                       [&](auto at) { return shown(cursor.value(at), plan.table->columns[at]); });
        rows->add(row);
    });
    return rows;
}

std::shared_ptr<RowSet> Session::count(const Plan& plan, std::span<const Literal> parameters) {
    std::int32_t found = 0;
    eachMatch(plan, parameters, [&](const jet::Cursor&) { ++found; });
    auto rows = std::make_shared<RowSet>(resultColumns(plan));
    rows->add({found});
    return rows;
}

Session::Group::~Group() {
    session_.autocommit_ = autocommit_;
    if (finished_ || !autocommit_ || !session_.open_) return;
    try {
        session_.rollback();
    } catch (...) {
        // The file says so itself at its next use.
    }
}

void Session::Group::finish() {
    session_.autocommit_ = autocommit_;
    finished_ = true;
    if (session_.open_) session_.settle();
}

void Session::settle() {
    if (!autocommit_) return;
    try {
        commit();
    } catch (...) {
        rollback();
        throw;
    }
}

void Session::setAutocommit(bool on) {
    if (on && open_) commit();
    autocommit_ = on;
}

void Session::commit() {
    database_->commit();
    open_ = false;
}

void Session::rollback() {
    database_->rollback();
    open_ = false;
}

}  // namespace sql
