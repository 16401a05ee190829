#include "accessdriver/sql/run/session.h"

#include <algorithm>
#include <new>
#include <utility>

#include "accessdriver/sql/run/selection.h"
#include "accessdriver/sql/values/convert.h"
#include "accessdriver/sql/values/error.h"

namespace sql {

namespace {

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
        case Statement::Kind::remove:
            return {nullptr, remove(plan, parameters)};
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
    keepRowsThatMayChange(plan);
    const jet::RowId row = database_->insert(*plan.table, values);
    open_ = true;
    try {
        hashIndexes_.noteInsert(*plan.table, row, values);
    } catch (const std::bad_alloc&) {
        // The row is in the file; a hash index without it is no use, and is built anew when it is asked for.
        hashIndexes_.drop();
    }
    settle();
    return 1;
}

// --- finding rows

RowIterator Session::matches(const Plan& plan, std::span<const Literal> parameters) {
    if (!plan.where) return {*database_, *plan.table, std::nullopt, std::nullopt};
    Filter filter(*plan.where, *plan.table, parameters, order_);
    auto rows = candidates(plan, filter);
    if (rows) std::sort(rows->begin(), rows->end());
    return {*database_, *plan.table, std::move(filter), std::move(rows)};
}

// Rows among which all are that the filter lets through; nothing where the table has to be read.
std::optional<std::vector<jet::RowId>> Session::candidates(const Plan& plan, const Filter& filter) {
    const jet::TableInfo& table = *plan.table;
    const auto demands = filter.demands();
    for (const Filter::Demand& demand : demands) {
        if (auto rows = fromIndex(table, demand)) return rows;
    }
    const auto end = std::find_if(demands.begin(), demands.end(), [](const auto& demand) { return !demand.equal; });
    if (end == demands.begin() || isFirstSearch(plan, demands.front().column)) return std::nullopt;
    // The demand that the fewest rows may meet. Columns behind one that is rare enough are not looked at, so that no
    // hash index is built over them.
    constexpr std::size_t few = 16;
    auto rarest = demands.begin();
    for (std::size_t limit = few; end - demands.begin() > 1; limit *= 4) {
        rarest = std::find_if(demands.begin(), end, [&](const Filter::Demand& demand) {
            return hashIndexes_.count(table, demand.column, demand.key, limit) < limit;
        });
        if (rarest != end) break;
    }
    return hashIndexes_.candidates(table, rarest->column, rarest->key);
}

// Who searches a column once is served best by a walk, which gives its first row at once; a hash index is for who comes
// again.
bool Session::isFirstSearch(const Plan& plan, std::size_t column) {
    return plan.streams() && !hashIndexes_.has(*plan.table, column) && searched_.insert({plan.table, column}).second;
}

// An index needs no scan, but a hash index is faster: who searches often gets one.
std::optional<std::vector<jet::RowId>> Session::fromIndex(const jet::TableInfo& table, const Filter::Demand& demand) {
    constexpr int often = 16;
    constexpr std::size_t mostOfOneKey = 1000;
    constexpr std::size_t mostInRange = 20000;
    const jet::ColumnInfo& column = table.columns[demand.column];
    const bool indexed = std::any_of(table.indexes.begin(), table.indexes.end(),
                                     [&](const auto& index) { return index.parts.front().column == demand.column; });
    if (!indexed) return std::nullopt;
    if (demand.equal) {
        if (std::holds_alternative<std::monostate>(demand.key)) return std::vector<jet::RowId>();
        if (hashIndexes_.has(table, demand.column) || ++indexSearches_[{&table, demand.column}] > often)
            return std::nullopt;
    }
    try {
        // An index sorts dates as numbers, which need not be exact to the second, nor rise within a day before 1900.
        constexpr double days = 2;
        const auto bound = [&](const std::optional<Literal>& literal, double further) {
            jet::Value value = literal ? fit(*literal, column, order_) : jet::Value{};
            if (auto* date = std::get_if<jet::DateTime>(&value)) date->days += further;
            return value;
        };
        return database_->rowsBetween(table, demand.column, bound(demand.low, -days), bound(demand.high, days),
                                      demand.equal ? mostOfOneKey : mostInRange);
    } catch (const Error&) {
        return std::nullopt;  // a value that the column could not hold
    }
}

// --- changing rows

// A walk over a herd with an update for each row, of a column that the walk does not read, copies nothing.
void Session::keepRowsThatMayChange(const Plan& change) {
    const auto stays = [&](const Stream& stream) {
        if (stream.table != change.table) return true;
        if (change.kind != Statement::Kind::update) return false;
        return std::none_of(change.targets.begin(), change.targets.end(), [&](const Plan::Target& target) {
            return std::find(stream.columns.begin(), stream.columns.end(), target.column) != stream.columns.end();
        });
    };
    const auto changing = std::stable_partition(streams_.begin(), streams_.end(), stays);
    for (auto stream = changing; stream != streams_.end(); ++stream) {
        if (const auto rows = stream->rows.lock()) rows->keepRest();
    }
    streams_.erase(changing, streams_.end());
}

void Session::keepAllRows() {
    for (const Stream& stream : streams_) {
        try {
            if (const auto rows = stream.rows.lock()) rows->keepRest();
        } catch (...) {
            // Whoever reads on meets the same failure.
        }
    }
    streams_.clear();
}

std::int64_t Session::update(const Plan& plan, std::span<const Literal> parameters) {
    const auto values = assignments(plan, parameters);
    // A row that has the values already is counted and not written: the same update often comes once for each child.
    std::int64_t matched = 0;
    std::vector<jet::RowId> changed;
    RowIterator met = matches(plan, parameters);
    while (const jet::Cursor* row = met.next()) {
        ++matched;
        const bool same = std::all_of(values.begin(), values.end(), [&](const jet::Assignment& assignment) {
            return row->value(assignment.column) == assignment.value;
        });
        if (!same) changed.push_back(row->rowId());
    }
    if (changed.empty()) return matched;
    keepRowsThatMayChange(plan);
    database_->update(*plan.table, changed, values);
    open_ = true;
    try {
        for (const jet::RowId row : changed) hashIndexes_.noteUpdate(*plan.table, row, values);
    } catch (...) {
        hashIndexes_.drop();
        if (autocommit_) rollback();
        throw;
    }
    settle();
    return matched;
}

std::int64_t Session::remove(const Plan& plan, std::span<const Literal> parameters) {
    std::vector<jet::RowId> rows;
    RowIterator met = matches(plan, parameters);
    while (const jet::Cursor* row = met.next()) rows.push_back(row->rowId());
    if (rows.empty()) return 0;
    keepRowsThatMayChange(plan);
    database_->remove(*plan.table, rows);
    open_ = true;
    hashIndexes_.noteRemovals(*plan.table, rows.size());
    settle();
    return static_cast<std::int64_t>(rows.size());
}

std::shared_ptr<RowSet> Session::select(const Plan& plan, std::span<const Literal> parameters) {
    if (plan.table == nullptr) return plainAnswer(plan);
    auto rows = answerOf(plan, matches(plan, parameters));
    std::erase_if(streams_, [](const Stream& stream) { return stream.rows.expired(); });
    streams_.push_back({rows, plan.table, plan.columnsRead()});
    return rows;
}

Session::~Session() {
    for (const Stream& stream : streams_) {
        if (const auto rows = stream.rows.lock()) rows->dropSource();
    }
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
    keepAllRows();
    database_->rollback();
    open_ = false;
}

}  // namespace sql
