# Flags every target of the project is built with.
#
# -ffp-contract=off keeps a*b+c two roundings, so that the same input gives the same bits at every
# optimisation level and with every compiler; nothing of the fast-math family may be added here.
add_library(orsolva_flags INTERFACE)
target_compile_features(orsolva_flags INTERFACE cxx_std_20)
target_compile_options(orsolva_flags INTERFACE -ffp-contract=off -fno-fast-math
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align -Wformat=2)
# g++ 12 sees overlapping copies in its own std::string operator+ where there are none (GCC bug 105651).
target_compile_options(orsolva_flags INTERFACE
  $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>)
if(ORSOLVA_WERROR)
  target_compile_options(orsolva_flags INTERFACE -Werror)
endif()
if(ORSOLVA_SANITIZE)
  list(JOIN ORSOLVA_SANITIZE "," _sanitizers)
  target_compile_options(orsolva_flags INTERFACE -fsanitize=${_sanitizers} -fno-omit-frame-pointer
    -fno-sanitize-recover=all)
  # With sanitizers g++ 12 takes members of std::function inside std::regex for uninitialised (GCC bug 105562).
  target_compile_options(orsolva_flags INTERFACE
    $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-maybe-uninitialized>)
  target_link_options(orsolva_flags INTERFACE -fsanitize=${_sanitizers})
  # A fuzz target is led by what it reaches of the product. Code of tests does not count its edges.
  if("fuzzer-no-link" IN_LIST ORSOLVA_SANITIZE)
    target_compile_options(orsolva_flags INTERFACE
      $<$<BOOL:$<TARGET_PROPERTY:ORSOLVA_TEST_CODE>>:-fno-sanitize=fuzzer-no-link>)
  endif()
endif()

# Debug information names sources relative to the project, so that the folder of a build leaves no trace in it.
target_compile_options(orsolva_flags INTERFACE $<$<NOT:$<CONFIG:Release>>:
  -ffile-prefix-map=${PROJECT_SOURCE_DIR}=. -ffile-prefix-map=${PROJECT_BINARY_DIR}=./build>)

# With these a compiler cache takes part in compiling with precompiled headers.
set(ORSOLVA_PRECOMPILED_WITH_CACHE $<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>
  "$<$<CXX_COMPILER_ID:Clang>:SHELL:-Xclang -fno-pch-timestamp>")

# Archives without times and owners: GNU's ar can be built to leave them out only on request.
if(NOT DEFINED ORSOLVA_AR_IS_DETERMINISTIC)
  execute_process(COMMAND ${CMAKE_AR} --help OUTPUT_VARIABLE _help ERROR_VARIABLE _help)
  string(FIND "${_help}" "[D]" _found)
  if(_found GREATER -1)
    set(ORSOLVA_AR_IS_DETERMINISTIC ON CACHE INTERNAL "ar knows the modifier D")
  else()
    set(ORSOLVA_AR_IS_DETERMINISTIC OFF CACHE INTERNAL "ar knows the modifier D")
  endif()
endif()
if(ORSOLVA_AR_IS_DETERMINISTIC)
  set(CMAKE_CXX_ARCHIVE_CREATE "<CMAKE_AR> qcD <TARGET> <LINK_FLAGS> <OBJECTS>")
  set(CMAKE_CXX_ARCHIVE_APPEND "<CMAKE_AR> qD <TARGET> <LINK_FLAGS> <OBJECTS>")
  set(CMAKE_CXX_ARCHIVE_FINISH "<CMAKE_RANLIB> -D <TARGET>")
endif()
