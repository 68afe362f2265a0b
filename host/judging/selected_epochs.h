// The part of a source that a selection asks for, as a source of its own: library and analysis take the same
// epochs and signals.
//
// Sampling keeps the epochs on the grid of multiples of GPS time. On the grid is an epoch less than half the
// shortest distance of epochs so far from a multiple, at most 0.5 s and at least 5 ms: tags that wander and
// phones, whose epochs lie off the full second, keep theirs. Of several such epochs the first is taken.
//
// What happened in epochs that sampling leaves out is carried to the next one taken: events of the receiver,
// and loss-of-lock flags of each signal.
#ifndef ORSOLVA_JUDGING_SELECTED_EPOCHS_H
#define ORSOLVA_JUDGING_SELECTED_EPOCHS_H

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "host/judging/epoch_selection.h"
#include "host/judging/epoch_source.h"
#include "host/report/report.h"
#include "host/rinex/diagnostics.h"

namespace orsolva_host {

class SelectedEpochs : public EpochSource {
 public:
  /// All must outlive this. @param diagnostics  gets a notice of every signal asked for and never seen
  SelectedEpochs(EpochSource& source, const EpochSelection& selection, Diagnostics& diagnostics);

  const std::string& Name() const override { return source_.Name(); }
  /// That of the source; its interval is that of the epochs taken, absent where that is not known.
  const ObservationHeader& Header() const override { return header_; }
  bool Next(ObsEpoch_QC_gbt& epoch, ObservationEpoch& full) override;
  const std::optional<FileError>& Failure() const override { return source_.Failure(); }
  std::vector<DescriptionChange> Changes() const override { return source_.Changes(); }
  StationDescription Described() const override {
    StationDescription description = EpochSource::Described();
    description.name = source_.Described().name;
    return description;
  }
  std::string NothingFound() const override;
  std::shared_ptr<const ReadNavigation> Navigation() const override { return source_.Navigation(); }
  std::vector<std::shared_ptr<const ReadNavigation>> NewNavigation() override {
    return source_.NewNavigation();
  }
  void TakeChannels(const BroadcastRecords& records) override { source_.TakeChannels(records); }
  std::vector<std::string> FilesOfSpan() const override { return source_.FilesOfSpan(); }
  std::optional<StreamFacts> Stream() const override { return source_.Stream(); }

  /// What was asked for, with times of day on their day.
  ReportSelection Facts() const;

 private:
  using SignalKey = std::tuple<SatelliteId, char, char>;

  void Begin(std::int64_t first_ns);
  bool IsInSpan(std::int64_t time_ns) const;
  bool IsOnGrid(std::int64_t time_ns);
  void KeepFlags(const ObservationEpoch& skipped);
  void ReturnFlags(ObservationEpoch& taken);
  void KeepChosen(ObservationEpoch& full);
  void KeepChosen(ObsEpoch_QC_gbt& epoch) const;
  void NoteUnseen();

  EpochSource& source_;
  const EpochSelection& selection_;
  Diagnostics& diagnostics_;
  ObservationHeader header_;
  std::optional<std::int64_t> start_ns_, end_ns_;
  std::int64_t sampling_ns_ = 0;                    ///< 0: every epoch
  std::optional<std::int64_t> first_ns_, last_ns_;  ///< of the source
  std::int64_t shortest_step_ns_ = 0;               ///< 0: none yet
  std::optional<std::int64_t> grid_number_;         ///< of the epoch taken last
  std::set<SignalKey> lost_lock_;                   ///< in epochs left out since
  std::uint32_t events_ = 0;
  std::vector<bool> seen_;  ///< by the selection's signals
  std::uint64_t left_out_ = 0;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_SELECTED_EPOCHS_H
