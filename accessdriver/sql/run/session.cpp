#include "accessdriver/sql/run/session.h"

#include <algorithm>
#include <new>
#include <utility>

#include "accessdriver/sql/run/selection.h"
#include "accessdriver/sql/run/sum.h"
#include "accessdriver/sql/values/convert.h"
#include "accessdriver/sql/values/error.h"

namespace sql {

namespace {

std::vector<jet::Assignment> assignments(const Plan& plan, const TermValues& values) {
    std::vector<jet::Assignment> out;
    out.reserve(plan.targets.size());
    for (const Plan::Target& target : plan.targets) {
        if (!target.sum.empty()) continue;
        out.push_back(
            {target.column, coerce(values(target.term), plan.table->columns[target.column], values.dateOrder())});
    }
    return out;
}

bool hasValues(const jet::Cursor& row, std::span<const jet::Assignment> values) {
    return std::all_of(values.begin(), values.end(), [&](const auto& v) { return row.value(v.column) == v.value; });
}

}  // namespace

Outcome Session::run(const Plan& plan, std::span<const Literal> parameters) {
    if (parameters.size() != plan.parameters.size()) {
        throw Error("07002", "The statement has " + std::to_string(plan.parameters.size()) + " parameters, and " +
                                 std::to_string(parameters.size()) + " are bound.");
    }
    if (plan.kind != Statement::Kind::insert) readIdentity();
    const TermValues values(parameters, order_, identity_);
    switch (plan.kind) {
        case Statement::Kind::insert:
            return {nullptr, insert(plan, values)};
        case Statement::Kind::update:
            return {nullptr, update(plan, values)};
        case Statement::Kind::remove:
            return {nullptr, remove(plan, values)};
        case Statement::Kind::select:
            break;
    }
    return {select(plan, values)};
}

const TableRules& Session::rules(const jet::TableInfo& table) {
    return rules_.try_emplace(&table, table).first->second;
}

// --- finding rows

RowIterator Session::matchingRows(const Plan& plan, const TermValues& values) {
    if (!plan.where) return {*database_, *plan.table, std::nullopt, std::nullopt};
    Filter filter(*plan.where, *plan.table, values);
    auto rows = candidates(plan, filter);
    if (rows) std::sort(rows->begin(), rows->end());
    return {*database_, *plan.table, std::move(filter), std::move(rows)};
}

// Rows among which all are that the filter lets through; nothing where the table has to be scanned.
std::optional<std::vector<jet::RowId>> Session::candidates(const Plan& plan, const Filter& filter) {
    const jet::TableInfo& table = *plan.table;
    const auto ranges = filter.keyRanges();
    for (const KeyRange& range : ranges) {
        if (auto rows = fromIndex(table, range)) return rows;
    }
    const auto end = std::find_if(ranges.begin(), ranges.end(), [](const auto& range) { return !range.equal; });
    if (end == ranges.begin() || isFirstSearch(plan, ranges.front().column)) return std::nullopt;
    // The equality that the fewest rows may meet. Columns behind one that is rare enough are not looked at, so that no
    // hash index is built over them.
    constexpr std::size_t few = 16;
    auto rarest = ranges.begin();
    for (std::size_t limit = few; end - ranges.begin() > 1; limit *= 4) {
        rarest = std::find_if(ranges.begin(), end, [&](const KeyRange& range) {
            return hashIndexes_.count(table, range.column, range.key, limit) < limit;
        });
        if (rarest != end) break;
    }
    return hashIndexes_.candidates(table, rarest->column, rarest->key);
}

// A single search is served best by a table scan, which gives its first row at once. A hash index pays from the second
// search.
bool Session::isFirstSearch(const Plan& plan, std::size_t column) {
    return plan.streams() && !hashIndexes_.has(*plan.table, column) && scanned_.insert({plan.table, column}).second;
}

// An index of the file needs no scan, but a hash index is faster: it is built for a column that is searched often.
std::optional<std::vector<jet::RowId>> Session::fromIndex(const jet::TableInfo& table, const KeyRange& range) {
    constexpr int often = 16;
    constexpr std::size_t mostOfOneKey = 1000;
    constexpr std::size_t mostInRange = 20000;
    const jet::ColumnInfo& column = table.columns[range.column];
    const bool indexed = std::any_of(table.indexes.begin(), table.indexes.end(),
                                     [&](const auto& index) { return index.parts.front().column == range.column; });
    if (!indexed) return std::nullopt;
    if (range.equal) {
        if (range.key.empty()) return std::vector<jet::RowId>();
        if (hashIndexes_.has(table, range.column) || ++indexSearches_[{&table, range.column}] > often)
            return std::nullopt;
    } else if (column.type == jet::ColumnType::boolean) {
        return std::nullopt;  // a bound need not be a value of the column: 0.5 lies between No and none
    }
    try {
        // An index sorts dates as numbers, which need not be exact to the second, nor rise within a day before 1900.
        constexpr double days = 2;
        const auto bound = [&](const std::optional<Literal>& literal, double further) {
            jet::Value value = literal ? coerce(*literal, column, order_) : jet::Value{};
            if (auto* date = std::get_if<jet::DateTime>(&value)) date->days += further;
            return value;
        };
        return database_->rowsBetween(table, range.column, bound(range.low, -days), bound(range.high, days),
                                      range.equal ? mostOfOneKey : mostInRange);
    } catch (const Error&) {
        return std::nullopt;  // a value that the column could not hold
    }
}

// --- open result sets

// A scan over a herd with an update for each row, of a column that the scan does not read, copies nothing.
void Session::copyStreamsOver(const Plan& change) {
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

void Session::copyAllStreams() {
    for (const Stream& stream : streams_) {
        try {
            if (const auto rows = stream.rows.lock()) rows->keepRest();
        } catch (...) {
            // Whoever reads on meets the same failure.
        }
    }
    streams_.clear();
}

// --- statements

std::int64_t Session::insert(const Plan& plan, const TermValues& values) {
    const TableRules& rules = this->rules(*plan.table);
    auto row = assignments(plan, values);
    rules.addDefaults(row, values);
    rules.check(row, true, values);
    copyStreamsOver(plan);
    const jet::RowId id = database_->insert(*plan.table, row);
    open_ = true;
    noteInsert(*plan.table, id, row);
    commitIfAutomatic();
    return 1;
}

void Session::noteInsert(const jet::TableInfo& table, jet::RowId row, std::span<const jet::Assignment> values) {
    const auto autoNumber =
        std::find_if(table.columns.begin(), table.columns.end(), [](const auto& column) { return column.autoNumber; });
    if (autoNumber != table.columns.end()) {
        lastInserted_ = Identity{&table, static_cast<std::size_t>(autoNumber - table.columns.begin()), row};
    }
    noteInIndexes([&] { hashIndexes_.noteInsert(table, row, values); });
}

// What was changed is in the file. A hash index that had no memory for it is useless, and is built again when it is
// needed.
template <class Note>
void Session::noteInIndexes(const Note& note) {
    try {
        note();
    } catch (const std::bad_alloc&) {
        hashIndexes_.drop();
    }
}

// Done before anything but another INSERT: until then the row is there, and a herd is inserted without reading back.
void Session::readIdentity() {
    if (!lastInserted_) return;
    const Identity last = *std::exchange(lastInserted_, std::nullopt);
    const auto row = database_->fetch(*last.table, last.row);
    if (row) identity_ = textOf(row->value(last.column), last.table->columns[last.column].type);
}

std::int64_t Session::update(const Plan& plan, const TermValues& values) {
    const bool hasSums =
        std::any_of(plan.targets.begin(), plan.targets.end(), [](const auto& target) { return !target.sum.empty(); });
    if (hasSums) return updateWithSums(plan, values);
    const auto assigned = assignments(plan, values);
    rules(*plan.table).check(assigned, false, values);
    // A row that has the values already is counted and not written: the same update often comes once for each child.
    std::int64_t matched = 0;
    std::vector<jet::RowId> rows;
    RowIterator matching = matchingRows(plan, values);
    while (const jet::Cursor* row = matching.next()) {
        ++matched;
        if (!hasValues(*row, assigned)) rows.push_back(row->rowId());
    }
    if (rows.empty()) return matched;
    copyStreamsOver(plan);
    database_->update(*plan.table, rows, assigned);
    open_ = true;
    noteInIndexes([&] {
        for (const jet::RowId row : rows) hashIndexes_.noteUpdate(*plan.table, row, assigned);
    });
    commitIfAutomatic();
    return matched;
}

std::int64_t Session::updateWithSums(const Plan& plan, const TermValues& values) {
    const auto constant = assignments(plan, values);
    std::vector<jet::RowUpdate> updates;
    RowIterator matching = matchingRows(plan, values);
    while (const jet::Cursor* row = matching.next()) {
        jet::RowUpdate& update = updates.emplace_back(jet::RowUpdate{row->rowId(), constant});
        for (const Plan::Target& target : plan.targets) {
            if (target.sum.empty()) continue;
            const jet::ColumnInfo& column = plan.table->columns[target.column];
            update.values.push_back({target.column, sumOf(target.sum, *row, *plan.table, column, values)});
        }
        rules(*plan.table).check(update.values, false, values);
    }
    if (updates.empty()) return 0;
    copyStreamsOver(plan);
    database_->update(*plan.table, updates);
    open_ = true;
    noteInIndexes([&] {
        for (const jet::RowUpdate& update : updates) hashIndexes_.noteUpdate(*plan.table, update.row, update.values);
    });
    commitIfAutomatic();
    return static_cast<std::int64_t>(updates.size());
}

std::int64_t Session::remove(const Plan& plan, const TermValues& values) {
    std::vector<jet::RowId> rows;
    RowIterator matching = matchingRows(plan, values);
    while (const jet::Cursor* row = matching.next()) rows.push_back(row->rowId());
    if (rows.empty()) return 0;
    copyStreamsOver(plan);
    database_->remove(*plan.table, rows);
    open_ = true;
    hashIndexes_.noteRemovals(*plan.table, rows.size());
    commitIfAutomatic();
    return static_cast<std::int64_t>(rows.size());
}

std::shared_ptr<RowSet> Session::select(const Plan& plan, const TermValues& values) {
    if (plan.table == nullptr) return resultWithoutTable(plan, values);
    auto rows = resultOf(plan, matchingRows(plan, values), values);
    std::erase_if(streams_, [](const Stream& stream) { return stream.rows.expired(); });
    streams_.push_back({rows, plan.table, plan.columnsRead()});
    return rows;
}

Session::~Session() {
    for (const Stream& stream : streams_) {
        if (const auto rows = stream.rows.lock()) rows->dropSource();
    }
}

// --- transactions

Session::Group::~Group() {
    session_.autocommit_ = autocommit_;
    if (finished_ || !autocommit_ || !session_.open_) return;
    try {
        session_.rollback();
    } catch (...) {
        // The file reports its state at its next use.
    }
}

void Session::Group::finish() {
    session_.autocommit_ = autocommit_;
    finished_ = true;
    if (session_.open_) session_.commitIfAutomatic();
}

void Session::commitIfAutomatic() {
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
    copyAllStreams();
    readIdentity();
    database_->rollback();
    open_ = false;
}

}  // namespace sql
