#pragma once

/// Settings of the SQLite library as a whole.
namespace detail {

/// Configures the library. Has an effect only before the first other call to it in the process.
void configureLibrary();

/// While one lives, the library gets memory so many times and no more: enough for every real statement to be compiled.
/// Nested views and common table expressions can double a statement's size at each level, and no progress handler is
/// called during compilation.
class CompilationLimit {
  public:
    CompilationLimit();
    CompilationLimit(const CompilationLimit&) = delete;
    CompilationLimit& operator=(const CompilationLimit&) = delete;
    ~CompilationLimit();

    /// Returns whether memory was refused.
    bool exceeded() const;
};

}  // namespace detail
