#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace detail {
struct CloseFile {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};
using FileHandle = std::unique_ptr<std::FILE, CloseFile>;
}  // namespace detail

/// Reads a file line by line, bytes as they stand. A line ends at CR LF, LF or CR; what follows the last line end is a
/// line too, unless nothing follows.
class TextInputStream {
  public:
    /// Raises FileFailure if there is no regular file of that native path, or it cannot be read.
    explicit TextInputStream(const std::string& path);

    /// Whether all lines have been read. Raises FileFailure if reading fails.
    bool atEnd();

    /// The next line without its line end; empty at the end. Raises FileFailure if reading fails.
    std::string readLine();

    void close() { file_.reset(); }

  private:
    bool fill();

    std::string path_;
    detail::FileHandle file_;
    std::vector<char> buffer_;
    std::size_t position_ = 0;
    std::size_t filled_ = 0;
};

/// Writes a new text file, replacing what was there; a pipe or a device in its place is refused. Writing is buffered: a
/// full disk may show at a later line or at close(). Letting the stream go without close() keeps what was written and
/// reports nothing.
class TextOutputStream {
  public:
    /// Raises FileFailure if the file cannot be created.
    explicit TextOutputStream(const std::string& path);

    /// The text as it stands. Raises FileFailure.
    void write(std::string_view text);

    /// The text and the platform's line end. Raises FileFailure.
    void writeLine(std::string_view text);

    /// Returns when the disk has all of it, the folder's entry too. Raises FileFailure if what is still buffered cannot
    /// be written.
    void close();

  private:
    [[noreturn]] void fail() const;

    std::string path_;
    detail::FileHandle file_;
};
