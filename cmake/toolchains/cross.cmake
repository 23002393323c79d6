# Shared by the toolchain files: Debian's cross compiler `triple`, headers and libraries from the folder
# that "scripts/sysroot" creates for `architecture`, and `emulator` to run the built programs.

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_C_COMPILER ${triple}-gcc)
set(CMAKE_CXX_COMPILER ${triple}-g++)

get_filename_component(CMAKE_SYSROOT
  ${CMAKE_CURRENT_LIST_DIR}/../../build/sysroot/${architecture} ABSOLUTE)
if(NOT EXISTS ${CMAKE_SYSROOT}/.made-of)
  message(FATAL_ERROR "${CMAKE_SYSROOT} is missing; run \"scripts/sysroot ${architecture}\" first")
endif()

set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Hides this machine's own libraries from pkg-config.
set(ENV{PKG_CONFIG_DIR} "")
set(ENV{PKG_CONFIG_LIBDIR}
  ${CMAKE_SYSROOT}/usr/lib/${triple}/pkgconfig:${CMAKE_SYSROOT}/usr/share/pkgconfig)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${CMAKE_SYSROOT})

set(CMAKE_CROSSCOMPILING_EMULATOR ${emulator};-L;${CMAKE_SYSROOT})
