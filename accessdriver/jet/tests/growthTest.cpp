// Files grow past the sizes at which usage maps change their form.

#include <algorithm>
#include <random>

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

TEST_F(GrowthTest, Past2And16MiB) {
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
TEST_F(GrowthTest, AMapWithRoomForNoPageAtAll) {
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

// Long values that change, rows that come and go, and indexes that shrink leave pages that are used again, also by the
// next connection.
TEST_F(GrowthTest, UsesReleasedPagesAgain) {
    std::uint64_t early = 0;
    std::vector<RowId> rows;
    for (int round = 0; round < 1000; round += 50) {
        const auto database = Database::open(path, "");
        const TableInfo& table = database->table("t");
        for (int i = 0; i < 50; ++i) {
            for (int n = 0; n < 20; ++n) {
                rows.push_back(insert(*database, "t", {Value{}, longText(200, n), Bytes(n == 0 ? 40000 : 300)}));
            }
            for (const RowId row : rows) update(*database, table, row, {{2, Bytes(row.slot % 5 == 0 ? 9000 : 500)}});
            if (i % 2 == 0) database->rollback();
            if (i % 2 == 1) database->remove(table, rows);
            database->commit();
            rows.clear();
        }
        EXPECT_EQ(findings(*database), "") << round;
        if (round == 50) early = std::filesystem::file_size(path);
    }
    EXPECT_LE(std::filesystem::file_size(path), early + 10 * pageSize);
    if (const auto count = outputOf("mdb-count " + path + " t")) {
        EXPECT_EQ(*count, "0\n");
    }
}

// A hole in the file stands for what was in it, so that the end of the format is reached at once.
TEST_F(GrowthTest, UpTo2GiBAndNoFurther) {
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

    // Rows can be deleted, and others take their place.
    const TableInfo& table = database->table("t");
    std::vector<RowId> half;
    for (auto cursor = database->scan(table); cursor->next();) {
        if (std::get<std::int32_t>(cursor->value(0)) % 2 == 0) half.push_back(cursor->rowId());
    }
    database->remove(table, half);
    database->commit();
    EXPECT_EQ(findings(*database), "");
    for (std::size_t i = 0; i < half.size() / 2; ++i) insert(*database, "t", {Value{}, Value{}, Bytes(6000)});
    database->commit();
    EXPECT_EQ(findings(*database), "");
}

TEST_F(GrowthTest, RefusesAFileOfMoreThan2GiB) {
    for (const std::uint64_t more : {0, 1}) {
        std::filesystem::resize_file(path, 0x80000000 + more * pageSize);
        EXPECT_EQ(refusalOfOpen(path).fault, more == 0 ? std::nullopt : std::optional(Fault::corrupt));
    }
}

// Nothing but a hole lies behind the table, up to the last page that a file can have.
TEST_F(GrowthTest, RowsAreDeletedFromAFullFile) {
    std::vector<RowId> rows;
    {
        const auto database = Database::open(path, "");
        for (int n = 0; n < 3000; ++n) rows.push_back(insert(*database, "t", {Value{}, longText(n % 200, n), Value{}}));
        database->commit();
    }
    std::filesystem::resize_file(path, 0x80000000);
    const auto database = Database::open(path, "");
    std::mt19937 random(1);
    std::shuffle(rows.begin(), rows.end(), random);
    for (const RowId& row : rows) database->remove(database->table("t"), std::span(&row, 1));
    database->commit();
    EXPECT_EQ(findings(*database), "");
    EXPECT_EQ(rowsOf(*database, "t").size(), 0U);
}

}  // namespace
}  // namespace jet::test
