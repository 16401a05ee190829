// Files grow past the sizes at which usage maps change their form.

#include "accessdriver/jet/storage/dataPage.h"
#include "accessdriver/jet/storage/usageMapRow.h"
#include "accessdriver/jet/tables/tableStore.h"
#include "accessdriver/jet/tests/fixture.h"

namespace jet::test {
namespace {

class GrowthTest : public FileTest {
  protected:
    GrowthTest() {
        makeFile(
            path,
            {"",
             {{"t",
               {{"id", ColumnType::longInteger, 0, true, true},
                {"s", ColumnType::text, 255, false, false},
                {"blob", ColumnType::ole, 0, false, false}},
               {{"PrimaryKey", {"id"}, true, true, false, true, {}}, {"s", {"s"}, false, false, false, false, {}}}}}});
    }

    // Grows the file to the size by rows of about two pages each.
    void growTo(Database& database, std::uint64_t size) {
        for (; std::filesystem::file_size(path) < size; database.commit()) {
            for (int i = 0; i < 100; ++i, ++rows_) {
                insert(database, "t", {Value{}, longText(200, rows_), Bytes(6000, static_cast<std::uint8_t>(rows_))});
            }
        }
    }

    std::uint8_t formOfGlobalMap() const {
        const std::string page = readWhole(path).substr(pageSize, pageSize);
        const ByteSpan bytes(reinterpret_cast<const std::uint8_t*>(page.data()), page.size());
        return bytes[getU16(bytes, dataPage::slotsAt)];
    }

    const std::string path = folder.file("large.mdb");
    int rows_ = 0;
};

TEST_F(GrowthTest, past2And16MiB) {
    const auto database = Database::open(path, "");
    for (const std::uint64_t mebibytes : {1, 3, 17}) {
        growTo(*database, mebibytes << 20);
        EXPECT_EQ(findings(*database), "") << mebibytes;
    }
    EXPECT_EQ(formOfGlobalMap(), usageMapRow::inlineKind);
    const auto rows = rowsOf(*database, "t");
    ASSERT_EQ(rows.size(), static_cast<std::size_t>(rows_));
    for (const Row& row : rows) {
        const int n = std::get<std::int32_t>(row[0]) - 1;
        ASSERT_EQ(row[1], Value(longText(200, n)));
        ASSERT_EQ(row[2], Value(Bytes(6000, static_cast<std::uint8_t>(n))));
    }
    const auto count = outputOf("mdb-count " + path + " t");
    if (count) {
        EXPECT_EQ(*count, std::to_string(rows_) + "\n");
    }
}

// The map is the last row of bytes on its page, so that a bit set beyond it would lie outside of the page.
TEST_F(GrowthTest, aMapWithRoomForNoPageAtAll) {
    RowPointer owned;
    {
        const auto database = Database::open(path, "");
        owned = database->store(database->table("t")).definition().owned;
    }
    ASSERT_EQ(owned.row, 0);
    std::string file = readWhole(path);
    const std::span bytes(reinterpret_cast<std::uint8_t*>(file.data()) + owned.page * pageSize, pageSize);
    const std::size_t start = pageSize - usageMapRow::inlineBitsAt;
    putU16(bytes, dataPage::slotsAt, start);
    std::fill(bytes.begin() + static_cast<std::ptrdiff_t>(start), bytes.end(), std::uint8_t{0});
    writeWhole(path, file);
    const auto database = Database::open(path, "");
    for (int n = 0; n < 100; ++n) insert(*database, "t", {Value{}, longText(200, n), Value{}});
    EXPECT_EQ(rowsOf(*database, "t").size(), 100U);
    EXPECT_EQ(findings(*database), "");
}

// A hole in the file stands for what was in it, so that the end of the format is reached at once.
TEST_F(GrowthTest, upTo2GiBAndNoFurther) {
    constexpr std::uint64_t limit = 0x80000000;
    std::filesystem::resize_file(path, limit - 200 * pageSize);
    const auto database = Database::open(path, "");
    Refusal refusal;
    for (int i = 0; i < 500 && !refusal.fault; ++i) {
        refusal = refusalOf([&] { insert(*database, "t", {Value{}, longText(200, i), Bytes(6000)}); });
        rows_ += refusal.fault ? 0 : 1;
    }
    EXPECT_EQ(refusal.fault, Fault::io);
    EXPECT_NE(refusal.text.find("2 GiB"), std::string::npos) << refusal.text;
    EXPECT_GT(rows_, 50);
    database->commit();
    EXPECT_LE(std::filesystem::file_size(path), limit);
    EXPECT_EQ(findings(*database), "");
    EXPECT_EQ(rowsOf(*database, "t").size(), static_cast<std::size_t>(rows_));
}

}  // namespace
}  // namespace jet::test
