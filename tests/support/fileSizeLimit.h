#pragma once

#include <sys/resource.h>

/// While an object of this class lives, no file of this process grows beyond so many bytes: the write fails as on a
/// full disk. Source: setrlimit, RLIMIT_FSIZE.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(unsigned long bytes) {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    ~FileSizeLimit() { setrlimit(RLIMIT_FSIZE, &before_); }

  private:
    rlimit before_{};
};
