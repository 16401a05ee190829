#include "platform/files/files.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <system_error>
#include <unistd.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QStandardPaths>
#include <QtCore/QUrl>
#include <QtGui/QDesktopServices>

#include "platform/values/failure.h"

namespace {

std::string withSeparator(const QString& path) {
    std::string native = QDir::toNativeSeparators(path).toStdString();
    const char separator = static_cast<char>(std::filesystem::path::preferred_separator);
    if (native.empty() || native.back() != separator) native += separator;
    return native;
}

/// Returns the path of a folder that is installed with the program: beside it, or in the platform's place for such
/// data.
std::string besideProgram(const QString& name) {
    const QString program = QCoreApplication::applicationDirPath();
    for (const QString& place : {program + "/../share/tolvaris-converter/", program + "/../Resources/"}) {
        if (QDir(place + name).exists()) return withSeparator(QDir::cleanPath(place + name));
    }
    return withSeparator(program + "/" + name);
}

}  // namespace

bool FileReference::exists() const {
    std::error_code ignored;
    return !path_.empty() && std::filesystem::exists(path_, ignored);
}

bool FileReference::remove() const {
    std::error_code failed;
    // std::filesystem::remove would also delete an empty folder.
    if (path_.empty() || std::filesystem::is_directory(std::filesystem::symlink_status(path_, failed))) return false;
    return std::filesystem::remove(path_, failed) && !failed;
}

bool FileReference::isRegular() const {
    std::error_code ignored;
    return std::filesystem::is_regular_file(path_, ignored);
}

bool FileReference::sync() const {
    const int folder = ::open(path_.empty() ? "." : path_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    // A folder that may be written but not read can't be opened, so no program can sync it.
    if (folder < 0) return errno == EACCES;
    const bool refused = ::fsync(folder) != 0 && errno != EINVAL && errno != ENOTSUP;
    ::close(folder);
    return !refused;
}

FileReference FileReference::parent() const {
    return FileReference(std::filesystem::path(path_).parent_path().string());
}

FileReference FileReference::child(std::string_view name) const {
    return FileReference((std::filesystem::path(path_) / name).string());
}

std::string FileReference::url() const {
    QByteArray encoded = QUrl::fromLocalFile(QString::fromStdString(path_)).toEncoded(QUrl::StripTrailingSlash);
    return encoded.replace('\'', "%27").toStdString();
}

void FileReference::createAsFolder() const {
    std::error_code failed;
    std::filesystem::create_directory(path_, failed);
    if (failed) throw FileFailure(path_ + ": " + failed.message());
}

void FileReference::launch() const {
    const std::filesystem::path absolute = std::filesystem::absolute(path_);
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(QString::fromStdString(absolute.string())))) {
        throw FileFailure(path_ + ": the system has no program that opens it");
    }
}

namespace folders {

std::string documents() { return withSeparator(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation)); }

std::string applications() {
#ifdef __APPLE__
    return withSeparator("/Applications");
#else
    return withSeparator(QStandardPaths::writableLocation(QStandardPaths::ApplicationsLocation));
#endif
}

std::string desktop() { return withSeparator(QStandardPaths::writableLocation(QStandardPaths::DesktopLocation)); }

std::string executable() { return withSeparator(QCoreApplication::applicationDirPath()); }

std::string resources() { return besideProgram("resources"); }

std::string help() { return besideProgram("help"); }

}  // namespace folders
