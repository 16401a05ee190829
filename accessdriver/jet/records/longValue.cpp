#include "accessdriver/jet/records/longValue.h"

#include <algorithm>

#include "accessdriver/jet/failure.h"
#include "accessdriver/jet/storage/allocation.h"
#include "accessdriver/jet/storage/usageMap.h"

// Long value, after the published format notes. Integers are little-endian.
// Definition, in the row:
//   offset  size  field
//        0     4  length in bytes (30 bits) and kind (2 bits)
//        4     4  row pointer of the first piece, 0 when inline
//        8     4  tag, 0
//       12     n  the value, when inline
// A piece is one row of a long-value page: the bytes alone (one piece), or the row pointer of the next piece, 0 for
// none, and then the bytes (chain).
namespace jet {

namespace {

constexpr std::size_t lengthAt = 0, firstAt = 4, inlineAt = longDefinitionSize;
constexpr std::uint32_t lengthMask = 0x3FFFFFFF;
constexpr std::uint32_t chainKind = 0x00000000, pieceKind = 0x40000000, inlineKind = 0x80000000,
                        unknownKind = 0xC0000000;
constexpr std::size_t maxPiece = 4076, chainHead = rowPointerSize, maxChainPiece = maxPiece - chainHead;
// A page with less room than this is no longer offered for further pieces.
constexpr std::size_t worthTrying = 128;
// Pages of a free-space map that are looked at for one value.
constexpr int maxTries = 4;

struct Definition {
    std::uint32_t length;
    std::uint32_t kind;
    RowPointer first;
};

Definition decode(ByteSpan field) {
    if (field.size() < longDefinitionSize) failCorrupt("a long value's definition is too short");
    const std::uint32_t word = getU32(field, lengthAt);
    const Definition definition{word & lengthMask, word & ~lengthMask, getRowPointer(field, firstAt)};
    if (definition.kind == inlineKind && definition.length > field.size() - inlineAt) {
        failCorrupt("a long value in a row is longer than its room");
    }
    if (definition.kind == unknownKind) {
        failCorrupt("a long value is of an unknown kind");
    }
    return definition;
}

void encode(std::size_t length, std::uint32_t kind, RowPointer first, std::vector<std::uint8_t>& field) {
    const std::size_t at = field.size();
    field.resize(at + longDefinitionSize);
    putU32(field, at + lengthAt, static_cast<std::uint32_t>(length) | kind);
    putRowPointer(field, at + firstAt, first);
}

dataPage::Slot findPiece(const PageRef& page, RowPointer pointer) {
    if (!dataPage::belongsTo(page.bytes(), dataPage::longValueOwner)) {
        failCorrupt("a long value lies on " + pageName(page.number()) + ", which is no page of long values");
    }
    const dataPage::Slot slot = dataPage::slot(page, pointer.row);
    if (slot.flags != 0) failCorrupt("a piece of a long value on " + pageName(page.number()) + " was deleted");
    return slot;
}

// Calls visit(page, slot, pointer) for every piece; each is at least one byte long, so that the length ends a cycle.
template <class Visit>
void forEachPiece(PageAccess& pages, const Definition& definition, std::size_t limit, Visit visit) {
    std::size_t left = std::min<std::size_t>(definition.length, limit);
    RowPointer next = definition.first;
    const std::size_t most = std::size_t{pages.count()} * dataPage::maxSlots;
    for (std::size_t pieces = 0; left > 0; ++pieces) {
        if (pieces > most) failCorrupt("the chain of a long value has no end");
        if (next.page == 0) failCorrupt("a long value ends too early");
        const RowPointer pointer = next;
        PageRef page = pages.read(pointer.page);
        const dataPage::Slot slot = findPiece(page, pointer);
        ByteSpan bytes = dataPage::bytesOf(page, slot);
        if (definition.kind == chainKind) {
            if (bytes.size() <= chainHead) failCorrupt("an empty piece in the chain of a long value");
            next = getRowPointer(bytes, 0);
            bytes = bytes.subspan(chainHead);
        } else {
            if (bytes.size() < definition.length) failCorrupt("a long value is longer than its piece");
            next = {};
        }
        bytes = bytes.first(std::min(bytes.size(), left));
        left -= bytes.size();
        visit(pointer, bytes);
    }
}

class Writer {
  public:
    Writer(PageAccess& pages, const Column& column) : pages_(pages), column_(column) {}

    RowPointer writePiece(ByteSpan bytes) {
        PageRef page = findPage(bytes.size());
        const std::uint8_t row = dataPage::append(page, bytes);
        if (dataPage::freeBytes(page) < worthTrying && !column_.longFree.null()) {
            UsageMap(pages_, column_.longFree).remove(page.number());
        }
        return {row, page.number()};
    }

