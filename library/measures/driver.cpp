#include "measures/driver.h"

#include <algorithm>
#include <cmath>
#include <tuple>
#include <utility>
#include <vector>

#include "measures/epoch_store.h"

namespace orsolva {
namespace {

using gnssqctoolkit::AbsoluteTime;
using gnssqctoolkit::kMaxSatellites;

/// The live states of one pair of a satellite.
struct PairState {
  PairSignals Signals;
  std::uint32_t Code = 0;
  std::uint32_t Partner = 0;
  bool Seen = false;  // the code was observed: the pair enters the results
  AbsoluteMp Mp;
  IodDetect Iod;
};

/// One satellite: its pairs in ascending (code, partner) order and the views handed to the result side.
struct SatelliteMeasures {
  gnssqctoolkit::SatelliteId Id;
  bool Opened = false;
  int PairsNotSeen = 0;
  std::vector<PairState> Pairs;  // sized once: the views below point into it
  SatMp Mp;
  SatIodDetect Iod;
};

/// A pair of the epoch at hand, kept from the first round over the epoch to the second.
struct PairWork {
  const SatelliteMeasures* Satellite;
  PairState* Pair;
  const CodeObservation* Code;
  const CodeObservation* Partner;  // null when not observed
  bool Counting;
  bool NewRecord;
};

bool Before(const ChannelComb& a, const ChannelComb& b) {
  return std::tie(a.Code, a.Partner) < std::tie(b.Code, b.Partner);
}

bool Same(const ChannelComb& a, const ChannelComb& b) { return a.Code == b.Code && a.Partner == b.Partner; }

std::vector<ChannelComb> SortedPairs(const MpIodChannelCombination& record) {
  std::vector<ChannelComb> pairs;
  for (int slot = 0; slot < kBandSlots; ++slot) {
    pairs.insert(pairs.end(), record.Pairs[slot], record.Pairs[slot] + record.Count[slot]);
  }
  std::sort(pairs.begin(), pairs.end(), Before);
  pairs.erase(std::unique(pairs.begin(), pairs.end(), Same), pairs.end());
  return pairs;
}

const CodeObservation* Find(const CodeObservation* observations, std::uint32_t count, std::uint32_t code) {
  for (std::uint32_t i = 0; i < count; ++i) {
    if (observations[i].Code == code) return &observations[i];
  }
  return nullptr;
}

// Observations ascend by code, so the first valid one is the one of the lowest code.
double FirstPseudorange(const CodeObservation* observations, std::uint32_t count) {
  for (std::uint32_t i = 0; i < count; ++i) {
    if (Present(observations[i].Pseudorange)) return observations[i].Pseudorange;
  }
  return 0.0;
}

void FillViews(SatelliteMeasures& satellite) {
  satellite.Mp = SatMp();
  satellite.Iod = SatIodDetect();
  for (const PairState& pair : satellite.Pairs) {
    const int slot = pair.Signals.CodeSlot - 1;
    if (!pair.Seen || slot < 0 || slot >= kBandSlots) continue;
    std::uint8_t& count = satellite.Mp.Count[slot];
    if (count >= kPairsPerBand) continue;
    satellite.Mp.Pairs[slot][count] = &pair.Mp;
    satellite.Iod.Pairs[slot][count] = &pair.Iod;
    ++count;
    satellite.Iod.Count[slot] = count;
  }
}

void MarkSeen(SatelliteMeasures& satellite, const CodeObservation* observations, std::uint32_t count) {
  if (satellite.PairsNotSeen == 0) return;
  bool changed = false;
  for (PairState& pair : satellite.Pairs) {
    if (pair.Seen || Find(observations, count, pair.Code) == nullptr) continue;
    pair.Seen = true;
    --satellite.PairsNotSeen;
    changed = true;
  }
  if (changed) FillViews(satellite);
}

bool FindIonosphereSlip(const AbsoluteTime& epoch, const PairWork& work, GeometryFreeStep* step) {
  const PairSignals& signals = work.Pair->Signals;
  const CarrierPhase code = {work.Code->Phase, signals.CodeWavelength};
  const CarrierPhase partner = {work.Partner->Phase, signals.PartnerWavelength};
  const bool code_first = signals.CodeSlot == 1;
  return IonosphereSlip(epoch, code_first ? code : partner, code_first ? partner : code, work.Counting,
                        work.Pair->Iod, step);
}

void StartDetail(const PairWork& work, const Time_gbt& time, PairEpochDetail& detail) {
  detail = PairEpochDetail();
  detail.number = gnssqctoolkit::QcSatelliteIndex(work.Satellite->Id);
  detail.satellite = {work.Satellite->Id.system, work.Satellite->Id.prn};
  detail.time = time;
  detail.code = work.Pair->Code;
  detail.partner = work.Pair->Partner;
  detail.counting = work.Counting;
}

void FillDetail(const MultipathStep& multipath, const GeometryFreeStep& geometry_free,
                PairEpochDetail& detail) {
  detail.has_multipath = multipath.HasValue;
  detail.multipath_m = multipath.Value;
  detail.residual_m = multipath.Residual;
  detail.restart = multipath.Restart;
  detail.has_geometry_free_step = geometry_free.HasStep;
  detail.geometry_free_step_m = geometry_free.Step;
  detail.geometry_free_threshold_m = geometry_free.Threshold;
  detail.ionosphere_slip = geometry_free.Slip;
}

}  // namespace

struct IonSlipAndMultipath::Impl {
  ChannelCombinations Combinations;
  std::int32_t GlonassChannels[32];
  SatelliteMeasures Satellites[kMaxSatellites];
  EpochStore Store;
  EpochStore LoneEpoch;  // the first epoch of a run that holds no other yet, else empty
  EpochMedians Medians;
  bool EpochsPassed = false;  // the run has had its two epochs

