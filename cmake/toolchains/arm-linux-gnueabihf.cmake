# Debian's armhf: 32-bit ARMv7 with hardware floating point.
set(architecture armhf)
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(triple arm-linux-gnueabihf)
set(emulator qemu-arm)
# Without this, g++ prints many notes about the calling convention of version 6.
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi)
include(${CMAKE_CURRENT_LIST_DIR}/cross.cmake)
