#include "accessdriver/jet/indexes/indexPage.h"

#include <algorithm>

#include "accessdriver/jet/failure.h"

namespace jet {

using namespace indexPage;

namespace indexPage {

void format(PageBytes page, std::uint8_t kind, std::uint32_t owner) {
    page[kindAt] = kind;
    page[liveAt] = live;
    putU16(page, freeBytesAt, capacity);
    putU32(page, ownerAt, owner);
}

void require(const PageRef& page, std::uint32_t owner) {
    const std::uint8_t kind = page.bytes()[kindAt];
    if ((kind != nodeKind && kind != leafKind) || getU32(page.bytes(), ownerAt) != owner) {
        failCorrupt(pageName(page.number()) + " should be a page of an index");
    }
}

}  // namespace indexPage

void appendRowId(std::vector<std::uint8_t>& key, RowId row) {
    appendBig(key, row.page, 3);
    key.push_back(row.slot);
}

RowId rowIdOf(ByteSpan text) {
    const std::size_t at = text.size() - rowIdSize;
    return {getBig(text, at, 3), text[at + 3]};
}

namespace {

int compareBytes(ByteSpan a, ByteSpan b) {
    const std::size_t common = std::min(a.size(), b.size());
    const int order = common == 0 ? 0 : std::memcmp(a.data(), b.data(), common);
    if (order != 0) return order;
    return a.size() < b.size() ? -1 : a.size() > b.size() ? 1 : 0;
}

std::size_t commonPrefix(ByteSpan a, ByteSpan b) {
    const auto [inA, inB] = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
    return static_cast<std::size_t>(inA - a.begin());
}

}  // namespace

int compareEntries(ByteSpan a, ByteSpan b) {
    const int order = compareBytes(keyOf(a), keyOf(b));
    return order != 0 ? order : compareBytes(a.last(rowIdSize), b.last(rowIdSize));
}

EntryTable::EntryTable(const PageRef& page)
    : page_(page.bytes()), prefix_(indexPage::prefix(page_)), suffix_(isLeaf(page_) ? 0 : childSize) {
    const auto fail = [&](const char* what) { failCorrupt("the index page " + std::to_string(page.number()) + what); };
    std::size_t previousEnd = 0;
    // The first entry is stored whole, the others without the prefix.
    const std::size_t least = rowIdSize + suffix_;
    for (std::size_t at = 0; at < maskSize; at += 8) {
        const std::size_t size = std::min<std::size_t>(8, maskSize - at);
        std::uint64_t word = getLittle<std::uint64_t>(page_, maskAt + at, size);
        while (word != 0) {
            const std::size_t end = at * 8 + static_cast<std::size_t>(std::countr_zero(word));
            word &= word - 1;
            if (end > capacity || end < previousEnd + least + (count_ == 0 ? prefix_ : 0)) fail(" has a wrong mask");
            ends_[count_++] = static_cast<std::uint16_t>(end);
            previousEnd = end;
        }
    }
    if (count_ == 0 && prefix_ != 0) fail(" has a prefix without an entry");
}

ByteSpan EntryTable::stored(std::size_t i) const {
    return ByteSpan(page_).subspan(entriesAt + start(i), ends_[i] - start(i) - suffix_);
}

std::uint32_t EntryTable::child(std::size_t i) const {
    return getBig(page_, entriesAt + ends_[i] - childSize, childSize);
}

std::vector<std::uint8_t> EntryTable::text(std::size_t i) const {
    std::vector<std::uint8_t> text;
    if (i > 0) {
        const ByteSpan prefix = stored(0).first(prefix_);
        text.assign(prefix.begin(), prefix.end());
    }
    const ByteSpan rest = stored(i);
    text.insert(text.end(), rest.begin(), rest.end());
    return text;
}

// Entry i against text, where prefixOrder is how the page's prefix compares with the start of the text.
int EntryTable::compare(std::size_t i, ByteSpan text, int prefixOrder) const {
    if (prefixOrder != 0) return prefixOrder;
    const ByteSpan entry = stored(i).subspan(i == 0 ? prefix_ : 0);
    return compareEntries(entry, text.subspan(prefix_));
}

std::size_t EntryTable::lowerBound(ByteSpan text) const {
    if (count_ == 0) return 0;
    int prefixOrder = 0;
    if (prefix_ > 0) {
        // The prefix lies within the keys; a text whose key is shorter comes before all that start like it.
        const ByteSpan key = keyOf(text);
        const std::size_t common = std::min(prefix_, key.size());
        prefixOrder = common == 0 ? 0 : std::memcmp(stored(0).data(), key.data(), common);
        if (prefixOrder == 0 && key.size() < prefix_) prefixOrder = 1;
    }
    std::size_t low = 0, high = count_;
    while (low < high) {
        const std::size_t middle = (low + high) / 2;
        if (compare(middle, text, prefixOrder) < 0) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return low;
}

bool EntryTable::hasKey(std::size_t i, ByteSpan key) const {
    const ByteSpan entry = keyOf(stored(i));
    if (i == 0) return compareBytes(entry, key) == 0;
    if (key.size() != prefix_ + entry.size()) return false;
    return compareBytes(stored(0).first(prefix_), key.first(prefix_)) == 0 &&
           compareBytes(entry, key.subspan(prefix_)) == 0;
}

bool EntryTable::insertInPlace(PageRef& page, std::size_t i, ByteSpan text) {
    if (prefix_ > 0) {
        if (i == 0 || text.size() < prefix_ + rowIdSize) return false;
        if (compareBytes(stored(0).first(prefix_), text.first(prefix_)) != 0) return false;
        text = text.subspan(prefix_);
    }
    if (used() + text.size() > capacity) return false;
    const PageBytes bytes = page.writable();
    std::uint8_t* const place = bytes.data() + entriesAt + start(i);
    std::memmove(place + text.size(), place, used() - start(i));
    std::memcpy(place, text.data(), text.size());

    const std::size_t newEnd = start(i) + text.size();
    std::uint8_t* const mask = bytes.data() + maskAt;
    // The bits behind the new entry move; those before it stay.
    for (std::size_t k = i; k < count_; ++k) mask[ends_[k] / 8] &= static_cast<std::uint8_t>(~(1 << ends_[k] % 8));
    for (std::size_t k = count_; k > i; --k) ends_[k] = static_cast<std::uint16_t>(ends_[k - 1] + text.size());
    ends_[i] = static_cast<std::uint16_t>(newEnd);
    ++count_;
    for (std::size_t k = i; k < count_; ++k) mask[ends_[k] / 8] |= static_cast<std::uint8_t>(1 << ends_[k] % 8);
    putU16(bytes, freeBytesAt, capacity - used());
    return true;
}

std::vector<IndexEntry> decodeEntries(const PageRef& page) {
    const EntryTable table(page);
    const bool leaf = isLeaf(page.bytes());
    std::vector<IndexEntry> entries;
    entries.reserve(table.count() + 1);
    for (std::size_t i = 0; i < table.count(); ++i) entries.push_back({table.text(i), leaf ? 0 : table.child(i)});
    if (!leaf && tail(page.bytes()) != 0) entries.push_back({{}, tail(page.bytes())});
    return entries;
}

namespace {

// How the entries [first, last) are laid out.
struct Plan {
    std::size_t listed;  // end of those in the entry list; a node's last one is the tail
    std::size_t prefix = 0;
    std::size_t size = 0;
};

Plan planEntries(const std::vector<IndexEntry>& entries, std::size_t first, std::size_t last, bool leaf) {
    // A node with one child lists it, since a page without any entry would read as empty.
    Plan plan{!leaf && last - first > 1 ? last - 1 : last};
    for (std::size_t i = first; i < plan.listed; ++i) plan.size += entries[i].text.size() + (leaf ? 0 : childSize);
    if (plan.size <= capacity || plan.listed - first < 2) return plan;
    // In order, what the first and the last key share all between share too; a damaged page may be out of order.
    const ByteSpan lowest = entries[first].text, highest = entries[plan.listed - 1].text;
    if (lowest.size() < rowIdSize || highest.size() < rowIdSize) return plan;
    plan.prefix = commonPrefix(keyOf(lowest), keyOf(highest));
    for (std::size_t i = first; i < plan.listed; ++i) {
        plan.prefix = std::min(plan.prefix, commonPrefix(lowest, entries[i].text));
    }
    plan.size -= plan.prefix * (plan.listed - first - 1);
    return plan;
}

}  // namespace

std::size_t encodedSize(const std::vector<IndexEntry>& entries, std::size_t first, std::size_t last, bool leaf) {
    return planEntries(entries, first, last, leaf).size;
}

void encodeEntries(PageRef& page, const std::vector<IndexEntry>& entries) {
    const PageBytes bytes = page.writable();
    const bool leaf = isLeaf(bytes);
    const Plan plan = planEntries(entries, 0, entries.size(), leaf);
    if (plan.size > capacity) failCorrupt("the entries of the index " + pageName(page.number()) + " do not fit it");
    std::fill(bytes.begin() + maskAt, bytes.end(), std::uint8_t{0});
    std::size_t at = 0;
    for (std::size_t i = 0; i < plan.listed; ++i) {
        const ByteSpan text = ByteSpan(entries[i].text).subspan(i == 0 ? 0 : plan.prefix);
        std::copy(text.begin(), text.end(), bytes.begin() + static_cast<std::ptrdiff_t>(entriesAt + at));
        at += text.size();
        if (!leaf) {
            for (std::size_t k = 0; k < childSize; ++k) {
                bytes[entriesAt + at++] = static_cast<std::uint8_t>(entries[i].child >> (8 * (childSize - 1 - k)));
            }
        }
        bytes[maskAt + at / 8] |= static_cast<std::uint8_t>(1 << at % 8);
    }
    putU16(bytes, freeBytesAt, capacity - at);
    putU16(bytes, prefixAt, plan.prefix);
    putU32(bytes, tailAt, plan.listed < entries.size() ? entries.back().child : 0);
}

}  // namespace jet
