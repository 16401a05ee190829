# One precompiled header for all libraries: what nearly every source brings in. A library takes it with
#   target_precompile_headers(<library> REUSE_FROM commonheaders)
file(WRITE ${CMAKE_BINARY_DIR}/cmake/commonHeaders.cpp "// Carries the precompiled header of the libraries.\n")
add_library(commonheaders OBJECT ${CMAKE_BINARY_DIR}/cmake/commonHeaders.cpp)
target_link_libraries(commonheaders PRIVATE tolvaris_options)
target_precompile_headers(commonheaders PRIVATE
    <algorithm> <array> <cstdint> <functional> <map> <memory> <optional> <span> <string> <string_view>
    <unordered_map> <variant> <vector>)
