#include <algorithm>
#include <random>

#include "accessdriver/jet/checking/checkPages.h"
#include "accessdriver/jet/indexes/indexKey.h"
#include "accessdriver/jet/indexes/indexPage.h"
#include "accessdriver/jet/indexes/textKey.h"
#include "accessdriver/jet/records/text.h"
#include "accessdriver/jet/tests/fixture.h"

namespace jet::test {
namespace {

class IndexTest : public FileTest {
  protected:
    const std::string path = folder.file("index.mdb");
};

std::string hex(ByteSpan bytes) {
    std::string text;
    for (const std::uint8_t byte : bytes) {
        constexpr char digits[] = "0123456789abcdef";
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

std::string textKeyOf(const std::string& text) {
    std::vector<std::uint8_t> key;
    appendTextKey(utf16FromUtf8(text), key);
    return hex(key);
}

// Keys that Access itself stored, and that the published format notes list.
TEST(TextKeyTest, AgreesWithKnownKeys) {
    EXPECT_EQ(textKeyOf("admin"), "4a4f6059620100");
    EXPECT_EQ(textKeyOf("ADMIN  "), "4a4f6059620100");
    EXPECT_EQ(textKeyOf("ümlaut"), "6f605e4a6f6d011300");
    EXPECT_EQ(textKeyOf("ääkkösiä"), "4a4a5c5c646b594a01131302021302021300");
    EXPECT_EQ(textKeyOf("lots of stuff"), "5e646d6b076453076b6d6f53530100");
    EXPECT_EQ(textKeyOf("O'Malley"), "64604a5e5e517601010101800b068000");
    EXPECT_EQ(textKeyOf("a-b-c"), "4a4c4d01010101800b0682800f068200");
    EXPECT_EQ(textKeyOf("'a"), "4a010101018007068000");
    EXPECT_EQ(textKeyOf("é-"), "51010e010101800b068200");
    EXPECT_EQ(textKeyOf("D'Artagnan é"), "4f4a696d4a55624a62075101020202020202020202020e010101800b068000");
    EXPECT_EQ(textKeyOf("Æ"), "4a510100");
    EXPECT_EQ(textKeyOf("Straße"), "6b6d694a6b6b510100");
    EXPECT_EQ(textKeyOf(""), "0100");
    // Further scripts, by the published table: letters, several accents, both Japanese alphabets, halves of pairs.
    EXPECT_EQ(textKeyOf("Снежок"), "7949794479367938794679400100");
    EXPECT_EQ(textKeyOf("Ωmega"), "79236051554a0100");
    EXPECT_EQ(textKeyOf("兎"), "a2760100");
    EXPECT_EQ(textKeyOf("Paw 🐾"), "664a7307b03fb53801020202023f3f00");
    EXPECT_EQ(textKeyOf("Việt"), "7159516d0102026a00");
    EXPECT_EQ(textKeyOf("한"), "ab750100");
    EXPECT_EQ(textKeyOf("うさぎ"), "7f047f127f0b010202030101ff0280ff8000");
    EXPECT_EQ(textKeyOf("ラビット-"), "7f427f2b7f1c7f1e0102030101beff0280ff80ff018017068200");
    // Accents that combine with the letter before them, or with none.
    EXPECT_EQ(textKeyOf("a\u0301b"), "4a4c010e00");
    EXPECT_EQ(textKeyOf("\u0301a-b"), "4a4c010c010101800b068200");
}

// Each character of the basic plane begins a name, and a thousand beyond it.
TEST_F(IndexTest, HoldsNamesOfAllScripts) {
    makeFile(path, {"",
                    {{"t",
                      {{"name", ColumnType::text, 50, false, true}},
                      {{"up", {"name"}, false, false, false, false, {}},
                       {"down", {"name"}, false, false, false, false, {true}}}}}});
    const std::u16string ends[] = {u"", u" 🐾", u"-ko", u"\u0301", u" Снежок", u"うさぎ", u"é"};
    const auto database = Database::open(path, "");
    const TableInfo& table = database->table("t");
    std::size_t names = 0;
    for (unsigned code = 0x21; code < 0x103E8; ++code) {
        if (code >= 0xD800 && code < 0xE000) continue;
        if (code == 0xFEFF) continue;  // no text of the format can begin with it
        std::u16string name;
        if (code > 0xFFFF)
            name = {char16_t(0xD83D), char16_t(0xDC00 + (code & 0x3FF))};
        else
            name = {char16_t(code)};
        name += ends[code % std::size(ends)];
        const Assignment values[] = {{0, utf8FromUtf16(name)}};
        if (refusalOf([&] { database->insert(table, values); }).fault) ADD_FAILURE() << "U+" << std::hex << code;
        ++names;
    }
    database->commit();
    EXPECT_GE(names, 60000U);
    EXPECT_EQ(rowsOf(*database, "t").size(), names);
    EXPECT_EQ(findings(*database), "");
}

// The key that the only row of a one-column table gets in an index over that column.
std::string storedKey(const TempFolder& folder, ColumnType type, const Value& value, bool descending) {
    const std::string path = folder.file("key.mdb");
    makeFile(path,
             {"", {{"t", {{"c", type, 20, false, true}}, {{"i", {"c"}, false, false, false, false, {descending}}}}}});
    const auto database = Database::open(path, "");
    insert(*database, "t", {value});
    const TableDefinition& table = database->store(database->table("t")).definition();
    const PageRef root = database->pages().read(table.indexes[0].root);
    return hex(keyOf(decodeEntries(root).at(0).text));
}

TEST_F(IndexTest, KeysOfEveryType) {
    const struct {
        ColumnType type;
        Value value;
        const char* ascending;
        const char* descending;
    } cases[] = {
        {ColumnType::byte, 0, "7f00", "80ff"},
        {ColumnType::integer, -2, "7f7ffe", "808001"},
        {ColumnType::longInteger, 2, "7f80000002", "807ffffffd"},
        {ColumnType::longInteger, -5453, "7f7fffeab3", "808000154c"},
        {ColumnType::longInteger, 4813, "7f800012cd", "807fffed32"},
        {ColumnType::currency, Currency{35000}, "7f80000000000088b8", "807fffffffffff7747"},
        {ColumnType::dateTime, DateTime{40108.16473379629}, "7fc0e39585457fcf74", "803f1c6a7aba80308b"},
        {ColumnType::doubleFloat, -1.0, "7f400fffffffffffff", "80bff0000000000000"},
        {ColumnType::doubleFloat, -0.0, "7f8000000000000000", "807fffffffffffffff"},
        {ColumnType::single, 1.0, "7fbf800000", "80407fffff"},
        {ColumnType::boolean, true, "7f00", "80ff"},
        {ColumnType::boolean, false, "7fff", "8000"},
        {ColumnType::binary, Bytes{0, 0, 0, 1}, "7f000000010000000004", "80fffffffefffffffffb"},
        {ColumnType::text, std::string("Æ"), "7f4a510100", "80b5aefeff00"},
        {ColumnType::text, std::string(), "7f0100", "80feff00"},
        {ColumnType::memo, std::string("admin"), "7f4a4f6059620100", "80b5b09fa69dfeff00"},
        {ColumnType::text, Value{}, "00", "ff"},
        {ColumnType::longInteger, Value{}, "00", "ff"},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(storedKey(folder, each.type, each.value, false), each.ascending);
        EXPECT_EQ(storedKey(folder, each.type, each.value, true), each.descending);
    }
    // Only the first 255 characters of a text count.
    const std::string most(255, 'a');
    EXPECT_EQ(storedKey(folder, ColumnType::memo, most + "Ж", false), storedKey(folder, ColumnType::memo, most, false));
}

TEST_F(IndexTest, GrowsAndShrinksInEveryOrder) {
    TableSpec table{"t",
                    {{"n", ColumnType::longInteger, 0, false, true}, {"s", ColumnType::text, 255, false, true}},
                    {{"unique", {"n"}, false, true, false, false, {}},
                     {"downward", {"n"}, false, false, false, false, {true}},
                     {"text", {"s"}, false, false, false, false, {}},
                     {"both", {"s", "n"}, false, false, false, false, {true, false}}}};
    std::mt19937 random(7);
    enum class Order { rising, falling, shuffled };
    for (const Order order : {Order::rising, Order::falling, Order::shuffled}) {
        makeFile(path, {"", {table}});
        const auto database = Database::open(path, "");
        const TableInfo& info = database->table("t");
        std::vector<std::int32_t> numbers(2500);
        for (std::size_t i = 0; i < numbers.size(); ++i) numbers[i] = static_cast<std::int32_t>(i);
        if (order == Order::falling) std::reverse(numbers.begin(), numbers.end());
        if (order == Order::shuffled) std::shuffle(numbers.begin(), numbers.end(), random);
        // Long keys of a few different values give trees of several levels and runs of equal keys.
        const auto textFor = [](std::int32_t n) {
            return std::string(150, static_cast<char>('a' + n % 5)) + std::to_string(n / 3);
        };
        std::vector<RowId> ids;
        for (const std::int32_t n : numbers) ids.push_back(insert(*database, "t", {n, textFor(n)}));
        EXPECT_EQ(findings(*database), "");
        EXPECT_EQ(refusalOf([&] {
                      insert(*database, "t", {numbers[5], std::string("x")});
                  }).fault,
                  Fault::duplicateKey);
        // All move to one end, which empties leaf after leaf, and then to Null.
        for (std::size_t i = 0; i < ids.size(); ++i) {
            const std::vector<Assignment> changes = {{0, numbers[i] + 100000}, {1, std::string("z")}};
            update(*database, info, ids[i], changes);
            if (i % 700 == 0) {
                EXPECT_EQ(findings(*database), "") << i;
            }
        }
        EXPECT_EQ(findings(*database), "");
        std::shuffle(ids.begin(), ids.end(), random);
        for (const RowId id : ids) {
            const std::vector<Assignment> changes = {{0, Value{}}, {1, Value{}}};
            update(*database, info, id, changes);
        }
        EXPECT_EQ(findings(*database), "");
        database->commit();
        EXPECT_EQ(findings(*database), "");
    }
}

TEST_F(IndexTest, HoldsKeysOfTheLargestSizeAndNoLongerOnes) {
    const auto of = [](const char* name, ColumnType type, int length) {
        return ColumnSpec{name, type, length, false, true};
    };
    TableSpec spec{"t",
                   {of("a", ColumnType::binary, 510), of("b", ColumnType::binary, 510),
                    of("c", ColumnType::binary, 510), of("d", ColumnType::binary, 48), of("x", ColumnType::byte, 0),
                    of("y", ColumnType::byte, 0), of("z", ColumnType::byte, 0)},
                   {{"long", {"a", "b", "c", "d", "x", "y", "z"}, false, false, false, false, {}}}};
    makeFile(path, {"", {spec}});
    const auto database = Database::open(path, "");
    // Each value has a lead byte; a binary one takes nine bytes for eight, a byte one and a Null none.
    static_assert(3 * (1 + 64 * 9) + (1 + 6 * 9) + 2 + 1 + 1 == maxKeySize);
    const auto rowOf = [](int n, Value y) {
        return Row{
            Bytes(510, static_cast<std::uint8_t>(n * 37)), Bytes(510), Bytes(510), Bytes(48), n % 7, std::move(y)};
    };
    for (int n = 0; n < 120; ++n) insert(*database, "t", rowOf(n, {}));
    EXPECT_EQ(refusalOf([&] { insert(*database, "t", rowOf(1, 1)); }).fault, Fault::tooLong);
    EXPECT_EQ(findings(*database), "");
}

// A node may have a single child with an entry of its own; a new greatest key below it changes that entry.
TEST_F(IndexTest, NamesGreatestEntriesInTreesOfLongKeys) {
    makeFile(path, {"",
                    {{"t",
                      {{"a", ColumnType::binary, 510, false, true},
                       {"b", ColumnType::binary, 510, false, true},
                       {"c", ColumnType::binary, 510, false, true}},
                      {{"long", {"a", "b", "c"}, false, false, false, false, {}}}}}});
    const auto database = Database::open(path, "");
    const TableInfo& table = database->table("t");
    std::vector<RowId> rows;
    const auto add = [&] {
        const auto number = static_cast<std::uint8_t>(rows.size());
        rows.push_back(insert(*database, "t", {Bytes(510, number), Bytes(510), Bytes(510)}));
    };
    for (std::size_t keys = 5; keys < 40; ++keys) {
        for (std::size_t removed = 1; removed < keys; ++removed) {
            while (rows.size() < keys) add();
            database->remove(table, std::span(rows).last(removed));
            rows.resize(keys - removed);
            add();
            ASSERT_EQ(findings(*database), "") << removed << " of " << keys;
            database->rollback();
            rows.clear();
        }
    }
}

TEST_F(IndexTest, UniqueNullAndCompositeRules) {
    TableSpec table{
        "t",
        {{"a", ColumnType::text, 50, false, true}, {"b", ColumnType::longInteger, 0, false, true}},
        {{"pair", {"a", "b"}, false, true, false, false, {}}, {"sparse", {"b"}, false, true, true, false, {}}}};
    TableSpec strict{"strict",
                     {{"a", ColumnType::text, 50, false, true}, {"b", ColumnType::longInteger, 0, false, true}},
                     {{"needed", {"a", "b"}, false, false, false, true, {}}}};
    makeFile(path, {"", {table, strict}});
    const auto database = Database::open(path, "");
    const auto faultOf = [&](const char* name, const Row& row) {
        return refusalOf([&] { insert(*database, name, row); }).fault;
    };
    EXPECT_EQ(faultOf("t", {std::string("Straße"), 1}), std::nullopt);
    EXPECT_EQ(faultOf("t", {std::string("STRASSE "), 1}), Fault::duplicateKey);
    EXPECT_EQ(faultOf("t", {Value{}, Value{}}), std::nullopt);
    EXPECT_EQ(faultOf("t", {Value{}, Value{}}), std::nullopt);
    EXPECT_EQ(faultOf("t", {std::string("a"), Value{}}), std::nullopt);
    EXPECT_EQ(faultOf("t", {std::string("A"), Value{}}), Fault::duplicateKey);
    EXPECT_EQ(faultOf("t", {std::string("b"), 1}), Fault::duplicateKey);
    EXPECT_EQ(faultOf("strict", {std::string("a"), Value{}}), Fault::nullNotAllowed);
    EXPECT_EQ(faultOf("strict", {std::string("a"), 5}), std::nullopt);
    EXPECT_TRUE(database->table("strict").columns[1].required);
    EXPECT_FALSE(database->table("t").columns[1].required);
    EXPECT_EQ(findings(*database), "");
}

// Changes one byte of the file behind the first place where pattern stands after the system tables' definitions.
void patch(const std::string& path, const std::string& pattern, std::size_t at, char byte) {
    std::string bytes = readWhole(path);
    const std::size_t found = bytes.find(pattern, 6 * pageSize);
    ASSERT_NE(found, std::string::npos);
    bytes[found + at] = byte;
    writeWhole(path, bytes);
}

TEST_F(IndexTest, RefusesATableWithAColumnOfAnUnknownType) {
    makeFile(path, {"", {{"t", {{"a", ColumnType::text, 50, false, true}}, {}}}});
    for (const char type : {'\x00', '\x0D', '\x11', '\xFF'}) {
        patch(path, std::string("\x59\x06\0\0\0\0\0\0\0\0\x09\x04\0\0\x02", 15), std::size_t(-1), type);
        const auto database = Database::open(path, "");
        const Refusal refusal = refusalOf([&] { database->table("t"); });
        EXPECT_EQ(refusal.fault, Fault::corrupt);
        EXPECT_NE(refusal.text.find("unknown type"), std::string::npos) << refusal.text;
    }
}

TEST_F(IndexTest, WhatCannotBeKeptRightIsReadButNotWritten) {
    const TableSpec table{"t",
                          {{"a", ColumnType::text, 50, false, true}, {"b", ColumnType::numeric, 0, false, true}},
                          {{"i", {"a"}, false, false, false, false, {}}}};
    const auto expectReadOnly = [&](const std::string& words) {
        const auto database = Database::open(path, "");
        const TableInfo& info = database->table("t");
        EXPECT_EQ(rowsOf(*database, "t").size(), 1U);
        const std::vector<Assignment> value = {{0, std::string("y")}};
        const RowId row = [&] {
            const auto cursor = database->scan(info);
            cursor->next();
            return cursor->rowId();
        }();
        for (const Refusal& refusal : {refusalOf([&] { database->insert(info, value); }),
                                       refusalOf([&] { update(*database, info, row, value); })}) {
            EXPECT_EQ(refusal.fault, Fault::notWritable);
            EXPECT_NE(refusal.text.find(words), std::string::npos) << refusal.text;
        }
    };
    const auto make = [&](TableSpec layout) {
        makeFile(path, {"", {std::move(layout)}});
        const auto database = Database::open(path, "");
        insert(*database, "t", {std::string("x")});
        database->commit();
    };
    make(table);
    patch(path, std::string("\xFF\xFF\xFF\xFF\0\0\0\0\4\4\0", 11), 10, 2);
    expectReadOnly("relationship");

    make(table);
    patch(path, std::string("\x09\x04\0\0\x02", 5), 0, 7);
    expectReadOnly("sort order");

    make(table);
    patch(path, std::string("\x09\x04\0\0\x02", 5), 3, 1);
    expectReadOnly("sort order");

    TableSpec numeric = table;
    numeric.indexes[0].columns = {"a"};
    make(numeric);
    // The index moves from the text to the number.
    patch(path, std::string("\x83\x07\0\0\0\0\1\xFF\xFF", 9), 4, 1);
    expectReadOnly("type");
}

// Rows that go leave the rest sound, and their room is used again; an index finds what a walk through the table finds.
TEST_F(IndexTest, RowsThatGoAndRowsBetweenTwoValues) {
    makeFile(path, {"", {everyType()}});
    const auto database = Database::open(path, "");
    const TableInfo& info = database->table("everything");
    for (int n = 0; n < 400; ++n) insert(*database, "everything", everyTypeRow(n));
    // Some are moved away first, by growing.
    std::vector<RowId> gone;
    int walked = 0;
    for (auto cursor = database->scan(info); cursor->next(); ++walked) {
        if (walked % 3 == 0) gone.push_back(cursor->rowId());
    }
    for (std::size_t i = 0; i < gone.size(); i += 2) {
        const std::vector<Assignment> change = {{9, longText(100, 1)}, {10, longText(100, 2)}, {11, longText(3000, 3)}};
        update(*database, info, gone[i], change);
    }
    database->remove(info, gone);
    database->remove(info, gone);
    database->commit();
    EXPECT_EQ(findings(*database), "");
    EXPECT_EQ(rowsOf(*database, "everything").size(), 400 - gone.size());

    for (std::size_t column = 0; column < info.columns.size(); ++column) {
        if (!database->rowsBetween(info, column, {}, {}, 1000)) continue;
        SCOPED_TRACE(info.columns[column].name);
        std::vector<Value> values;
        for (const Row& row : rowsOf(*database, "everything")) {
            if (!std::holds_alternative<std::monostate>(row[column])) values.push_back(row[column]);
        }
        ASSERT_FALSE(values.empty());
        EXPECT_EQ(database->rowsBetween(info, column, {}, {}, 1000)->size(), values.size());
        EXPECT_EQ(database->rowsBetween(info, column, {}, {}, values.size() - 1), std::nullopt);
        const Value& wanted = values[values.size() / 2];
        const auto equal = static_cast<std::size_t>(std::count(values.begin(), values.end(), wanted));
        const auto met = database->rowsBetween(info, column, wanted, wanted, 1000);
        ASSERT_TRUE(met);
        EXPECT_EQ(met->size(), equal);
        // Both halves together are all, and the value itself is in both.
        EXPECT_EQ(database->rowsBetween(info, column, {}, wanted, 1000)->size() +
                      database->rowsBetween(info, column, wanted, {}, 1000)->size(),
                  values.size() + equal);
    }
    const auto pages = std::filesystem::file_size(path);
    for (int n = 400; n < 450; ++n) insert(*database, "everything", everyTypeRow(n));
    database->commit();
    EXPECT_EQ(findings(*database), "");
    EXPECT_LE(std::filesystem::file_size(path), pages + 40000) << "room of rows that are gone is used";
}

}  // namespace
}  // namespace jet::test
