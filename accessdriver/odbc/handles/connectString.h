#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace odbc {

/// The keywords and values of a connection string such as `DRIVER={a;b};DBQ=/home/x.cav;UID=;PWD=secret;`.
class ConnectString {
  public:
    /// A value may be in braces, in which a closing brace is doubled. Throws sql::Error(08001) for a piece that is
    /// no `keyword=value`, or braces that don't close.
    explicit ConnectString(std::string_view text);

    /// The value of a keyword in any letter case; the first one counts, as the ODBC reference has it. Empty if there is
    /// none.
    std::string value(std::string_view keyword) const;

  private:
    std::vector<std::pair<std::string, std::string>> pairs_;
};

}  // namespace odbc
