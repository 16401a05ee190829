#pragma once

#include <string>
#include <string_view>

#include "platform/files/textStream.h"

/// Writes a new binary file, replacing what was there. Each call raises FileFailure if it fails.
class BinaryOutputStream {
  public:
    explicit BinaryOutputStream(const std::string& path) : stream_(path) {}

    /// One byte with the length, then the bytes; a text of more than 255 bytes is cut to that.
    void writePascalString(std::string_view text) {
        const std::string_view kept = text.substr(0, 255);
        stream_.write(std::string(1, static_cast<char>(kept.size())));
        stream_.write(kept);
    }

    void close() { stream_.close(); }

  private:
    TextOutputStream stream_;
};
