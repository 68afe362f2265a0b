# Sourced by the scripts: builds what CMake has configured.

# build ARGUMENT...  cmake --build, tried again where it fails: g++ 12 crashes now and then, for no lasting reason, where
# it reads a precompiled header; an error in the sources fails again
build() { cmake --build "$@" || cmake --build "$@"; }
