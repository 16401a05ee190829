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

/// Reads a file line by line, without decoding. A line ends at CR LF, LF or CR. Bytes behind the last line end are a
/// line, too.
class TextInputStream {
  public:
    /// Raises FileFailure if there is no regular file of that native path, or it cannot be read.
    explicit TextInputStream(const std::string& path);

    /// Whether all lines have been read. Raises FileFailure if reading fails.
    bool atEnd();

    /// Returns the next line without its line end, or an empty text at the end. Raises FileFailure if reading fails.
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

/// Writes a new text file and replaces an existing one; a pipe or a device is refused. Writing is buffered: a full disk
/// may be reported only by a later call or by close(). The destructor keeps what was written and reports nothing.
class TextOutputStream {
  public:
    /// Raises FileFailure if the file cannot be created.
    explicit TextOutputStream(const std::string& path);

    /// Writes the text. Raises FileFailure.
    void write(std::string_view text);

    /// Writes the text and the platform's line end. Raises FileFailure.
    void writeLine(std::string_view text);

    /// Writes the rest of the buffer and flushes the file and its folder to the disk. Raises FileFailure if one of
    /// these fails.
    void close();

  private:
    [[noreturn]] void fail() const;

    std::string path_;
    detail::FileHandle file_;
};
