#include "accessdriver/jet/storage/journal.h"

#include <algorithm>
#include <array>
#include <random>
#include <unistd.h>

#include "accessdriver/jet/failure.h"

namespace jet {

namespace {

// Batch. Integers are little-endian.
//   offset  size  field
//        0     8  signature
//        8     8  salt of the transaction
//       16     4  number of the batch, from 0
//       20     4  record count n
//       24     4  pages of the file before the transaction
//       28     4  mark of the file: checksum of its first page
//       32     8  checksum of bytes 0..31 and all records
//       40  n * 4104  records: page number (4), 0 (4), the page
constexpr std::size_t signatureAt = 0, saltAt = 8, numberAt = 16, countAt = 20, fileLengthAt = 24, markAt = 28,
                      checksumAt = 32, recordsAt = 40;
constexpr std::size_t recordPageAt = 0, recordBytesAt = 8, recordSize = recordBytesAt + pageSize;
static_assert(recordsAt == checksumAt + 8);
constexpr std::uint64_t signature = 0x314c4e524a544554ULL;  // frozen
constexpr std::size_t maxRecords = 256;
// A journal that has grown beyond this is cut when its transaction ends.
constexpr std::uint64_t keptSize = 4U << 20;

// Four independent lanes, so that the multiplications overlap: this runs over every page of every commit.
std::uint64_t checksumOf(ByteSpan head, ByteSpan records) {
    constexpr std::uint64_t factor = 0x9e3779b97f4a7c15ULL;
    std::uint64_t lanes[4] = {1, 2, 3, 4};
    const auto add = [&](ByteSpan bytes) {
        for (std::size_t at = 0; at + 8 <= bytes.size(); at += 8) {
            std::uint64_t word = 0;
            std::memcpy(&word, bytes.data() + at, 8);
            std::uint64_t& lane = lanes[at / 8 % 4];
            lane = std::rotl((lane ^ word) * factor, 29);
        }
    };
    add(head);
    add(records);
    std::uint64_t sum = records.size();
    for (const std::uint64_t lane : lanes) sum = std::rotl((sum ^ lane) * factor, 31);
    return sum;
}

std::uint32_t markOf(const File& file) {
    std::array<std::uint8_t, pageSize> first = {};
    if (!file.readAt(0, first)) throw Error(Fault::corrupt, "The file " + file.path() + " has no whole first page.");
    return static_cast<std::uint32_t>(checksumOf({}, first));
}

// A batch that was read back; what it holds may still be meant for another file.
struct Batch {
    std::uint64_t salt = 0;
    std::uint32_t fileLength = 0;
    std::uint32_t mark = 0;
    std::vector<std::uint8_t> records;
};

// Replaces batch by the next one, which lies at `at`; false, and batch as it was but for its records, if there is none
// that is whole.
bool readBatch(const File& journal, std::uint64_t at, std::uint32_t number, Batch& batch) {
    std::array<std::uint8_t, recordsAt> head;
    if (!journal.readAt(at, head) || getU64(head, signatureAt) != signature) return false;
    const std::uint32_t count = getU32(head, countAt);
    if (getU32(head, numberAt) != number || count > maxRecords) return false;
    if (number > 0 && getU64(head, saltAt) != batch.salt) return false;
    batch.records.resize(count * recordSize);
    if (!journal.readAt(at + recordsAt, batch.records)) return false;
    if (getU64(head, checksumAt) != checksumOf(ByteSpan(head).first(checksumAt), batch.records)) return false;
    batch.salt = getU64(head, saltAt);
    batch.fileLength = getU32(head, fileLengthAt);
    batch.mark = getU32(head, markAt);
    return true;
}

// A transaction only ever lengthens its file, and has originals of pages that were there before it.
bool fits(const Batch& batch, std::uint64_t fileSize) {
    if (batch.fileLength == 0 || std::uint64_t{batch.fileLength} * pageSize > fileSize) return false;
    for (std::size_t record = 0; record < batch.records.size(); record += recordSize) {
        if (getU32(batch.records, record + recordPageAt) >= batch.fileLength) return false;
    }
    return true;
}

[[noreturn]] void failForeign(const std::string& path, const File& file) {
    throw Error(Fault::corrupt, "The rollback journal " + path + " does not belong to the file " + file.path() +
                                    " as it is now. If the file was replaced, move the journal away and try again.");
}

}  // namespace

Journal::Journal(std::string path, const File& file) : path_(std::move(path)), owner_(file), mark_(markOf(file)) {
    std::random_device random;
    salt_ = static_cast<std::uint64_t>(random()) << 32 | random();
}

Journal::~Journal() {
    try {
        // The folder may hold another file of our file's name by now, with a journal of its own.
        if (file_ && !active() && file_->isAtItsPath()) ::unlink(path_.c_str());
    } catch (const Error&) {
        // A journal whose transaction has ended does no harm.
    }
}

std::vector<std::uint64_t> Journal::append(std::uint32_t fileLength, const std::vector<OriginalPage>& originals) {
    if (!file_) file_ = std::make_unique<File>(path_, File::Mode::createIfMissing, owner_.permissions());
    std::vector<std::uint64_t> places;
    std::span<const OriginalPage> left = originals;
    // No originals (only new pages): still one batch, since it carries the length to go back to.
    do {
        const std::size_t count = std::min(left.size(), maxRecords);
        appendBatch(fileLength, left.first(count), places);
        left = left.subspan(count);
    } while (!left.empty());
    return places;
}

void Journal::appendBatch(std::uint32_t fileLength, std::span<const OriginalPage> originals,
                          std::vector<std::uint64_t>& places) {
    buffer_.assign(recordsAt, 0);
    buffer_.resize(recordsAt + originals.size() * recordSize);
    putU64(buffer_, signatureAt, signature);
    putU64(buffer_, saltAt, salt_);
    putU32(buffer_, numberAt, batches_);
    putU32(buffer_, countAt, static_cast<std::uint32_t>(originals.size()));
    putU32(buffer_, fileLengthAt, fileLength);
    putU32(buffer_, markAt, mark_);
    for (std::size_t i = 0; i < originals.size(); ++i) {
        const std::size_t at = recordsAt + i * recordSize;
        putU64(buffer_, at + recordPageAt, originals[i].page);
        std::memcpy(buffer_.data() + at + recordBytesAt, originals[i].bytes.data(), pageSize);
        places.push_back(end_ + at + recordBytesAt);
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
    Batch first;
    return readBatch(File(path, File::Mode::readOnly), 0, 0, first);
}

void Journal::playBack(const std::string& path, File& file) {
    if (::access(path.c_str(), F_OK) != 0) return;
    {
        const File journal(path, File::Mode::existing);
        const std::uint32_t mark = markOf(file);
        Batch batch;
        std::uint64_t at = 0;
        std::uint32_t number = 0;
        for (; readBatch(journal, at, number, batch); ++number) {
            if (batch.mark != mark || !fits(batch, file.size())) failForeign(path, file);
            for (std::size_t record = 0; record < batch.records.size(); record += recordSize) {
                const std::uint64_t page = getU32(batch.records, record + recordPageAt);
                file.writeAt(page * pageSize, ByteSpan(batch.records).subspan(record + recordBytesAt, pageSize));
            }
            at += recordsAt + batch.records.size();
        }
        if (number > 0) {
            file.truncate(std::uint64_t{batch.fileLength} * pageSize);
            file.sync();
        }
    }
    if (::unlink(path.c_str()) != 0) {
        throw Error(Fault::noPermission, "The rollback journal " + path + " can't be removed.");
    }
}

}  // namespace jet
