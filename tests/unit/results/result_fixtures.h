// Hand-made statistics for the tests of the result side.
#ifndef ORSOLVA_TESTS_UNIT_RESULTS_RESULT_FIXTURES_H
#define ORSOLVA_TESTS_UNIT_RESULTS_RESULT_FIXTURES_H

#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <vector>

#include "results/result_analysis.h"

namespace orsolva::testing {

/// Signal numbers of the tests, named by system letter and observation code.
enum : std::int32_t {
  kG1C = 1,
  kG1W = 6,
  kG2C = 10,
  kG2W = 16,
  kG5I = 20,
  kG5Q = 21,
  kG5X = 22,
  kR1C = 30,
  kR2C = 35,
  kR3I = 40,
  kE1C = 62,
  kE5Q = 66,
  kE7Q = 69,
  kE8Q = 72,
  kE6C = 76,
  kJ1C = 120,
  kJ2L = 128,
  kJ5Q = 131,
  kJ6L = 137,
  kC2I = 150,
  kC1P = 154,
  kC5P = 162,
  kC7I = 164,
  kC7D = 167,
  kC8D = 170,
  kC6I = 173,
  kC6D = 176,
};

inline gnssqctoolkit::IList Codes(std::initializer_list<std::int32_t> codes) {
  gnssqctoolkit::IList list;
  for (const std::int32_t code : codes) list.Append(code);
  return list;
}

inline std::vector<std::int32_t> AsVector(const gnssqctoolkit::IList& list) {
  return {list.begin(), list.end()};
}

inline Signal_QC_gbt Signal(std::int32_t code, double snr_dbhz = 45.0, double pseudorange = 2.2e7,
                            double phase = 1.1e8) {
  Signal_QC_gbt signal{};
  signal.code = static_cast<std::uint8_t>(code);
  signal.snr = static_cast<float>(snr_dbhz);
  signal.pseudorange = pseudorange;
  signal.phase = phase;
  return signal;
}

/// Puts a signal into frequency slot `slot` (0 to 5) of an epoch.
inline void Put(QcEpochData& epoch, int slot, const Signal_QC_gbt& signal) {
  QcSlotSignals& to = epoch.Slots[slot];
  to.Signals[to.Count++] = signal;
}

inline TimeList Times(std::initializer_list<std::int64_t> seconds) {
  TimeList list;
  for (const std::int64_t s : seconds) list.Append({s, 0.0});
  return list;
}

inline AbsoluteMp Multipath(std::uint32_t code, std::uint32_t partner, double sum, std::int64_t count,
                            std::initializer_list<std::int64_t> jumps = {}) {
  AbsoluteMp pair;
  pair.Code = code;
  pair.Partner = partner;
  pair.SumOfSquares = sum;
  pair.Count = count;
  pair.RestartTimes = Times(jumps);
  return pair;
}

inline IodDetect Slips(std::uint32_t code, std::uint32_t partner, std::initializer_list<std::int64_t> slips,
                       double variance = 0.0) {
  IodDetect record;
  record.Code = code;
  record.Partner = partner;
  record.SlipTimes = Times(slips);
  record.SlipCount = static_cast<std::uint32_t>(slips.size());
  record.WideLaneVariance = variance;
  record.WideLaneCount = 1;
  return record;
}

/// The statistics of one satellite. Pairs are added by reference: the caller keeps them alive.
struct Satellite {
  gnssqctoolkit::SatelliteId Id;
  SatCompleteObsList Complete;
  SnrSatList Snr;
  SatMp Mp;
  SatIodDetect Iod;

  Satellite(std::uint8_t system, std::int32_t prn) : Id{system, prn} {}

  /// A code with its flags in channel slot `slot` (1 to 6) and a matching SNR channel.
  Satellite& Channel(int slot, std::int32_t code, std::initializer_list<int> flags, double snr_dbhz = 40.0) {
    std::uint8_t& count = Complete.CodeCount[slot - 1];
    ChannelCompleteObsList& complete = Complete.Channels[slot - 1][count];
    SnrChannelList& snr = Snr.Channels[slot - 1][count];
    complete.Code = snr.Code = static_cast<std::uint8_t>(code);
    for (const int flag : flags) complete.Append(flag != 0);
    for (const int flag : flags) {
      if (flag != 0) snr.Add(snr_dbhz, true, true);
    }
    Snr.CodeCount[slot - 1] = ++count;
    return *this;
  }
  Satellite& Expect(std::uint64_t epochs) {
    Complete.ExpectedEpochs = epochs;
    return *this;
  }
  Satellite& Pair(int slot, const AbsoluteMp& pair) {
    Mp.Pairs[slot - 1][Mp.Count[slot - 1]++] = &pair;
    return *this;
  }
  Satellite& Pair(int slot, const IodDetect& record) {
    Iod.Pairs[slot - 1][Iod.Count[slot - 1]++] = &record;
    return *this;
  }
  SatelliteStores Stores() const { return {Id, Complete, Snr, Mp, Iod}; }
};

/// Figures of a satellite for one combination.
inline QcResultCore Evaluate(const Satellite& satellite, const gnssqctoolkit::IList& codes,
                             bool shifted = false) {
  const SatelliteStores stores = satellite.Stores();
  QcResultCore core;
  EvaluateCombination(SatelliteView(stores, shifted), codes, core);
  return core;
}

inline std::uint64_t Together(const Satellite& satellite, const gnssqctoolkit::IList& codes,
                              bool shifted = false) {
  const SatelliteStores stores = satellite.Stores();
  return ObservedTogether(SatelliteView(stores, shifted), codes);
}

/// The stores of a run without measures.
struct RunStores {
  QcConfig Config;
  std::unique_ptr<IonSlipAndMultipath> IonMp = std::make_unique<IonSlipAndMultipath>();
  std::unique_ptr<CompleteSnr> Snr = std::make_unique<CompleteSnr>();
  gnssqctoolkit::IList Lists[kCodeListSlots];
  std::uint8_t Usable[gnssqctoolkit::kMaxSatellites];
  std::uint32_t CombinationMask = 31;
  Time_gbt First{};
  Time_gbt Last{};
  std::uint32_t EpochCount = 0;
  double Interval = 1.0;

  RunStores() {
    Config.ApplyDefaults();
    Config.SystemMask = Config.EnabledSystems();
    std::memset(Usable, 1, sizeof(Usable));
  }
  /// Observed codes of a system.
  RunStores& Observed(int system, std::initializer_list<std::int32_t> codes) {
    Lists[CodeListSlotOf(system)] = Codes(codes);
    return *this;
  }
  /// `epochs` epochs above the cut-off and 30 degrees with these signals, expected as well.
  RunStores& Track(std::uint8_t system, std::int32_t prn, const QcEpochData& epoch, int epochs) {
    Snr->BuildTemplates(Lists);
    const int number = gnssqctoolkit::QcSatelliteIndex({system, prn});
    for (int i = 0; i < epochs; ++i) Snr->AddEpoch(number, epoch, true, true);
    Snr->AddExpected(number, static_cast<std::uint64_t>(epochs));
    return *this;
  }
  ResultSources Sources() const {
    return {Config,
            *IonMp,
            *Snr,
            Lists,
            Usable,
            CombinationMask,
            First,
            Last,
            EpochCount,
            Interval,
            {4075580.0, 931853.0, 4801568.0}};
  }
};

}  // namespace orsolva::testing

#endif  // ORSOLVA_TESTS_UNIT_RESULTS_RESULT_FIXTURES_H
