#include "accessdriver/odbc/handles/connectString.h"

#include <algorithm>

#include "accessdriver/jet/utf8.h"
#include "accessdriver/sql/values/caseFold.h"
#include "accessdriver/sql/values/error.h"
#include "accessdriver/sql/values/numbers.h"

namespace odbc {

namespace {

// Takes the value at the start of rest, and the semicolon behind it.
std::string takePlain(std::string_view& rest) {
    const std::size_t end = std::min(rest.find(';'), rest.size());
    std::string value(sql::trimmed(rest.substr(0, end)));
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return value;
}

std::string takeBraced(std::string_view& rest) {
    std::string value;
    for (std::size_t i = 1; i < rest.size(); ++i) {
        if (rest[i] != '}') {
            value += rest[i];
        } else if (i + 1 < rest.size() && rest[i + 1] == '}') {
            value += rest[i++];
        } else {
            rest.remove_prefix(i + 1);
            takePlain(rest);
            return value;
        }
    }
    throw sql::Error("08001", "A brace in the connection string does not close.");
}

}  // namespace

ConnectString::ConnectString(std::string_view text) {
    while (!text.empty()) {
        const std::size_t end = text.find_first_of("=;");
        if (end == std::string_view::npos || text[end] == ';') {
            const std::string piece = takePlain(text);
            if (!piece.empty()) {
                throw sql::Error("08001",
                                 "The connection string has a piece without a value: " + jet::abbreviated(piece));
            }
            continue;
        }
        std::string keyword(sql::trimmed(text.substr(0, end)));
        text.remove_prefix(std::min(text.find_first_not_of(' ', end + 1), text.size()));
        std::string value = text.starts_with('{') ? takeBraced(text) : takePlain(text);
        pairs_.emplace_back(std::move(keyword), std::move(value));
    }
}

std::string ConnectString::value(std::string_view keyword) const {
    const auto found = std::find_if(pairs_.begin(), pairs_.end(),
                                    [&](const auto& pair) { return sql::sameName(pair.first, keyword); });
    return found == pairs_.end() ? std::string() : found->second;
}

}  // namespace odbc