  private:
    PageRef findPage(std::size_t size) {
        if (!column_.longFree.null() && size < maxPiece / 2) {
            UsageMap free(pages_, column_.longFree);
            std::uint32_t from = 0;
            for (int i = 0; i < maxTries; ++i) {
                const auto candidate = free.next(from);
                if (!candidate) break;
                const PageRef page = pages_.read(*candidate);
                if (dataPage::belongsTo(page.bytes(), dataPage::longValueOwner) && dataPage::hasRoom(page, size)) {
                    return pages_.write(*candidate);
                }
                // Too full for this one: taken out, so that the next search does not meet it again.
                free.remove(*candidate);
                from = *candidate + 1;
            }
        }
        PageRef page = allocatePage(pages_);
        dataPage::format(page.writable(), dataPage::longValueOwner);
        if (!column_.longOwned.null()) UsageMap(pages_, column_.longOwned).add(page.number());
        if (!column_.longFree.null()) UsageMap(pages_, column_.longFree).addHint(page.number());
        return page;
    }

    PageAccess& pages_;
    const Column& column_;
};

}  // namespace

ByteSpan inlineLongValue(ByteSpan field) {
    const Definition definition = decode(field);
    return definition.kind == inlineKind ? field.subspan(inlineAt, definition.length) : ByteSpan{};
}

std::vector<std::uint8_t> readLongValue(PageAccess& pages, ByteSpan field, std::size_t limit) {
    const Definition definition = decode(field);
    if (definition.kind == inlineKind) {
        const ByteSpan value = field.subspan(inlineAt, std::min<std::size_t>(definition.length, limit));
        return {value.begin(), value.end()};
    }
    // Grows with what is really there: the length may lie.
    std::vector<std::uint8_t> value;
    forEachPiece(pages, definition, limit, [&](RowPointer, ByteSpan bytes) {
        if (value.size() > std::size_t{pages.count()} * pageSize)
            failCorrupt("the chain of a long value goes in a circle");
        value.insert(value.end(), bytes.begin(), bytes.end());
    });
    return value;
}

void writeLongValue(PageAccess& pages, const Column& column, ByteSpan value, bool mayInline,
                    std::vector<std::uint8_t>& field) {
    if (value.size() > lengthMask) throw Error(Fault::tooLong, "A value of " + column.name + " is longer than 1 GB.");
    if (value.empty() || (mayInline && value.size() <= maxInlineSize)) {
        encode(value.size(), inlineKind, {}, field);
        field.insert(field.end(), value.begin(), value.end());
        return;
    }
    Writer writer(pages, column);
    if (value.size() <= maxPiece) {
        encode(value.size(), pieceKind, writer.writePiece(value), field);
        return;
    }
    // Last piece first, so that each knows where the next one lies.
    RowPointer next;
    std::vector<std::uint8_t> piece;
    for (std::size_t at = (value.size() - 1) / maxChainPiece * maxChainPiece;; at -= maxChainPiece) {
        const ByteSpan bytes = value.subspan(at, std::min(maxChainPiece, value.size() - at));
        piece.resize(chainHead);
        putRowPointer(piece, 0, next);
        piece.insert(piece.end(), bytes.begin(), bytes.end());
        next = writer.writePiece(piece);
        if (at == 0) break;
    }
    encode(value.size(), chainKind, next, field);
}

std::vector<RowPointer> longValuePieces(PageAccess& pages, ByteSpan field) {
    const Definition definition = decode(field);
    std::vector<RowPointer> pieces;
    if (definition.kind == inlineKind) return pieces;
    forEachPiece(pages, definition, SIZE_MAX, [&](RowPointer pointer, ByteSpan) { pieces.push_back(pointer); });
    return pieces;
}

void releaseLongValue(PageAccess& pages, const Column& column, ByteSpan field) {
    for (const RowPointer pointer : longValuePieces(pages, field)) {
        PageRef page = pages.write(pointer.page);
        // A chain that reaches one of its pieces twice finds it deleted, or its page released, the second time.
        (void)findPiece(page, pointer);
        dataPage::remove(page, pointer.row);
        if (column.longOwned.null() || column.longFree.null()) continue;
        UsageMap owned(pages, column.longOwned), free(pages, column.longFree);
        if (dataPage::isEmpty(page) && owned.contains(pointer.page)) {
            owned.remove(pointer.page);
            free.remove(pointer.page);
            releasePage(pages, pointer.page);
        } else if (dataPage::slotCount(page) < dataPage::maxSlots) {
            free.addHint(pointer.page);
        }
    }
}

}  // namespace jet
