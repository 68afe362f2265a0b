# Sourced by the scripts: builds what CMake has configured.

# build ARGUMENT...  cmake --build, tried again where it fails: g++ 12 was seen to crash, for no lasting reason, where
# it reads a precompiled header; an error in the sources fails again
build() { cmake --build "$@" || cmake --build "$@"; }
