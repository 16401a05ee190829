#include <algorithm>
#include <set>

#include "accessdriver/jet/checking/checkPages.h"
#include "accessdriver/jet/failure.h"
#include "accessdriver/jet/indexes/indexPage.h"
#include "accessdriver/jet/records/tableDefinitionFormat.h"

namespace jet {

namespace {

using namespace indexPage;
using Text = std::vector<std::uint8_t>;

class IndexCheck {
  public:
    IndexCheck(CheckReport& report, const TableDefinition& table, const Index& index)
        : report_(report),
          table_(table),
          index_(index),
          name_("the index " + index.name + " of the table " + table.name) {}

    void run(const std::vector<CheckedRow>& rows) {
        report_.claimMap(index_.map);
        walk(index_.root, 0);
        checkChain();
        checkMap();
        checkKeys(rows);
    }

  private:
    void say(const std::string& what) { report_.say(name_ + ": " + what); }

    // Returns the greatest entry below the page.
    Text walk(std::uint32_t number, std::size_t depth) {
        constexpr std::size_t maxDepth = 24;
        if (depth > maxDepth) failCorrupt(name_ + " is too deep");
        if (!pages_.insert(number).second) failCorrupt(name_ + " reaches " + pageName(number) + " twice");
        report_.claim(number, name_);
        const PageRef page = report_.pages().read(number);
        require(page, table_.page);
        checkCounter(page);
        const std::vector<IndexEntry> entries = decodeEntries(page);
        return isLeaf(page.bytes()) ? walkLeaf(number, entries, depth) : walkNode(number, entries, depth);
    }

    Text walkLeaf(std::uint32_t number, const std::vector<IndexEntry>& entries, std::size_t depth) {
        leaves_.push_back(number);
        if (leaves_.size() == 1) leafDepth_ = depth;
        if (leafDepth_ != depth) say("its leaves are not all on one level");
        if (entries.empty() && depth > 0) say("the leaf on " + pageName(number) + " is empty");
        for (const IndexEntry& entry : entries) texts_.push_back(entry.text);
        return entries.empty() ? Text{} : entries.back().text;
    }

    Text walkNode(std::uint32_t number, const std::vector<IndexEntry>& entries, std::size_t depth) {
        if (entries.empty()) failCorrupt(name_ + " has a node without children on " + pageName(number));
        Text greatest;
        for (const IndexEntry& entry : entries) {
            greatest = walk(entry.child, depth + 1);
            const bool tail = &entry == &entries.back() && entry.text.empty();
            if (!tail && entry.text != greatest) say(pageName(number) + " names a wrong greatest entry");
        }
        return greatest;
    }

    void checkCounter(const PageRef& page) {
        const std::size_t used = EntryTable(page).used();
        if (getU16(page.bytes(), freeBytesAt) != capacity - used)
            say("the counter of " + pageName(page.number()) + " is wrong");
    }

    void checkChain() {
        for (std::size_t i = 0; i < leaves_.size(); ++i) {
            const PageRef page = report_.pages().read(leaves_[i]);
            const std::uint32_t before = i == 0 ? 0 : leaves_[i - 1];
            const std::uint32_t behind = i + 1 < leaves_.size() ? leaves_[i + 1] : 0;
            if (previous(page.bytes()) != before || next(page.bytes()) != behind) {
                say("the chain of leaves is broken at " + pageName(leaves_[i]));
            }
        }
    }

    void checkMap() {
        const std::vector<std::uint32_t> members = report_.members(index_.map);
        const std::set<std::uint32_t> map(members.begin(), members.end());
        if (map != pages_) say("its map does not hold exactly its pages");
    }

    void checkKeys(const std::vector<CheckedRow>& rows) {
        std::vector<Text> expected;
        std::vector<Field> fields;
        IndexKey key;
        std::size_t repeatable = 0;  // entries whose key may be there more than once
        for (const CheckedRow& row : rows) {
            decodeRow(table_, row.bytes, row.id, fields);
            try {
                makeIndexKey(report_.pages(), table_, index_, fields, key);
            } catch (const Error& error) {
                // Another writer knew a key for a character that is unknown here; its entry can't be judged.
                if (error.fault() != Fault::badValue) throw;
                std::erase_if(texts_, [&](const Text& text) { return rowIdOf(text) == row.id; });
                continue;
            }
            if (!entersIndex(index_, key)) continue;
            if (!mustBeUnique(index_, key)) ++repeatable;
            expected.push_back(key.bytes);
            appendRowId(expected.back(), row.id);
        }
        std::sort(expected.begin(), expected.end(),
                  [](const Text& a, const Text& b) { return compareEntries(a, b) < 0; });
        if (expected != texts_) {
            say("it holds " + std::to_string(texts_.size()) + " entries that are not the " +
                std::to_string(expected.size()) + " of the rows in order");
        }
        std::size_t distinct = 0;
        for (std::size_t i = 0; i < expected.size(); ++i) {
            const auto key = keyOf(expected[i]);
            const auto before = keyOf(expected[i > 0 ? i - 1 : 0]);
            if (i == 0 || !std::equal(before.begin(), before.end(), key.begin(), key.end())) ++distinct;
        }
        if (repeatable == 0 && distinct < expected.size()) say("a key is there twice");
        const PageRef definition = report_.pages().read(table_.page);
        if (getU32(definition.bytes(), index_.counterAt) < distinct) say("its counter of keys is too low");
    }

    CheckReport& report_;
    const TableDefinition& table_;
    const Index& index_;
    std::string name_;
    std::set<std::uint32_t> pages_;
    std::vector<std::uint32_t> leaves_;
    std::vector<Text> texts_;
    std::size_t leafDepth_ = 0;
};

}  // namespace

void checkIndex(CheckReport& report, const TableDefinition& table, const Index& index,
                const std::vector<CheckedRow>& rows) {
    IndexCheck(report, table, index).run(rows);
}

}  // namespace jet
