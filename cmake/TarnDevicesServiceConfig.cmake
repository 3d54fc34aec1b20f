include(CMakeFindDependencyMacro)
find_dependency(Qt6 6.4 COMPONENTS Core)
find_dependency(Threads)

include("${CMAKE_CURRENT_LIST_DIR}/TarnDevicesServiceTargets.cmake")
