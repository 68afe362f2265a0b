# What hosts get: the component runtime has the shared libraries, the component development has all that a compiler
# needs (headers, the name that links, the static archive, a CMake package and a pkg-config file). Both packages
# find the prefix from where they lie, so that an installed tree may be moved.
include(CMakePackageConfigHelpers)
set(_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Orsolva)

# Debian wants a package of its own for every shared library.
set(_runtime_of_Orsolva_cbb runtime)
set(_runtime_of_orsolva_c runtime)
if(ORSOLVA_DEBIAN_PACKAGES)
  set(_runtime_of_orsolva_c runtime_c)
endif()
foreach(_library Orsolva_cbb orsolva_c)
  install(TARGETS ${_library} EXPORT OrsolvaTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT ${_runtime_of_${_library}} NAMELINK_COMPONENT development
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT ${_runtime_of_${_library}}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
endforeach()
install(TARGETS orsolva_static EXPORT OrsolvaTargets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
install(DIRECTORY interface/orsolva DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
install(DIRECTORY interface/deprecated DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/orsolva COMPONENT development)

install(EXPORT OrsolvaTargets NAMESPACE Orsolva:: DESTINATION ${_package_dir} COMPONENT development)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/OrsolvaConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/OrsolvaConfig.cmake INSTALL_DESTINATION ${_package_dir})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/OrsolvaConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/OrsolvaConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/OrsolvaConfigVersion.cmake DESTINATION ${_package_dir} COMPONENT development)

file(RELATIVE_PATH ORSOLVA_PC_TO_PREFIX /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
foreach(_pc orsolva orsolva_c)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/${_pc}.pc.in ${CMAKE_CURRENT_BINARY_DIR}/${_pc}.pc @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${_pc}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
    COMPONENT development)
endforeach()
