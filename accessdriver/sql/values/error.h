#pragma once

#include <stdexcept>
#include <string>

namespace sql {

/// A statement or value that was refused. what() is a full sentence for the user.
class Error : public std::runtime_error {
  public:
    /// state is one of the five-character SQLSTATEs of the ODBC reference, a literal.
    Error(const char* state, const std::string& message) : std::runtime_error(message), state_(state) {}
    const char* state() const { return state_; }

  private:
    const char* state_;
};

}  // namespace sql
