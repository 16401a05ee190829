// What a column's properties ask of its values, and how they lie in the file.

#include "accessdriver/jet/records/properties.h"
#include "accessdriver/jet/records/text.h"
#include "accessdriver/jet/tests/fixture.h"

namespace jet::test {
namespace {

using PropertiesTest = FileTest;

Property text(const char* name, const char* value) {
    Property property{name, ColumnType::memo, {}};
    encodeText(utf16FromUtf8(value), false, property.value);
    return property;
}
Property yesNo(const char* name, bool value) {
    return {name, ColumnType::boolean, {static_cast<std::uint8_t>(value ? 0xFF : 0)}};
}

// As Access wrote it for a whole file.
const std::vector<std::uint8_t> fromAccess = [] {
    const std::string hex =
        "4D5232002E00000080001A00410063006300650073007300560065007200730069006F006E000A004200750069006C0064002A00000000"
        "00"
        "0600000000001200000A00000A00300038002E00350030000C00000401000400DC190000";
    std::vector<std::uint8_t> bytes;
    for (std::size_t i = 0; i < hex.size(); i += 2) {
        bytes.push_back(static_cast<std::uint8_t>(std::stoi(hex.substr(i, 2), nullptr, 16)));
    }
    return bytes;
}();

TEST_F(PropertiesTest, AreReadAndWrittenAsAccessDoes) {
    const auto lists = readProperties(fromAccess);
    ASSERT_EQ(lists.size(), 1U);
    EXPECT_EQ(lists[0].owner, "");
    ASSERT_EQ(lists[0].properties.size(), 2U);
    EXPECT_EQ(textOf(find(lists[0].properties, "AccessVersion")), "08.50");
    EXPECT_EQ(lists[0].properties[1].name, "Build");
    EXPECT_EQ(lists[0].properties[1].value, (Bytes{0xDC, 0x19, 0, 0}));
    EXPECT_EQ(propertyBlob(lists), [] {
        // The flag of the second one, which is Access's own business.
        auto bytes = fromAccess;
        bytes[bytes.size() - 10] = 0;
        return bytes;
    }());
    // Cut off anywhere, it is refused or has less in it; it never reaches further.
    for (std::size_t size = 0; size < fromAccess.size(); ++size) {
        const std::vector<std::uint8_t> part(fromAccess.begin(),
                                             fromAccess.begin() + static_cast<std::ptrdiff_t>(size));
        const Refusal refusal = refusalOf([&] { EXPECT_LE(readProperties(part).size(), 0U) << size; });
        EXPECT_TRUE(!refusal.fault || refusal.fault == Fault::corrupt) << size;
    }
}

TableSpec herd() {
    const auto of = [](const char* name, ColumnType type, int length = 0) {
        return ColumnSpec{name, type, length, false, true};
    };
    return {"herd",
            {of("name", ColumnType::text, 20), of("sex", ColumnType::text, 20), of("born", ColumnType::dateTime),
             of("alive", ColumnType::boolean), of("legs", ColumnType::byte), of("price", ColumnType::currency),
             of("weight", ColumnType::doubleFloat), of("notes", ColumnType::memo), of("odd", ColumnType::longInteger)},
            {},
            {{"", {text("Description", "a herd")}},
             {"name", {yesNo("Required", true), yesNo("AllowZeroLength", false)}},
             {"SEX", {text("DefaultValue", "\"un\"\"known\""), text("ValidationRule", "<>\"none\"")}},
             {"born", {text("DefaultValue", "=Date()"), text("ValidationRule", "> #1/31/1900#")}},
             {"alive", {text("DefaultValue", "Yes")}},
             {"legs", {text("DefaultValue", "4"), text("ValidationRule", ">= 0")}},
             {"price", {text("DefaultValue", "-1.5"), text("ValidationRule", "<=100")}},
             {"weight", {text("ValidationRule", "Between 0 And 5")}},
             {"notes", {yesNo("AllowZeroLength", true), text("DefaultValue", "Environ(\"HOME\")")}},
             {"odd", {text("DefaultValue", "1.5"), text("ValidationRule", "Is Not Null")}}}};
}

TEST_F(PropertiesTest, HoldForWhatIsWritten) {
    const std::string path = folder.file("herd.mdb");
    makeFile(path, {"", {herd()}});
    if (const auto seen = outputOf("mdb-prop " + path + " herd")) {
        EXPECT_NE(seen->find("ValidationRule: > #1/31/1900#"), std::string::npos) << *seen;
        EXPECT_NE(seen->find("DefaultValue: =Date()"), std::string::npos) << *seen;
    }
    const auto database = Database::open(path, "");
    const TableInfo& info = database->table("herd");
    EXPECT_TRUE(info.columns[0].required && !info.columns[1].required);
    EXPECT_EQ(info.columns[4].defaultValue, "4");
    EXPECT_EQ(info.columns[2].validationRule, "> #1/31/1900#");

    const Assignment least[] = {{0, std::string("Ada")}, {8, 1}};
    const RowId row = database->insert(info, least);
    const struct {
        std::size_t column;
        Value value;
        std::optional<Fault> fault;
    } cases[] = {
        {0, Value{}, Fault::nullNotAllowed}, {0, std::string(), Fault::ruleBroken}, {1, std::string(), std::nullopt},
        {1, Value{}, std::nullopt},          {7, std::string(), std::nullopt},
    };
    for (const auto& each : cases) {
        const std::vector<Assignment> change = {{each.column, each.value}};
        const Refusal refusal = refusalOf([&] { update(*database, info, row, change); });
        EXPECT_EQ(refusal.fault, each.fault) << each.column << " " << refusal.text;
    }
    const Assignment unnamed[] = {{8, 1}};
    EXPECT_EQ(refusalOf([&] { database->insert(info, unnamed); }).text,
              "The column name of the table herd needs a value.");
    database->commit();
    EXPECT_EQ(findings(*database), "");
}

TEST_F(PropertiesTest, ThatCannotBeReadForbidWriting) {
    const std::string path = folder.file("herd.mdb");
    makeFile(path, {"", {herd()}});
    std::string bytes = readWhole(path);
    const std::string signature("MR2\0", 4);
    for (std::size_t at = bytes.find(signature); at != std::string::npos; at = bytes.find(signature, at + 4)) {
        bytes.replace(at + 4, 4, std::string("\3\0\0\0", 4));
    }
    writeWhole(path, bytes);
    const auto database = Database::open(path, "");
    const Refusal refusal = refusalOf([&] { insert(*database, "herd", {std::string("Ada")}); });
    EXPECT_EQ(refusal.fault, Fault::notWritable) << refusal.text;
    EXPECT_EQ(rowsOf(*database, "herd").size(), 0U);
}

}  // namespace
}  // namespace jet::test
