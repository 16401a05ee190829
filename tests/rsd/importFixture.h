#pragma once

#include <deque>

#include "tests/support/programFixture.h"
#include "tests/support/sqlFile.h"

/// Imports texts as herd.csv, and looks at the new file herd.cax.
class ImportTest : public ProgramTest {
  protected:
    using Texts = std::vector<std::string>;

    /// Imports a text with these answers to the questions, all of which have to come. The boxes are those of this
    /// import alone.
    void import(const std::string& text, std::deque<std::string> answers = {}) {
        driver.boxes.clear();
        driver.answers = std::move(answers);
        convert("Csv", "Rsd", write("herd.csv", text));
        EXPECT_TRUE(driver.answers.empty());
        EXPECT_EQ(read(path("herd.csv")), text) << "the source was changed";
        EXPECT_EQ(driver.text("frmMain", "lblDestinationFilePath"), path("herd.cax"));
    }

    /// Does the same in place of an earlier result.
    void importAnew(const std::string& text, std::deque<std::string> answers = {}) {
        std::filesystem::remove(path("herd.cax"));
        import(text, std::move(answers));
    }

    Texts tree(const std::string& columns) {
        return SqlFile(path("herd.cax")).rows("SELECT " + columns + " FROM tree ORDER BY id");
    }
    std::string settings(const std::string& columns) {
        return SqlFile(path("herd.cax")).value("SELECT " + columns + " FROM settings");
    }
};
