#include "accessdriver/jet/checking/check.h"

#include <algorithm>
#include <limits>
#include <set>

#include "accessdriver/jet/checking/checkPages.h"
#include "accessdriver/jet/failure.h"
#include "accessdriver/jet/records/longValue.h"
#include "accessdriver/jet/records/tableDefinitionFormat.h"
#include "accessdriver/jet/storage/usageMap.h"
#include "accessdriver/jet/storage/usageMapRow.h"

namespace jet {

void CheckReport::claim(std::uint32_t page, const std::string& owner) {
    const auto [known, fresh] = owners_.emplace(page, owner);
    if (!fresh && known->second != owner) say(pageName(page) + " belongs to " + known->second + " and to " + owner);
    if (UsageMap::ofFreePages(pages_).contains(page)) say(pageName(page) + " of " + owner + " is marked free");
}

void CheckReport::claimMap(RowPointer map) {
    claim(map.page, "usage maps");
    const PageRef page = pages_.read(map.page);
    const dataPage::Slot row = usageMapRow::find(page, map.row);
    if (page.bytes()[row.start + usageMapRow::kindAt] != usageMapRow::referenceKind) return;
    for (std::size_t i = 0; i < usageMapRow::referenceCount(row); ++i) {
        const std::uint32_t part = usageMapRow::reference(page, row, i, pages_.count());
        if (part != 0) claim(part, "the usage map " + std::to_string(map.row) + " on " + pageName(map.page));
    }
}

std::vector<std::uint32_t> CheckReport::members(RowPointer map) {
    std::vector<std::uint32_t> pages;
    const UsageMap set(pages_, map);
    for (auto page = set.next(0); page; page = set.next(*page + 1)) pages.push_back(*page);
    return pages;
}

namespace {

void checkFreeCounter(CheckReport& report, const PageRef& page) {
    const std::size_t stored = getU16(page.bytes(), dataPage::freeBytesAt);
    if (stored != dataPage::freeBytes(page)) {
        report.say(pageName(page.number()) + " claims " + std::to_string(stored) + " free bytes and has " +
                   std::to_string(dataPage::freeBytes(page)));
    }
}

class TableCheck {
  public:
    TableCheck(CheckReport& report, TableStore& store) : report_(report), store_(store), table_(store.definition()) {}

    void run() {
        claimDefinition();
        claimMaps();
        checkDataPages();
        readRows();
        checkCounters();
        for (const Index& index : table_.indexes) checkIndex(report_, table_, index, rows_);
        checkLongPages();
    }

  private:
    std::string name(const std::string& part) const { return part + " of the table " + table_.name; }

    void claimDefinition() {
        for (std::uint32_t page = table_.page; page != 0;) {
            report_.claim(page, name("the definition"));
            page = getU32(store_.pages().read(page).bytes(), definitionFormat::nextAt);
        }
    }

    void claimMaps() {
        report_.claimMap(table_.owned);
        report_.claimMap(table_.free);
        for (const Column& column : table_.columns) {
            if (!column.longOwned.null()) report_.claimMap(column.longOwned);
            if (!column.longFree.null()) report_.claimMap(column.longFree);
        }
    }

    void checkSubset(RowPointer part, const std::set<std::uint32_t>& whole, const std::string& what) {
        for (const std::uint32_t page : report_.members(part)) {
            if (!whole.contains(page))
                report_.say(pageName(page) + " has room for " + what + " but is not owned by it");
        }
    }

    void checkDataPages() {
        std::set<std::uint32_t> owned;
        for (const std::uint32_t number : report_.members(table_.owned)) {
            owned.insert(number);
            report_.claim(number, name("the rows"));
            const PageRef page = store_.pages().read(number);
            if (!dataPage::belongsTo(page.bytes(), table_.page)) {
                report_.say(pageName(number) + " is no data page " + name(""));
                continue;
            }
            checkFreeCounter(report_, page);
            for (std::size_t row = 0; row < dataPage::slotCount(page); ++row) checkSlot(page, row);
        }
        checkSubset(table_.free, owned, name("the rows"));
        for (const RowId target : pointed_) {
            if (!targets_.contains(target)) report_.say(rowName(target) + " is pointed at but is no moved row");
        }
    }

