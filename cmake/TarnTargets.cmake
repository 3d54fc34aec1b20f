# The kinds of target this project has. A target links what its row in the layout may know and
# nothing else; that no header is included past that, cmake/CheckLayers.cmake checks.

include(GenerateExportHeader)

# tarn_add_interface(NAME LINKS...): a header-only target below src/.
function(tarn_add_interface name)
    add_library(${name} INTERFACE)
    target_include_directories(${name} INTERFACE "${PROJECT_SOURCE_DIR}/src")
    target_link_libraries(${name} INTERFACE ${ARGN})
endfunction()

# tarn_add_library(NAME SOURCES...): a shared library below src/, with hidden visibility and a
# generated `export.h` in the folder of the same path, whose macro is given by EXPORT_MACRO.
function(tarn_add_library name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "EXPORT_MACRO;OUTPUT_NAME" "SOURCES;LINKS")
    add_library(${name} SHARED ${arg_SOURCES})
    cmake_path(RELATIVE_PATH CMAKE_CURRENT_SOURCE_DIR BASE_DIRECTORY "${PROJECT_SOURCE_DIR}/src" OUTPUT_VARIABLE folder)
    generate_export_header(${name}
        EXPORT_MACRO_NAME ${arg_EXPORT_MACRO}
        EXPORT_FILE_NAME "${PROJECT_BINARY_DIR}/generated/${folder}/export.h")
    target_include_directories(${name} PUBLIC "${PROJECT_SOURCE_DIR}/src" "${PROJECT_BINARY_DIR}/generated")
    target_link_libraries(${name} PUBLIC ${arg_LINKS} PRIVATE tarn_build_options)
    if(CMAKE_SYSTEM_NAME STREQUAL "Linux") # what it calls of its own it does not look up, either
        string(REGEX MATCHALL "[^/]+" parts "tarn/${folder}")
        set(namespace "") # as it stands in mangled names
        foreach(part IN LISTS parts)
            string(LENGTH "${part}" length)
            string(APPEND namespace "${length}${part}")
        endforeach()
        set(exports "${PROJECT_BINARY_DIR}/generated/${folder}/exports.map")
        configure_file("${PROJECT_SOURCE_DIR}/cmake/exports.map.in" "${exports}" @ONLY)
        target_link_options(${name} PRIVATE "LINKER:--version-script=${exports}" LINKER:-Bsymbolic-functions)
        set_target_properties(${name} PROPERTIES LINK_DEPENDS "${exports}")
    endif()
    set_target_properties(${name} PROPERTIES
        OUTPUT_NAME ${arg_OUTPUT_NAME}
        VERSION ${PROJECT_VERSION}
        SOVERSION ${PROJECT_VERSION_MAJOR})
endfunction()
