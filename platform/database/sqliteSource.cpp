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

constexpr std::array<const char*, 2> besides{"-journal", "-wal"};

sqlite3_vfs* usual() { return sqlite3_vfs_find(nullptr); }

int openWithoutLog(sqlite3_vfs* /*own*/, const char* name, sqlite3_file* file, int flags, int* granted) {
    if ((flags & SQLITE_OPEN_WAL) == 0) return usual()->xOpen(usual(), name, file, flags, granted);
    file->pMethods = nullptr;
    return SQLITE_CANTOPEN;
}

int deleteNothing(sqlite3_vfs* /*own*/, const char* /*name*/, int /*syncFolder*/) { return SQLITE_CANTOPEN; }

/// Changes whenever one of the files does.
std::string stateOf(const std::string& path) {
    std::string state = path;
    for (const char* ending : {"", besides[0], besides[1]}) {
        std::error_code missing;
        const auto size = fs::file_size(path + ending, missing);
        const auto written =
            static_cast<long long>(fs::last_write_time(path + ending, missing).time_since_epoch().count());
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

int onlyReading(void* /*unused*/, int action, const char* /*first*/, const char* second, const char* /*database*/,
                const char* /*trigger*/) {
    switch (action) {
        case SQLITE_SELECT:
        case SQLITE_READ:
        case SQLITE_RECURSIVE:
            return SQLITE_OK;
        case SQLITE_FUNCTION: {
            constexpr std::array<std::string_view, 3> doMore{"sqlcipher_export", "load_extension", "fts3_tokenizer"};
            return std::find(doMore.begin(), doMore.end(), second) == doMore.end() ? SQLITE_OK : SQLITE_DENY;
        }
        case SQLITE_PRAGMA:
            // Virtual tables ask for some; one with a value would set it.
            return second == nullptr ? SQLITE_OK : SQLITE_DENY;
        default:
            return SQLITE_DENY;
    }
}

}  // namespace

const char* sourceFileSystem() {
    static constexpr const char* name = "tolvaris-source";
    static sqlite3_vfs system;
    // Without memory the library finds none, and opens nothing by this name; the next source tries again.
    if (sqlite3_vfs* basis = usual(); basis != nullptr && sqlite3_vfs_find(name) == nullptr) {
        system = *basis;
        system.zName = name;
        system.pNext = nullptr;
        system.xOpen = openWithoutLog;
        system.xDelete = deleteNothing;
        sqlite3_vfs_register(&system, 0);
    }
    return name;
}

bool needsCopy(int result) { return result == SQLITE_CANTOPEN || result == SQLITE_READONLY; }

std::weak_ptr<PrivateCopy> PrivateCopy::latest;

bool PrivateCopy::isKnown(const std::string& path) {
    const auto known = latest.lock();
    return known && known->state_ == stateOf(path);
}

std::shared_ptr<PrivateCopy> PrivateCopy::of(sqlite3* source, const std::string& path) {
    if (isKnown(path)) return latest.lock();
    std::error_code failed;
    std::string folder = (fs::temp_directory_path(failed) / "tolvaris-XXXXXX").string();
    if (failed || mkdtemp(folder.data()) == nullptr) return nullptr;
    const std::shared_ptr<PrivateCopy> copy(new PrivateCopy(folder));
    if (!copy->fill(source, path)) return nullptr;
    latest = copy;
    return copy;
}

PrivateCopy::~PrivateCopy() {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
}

/// The lock keeps out everybody who would write to the file itself; what somebody puts into the log meanwhile shows in
/// its state, and it is copied again.
bool PrivateCopy::fill(sqlite3* source, const std::string& path) {
    sqlite3_file* file = openFile(source);
    if (file == nullptr || file->pMethods->xLock(file, SQLITE_LOCK_SHARED) != SQLITE_OK) return false;
    bool whole = false;
    for (int tries = 0; tries < 5 && !whole; ++tries) {
        state_ = stateOf(path);
        bool copied = true;
        for (const char* ending : besides) {
            std::error_code failed;
            fs::remove(this->path() + ending, failed);
            if (!fs::is_regular_file(path + ending, failed)) continue;
            copied = copied && fs::copy_file(path + ending, this->path() + ending, failed);
            fs::permissions(this->path() + ending, fs::perms::owner_read | fs::perms::owner_write, failed);
        }
        whole = copied && copyThrough(file, this->path()) && state_ == stateOf(path);
    }
    file->pMethods->xUnlock(file, SQLITE_LOCK_NONE);
    return whole;
}

void allowOnlyReading(sqlite3* handle) {
    sqlite3_exec(handle, "PRAGMA query_only = ON", nullptr, nullptr, nullptr);
    sqlite3_set_authorizer(handle, onlyReading, nullptr);
}

bool beginsAsPlain(sqlite3* handle) {
    static constexpr std::string_view signature("SQLite format 3\0", 16);
    std::array<char, signature.size()> start{};
    sqlite3_file* file = openFile(handle);
    return file != nullptr && file->pMethods->xRead(file, start.data(), start.size(), 0) == SQLITE_OK &&
           std::string_view(start.data(), start.size()) == signature;
}

}  // namespace detail
