#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3;

/// A database file opened with the library itself, without the program's layers, to prepare files and to check results.
class SqlFile {
  public:
    /// Opens or creates the file. A key makes it an encrypted one. Raises std::runtime_error.
    explicit SqlFile(const std::string& path, const std::string& key = "");

    sqlite3* handle() const { return handle_.get(); }

    /// Runs one or more statements. Raises std::runtime_error with the database's message.
    void run(std::string_view sql);

    /// Returns every row of a select, its cells joined by "|". NULL is shown as "NULL".
    std::vector<std::string> rows(std::string_view sql);

    /// Returns the first cell of the first row, or an empty text if there is none.
    std::string value(std::string_view sql);

  private:
    struct Close {
        void operator()(sqlite3* handle) const noexcept;
    };
    std::unique_ptr<sqlite3, Close> handle_;
};
