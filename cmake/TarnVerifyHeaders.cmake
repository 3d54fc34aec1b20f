# The target `verify_headers`: compiles every header below src/ on its own, twice in one unit, so
# that a header that leans on what others include, or lacks its guard, does not build.

function(tarn_add_verify_headers name)
    file(GLOB_RECURSE headers CONFIGURE_DEPENDS RELATIVE "${PROJECT_SOURCE_DIR}/src" "${PROJECT_SOURCE_DIR}/src/*.h")
    set(units "")
    foreach(header IN LISTS headers)
        set(unit "${PROJECT_BINARY_DIR}/${name}/${header}.cpp")
        file(CONFIGURE OUTPUT "${unit}" CONTENT "#include <@header@>\n#include <@header@> // again: its guard\n" @ONLY)
        list(APPEND units "${unit}")
    endforeach()
    add_library(${name} OBJECT EXCLUDE_FROM_ALL ${units})
    target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/src" "${PROJECT_BINARY_DIR}/generated")
    target_link_libraries(${name} PRIVATE Qt6::Core tarn_build_options)
    set_target_properties(${name} PROPERTIES AUTOMOC OFF)
endfunction()
