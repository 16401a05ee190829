# tolvaris_test(<executable> [PROPERTIES ...]): what all tests have in common. They share one precompiled header, are not
# optimized themselves (the code under test is, and the compiler's time is better spent there), and register each case.
include(GoogleTest)
find_package(GTest REQUIRED)

file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/cmake/testHeaders.cpp CONTENT "// Carries the precompiled header of the tests.\n")
add_library(testheaders OBJECT ${CMAKE_BINARY_DIR}/cmake/testHeaders.cpp)
target_link_libraries(testheaders PRIVATE tolvaris_options GTest::gtest)
target_precompile_headers(testheaders PRIVATE
    <gtest/gtest.h> <algorithm> <array> <filesystem> <fstream> <functional> <map> <memory> <optional> <random> <sstream>
    <string> <string_view> <vector>)

target_compile_options(testheaders PRIVATE -O0)
set_target_properties(testheaders PROPERTIES TOLVARIS_UNOPTIMIZED ON)

# tolvaris_test_code(<target>): the same for a library that only tests use.
function(tolvaris_test_code target)
    target_compile_options(${target} PRIVATE -O0)
    set_target_properties(${target} PROPERTIES TOLVARIS_UNOPTIMIZED ON)
    target_precompile_headers(${target} REUSE_FROM testheaders)
endfunction()

function(tolvaris_test target)
    tolvaris_test_code(${target})
    gtest_discover_tests(${target} DISCOVERY_MODE PRE_TEST ${ARGN})
endfunction()
