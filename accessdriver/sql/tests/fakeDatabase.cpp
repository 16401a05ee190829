#include "accessdriver/sql/tests/fakeDatabase.h"

#include "accessdriver/sql/values/caseFold.h"

namespace sqltest {

namespace {

using jet::ColumnType;

class FakeCursor : public jet::Cursor {
  public:
    FakeCursor(FakeDatabase& database, FakeDatabase::Rows::const_iterator at)
        : database_(database), rows_(database.rows()), at_(at) {}

    bool next() override {
        if (started_) ++at_;
        started_ = true;
        ++database_.steps;
        if (database_.refuseStepAfter >= 0 && database_.refuseStepAfter-- == 0) {
            throw jet::Error(jet::Fault::io, "The disk does not answer.");
        }
        return at_ != rows_.end();
    }
    jet::RowId rowId() const override { return at_->first; }
    jet::Value value(std::size_t column) const override { return at_->second.at(column); }

  private:
    FakeDatabase& database_;
    const FakeDatabase::Rows& rows_;
    FakeDatabase::Rows::const_iterator at_;
    bool started_ = false;
};

constexpr std::size_t tagColumn = 9;

}  // namespace

FakeDatabase::FakeDatabase() {
    table_.name = "animals";
    table_.columns = {{"id", ColumnType::longInteger, 4, true, true},
                      {"name", ColumnType::text, 10},
                      {"oldId", ColumnType::text, 50},
                      {"dob", ColumnType::dateTime, 8},
                      {"weight", ColumnType::doubleFloat, 8},
                      {"litter", ColumnType::byte, 1},
                      {"price", ColumnType::currency, 8},
                      {"deceased", ColumnType::boolean, 1},
                      {"notes", ColumnType::memo, 0},
                      {"tag", ColumnType::text, 20}};
}

const jet::TableInfo& FakeDatabase::table(std::string_view name) {
    if (!sql::sameName(name, table_.name)) throw jet::Error(jet::Fault::noSuchTable, "No such table.");
    return table_;
}

jet::RowId FakeDatabase::nextId() {
    ++rowsMade_;
    return {rowsMade_ / 50 + 1, static_cast<std::uint8_t>(rowsMade_ % 50)};
}

void FakeDatabase::checkUnique(const Row& row, jet::RowId except) const {
    if (std::holds_alternative<std::monostate>(row[tagColumn])) return;
    for (const auto& [id, other] : rows_) {
        if (id != except && other[tagColumn] == row[tagColumn]) {
            throw jet::Error(jet::Fault::duplicateKey, "Another row has this tag.");
        }
    }
}

jet::RowId FakeDatabase::insert(const jet::TableInfo&, std::span<const jet::Assignment> values) {
    Row row(table_.columns.size());
    row[0] = static_cast<std::int32_t>(rowsMade_ + 1);
    row[7] = false;
    for (const auto& v : values) row[v.column] = v.value;
    checkUnique(row, {});
    const jet::RowId id = nextId();
    rows_[id] = std::move(row);
    return id;
}

void FakeDatabase::update(const jet::TableInfo&, jet::RowId id, std::span<const jet::Assignment> values) {
    if (refuseUpdateAfter == 0) {
        refuseUpdateAfter = -1;
        throw jet::Error(jet::Fault::io, "The disk is full.");
    }
    if (refuseUpdateAfter > 0) --refuseUpdateAfter;
    Row row = rows_.at(id);
    for (const auto& v : values) row[v.column] = v.value;
    checkUnique(row, id);
    rows_[id] = std::move(row);
    ++updates;
}

void FakeDatabase::remove(const jet::TableInfo&, std::span<const jet::RowId> rows) {
    for (const jet::RowId row : rows) rows_.erase(row);
}

std::unique_ptr<jet::Cursor> FakeDatabase::scan(const jet::TableInfo&) {
    ++scans;
    return std::make_unique<FakeCursor>(*this, rows_.begin());
}

std::unique_ptr<jet::Cursor> FakeDatabase::fetch(const jet::TableInfo&, jet::RowId row) {
    ++fetches;
    const auto at = rows_.find(row);
    return at == rows_.end() ? nullptr : std::make_unique<FakeCursor>(*this, at);
}

void FakeDatabase::commit() {
    if (refuseCommit) throw jet::Error(jet::Fault::io, "The disk is full.");
    committed_ = rows_;
    ++commits;
}

void FakeDatabase::rollback() {
    rows_ = committed_;
    ++foreignChanges_;
}

void FakeDatabase::insertBehindTheBack(const std::string& name, const std::string& oldId) {
    Row row(table_.columns.size());
    row[1] = name;
    row[2] = oldId;
    rows_[nextId()] = row;
    committed_ = rows_;
    ++foreignChanges_;
}

}  // namespace sqltest
