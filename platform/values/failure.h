#pragma once

#include <stdexcept>
#include <string>
#include <utility>

/// A failure of the framework. All failures that the program raises are of this family.
class Failure : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// An object was used that is not there: no window, no connection, no record set, no column of that name, no date.
class NullReference : public Failure {
  public:
    explicit NullReference(const std::string& what) : Failure("Nothing there to use: " + what) {}
};

/// An index outside the bounds of a grid or list.
class OutOfBounds : public Failure {
  public:
    explicit OutOfBounds(const std::string& what) : Failure("Out of bounds: " + what) {}
};

/// A file could not be opened, read, written or deleted. The text names the file and the system's reason.
class FileFailure : public Failure {
  public:
    using Failure::Failure;
};

/// A database operation that cannot be carried out at all, such as storing a record where no connection is.
class DatabaseFailure : public Failure {
  public:
    using Failure::Failure;
};

/// Runs body and drops whatever failure it raises: the one way to write a routine that is silent about its failures.
/// Returns whether body came to its end.
template <typename Body>
bool guarded(Body&& body) {
    try {
        std::forward<Body>(body)();
        return true;
    } catch (...) {
        return false;
    }
}
