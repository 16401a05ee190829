#include "tests/help/sourceTexts.h"

#include <cctype>
#include <fstream>
#include <sstream>
#include <string_view>

namespace {

std::string contentOf(const std::filesystem::path& path) {
    std::ifstream file(path);
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

/// Walks through a source once, character by character.
class Reader {
  public:
    explicit Reader(std::filesystem::path path) : path_(std::move(path)), source_(contentOf(path_)) {}

    std::vector<StatementTexts> statements() {
        while (at_ < source_.size()) {
            const char c = source_[at_];
            if (source_.compare(at_, 2, "//") == 0) {
                at_ = std::min(source_.find('\n', at_), source_.size());
            } else if (c == '"') {
                readText();
            } else if (c == '\'') {
                skipCharacter();
            } else if (c == ';' || c == '{' || c == '}') {
                endStatement();
                ++at_;
            } else {
                if (std::isspace(static_cast<unsigned char>(c)) == 0) noteCode(c);
                ++at_;
            }
        }
        return std::move(found_);
    }

  private:
    void readText() {
        std::string text;
        for (++at_; at_ < source_.size() && source_[at_] != '"'; ++at_) {
            if (source_[at_] != '\\') {
                text += source_[at_];
            } else if (source_[++at_] == '"') {
                text += '"';
            }
        }
        ++at_;
        if (touchesLast_) {
            statement_.texts.back() += text;
        } else {
            statement_.texts.push_back(text);
        }
        touchesLast_ = true;
    }

    void skipCharacter() {
        for (++at_; at_ < source_.size() && source_[at_] != '\''; ++at_) {
            if (source_[at_] == '\\') ++at_;
        }
        ++at_;
        noteCode('\'');
    }

    void noteCode(char c) {
        touchesLast_ = false;
        code_ += c;
    }

    void endStatement() {
        const bool calls =
            code_.find("showMessage(") != std::string::npos || code_.find("askYesNo(") != std::string::npos;
        if (!statement_.texts.empty()) {
            statement_.file = path_;
            statement_.isBox = calls;
            found_.push_back(std::move(statement_));
        }
        statement_ = {};
        code_.clear();
        touchesLast_ = false;
    }

    std::filesystem::path path_;
    std::string source_;
    std::size_t at_ = 0;
    std::string code_;
    bool touchesLast_ = false;
    StatementTexts statement_;
    std::vector<StatementTexts> found_;
};

}  // namespace

std::vector<StatementTexts> statementTexts(const std::filesystem::path& folder) {
    std::vector<StatementTexts> all;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (entry.path().extension() != ".cpp" || entry.path().parent_path().filename() == "tests") continue;
        for (StatementTexts& statement : Reader(entry.path()).statements()) all.push_back(std::move(statement));
    }
    return all;
}
