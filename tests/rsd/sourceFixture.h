#pragma once

#include <map>

#include "tests/support/programFixture.h"
#include "tests/support/sqlFile.h"

/// Exports herd.rsd from the test's folder, and sees that nothing there changes but the export's result.
class SourceTest : public ProgramTest {
  protected:
    /// Returns the contents of all files but the export's result, by path.
    std::map<std::string, std::string> files() const {
        std::map<std::string, std::string> found;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(path(""))) {
            const std::string name = entry.path().string();
            if (entry.is_regular_file() && !name.ends_with(".csv")) found[name] = read(name);
        }
        return found;
    }

    /// Returns the animals' names, each followed by a blank.
    std::string exported() {
        const auto before = files();
        std::filesystem::remove(path("herd( tree ).csv"));
        convert("Rsd", "Csv", path("herd.rsd"));
        EXPECT_EQ(files(), before);
        const bool exists = std::filesystem::exists(path("herd( tree ).csv"));
        std::istringstream rows(exists ? read(path("herd( tree ).csv")) : "\nno file,");
        std::string names;
        std::string row;
        std::getline(rows, row);
        while (std::getline(rows, row)) names += row.substr(0, row.find(',')) + " ";
        return names;
    }

    /// Replaces herd.rsd by a new file.
    void makeSource(const std::string& sql, const std::string& key = "") const {
        std::filesystem::remove(path("herd.rsd"));
        SqlFile(path("herd.rsd"), key).run(sql);
    }
};
