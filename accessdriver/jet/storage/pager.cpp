#include "accessdriver/jet/storage/pager.h"

#include <algorithm>

#include "accessdriver/jet/failure.h"

namespace jet {

namespace {

// Undo images are kept for reuse up to this many.
constexpr std::size_t maxSpare = 64;

std::uint32_t pagesOf(const File& file) {
    return static_cast<std::uint32_t>(std::min<std::uint64_t>(file.size() / pageSize, maxPages));
}

}  // namespace

Pager::Pager(File& file, const std::string& journalPath, std::size_t capacity)
    : file_(file), journal_(journalPath, file), capacity_(capacity), pageCount_(pagesOf(file)) {
    committedCount_ = fileCount_ = pageCount_;
    current_.resize(pageCount_);
}

Pager::~Pager() = default;

void Pager::requireSound() const {
    if (broken_) {
        throw Error(Fault::io, "The file " + file_.path() +
                                   " could not be written or restored earlier; it is restored when it is next opened.");
    }
}

// --- finding pages

PageRef Pager::read(Viewer viewer, std::uint32_t page) {
    requireSound();
    if (page >= pageCount(viewer)) failCorrupt(pageName(page) + " is referred to, but lies beyond the end of the file");
    if (writer_ != nullptr && viewer != writer_) {
        if (const auto found = originals_.find(page); found != originals_.end()) {
            return PageRef(originalOf(page, found->second));
        }
    }
    return PageRef(current(page));
}

Pager::Frame* Pager::current(std::uint32_t page) {
    if (Frame* frame = current_[page]) {
        frame->used = true;
        return frame;
    }
    Frame* frame = takeFrame(page);
    try {
        if (!file_.readAt(std::uint64_t{page} * pageSize, frame->bytes)) {
            throw Error(Fault::io, "The file " + file_.path() + " has become shorter while it was open.");
        }
    } catch (...) {
        idle_.push_back(frame);
        throw;
    }
    current_[page] = frame;
    return frame;
}

Pager::Frame* Pager::originalOf(std::uint32_t page, Original& original) {
    if (!original.frame) {
        Frame* frame = takeFrame(page);
        try {
            journal_.read(original.journalAt, frame->bytes);
        } catch (...) {
            idle_.push_back(frame);
            throw;
        }
        frame->original = true;
        original.frame = frame;
    }
    original.frame->used = true;
    return original.frame;
}

Pager::Frame* Pager::takeFrame(std::uint32_t page) {
    Frame* frame = nullptr;
    if (idle_.empty() && frames_.size() >= capacity_) {
        if (dirty_.size() > capacity_ / 4 * 3) flush(false);
        frame = findVictim();
        if (!frame) {
            flush(false);
            frame = findVictim();
        }
    }
    if (frame) {
        forget(frame);
    } else if (!idle_.empty()) {
        frame = idle_.back();
        idle_.pop_back();
    } else {
        frames_.push_back(std::make_unique<Frame>());
        frame = frames_.back().get();
    }
    frame->page = page;
    frame->used = true;
    frame->dirty = frame->original = false;
    frame->change = frame->statement = 0;
    return frame;
}

Pager::Frame* Pager::findVictim() {
    for (std::size_t step = 0; step < 2 * frames_.size(); ++step) {
        hand_ = (hand_ + 1) % frames_.size();
        Frame* frame = frames_[hand_].get();
        if (!evictable(*frame)) continue;
        if (!frame->used) return frame;
        frame->used = false;
    }
    return nullptr;
}

bool Pager::evictable(const Frame& frame) const {
    if (frame.pins > 0 || frame.dirty) return false;
    return !frame.original || originals_.at(frame.page).journaled;
}

void Pager::forget(Frame* frame) {
    if (frame->original) {
        originals_.at(frame->page).frame = nullptr;
    } else if (frame->page < current_.size() && current_[frame->page] == frame) {
        current_[frame->page] = nullptr;
    }
}

void Pager::discard(Frame* frame) {
    forget(frame);
    frame->dirty = frame->original = false;
    idle_.push_back(frame);
}

void Pager::discardFrom(std::uint32_t firstPage) {
    std::erase_if(dirty_, [&](const Frame* frame) { return frame->page >= firstPage; });
    for (std::uint32_t page = firstPage; page < current_.size(); ++page) {
        if (current_[page]) discard(current_[page]);
    }
    current_.resize(firstPage);
    pageCount_ = firstPage;
}

// --- changing pages

void Pager::beginStatement(Viewer viewer) {
    requireSound();
    if (writer_ != nullptr && writer_ != viewer) {
        throw Error(Fault::busy,
                    "Another connection has changes in " + file_.path() + " that it has not committed yet.");
    }
    statementOpened_ = writer_ == nullptr;
    if (statementOpened_) {
        writer_ = viewer;
        ++transaction_;
        transactionReleased_ = firstReleased_;
    }
    statementReleased_ = firstReleased_;
    ++statement_;
    ++changes_;
    statementOpen_ = true;
    statementCount_ = pageCount_;
}

PageRef Pager::write(std::uint32_t page) {
    if (page >= pageCount_) failCorrupt(pageName(page) + " is to be changed, but lies beyond the end of the file");
    PageRef ref(current(page));
    keepUndo(ref.frame_);
    markDirty(ref.frame_);
    return ref;
}

PageRef Pager::append() {
    if (pageCount_ >= maxPages) {
        throw Error(Fault::io,
                    "The file " + file_.path() + " has reached 2 GiB, more than that an Access file can't hold.");
    }
    Frame* frame = takeFrame(pageCount_);
    frame->bytes.fill(0);
    frame->change = transaction_;
    frame->statement = statement_;
    current_.push_back(frame);
    ++pageCount_;
    markDirty(frame);
    return PageRef(frame);
}

void Pager::markDirty(Frame* frame) {
    if (frame->dirty) return;
    frame->dirty = true;
    dirty_.push_back(frame);
}

// Makes sure that a page has its original. Returns whether it got it only now: the page is as it was committed.
bool Pager::keepOriginal(Frame* frame) {
    if (frame->change == transaction_) return false;
    const bool isNew = frame->page < committedCount_ && !originals_.contains(frame->page);
    if (isNew) {
        Frame* copy = takeFrame(frame->page);
        copy->bytes = frame->bytes;
        copy->original = true;
        originals_[frame->page] = {copy};
    }
    frame->change = transaction_;
    return isNew;
}

void Pager::keepUndo(Frame* frame) {
    if (frame->statement == statement_) return;
    const bool wasCached = frame->change == transaction_;
    const bool isOriginal = keepOriginal(frame);
    frame->statement = statement_;
    if (statementOpened_ || frame->page >= statementCount_) return;
    if (!wasCached) {
        // A page that was evicted in the middle of a statement and read again has been noted already.
        if (const auto found = originals_.find(frame->page); found != originals_.end()) {
            if (std::exchange(found->second.statement, statement_) == statement_) return;
        }
    }
    if (isOriginal) {
        undo_.push_back({frame->page, nullptr});
        return;
    }
    if (spare_.empty()) spare_.push_back(std::make_unique<Buffer>());
    *spare_.back() = frame->bytes;
    undo_.push_back({frame->page, std::move(spare_.back())});
    spare_.pop_back();
}

void Pager::endStatement() {
    statementOpen_ = false;
    for (Undo& undo : undo_) {
        if (undo.bytes && spare_.size() < maxSpare) spare_.push_back(std::move(undo.bytes));
    }
    undo_.clear();
    if (statementOpened_ && originals_.empty() && pageCount_ == committedCount_) endTransaction();
}

void Pager::undoStatement() noexcept {
    try {
        ++changes_;
        firstReleased_ = statementReleased_;
        if (statementOpened_) {
            undo_.clear();
            statementOpen_ = false;
            rollback(writer_);
            return;
        }
        // Backwards: a page that was evicted and read again may be noted twice, and the first image is the wanted one.
        while (!undo_.empty()) {
            const Undo& undo = undo_.back();
            PageRef ref(current(undo.page));
            ref.frame_->bytes = undo.bytes ? *undo.bytes : originalOf(undo.page, originals_.at(undo.page))->bytes;
            markDirty(ref.frame_);
            undo_.pop_back();
        }
        discardFrom(statementCount_);
        endStatement();
    } catch (...) {
        broken_ = true;
    }
}

// --- the file

void Pager::flush(bool all) {
    std::vector<Frame*> frames;
    for (Frame* frame : dirty_) {
        if (all || frame->pins == 0) frames.push_back(frame);
    }
    if (frames.empty()) return;
    std::sort(frames.begin(), frames.end(), [](const Frame* a, const Frame* b) { return a->page < b->page; });
    journalOriginals(frames);
    writeFrames(frames);
    for (Frame* frame : frames) frame->dirty = false;
    std::erase_if(dirty_, [](const Frame* frame) { return !frame->dirty; });
}

void Pager::journalOriginals(const std::vector<Frame*>& frames) {
    std::vector<PageImage> pages, changed;
    for (const Frame* frame : frames) {
        changed.push_back({frame->page, frame->bytes});
        const auto found = originals_.find(frame->page);
        if (found != originals_.end() && !found->second.journaled) {
            pages.push_back({frame->page, found->second.frame->bytes});
        }
    }
    const std::vector<std::uint64_t> places = journal_.append(committedCount_, pages, changed);
    for (std::size_t i = 0; i < pages.size(); ++i) {
        Original& original = originals_.at(pages[i].page);
        original.journalAt = places[i];
        original.journaled = true;
    }
}

void Pager::writeFrames(const std::vector<Frame*>& frames) {
    std::vector<ByteSpan> run;
    for (std::size_t i = 0; i < frames.size(); ++i) {
        run.emplace_back(frames[i]->bytes);
        const std::uint32_t next = frames[i]->page + 1;
        if (i + 1 < frames.size() && frames[i + 1]->page == next) continue;
        fileCount_ = std::max(fileCount_, next);
        file_.writeAt(std::uint64_t{next - static_cast<std::uint32_t>(run.size())} * pageSize, run);
        run.clear();
    }
}

void Pager::commit(Viewer viewer) {
    requireSound();
    if (writer_ == nullptr || writer_ != viewer) return;
    flush(true);
    if (fileCount_ > pageCount_) {
        file_.truncate(std::uint64_t{pageCount_} * pageSize);
        fileCount_ = pageCount_;
    }
    journal_.finish();
    committedCount_ = pageCount_;
    endTransaction();
}

void Pager::rollback(Viewer viewer) {
    if (writer_ == nullptr || writer_ != viewer) return;
    firstReleased_ = transactionReleased_;
    try {
        restoreFile();
    } catch (...) {
        broken_ = true;
        throw;
    }
    for (auto& [page, original] : originals_) {
        Frame* frame = current_[page];
        if (!frame) continue;
        if (original.frame) {
            frame->bytes = original.frame->bytes;
            frame->dirty = false;
        } else {
            discard(frame);
        }
    }
    discardFrom(committedCount_);
    dirty_.clear();
    endTransaction();
}

void Pager::restoreFile() {
    if (!journal_.active()) return;
    std::array<std::uint8_t, pageSize> bytes;
    for (auto& [page, original] : originals_) {
        if (!original.journaled) continue;
        if (!original.frame) journal_.read(original.journalAt, bytes);
        file_.writeAt(std::uint64_t{page} * pageSize, ByteSpan(original.frame ? original.frame->bytes : bytes));
    }
    if (fileCount_ > committedCount_) file_.truncate(std::uint64_t{committedCount_} * pageSize);
    fileCount_ = committedCount_;
    journal_.finish();
}

void Pager::endTransaction() {
    for (auto& [page, original] : originals_) {
        if (original.frame) {
            original.frame->original = false;
            idle_.push_back(original.frame);
        }
    }
    originals_.clear();
    writer_ = nullptr;
    ++changes_;
}

}  // namespace jet
