#pragma once

#include <chrono>
#include <string>
#include <sys/types.h>

/// Another process that uses a database file at the same time: it takes the same locks as the database library.
class OtherProgram {
  public:
    enum class Lock { reading, writing };

    /// Takes the lock and keeps it for `time`. Returns once the lock is held; throws std::runtime_error if it is
    /// refused.
    OtherProgram(const std::string& path, Lock lock, std::chrono::milliseconds time);
    OtherProgram(const OtherProgram&) = delete;
    OtherProgram& operator=(const OtherProgram&) = delete;
    ~OtherProgram();

    /// Whether another process could write to the file now.
    static bool mayWrite(const std::string& path);

  private:
    pid_t process_;
};