    void checkSlot(const PageRef& page, std::size_t row) {
        const RowId id{page.number(), static_cast<std::uint8_t>(row)};
        const dataPage::Slot slot = dataPage::slot(page, row);
        if (slot.flags == dataPage::skipFlag) targets_.insert(id);
        if (!slot.pointer()) return;
        if (slot.size < rowPointerSize) return report_.say(rowName(id) + " is too short for a pointer");
        const RowPointer target = getRowPointer(dataPage::bytesOf(page, slot), 0);
        if (!pointed_.insert({target.page, target.row}).second) {
            report_.say(rowName({target.page, target.row}) + " is pointed at twice");
        }
    }

    void readRows() {
        std::vector<Field> fields;
        for (auto at = store_.firstFrom({}); at; at = store_.firstFrom(after(*at))) {
            CheckedRow row{*at, {}};
            if (!store_.read(*at, row.bytes)) continue;
            decodeRow(table_, row.bytes, *at, fields);
            for (std::size_t i = 0; i < fields.size(); ++i) checkField(*at, i, fields[i]);
            rows_.push_back(std::move(row));
        }
    }

    void checkField(RowId row, std::size_t i, const Field& field) {
        const Column& column = table_.columns[i];
        if (!field.present) return;
        if (column.autoNumber) greatest_ = std::max(greatest_, static_cast<std::int32_t>(getU32(field.bytes, 0)));
        if (!column.longValue()) return;
        (void)readLongValue(store_.pages(), field.bytes);
        for (const RowPointer piece : longValuePieces(store_.pages(), field.bytes)) {
            if (!pieces_.insert(piece).second)
                report_.say("a piece of a long value in " + rowName(row) + " is used twice");
            longPages_[i].insert(piece.page);
        }
    }

    void checkCounters() {
        const PageRef definition = store_.pages().read(table_.page);
        const std::size_t count = getU32(definition.bytes(), definitionFormat::rowCountAt);
        if (count != rows_.size()) {
            report_.say("the table " + table_.name + " claims " + std::to_string(count) + " rows and has " +
                        std::to_string(rows_.size()));
        }
        const auto last = static_cast<std::int32_t>(getU32(definition.bytes(), definitionFormat::autoNumberAt));
        if (greatest_ > last && greatest_ != std::numeric_limits<std::int32_t>::min()) {
            report_.say("the table " + table_.name + " would give out a number again");
        }
    }

    void checkLongPages() {
        for (std::size_t i = 0; i < table_.columns.size(); ++i) {
            const Column& column = table_.columns[i];
            if (!column.longValue() || column.longOwned.null()) continue;
            std::set<std::uint32_t> owned;
            for (const std::uint32_t number : report_.members(column.longOwned)) {
                owned.insert(number);
                report_.claim(number, name("the column " + column.name));
                const PageRef page = store_.pages().read(number);
                checkFreeCounter(report_, page);
            }
            if (!column.longFree.null()) checkSubset(column.longFree, owned, name("the column " + column.name));
            for (const std::uint32_t page : longPages_[i]) {
                if (!owned.contains(page))
                    report_.say(pageName(page) + " is not owned by " + name("the column " + column.name));
            }
        }
    }

    CheckReport& report_;
    TableStore& store_;
    const TableDefinition& table_;
    std::vector<CheckedRow> rows_;
    std::set<RowId> targets_, pointed_;
    std::set<RowPointer> pieces_;
    std::map<std::size_t, std::set<std::uint32_t>> longPages_;
    std::int32_t greatest_ = std::numeric_limits<std::int32_t>::min();
};

}  // namespace

std::vector<std::string> checkFile(Database& database) {
    CheckReport report(database.pages());
    report.claim(0, "the header");
    report.claimMap({0, 1});
    for (const std::string& name : database.tableNames()) {
        try {
            TableCheck(report, database.store(database.table(name))).run();
        } catch (const Error& error) {
            report.say(error.what());
        }
    }
    return report.findings();
}

}  // namespace jet
