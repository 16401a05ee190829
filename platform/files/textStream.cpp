#include "platform/files/textStream.h"

#include <cerrno>
#include <cstring>
#include <unistd.h>

#include "platform/files/files.h"
#include "platform/values/failure.h"
#include "platform/values/text.h"

namespace {

constexpr std::size_t bufferSize = 1U << 16U;

std::string reason(const std::string& path) { return path + ": " + std::strerror(errno); }

/// Offset of the first CR or LF. Two plain searches are many times faster than one for either character.
std::size_t lineEnd(std::string_view pending) {
    const std::size_t lineFeed = pending.find('\n');
    const std::size_t carriageReturn = pending.substr(0, lineFeed).find('\r');
    return carriageReturn == std::string_view::npos ? lineFeed : carriageReturn;
}

/// Opening a pipe waits for its other end, which may never come.
void refuseDevices(const std::string& path) {
    const FileReference file(path);
    if (file.exists() && !file.isRegular()) throw FileFailure(path + ": a folder or device, not a file");
}

}  // namespace

TextInputStream::TextInputStream(const std::string& path) : path_(path), buffer_(bufferSize) {
    refuseDevices(path);
    file_.reset(std::fopen(path.c_str(), "rb"));
    if (!file_) throw FileFailure(reason(path));
    std::setvbuf(file_.get(), nullptr, _IONBF, 0);
}

bool TextInputStream::fill() {
    position_ = 0;
    filled_ = file_ ? std::fread(buffer_.data(), 1, buffer_.size(), file_.get()) : 0;
    if (file_ && std::ferror(file_.get()) != 0) throw FileFailure(reason(path_));
    return filled_ > 0;
}

bool TextInputStream::atEnd() { return position_ == filled_ && !fill(); }

std::string TextInputStream::readLine() {
    std::string line;
    while (!atEnd()) {
        const std::string_view pending(buffer_.data() + position_, filled_ - position_);
        const std::size_t end = lineEnd(pending);
        line += pending.substr(0, end);
        if (end == std::string_view::npos) {
            position_ = filled_;
            continue;
        }
        position_ += end + 1;
        if (pending[end] == '\r' && !atEnd() && buffer_[position_] == '\n') ++position_;
        break;
    }
    return line;
}

TextOutputStream::TextOutputStream(const std::string& path) : path_(path) {
    refuseDevices(path);
    file_.reset(std::fopen(path.c_str(), "wb"));
    if (!file_) fail();
    std::setvbuf(file_.get(), nullptr, _IOFBF, bufferSize);
}

void TextOutputStream::write(std::string_view text) {
    if (!file_ || std::fwrite(text.data(), 1, text.size(), file_.get()) != text.size()) fail();
}

void TextOutputStream::writeLine(std::string_view text) {
    write(text);
    write(text::endOfLine());
}

void TextOutputStream::close() {
    if (!file_) return;
    const bool written = std::fflush(file_.get()) == 0 && ::fsync(::fileno(file_.get())) == 0;
    if (std::fclose(file_.release()) != 0 || !written || !FileReference(path_).parent().sync()) fail();
}

void TextOutputStream::fail() const { throw FileFailure(reason(path_)); }
