# The compiler and linker options of every target of this project, as one target to link:
# `tarn_build_options`. The presets choose among the options below.

option(TARN_WARNINGS_AS_ERRORS "Treat compiler warnings as errors" ON)
option(TARN_BATCHES "Compile several files of a large test program at a time" OFF)
option(TARN_COVERAGE "Instrument for source-based coverage (Clang)" OFF)
set(TARN_SANITIZERS "" CACHE STRING "Sanitizers to build with, as -fsanitize= takes them")

# As Debian builds its packages: with CMake's own -O3 the library is larger.
string(REPLACE "-O3" "-O2" CMAKE_CXX_FLAGS_RELEASE "${CMAKE_CXX_FLAGS_RELEASE}")

add_library(tarn_build_options INTERFACE)

target_compile_definitions(tarn_build_options INTERFACE
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_FOREACH
    QT_DISABLE_DEPRECATED_BEFORE=0x060400)

if(MSVC)
    target_compile_options(tarn_build_options INTERFACE
        /W4 $<$<BOOL:${TARN_WARNINGS_AS_ERRORS}>:/WX>)
    return()
endif()

target_compile_options(tarn_build_options INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wnon-virtual-dtor
    -Wold-style-cast -Woverloaded-virtual -Wcast-qual -Wcast-align -Wformat=2 -Wundef
    -Wimplicit-fallthrough -Wnull-dereference
    $<$<CXX_COMPILER_ID:GNU>:-Wduplicated-cond -Wduplicated-branches -Wlogical-op -Wuseless-cast>
    $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety>
    $<$<BOOL:${TARN_WARNINGS_AS_ERRORS}>:-Werror>)

include(CheckLinkerFlag)
include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)

# Programs must not start with a symbol missing, nor run with their tables writable.
if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
    target_link_options(tarn_build_options INTERFACE -Wl,-z,relro -Wl,-z,now)
    check_linker_flag(CXX -Wl,-z,pack-relative-relocs TARN_PACKS_RELOCATIONS) # smaller, and sooner loaded
    if(TARN_PACKS_RELOCATIONS)
        target_link_options(tarn_build_options INTERFACE -Wl,-z,pack-relative-relocs)
    endif()
endif()

if(TARN_SANITIZERS)
    target_compile_options(tarn_build_options INTERFACE
        -fsanitize=${TARN_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(tarn_build_options INTERFACE -fsanitize=${TARN_SANITIZERS})
else() # the sanitizers bring their own checks and leave symbols to be resolved when a program starts
    target_compile_options(tarn_build_options INTERFACE -fstack-protector-strong
        $<$<AND:$<CONFIG:Release>,$<CXX_COMPILER_ID:GNU>>:-falign-loops=32>) # else a short loop may take a quarter longer
    target_compile_definitions(tarn_build_options INTERFACE $<$<CONFIG:Release,RelWithDebInfo>:_FORTIFY_SOURCE=2>)
    if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
        target_link_options(tarn_build_options INTERFACE -Wl,-z,defs)
    endif()
endif()

if(TARN_COVERAGE)
    target_compile_options(tarn_build_options INTERFACE -fprofile-instr-generate -fcoverage-mapping -fcoverage-mcdc)
    target_link_options(tarn_build_options INTERFACE -fprofile-instr-generate)
endif()
