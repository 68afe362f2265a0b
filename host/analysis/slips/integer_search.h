// Slip vectors in cycles that explain the test vector of a step, best first.
//
// Signals of one band are tied first: their differences are free of geometry and ionosphere and round
// directly. Then the bands are taken one by one in Gaussian conditional order (sequential rounding as in
// Teunissen 1995, without decorrelation), keeping a beam of the best.
#ifndef ORSOLVA_ANALYSIS_SLIPS_INTEGER_SEARCH_H
#define ORSOLVA_ANALYSIS_SLIPS_INTEGER_SEARCH_H

#include <array>
#include <vector>

#include "host/analysis/slips/prediction.h"
#include "host/analysis/slips/satellite_track.h"
#include "host/analysis/slips/wide_lane.h"

namespace orsolva_host::analysis {

/// Carriers of one system are at most six (BDS).
constexpr std::size_t kMaxBands = 8;

using Cycles = std::array<double, kMaxSignals>;  ///< by place in the StepTest

struct SlipCandidate {
  Cycles cycles = {};
  double mark = 0;  ///< the same for equal vectors
};

/// A list of different slip vectors.
class SlipCandidates {
 public:
  void Clear() { list_.clear(); }
  /// @return its place in the list
  std::size_t Add(const Cycles& cycles, int count);
  std::vector<SlipCandidate>& List() { return list_; }

 private:
  std::vector<SlipCandidate> list_;
};

/// Places of the cheapest of some costs, cheapest first, the earlier of two alike.
class CheapestFirst {
 public:
  /// @return at most `most` places, valid until the next call
  const std::vector<std::size_t>& Of(const std::vector<double>& costs, std::size_t most);

 private:
  std::vector<std::size_t> order_;
};

class IntegerSearch {
 public:
  /// Adds the best vectors for r to the list; also single signals and single bands by rounding.
  /// @param r      test vector, m; test.r or one of another prediction
  /// @param halves steps of half a cycle are allowed
  void Offer(const SatelliteTrack& track, const StepTest& test, const std::array<double, kMaxSignals>& r,
             const WideLaneEvidence& wide_lanes, bool halves, SlipCandidates& out);

 private:
  struct Band {
    double wavelength_m;
    double mu;
    double mean_m;  ///< of the signals' r less their offsets
    double noise_m2;
    int signals;
  };
  struct Branch {
    std::array<double, kMaxBands> cycles;
    std::array<double, kMaxBands> innovation;
    double cost;
  };
  /// A branch of the beam with one more band.
  struct Growth {
    std::size_t parent;
    double cycles;
    double innovation;
    double cost;
  };

  void TieBands(const SatelliteTrack& track, const StepTest& test, const std::array<double, kMaxSignals>& r,
                double step);
  void Factorize(const StepTest& test);
  double Width_cycles(std::size_t band) const;
  void Grow(double step, std::size_t most, double limit);
  void Extend(std::size_t band, double step, std::size_t most, double limit);
  double Reach_m(double cost, double variance) const;
  bool MayStay(double cost);
  void FindTooExpensive();
  void KeepCheapestGrown(std::size_t band);
  void CyclesOf(const Branch& branch, int count, Cycles& cycles) const;
  void AddWideLanes(const WideLaneEvidence& wide_lanes, int count);
  double LimitByNarrowBeam(double step, const WideLaneEvidence& wide_lanes, int count);
  void OfferSingles(const SatelliteTrack& track, const StepTest& test,
                    const std::array<double, kMaxSignals>& r, SlipCandidates& out) const;

  std::vector<Band> bands_;
  std::array<int, kMaxSignals> band_of_;
  Cycles offset_ = {};  ///< of signals against the first of their band
  std::vector<Branch> beam_, next_;
  std::vector<Growth> grown_;
  std::vector<double> costs_;
  std::size_t most_ = 0;      ///< branches that the beam holds
  double too_expensive_ = 0;  ///< for the beam, as far as the costs of grown branches show
  CheapestFirst cheapest_;
  std::vector<std::array<double, kMaxBands>> factor_;  ///< rows of L in the L D L' of the bands' covariance
  std::vector<double> diagonal_;
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_SLIPS_INTEGER_SEARCH_H
