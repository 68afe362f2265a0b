// The eight exported functions of libOrsolva_cbb.so (on Windows libOrsolva_cbb.dll).
//
// A run: CreatQcProcess, InitialQc once, GNSSQCPlus once per batch (batches in time order), then
// GetAllPeriodResult and GetEachCodeResult as often as wanted, DiposeProcess. GNSSQC does all of it for one
// batch. A handle belongs to one thread at a time; different handles share nothing. No exception leaves any
// of these functions. The spelling of the names is part of the binary interface.
#ifndef ORSOLVA_INTERFACE_GNSSQC_H
#define ORSOLVA_INTERFACE_GNSSQC_H

#include "records.h"

#if defined(_WIN32) && defined(ORSOLVA_BUILDS_LIBRARY)
#define ORSOLVA_EXPORT __declspec(dllexport)
#elif defined(_WIN32) && !defined(ORSOLVA_STATIC)
#define ORSOLVA_EXPORT __declspec(dllimport)
#elif defined(_WIN32)
#define ORSOLVA_EXPORT
#elif defined(__GNUC__)
#define ORSOLVA_EXPORT __attribute__((visibility("default")))
#else
#define ORSOLVA_EXPORT
#endif

/// @return a new handle, or null when there is no memory for it
ORSOLVA_EXPORT unsigned long long* CreatQcProcess();

/// Frees everything behind the handle. A null handle is ignored.
ORSOLVA_EXPORT void DiposeProcess(unsigned long long* handle);

/// Takes the configuration and the navigation set.
///
/// @return false when `config` is null (nothing changes), when the set holds no record at all, or on an error
ORSOLVA_EXPORT bool InitialQc(const NavBodyData_QC_gbt& nav, const config_qct* config,
                              unsigned long long* handle);

/// Takes one batch into the run.
///
/// @return GNSSQC_OK; GNSSQC_NO_DATA for an empty batch (no epochs or a null pointer) and for one in which no
///         epoch has a usable time, its fraction of a second being no finite number; GNSSQC_NO_POSITION when
///         no position is given and none can be computed; GNSSQC_INTERNAL_ERROR for a null handle or an
///         error, of which the only known one is memory that runs out
ORSOLVA_EXPORT GNSSQC_STATE GNSSQCPlus(const ObsBodyData_QC_gbt& obs, unsigned long long* handle);

/// Writes the result of the run so far; changes no statistic.
///
/// @return true when the lost epochs are not negative and the combined completeness lies in [0, 1]; false
///         otherwise (the record is filled nevertheless), for null arguments and on an error
ORSOLVA_EXPORT bool GetAllPeriodResult(unsigned long long* handle, result_qct* result);

/// Writes the result per signal code of the run so far; changes no statistic. For a null handle and on an
/// error the record is zeroed: it has no codes.
ORSOLVA_EXPORT void GetEachCodeResult(unsigned long long* handle, total_code_qc_result& out);

/// One whole run over one batch. Prints "QC success! \n" or "no nav data! \n" to standard output.
/// On a refused navigation set the process object is not freed: hosts rely on the entry point as it is.
ORSOLVA_EXPORT GNSSQC_STATE GNSSQC(const ObsBodyData_QC_gbt& obs, const NavBodyData_QC_gbt& nav,
                                   const config_qct& config, result_qct& result);

/// Copies the identification text (115 characters and the terminating zero) into `buffer`.
///
/// @return `buffer`, or null for a null buffer
ORSOLVA_EXPORT char* GetGNSSQCLibVersion(char* const buffer);

#endif  // ORSOLVA_INTERFACE_GNSSQC_H
