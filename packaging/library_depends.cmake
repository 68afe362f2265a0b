# Read by cpack before it makes the packages: what the shared libraries depend on, as dpkg-shlibdeps finds it. With
# CPACK_DEBIAN_PACKAGE_SHLIBDEPS cpack would ask for itself, but add scripts that call ldconfig, which a trigger does.
function(orsolva_library_depends library out)
  set(_scratch ${CPACK_ORSOLVA_BINARY_DIR}/packaging/shlibdeps)
  file(WRITE ${_scratch}/debian/control "")
  execute_process(COMMAND dpkg-shlibdeps -O --warnings=0 --ignore-missing-info -l${CPACK_ORSOLVA_BINARY_DIR}/lib
    ${CPACK_ORSOLVA_BINARY_DIR}/lib/${library} WORKING_DIRECTORY ${_scratch}
    OUTPUT_VARIABLE _depends OUTPUT_STRIP_TRAILING_WHITESPACE
    ERROR_VARIABLE _warnings COMMAND_ERROR_IS_FATAL ANY)
  if(NOT _depends MATCHES "^shlibs:Depends=(.*libc6.*)$")
    message(FATAL_ERROR "dpkg-shlibdeps says of ${library}: \"${_depends}\"")
  endif()
  set(${out} ${CMAKE_MATCH_1} PARENT_SCOPE)
endfunction()

orsolva_library_depends(libOrsolva_cbb.so CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS)
orsolva_library_depends(liborsolva_c.so _of_c)
set(CPACK_DEBIAN_RUNTIME_C_PACKAGE_DEPENDS "${CPACK_ORSOLVA_LIBRARY_PACKAGE}, ${_of_c}")
