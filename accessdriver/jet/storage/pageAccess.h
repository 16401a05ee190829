#pragma once

#include "accessdriver/jet/storage/pager.h"

namespace jet {

/// One connection's view of the pages; everything above the pager works through it.
class PageAccess {
  public:
    explicit PageAccess(Pager& pager) : pager_(pager) {}
    PageAccess(const PageAccess&) = delete;
    PageAccess& operator=(const PageAccess&) = delete;

    std::uint32_t count() const { return pager_.pageCount(this); }
    PageRef read(std::uint32_t page) { return pager_.read(this, page); }
    /// Within a Statement only.
    PageRef write(std::uint32_t page) { return pager_.write(page); }
    /// A page of zeroes at the end of the file. Callers use allocatePage(), which prefers released pages.
    PageRef append() { return pager_.append(); }
    std::uint32_t firstReleased() const { return pager_.firstReleased(); }
    void setFirstReleased(std::uint32_t page) { pager_.setFirstReleased(page); }

    bool inTransaction() const { return pager_.inTransaction(this); }
    void commit() { pager_.commit(this); }
    void rollback() { pager_.rollback(this); }
    std::uint64_t changes() const { return pager_.changes(); }

    /// A change that takes place as a whole or not at all: what was not finished is undone.
    class Statement {
      public:
        explicit Statement(PageAccess& pages) : pager_(pages.pager_) { pager_.beginStatement(&pages); }
        ~Statement() {
            if (!finished_) pager_.undoStatement();
        }
        Statement(const Statement&) = delete;
        Statement& operator=(const Statement&) = delete;
        void finish() {
            pager_.endStatement();
            finished_ = true;
        }

      private:
        Pager& pager_;
        bool finished_ = false;
    };

  private:
    Pager& pager_;
};

}  // namespace jet
