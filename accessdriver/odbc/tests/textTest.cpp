#include <gtest/gtest.h>

#include "accessdriver/odbc/data/text.h"
#include "accessdriver/sql/values/error.h"

namespace {

using odbc::Width;

std::string narrow(const std::string& text, SQLLEN length = SQL_NTS) {
    return odbc::utf8From(reinterpret_cast<const SQLCHAR*>(text.c_str()), length);
}

std::string wide(const std::u16string& text, SQLLEN length = SQL_NTS) {
    return odbc::utf8From(reinterpret_cast<const SQLWCHAR*>(text.c_str()), length);
}

TEST(Text, NarrowBytesOutsideUtf8AreWindows1252) {
    const std::pair<const char*, const char*> cases[] = {
        {"Zoë €🐹", "Zoë €🐹"},
        {"Zo\xEB", "Zoë"},
        {"\x80 \x93quoted\x94", "€ “quoted”"},
        {"ë and \xEB", "ë and ë"},
        {"\xC3", "Ã"},
        {"\xC0\xAF", "À¯"},            // overlong
        {"\xED\xA0\x80", "í\u00A0€"},  // half a surrogate pair
        {"\xF4\x90\x80\x80", "ô\u0090€€"},
        {"\xE2\x82", "â‚"},
    };
    for (const auto& [given, wanted] : cases) EXPECT_EQ(narrow(given), wanted);
    EXPECT_EQ(narrow("abcdef", 3), "abc");
    EXPECT_EQ(narrow("abc", 0), "");
    EXPECT_THROW(narrow("abc", -1), sql::Error);
    EXPECT_EQ(odbc::utf8From(static_cast<const SQLCHAR*>(nullptr), 5), "");
}

TEST(Text, WideTextsRoundTripAndHalfPairsAreReplaced) {
    const std::u16string all = u"aé€🐹\uFFFF";
    EXPECT_EQ(wide(all), "aé€🐹\uFFFF");
    const std::string bytes = odbc::encoded("aé€🐹\uFFFF", Width::wide);
    EXPECT_EQ(bytes, std::string(reinterpret_cast<const char*>(all.data()), all.size() * 2));
    const std::u16string halves = {0xD83D, u'x', 0xDC39, 0xD83D};
    EXPECT_EQ(wide(halves, 4), "\uFFFDx\uFFFD\uFFFD");
    EXPECT_EQ(wide(u"abc", 2), "ab");
}

TEST(Text, CopyOutWritesNothingWhereNothingFits) {
    char buffer[4] = {'#', '#', '#', '#'};
    EXPECT_TRUE(odbc::copyBytesOut("abc", 1, 1, buffer, 0).truncated);
    EXPECT_TRUE(odbc::copyBytesOut("abc", 2, 2, buffer, 1).truncated);
    EXPECT_EQ(std::string(buffer, 4), "####");
    EXPECT_FALSE(odbc::copyBytesOut("abc", 1, 1, buffer, 4).truncated);
    EXPECT_TRUE(odbc::copyBytesOut("abcd", 1, 0, buffer, 3).truncated) << "bytes end without a zero";
    EXPECT_EQ(std::string(buffer, 4), std::string("abc\0", 4));
}

}  // namespace
