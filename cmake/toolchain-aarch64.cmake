# Linux on 64-bit ARM, by Debian's cross compiler (g++-aarch64-linux-gnu); programs run under qemu-aarch64. Libraries
# and headers besides those of the compiler come from the folder that scripts/sysroot.sh makes.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)

set(ORSOLVA_SYSROOT ${CMAKE_BINARY_DIR}/sysroot CACHE PATH "Root folder with what programs of the other machine need")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ORSOLVA_SYSROOT)
set(CMAKE_SYSROOT ${ORSOLVA_SYSROOT})
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64 -L ${ORSOLVA_SYSROOT})

set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
