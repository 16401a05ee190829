# One precompiled header for all libraries of the program: what nearly every source includes.
# file(CONFIGURE) leaves a file with this content alone, so a second configuration recompiles nothing.
file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/cmake/commonHeaders.cpp
     CONTENT "// Carries the precompiled header of the libraries.\n")
add_library(commonheaders OBJECT ${CMAKE_BINARY_DIR}/cmake/commonHeaders.cpp)
target_link_libraries(commonheaders PRIVATE tolvaris_options)
target_precompile_headers(commonheaders PRIVATE
    <algorithm> <array> <cstdint> <functional> <map> <memory> <optional> <span> <string> <string_view>
    <unordered_map> <variant> <vector>)

# tolvaris_library(<name> <sources>...): a static library with the compiler settings and the precompiled header that all
# libraries share. What it uses besides is added with target_link_libraries().
function(tolvaris_library name)
    add_library(${name} STATIC ${ARGN})
    target_precompile_headers(${name} REUSE_FROM commonheaders)
    target_link_libraries(${name} PUBLIC tolvaris_options)
endfunction()
