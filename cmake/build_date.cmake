# Sets ORSOLVA_BUILD_DATE ("Jan  2 2026") and ORSOLVA_BUILD_TIME ("03:04:05", UTC), which the library shows in its
# version text. They come from SOURCE_DATE_EPOCH, or from the commit, or from the release, never from the clock: two
# builds of one source give the same bytes. They are read when CMake configures.
set(_release_epoch 1795305600)  # 2026-11-22, written into builds of an unpacked archive

function(orsolva_source_epoch out)
  set(_epoch ${_release_epoch})
  if(DEFINED ENV{SOURCE_DATE_EPOCH})
    set(_epoch $ENV{SOURCE_DATE_EPOCH})
  elseif(EXISTS ${PROJECT_SOURCE_DIR}/.git)
    execute_process(COMMAND git log -1 --format=%ct WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
      OUTPUT_VARIABLE _commit OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET RESULT_VARIABLE _failed)
    if(NOT _failed AND _commit MATCHES "^[0-9]+$")
      set(_epoch ${_commit})
    endif()
  endif()
  if(NOT _epoch MATCHES "^[0-9]+$")
    message(FATAL_ERROR "SOURCE_DATE_EPOCH is \"${_epoch}\"; it has to be a number of seconds since 1970")
  endif()
  set(${out} ${_epoch} PARENT_SCOPE)
endfunction()

# Formats like __DATE__ and __TIME__ do, in English whatever the locale.
function(orsolva_format_epoch epoch date time)
  set(_kept "$ENV{SOURCE_DATE_EPOCH}")
  set(ENV{SOURCE_DATE_EPOCH} ${epoch})  # string(TIMESTAMP) takes its time from there
  string(TIMESTAMP _fields "%m;%d;%Y;%H:%M:%S" UTC)
  set(ENV{SOURCE_DATE_EPOCH} "${_kept}")
  if(_kept STREQUAL "")
    unset(ENV{SOURCE_DATE_EPOCH})
  endif()
  list(GET _fields 0 _month)
  string(REGEX REPLACE "^0" "" _month ${_month})
  list(GET _fields 1 _day)
  list(GET _fields 2 _year)
  list(GET _fields 3 _time)
  set(_months none Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec)
  list(GET _months ${_month} _month)
  string(REGEX REPLACE "^0" " " _day ${_day})
  set(${date} "${_month} ${_day} ${_year}" PARENT_SCOPE)
  set(${time} ${_time} PARENT_SCOPE)
endfunction()

orsolva_source_epoch(_epoch)
orsolva_format_epoch(${_epoch} ORSOLVA_BUILD_DATE ORSOLVA_BUILD_TIME)
set(ORSOLVA_SOURCE_EPOCH ${_epoch} CACHE INTERNAL "Time in the version text, seconds since 1970")
