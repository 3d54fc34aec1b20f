# The kinds of target this project has. A target links what its row in the layout may know and
# nothing else; that no header is included past that, cmake/CheckLayers.cmake checks.

include(GenerateExportHeader)
include(TarnInstall)

# tarn_add_interface(NAME EXPORT_NAME LINKS...): a header-only target, made of every header in the folder of its name
# below src/.
function(tarn_add_interface name export_name)
    string(REPLACE "tarn_" "" folder ${name})
    file(GLOB_RECURSE headers CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/src/${folder}/*.h")
    add_library(${name} INTERFACE)
    target_sources(${name} INTERFACE FILE_SET HEADERS BASE_DIRS "${PROJECT_SOURCE_DIR}/src" FILES ${headers})
    target_link_libraries(${name} INTERFACE ${ARGN})
    target_compile_features(${name} INTERFACE cxx_std_${CMAKE_CXX_STANDARD})
    tarn_install_library(${name} ${export_name})
endfunction()

# tarn_limit_exports(NAME FOLDER): has the library export only what is marked in the namespace of the same name as its folder
# below src/, and call its own functions without looking them up: whoever uses it is compiled with -fPIC, as for Qt.
function(tarn_limit_exports name folder)
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
endfunction()

# tarn_add_library(NAME HEADERS... SOURCES...): a shared library below src/, with hidden visibility and a
# generated `export.h` in the folder of the same path, whose macro is given by EXPORT_MACRO. HEADERS are installed:
# those that its users include, and what these include.
function(tarn_add_library name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "EXPORT_MACRO;OUTPUT_NAME" "HEADERS;SOURCES;LINKS")
    add_library(${name} SHARED ${arg_SOURCES})
    cmake_path(RELATIVE_PATH CMAKE_CURRENT_SOURCE_DIR BASE_DIRECTORY "${PROJECT_SOURCE_DIR}/src" OUTPUT_VARIABLE folder)
    set(export_header "${PROJECT_BINARY_DIR}/generated/${folder}/export.h")
    generate_export_header(${name} EXPORT_MACRO_NAME ${arg_EXPORT_MACRO} EXPORT_FILE_NAME "${export_header}")
    target_sources(${name} PUBLIC FILE_SET HEADERS
        BASE_DIRS "${PROJECT_SOURCE_DIR}/src" "${PROJECT_BINARY_DIR}/generated"
        FILES ${arg_HEADERS} "${export_header}")
    target_link_libraries(${name} PUBLIC ${arg_LINKS} PRIVATE tarn_build_options)
    target_compile_features(${name} PUBLIC cxx_std_${CMAKE_CXX_STANDARD})
    if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
        tarn_limit_exports(${name} ${folder})
    endif()
    set_target_properties(${name} PROPERTIES
        OUTPUT_NAME ${arg_OUTPUT_NAME}
        VERSION ${PROJECT_VERSION}
        SOVERSION ${TARN_COMPATIBLE_VERSION})
    tarn_install_library(${name} ${arg_OUTPUT_NAME})
endfunction()
