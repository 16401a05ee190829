#pragma once

#include <chrono>
#include <string>
#include <sys/types.h>

/// Another program that uses a database file while ours does: a process of its own that takes the locks which the
/// library takes.
class OtherProgram {
  public:
    enum class Lock { reading, writing };

    /// Has it take the lock and keep it for so long. Returns when the lock is taken; std::runtime_error if it is not.
    OtherProgram(const std::string& path, Lock lock, std::chrono::milliseconds time);
    OtherProgram(const OtherProgram&) = delete;
    OtherProgram& operator=(const OtherProgram&) = delete;
    ~OtherProgram();

    /// Whether it could write to the file at this moment.
    static bool mayWrite(const std::string& path);

  private:
    pid_t process_;
};
