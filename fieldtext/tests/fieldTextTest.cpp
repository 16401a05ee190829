// The rules for single values and lines.

#include <chrono>

#include "fieldtext/normalisers.h"
#include "fieldtext/textHelpers.h"
#include "platform/files/files.h"
#include "platform/files/textStream.h"
#include "platform/values/failure.h"
#include "platform/values/text.h"
#include "shell/state/appSystem.h"
#include "tests/support/programFixture.h"

namespace {

using namespace std::string_literals;
using namespace appSystem;
using Texts = std::vector<std::string>;

class FieldText : public ProgramTest {
  protected:
    /// Returns the first cells of a row of the grid.
    static Texts cells(int row, int count) {
        Texts found;
        for (int column = 0; column < count; ++column) found.emplace_back(CSVa.cell(row, column));
        return found;
    }
};

TEST_F(FieldText, ApostrophesAndDollarSignsAreReplacedOnTheirWayInAndOut) {
    EXPECT_EQ(rma("O'Hara's `$"), "O`Hara`s `$");
    for (const auto& [in, out] : {std::pair{"was `here` before", "was 'here' before"},
                                  {"$ 5", "' 5"},
                                  {"cost$", "cost'"},
                                  {"a$5 b$x", "a$5 b$x"},
                                  {"a$x b$5", "a'x b'5"},
                                  {"`$9$", "'$9$"},
                                  {"$\xD9\xA3", "'\xD9\xA3"},  // a digit of another script
                                  {"", ""}}) {
        EXPECT_EQ(rpa(in), out) << in;
    }
    EXPECT_EQ(rcr("a\nb\n\nc\r"), "a - b -  - c\r");
}

TEST_F(FieldText, LinesAreTrimmedFirstAndThenLoseQuotesAndLineEnds) {
    for (const auto& [in, out] : {std::pair{"\""s, ""s},
                                  {" \t a,b \v\f", "a,b"},
                                  {"\" a \"", " a "},
                                  {"a\r\nb\"\"c", "abc"},
                                  {"\xEF\xBB\xBFname,sex", "name,sex"},
                                  {"\xC2\xA0name\xC2\xA0\xE3\x80\x80", "name"},
                                  {"\xA0name", "\xA0name"},  // no UTF-8: a letter for all that is known
                                  {"a\0b"s, "a\0b"s}}) {
        EXPECT_EQ(clean(in), out);
    }
}

TEST_F(FieldText, ALineEndsAtEitherCharacterAlsoBetweenTwoBuffers) {
    constexpr std::size_t buffer = 65536;
    for (const std::string end : {"\n", "\r", "\r\n"}) {
        for (const std::size_t size : {buffer - 2, buffer - 1, buffer, 2 * buffer - 1}) {
            const std::string line(size, 'x');
            TextInputStream file(write("lines.csv", line + end + "Ada" + end + end + "Bob"));
            Texts lines;
            while (!file.atEnd()) lines.push_back(file.readLine());
            EXPECT_TRUE(lines == (Texts{line, "Ada", "", "Bob"})) << size << " bytes, " << lines.size() << " lines";
        }
    }
}

TEST_F(FieldText, AddressesAreSafeInsideSingleQuotes) {
    EXPECT_EQ(FileReference("/O'Hara/käfig 1/").url(), "file:///O%27Hara/k%C3%A4fig%201");
}

TEST_F(FieldText, CommasAreCountedAndSplitWhereverTheyStand) {
    EXPECT_EQ(countCommas(""), 0);
    EXPECT_EQ(countCommas(",a,\"b,c\",\xC3\xA9,"), 5);
    for (const auto& [line, expected] : {std::pair<std::string, Texts>{" \"whole line\" ", {"whole line"}},
                                         {",", {"", ""}},
                                         {" a ,\"b , c\", \" d \"", {"a", "b", "c", "d"}},
                                         {"\xC2\xA0x\xC2\xA0,\xEF\xBB\xBFy,caf\xE9,", {"x", "y", "caf\xE9", ""}}}) {
        CSVa = TextGrid(CSVa.rowCount(), CSVa.columnCount());
        extractfields(line, 3, ",");
        EXPECT_EQ(cells(3, static_cast<int>(expected.size())), expected) << line;
        EXPECT_EQ(CSVa.cell(3, static_cast<int>(expected.size())), "") << line;
    }
}

TEST_F(FieldText, TheGridKeepsWhatALineDoesNotReachAndDropsWhatLiesOutside) {
    std::string fields;
    for (int i = 0; i <= 71; ++i) fields += std::to_string(i) + ",";
    for (const int row : {5, 99000, 99001}) extractfields(fields, row, ",");
    extractfields("a,b", 5, ",");
    EXPECT_EQ(cells(5, 4), (Texts{"a", "b", "2", "3"}));
    EXPECT_EQ(CSVa.cell(5, 70), "70");
    EXPECT_EQ(CSVa.cell(99000, 70), "70");
    EXPECT_THROW(static_cast<void>(CSVa.cell(99001, 0)), OutOfBounds);
    EXPECT_THROW(static_cast<void>(CSVa.cell(0, 71)), OutOfBounds);
}

TEST_F(FieldText, ALineOutsideTheGridTakesNoLongerThanOneInIt) {
    const auto timeOf = [](const std::string& line, int row) {
        const auto begin = std::chrono::steady_clock::now();
        for (int i = 0; i < 100'000; ++i) extractfields(line, row, ",");
        return std::chrono::steady_clock::now() - begin;
    };
    for (const std::string line : {"", "a,b"}) {
        const auto inside = timeOf(line, 7);
        EXPECT_LT(timeOf(line, 99001), inside * 5) << "an exception for each of 28 million lines takes minutes";
    }
}

TEST_F(FieldText, GridCellsOfARowAreSetInAnyOrderAndToAnyLength) {
    TextGrid grid(2, 5);
    for (const auto& [column, cell] : {std::pair{3, "three"}, {0, "zero"}, {3, "3"}, {4, "four"}, {2, "two"}}) {
        grid.setCell(1, column, cell);
    }
    for (const std::size_t length : {65521U, 65522U, 65523U, 65524U, 200000U, 7U, 0U}) {
        const std::string text(length, 'x');
        for (const int column : {0, 1}) {
            grid.setCell(1, column, text);
            EXPECT_EQ(grid.cell(1, column), text);
            std::string behind;
            for (const int next : {2, 3, 4}) behind += grid.cell(1, next);
            EXPECT_EQ(behind, "two3four") << "behind " << length;
        }
        grid.setCell(1, 1, "");
    }
    EXPECT_EQ(grid.cell(0, 3), "");
    for (const auto& [row, column] : {std::pair{2, 0}, {-1, 0}, {0, 5}}) {
        EXPECT_THROW(grid.setCell(row, column, ""), OutOfBounds);
    }
}

TEST_F(FieldText, CharactersAreCountedNotBytes) {
    const std::string mixed = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x90\x88\xFFz";  // 1, 2, 3, 4 bytes, a stray one, 1
    EXPECT_EQ(text::length(mixed), 6U);
    EXPECT_EQ(text::left(mixed, 3), "a\xC3\xA9\xE2\x82\xAC");
    EXPECT_EQ(text::mid(mixed, 4, 1), "\xF0\x9F\x90\x88");
    EXPECT_EQ(text::mid(mixed, 5), "\xFFz");
    EXPECT_EQ(text::mid(mixed, 9, 2), "");
    EXPECT_EQ(text::left(mixed, 99), mixed);
    // Cut-off, overlong and impossible sequences: every byte is a character.
    for (const char* broken : {"\xC3", "\xE2\x82", "\xF0\x9F\x90", "\xC0\x80", "\xED\xA0\x80", "\xF5\x80\x80\x80"})
        EXPECT_EQ(text::length(broken), std::string(broken).size());
    EXPECT_EQ(text::lower("STRA\xC3\x9F\x45 \xC3\x84\xD0\x96 \xC4"), "stra\xC3\x9F\x65 \xC3\xA4\xD0\xB6 \xC4");
    EXPECT_TRUE(text::equals("\xC3\x84hre", "\xC3\xA4HRE"));
    EXPECT_EQ(text::lower("S\xC4\xB0RE"), "sire") << "the dotted capital I";
    EXPECT_FALSE(text::equals("\xC4", "\xE4")) << "no letters in no UTF-8";
    EXPECT_FALSE(text::equals("name", "names"));
    EXPECT_EQ(text::replaceAll("aaa", "aa", "a"), "aa") << "what was put in is not looked at again";
    EXPECT_EQ(text::replaceAll("x", "", "y"), "x");
}

TEST_F(FieldText, WordsForASexAreKnownInAnyLetterCase) {
    for (const auto& [sex, words] :
         {std::pair<std::string, Texts>{
              "male", {"m", "male", "dog", "sire", "buck", "cock", "boar", "bull", "b", "c", "MALE", "Boar"}},
          {"female", {"f", "female", "bitch", "dam", "doe", "hen", "sow", "cow", "d", "h", "HEN", "fEMALE"}},
          {"undefined", {"", "?", "m ", " m", "m.", "dogs", "1", "\xEF\xBD\x8D"}}}) {
        for (const std::string& word : words) EXPECT_EQ(convertSex(word), sex) << word;
    }
}

TEST_F(FieldText, TrueAndYesAndNumbersButZeroAreTrue) {
    for (const char* yes : {"True", "TRUE", "-1", "2", "yes", "+1", "1e400", "1E-400", ".5", "5.", " 7 "})
        EXPECT_EQ(getBooleanString(yes), "True") << yes;
    for (const char* no : {"", "False", "0", "0.0", "no", "truely", "-", ".", "1e", "e5", "0e9", "1.2.3", "+-1", "0x1"})
        EXPECT_EQ(getBooleanString(no), "False") << no;
}

}  // namespace
