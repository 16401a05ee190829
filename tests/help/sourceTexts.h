#pragma once

#include <filesystem>
#include <string>
#include <vector>

/// The texts that one statement of a source file holds, in their order; such as stand side by side are joined.
struct StatementTexts {
    std::filesystem::path file;
    bool isBox = false;  ///< whether the statement shows a box
    std::vector<std::string> texts;
};

/// All statements with texts in the .cpp files below the folder, without its tests.
std::vector<StatementTexts> statementTexts(const std::filesystem::path& folder);
