#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "accessdriver/jet/storage/file.h"
#include "accessdriver/jet/storage/journal.h"

namespace jet {

/// The pages of one file, shared by all connections of the process. Not synchronised: SharedFile's mutex guards it.
///
/// 1. At most one connection, the writer, has a transaction. It reads and writes the current pages; everybody else
///    reads the committed ones, and the length of the file as it was committed.
/// 2. Before a page is changed for the first time in a transaction, its committed bytes are kept as its original. Pages
///    that the transaction itself appended have none.
/// 3. A changed page reaches the file only after the original of every page written with it lies in the journal. This
///    happens at commit, or earlier when changed pages fill most of the cache.
/// 4. Commit writes the journal, then the pages, then ends the journal. If one of these fails, the transaction is open
///    as before: the originals are still known and the journal, if its end was not reached, still leads back.
/// 5. Rollback puts originals back, in memory alone if nothing reached the file.
/// 6. A statement notes the pages that it changes and that were there before it. A page that the transaction had
/// changed
///    before keeps an undo image in memory; the undo image of any other page is its original. The statement that opened
///    the transaction notes nothing, since undoing it is a rollback.
/// 7. A pinned page (a PageRef exists) is neither evicted nor written, since it may be half changed.
/// 8. The cache holds at most `capacity` pages, originals included; the undo images in memory come on top.
/// 9. If undoing fails, the file and the cache can no longer be trusted: the pager is broken, refuses everything, and
///    leaves the journal for the next open.
class Pager;

/// A pinned page: its bytes stay where they are while this object lives.
class PageRef {
    struct Frame;
    friend class Pager;

  public:
    PageRef(const PageRef&) = delete;
    PageRef& operator=(const PageRef&) = delete;
    PageRef(PageRef&& other) noexcept : frame_(std::exchange(other.frame_, nullptr)) {}
    PageRef& operator=(PageRef&& other) noexcept {
        std::swap(frame_, other.frame_);
        return *this;
    }
    ~PageRef() {
        if (frame_) --frame_->pins;
    }

    std::uint32_t number() const { return frame_->page; }
    ConstPageBytes bytes() const { return frame_->bytes; }
    /// Only for a page that was fetched for writing.
    PageBytes writable() { return frame_->bytes; }

  private:
    struct Frame {
        std::uint32_t page = 0;
        std::uint32_t pins = 0;
        bool used = false;            // accessed since the clock's hand last passed
        bool dirty = false;           // newer than the file
        bool original = false;        // the committed bytes of a page that the transaction changed
        std::uint64_t change = 0;     // the transaction that is known to have the page's original
        std::uint64_t statement = 0;  // the statement that is known to be able to undo its changes of the page
        alignas(8) std::array<std::uint8_t, pageSize> bytes;
    };

    explicit PageRef(Frame* frame) : frame_(frame) { ++frame_->pins; }
    Frame* frame_;
};

class Pager {
  public:
    /// Stands for a connection.
    using Viewer = const void*;

    static constexpr std::size_t defaultCapacity = 12000;  // about 48 MB, a large herd

    /// file is locked and its length a multiple of the page size.
    Pager(File& file, const std::string& journalPath, std::size_t capacity = defaultCapacity);
    ~Pager();
    Pager(const Pager&) = delete;
    Pager& operator=(const Pager&) = delete;

    /// The file's length in pages, as this viewer sees it.
    std::uint32_t pageCount(Viewer viewer) const { return viewer == writer_ ? pageCount_ : committedCount_; }
    /// Throws Error(corrupt) for a page beyond the end.
    PageRef read(Viewer viewer, std::uint32_t page);
    /// Pins a page for changing. Within a statement only.
    PageRef write(std::uint32_t page);
    /// A new page of zeroes at the end of the file. Within a statement only. Throws Error(io) at 2 GiB.
    PageRef append();

    /// Throws Error(busy) if another viewer has a transaction; opens one for this viewer if it has none.
    void beginStatement(Viewer viewer);
    void endStatement();
    /// Puts everything back to where it was before beginStatement.
    void undoStatement() noexcept;

    void commit(Viewer viewer);
    void rollback(Viewer viewer);
    bool inTransaction(Viewer viewer) const { return writer_ != nullptr && writer_ == viewer; }
    /// Whether any viewer has a transaction.
    bool hasWriter() const { return writer_ != nullptr; }
    bool broken() const { return broken_; }
    /// No page below this one is free and may be used again. Kept for allocatePage().
    std::uint32_t firstReleased() const { return firstReleased_; }
    void setFirstReleased(std::uint32_t page) { firstReleased_ = page; }
    /// Grows with every statement, undo, commit and rollback: a row read earlier may be another one now.
    std::uint64_t changes() const { return changes_; }

  private:
    using Frame = PageRef::Frame;
    using Buffer = std::array<std::uint8_t, pageSize>;
    struct Original {
        Frame* frame = nullptr;  // null: only in the journal
        std::uint64_t journalAt = 0;
        bool journaled = false;
        std::uint64_t statement = 0;  // the statement that noted the page when it was not in the cache
    };
    /// A page that the statement changed, and its undo image: null if that is the page's original.
    struct Undo {
        std::uint32_t page;
        std::unique_ptr<Buffer> bytes;
    };

    void requireSound() const;
    Frame* current(std::uint32_t page);
    Frame* originalOf(std::uint32_t page, Original& original);
    Frame* takeFrame(std::uint32_t page);
    Frame* findVictim();
    bool evictable(const Frame& frame) const;
    void forget(Frame* frame);
    void discard(Frame* frame);
    void discardFrom(std::uint32_t firstPage);
    void markDirty(Frame* frame);
    bool keepOriginal(Frame* frame);
    void keepUndo(Frame* frame);
    void flush(bool all);
    void journalOriginals(const std::vector<Frame*>& frames);
    void writeFrames(const std::vector<Frame*>& frames);
    void restoreFile();
    void endTransaction();

    File& file_;
    Journal journal_;
    std::size_t capacity_;
    std::vector<std::unique_ptr<Frame>> frames_;
    std::vector<Frame*> idle_;     // frames that hold no page
    std::vector<Frame*> current_;  // by page number
    std::size_t hand_ = 0;
    std::vector<Frame*> dirty_;
    std::unordered_map<std::uint32_t, Original> originals_;

    Viewer writer_ = nullptr;
    std::uint64_t transaction_ = 0;
    std::uint32_t pageCount_;
    std::uint32_t committedCount_;
    std::uint32_t fileCount_;  // pages that the file itself may have by now

    std::uint64_t statement_ = 0;
    bool statementOpen_ = false;
    bool statementOpened_ = false;  // the statement began the transaction
    std::uint32_t statementCount_ = 0;
    std::vector<Undo> undo_;
    std::vector<std::unique_ptr<Buffer>> spare_;
    std::uint64_t changes_ = 0;
    std::uint32_t firstReleased_ = 0;
    std::uint32_t transactionReleased_ = 0, statementReleased_ = 0;  // its values when these began
    bool broken_ = false;
};

}  // namespace jet
