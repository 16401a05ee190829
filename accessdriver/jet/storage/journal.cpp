#include "accessdriver/jet/storage/journal.h"

#include <algorithm>
#include <array>
#include <optional>
#include <random>
#include <unistd.h>
#include <unordered_map>

#include "accessdriver/jet/failure.h"

namespace jet {

namespace {

// Batch. Integers are little-endian.
//   offset  size  field
//        0     8  signature
//        8     8  salt of the transaction
//       16     4  number of the batch, from 0
//       20     4  record count n
//       24     4  print count m
//       28     4  pages of the file before the transaction
//       32     4  mark of the file: checksum of its first page
//       36     4  0
//       40     8  checksum of bytes 0..39 and everything behind the head
//       48  n * 4104  records: page number (4), 0 (4), the page
//           m *   40  prints: page number (4), 0 (4), checksums of the sectors of 512 bytes (4 each)
constexpr std::size_t signatureAt = 0, saltAt = 8, numberAt = 16, countAt = 20, printCountAt = 24, fileLengthAt = 28,
                      markAt = 32, checksumAt = 40, recordsAt = 48;
constexpr std::size_t recordPageAt = 0, recordBytesAt = 8, recordSize = recordBytesAt + pageSize;
constexpr std::size_t sectorSize = 512, sectors = pageSize / sectorSize;
constexpr std::size_t printPageAt = 0, sumsAt = 8, sumSize = 4, printSize = sumsAt + sectors * sumSize;
static_assert(recordsAt == checksumAt + 8 && printSize == 40);
constexpr std::uint64_t signature = 0x334c4e524a544554ULL;  // "TETJRNL3", counted up with the form
constexpr std::size_t maxRecords = 256;
// A journal that has grown beyond this is cut when its transaction ends.
constexpr std::uint64_t keptSize = 4U << 20;

// Sums of the words and sums of these sums, in four lanes: this runs twice over every page of every commit, so it is
// nothing but additions that the processor does several at a time. Torn and foreign pages are to be told, not forged
// ones.
struct Sums {
    static constexpr std::size_t lanes = 4, stride = lanes * sizeof(std::uint64_t);
    std::uint64_t plain[lanes] = {1, 2, 3, 4}, nested[lanes] = {};

    /// Whole strides.
    void add(ByteSpan bytes) {
        Sums sums = *this;
        for (std::size_t at = 0; at < bytes.size(); at += stride) {
            std::uint64_t words[lanes];
            std::memcpy(words, bytes.data() + at, stride);
            for (std::size_t lane = 0; lane < lanes; ++lane) sums.plain[lane] += words[lane];
            for (std::size_t lane = 0; lane < lanes; ++lane) sums.nested[lane] += sums.plain[lane];
        }
        *this = sums;
    }
};

std::uint64_t checksumOf(ByteSpan head, ByteSpan records) {
    Sums sums;
    for (const ByteSpan bytes : {head, records}) {
        const ByteSpan rest = bytes.last(bytes.size() % Sums::stride);
        sums.add(bytes.first(bytes.size() - rest.size()));
        if (rest.empty()) continue;
        std::array<std::uint8_t, Sums::stride> filled = {};
        std::copy(rest.begin(), rest.end(), filled.begin());
        sums.add(filled);
    }
    constexpr std::uint64_t factor = 0x9e3779b97f4a7c15ULL;
    std::uint64_t sum = records.size();
    for (std::size_t lane = 0; lane < Sums::lanes; ++lane) {
        sum = std::rotl((sum ^ sums.plain[lane]) * factor, 31);
        sum = std::rotl((sum ^ sums.nested[lane]) * factor, 31);
    }
    return sum;
}

std::uint32_t markOf(const File& file) {
    std::array<std::uint8_t, pageSize> first = {};
    if (!file.readAt(0, first)) throw Error(Fault::corrupt, "The file " + file.path() + " has no whole first page.");
    return static_cast<std::uint32_t>(checksumOf({}, first));
}

using Print = std::array<std::uint32_t, sectors>;

Print printOf(ByteSpan page) {
    Print print;
    for (std::size_t i = 0; i < sectors; ++i) {
        print[i] = static_cast<std::uint32_t>(checksumOf({}, page.subspan(i * sectorSize, sectorSize)));
    }
    return print;
}

// A batch that was read back; what it holds may still be meant for another file.
struct Batch {
    std::uint64_t salt = 0;
    std::uint32_t fileLength = 0;
    std::uint32_t mark = 0;
    std::size_t records = 0;
    std::vector<std::uint8_t> body;

