cmake_minimum_required(VERSION 3.25)

# Run with `cmake -DNM=... -DLIBRARY=... -DMACRO=... -P`: holds what LIBRARY exports against the classes
# and functions that the headers below src/ mark with MACRO. Weak symbols of what others own, such
# as instances of standard templates or inline parts of the library below, may stand there as well.

cmake_path(GET CMAKE_CURRENT_LIST_DIR PARENT_PATH source_dir)
file(GLOB_RECURSE headers "${source_dir}/src/*.h")
set(marked "")
set(elsewhere "") # marked with another library's macro
foreach(header IN LISTS headers)
    file(READ "${header}" text)
    string(REGEX REPLACE "//[^\n]*" "" text "${text}")
    string(REGEX REPLACE "[][]" "" text "${text}") # CMake's lists take them for their own, as they do
    string(REPLACE ";" "@" text "${text}") # the semicolon
    string(REGEX MATCHALL "\n(nodiscard )?(class )?TARN_[A-Z_]*EXPORT[ \n][^({@]*[({@]" marks "${text}")
    foreach(mark IN LISTS marks)
        string(REGEX REPLACE "[ \n]+" " " mark "${mark}")
        string(REGEX REPLACE "^ (nodiscard )?" "" mark "${mark}")
        if(mark MATCHES "^class (TARN_[A-Z_]*EXPORT) ([A-Za-z0-9]+)")
        elseif(mark MATCHES "^(TARN_[A-Z_]*EXPORT) [^(]*[ *&]([A-Za-z0-9]+)\\($")
        else()
            message(SEND_ERROR "${header}: what does this export? ${mark}")
        endif()
        set(macro "${CMAKE_MATCH_1}")
        string(LENGTH "${CMAKE_MATCH_2}" length)
        set(name "${length}${CMAKE_MATCH_2}") # as it stands in mangled names
        if(macro STREQUAL MACRO)
            list(APPEND marked "${name}")
        else()
            list(APPEND elsewhere "${name}")
        endif()
    endforeach()
endforeach()
list(JOIN marked "|" anyMarked)
list(JOIN elsewhere "|" anyElsewhere)
# Before a name stand what it is of it, a table or a thunk say, qualifiers and namespaces.
set(own "^_Z(GV|T[VTIS]|T[hvcn0-9_]+|Z)?N[KO]*4tarn([0-9]+[a-z]+)*")

execute_process(COMMAND "${NM}" --dynamic --defined-only "${LIBRARY}"
    OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[^\n]+" symbols "${symbols}")
set(seen "")
foreach(symbol IN LISTS symbols)
    if(NOT symbol MATCHES "^[0-9a-f]* *([A-Za-z]) ([A-Za-z0-9_.$]+)$")
        message(SEND_ERROR "cannot be understood: ${symbol}")
        continue()
    endif()
    set(kind "${CMAKE_MATCH_1}")
    set(name "${CMAKE_MATCH_2}")
    if(name MATCHES "${own}(${anyMarked})")
        list(APPEND seen "${CMAKE_MATCH_3}")
    elseif(kind MATCHES "[WVu]" AND (name MATCHES "${own}(${anyElsewhere})" OR NOT name MATCHES "${own}"))
        continue()
    elseif(NOT name MATCHES "^_(_|init$|fini$|end$|edata$)") # of the tools
        message(SEND_ERROR "exported, and not marked with ${MACRO}: ${name}")
    endif()
endforeach()
foreach(name IN LISTS marked)
    if(NOT name IN_LIST seen)
        message(SEND_ERROR "marked with ${MACRO}, and not exported: ${name}")
    endif()
endforeach()
list(LENGTH seen checked)
if(checked EQUAL 0)
    message(SEND_ERROR "${LIBRARY} exports nothing")
endif()
message(STATUS "${checked} symbols of ${marked}")
