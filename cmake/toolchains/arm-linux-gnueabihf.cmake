# Cross build for 32-bit ARM Linux (hard-float EABI), the instrument's target.
#
# The C library and libstdc++ come with Debian's cross compiler under
# /usr/arm-linux-gnueabihf. Qt, GoogleTest and GMP come from a folder of
# unpacked armhf packages given as FIXEDPOINT_ARMHF_SYSROOT (see
# scripts/check-armhf.sh), searched through CMAKE_FIND_ROOT_PATH.
# Executables run under qemu-arm, so ctest and gtest_discover_tests work
# on an x86-64 machine.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)

set(FIXEDPOINT_ARMHF_TRIPLET arm-linux-gnueabihf)
set(CMAKE_C_COMPILER ${FIXEDPOINT_ARMHF_TRIPLET}-gcc)
set(CMAKE_CXX_COMPILER ${FIXEDPOINT_ARMHF_TRIPLET}-g++)

set(FIXEDPOINT_ARMHF_SYSROOT "$ENV{FIXEDPOINT_ARMHF_SYSROOT}" CACHE PATH
    "Folder holding the unpacked armhf packages (Qt 5 Core, GoogleTest, GMP)")
if(NOT FIXEDPOINT_ARMHF_SYSROOT)
    message(FATAL_ERROR "Set FIXEDPOINT_ARMHF_SYSROOT (scripts/check-armhf.sh prepares one)")
endif()
# The try_compile projects need the same settings.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES FIXEDPOINT_ARMHF_SYSROOT)

set(CMAKE_FIND_ROOT_PATH ${FIXEDPOINT_ARMHF_SYSROOT} /usr/${FIXEDPOINT_ARMHF_TRIPLET})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(_armhf_libdirs
    ${FIXEDPOINT_ARMHF_SYSROOT}/lib/${FIXEDPOINT_ARMHF_TRIPLET}
    ${FIXEDPOINT_ARMHF_SYSROOT}/usr/lib/${FIXEDPOINT_ARMHF_TRIPLET})

# Multiarch headers (gmp.h lives under include/<triplet>) and the transitive
# libraries of Qt Core, which the linker must find without a full sysroot.
set(CMAKE_CXX_FLAGS_INIT "-isystem ${FIXEDPOINT_ARMHF_SYSROOT}/usr/include/${FIXEDPOINT_ARMHF_TRIPLET}")
set(_armhf_link_flags "")
foreach(_dir IN LISTS _armhf_libdirs)
    string(APPEND _armhf_link_flags " -Wl,-rpath-link,${_dir}")
endforeach()
set(CMAKE_EXE_LINKER_FLAGS_INIT "${_armhf_link_flags}")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "${_armhf_link_flags}")

# pkg-config must describe the armhf packages, not the host's.
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${FIXEDPOINT_ARMHF_SYSROOT})
set(ENV{PKG_CONFIG_LIBDIR}
    "${FIXEDPOINT_ARMHF_SYSROOT}/usr/lib/${FIXEDPOINT_ARMHF_TRIPLET}/pkgconfig:${FIXEDPOINT_ARMHF_SYSROOT}/usr/share/pkgconfig")

# No binfmt handler is assumed: every target binary starts through qemu-arm,
# with the loader and libc of the cross toolchain and the sysroot's libraries.
string(JOIN ":" _armhf_library_path ${_armhf_libdirs})
set(CMAKE_CROSSCOMPILING_EMULATOR
    qemu-arm -L /usr/${FIXEDPOINT_ARMHF_TRIPLET} -E LD_LIBRARY_PATH=${_armhf_library_path})
