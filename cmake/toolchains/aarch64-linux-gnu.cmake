# Debian's arm64: 64-bit ARMv8.
set(architecture arm64)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(triple aarch64-linux-gnu)
set(emulator qemu-aarch64)
include(${CMAKE_CURRENT_LIST_DIR}/cross.cmake)
