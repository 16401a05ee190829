# Options, compiler settings and functions that every project of this repository starts with: the converter, and the
# Access driver when it is configured alone. Include it after project().
cmake_path(GET CMAKE_CURRENT_LIST_DIR PARENT_PATH repository)

option(TOLVARIS_WERROR "Treat warnings in our own targets as errors" OFF)
option(BUILD_TESTING "Build the tests and benches too, with what they need" ON)
option(TOLVARIS_SANITIZE "Build with AddressSanitizer and UndefinedBehaviorSanitizer" OFF)
option(TOLVARIS_LIBFUZZER "Build the harnesses of tests/fuzz for clang's libFuzzer" OFF)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR})

# Every target of ours links this: warnings, sanitizers and the include root are set in one place.
add_library(tolvaris_options INTERFACE)
target_include_directories(tolvaris_options INTERFACE ${repository})
# One kind of code everywhere, as a shared library and the toolkit want it, so that a precompiled header fits all targets.
target_compile_options(tolvaris_options INTERFACE -fPIC)
target_compile_options(tolvaris_options INTERFACE -Wall -Wextra -Wpedantic $<$<BOOL:${TOLVARIS_WERROR}>:-Werror>)
# GCC 12 warns of overlapping and of endless copies inside the standard library where a literal is put in front of a string.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(tolvaris_options INTERFACE -Wno-restrict -Wno-stringop-overflow -Wno-array-bounds)
endif()
if(TOLVARIS_SANITIZE)
    set(sanitizers -fsanitize=address,undefined,float-cast-overflow,float-divide-by-zero)
    target_compile_options(tolvaris_options INTERFACE ${sanitizers} -fno-sanitize-recover=undefined,float-cast-overflow,float-divide-by-zero -fno-omit-frame-pointer)
    target_compile_definitions(tolvaris_options INTERFACE _GLIBCXX_ASSERTIONS)
    target_link_options(tolvaris_options INTERFACE ${sanitizers})
endif()

if(TOLVARIS_LIBFUZZER)
    target_compile_options(tolvaris_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
include(${repository}/packaging/hardening.cmake)

find_package(PkgConfig REQUIRED)
include(${repository}/cmake/libraries.cmake)
if(BUILD_TESTING)
    enable_testing()
    include(${repository}/cmake/tests.cmake)
endif()
