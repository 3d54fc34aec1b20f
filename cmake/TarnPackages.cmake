# The Debian packages, one for each component of the installation: scripts/packages builds them.

set(TARN_PACKAGE_MAINTAINER "libDevicesService maintainers <maintainers@libdevicesservice.invalid>" CACHE STRING
    "Who answers for the packages, with an address to write to")

set(CPACK_GENERATOR DEB)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each has its own
set(CPACK_PACKAGE_CONTACT "${TARN_PACKAGE_MAINTAINER}")
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_COMPONENTS_ALL runtime development console)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SOURCE libdevicesservice)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}/lib")
set(CPACK_PRE_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/cmake/debian/finish.cmake")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libdevicesservice${TARN_COMPATIBLE_VERSION})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA "${PROJECT_SOURCE_DIR}/cmake/debian/triggers")
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
"engineering controls of vector network analyzers - libraries
On-board files and memory, calibrations, corrections, temperatures, power
stages and synthesizers of a connected instrument, for the application that
measures with it.

This package contains the shared libraries, a guard that holds a device to its
promises and a simulated instrument among them.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libdevicesservice-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "qt6-base-dev (>= 6.4)")
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS runtime)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
"engineering controls of vector network analyzers - development files
On-board files and memory, calibrations, corrections, temperatures, power
stages and synthesizers of a connected instrument, for the application that
measures with it.

This package contains the headers, the CMake package, the pkg-config files and
the documentation.")

set(CPACK_DEBIAN_CONSOLE_PACKAGE_NAME tarn-service)
set(CPACK_DEBIAN_CONSOLE_PACKAGE_SECTION science)
set(CPACK_COMPONENT_CONSOLE_DEPENDS runtime)
set(CPACK_COMPONENT_CONSOLE_DESCRIPTION
"console for the engineering controls of vector network analyzers
Shows and changes on-board files and memory, potentiometers, serial number and
USB identity, calibrations, corrections, temperatures, power stages and
synthesizers of a connected instrument.

This package contains the console and the provider of the simulated instrument.")

include(CPack)
