#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "accessdriver/jet/storage/file.h"

namespace jet {

/// A page with what it holds at some moment.
struct PageImage {
    std::uint32_t page = 0;
    ConstPageBytes bytes;
};

/// The rollback journal of one file: original pages of the transaction that is being written, in batches, and prints of
/// the pages that take their place.
///
/// 1. A batch is written whole before the first of its pages is written in the file.
/// 2. A batch counts only if its checksum, over its head and all its records, is right; a batch that was cut short
///    has therefore touched nothing, and neither has one after it.
/// 3. Batches of one transaction follow each other, numbered from 0, with the same salt; the next transaction has
///    another salt, so what an earlier one left behind is never taken for its own.
/// 4. A batch names its file by the file's first page, which is never changed, and by its length. A journal that
///    lies beside another file, or beside an earlier copy of its own, is refused and changes nothing.
/// 5. It is played back only if each of its pages is as it was or as it was to be written, sector by sector, and there
///    is nothing behind them: otherwise somebody else has written to the file since, and it is refused.
/// 6. A transaction ends when the signature of batch 0 is overwritten with zeroes. Before that the file belongs to
///    the state before the transaction, after it to the one after it.
/// 7. The signature tells the version of all this. A journal of another one is refused and changes nothing.
class Journal {
  public:
    /// For file, which must outlive this; made with the first batch, and as private as the file is.
    Journal(std::string path, const File& file);
    /// Removes the journal's file if the transaction in it has ended.
    ~Journal();
    Journal(const Journal&) = delete;
    Journal& operator=(const Journal&) = delete;

    /// Writes as one or more batches what the pages were before the transaction, where that is not here yet, and the
    /// prints of what is about to be written; returns where each original's bytes lie. fileLength is the number of
    /// pages before the transaction.
    std::vector<std::uint64_t> append(std::uint32_t fileLength, const std::vector<PageImage>& originals,
                                      const std::vector<PageImage>& changed);
    /// Reads a page back that append() placed at `at`.
    void read(std::uint64_t at, PageBytes to) const;
    /// Ends the transaction; does nothing if nothing was appended.
    void finish();
    bool active() const { return batches_ > 0; }

    /// Whether a journal lies at path that playBack would have something to do with. Throws Error: io, noPermission.
    static bool waits(const std::string& path);
    /// Brings file back to its last committed state if a journal lies at path, and removes the journal.
    /// Throws Error: corrupt for a journal that can't be this file's as it is now, io, noPermission.
    static void playBack(const std::string& path, File& file);

  private:
    void appendBatch(std::uint32_t fileLength, std::span<const PageImage> originals, std::span<const PageImage> changed,
                     std::vector<std::uint64_t>& places);

    std::string path_;
    const File& owner_;
    std::uint32_t mark_;          // of the owner
    std::unique_ptr<File> file_;  // made with the first batch
    std::uint64_t salt_;
    std::uint32_t batches_ = 0;
    std::uint64_t end_ = 0;
    std::vector<std::uint8_t> buffer_;
};

}  // namespace jet
