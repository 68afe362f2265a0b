# Windows on x86-64, by mingw-w64 (Debian: g++-mingw-w64-x86-64-posix); programs run under wine64. Headers without code
# of a machine (fmt, CLI11, nlohmann-json, toml++) come from the folder that scripts/sysroot.sh makes.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

# The runtime of the compiler goes into each program and library: nothing has to be shipped with them.
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
set(CMAKE_SHARED_LINKER_FLAGS_INIT -static)
set(ZLIB_USE_STATIC_LIBS ON)

# wine keeps its drives in a folder of its own in the build.
set(CMAKE_CROSSCOMPILING_EMULATOR env WINEDEBUG=-all WINEPREFIX=${CMAKE_BINARY_DIR}/wine /usr/lib/wine/wine64)

set(ORSOLVA_SYSROOT ${CMAKE_BINARY_DIR}/sysroot CACHE PATH "Root folder with what programs of the other machine need")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ORSOLVA_SYSROOT)
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32 ${ORSOLVA_SYSROOT})
set(CMAKE_PREFIX_PATH /usr /usr/lib/x86_64-linux-gnu/cmake)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
