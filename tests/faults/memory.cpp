// Memory that runs out, for the database library and the driver alone: the toolkit ends the process when it gets none.

#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <link.h>
#include <new>

#include "tests/faults/plan.h"

extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* old, size_t size);
}

namespace {

/// Whether the code at this place belongs to one of the two. Looks nothing up that would want memory itself.
bool isCounted(void* caller) {
    dl_find_object found{};
    if (_dl_find_object(caller, &found) != 0) return false;
    const char* const name = found.dlfo_link_map->l_name;
    return std::strstr(name, "libsqlcipher") != nullptr || std::strstr(name, "tolvarisaccess") != nullptr;
}

bool runsOut(void* caller) { return isCounted(caller) && faults::fails(faults::allocations); }

}  // namespace

extern "C" {

void* malloc(size_t size) { return runsOut(__builtin_return_address(0)) ? nullptr : __libc_malloc(size); }

void* calloc(size_t count, size_t size) {
    return runsOut(__builtin_return_address(0)) ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* old, size_t size) {
    return runsOut(__builtin_return_address(0)) ? nullptr : __libc_realloc(old, size);
}
}

void* operator new(size_t size) {
    void* const memory = runsOut(__builtin_return_address(0)) ? nullptr : __libc_malloc(size == 0 ? 1 : size);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}
