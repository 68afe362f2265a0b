# The date in the version text: what SOURCE_DATE_EPOCH says, written like __DATE__ and __TIME__.
# usage: cmake -D PROJECT_SOURCE_DIR=ROOT -P build_date_test.cmake
function(expect epoch date time)
  set(ENV{SOURCE_DATE_EPOCH} ${epoch})
  include(${PROJECT_SOURCE_DIR}/cmake/build_date.cmake)
  if(NOT "${ORSOLVA_BUILD_DATE} ${ORSOLVA_BUILD_TIME}" STREQUAL "${date} ${time}")
    message(FATAL_ERROR "${epoch}: \"${ORSOLVA_BUILD_DATE} ${ORSOLVA_BUILD_TIME}\", not \"${date} ${time}\"")
  endif()
  if(NOT "$ENV{SOURCE_DATE_EPOCH}" STREQUAL "${epoch}")
    message(FATAL_ERROR "SOURCE_DATE_EPOCH is changed")
  endif()
endfunction()

expect(0 "Jan  1 1970" 00:00:00)
expect(978404645 "Jan  2 2001" 03:04:05)
expect(1092787200 "Aug 18 2004" 00:00:00)
expect(1126310399 "Sep  9 2005" 23:59:59)
expect(4102444799 "Dec 31 2099" 23:59:59)
