#pragma once

#include <initializer_list>
#include <locale.h>  // NOLINT: newlocale lives here, not in <clocale>
#include <memory>
#include <type_traits>
#ifdef __APPLE__
#include <xlocale.h>
#endif

namespace jet {

struct FreeLocale {
    void operator()(locale_t locale) const noexcept { freelocale(locale); }
};

/// A locale of the C library beside the one that the application set.
using LocaleHandle = std::unique_ptr<std::remove_pointer_t<locale_t>, FreeLocale>;

/// The first of the named locales that the system has, or none.
inline LocaleHandle openLocale(int categories, std::initializer_list<const char*> names) {
    for (const char* name : names) {
        if (const locale_t found = newlocale(categories, name, nullptr)) return LocaleHandle(found);
    }
    return nullptr;
}

}  // namespace jet
