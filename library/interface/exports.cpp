// The exported functions: the top layer of the library and the only place where errors are caught.
#include "interface/record_layout.h"  // first: what it refuses is reported before anything else fails

#include <cstring>
#include <new>

#include "interface/print.h"
#include "interface/version_banner.h"
#include "orsolva/gnssqc.h"
#include "qc/base/config.h"
#include "qc/process.h"

namespace {

using orsolva::PostProcessGnssQc;

using Handle = unsigned long long*;

PostProcessGnssQc* ProcessOf(Handle handle) { return reinterpret_cast<PostProcessGnssQc*>(handle); }

/// Runs an operation; whatever it throws becomes the failure value.
template <class Result, class Operation>
Result Guarded(Result failure, Operation&& operation) noexcept {
  try {
    return operation();
  } catch (...) {
    return failure;
  }
}

template <class Operation>
void Guarded(Operation&& operation) noexcept {
  try {
    operation();
  } catch (...) {
    // Swallowed: the function has no failure value.
  }
}

}  // namespace

unsigned long long* CreatQcProcess() {
  void* block = ::operator new(sizeof(PostProcessGnssQc), std::nothrow);
  if (block == nullptr) return nullptr;
  std::memset(block, 0, sizeof(PostProcessGnssQc));
  const auto process =
      Guarded<PostProcessGnssQc*>(nullptr, [block] { return new (block) PostProcessGnssQc; });
  if (process == nullptr) ::operator delete(block);
  return reinterpret_cast<Handle>(process);
}

void DiposeProcess(unsigned long long* handle) {
  if (handle == nullptr) return;
  Guarded([handle] {
    PostProcessGnssQc* process = ProcessOf(handle);
    Guarded([process] { process->Release(); });
    process->~PostProcessGnssQc();
    ::operator delete(static_cast<void*>(process));
  });
}

bool InitialQc(const NavBodyData_QC_gbt& nav, const config_qct* config, unsigned long long* handle) {
  if (config == nullptr || handle == nullptr) return false;
  return Guarded(false, [&] {
    orsolva::QcConfig built;
    built.ApplyDefaults();
    built.Overlay(*config);
    PostProcessGnssQc* process = ProcessOf(handle);
    process->Configure(built);
    process->SetCombination(config->combination_system);
    return process->LoadNavigationSet(nav);
  });
}

GNSSQC_STATE GNSSQCPlus(const ObsBodyData_QC_gbt& obs, unsigned long long* handle) {
  if (handle == nullptr) return GNSSQC_INTERNAL_ERROR;
  return Guarded(GNSSQC_INTERNAL_ERROR, [&] { return ProcessOf(handle)->TakeBatch(obs); });
}

bool GetAllPeriodResult(unsigned long long* handle, result_qct* result) {
  if (handle == nullptr || result == nullptr) return false;
  return Guarded(false, [&] {
    const bool plausible = ProcessOf(handle)->WholePeriodResult(*result);
    ProcessOf(handle)->RoundInterval();
    return plausible;
  });
}

void GetEachCodeResult(unsigned long long* handle, total_code_qc_result& out) {
  std::memset(&out, 0, sizeof(out));
  if (handle == nullptr) return;
  const bool filled = Guarded(false, [&] {
    ProcessOf(handle)->EachCodeResult(out);
    return true;
  });
  // What was filled before the error is no result.
  if (!filled) std::memset(&out, 0, sizeof(out));
}

GNSSQC_STATE GNSSQC(const ObsBodyData_QC_gbt& obs, const NavBodyData_QC_gbt& nav, const config_qct& config,
                    result_qct& result) {
  orsolva::SetLogFile("/app/gnsslog/qc/qc.txt");
  orsolva::SetLogSwitch(1);
  const Handle handle = CreatQcProcess();
  if (handle == nullptr) return GNSSQC_INTERNAL_ERROR;
  if (!InitialQc(nav, &config, handle)) {
    // Kept for compatibility: the process object is not disposed of on this path, it leaks.
    orsolva::Print("no nav data! \n");
    return GNSSQC_NO_NAV;
  }
  const GNSSQC_STATE state = GNSSQCPlus(obs, handle);
  if (state > 0) {
    GetAllPeriodResult(handle, &result);
    orsolva::Print("QC success! \n");
  }
  DiposeProcess(handle);
  orsolva::CloseLog();
  return state;
}

char* GetGNSSQCLibVersion(char* const buffer) {
  if (buffer == nullptr) return nullptr;
  const orsolva::QCVersion version;
  return std::strcpy(buffer, version.Text);
}
