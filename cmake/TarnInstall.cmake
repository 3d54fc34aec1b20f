# What `cmake --install` puts where: libraries, headers, the CMake package, pkg-config files and the documentation.
# The components are those of the Debian packages: `runtime`, `development` and `console`.

include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

# Until 1.0 a minor version may break what was built against the one before.
if(PROJECT_VERSION_MAJOR EQUAL 0)
    set(TARN_COMPATIBLE_VERSION "0.${PROJECT_VERSION_MINOR}")
    set(compatibility SameMinorVersion)
else()
    set(TARN_COMPATIBLE_VERSION ${PROJECT_VERSION_MAJOR})
    set(compatibility SameMajorVersion)
endif()

set(headers_folder tarn-devices-service)
set(package_folder "${CMAKE_INSTALL_LIBDIR}/cmake/TarnDevicesService")
set(TARN_PROVIDERS_FOLDER "lib/tarn-service/providers") # where the console looks, whatever the folder of the libraries

# tarn_find_libraries(NAME FOLDER): has NAME find the libraries from FOLDER, into which it is installed, also when all of
# it is moved.
function(tarn_find_libraries name folder)
    cmake_path(ABSOLUTE_PATH folder BASE_DIRECTORY "${CMAKE_INSTALL_PREFIX}")
    cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_LIBDIR BASE_DIRECTORY "${folder}" OUTPUT_VARIABLE libraries)
    set_target_properties(${name} PROPERTIES INSTALL_RPATH "$ORIGIN/${libraries}")
endfunction()

# tarn_add_pkg_config(NAME EXPORT_NAME): a pkg-config file named like the target, which requires what that links.
function(tarn_add_pkg_config name export_name)
    get_target_property(links ${name} INTERFACE_LINK_LIBRARIES)
    get_target_property(type ${name} TYPE)
    set(requires ${links})
    list(FILTER requires INCLUDE REGEX "^(tarn_|Qt6::)")
    list(TRANSFORM requires REPLACE "::" "")
    list(JOIN requires ", " requires)
    string(REPLACE "_" "-" requires "${requires}")
    string(REPLACE "_" "-" module ${name})
    if(NOT type STREQUAL "INTERFACE_LIBRARY")
        set(libs "-L\${libdir} -l${export_name}")
    endif()
    set(headers "${CMAKE_INSTALL_FULL_INCLUDEDIR}/${headers_folder}")
    cmake_path(RELATIVE_PATH headers BASE_DIRECTORY "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig")
    configure_file("${PROJECT_SOURCE_DIR}/cmake/pkgconfig.in" "${PROJECT_BINARY_DIR}/pkgconfig/${module}.pc" @ONLY)
    install(FILES "${PROJECT_BINARY_DIR}/pkgconfig/${module}.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig"
        COMPONENT development)
endfunction()

# tarn_install_library(NAME EXPORT_NAME): NAME is `Tarn::EXPORT_NAME`, here and for those who use what is installed.
function(tarn_install_library name export_name)
    add_library(Tarn::${export_name} ALIAS ${name})
    set_target_properties(${name} PROPERTIES EXPORT_NAME ${export_name})
    get_target_property(type ${name} TYPE)
    if(NOT type STREQUAL "INTERFACE_LIBRARY")
        tarn_find_libraries(${name} "${CMAKE_INSTALL_LIBDIR}")
    endif()
    install(TARGETS ${name} EXPORT TarnDevicesService
        LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
        ARCHIVE COMPONENT development
        FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/${headers_folder}" COMPONENT development)
    tarn_add_pkg_config(${name} ${export_name})
endfunction()

write_basic_package_version_file("${PROJECT_BINARY_DIR}/TarnDevicesServiceConfigVersion.cmake"
    COMPATIBILITY ${compatibility})
install(EXPORT TarnDevicesService
    NAMESPACE Tarn::
    FILE TarnDevicesServiceTargets.cmake
    DESTINATION "${package_folder}"
    COMPONENT development)
install(
    FILES
        "${PROJECT_SOURCE_DIR}/cmake/TarnDevicesServiceConfig.cmake"
        "${PROJECT_BINARY_DIR}/TarnDevicesServiceConfigVersion.cmake"
    DESTINATION "${package_folder}"
    COMPONENT development)
install(FILES README.md CHANGELOG.md CONTRIBUTING.md SECURITY.md
    DESTINATION "${CMAKE_INSTALL_DOCDIR}"
    COMPONENT development)
install(DIRECTORY docs examples DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT development)
