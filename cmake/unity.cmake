# ORSOLVA_UNITY: several sources of a target are compiled as one, which takes half the processor time; of the tests, or
# of all targets worth it. The ordinary build has an object per file: in it every source includes what it uses.
#
# orsolva_unity(TARGET [SOURCE...])  the sources named have local names that others of the target have too, and are
# compiled by themselves; a new one with such a name gets a better name or joins them
function(orsolva_unity target)
  if(NOT TARGET ${target})
    return()
  endif()
  # A function may hide a constant of another source.
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON
    UNITY_BUILD_CODE_BEFORE_INCLUDE "#pragma GCC diagnostic ignored \"-Wshadow\"")
  list(TRANSFORM ARGN PREPEND ${PROJECT_SOURCE_DIR}/)
  if(ARGN)
    set_source_files_properties(${ARGN} TARGET_DIRECTORY ${target} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  endif()
endfunction()

orsolva_unity(unit_toolkit)
orsolva_unity(unit_navigation)
orsolva_unity(unit_measures
  tests/unit/measures/driver_batches_test.cpp
  tests/unit/measures/driver_pairs_test.cpp
  tests/unit/measures/driver_test.cpp
  tests/unit/measures/ionosphere_test.cpp
  tests/unit/measures/multipath_test.cpp
  tests/unit/measures/phase_geometry_test.cpp)
orsolva_unity(unit_qc
  tests/unit/qc/expected_epochs_test.cpp)
orsolva_unity(unit_results
  tests/unit/results/slot_tables_test.cpp)
orsolva_unity(unit_interface)
orsolva_unity(analysis_test
  tests/analysis/code_multipath_test.cpp
  tests/analysis/ionosphere_rate_test.cpp
  tests/analysis/observation_counts_test.cpp
  tests/analysis/precise_orbit_test.cpp
  tests/analysis/slip_sums_test.cpp
  tests/analysis/span_test.cpp
  tests/analysis/station_figures_test.cpp
  tests/analysis/strength_drops_test.cpp
  tests/analysis/strength_test.cpp
  tests/analysis/time_series_test.cpp
  tests/analysis/tracking_sums_test.cpp
  tests/analysis/visibility_test.cpp)
orsolva_unity(rtcm_test)
orsolva_unity(host_readers
  tests/host/findings_test.cpp
  tests/host/full_epoch_test.cpp
  tests/host/html_writer_test.cpp
  tests/host/navigation_test.cpp
  tests/host/navigation_version2_test.cpp
  tests/host/observation_test.cpp
  tests/host/profile_test.cpp
  tests/host/report_writers_test.cpp
  tests/host/version2_test.cpp)
orsolva_unity(host_command
  tests/host/inputs_command_test.cpp
  tests/host/outputs_command_test.cpp)
orsolva_unity(host_judging
  tests/host/judging/report_sinks_test.cpp
  tests/host/judging/sbf_twins_test.cpp
  tests/host/judging/ubx_twins_test.cpp)
orsolva_unity(host_cli)
orsolva_unity(live_core)
orsolva_unity(live_stations)
orsolva_unity(real_test)
orsolva_unity(simulate
  tests/simulator/faults_test.cpp
  tests/simulator/file_set_test.cpp
  tests/simulator/receiver_test.cpp
  tests/simulator/same_bytes_test.cpp
  tests/simulator/scenario_json_test.cpp
  tests/simulator/truth_test.cpp)

if(NOT ORSOLVA_UNITY STREQUAL "all")
  return()
endif()
foreach(_layer toolkit matrix navigation qc measures results interface)
  orsolva_unity(orsolva_${_layer})
endforeach()
orsolva_unity(orsolva_judging
  host/judging/epoch_queue.cpp
  host/judging/selected_epochs.cpp
  host/judging/selection_texts.cpp
  host/judging/stream_detection.cpp)
orsolva_unity(orsolva_terminal)
orsolva_unity(orsolva_cli
  host/cli/help_text.cpp
  host/cli/live_command.cpp
  host/cli/parquet_tables.cpp)
orsolva_unity(orsolva_analysis
  host/analysis/figures/position.cpp
  host/analysis/figures/receiver_clock_figures.cpp
  host/analysis/figures/span.cpp
  host/analysis/geometry/station_position.cpp
  host/analysis/slips/disturbances.cpp
  host/analysis/slips/integer_search.cpp
  host/analysis/slips/receiver_clock.cpp
  host/analysis/slips/step_departure.cpp
  host/analysis/slips/wide_lane.cpp)
orsolva_unity(orsolva_live
  host/live/sources/serial_line.cpp
  host/live/sources/tcp_stream.cpp
  host/live/stations/station_runs.cpp
  host/live/windows/epoch_counter.cpp)
orsolva_unity(orsolva_live_serving)
