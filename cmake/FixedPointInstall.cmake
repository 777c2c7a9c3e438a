# Installation: the shared library with its SONAME, the public header and the
# generated export header, a CMake package (FixedPoint::FixedPoint) and a
# pkg-config file. The library leaves _KV_ProcessErrorString undefined: the
# host firmware provides it when it loads the library.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(FIXEDPOINT_INSTALL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/FixedPoint
    CACHE STRING "Where the CMake package files are installed")

install(TARGETS FixedPoint
    EXPORT FixedPointTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        COMPONENT Runtime NAMELINK_COMPONENT Development
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT Runtime)
install(FILES
    ${PROJECT_SOURCE_DIR}/Common/FixedPointLibrary/FixedPoint.h
    ${PROJECT_BINARY_DIR}/include/FixedPoint_export.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    COMPONENT Development)
install(EXPORT FixedPointTargets
    NAMESPACE FixedPoint::
    DESTINATION ${FIXEDPOINT_INSTALL_CMAKEDIR}
    COMPONENT Development)

configure_package_config_file(
    ${CMAKE_CURRENT_LIST_DIR}/FixedPointConfig.cmake.in
    ${PROJECT_BINARY_DIR}/FixedPointConfig.cmake
    INSTALL_DESTINATION ${FIXEDPOINT_INSTALL_CMAKEDIR})
write_basic_package_version_file(
    ${PROJECT_BINARY_DIR}/FixedPointConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES
    ${PROJECT_BINARY_DIR}/FixedPointConfig.cmake
    ${PROJECT_BINARY_DIR}/FixedPointConfigVersion.cmake
    DESTINATION ${FIXEDPOINT_INSTALL_CMAKEDIR}
    COMPONENT Development)

# pkg-config: the paths are those of the configured prefix.
configure_file(${CMAKE_CURRENT_LIST_DIR}/fixedpoint.pc.in
    ${PROJECT_BINARY_DIR}/fixedpoint.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/fixedpoint.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
    COMPONENT Development)

# The host stand-in is for development machines only; firmware images bring
# their own report function.
if(FIXEDPOINT_INSTALL_HOST_STANDIN)
    if(NOT TARGET kvhost)
        message(FATAL_ERROR "FIXEDPOINT_INSTALL_HOST_STANDIN needs FIXEDPOINT_BUILD_TOOLS=ON")
    endif()
    install(TARGETS kvhost kvhost_headers
        EXPORT FixedPointHostTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT HostStandIn
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
    install(FILES ${PROJECT_SOURCE_DIR}/host/KV_ProcessErrorString.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
        COMPONENT HostStandIn)
    install(EXPORT FixedPointHostTargets
        NAMESPACE FixedPoint::
        DESTINATION ${FIXEDPOINT_INSTALL_CMAKEDIR}
        COMPONENT HostStandIn)
endif()
