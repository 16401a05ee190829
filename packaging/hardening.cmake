# What a release carries against hostile files: addresses that no one can foretell, tables of addresses that are
# read-only before the first line runs, guarded stacks, and checked copies. Debug builds go without, as they are rebuilt
# all day, and sanitizer builds have checks of their own, which those of the C library would only blind.
if(CMAKE_BUILD_TYPE STREQUAL "Debug" OR TOLVARIS_SANITIZE)
    return()
endif()

include(CheckCXXCompilerFlag)
include(CheckPIESupported)
check_pie_supported()
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

# The compiler may have its own level set already, and warns when it is named twice. The C library warns of code that is
# checked but not optimized, so a target of such code says TOLVARIS_UNOPTIMIZED.
set(unoptimized $<BOOL:$<TARGET_PROPERTY:TOLVARIS_UNOPTIMIZED>>)
target_compile_options(tolvaris_options INTERFACE
    -U_FORTIFY_SOURCE $<$<NOT:${unoptimized}>:-D_FORTIFY_SOURCE=2>)
foreach(flag -fstack-protector-strong -fstack-clash-protection -fcf-protection)
    string(MAKE_C_IDENTIFIER "HAS${flag}" has)
    check_cxx_compiler_flag(${flag} ${has})
    if(${has})
        target_compile_options(tolvaris_options INTERFACE ${flag})
    endif()
endforeach()
if(NOT APPLE)
    target_link_options(tolvaris_options INTERFACE -Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
endif()
