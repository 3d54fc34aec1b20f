# Run by CPack on what it is about to put into the Debian packages: adds what Debian asks of each of them.

find_program(GZIP gzip REQUIRED)

# tarn_compress(FILE): so that the same contents become the same bytes.
function(tarn_compress file)
    execute_process(COMMAND "${GZIP}" --best --no-name --force "${file}" COMMAND_ERROR_IS_FATAL ANY)
endfunction()

string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER ${component} upper)
    set(root "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/${component}/usr/share")
    set(documentation "${root}/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME}")
    file(WRITE "${documentation}/changelog.Debian"
        "${CPACK_DEBIAN_PACKAGE_SOURCE} (${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}) unstable; urgency=medium\n\n"
        "  * Built from the sources; their CHANGELOG.md says what is new.\n\n"
        " -- ${CPACK_PACKAGE_CONTACT}  ${date}\n")
    tarn_compress("${documentation}/changelog.Debian")
    file(COPY_FILE "${CMAKE_CURRENT_LIST_DIR}/copyright" "${documentation}/copyright")
    file(GLOB manuals "${root}/man/man*/*.[0-9]")
    foreach(manual IN LISTS manuals)
        tarn_compress("${manual}")
    endforeach()
endforeach()