  // A lone first epoch has been stored but not measured: its pairs are not results yet.
  bool HasResults(int number) const { return EpochsPassed && number >= 1 && number <= kMaxSatellites; }

  // Of the epoch at hand.
  std::vector<double> Differences;
  std::vector<PairWork> Work;
  std::vector<PairEpochDetail> Details;

  Impl() { std::fill(std::begin(GlonassChannels), std::end(GlonassChannels), -999); }

  void Open(int number, int window_length);
  void MarkObservedPairs();
  void PassEpoch(const EpochRange& epoch, const double station[3], const gnssqctoolkit::Ephemeris& ephemeris,
                 double interval, QcDetailObserver* observer);
  void MeasureSatellite(const StoredSatellite& stored, const Time_gbt& time, const AbsoluteTime& epoch,
                        SatelliteGeometry& geometry, bool observed);
  void MeasurePair(PairWork& work, const Time_gbt& time, const AbsoluteTime& epoch,
                   const SatelliteGeometry& geometry, bool observed);
  void CountPairs(double median, double interval, QcDetailObserver* observer);
};

// Chooses the pairs of a satellite at its first epoch.
void IonSlipAndMultipath::Impl::Open(int number, int window_length) {
  SatelliteMeasures& satellite = Satellites[number - 1];
  if (satellite.Opened) return;
  gnssqctoolkit::SatelliteFromIndex(number, satellite.Id);
  const MpIodChannelCombination* record = Combinations.ForSatellite(satellite.Id);
  if (record == nullptr) {
    satellite.Opened = true;
    return;
  }
  const std::vector<ChannelComb> combs = SortedPairs(*record);
  satellite.Pairs = std::vector<PairState>(combs.size());
  satellite.Opened = true;  // not before there is memory for the pairs
  satellite.PairsNotSeen = static_cast<int>(combs.size());
  for (std::size_t i = 0; i < combs.size(); ++i) {
    PairState& pair = satellite.Pairs[i];
    pair.Code = pair.Mp.Code = pair.Iod.Code = combs[i].Code;
    pair.Partner = pair.Mp.Partner = pair.Iod.Partner = combs[i].Partner;
    pair.Signals = MakePairSignals(satellite.Id, pair.Code, pair.Partner, GlonassChannels);
    pair.Mp.WindowLength = window_length;
  }
}

void IonSlipAndMultipath::Impl::MarkObservedPairs() {
  for (const StoredSatellite& stored : Store.Satellites()) {
    MarkSeen(Satellites[stored.Number - 1], Store.Observations(stored), stored.Count);
  }
}

void IonSlipAndMultipath::Impl::PassEpoch(const EpochRange& epoch, const double station[3],
                                          const gnssqctoolkit::Ephemeris& ephemeris, double interval,
                                          QcDetailObserver* observer) {
  Differences.clear();
  Work.clear();
  Details.clear();
  const AbsoluteTime time = gnssqctoolkit::ThroughCalendar(ToAbsolute(epoch.Time));
  SatelliteGeometry geometry;
  geometry.Records = &ephemeris;
  std::copy(station, station + 3, geometry.Station);
  for (std::size_t i = epoch.First; i < epoch.Last; ++i) {
    MeasureSatellite(Store.Satellites()[i], epoch.Time, time, geometry, observer != nullptr);
  }
  double median = 0.0;
  if (EpochMedian(Differences, median)) Medians.Store(time, median);
  CountPairs(median, interval, observer);
}

void IonSlipAndMultipath::Impl::MeasureSatellite(const StoredSatellite& stored, const Time_gbt& time,
                                                 const AbsoluteTime& epoch, SatelliteGeometry& geometry,
                                                 bool observed) {
  SatelliteMeasures& satellite = Satellites[stored.Number - 1];
  if (satellite.Pairs.empty()) return;
  const CodeObservation* observations = Store.Observations(stored);
  geometry.Choice = gnssqctoolkit::EphemerisChoice();
  const double pseudorange = FirstPseudorange(observations, stored.Count);
  geometry.HasPosition =
      geometry.Records->Select(satellite.Id, epoch, gnssqctoolkit::kPassMaxAges, geometry.Choice) &&
      pseudorange > 0.0 &&
      geometry.Records->SatellitePosition(geometry.Choice, epoch, pseudorange, geometry.Satellite);
  for (PairState& pair : satellite.Pairs) {
    const CodeObservation* code = Find(observations, stored.Count, pair.Code);
    if (code == nullptr) continue;
    PairWork work = {&satellite,      &pair, code, Find(observations, stored.Count, pair.Partner),
                     stored.Counting, false};
    MeasurePair(work, time, epoch, geometry, observed);
    Work.push_back(work);
  }
}

void IonSlipAndMultipath::Impl::MeasurePair(PairWork& work, const Time_gbt& time, const AbsoluteTime& epoch,
                                            const SatelliteGeometry& geometry, bool observed) {
  PairState& pair = *work.Pair;
  GeometryFreeStep geometry_free;
  MultipathStep multipath;
  const bool slip =
      work.Partner != nullptr && FindIonosphereSlip(epoch, work, observed ? &geometry_free : nullptr);
  const bool formed = PhaseGeometryDifference(epoch, *work.Code, pair.Signals.CodeWavelength, geometry,
                                              pair.Iod, &work.NewRecord);
  // A difference that is not a number (absurd input) has no rank among the others.
  if (formed && !slip && !std::isnan(pair.Iod.Difference)) Differences.push_back(pair.Iod.Difference);
  if (work.Partner != nullptr) {
    UpdateMultipath(pair.Mp, pair.Signals, epoch, *work.Code, *work.Partner, slip, work.Counting,
                    observed ? &multipath : nullptr);
  }
  if (!observed) return;
  PairEpochDetail& detail = Details.emplace_back();
  StartDetail(work, time, detail);
  FillDetail(multipath, geometry_free, detail);
  detail.has_difference = formed;
  detail.difference_m = formed ? pair.Iod.Difference : 0.0;
  detail.new_ephemeris = work.NewRecord;
}

void IonSlipAndMultipath::Impl::CountPairs(double median, double interval, QcDetailObserver* observer) {
  for (std::size_t i = 0; i < Work.size(); ++i) {
    const PairWork& work = Work[i];
    const PairSignals& signals = work.Pair->Signals;
    IodDetect& iod = work.Pair->Iod;
    SlipStep step;
    CountSlip(iod, work.Counting, Medians, median, interval, work.NewRecord,
              observer != nullptr ? &step : nullptr);
    if (work.Partner != nullptr) {
      UpdateWideLane(iod, WideLane(work.Code->Pseudorange, work.Partner->Pseudorange, work.Code->Phase,
                                   work.Partner->Phase, signals.CodeWavelength, signals.PartnerWavelength));
    }
    iod.PreviousEpoch = iod.CurrentEpoch;
    if (observer == nullptr) continue;
    PairEpochDetail& detail = Details[i];
    detail.excess_m = step.Excess;
    detail.geometry_threshold_m = step.Threshold;
    detail.geometry_slip = step.Slip;
    observer->OnPairEpoch(detail);
  }
}

IonSlipAndMultipath::IonSlipAndMultipath() : impl_(std::make_unique<Impl>()) {}
IonSlipAndMultipath::~IonSlipAndMultipath() = default;

std::array<BandsInUse, kSystemSlots> IonSlipAndMultipath::Initialise(const QcConfig& config,
                                                                     const gnssqctoolkit::IList* code_lists,
                                                                     const std::int32_t* glonass_channels,
                                                                     double interval) {
  impl_->Combinations = ChannelCombinations();  // empty, should this be a second attempt
  const auto bands = impl_->Combinations.Build(config, code_lists);
  std::copy(glonass_channels, glonass_channels + 32, impl_->GlonassChannels);
  window_length_ = MpWindowLength(interval);
  initialised_ = true;  // not before there is memory for the pairs
  return bands;
}

void IonSlipAndMultipath::Reserve(std::size_t satellite_epochs, std::size_t signals) {
  impl_->Store.Reserve(satellite_epochs, signals);
}

void IonSlipAndMultipath::AddSatelliteEpoch(int number, const QcEpochData& epoch, bool counting) {
  if (!initialised_ || number < 1 || number > kMaxSatellites) return;
  impl_->Open(number, window_length_);
  impl_->Store.Add(number, epoch, counting);
}

bool IonSlipAndMultipath::ProcessAllEpochs(const double station_position[3],
                                           const gnssqctoolkit::Ephemeris& ephemeris, double interval,
                                           QcDetailObserver* observer) {
  EpochStore& store = impl_->Store;
  store.Arrange();
  impl_->MarkObservedPairs();
  if (!impl_->EpochsPassed && store.Epochs().size() < 2) {
    EpochStore lone = store;  // complete before it is kept: a copy may find no memory
    std::swap(impl_->LoneEpoch, lone);
    return false;
  }
  impl_->EpochsPassed = true;
  impl_->LoneEpoch.Clear();
  for (const EpochRange& epoch : store.Epochs()) {
    impl_->PassEpoch(epoch, station_position, ephemeris, interval, observer);
  }
  store.Clear();
  return true;
}

void IonSlipAndMultipath::ResetBatch() { impl_->Store = impl_->LoneEpoch; }

const SatMp& IonSlipAndMultipath::Multipath(int number) const {
  static const SatMp kEmpty;
  return impl_->HasResults(number) ? impl_->Satellites[number - 1].Mp : kEmpty;
}

const SatIodDetect& IonSlipAndMultipath::Ionosphere(int number) const {
  static const SatIodDetect kEmpty;
  return impl_->HasResults(number) ? impl_->Satellites[number - 1].Iod : kEmpty;
}

void IonSlipAndMultipath::Release() {
  impl_ = std::make_unique<Impl>();
  initialised_ = false;
  window_length_ = 50;
}

}  // namespace orsolva
