#include "platform/database/sqliteSource.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>
#include <unistd.h>
#include <vector>

#include "platform/database/sqliteConnection.h"

namespace detail {
namespace {

namespace fs = std::filesystem;

constexpr std::array<const char*, 2> sideFileSuffixes{"-journal", "-wal"};

sqlite3_vfs* defaultVfs() { return sqlite3_vfs_find(nullptr); }

int openWithoutLog(sqlite3_vfs* /*own*/, const char* name, sqlite3_file* file, int flags, int* granted) {
    if ((flags & SQLITE_OPEN_WAL) == 0) return defaultVfs()->xOpen(defaultVfs(), name, file, flags, granted);
    file->pMethods = nullptr;
    return SQLITE_CANTOPEN;
}

int deleteNothing(sqlite3_vfs* /*own*/, const char* /*name*/, int /*syncFolder*/) { return SQLITE_CANTOPEN; }

/// Returns a text that changes whenever the file or one of its side files does.
std::string stateOf(const std::string& path) {
    std::string state = path;
    for (const char* suffix : {"", sideFileSuffixes[0], sideFileSuffixes[1]}) {
        std::error_code missing;
        const auto size = fs::file_size(path + suffix, missing);
        const auto written =
            static_cast<long long>(fs::last_write_time(path + suffix, missing).time_since_epoch().count());
        state += missing ? " none" : " " + std::to_string(size) + " at " + std::to_string(written);
    }
    return state;
}

bool copyThrough(sqlite3_file* source, const std::string& to) {
    sqlite3_int64 size = 0;
    if (source->pMethods->xFileSize(source, &size) != SQLITE_OK) return false;
    std::ofstream out(to, std::ios::binary);
    std::vector<char> piece(1U << 20U);
    for (sqlite3_int64 at = 0; at < size && out; at += static_cast<sqlite3_int64>(piece.size())) {
        const auto count = std::min(size - at, static_cast<sqlite3_int64>(piece.size()));
        if (source->pMethods->xRead(source, piece.data(), static_cast<int>(count), at) != SQLITE_OK) return false;
        out.write(piece.data(), count);
    }
    return out.flush().good();
}

}  // namespace

const char* sourceVfs() {
    static constexpr const char* name = "tolvaris-source";
    static sqlite3_vfs vfs;
    // If memory runs out, no VFS is registered and the open fails; the next source tries again.
    if (sqlite3_vfs* basis = defaultVfs(); basis != nullptr && sqlite3_vfs_find(name) == nullptr) {
        vfs = *basis;
        vfs.zName = name;
        vfs.pNext = nullptr;
        vfs.xOpen = openWithoutLog;
        vfs.xDelete = deleteNothing;
        sqlite3_vfs_register(&vfs, 0);
    }
    return name;
}

bool requiresCopy(int result) { return result == SQLITE_CANTOPEN || result == SQLITE_READONLY; }

std::weak_ptr<SnapshotCopy> SnapshotCopy::latest;

std::shared_ptr<SnapshotCopy> SnapshotCopy::of(sqlite3* source) {
    // The library's name for the file: the side files lie beside the file itself, and not beside a link that leads
    // there.
    const char* name = sqlite3_db_filename(source, "main");
    const std::string path = name == nullptr ? "" : name;
    auto known = latest.lock();
    if (known && known->state_ == stateOf(path)) return known;
    std::error_code failed;
    std::string folder = (fs::temp_directory_path(failed) / "tolvaris-XXXXXX").string();
    if (failed || mkdtemp(folder.data()) == nullptr) return nullptr;
    const std::shared_ptr<SnapshotCopy> copy(new SnapshotCopy(folder));
    if (!copy->fill(source, path)) return nullptr;
    latest = copy;
    return copy;
}

SnapshotCopy::~SnapshotCopy() {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
}

/// The shared lock keeps other programs from writing to the file itself. What one of them appends to the log meanwhile
/// changes the state, and the files are copied again.
bool SnapshotCopy::fill(sqlite3* source, const std::string& path) {
    sqlite3_file* file = openFile(source);
    if (file == nullptr || file->pMethods->xLock(file, SQLITE_LOCK_SHARED) != SQLITE_OK) return false;
    bool whole = false;
    for (int tries = 0; tries < 5 && !whole; ++tries) {
        state_ = stateOf(path);
        bool copied = true;
        for (const char* suffix : sideFileSuffixes) {
            std::error_code failed;
            fs::remove(this->path() + suffix, failed);
            if (!fs::is_regular_file(path + suffix, failed)) continue;
            copied = copied && fs::copy_file(path + suffix, this->path() + suffix, failed);
            fs::permissions(this->path() + suffix, fs::perms::owner_read | fs::perms::owner_write, failed);
        }
        whole = copied && copyThrough(file, this->path()) && state_ == stateOf(path);
    }
    file->pMethods->xUnlock(file, SQLITE_LOCK_NONE);
    return whole;
}

bool beginsAsPlain(sqlite3* handle) {
    static constexpr std::string_view signature("SQLite format 3\0", 16);
    std::array<char, signature.size()> start{};
    sqlite3_file* file = openFile(handle);
    return file != nullptr && file->pMethods->xRead(file, start.data(), start.size(), 0) == SQLITE_OK &&
           std::string_view(start.data(), start.size()) == signature;
}

}  // namespace detail
