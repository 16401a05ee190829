// What we wrote, read by mdbtools.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>

#include "accessdriver/jet/making/cavTables.h"
#include "accessdriver/jet/tests/fixture.h"

namespace jet::test {
namespace {

using OutsideReaderTest = FileTest;

// One line of JSON with the values that are there, as mdb-json prints it.
std::string jsonText(const std::string& text) {
    std::string out = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') out += '\\';
        if (c == '\r') {
            out += "\\u000d";
        } else if (c == '\n') {
            out += "\\u000a";
        } else {
            out += c;
        }
    }
    return out + "\"";
}

bool holds(const std::string& json, const std::string& column, const std::string& value) {
    return json.find("\"" + column + "\":" + value) != std::string::npos;
}

double numberIn(const std::string& json, const std::string& column) {
    const std::string name = "\"" + column + "\":";
    const std::size_t at = json.find(name);
    return at == std::string::npos ? std::nan("") : std::strtod(json.c_str() + at + name.size(), nullptr);
}

std::string hexOf(const Bytes& bytes) {
    std::string text;
    for (const std::uint8_t byte : bytes) {
        char digits[4];
        std::snprintf(digits, sizeof digits, "%02X", byte);
        text += digits;
    }
    return text;
}

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        lines.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    return lines;
}

TEST_F(OutsideReaderTest, SeesTheTablesThatWereMade) {
    const std::string path = folder.file("made.cav");
    makeCavFile(path, CavColumns::typed);
    const auto tables = outputOf("mdb-tables -1 " + path);
    if (!tables) GTEST_SKIP() << "mdbtools is not installed";
    EXPECT_EQ(*tables, "tree\nmatings\nsoldStock\nvaccinations\ncavyUser\ncontacts\n");
    const std::string schema = *outputOf("mdb-schema --no-relations " + path + " access -T tree");
    EXPECT_NE(schema.find("[notes]\t\t\tMemo/Hyperlink"), std::string::npos) << schema;
    EXPECT_NE(schema.find("[weight]\t\t\tDouble"), std::string::npos) << schema;
    EXPECT_NE(schema.find("[customfield15]\t\t\tText (255)"), std::string::npos) << schema;
    const std::string user = *outputOf("mdb-export -H " + path + " cavyUser");
    EXPECT_EQ(user.substr(0, 2), "1,");
    EXPECT_TRUE(readWhole(path) == readWhole(JET_SOURCE_ROOT "/samples/empty.cav")) << "make the sample anew";
}

// Without these Access takes a file for damaged, and other libraries look for a parent in vain.
TEST_F(OutsideReaderTest, SeesWhatAccessExpectsBesideTheTables) {
    const std::string path = folder.file("made.mdb");
    makeFile(path, {"", {{"t", {{"a", ColumnType::text, 5, false, true}}, {}}}});
    const auto objects = outputOf("mdb-export -H -b hex -T day " + path + " MSysObjects");
    if (!objects) GTEST_SKIP() << "mdbtools is not installed";
    std::string places;
    for (const std::string& line : linesOf(*objects)) places += line.substr(0, line.find("\",") + 4) + "\n";
    EXPECT_EQ(places,
              "251658241,251658240,\"Tables\",3,\n251658242,251658240,\"Databases\",3,\n"
              "251658243,251658240,\"Relationships\",3,\n268435456,251658242,\"MSysDb\",2,\n"
              "2,251658241,\"MSysObjects\",1,\n3,251658241,\"MSysACEs\",1,\n4,251658241,\"MSysQueries\",1,\n"
              "5,251658241,\"MSysRelationships\",1,\n20,251658241,\"t\",1,\n");
    EXPECT_EQ(linesOf(*objects).size(), 9U);
    EXPECT_EQ(objects->find(",,-2147483648"), std::string::npos) << "an object without an owner";
    EXPECT_EQ(linesOf(*outputOf("mdb-export -H " + path + " MSysRelationships")).size(), 0U);
    const std::string rights = *outputOf("mdb-export -H -b hex " + path + " MSysACEs");
    for (const char* id : {"251658241", "251658242", "251658243", "268435456", "2", "3", "4", "5", "20"}) {
        EXPECT_NE(("\n" + rights).find("\n" + std::string(id) + ",\"A"), std::string::npos) << id;
    }
    EXPECT_NE(outputOf("mdb-prop " + path + " MSysDb")->find("AccessVersion: 08.50"), std::string::npos);
    // The places of the fixed parts and of the users' states, as every file of Access has them.
    const std::string header = readWhole(path).substr(0, pageSize);
    EXPECT_EQ(header.substr(0x18, 12), std::string("\xB5\x6E\x03\x62\x60\x09\xC2\x55\xE9\xA9\x67\x72"));
    EXPECT_EQ(header.substr(0xE00, 4), std::string("\1\1\0\1", 4));
}

