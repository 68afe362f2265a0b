# Debian packages, one per component. lintian finds no error and no warning in them (scripts/check-packages).
find_program(GZIP_PROGRAM gzip REQUIRED)
set(ORSOLVA_PACKAGE_MAINTAINER "Orsolva maintainers <maintainers@orsolva.example.org>" CACHE STRING
  "Name and address in the Debian packages; example.org stands for that of the distributor")
set(_release 0orsolva1)  # sorts before the first release that Debian itself would make
set(_version ${PROJECT_VERSION}-${_release})

# Compresses as policy demands: best, and without name and time.
function(orsolva_install_compressed file name folder component)
  set(_compressed ${CMAKE_CURRENT_BINARY_DIR}/${component}/${name}.gz)
  get_filename_component(_made_in ${_compressed} DIRECTORY)
  file(MAKE_DIRECTORY ${_made_in})
  add_custom_command(OUTPUT ${_compressed} COMMAND ${GZIP_PROGRAM} -9nc ${file} > ${_compressed}
    DEPENDS ${file} VERBATIM)
  add_custom_target(orsolva_compressed_${component}_${name} ALL DEPENDS ${_compressed})
  install(FILES ${_compressed} DESTINATION ${folder} COMPONENT ${component})
endfunction()

execute_process(COMMAND date --utc --rfc-email --date=@${ORSOLVA_SOURCE_EPOCH} OUTPUT_VARIABLE _changelog_date
  OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
configure_file(debian/changelog.in ${CMAKE_CURRENT_BINARY_DIR}/changelog.Debian @ONLY)
foreach(_component IN LISTS _components)
  set(_folder ${_doc_folder_${_component}})
  install(FILES debian/copyright DESTINATION ${_folder} COMPONENT ${_component})
  orsolva_install_compressed(${CMAKE_CURRENT_BINARY_DIR}/changelog.Debian changelog.Debian ${_folder} ${_component})
  orsolva_install_compressed(${PROJECT_SOURCE_DIR}/CHANGELOG.md changelog ${_folder} ${_component})
endforeach()

if(TARGET orsolva_texts)
  orsolva_install_compressed(${PROJECT_BINARY_DIR}/host/texts/orsolva.1 orsolva.1 ${CMAKE_INSTALL_MANDIR}/man1 tools)
  add_dependencies(orsolva_compressed_tools_orsolva.1 orsolva_texts)
endif()

# The control files of a shared library: by the first two, programs that link it depend on its package; ldconfig runs
# by the trigger.
function(orsolva_library_control component library exports)
  string(TOUPPER ${component} _upper)
  set(_package ${_package_${component}})
  set(_control ${CMAKE_CURRENT_BINARY_DIR}/control/${component})
  file(STRINGS ${exports} _symbols REGEX "^ +[A-Za-z0-9_]+;")
  list(TRANSFORM _symbols REPLACE "[ ;]" "")
  list(SORT _symbols)
  list(TRANSFORM _symbols REPLACE "(.+)" " \\1@Base 1.2.9\n")
  list(JOIN _symbols "" _symbols)
  file(WRITE ${_control}/symbols "${library}.so.1 ${_package} #MINVER#\n* Build-Depends-Package: ${_package_development}\n${_symbols}")
  file(WRITE ${_control}/shlibs "${library} 1 ${_package} (>= ${PROJECT_VERSION})\n")
  file(WRITE ${_control}/triggers "activate-noawait ldconfig\n")
  set(CPACK_DEBIAN_${_upper}_PACKAGE_CONTROL_EXTRA
    ${_control}/shlibs ${_control}/symbols ${_control}/triggers PARENT_SCOPE)
endfunction()
orsolva_library_control(runtime libOrsolva_cbb ${PROJECT_SOURCE_DIR}/library/interface/exports.map)
orsolva_library_control(runtime_c liborsolva_c ${PROJECT_SOURCE_DIR}/library/interface/c/exports_c.map)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME orsolva)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_COMPONENTS_ALL ${_components})
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${_release})
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${ORSOLVA_PACKAGE_MAINTAINER})
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_PROJECT_CONFIG_FILE ${CMAKE_CURRENT_SOURCE_DIR}/library_depends.cmake)
set(CPACK_ORSOLVA_BINARY_DIR ${PROJECT_BINARY_DIR})
set(CPACK_ORSOLVA_LIBRARY_PACKAGE "${_package_runtime} (= ${_version})")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${_package_runtime})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "GNSS observation quality checker - shared library
Orsolva checks the quality of raw observations of GPS, GLONASS, BDS, Galileo
and QZSS receivers: completeness, lost epochs, code multipath, ionospheric
jumps, cycle slips and signal strength.

This package has the shared library that programs load. It opens no files and
no sockets and starts no threads.")

set(CPACK_DEBIAN_RUNTIME_C_PACKAGE_NAME ${_package_runtime_c})
set(CPACK_DEBIAN_RUNTIME_C_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_C_DESCRIPTION "GNSS observation quality checker - shared library for C
Orsolva checks the quality of raw observations of GPS, GLONASS, BDS, Galileo
and QZSS receivers: completeness, lost epochs, code multipath, ionospheric
jumps, cycle slips and signal strength.

This package has the shared library with the C interface, for programs in C
and for languages that call C.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME ${_package_development})
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${_package_runtime} (= ${_version}), ${_package_runtime_c} (= ${_version})")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "GNSS observation quality checker - development files
Orsolva checks the quality of raw observations of GPS, GLONASS, BDS, Galileo
and QZSS receivers: completeness, lost epochs, code multipath, ionospheric
jumps, cycle slips and signal strength.

This package has what it takes to build programs with the library: headers,
the static library, files for CMake and pkg-config, and the guide for hosts.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME ${_package_tools})
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION science)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_TOOLS_DESCRIPTION "GNSS observation quality checker
Orsolva reads the observation files of GNSS receivers and reference stations
(RINEX 2, 3 and 4, CRINEX, compressed or not) and reports how good they are:
completeness, lost epochs, code multipath, ionospheric jumps, cycle slips and
signal strength of GPS, GLONASS, BDS, Galileo and QZSS.

Reports are text, JSON, CSV or an HTML page with plots. The command also
simulates receivers with known faults and compares reports with the truth.")
include(CPack)
