# The target `verify_headers`: compiles the headers below src/ on their own, twice in one unit, so that a header that
# leans on what others include, or lacks its guard, does not build. Where a source file begins with its header, that one
# is compiled on its own already.

# tarn_leads_its_source(HEADER RESULT): whether a source file begins with the header.
function(tarn_leads_its_source header result)
    set(${result} FALSE PARENT_SCOPE)
    string(REGEX REPLACE "h$" "cpp" source "${PROJECT_SOURCE_DIR}/src/${header}")
    if(EXISTS "${source}")
        file(STRINGS "${source}" first REGEX "^#include" LIMIT_COUNT 1)
        file(STRINGS "${PROJECT_SOURCE_DIR}/src/${header}" guard REGEX "^#pragma once$" LIMIT_COUNT 1)
        if(first STREQUAL "#include <${header}>" AND guard)
            set(${result} TRUE PARENT_SCOPE)
        endif()
    endif()
endfunction()

function(tarn_add_verify_headers name)
    file(GLOB_RECURSE headers CONFIGURE_DEPENDS RELATIVE "${PROJECT_SOURCE_DIR}/src" "${PROJECT_SOURCE_DIR}/src/*.h")
    set(units "")
    foreach(header IN LISTS headers)
        tarn_leads_its_source("${header}" verified)
        if(NOT verified)
            set(unit "${PROJECT_BINARY_DIR}/${name}/${header}.cpp")
            file(CONFIGURE OUTPUT "${unit}" CONTENT "#include <@header@>\n#include <@header@> // again: its guard\n"
                 @ONLY)
            list(APPEND units "${unit}")
        endif()
    endforeach()
    add_library(${name} OBJECT EXCLUDE_FROM_ALL ${units})
    target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/src" "${PROJECT_BINARY_DIR}/generated")
    target_link_libraries(${name} PRIVATE Qt6::Core tarn_build_options)
    set_target_properties(${name} PROPERTIES AUTOMOC OFF)
endfunction()
