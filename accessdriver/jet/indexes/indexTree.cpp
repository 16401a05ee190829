#include "accessdriver/jet/indexes/indexTree.h"

#include <algorithm>

#include "accessdriver/jet/failure.h"
#include "accessdriver/jet/storage/allocation.h"
#include "accessdriver/jet/storage/usageMap.h"

namespace jet {

using namespace indexPage;

namespace {

// No index of a 2 GiB file is deeper; a tree that leads in a circle is.
constexpr std::size_t maxDepth = 24;

// Where to cut entries that do not fit one page: both parts fit, near the middle; or near the end if the entry that
// was too much came last, so that an index that grows at its end keeps full pages behind it.
std::size_t splitPoint(const std::vector<IndexEntry>& entries, bool leaf, bool atEnd) {
    const std::size_t count = entries.size();
    const std::size_t least = leaf ? 1 : 2;  // a node of one child is best avoided
    const auto fits = [&](std::size_t at) {
        return encodedSize(entries, 0, at, leaf) <= capacity && encodedSize(entries, at, count, leaf) <= capacity;
    };
    const std::size_t wanted = atEnd ? count - least : count / 2;
    for (std::size_t distance = 0; distance < count; ++distance) {
        if (wanted >= distance + least && wanted - distance + least <= count && fits(wanted - distance)) {
            return wanted - distance;
        }
        if (wanted + distance + least <= count && wanted + distance >= least && fits(wanted + distance)) {
            return wanted + distance;
        }
    }
    failCorrupt("an index page can't be split");
}

}  // namespace

PageRef IndexTree::readPage(std::uint32_t page) {
    PageRef ref = pages_.read(page);
    require(ref, table_.page);
    return ref;
}

PageRef IndexTree::writePage(std::uint32_t page) {
    PageRef ref = pages_.write(page);
    require(ref, table_.page);
    return ref;
}

// --- finding

std::uint32_t IndexTree::descend(ByteSpan text, Path& path) {
    std::uint32_t number = index_.root;
    for (;;) {
        const PageRef page = readPage(number);
        if (isLeaf(page.bytes())) return number;
        if (path.size() >= maxDepth) failCorrupt("the index " + index_.name + " of " + table_.name + " is too deep");
        const EntryTable table(page);
        std::size_t at = table.lowerBound(text);
        const std::uint32_t last = tail(page.bytes());
        if (at == table.count() && last == 0) {
            if (at == 0) failCorrupt("the index " + pageName(number) + " has no children");
            --at;
        }
        const bool inTail = at == table.count();
        path.push_back({number, at, inTail});
        number = inTail ? last : table.child(at);
    }
}

bool IndexTree::edgeHasKey(std::uint32_t page, bool last, ByteSpan key) {
    if (page == 0) return false;
    const PageRef ref = readPage(page);
    const EntryTable table(ref);
    return table.count() > 0 && table.hasKey(last ? table.count() - 1 : 0, key);
}

// Entries of one key lie side by side, though perhaps on two pages.
bool IndexTree::neighbourHasKey(const EntryTable& table, const PageRef& leaf, std::size_t at, ByteSpan key) {
    if (at > 0 ? table.hasKey(at - 1, key) : edgeHasKey(previous(leaf.bytes()), true, key)) return true;
    return at < table.count() ? table.hasKey(at, key) : edgeHasKey(next(leaf.bytes()), false, key);
}

std::optional<std::vector<RowId>> IndexTree::rowsBetween(ByteSpan first, ByteSpan last, std::size_t most) {
    std::vector<RowId> rows;
    std::vector<std::uint8_t> from(first.begin(), first.end());
    appendRowId(from, {});
    Path path;
    std::uint32_t number = descend(from, path);
    for (std::size_t pages = 0; number != 0; ++pages) {
        if (pages > pages_.count()) failCorrupt("the leaves of the index " + index_.name + " lead in a circle");
        const PageRef leaf = readPage(number);
        const EntryTable table(leaf);
        for (std::size_t i = pages == 0 ? table.lowerBound(from) : 0; i < table.count(); ++i) {
            const std::vector<std::uint8_t> text = table.text(i);
            const ByteSpan key = keyOf(text);
            const ByteSpan begin = key.first(std::min(key.size(), last.size()));
            if (std::lexicographical_compare(last.begin(), last.end(), begin.begin(), begin.end())) return rows;
            if (rows.size() == most) return std::nullopt;
            rows.push_back(rowIdOf(text));
        }
        number = next(leaf.bytes());
    }
    return rows;
}

// --- adding

bool IndexTree::insert(ByteSpan key, RowId row, bool unique) {
    std::vector<std::uint8_t> text(key.begin(), key.end());
    appendRowId(text, row);
    Path path;
    PageRef leaf = writePage(descend(text, path));
    EntryTable table(leaf);
    const std::size_t at = table.lowerBound(text);
    const bool known = neighbourHasKey(table, leaf, at, key);
    if (known && unique) {
        throw Error(Fault::duplicateKey, "The index " + index_.name + " of the table " + table_.name +
                                             " allows each value only once, and this one is there already.");
    }
    if (known && at < table.count() && table.text(at) == text) {
        failCorrupt("the index " + index_.name + " of " + table_.name + " holds a row already that is new");
    }
    const bool newGreatest = at == table.count();
    if (!table.insertInPlace(leaf, at, text)) {
        std::vector<IndexEntry> entries = decodeEntries(leaf);
        entries.insert(entries.begin() + static_cast<std::ptrdiff_t>(at), IndexEntry{text, 0});
        store(std::move(leaf), entries, path, newGreatest);
    } else if (newGreatest) {
        changeGreatest(path, text);
    }
    return !known;
}

// Puts entries on a page of whose parents path tells; splits it if need be, and brings the parents in line.
// appended: what came in came last, so that more of its kind is to be expected at the end.
void IndexTree::store(PageRef page, std::vector<IndexEntry>& entries, Path& path, bool appended) {
    if (encodedSize(entries, 0, entries.size(), isLeaf(page.bytes())) > capacity) {
        if (path.empty()) {
            splitRoot(std::move(page), entries);
        } else {
            splitPage(std::move(page), entries, path, appended);
        }
        return;
    }
    encodeEntries(page, entries);
    changeGreatest(path, greatestOf(entries));
}

void IndexTree::splitPage(PageRef page, std::vector<IndexEntry>& entries, Path& path, bool appended) {
    const bool leaf = isLeaf(page.bytes());
    const std::uint32_t following = next(page.bytes());
    const std::size_t cut = splitPoint(entries, leaf, appended && following == 0);
    std::vector<IndexEntry> right(std::make_move_iterator(entries.begin() + static_cast<std::ptrdiff_t>(cut)),
                                  std::make_move_iterator(entries.end()));
    entries.resize(cut);
    const std::vector<std::uint8_t> leftGreatest = entries.back().text;
    const std::uint32_t rightNumber = newPage(page.bytes()[kindAt], right);
    {
        PageRef rightPage = writePage(rightNumber);
        putU32(rightPage.writable(), previousAt, page.number());
        putU32(rightPage.writable(), nextAt, following);
    }
    if (following != 0) putU32(writePage(following).writable(), previousAt, rightNumber);
    putU32(page.writable(), nextAt, rightNumber);
    encodeEntries(page, entries);

    // The parent's entry for the page now stands for the right half; the left half gets one of its own before it.
    const Step step = path.back();
    path.pop_back();
    PageRef parent = writePage(step.page);
    std::vector<IndexEntry> children = decodeEntries(parent);
    if (step.child >= children.size()) failCorrupt("the index " + pageName(step.page) + " has lost a child");
    children[step.child].child = rightNumber;
    if (!children[step.child].text.empty()) children[step.child].text = greatestOf(right);
    const bool lastChild = step.child + 1 == children.size();
    children.insert(children.begin() + static_cast<std::ptrdiff_t>(step.child),
                    IndexEntry{leftGreatest, page.number()});
    store(std::move(parent), children, path, appended && lastChild);
}

void IndexTree::splitRoot(PageRef root, std::vector<IndexEntry>& entries) {
    const std::uint8_t kind = root.bytes()[kindAt];
    const bool leaf = kind == leafKind;
    const std::size_t cut = splitPoint(entries, leaf, false);
    const auto middle = entries.begin() + static_cast<std::ptrdiff_t>(cut);
    const std::vector<IndexEntry> left(entries.begin(), middle);
    const std::vector<IndexEntry> right(middle, entries.end());
    const std::uint32_t leftNumber = newPage(kind, left);
    const std::uint32_t rightNumber = newPage(kind, right);
    putU32(writePage(leftNumber).writable(), nextAt, rightNumber);
    putU32(writePage(rightNumber).writable(), previousAt, leftNumber);
    putU8(root.writable(), kindAt, nodeKind);
    encodeEntries(root, {{left.back().text, leftNumber}, {{}, rightNumber}});
}

std::uint32_t IndexTree::newPage(std::uint8_t kind, const std::vector<IndexEntry>& entries) {
    PageRef page = allocatePage(pages_);
    format(page.writable(), kind, table_.page);
    UsageMap(pages_, index_.map).add(page.number());
    encodeEntries(page, entries);
    return page.number();
}

// The page below path has this greatest entry now: its parent's entry follows, and so on up while the page is the last
// one there.
void IndexTree::changeGreatest(Path path, const std::vector<std::uint8_t>& greatest) {
    while (!path.empty()) {
        const Step step = path.back();
        path.pop_back();
        // The tail has no entry, so the node's own greatest entry has changed.
        if (step.tail) continue;
        PageRef parent = writePage(step.page);
        std::vector<IndexEntry> children = decodeEntries(parent);
        if (step.child >= children.size()) failCorrupt("the index " + pageName(step.page) + " has lost a child");
        if (children[step.child].text == greatest) return;
        children[step.child].text = greatest;
        return store(std::move(parent), children, path, false);
    }
}

// --- taking out

void IndexTree::remove(ByteSpan key, RowId row) {
    std::vector<std::uint8_t> text(key.begin(), key.end());
    appendRowId(text, row);
    Path path;
    PageRef leaf = writePage(descend(text, path));
    std::vector<IndexEntry> entries = decodeEntries(leaf);
    const auto found = std::lower_bound(
        entries.begin(), entries.end(), text,
        [](const IndexEntry& entry, ByteSpan wanted) { return compareEntries(entry.text, wanted) < 0; });
    if (found == entries.end() || found->text != text) {
        failCorrupt("the index " + index_.name + " of " + table_.name + " lacks the entry of a row");
    }
    const bool wasGreatest = found + 1 == entries.end();
    entries.erase(found);
    if (entries.empty() && !path.empty()) {
        unlink(leaf);
        const std::uint32_t emptied = leaf.number();
        freePage(emptied);
        removeChild(path);
        return;
    }
    // What is left always fits: entries that are fewer share a prefix that is no shorter.
    encodeEntries(leaf, entries);
    if (wasGreatest && !entries.empty()) changeGreatest(path, entries.back().text);
}

// Takes the child that path's last step leads to out of its node.
void IndexTree::removeChild(Path path) {
    const Step step = path.back();
    path.pop_back();
    PageRef node = writePage(step.page);
    std::vector<IndexEntry> children = decodeEntries(node);
    if (step.child >= children.size()) failCorrupt("the index " + pageName(step.page) + " has lost a child");
    const bool wasLast = step.child + 1 == children.size();
    children.erase(children.begin() + static_cast<std::ptrdiff_t>(step.child));
    if (children.empty()) {
        if (path.empty()) {
            format(node.writable(), leafKind, table_.page);
            encodeEntries(node, {});
            return;
        }
        unlink(node);
        freePage(node.number());
        return removeChild(path);
    }
    if (children.size() == 1) {
        if (path.empty()) return adoptChildLevel(children.front().child);
        if (children.front().text.empty()) children.front().text = greatestBelow(children.front().child);
    }
    const std::vector<std::uint8_t> greatest =
        wasLast ? greatestBelow(children.back().child) : std::vector<std::uint8_t>{};
    encodeEntries(node, children);
    if (wasLast) changeGreatest(path, greatest);
}

// The root has a single child left: the child's content moves up into it.
void IndexTree::adoptChildLevel(std::uint32_t page) {
    const PageRef child = readPage(page);
    PageRef root = writePage(index_.root);
    std::copy(child.bytes().begin(), child.bytes().end(), root.writable().begin());
    putU32(root.writable(), previousAt, 0);
    putU32(root.writable(), nextAt, 0);
    freePage(page);
}

void IndexTree::unlink(PageRef& page) {
    const std::uint32_t before = previous(page.bytes()), after = next(page.bytes());
    if (before != 0) putU32(writePage(before).writable(), nextAt, after);
    if (after != 0) putU32(writePage(after).writable(), previousAt, before);
}

void IndexTree::freePage(std::uint32_t page) {
    UsageMap(pages_, index_.map).remove(page);
    releasePage(pages_, page);
}

// The greatest leaf entry on or below a page with these entries; the tail of a node has no text of its own.
std::vector<std::uint8_t> IndexTree::greatestOf(const std::vector<IndexEntry>& entries) {
    return entries.back().text.empty() ? greatestBelow(entries.back().child) : entries.back().text;
}

std::vector<std::uint8_t> IndexTree::greatestBelow(std::uint32_t number) {
    for (std::size_t depth = 0; depth <= maxDepth; ++depth) {
        const PageRef page = readPage(number);
        const EntryTable table(page);
        if (isLeaf(page.bytes())) {
            if (table.count() == 0) failCorrupt("the index " + pageName(number) + " is empty");
            return table.text(table.count() - 1);
        }
        const std::uint32_t last = tail(page.bytes());
        if (last == 0 && table.count() == 0) failCorrupt("the index " + pageName(number) + " has no children");
        number = last != 0 ? last : table.child(table.count() - 1);
    }
    failCorrupt("the index " + index_.name + " of " + table_.name + " is too deep");
}

}  // namespace jet