    ByteSpan record(std::size_t i) const { return ByteSpan(body).subspan(i * recordSize, recordSize); }
    std::size_t prints() const { return (body.size() - records * recordSize) / printSize; }
    ByteSpan print(std::size_t i) const {
        return ByteSpan(body).subspan(records * recordSize + i * printSize, printSize);
    }
};

// Whether the journal was begun by a version of the driver with another form of it. One that has ended begins with 0.
bool isOfAnotherVersion(const File& journal) {
    std::array<std::uint8_t, 8> begin = {};
    if (!journal.readAt(signatureAt, begin)) return false;
    constexpr std::uint64_t name = (std::uint64_t{1} << 56) - 1;
    const std::uint64_t found = getU64(begin, 0);
    return found != signature && (found & name) == (signature & name);
}

// Replaces batch by the next one, which lies at `at`; false, and batch as it was but for its body, if there is none
// that is whole.
bool readBatch(const File& journal, std::uint64_t at, std::uint32_t number, Batch& batch) {
    std::array<std::uint8_t, recordsAt> head;
    if (!journal.readAt(at, head) || getU64(head, signatureAt) != signature) return false;
    const std::uint32_t records = getU32(head, countAt), prints = getU32(head, printCountAt);
    if (getU32(head, numberAt) != number || records > maxRecords || prints > maxRecords) return false;
    if (number > 0 && getU64(head, saltAt) != batch.salt) return false;
    batch.body.resize(records * recordSize + prints * printSize);
    if (!journal.readAt(at + recordsAt, batch.body)) return false;
    if (getU64(head, checksumAt) != checksumOf(ByteSpan(head).first(checksumAt), batch.body)) return false;
    batch.salt = getU64(head, saltAt);
    batch.fileLength = getU32(head, fileLengthAt);
    batch.mark = getU32(head, markAt);
    batch.records = records;
    return true;
}

// Shows every whole batch of a journal, in order; returns the last one, or nothing if there is none.
template <class Visit>
std::optional<Batch> eachBatch(const File& journal, Visit visit) {
    Batch batch;
    std::uint64_t at = 0;
    std::uint32_t number = 0;
    for (; readBatch(journal, at, number, batch); ++number) {
        visit(batch);
        at += recordsAt + batch.body.size();
    }
    return number > 0 ? std::optional(std::move(batch)) : std::nullopt;
}

// A transaction only ever lengthens its file, and has originals of pages that were there before it.
bool fits(const Batch& batch, std::uint64_t fileSize) {
    if (batch.fileLength == 0 || std::uint64_t{batch.fileLength} * pageSize > fileSize) return false;
    for (std::size_t i = 0; i < batch.records; ++i) {
        if (getU32(batch.record(i), recordPageAt) >= batch.fileLength) return false;
    }
    return true;
}

// What pages may hold if nobody but the transaction has written them.
using Prints = std::unordered_map<std::uint32_t, std::vector<Print>>;

void collectPrints(const Batch& batch, Prints& prints) {
    for (std::size_t i = 0; i < batch.records; ++i) {
        prints[getU32(batch.record(i), recordPageAt)].push_back(printOf(batch.record(i).subspan(recordBytesAt)));
    }
    for (std::size_t i = 0; i < batch.prints(); ++i) {
        Print print;
        for (std::size_t sector = 0; sector < sectors; ++sector) {
            print[sector] = getU32(batch.print(i), sumsAt + sector * sumSize);
        }
        prints[getU32(batch.print(i), printPageAt)].push_back(print);
    }
}

// A page may hold sectors of several states: writing it was cut short.
bool isOneOf(const Print& print, const std::vector<Print>& known) {
    for (std::size_t sector = 0; sector < sectors; ++sector) {
        const auto same = [&](const Print& each) { return each[sector] == print[sector]; };
        if (std::none_of(known.begin(), known.end(), same)) return false;
    }
    return true;
}

// Whether the file is what the transaction may have left. A page behind the old end may not have been reached by
// writing yet: it is zero, or part of it is missing.
bool isUntouched(const File& file, std::uint32_t fileLength, Prints& prints) {
    std::array<std::uint8_t, pageSize> bytes = {};
    const Print nothing = printOf(bytes);
    const std::uint64_t size = file.size();
    for (std::uint64_t page = fileLength; page * pageSize < size; ++page) {
        prints[static_cast<std::uint32_t>(page)].push_back(nothing);
    }
    for (const auto& [page, known] : prints) {
        const std::uint64_t at = std::uint64_t{page} * pageSize;
        if (at >= size) continue;
        bytes.fill(0);
        file.readAt(at, PageBytes(bytes).first(std::min<std::uint64_t>(pageSize, size - at)));
        if (!isOneOf(printOf(bytes), known)) return false;
    }
    return true;
}

[[noreturn]] void failForeign(const std::string& path, const File& file) {
    throw Error(Fault::corrupt, "The rollback journal " + path + " does not belong to the file " + file.path() +
                                    " as it is now. If the file was replaced, move the journal away and try again.");
}

[[noreturn]] void failTouched(const std::string& path, const File& file) {
    throw Error(Fault::corrupt,
                "The file " + file.path() + " has been changed by another program since a change to it " +
                    "was cut short, so the rollback journal " + path + " can't undo that one any more. " +
                    "Keep a copy of both; without the journal the file opens as it is.");
}

[[noreturn]] void failVersion(const std::string& path, const File& file) {
    throw Error(Fault::corrupt, "The rollback journal " + path +
                                    " is of another version of this driver, which has to " + "open the file " +
                                    file.path() + " first and undo half a change in it.");
}

}  // namespace

Journal::Journal(std::string path, const File& file) : path_(std::move(path)), owner_(file), mark_(markOf(file)) {
    std::random_device random;
    salt_ = static_cast<std::uint64_t>(random()) << 32 | random();
}

Journal::~Journal() {
    try {
        // The folder may hold another file of our file's name by now, with a journal of its own.
        if (file_ && !active() && !file_->isInherited() && file_->isAtItsPath()) ::unlink(path_.c_str());
    } catch (const Error&) {
        // A journal whose transaction has ended does no harm.
    }
}

std::vector<std::uint64_t> Journal::append(std::uint32_t fileLength, const std::vector<PageImage>& originals,
                                           const std::vector<PageImage>& changed) {
    if (!file_) file_ = std::make_unique<File>(path_, File::Mode::createIfMissing, owner_.permissions());
    std::vector<std::uint64_t> places;
    std::span<const PageImage> old = originals, fresh = changed;
    const auto take = [](std::span<const PageImage>& from) {
        const auto taken = from.first(std::min(from.size(), maxRecords));
        from = from.subspan(taken.size());
        return taken;
    };
    do {
        const auto records = take(old);
        appendBatch(fileLength, records, take(fresh), places);
    } while (!old.empty() || !fresh.empty());
    return places;
}

void Journal::appendBatch(std::uint32_t fileLength, std::span<const PageImage> originals,
                          std::span<const PageImage> changed, std::vector<std::uint64_t>& places) {
    buffer_.assign(recordsAt, 0);
    buffer_.resize(recordsAt + originals.size() * recordSize + changed.size() * printSize);
    putU64(buffer_, signatureAt, signature);
    putU64(buffer_, saltAt, salt_);
    putU32(buffer_, numberAt, batches_);
    putU32(buffer_, countAt, static_cast<std::uint32_t>(originals.size()));
    putU32(buffer_, printCountAt, static_cast<std::uint32_t>(changed.size()));
    putU32(buffer_, fileLengthAt, fileLength);
    putU32(buffer_, markAt, mark_);
    std::size_t at = recordsAt;
    for (const PageImage& original : originals) {
        putU64(buffer_, at + recordPageAt, original.page);
        std::memcpy(buffer_.data() + at + recordBytesAt, original.bytes.data(), pageSize);
        places.push_back(end_ + at + recordBytesAt);
        at += recordSize;
    }
    for (const PageImage& image : changed) {
        putU64(buffer_, at + printPageAt, image.page);
        const Print print = printOf(image.bytes);
        for (std::size_t i = 0; i < sectors; ++i) putU32(buffer_, at + sumsAt + i * sumSize, print[i]);
        at += printSize;
    }
    const ByteSpan batch = buffer_;
    putU64(buffer_, checksumAt, checksumOf(batch.first(checksumAt), batch.subspan(recordsAt)));
    file_->writeAt(end_, batch);
    end_ += batch.size();
    ++batches_;
}

void Journal::read(std::uint64_t at, PageBytes to) const {
    if (!file_->readAt(at, to)) throw Error(Fault::io, "The rollback journal " + path_ + " has lost a page.");
}

void Journal::finish() {
    if (!active()) return;
    const std::uint8_t zeroes[8] = {};
    file_->writeAt(signatureAt, ByteSpan(zeroes));
    const bool large = end_ > keptSize;
    batches_ = 0;
    end_ = 0;
    ++salt_;
    if (!large) return;
    try {
        file_->truncate(0);
    } catch (const Error&) {
        // The transaction has ended all the same; a long journal only takes room.
    }
}

bool Journal::waits(const std::string& path) {
    if (::access(path.c_str(), F_OK) != 0) return false;
    const File journal(path, File::Mode::readOnly);
    Batch first;
    return isOfAnotherVersion(journal) || readBatch(journal, 0, 0, first);
}

void Journal::playBack(const std::string& path, File& file) {
    if (::access(path.c_str(), F_OK) != 0) return;
    {
        const File journal(path, File::Mode::existing);
        if (isOfAnotherVersion(journal)) failVersion(path, file);
        const std::uint32_t mark = markOf(file);
        Prints prints;
        const auto last = eachBatch(journal, [&](const Batch& batch) {
            if (batch.mark != mark || !fits(batch, file.size())) failForeign(path, file);
            collectPrints(batch, prints);
        });
        if (last) {
            if (!isUntouched(file, last->fileLength, prints)) failTouched(path, file);
            eachBatch(journal, [&](const Batch& batch) {
                for (std::size_t i = 0; i < batch.records; ++i) {
                    const std::uint64_t page = getU32(batch.record(i), recordPageAt);
                    file.writeAt(page * pageSize, batch.record(i).subspan(recordBytesAt));
                }
            });
            file.truncate(std::uint64_t{last->fileLength} * pageSize);
            file.sync();
        }
    }
    if (::unlink(path.c_str()) != 0) {
        throw Error(Fault::noPermission, "The rollback journal " + path + " can't be removed.");
    }
}

}  // namespace jet
