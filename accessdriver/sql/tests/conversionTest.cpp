#include <clocale>
#include <limits>

#include <gtest/gtest.h>

#include "accessdriver/jet/sortKey.h"
#include "accessdriver/sql/values/caseFold.h"
#include "accessdriver/sql/values/convert.h"
#include "accessdriver/sql/values/decimal.h"
#include "accessdriver/sql/values/error.h"
#include "accessdriver/sql/values/key.h"
#include "accessdriver/sql/values/numbers.h"

namespace {

using jet::ColumnType;
using sql::DateOrder;
using sql::Literal;

Literal text(std::string_view value) { return {.kind = Literal::Kind::text, .text = value}; }
Literal number(std::string_view value) { return {.kind = Literal::Kind::number, .text = value}; }
Literal truth(bool value) { return {.kind = Literal::Kind::boolean, .truth = value}; }

// The stored value as text, "Null", or the SQLSTATE of the refusal.
std::string stored(const Literal& literal, ColumnType type, int length = 10, DateOrder order = DateOrder::monthFirst) {
    try {
        const jet::Value value = sql::coerce(literal, {"c", type, length}, order);
        return std::holds_alternative<std::monostate>(value) ? "Null" : sql::textOf(value, type);
    } catch (const sql::Error& error) {
        return error.state();
    }
}

TEST(DatesTest, ReadInEveryForm) {
    struct Case {
        const char* text;
        const char* monthFirst;
        const char* dayFirst;
    };
    const Case cases[] = {
        {"2020-01-31", "2020-01-31 00:00:00", "2020-01-31 00:00:00"},
        {"2020-1-3", "2020-01-03 00:00:00", "2020-01-03 00:00:00"},
        {"2020/02/03", "2020-02-03 00:00:00", "2020-02-03 00:00:00"},
        {"2020-01-31 10:20:30", "2020-01-31 10:20:30", "2020-01-31 10:20:30"},
        {"2020-01-31T10:20", "2020-01-31 10:20:00", "2020-01-31 10:20:00"},
        {" 2020-01-31  23:59:59.999 ", "2020-01-31 23:59:59", "2020-01-31 23:59:59"},
        {"3/4/2020", "2020-03-04 00:00:00", "2020-04-03 00:00:00"},
        {"3.4.2020", "2020-03-04 00:00:00", "2020-04-03 00:00:00"},
        {"03-04-20", "2020-03-04 00:00:00", "2020-04-03 00:00:00"},
        {"31/1/2020", "2020-01-31 00:00:00", "2020-01-31 00:00:00"},
        {"1/31/2020", "2020-01-31 00:00:00", "2020-01-31 00:00:00"},
        {"1/1/29", "2029-01-01 00:00:00", "2029-01-01 00:00:00"},
        {"1/1/30", "1930-01-01 00:00:00", "1930-01-01 00:00:00"},
        {"1/2/2020 12:05 am", "2020-01-02 00:05:00", "2020-02-01 00:05:00"},
        {"1/2/2020 12:05:06PM", "2020-01-02 12:05:06", "2020-02-01 12:05:06"},
        {"10:30", "1899-12-30 10:30:00", "1899-12-30 10:30:00"},
        {"0100-01-01", "0100-01-01 00:00:00", "0100-01-01 00:00:00"},
        {"9999-12-31 23:59:59", "9999-12-31 23:59:59", "9999-12-31 23:59:59"},
        {"1853-07-04 18:00", "1853-07-04 18:00:00", "1853-07-04 18:00:00"},
        {"", "Null", "Null"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(stored(text(c.text), ColumnType::dateTime, 8, DateOrder::monthFirst), c.monthFirst) << c.text;
        EXPECT_EQ(stored(text(c.text), ColumnType::dateTime, 8, DateOrder::dayFirst), c.dayFirst) << c.text;
    }
    for (const char* none :
         {"2019-02-29", "0099-12-31", "31/31/2020", "32/1/2020", "0/1/2020", "1/2", "1/2/", "1/2-2020", "1/2/202",
          "1/2/20200", "1/2020/2", "2020-01-01 24:00", "2020-01-01 10:60", "2020-01-01 13:00 PM",
          "2020-01-01 10:", "2020-01-01 10:00 x", "2020-01-01x", "yesterday"}) {
        EXPECT_EQ(stored(text(none), ColumnType::dateTime), "22007") << none;
        EXPECT_EQ(stored(text(none), ColumnType::dateTime, 8, DateOrder::dayFirst), "22007") << none;
    }
}

// Days before 1899-12-30 carry the sign, and the time of day counts forward all the same.
TEST(DatesTest, StoredFormAtTheEdges) {
    const std::pair<double, const char*> cases[] = {
        {0.0, "1899-12-30 00:00:00"},       {0.5, "1899-12-30 12:00:00"},     {-1.25, "1899-12-29 06:00:00"},
        {-1.0, "1899-12-29 00:00:00"},      {25569.0, "1970-01-01 00:00:00"}, {-657434.0, "0100-01-01 00:00:00"},
        {2958465.75, "9999-12-31 18:00:00"}};
    for (const auto& [days, shown] : cases) {
        EXPECT_EQ(sql::writeDate({days}), shown);
        EXPECT_EQ(sql::readDate(shown, DateOrder::dayFirst)->days, days) << shown;
    }
    EXPECT_EQ(sql::writeDate({1.9999999}), "1900-01-01 00:00:00") << "a rounded-up second starts the next day";
    EXPECT_EQ(sql::writeDate({-1.9999999}), "1899-12-30 00:00:00");
    for (const double beyond : {-657435.0, 2958466.0, 1e300, std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_THROW(sql::writeDate({beyond}), sql::Error) << beyond;
    }
}

TEST(DatesTest, OrderFollowsTheLocaleThatTheApplicationSet) {
    EXPECT_EQ(sql::localeDateOrder(), DateOrder::monthFirst) << "no locale was set";
    for (const char* name : {"en_GB.UTF-8", "de_DE.UTF-8", "fr_FR.UTF-8"}) {
        if (std::setlocale(LC_TIME, name) == nullptr) continue;
        EXPECT_EQ(sql::localeDateOrder(), DateOrder::dayFirst) << name;
    }
    std::setlocale(LC_TIME, "C");
}

TEST(ConversionTest, IntoNumberColumns) {
    struct Case {
        Literal literal;
        ColumnType type;
        const char* stored;
    };
    const Case cases[] = {
        {text("12"), ColumnType::longInteger, "12"},
        {text(" -12 "), ColumnType::longInteger, "-12"},
        {text("1.5"), ColumnType::longInteger, "2"},
        {text("2.5"), ColumnType::longInteger, "2"},
        {text("2147483647"), ColumnType::longInteger, "2147483647"},
        {text("2147483648"), ColumnType::longInteger, "22003"},
        {number("-2147483648"), ColumnType::longInteger, "-2147483648"},
        {number("-2147483649"), ColumnType::longInteger, "22003"},
        {number("32768"), ColumnType::integer, "22003"},
        {number("256"), ColumnType::byte, "22003"},
        {number("-1"), ColumnType::byte, "22003"},
        {truth(true), ColumnType::integer, "-1"},
        {text(""), ColumnType::longInteger, "Null"},
        {text("  "), ColumnType::doubleFloat, "Null"},
        {Literal{}, ColumnType::longInteger, "Null"},
        {text("+.5e+1"), ColumnType::doubleFloat, "5"},
        {number("1e400"), ColumnType::dateTime, "22003"},
        {number("nan"), ColumnType::dateTime, "22003"},
        {text("1321.9"), ColumnType::doubleFloat, "1321.9"},
        {text("0.1"), ColumnType::single, "0.1"},
        {text("1e39"), ColumnType::single, "22003"},
        {text("12.5"), ColumnType::currency, "12.5000"},
        {text("0.00005"), ColumnType::currency, "0.0000"},
        {text("0.00015"), ColumnType::currency, "0.0002"},
        {text("0.000050001"), ColumnType::currency, "0.0001"},
        {text("922337203685477.5807"), ColumnType::currency, "922337203685477.5807"},
        {text("922337203685477.5808"), ColumnType::currency, "22003"},
        {text("922337203685477.58075"), ColumnType::currency, "22003"},
        {text("1e15"), ColumnType::currency, "22003"},
        {text("1.25e2"), ColumnType::currency, "125.0000"},
        {{.kind = Literal::Kind::bytes, .text = "12"}, ColumnType::longInteger, "07006"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(stored(c.literal, c.type), c.stored) << c.literal.text << " into " << static_cast<int>(c.type);
    }
    for (const char* none : {"12 kg", "inf", "0x10", "--1", "+-1", "1e400", "1e5x"}) {
        EXPECT_EQ(stored(text(none), ColumnType::longInteger), "22018") << none;
        EXPECT_EQ(stored(text(none), ColumnType::doubleFloat), "22018") << none;
    }
}

TEST(ConversionTest, IntoYesNo) {
    const std::pair<Literal, const char*> cases[] = {
        {text("True"), "1"}, {text("yes"), "1"}, {text("ON"), "1"},  {text("-1"), "1"},        {text("0.5"), "1"},
        {text("No"), "0"},   {text("oFF"), "0"}, {text("0"), "0"},   {text("False"), "0"},     {text(""), "0"},
        {Literal{}, "0"},    {truth(true), "1"}, {number("7"), "1"}, {text("maybe"), "22018"},
    };
    for (const auto& [literal, wanted] : cases) EXPECT_EQ(stored(literal, ColumnType::boolean), wanted) << literal.text;
}

TEST(ConversionTest, IntoTextCountsCharactersAsAccessDoes) {
    struct Case {
        Literal literal;
        const char* stored;
    };
    const Case cases[] = {
        {text("1234567890"), "1234567890"},
        {text("12345678901"), "22001"},
        {text("ééééé€€€€€"), "ééééé€€€€€"},
        {text("ééééé€€€€€x"), "22001"},
        {text("🐹🐹🐹🐹🐹"), "🐹🐹🐹🐹🐹"},  // two UTF-16 units each
        {text("🐹🐹🐹🐹🐹x"), "22001"},
        {text(""), ""},
        {Literal{}, "Null"},
        {number("007"), "7"},
        {number("1.50"), "1.5"},
        {number("12345678901"), "22001"},
        {truth(true), "-1"},
    };
    for (const Case& c : cases) EXPECT_EQ(stored(c.literal, ColumnType::text), c.stored) << c.literal.text;
    const std::string longText(20000, 'x');
    EXPECT_EQ(stored(text(longText), ColumnType::memo), longText);
}

TEST(ConversionTest, RefusalsNameColumnAndValue) {
    const auto message = [](const Literal& literal, ColumnType type) -> std::string {
        try {
            sql::coerce(literal, {"Mated", type, 3}, DateOrder::monthFirst);
        } catch (const sql::Error& error) {
            return error.what();
        }
        return "accepted";
    };
    EXPECT_EQ(message(text("soon"), ColumnType::dateTime), "'soon' is no date, which the column 'Mated' takes.");
    EXPECT_EQ(message(text("éééé"), ColumnType::text),
              "The text is too long for the column 'Mated': 4 characters, at most 3.");
    EXPECT_EQ(message(number("300"), ColumnType::byte), "The number 300 is out of the range of the column 'Mated'.");
}

TEST(ConversionTest, BytesAsText) {
    const jet::Bytes bytes = {0x33, 0x22, 0x11, 0x00, 0x55, 0x44, 0x77, 0x66,
                              0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF};
    EXPECT_EQ(sql::textOf(bytes, ColumnType::guid), "00112233-4455-6677-8899-AABBCCDDEEFF");
    EXPECT_EQ(sql::textOf(jet::Bytes{0x01, 0xAF}, ColumnType::binary), "01AF");
}

TEST(ComparisonTest, TextWithoutRegardToCaseInEveryAlphabet) {
    const std::pair<const char*, const char*> same[] = {{"Zoë", "ZOË"}, {"ΑΒΓ", "αβγ"}, {"ЖУК", "жук"},
                                                        {"", ""},       {"R-1", "r-1"}, {"Ẽ", "ẽ"}};
    for (const auto& [left, right] : same) EXPECT_EQ(sql::caseFolded(left), sql::caseFolded(right)) << left;
    const std::pair<const char*, const char*> other[] = {{"a", "a "}, {"Zoe", "Zoë"}, {"1", "01"}, {"", " "}};
    for (const auto& [left, right] : other) EXPECT_NE(sql::caseFolded(left), sql::caseFolded(right)) << left;
    // What is equal has one place in an index, so that a search finds the same with it and without it.
    EXPECT_NE(sql::caseFolded("İ"), sql::caseFolded("i"));
    int changed = 0;
    for (unsigned code = 0x80; code < 0xD800; ++code) {
        const std::string text = {static_cast<char>(0xE0 | code >> 12), static_cast<char>(0x80 | (code >> 6 & 0x3F)),
                                  static_cast<char>(0x80 | (code & 0x3F))};
        const std::string letter = code >= 0x800 ? text : std::string{static_cast<char>(0xC0 | code >> 6), text.back()};
        const std::string small = sql::caseFolded(letter);
        changed += small != letter ? 1 : 0;
        EXPECT_EQ(jet::sortKey(small), jet::sortKey(letter)) << letter;
    }
    EXPECT_GT(changed, 700);
    const std::string broken = "A\xC3\xE2\x82Z\xFF";  // broken sequences are kept byte for byte
    EXPECT_EQ(sql::caseFolded(broken), "a\xC3\xE2\x82z\xFF");
}

TEST(ComparisonTest, LiteralsAreComparedAsTheColumnsType) {
    struct Case {
        jet::Value held;
        ColumnType type;
        Literal asked;
        bool equal;
    };
    const Case cases[] = {
        {std::string("12"), ColumnType::text, number("12"), true},
        {std::string("12"), ColumnType::text, text("12345678901234567890"), false},
        {std::int32_t{12}, ColumnType::longInteger, text(" 12.0"), true},
        {std::int32_t{2}, ColumnType::longInteger, number("1.5"), false},
        {std::int32_t{1}, ColumnType::longInteger, number("99999999999"), false},
        {static_cast<double>(0.1F), ColumnType::single, number("0.1"), true},
        {jet::Currency{125000}, ColumnType::currency, text("12.5"), true},
        {jet::Currency{90071992547409931}, ColumnType::currency, number("9007199254740.9930"), false},
        {jet::Currency{90071992547409931}, ColumnType::currency, number("9007199254740.99310"), true},
        {jet::Currency{10000}, ColumnType::currency, number("1.00001"), false},
        {jet::Currency{0}, ColumnType::currency, text("-0e5"), true},
        {jet::Value{}, ColumnType::currency, text(" "), false},
        {sql::storedDecimal(*sql::readDecimal("12345678901234567890", 0)), ColumnType::numeric,
         number("12345678901234567891"), false},
        {sql::storedDecimal(*sql::readDecimal("-12345678901234567890", 0)), ColumnType::numeric,
         text("-1234567890123456789e1"), true},
        {jet::DateTime{43861.5 + 1e-9}, ColumnType::dateTime, text("2020-01-31 12:00"), true},
        {jet::Value{}, ColumnType::longInteger, text(""), false},
    };
    for (const Case& c : cases) {
        const jet::ColumnInfo column{"c", c.type, 10};
        const sql::Key asked = sql::equalityKeyFor(c.asked, column, DateOrder::monthFirst);
        EXPECT_EQ(!asked.empty() && asked == sql::keyOf(c.held, column), c.equal) << c.asked.text;
    }
    EXPECT_THROW(sql::keyFor(text("x"), {"c", ColumnType::longInteger, 4}, DateOrder::monthFirst), sql::Error);
    EXPECT_THROW(sql::keyFor(text("x"), {"c", ColumnType::currency, 8}, DateOrder::monthFirst), sql::Error);
    EXPECT_THROW(sql::keyFor(text("x"), {"c", ColumnType::ole, 0}, DateOrder::monthFirst), sql::Error);
}

TEST(DecimalTest, ReadsExactlyAndRoundsHalfToEven) {
    const std::string nines(38, '9');
    const std::pair<std::string, std::string> cases[] = {{"0.00005", "0.0000"},
                                                         {"0.00015", "0.0002"},
                                                         {"-0.000150001", "-0.0002"},
                                                         {"9.99995", "10.0000"},
                                                         {" +1.5e2 ", "150.0000"},
                                                         {"12345678901234567890e-6", "12345678901234.5679"},
                                                         {"-0.00001", "0.0000"},
                                                         {"0e99999999999999999999", "0.0000"},
                                                         {"1e-300", "0.0000"},
                                                         {nines.substr(0, 34), nines.substr(0, 34) + ".0000"},
                                                         {nines.substr(0, 35), "none"},
                                                         {"1e40", "none"},
                                                         {"12,5", "none"},
                                                         {"", "none"}};
    for (const auto& [text, wanted] : cases) {
        const auto number = sql::readDecimal(text, 4);
        EXPECT_EQ(number ? sql::writeDecimal(*number) : "none", wanted) << text;
        if (!number) continue;
        const sql::Decimal back = sql::fromStoredDecimal(sql::storedDecimal(*number), 4);
        EXPECT_EQ(sql::writeDecimal(back), wanted) << text << " stored and read";
    }
    const char* ascending[] = {"-1e20", "-10",   "-9.99", "-9.9",   "-1.05", "-1",
                               "-0.5",  "-5e-9", "0",     "0.0005", "0.05",  "0.5",
                               "0.501", "1",     "1.5",   "9",      "10",    "123456789012345678.1"};
    for (std::size_t i = 1; i < std::size(ascending); ++i) {
        EXPECT_LT(*sql::exactOrder(ascending[i - 1]), *sql::exactOrder(ascending[i])) << ascending[i];
    }
    EXPECT_EQ(sql::exactOrder("+12.50e-1"), sql::exactOrder(" 1.25"));
    EXPECT_EQ(sql::exactOrder("1,5"), std::nullopt);
    // 2^32 and one: the second and the last of the four stored numbers.
    EXPECT_EQ(sql::storedDecimal(*sql::readDecimal("-4294967297", 0)),
              (jet::Bytes{0x80, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0}));
}

TEST(DecimalTest, SumsAreExact) {
    const std::string nines(38, '9');
    EXPECT_EQ(sql::exactSum("256", "1", true), "255");
    EXPECT_EQ(sql::exactSum("1", "65536.5", true), "-65535.5");
    EXPECT_EQ(sql::exactSum("-1.50", "1.5", false), "0.00");
    EXPECT_EQ(sql::exactSum("99999999999999999999.5", "0.55", false), "100000000000000000000.05");
    EXPECT_EQ(sql::exactSum("-255", "1", true), "-256");
    EXPECT_EQ(sql::exactSum(nines, "1", false), std::nullopt);
    EXPECT_EQ(sql::exactSum("-" + nines, nines, false), "0");
}

}  // namespace
