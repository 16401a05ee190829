// The help page says what the program does: its tables of headings, sexes and messages beside the code.

#include <algorithm>

#include <gtest/gtest.h>

#include "converters/headingWords.h"
#include "fieldtext/sexWords.h"
#include "tests/help/helpPage.h"
#include "tests/help/sourceTexts.h"

namespace {

TEST(HelpPage, HasEveryHeadingWordOfEveryField) {
    const auto& fields = columnRecognition::headingWords();
    const auto rows = helpPage::table("fields");
    ASSERT_EQ(rows.size(), fields.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(rows[i].at(1).words(), fields[i].words) << rows[i][0].lines()[0];
        EXPECT_EQ(rows[i][0].has("<sup>2</sup>"), fields[i].key > columnRecognition::notes) << rows[i][0].lines()[0];
    }
}

TEST(HelpPage, HasEveryWordForASex) {
    const auto rows = helpPage::table("sex");
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[0].at(1).words(),
              std::vector<std::string>(appSystem::maleWords.begin(), appSystem::maleWords.end()));
    EXPECT_EQ(rows[1].at(1).words(),
              std::vector<std::string>(appSystem::femaleWords.begin(), appSystem::femaleWords.end()));
}

/// A message of the help page: what stands around its "..." and the parts of it in brackets.
std::vector<std::string> partsOf(std::string line) {
    std::vector<std::string> parts;
    for (std::size_t gap; (gap = line.find("...")) != std::string::npos; line = line.substr(gap + 3)) {
        parts.push_back(line.substr(0, gap));
    }
    parts.push_back(line);
    for (std::string& part : parts) {
        const std::size_t first = part.find_first_not_of(' ');
        part = first == std::string::npos ? "" : part.substr(first, part.find_last_not_of(' ') - first + 1);
    }
    std::erase(parts, "");
    return parts;
}

/// Whether the statement's texts hold the parts, one after the other.
bool says(const StatementTexts& statement, const std::vector<std::string>& parts) {
    std::string all;
    for (const std::string& text : statement.texts) all += text + "\n";
    std::size_t at = 0;
    return std::all_of(parts.begin(), parts.end(), [&](const std::string& part) {
        const std::size_t found = all.find(part, at);
        at = found + part.size();
        return found != std::string::npos;
    });
}

/// Rows that describe what happens, and quote nothing, are set in italics.
std::vector<std::vector<std::string>> quotedMessages() {
    std::vector<std::vector<std::string>> messages;
    for (const auto& row : helpPage::table("messages")) {
        if (row.at(0).has("<em>")) continue;
        for (const std::string& line : row[0].lines()) messages.push_back(partsOf(line));
    }
    return messages;
}

std::vector<StatementTexts> programTexts() {
    std::vector<StatementTexts> all;
    for (const char* room : {"platform", "fieldtext", "stores", "linking", "converters", "shell"}) {
        const auto more = statementTexts(std::filesystem::path(TOLVARIS_SOURCES) / room);
        all.insert(all.end(), more.begin(), more.end());
    }
    return all;
}

TEST(HelpPage, QuotesMessagesThatTheProgramHas) {
    const auto statements = programTexts();
    const auto messages = quotedMessages();
    EXPECT_GT(messages.size(), 20U);
    for (const auto& parts : messages) {
        EXPECT_TRUE(std::any_of(statements.begin(), statements.end(), [&](const auto& statement) {
            return says(statement, parts);
        })) << testing::PrintToString(parts);
    }
}

TEST(HelpPage, ExplainsEveryMessage) {
    const auto messages = quotedMessages();
    int boxes = 0;
    for (const StatementTexts& statement : programTexts()) {
        // What the boxes themselves are made of says nothing to their reader.
        if (!statement.isBox || statement.file.filename() == "messageBox.cpp") continue;
        ++boxes;
        EXPECT_TRUE(
            std::any_of(messages.begin(), messages.end(), [&](const auto& parts) { return says(statement, parts); }))
            << statement.file << ": " << testing::PrintToString(statement.texts);
    }
    EXPECT_GT(boxes, 20);
}

}  // namespace
