#include "tests/truth/slip_rules.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "host/rinex/signal_codes.h"

namespace orsolva_test {
namespace {

using orsolva::GeometrySlipReason;
using orsolva::IonosphereSlipReason;
using orsolva::PairEpochDetail;

constexpr double kMinLimit_m = 0.026;
constexpr double kLongGap_s = 242, kNewArc_s = 600;

bool SameEpoch(const Time_gbt& a, const Time_gbt& b) { return a.time == b.time && a.sec == b.sec; }

}  // namespace

PairFrequencies FrequenciesOf(const PairKey& key, int glonass_channel) {
  const auto [system, prn, code, partner] = key;
  const char first_band = LetterOf(system) == 'C' ? '2' : '1';
  PairFrequencies pair;
  pair.code_is_first = orsolva_host::SignalName(system, code)[0] == first_band;
  const double code_hz = FrequencyOf(system, code, glonass_channel);
  const double partner_hz = FrequencyOf(system, partner, glonass_channel);
  pair.first_hz = pair.code_is_first ? code_hz : partner_hz;
  pair.second_hz = pair.code_is_first ? partner_hz : code_hz;
  return pair;
}

double GeometryFreeLimit(const PairFrequencies& pair, double interval_s) {
  const double ratio = (pair.second_hz / pair.first_hz) * (pair.second_hz / pair.first_hz);
  return std::max(kMinLimit_m, std::fabs((1 - ratio) * interval_s * 4.0 / 60));
}

double GeometryLimit(double gap_s) {
  if (gap_s <= 1) return 0.05;
  if (gap_s <= 15) return 0.1;
  return gap_s <= 30 ? 0.15 : 0.3;
}

void ByEpoch::Add(const PairEpochDetail& detail) {
  if (!epoch_.empty() && !SameEpoch(epoch_.front().time, detail.time)) Finish();
  epoch_.push_back(detail);
}

void ByEpoch::Finish() {
  if (!epoch_.empty()) use_(epoch_);
  epoch_.clear();
}

SlipRuleChecker::SlipRuleChecker(const orsolva_host::Scenario& scenario, Proof& proof)
    : interval_s_(scenario.interval_s), sky_(scenario), satellites_(sky_, scenario), proof_(&proof) {}

void SlipRuleChecker::CheckEpoch(const std::vector<PairEpochDetail>& epoch) {
  changes_.clear();
  for (const PairEpochDetail& d : epoch) {
    if (d.has_difference && d.ionosphere_slip == IonosphereSlipReason::kNone)
      changes_.push_back(d.difference_m);
  }
  std::sort(changes_.begin(), changes_.end());
  const double median = changes_.empty() ? 0.0 : changes_[changes_.size() / 2];
  for (const PairEpochDetail& d : epoch) {
    CheckGeometryFree(d);
    CheckGeometry(d, median);
  }
}

SlipRuleChecker::PairRule& SlipRuleChecker::RuleOf(const PairEpochDetail& d) {
  const PairKey key = KeyOf(d);
  const auto found = rules_.find(key);
  if (found != rules_.end()) return found->second;
  const int channel = satellites_.Channel(std::get<0>(key), std::get<1>(key));
  return rules_.emplace(key, PairRule{FrequenciesOf(key, channel), {}}).first->second;
}

void SlipRuleChecker::CheckGeometryFree(const PairEpochDetail& d) {
  if (!d.has_geometry_free_step && !d.has_multipath) return;  // the partner is not observed
  PairRule& rule = RuleOf(d);
  if (d.has_geometry_free_step) {
    const double gap = SecondsAfter(rule.last, d.time);
    const double limit = GeometryFreeLimit(rule.frequencies, gap);
    const bool large = std::fabs(d.geometry_free_step_m) > limit || gap > kLongGap_s;
    const bool due = large && gap < kNewArc_s && d.counting;
    Hold(std::fabs(d.geometry_free_threshold_m - limit) < 1e-9 * limit, d, "geometry-free threshold");
    Hold((d.ionosphere_slip != IonosphereSlipReason::kNone) == due, d, "geometry-free slip");
  }
  rule.last = d.time;
}

void SlipRuleChecker::CheckGeometry(const PairEpochDetail& d, double median) {
  if (!d.has_difference || !d.counting) {
    Hold(d.geometry_slip == GeometrySlipReason::kNone, d, "slip without a difference");
    return;
  }
  if (d.geometry_slip == GeometrySlipReason::kDataGap) return;  // gaps have a proof of their own
  Hold(d.excess_m == d.difference_m - median, d, "excess over the median");
  const bool due = std::fabs(d.difference_m - median) > GeometryLimit(interval_s_);
  Hold((d.geometry_slip != GeometrySlipReason::kNone) == due, d, "phase-minus-geometry slip");
}

void SlipRuleChecker::Hold(bool holds, const PairEpochDetail& d, const char* what) {
  if (holds) return proof_->Check(true, {});
  const auto [system, prn, code, partner] = KeyOf(d);
  proof_->Check(false, fmt::format("{} s, {} {} with {}, time {}: {}", interval_s_, NameOf(system, prn),
                                   CodeName(system, code), CodeName(system, partner), d.time.time, what));
}

}  // namespace orsolva_test
