#include "accessdriver/jet/making/maker.h"

#include <unistd.h>

#include "accessdriver/jet/failure.h"
#include "accessdriver/jet/making/systemTables.h"
#include "accessdriver/jet/records/text.h"
#include "accessdriver/jet/storage/header.h"
#include "accessdriver/jet/storage/sharedFile.h"
#include "accessdriver/jet/storage/usageMapRow.h"

namespace jet {

namespace {

// Page 0 and page 1: the header and the map of free pages, in which everything from page 2 on is free.
void writeFirstPages(const std::string& path, const std::string& password) {
    const std::u16string units = utf16FromUtf8(password);
    if (units.size() > maxPasswordUnits) throw Error(Fault::badValue, "A password has at most 20 characters.");
    File file(path, File::Mode::createIfMissing);
    file.truncate(0);
    std::vector<std::uint8_t> bytes(2 * pageSize);
    writeHeader(PageBytes(bytes.data(), pageSize), units, creationDate);

    const PageBytes page(bytes.data() + pageSize, pageSize);
    constexpr std::uint32_t globalMapOwner = 1;
    constexpr std::size_t mapSize = usageMapRow::usualSize, rows = 2;
    dataPage::format(page, globalMapOwner);
    putU16(page, dataPage::slotCountAt, rows);
    for (std::size_t row = 0; row < rows; ++row) {
        putU16(page, dataPage::slotsAt + row * dataPage::slotSize, pageSize - (row + 1) * mapSize);
    }
    putU16(page, dataPage::freeBytesAt, dataPage::emptyFree - rows * (mapSize + dataPage::slotSize));
    const std::size_t bits = pageSize - mapSize + usageMapRow::inlineBitsAt;
    std::fill(page.begin() + static_cast<std::ptrdiff_t>(bits), page.end(), std::uint8_t{0xFF});
    page[bits] = 0xFC;
    file.writeAt(0, ByteSpan(bytes));
}

}  // namespace

void makeFile(const std::string& path, const MakeOptions& options) {
    ::unlink(path.c_str());
    // The journal of an earlier file of that name has nothing to say about this one.
    ::unlink((path + "-jetjournal").c_str());
    writeFirstPages(path, options.password);
    std::shared_ptr<SharedFile> file = SharedFile::attach(path, OpenOptions::Access::write);
    try {
        PageAccess pages(file->pager());
        PageAccess::Statement statement(pages);
        makeSystemTables(pages);
        for (const TableSpec& table : options.tables) enterTable(pages, table);
        for (const Relationship& relationship : options.relationships) enterRelationship(pages, relationship);
        statement.finish();
        pages.commit();
        file->noteCommit();
        file->sync();
    } catch (...) {
        SharedFile::detach(file);
        ::unlink(path.c_str());
        throw;
    }
    SharedFile::detach(file);
}

}  // namespace jet
