// Rows and texts as they lie in the file, byte by byte.

#include <gtest/gtest.h>

#include "accessdriver/jet/error.h"
#include "accessdriver/jet/records/row.h"
#include "accessdriver/jet/records/text.h"

namespace jet::test {
namespace {

using Buffer = std::vector<std::uint8_t>;

Column column(ColumnType type, std::uint16_t number, std::uint16_t length) {
    Column made;
    made.type = type;
    made.number = number;
    made.length = length;
    made.fixed = type == ColumnType::longInteger;
    return made;
}

/// A number, yes/no, and so many texts.
TableDefinition tableWithTexts(std::uint16_t texts) {
    TableDefinition table;
    table.name = "animals";
    table.columns = {column(ColumnType::longInteger, 0, 4), column(ColumnType::boolean, 1, 1)};
    for (std::uint16_t i = 0; i < texts; ++i) {
        table.variables.push_back(table.columns.size());
        table.columns.push_back(column(ColumnType::text, static_cast<std::uint16_t>(2 + i), 100));
        table.columns.back().variableIndex = i;
    }
    table.rowColumns = static_cast<std::uint16_t>(2 + texts);
    table.rowVariables = texts;
    table.fixedEnd = 6;
    return table;
}

const Buffer seven{7, 0, 0, 0}, ada{'A', 0, 'd', 0, 'a', 0}, bo{'B', 0, 'o', 0};

Buffer rowOf(const TableDefinition& table, std::vector<Field> fields) {
    fields.resize(table.columns.size());
    Buffer row;
    encodeRow(table, fields, row);
    return row;
}

Buffer bytesOf(const Field& field) { return {field.bytes.begin(), field.bytes.end()}; }

TEST(StoredRowTest, GivesEachColumnByItself) {
    const TableDefinition table = tableWithTexts(3);
    const Buffer bytes = rowOf(table, {{true, seven}, {true, {}}, {true, ada}, {}, {true, bo}});
    const StoredRow row(table, bytes, {});
    EXPECT_EQ(bytesOf(row.field(4)), bo);
    EXPECT_EQ(bytesOf(row.field(0)), seven);
    EXPECT_TRUE(row.field(1).present);
    EXPECT_EQ(bytesOf(row.field(2)), ada);
    EXPECT_FALSE(row.field(3).present);
}

TEST(StoredRowTest, FromBeforeAColumnWasAddedHasNullThere) {
    // Nine columns, so that the mask grew by a byte too.
    const TableDefinition before = tableWithTexts(1);
    const TableDefinition after = tableWithTexts(7);
    Buffer bytes = rowOf(before, {{true, seven}, {}, {true, ada}});
    // The bits that the mask has to spare say nothing.
    bytes.back() |= 0xF8;
    const StoredRow row(after, bytes, {});
    EXPECT_EQ(bytesOf(row.field(0)), seven);
    EXPECT_EQ(bytesOf(row.field(2)), ada);
    for (std::size_t added = 3; added < after.columns.size(); ++added) EXPECT_FALSE(row.field(added).present) << added;

    TableDefinition withAnswer = before;
    withAnswer.columns.push_back(column(ColumnType::boolean, 3, 1));
    EXPECT_FALSE(StoredRow(withAnswer, bytes, {}).field(3).present) << "No, not the spare bit";

    // A deleted column may leave a row with the number of a variable column that it has no place for.
    TableDefinition odd = before;
    odd.columns[2].variableIndex = 5;
    EXPECT_FALSE(StoredRow(odd, bytes, {}).field(2).present);
}

TEST(StoredRowTest, RefusesAColumnThatReachesOutOfTheRowAndReadsTheOthers) {
    const TableDefinition table = tableWithTexts(2);
    const Buffer sound = rowOf(table, {{true, seven}, {}, {true, ada}, {true, bo}});
    const std::size_t maskAt = sound.size() - 1;
    // The end of the texts, and the starts of the second and the first of them.
    for (const std::size_t place : {maskAt - 8, maskAt - 6, maskAt - 4}) {
        for (const std::size_t offset : {std::size_t{0}, std::size_t{1}, sound.size() - 7, std::size_t{0xFFFF}}) {
            Buffer bytes = sound;
            putU16(bytes, place, offset);
            const StoredRow row(table, bytes, {});
            const std::size_t touched = place == maskAt - 4 ? 2 : 3;
            EXPECT_THROW(row.field(touched), Error) << place << " " << offset;
            EXPECT_EQ(bytesOf(row.field(0)), seven);
        }
    }
    TableDefinition numbers = table;
    numbers.columns[3].type = ColumnType::doubleFloat;
    EXPECT_THROW(StoredRow(numbers, sound, {}).field(3), Error) << "four bytes are no double";
    TableDefinition wide = table;
    wide.columns[0].length = 40;
    EXPECT_THROW(StoredRow(wide, sound, {}).field(0), Error);

    for (std::size_t size = 0; size < sound.size(); ++size) {
        // From the end of a row all else is found, so what is cut off shows at once or in a column; it never crashes.
        const ByteSpan cut = ByteSpan(sound).first(size);
        try {
            const StoredRow row(table, cut, {});
            for (std::size_t i = 0; i < table.columns.size(); ++i) row.field(i);
        } catch (const Error& error) {
            EXPECT_EQ(error.fault(), Fault::corrupt);
        }
        if (size < 3) {
            EXPECT_THROW(StoredRow(table, cut, {}), Error) << size;
        }
    }
}

TEST(StoredTextTest, ComesInOneByteOrTwoBytesACharacter) {
    struct Case {
        Buffer stored;
        std::string text;
    };
    const Case cases[] = {
        {{}, ""},
        {{0xFF, 0xFE}, ""},
        {{'A', 0, 'd', 0, 'a', 0}, "Ada"},
        {{0xFF, 0xFE, 'A', 'd', 'a'}, "Ada"},
        {{0xFF, 0xFE, 0xC9, 'm', 'i', 'l', 'e'}, "\xC3\x89mile"},
        // A zero byte switches to two bytes a character and back, also where all bytes are below 0x80.
        {{0xFF, 0xFE, 'A', 0, 0x41, 0x04, 0x42, 0x04, 0, 'z'}, "A\xD1\x81\xD1\x82z"},
        {{0xFF, 0xFE, 0, 0x20, 0x20}, "\xE2\x80\xA0"},
        {{'x'}, ""},
    };
    for (const auto& [stored, text] : cases) {
        EXPECT_EQ(decodeTextToUtf8(stored), text);
        EXPECT_EQ(utf8FromUtf16(decodeText(stored)), text);
    }
}

// In a compressed text a zero byte has a meaning of its own.
TEST(StoredTextTest, KeepsU0000) {
    const std::u16string text(u"a\0bcd", 5);
    for (const bool mayCompress : {false, true}) {
        Buffer stored;
        encodeText(text, mayCompress, stored);
        EXPECT_EQ(decodeText(stored), text) << mayCompress;
    }
}

}  // namespace
}  // namespace jet::test