TEST_F(OutsideReaderTest, ReadsEveryValueBack) {
    const std::string path = folder.file("types.mdb");
    makeFile(path, {"", {everyType()}});
    std::vector<Row> rows;
    {
        const auto database = Database::open(path, "");
        for (int n = 1; n < 250; ++n) {
            rows.push_back(everyTypeRow(n));
            insert(*database, "everything", rows.back());
        }
        database->commit();
    }
    const auto output = outputOf("mdb-json -T %Y-%m-%d " + path + " everything");
    if (!output) GTEST_SKIP() << "mdbtools is not installed";
    const std::vector<std::string> lines = linesOf(*output);
    ASSERT_EQ(lines.size(), rows.size());
    const std::vector<std::string> exported = linesOf(*outputOf("mdb-export -H -b hex " + path + " everything"));
    ASSERT_EQ(exported.size(), rows.size());
    const std::vector<std::string> names = {"id",    "yes",  "tiny", "small", "whole", "money",
                                            "rough", "fine", "day",  "word",  "plain", "story"};
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const std::string& line = lines[i];
        EXPECT_TRUE(holds(line, "id", std::to_string(i + 1))) << line;
        for (const std::size_t column : {2, 3, 4}) {
            if (const auto* number = std::get_if<std::int32_t>(&rows[i][column])) {
                EXPECT_TRUE(holds(line, names[column], std::to_string(*number))) << names[column] << " in " << line;
            } else {
                EXPECT_FALSE(holds(line, names[column], "")) << line;
            }
        }
        EXPECT_TRUE(holds(line, "yes", std::get<bool>(rows[i][1]) ? "1" : "0")) << line;
        const std::int64_t money = std::get<Currency>(rows[i][5]).tenThousandths;
        char amount[40];
        std::snprintf(amount, sizeof amount, "%s%lld.%04lld", money < 0 ? "-" : "",
                      static_cast<long long>(std::abs(money) / 10000), static_cast<long long>(std::abs(money) % 10000));
        EXPECT_TRUE(holds(line, "money", amount)) << amount << " in " << line;
        for (const std::size_t column : {6, 7}) {
            const double number = std::get<double>(rows[i][column]);
            EXPECT_NEAR(numberIn(line, names[column]), number, std::abs(number) * (column == 6 ? 1e-6 : 1e-14)) << line;
        }
        // Of dates before 1900 it knows nothing.
        if (const auto* day = std::get_if<DateTime>(&rows[i][8]); day && day->days > 366) {
            const auto moment = static_cast<std::time_t>((std::floor(day->days) - 25569) * 86400);
            char date[16];
            std::strftime(date, sizeof date, "%Y-%m-%d", std::gmtime(&moment));
            EXPECT_TRUE(holds(line, "day", jsonText(date))) << date << " in " << line;
        }
        for (const std::size_t column : {12, 13}) {
            const auto* bytes = std::get_if<Bytes>(&rows[i][column]);
            const std::string digits = bytes ? hexOf(*bytes) : "";
            EXPECT_TRUE(digits.empty() || exported[i].find(digits) != std::string::npos)
                << digits << " in " << exported[i];
        }
        for (const std::size_t column : {9, 10, 11}) {
            const auto* text = std::get_if<std::string>(&rows[i][column]);
            if (text && !text->empty()) {
                EXPECT_TRUE(holds(line, names[column], jsonText(*text))) << names[column] << " in " << line;
            }
        }
    }
}

TEST_F(OutsideReaderTest, ReadsLongMemosAndAccents) {
    const std::string path = folder.file("made.cav");
    makeCavFile(path, CavColumns::typed);
    std::vector<std::pair<std::string, std::string>> expected;
    {
        const auto database = Database::open(path, cavPassword);
        for (const std::size_t size : {1, 64, 65, 1000, 2038, 2039, 4072, 4076, 4077, 20000}) {
            const int seed = static_cast<int>(size);
            expected.emplace_back(longText(size, seed), longText(size, seed, true) + "\r\nline “two” \\ Ærø");
            Row row(35);
            row[1] = std::string("Zoë d'Arc-Müller ") + std::to_string(size);
            row[14] = expected.back().first;
            row[16] = expected.back().second;
            row[33] = 1234.5;
            row[34] = Currency{-123456};
            row[5] = DateTime{45000.5};
            insert(*database, "tree", row);
        }
        database->commit();
    }
    const auto output = outputOf("mdb-json " + path + " tree");
    if (!output) GTEST_SKIP() << "mdbtools is not installed";
    const std::vector<std::string> lines = linesOf(*output);
    ASSERT_EQ(lines.size(), expected.size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
        EXPECT_NE(lines[i].find("Zoë d'Arc-Müller "), std::string::npos);
        EXPECT_TRUE(holds(lines[i], "health", jsonText(expected[i].first))) << i;
        EXPECT_TRUE(holds(lines[i], "notes", jsonText(expected[i].second))) << i;
        EXPECT_NE(lines[i].find("1234.5"), std::string::npos) << lines[i].substr(0, 300);
        EXPECT_NE(lines[i].find("-12.3456"), std::string::npos);
    }
    const std::string dates = *outputOf("mdb-export -D %Y-%m-%d -T %Y-%m-%dT%H:%M:%S " + path + " tree");
    EXPECT_NE(dates.find("2023-03-15T12:00:00"), std::string::npos) << dates.substr(0, 600);
}

}  // namespace
}  // namespace jet::test
