# Installation: the shared library with its SONAME, the public header, the
# generated export header and the declaration of the host's report function, a
# CMake package (FixedPoint::FixedPoint) and a pkg-config file. The library
# leaves _KV_ProcessErrorString undefined: the host firmware provides it when
# it loads the library, and a program that defines it includes the installed
# KV_ProcessErrorString.h so that its definition matches what the library
# calls.
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
    ${PROJECT_SOURCE_DIR}/host/KV_ProcessErrorString.h
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

# pkg-config: the paths are taken relative to the .pc file itself, so that an
# installed tree still works after it was moved or copied elsewhere (a staged
# firmware image, a sysroot) and after `cmake --install --prefix` chose another
# prefix than the configured one. Only absolute library or include
# directories, which need not lie under the prefix, are written as they are.
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}" OR IS_ABSOLUTE "${CMAKE_INSTALL_INCLUDEDIR}")
    set(FIXEDPOINT_PC_PREFIX "${CMAKE_INSTALL_PREFIX}")
    set(FIXEDPOINT_PC_LIBDIR "${CMAKE_INSTALL_FULL_LIBDIR}")
    set(FIXEDPOINT_PC_INCLUDEDIR "${CMAKE_INSTALL_FULL_INCLUDEDIR}")
else()
    # One ".." per component of <libdir>/pkgconfig leads back to the prefix.
    file(RELATIVE_PATH FIXEDPOINT_PC_UP "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
    string(REGEX REPLACE "/$" "" FIXEDPOINT_PC_UP "${FIXEDPOINT_PC_UP}")
    set(FIXEDPOINT_PC_PREFIX "\${pcfiledir}/${FIXEDPOINT_PC_UP}")
    set(FIXEDPOINT_PC_LIBDIR "\${exec_prefix}/${CMAKE_INSTALL_LIBDIR}")
    set(FIXEDPOINT_PC_INCLUDEDIR "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
endif()
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
    # Its header is the one the Development component installs.
    install(TARGETS kvhost kvhost_headers
        EXPORT FixedPointHostTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT HostStandIn
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
    install(EXPORT FixedPointHostTargets
        NAMESPACE FixedPoint::
        DESTINATION ${FIXEDPOINT_INSTALL_CMAKEDIR}
        COMPONENT HostStandIn)
endif()
