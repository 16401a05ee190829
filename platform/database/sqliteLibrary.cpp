#include "platform/database/sqliteLibrary.h"

#include "platform/database/sqliteConnection.h"

namespace {

/// An INSERT into all columns of `tree` takes some hundred allocations. So many take half a second and some 50 MB.
constexpr int mostAllocations = 200'000;

sqlite3_mem_methods standard;
bool isLimited = false;
int allocationsLeft = 0;

bool mayAllocate() { return !isLimited || (allocationsLeft > 0 && --allocationsLeft > 0); }

void* allocate(int size) { return mayAllocate() ? standard.xMalloc(size) : nullptr; }

void* reallocate(void* memory, int size) { return mayAllocate() ? standard.xRealloc(memory, size) : nullptr; }

}  // namespace

namespace detail {

void configureLibrary() {
    [[maybe_unused]] static const bool once = [] {
        // There is one thread, so the library need not guard its objects, and nobody asks how much memory it uses.
        sqlite3_config(SQLITE_CONFIG_SINGLETHREAD);
        sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
        if (sqlite3_config(SQLITE_CONFIG_GETMALLOC, &standard) != SQLITE_OK) return false;
        sqlite3_mem_methods limited = standard;
        limited.xMalloc = allocate;
        limited.xRealloc = reallocate;
        sqlite3_config(SQLITE_CONFIG_MALLOC, &limited);
        return true;
    }();
}

CompilationLimit::CompilationLimit() {
    isLimited = true;
    allocationsLeft = mostAllocations;
}

CompilationLimit::~CompilationLimit() { isLimited = false; }

bool CompilationLimit::exceeded() const { return allocationsLeft == 0; }

}  // namespace detail
