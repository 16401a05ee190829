#pragma once

#include <string>
#include <vector>

#include <sql.h>

namespace odbc {

/// One diagnostic record of a handle.
struct Record {
    std::string state;      ///< SQLSTATE, five characters
    SQLINTEGER native = 0;  ///< our own code, see diagnostics.cpp; 0 for warnings
    std::string message;    ///< UTF-8, with the driver's name in brackets before it
};

/// The diagnostic records that the last call on a handle left.
class Diagnostics {
  public:
    void clear() { records_.clear(); }
    bool empty() const { return records_.empty(); }
    const std::vector<Record>& records() const { return records_; }

    void warn(const char* state, const std::string& message) { add(state, 0, message); }

    /// A refusal that is too common for an exception.
    void refuse(const char* state, const std::string& message);

    /// Makes a record of the exception that is being handled, whatever it is.
    void addCurrentException() noexcept;

  private:
    void add(const char* state, SQLINTEGER native, const std::string& message);

    std::vector<Record> records_;
};

}  // namespace odbc
