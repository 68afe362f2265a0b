# Refuses compilers and systems for which the promises of the library cannot be kept, with the reason.
if(MSVC)
  message(FATAL_ERROR "Orsolva does not build with a compiler that takes the options of Microsoft's: the same "
    "input would not give the same bits, and its C++ names are not those of the binary interface. "
    "Use g++ or clang++ of mingw-w64 (preset mingw).")
endif()
if(APPLE)
  message(FATAL_ERROR "Orsolva does not build for macOS yet: Apple's linker takes no version script, which keeps "
    "everything but the eight functions inside the library, and no test has run there. "
    "Build for Linux, for example in a container.")
endif()
