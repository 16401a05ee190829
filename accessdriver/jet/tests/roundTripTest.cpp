#include "accessdriver/jet/making/cavTables.h"
#include "accessdriver/jet/tests/fixture.h"

namespace jet::test {
namespace {

using RoundTripTest = FileTest;

TEST_F(RoundTripTest, EveryTypeComesBackFromItsFile) {
    const std::string path = folder.file("types.mdb");
    makeFile(path, {"", {everyType()}});
    std::vector<Row> expected;
    {
        const auto database = Database::open(path, "");
        for (int n = 0; n < 600; ++n) {
            Row row = everyTypeRow(n);
            insert(*database, "Everything", row);
            row[0] = std::int32_t{n + 1};
            expected.push_back(std::move(row));
        }
        EXPECT_EQ(rowsOf(*database, "everything"), expected);
        database->commit();
    }
    const auto database = Database::open(path, "a password that the file does not have");
    EXPECT_EQ(rowsOf(*database, "everything"), expected);
    EXPECT_EQ(findings(*database), "");
}

TEST_F(RoundTripTest, LongValuesOfEverySizeAtTheEdges) {
    const std::string path = folder.file("memos.mdb");
    TableSpec table{"memos",
                    {{"id", ColumnType::longInteger, 0, true, true},
                     {"packed", ColumnType::memo, 0, false, true},
                     {"plain", ColumnType::memo, 0, false, false},
                     {"blob", ColumnType::ole, 0, false, false}},
                    {{"PrimaryKey", {"id"}, true, true, false, true, {}}}};
    makeFile(path, {"", {table}});
    const auto database = Database::open(path, "");
    std::vector<Row> expected;
    for (const std::size_t size :
         {0,    1,    2,    3,    31,   32,   33,   61,   62,   63,   64,   65,   1023,  1024,
          1025, 2037, 2038, 2039, 4071, 4072, 4073, 4075, 4076, 4077, 8144, 8145, 20000, 100000}) {
        const int seed = static_cast<int>(size);
        Row row = {static_cast<std::int32_t>(expected.size() + 1), longText(size, seed),
                   longText(size, seed, size % 2 == 0), Bytes(size, static_cast<std::uint8_t>(size))};
        insert(*database, "memos", row);
        expected.push_back(std::move(row));
    }
    EXPECT_EQ(rowsOf(*database, "memos"), expected);
    database->commit();
    EXPECT_EQ(findings(*database), "");

    // Each changes its size: grown, shrunk, gone, back.
    const TableInfo& info = database->table("memos");
    std::vector<RowId> ids;
    for (auto cursor = database->scan(info); cursor->next();) ids.push_back(cursor->rowId());
    for (std::size_t i = 0; i < ids.size(); ++i) {
        Row& row = expected[i];
        row[1] = longText((i * 1777) % 9000, 3);
        row[2] = Value{};
        if (i % 3 == 0) row[3] = Bytes(i * 100, std::uint8_t{7});
        const std::vector<Assignment> changes = {{1, row[1]}, {2, row[2]}, {3, row[3]}};
        update(*database, info, ids[i], changes);
    }
    database->commit();
    EXPECT_EQ(rowsOf(*database, "memos"), expected);
    EXPECT_EQ(findings(*database), "");
}

TEST_F(RoundTripTest, RefusedValuesLeaveNothingBehind) {
    const std::string path = folder.file("types.mdb");
    makeFile(path, {"", {everyType()}});
    const auto database = Database::open(path, "");
    const RowId row = insert(*database, "everything", everyTypeRow(1));
    const auto before = rowsOf(*database, "everything");
    const struct {
        std::size_t column;
        Value value;
        Fault fault;
    } cases[] = {
        {1, std::int32_t{1}, Fault::badValue},
        {2, std::int32_t{256}, Fault::badValue},
        {2, std::int32_t{-1}, Fault::badValue},
        {3, std::int32_t{32768}, Fault::badValue},
        {4, 1.5, Fault::badValue},
        {4, std::string("1"), Fault::badValue},
        {5, 3.0, Fault::badValue},
        {6, 1e39, Fault::badValue},
        {7, std::nan(""), Fault::badValue},
        {8, DateTime{2958466}, Fault::badValue},
        {8, DateTime{-657435}, Fault::badValue},
        {9, std::string(101, 'x'), Fault::tooLong},
        {9, std::string("a\xFF"), Fault::badValue},
        {9, std::string("\xED\xA0\x80"), Fault::badValue},
        {11, std::string("\xEF\xBB\xBFmark"), Fault::badValue},
        {12, Bytes(41), Fault::tooLong},
        {14, std::string(), Fault::badValue},
        {0, std::int32_t{1}, Fault::duplicateKey},
    };
    for (const auto& each : cases) {
        const std::vector<Assignment> values = {{13, Bytes(9000, std::uint8_t{1})}, {each.column, each.value}};
        const TableInfo& info = database->table("everything");
        EXPECT_EQ(refusalOf([&] { database->insert(info, values); }).fault, each.fault) << each.column;
        if (each.column != 0) {
            EXPECT_EQ(refusalOf([&] { update(*database, info, row, values); }).fault, each.fault) << each.column;
        }
        EXPECT_EQ(rowsOf(*database, "everything"), before) << each.column;
    }
    const std::vector<Assignment> noKey = {{0, Value{}}};
    EXPECT_EQ(refusalOf([&] { update(*database, database->table("everything"), row, noKey); }).fault,
              Fault::nullNotAllowed);
    // The numbers of refused rows are given out again, and 100 characters of two bytes each fit.
    const RowId next = insert(*database, "everything", {{}, true, {}, {}, {}, {}, {}, {}, {}, longText(100, 1)});
    EXPECT_EQ(database->fetch(database->table("everything"), next)->value(0), Value(std::int32_t{2}));
    database->commit();
    EXPECT_EQ(findings(*database), "");
}

TEST_F(RoundTripTest, RowsThatDoNotFitAPage) {
    const std::string path = folder.file("wide.mdb");
    TableSpec table{"wide", {}, {}};
    for (int i = 0; i < 9; ++i)
        table.columns.push_back({std::string("t").append(std::to_string(i)), ColumnType::text, 255, false, false});
    for (int i = 0; i < 9; ++i)
        table.columns.push_back({std::string("m").append(std::to_string(i)), ColumnType::memo, 0, false, false});
    makeFile(path, {"", {table}});
    const auto database = Database::open(path, "");
    Row row(18);
    // Inline memos make room by moving out of the row.
    for (std::size_t i = 0; i < 7; ++i) row[i] = longText(255, 1);
    for (std::size_t i = 9; i < 18; ++i) row[i] = longText(30, static_cast<int>(i));
    const RowId id = insert(*database, "wide", row);
    EXPECT_EQ(rowsOf(*database, "wide").at(0), row);
    row[7] = row[8] = longText(255, 2);
    EXPECT_EQ(refusalOf([&] { insert(*database, "wide", row); }).fault, Fault::tooLong);
    const std::vector<Assignment> grown = {{7, row[7]}, {8, row[8]}};
    EXPECT_EQ(refusalOf([&] { update(*database, database->table("wide"), id, grown); }).fault, Fault::tooLong);
    database->commit();
    EXPECT_EQ(rowsOf(*database, "wide").size(), 1U);
    EXPECT_EQ(findings(*database), "");
}

TEST_F(RoundTripTest, UpdatesThatOutgrowTheirPageMoveAndComeBack) {
    const std::string path = folder.file("moves.mdb");
    TableSpec table{
        "moves",
        {{"id", ColumnType::longInteger, 0, true, true}, {"text", ColumnType::text, 255, false, false}},
        {{"PrimaryKey", {"id"}, true, true, false, true, {}}, {"text", {"text"}, false, false, false, false, {}}}};
    makeFile(path, {"", {table}});
    const auto database = Database::open(path, "");
    std::vector<RowId> ids;
    std::vector<Row> expected;
    for (int i = 0; i < 500; ++i) {
        ids.push_back(insert(*database, "moves", {{}, std::string("short")}));
        expected.push_back({i + 1, std::string("short")});
    }
    const TableInfo& info = database->table("moves");
    // Sizes go up and down, so that moved rows are moved again, grow in place and shrink.
    for (int round = 0; round < 6; ++round) {
        for (std::size_t i = 0; i < ids.size(); ++i) {
            const std::size_t size = (i * 97 + static_cast<std::size_t>(round) * 131) % 256;
            expected[i][1] = longText(size, round);
            const std::vector<Assignment> change = {{1, expected[i][1]}};
            update(*database, info, ids[i], change);
        }
        database->commit();
        EXPECT_EQ(rowsOf(*database, "moves"), expected);
        EXPECT_EQ(findings(*database), "") << round;
    }
    EXPECT_EQ(database->fetch(info, ids[77])->value(1), expected[77][1]);
    EXPECT_EQ(database->fetch(info, {1, 0}), nullptr);
    EXPECT_EQ(database->fetch(info, {0xFFFFFF, 255}), nullptr);
}

// Such a row is shorter than the pointer that takes the place of a row that moves.
TEST_F(RoundTripTest, RowsOfNothingButYesAndNo) {
    const std::string path = folder.file("flags.mdb");
    const auto flag = [](const char* name) { return ColumnSpec{name, ColumnType::boolean, 0, false, true}; };
    makeFile(path, {"", {{"flags", {flag("a"), flag("b"), flag("c")}, {}}}});
    const auto database = Database::open(path, "");
    std::vector<Row> expected;
    for (int i = 0; i < 700; ++i) {
        expected.push_back({i % 2 == 0, i % 3 == 0, false});
        const RowId row = insert(*database, "flags", expected.back());
        const std::vector<Assignment> change = {{2, true}};
        if (i % 5 != 0) continue;
        update(*database, database->table("flags"), row, change);
        expected.back()[2] = true;
    }
    EXPECT_EQ(rowsOf(*database, "flags"), expected);
    EXPECT_EQ(findings(*database), "");
}

TEST_F(RoundTripTest, SamplesTakeRowsAndUpdates) {
    for (const char* name : {"empty.cav", "empty-nopassword.cav", "alltext.cav", "filled.cav"}) {
        const std::string path = copyOfShared(folder, name);
        if (path.empty()) GTEST_SKIP() << "the sample CAV files are not on this machine";
        const auto database = Database::open(path, cavPassword);
        const auto contacts = rowsOf(*database, "contacts");
        const TableInfo& tree = database->table("tree");
        const std::size_t before = rowsOf(*database, "tree").size();
        std::vector<RowId> ids;
        for (int i = 0; i < 300; ++i) {
            ids.push_back(
                insert(*database, "tree", {{}, "animal " + std::to_string(i * 7919 % 300), std::string("brown")}));
        }
        for (const RowId id : ids) {
            const std::vector<Assignment> change = {{1, std::string("renamed")},
                                                    {7, std::string(50, 'f')},
                                                    {16, longText(tree.columns[16].length == 0 ? 5000 : 200, 1)}};
            update(*database, tree, id, change);
        }
        database->commit();
        EXPECT_EQ(rowsOf(*database, "tree").size(), before + 300);
        EXPECT_EQ(rowsOf(*database, "contacts"), contacts);
        EXPECT_EQ(findings(*database), "") << name;
    }
}

}  // namespace
}  // namespace jet::test
