#include "host/live/stations/station_judge.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "host/formats/rtcm/stream_clock.h"
#include "host/judging/stream_source.h"
#include "host/live/event_json.h"

namespace orsolva_host::live {
namespace {

constexpr double kLongestGapCounted_s = 86400;
constexpr std::int64_t kLostOneByOne = 3600;
constexpr std::size_t kPositionEpochs = 10;
constexpr int kOutOfOrderIsNewTime = 30;
constexpr double kFuture_s = 60;
constexpr double kStuck_s = 60;  ///< messages come and no epoch: the decoder is restarted
constexpr double kLook_s = 10;
constexpr std::size_t kMaxLatencies = 6000;
constexpr double kSamePlace_m = 0.005;

double Seconds(std::int64_t ns) { return static_cast<double>(ns) / 1e9; }

double Median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

double Distance(const std::array<double, 3>& a, const std::array<double, 3>& b) {
  return std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
}

std::array<double, 3> MedianPlace(const std::vector<std::array<double, 3>>& places) {
  std::array<double, 3> median = {};
  for (std::size_t axis = 0; axis < 3; ++axis) {
    std::vector<double> values;
    for (const auto& place : places) values.push_back(place[axis]);
    median[axis] = Median(std::move(values));
  }
  return median;
}

int TypeOf(std::string_view message) {
  rtcm::BitReader bits(message);
  const auto type = static_cast<int>(bits.Unsigned(12));
  return bits.Overrun() ? -1 : type;
}

char SystemOf(const rtcm::EphemerisMessage& message) {
  const auto satellite = rtcm::SatelliteOf(message);
  return satellite ? satellite->system : ' ';
}

void Add(const rtcm::FrameCounts& from, rtcm::FrameCounts& to) {
  to.frames += from.frames;
  to.frame_bytes += from.frame_bytes;
  to.crc_errors += from.crc_errors;
  to.skipped_bytes += from.skipped_bytes;
}

}  // namespace

StationJudge::StationJudge(const StationSettings& settings, std::string shown_source, bool replay,
                           LiveBoard& board, FileWriter* files)
    : settings_(settings),
      replay_(replay),
      board_(&board),
      files_(files),
      counter_(minutes_, signals_, settings.elevation_cutoff_deg),
      strengths_(signals_),
      sky_(settings.elevation_cutoff_deg),
      alarms_(settings.name, settings.limits, [this](LiveEvent event) { return Report(std::move(event)); }),
      runs_(settings_, book_, sky_, minutes_) {
  state_.name = settings_.name;
  state_.source = std::move(shown_source);
  state_.replay = replay;
  if (settings_.position_m) sky_.SetPosition(*settings_.position_m);
  NewDecoder(settings_.start_gps_ns);
}

// Events

std::int64_t StationJudge::UtcOf(std::int64_t gps_ns) const {
  return gps_ns - rtcm::LeapSecondsAtGps(gps_ns / kNanosecondsPerSecond) * kNanosecondsPerSecond;
}

/// Notes touch the board alone: some come from another thread.
std::uint64_t StationJudge::Report(LiveEvent event) {
  if (event.state == LiveEvent::State::kRaised) any_alarm_ = true;
  return board_->Add(std::move(event)).id;
}

void StationJudge::Note(const char* kind, std::string seen, std::int64_t now_ns) {
  LiveEvent event;
  event.time_utc_ns = UtcOf(now_ns);
  event.station = settings_.name;
  event.kind = kind;
  event.seen = std::move(seen);
  Report(std::move(event));
}

// The connection

void StationJudge::Connecting(std::int64_t now_ns) {
  if (!began_ns_) began_ns_ = now_ns;
  state_.phase = StreamPhase::kConnecting;
}

void StationJudge::Connected(std::int64_t now_ns) {
  if (!began_ns_) began_ns_ = now_ns;
  state_.phase = runs_.Running() ? StreamPhase::kJudging : StreamPhase::kWaitingForNavigation;
  state_.connected = true;
  state_.problem.clear();
  ++state_.connections_total;
  if (!replay_) state_.connected_since_utc_ns = UtcOf(now_ns);
  // The rest of a frame of the connection before is not in this one.
  Add(frames_.Counts(), earlier_frames_);
  frames_ = {};
  messages_.Resume(now_ns);
  if (!replay_ && !settings_.start_gps_ns && !latest_ns_) NewDecoder(now_ns);
  if (!replay_) Note("connected", "", now_ns);
}

void StationJudge::Disconnected(const std::string& problem, bool for_good, std::int64_t now_ns) {
  if (state_.connected && !replay_) Note("disconnected", problem, now_ns);
  state_.phase = for_good ? StreamPhase::kEnded : StreamPhase::kWaiting;
  state_.connected = false;
  state_.connected_since_utc_ns = 0;
  state_.problem = problem;
}

void StationJudge::NewDecoder(std::optional<std::int64_t> near_ns) {
  rtcm::DecoderOptions options;
  options.near_ns = near_ns;
  options.epoch_end = rtcm::EpochEnd::kLastMessage;
  if (decoder_) {
    for (const auto& [type, count] : decoder_->Counts().types) earlier_damaged_[type] += count.damaged;
  }
  decoder_ = std::make_unique<rtcm::Decoder>(options);
  if (near_ns) decoder_since_ns_ = *near_ns;
  for (const StateVectorRecord& record : book_.Records().state_vectors) {
    if (record.satellite.system == 'R' && record.channel)
      decoder_->TakeChannel(record.satellite.number, *record.channel);
  }
}

void StationJudge::Take(std::string_view bytes, std::int64_t now_ns) {
  state_.bytes_total += bytes.size();
  frames_.Append(bytes);
  while (const auto message = frames_.Next()) {
    if (replay_) now_ns = latest_ns_.value_or(now_ns);
    TakeMessage(*message, now_ns);
  }
}

void StationJudge::TakeMessage(std::string_view message, std::int64_t now_ns) {
  const int type = TypeOf(message);
  if (type >= 0) messages_.Take(type, now_ns);
  decoder_->Take(message);
  if (!rtcm::HoldsObservations(type)) {
    NoteStation(now_ns);
    TakeOwnEphemerides(now_ns);
    if (const auto ephemeris = rtcm::ReadEphemeris(message)) {
      if (!first_ephemeris_ns_) first_ephemeris_ns_ = now_ns;
      last_ephemeris_ns_[SystemOf(*ephemeris)] = now_ns;
    }
  }
  ObservationEpoch epoch;
  while (decoder_->Next(epoch)) TakeEpoch(epoch, replay_ ? epoch.time_ns : now_ns);
}

void StationJudge::TakeOwnEphemerides(std::int64_t now_ns) {
  const auto messages = decoder_->TakeEphemerides();
  const BroadcastRecords records = decoder_->TakeBroadcast();
  if (!messages.empty()) AddEphemerides(messages, records, EphemerisBook::Origin::kStream, now_ns);
}

std::set<char> StationJudge::AddEphemerides(const std::vector<rtcm::EphemerisMessage>& messages,
                                            const BroadcastRecords& records, EphemerisBook::Origin origin,
                                            std::int64_t now_ns) {
  if (!first_ephemeris_ns_) first_ephemeris_ns_ = now_ns;
  std::set<char> systems = book_.Add(messages, records, origin);
  for (const StateVectorRecord& record : records.state_vectors) {
    if (record.satellite.system == 'R' && record.channel)
      decoder_->TakeChannel(record.satellite.number, *record.channel);
  }
  return systems;
}

void StationJudge::UseFile(const std::vector<rtcm::EphemerisMessage>& messages,
                           const BroadcastRecords& records, std::int64_t now_ns) {
  for (const char system : AddEphemerides(messages, records, EphemerisBook::Origin::kFile, now_ns))
    last_ephemeris_ns_[system] = now_ns;
}

void StationJudge::TakeEphemerides(const std::vector<rtcm::EphemerisMessage>& messages,
                                   const BroadcastRecords& records) {
  const std::lock_guard lock(foreign_.mutex);
  foreign_.messages.insert(foreign_.messages.end(), messages.begin(), messages.end());
  BroadcastRecords& all = foreign_.records;
  all.kepler.insert(all.kepler.end(), records.kepler.begin(), records.kepler.end());
  all.state_vectors.insert(all.state_vectors.end(), records.state_vectors.begin(),
                           records.state_vectors.end());
}

void StationJudge::EphemeridesFailed(const std::string& problem) {
  const std::lock_guard lock(foreign_.mutex);
  foreign_.problem = problem;
}

void StationJudge::TakeForeignEphemerides(std::int64_t now_ns) {
  std::vector<rtcm::EphemerisMessage> messages;
  BroadcastRecords records;
  std::string problem;
  {
    const std::lock_guard lock(foreign_.mutex);
    messages.swap(foreign_.messages);
    std::swap(records, foreign_.records);
    problem.swap(foreign_.problem);
  }
  if (!messages.empty()) AddEphemerides(messages, records, EphemerisBook::Origin::kStream, now_ns);
  for (const auto& message : messages) last_ephemeris_ns_[SystemOf(message)] = now_ns;
  if (!problem.empty()) Note("no_ephemerides", std::move(problem), now_ns);
}

// What the stream says of its station

void StationJudge::NoteStation(std::int64_t now_ns) {
  const rtcm::StationDescription& now = decoder_->Station();
  if (now == described_) return;
  const auto text = [&](const char* what, const std::string& before, const std::string& after) {
    if (!before.empty() && !after.empty() && before != after)
      alarms_.IdentityChanged(what, before, after, now_ns);
  };
  text("antenna", described_.antenna, now.antenna);
  text("antenna serial number", described_.antenna_serial, now.antenna_serial);
  text("receiver", described_.receiver, now.receiver);
  text("receiver serial number", described_.receiver_serial, now.receiver_serial);
  if (described_.id && now.id && *described_.id != *now.id)
    text("station number", std::to_string(*described_.id), std::to_string(*now.id));
  if (now.position_m) {
    if (stated_position_m_) {
      const double moved_m = Distance(*stated_position_m_, *now.position_m);
      if (moved_m > kSamePlace_m) alarms_.PositionChanged(moved_m, now_ns);
    }
    stated_position_m_ = now.position_m;
    if (!settings_.position_m && !runs_.Running()) sky_.SetPosition(*now.position_m);
  }
  // A restarted decoder forgets; what it has not yet heard is kept.
  const rtcm::StationDescription before = std::exchange(described_, now);
  if (described_.antenna.empty()) described_.antenna = before.antenna;
  if (described_.antenna_serial.empty()) described_.antenna_serial = before.antenna_serial;
  if (described_.receiver.empty()) described_.receiver = before.receiver;
  if (described_.firmware.empty()) described_.firmware = before.firmware;
  if (described_.receiver_serial.empty()) described_.receiver_serial = before.receiver_serial;
}

// Epochs

/// An epoch that repeats or goes back is dropped: casters send again what they have kept. Only where the
/// latest epoch lies in the host's future, many in a row are the right time, and that one was not.
bool StationJudge::IsInOrder(std::int64_t gps_ns, std::int64_t now_ns) {
  if (!latest_ns_ || gps_ns > *latest_ns_) {
    out_of_order_ = 0;
    return true;
  }
  ++state_.epochs_dropped_total;
  ++out_of_order_;
  const bool impossible = !replay_ && Seconds(*latest_ns_ - now_ns) > kFuture_s;
  if (!impossible || out_of_order_ < kOutOfOrderIsNewTime) return false;
  ForgetFuture(now_ns);
  return false;
}

/// What was counted and remembered at times that were wrong would keep the windows and alarms from the right
/// ones until those times come. The decoder leaves out ephemerides that it has given, and those that came
/// before the wrong times may have been pruned at them, so it is a new one.
void StationJudge::ForgetFuture(std::int64_t now_ns) {
  out_of_order_ = 0;
  EndRun(false, now_ns);
  runs_.ForgetTimes();
  counter_.EndMinutes();
  minutes_.Restart();
  signals_.ForgetTimes();
  latest_ns_.reset();
  NewDecoder(now_ns);
}

void StationJudge::FindInterval(std::int64_t gps_ns) {
  if (!latest_ns_) return;
  steps_.Add(gps_ns - *latest_ns_);
  state_.interval_s = steps_.Seconds();
}

void StationJudge::TakeEpoch(ObservationEpoch& epoch, std::int64_t now_ns) {
  if (!began_ns_) began_ns_ = epoch.time_ns;
  if (!IsInOrder(epoch.time_ns, now_ns)) return;
  RoundAsRinex(epoch);
  FindInterval(epoch.time_ns);
  const double interval_s = state_.interval_s.value_or(1);
  if (latest_ns_ && replay_) {
    const double step_s = Seconds(epoch.time_ns - *latest_ns_);
    const double limit_s = alarms_.GapLimit(interval_s) + 1;
    if (step_s > limit_s) {
      alarms_.Silence(limit_s, interval_s, true, "", *latest_ns_ + static_cast<std::int64_t>(limit_s * 1e9));
      messages_.Resume(epoch.time_ns);
    }
  }
  if (latest_ns_ && BeginOfMinute(*latest_ns_) != BeginOfMinute(epoch.time_ns))
    EndMinute(epoch.time_ns, now_ns);
  CountLost(epoch.time_ns);
  latest_ns_ = epoch.time_ns;
  arrived_ns_ = now_ns;
  ++state_.epochs_total;
  if (!replay_ && latencies_s_.size() < kMaxLatencies) {
    const double latency_s = Seconds(now_ns - epoch.time_ns);
    latencies_s_.push_back(latency_s);
    const auto& upper = LatencyHistogram::kUpper_s;
    const auto bin = std::lower_bound(upper.begin(), upper.end(), latency_s) - upper.begin();
    ++state_.latency.counts[static_cast<std::size_t>(bin)];
    state_.latency.sum_s += latency_s;
  }
  Judge(epoch, now_ns);
}

/// Nominal epochs between the latest and this one. After a day without any the count is restarted. Beyond
/// kLostOneByOne the sky is that of each minute's middle one: the work is that of the minutes of a day.
void StationJudge::CountLost(std::int64_t gps_ns) {
  if (!latest_ns_ || !state_.interval_s) return;
  const double step_s = Seconds(gps_ns - *latest_ns_);
  const std::int64_t steps = std::llround(step_s / *state_.interval_s);
  if (steps < 2 || step_s > kLongestGapCounted_s) return;
  state_.epochs_lost_total += static_cast<Count>(steps - 1);
  const std::int64_t step_ns = (gps_ns - *latest_ns_) / steps;
  for (std::int64_t first = 1, last = 1; first < steps; first = last + 1) {
    last = first;
    if (steps > kLostOneByOne) {
      const std::int64_t minute_ns = BeginOfMinute(*latest_ns_ + step_ns * first) + kMinute_ns;
      last = std::min((minute_ns - 1 - *latest_ns_) / step_ns, steps - 1);
    }
    const std::int64_t lost_ns = *latest_ns_ + step_ns * ((first + last) / 2);
    if (sky_.Known()) sky_.MoveTo(lost_ns);
    counter_.AddLost(lost_ns, static_cast<Count>(last - first + 1), sky_.Known() ? &sky_ : nullptr);
  }
}

void StationJudge::Judge(ObservationEpoch& epoch, std::int64_t now_ns) {
  if (!sky_.Position()) FindPosition(epoch);
  if (!runs_.Running() && runs_.IsReady(epoch, first_ephemeris_ns_)) {
    runs_.Begin(epoch, described_, stated_position_m_);
    state_.phase = StreamPhase::kJudging;
  }
  CountEpoch(epoch, now_ns);
  if (runs_.Running()) {
    try {
      runs_.Add(epoch);
    } catch (const std::exception& error) {
      RunFailed(error, now_ns);
    }
    PassDecided(now_ns);
  }
  alarms_.EpochCame(now_ns);
}

void StationJudge::CountEpoch(const ObservationEpoch& epoch, std::int64_t now_ns) {
  const double interval_s = state_.interval_s.value_or(1);
  SkyView* const sky = sky_.Known() ? &sky_ : nullptr;
  if (sky != nullptr) sky->MoveTo(epoch.time_ns);
  counter_.Add(epoch, sky);
  latest_epoch_ = epoch;
  if (sky == nullptr) return;
  const auto departures = strengths_.Add(epoch, counter_.Elevations(), interval_s,
                                         settings_.limits.snr_drop_db, StationAlarms::kMinSatellites);
  alarms_.Strengths(departures, interval_s, now_ns);
  alarms_.Satellites(counter_.Present(), counter_.PresentOfSystems(), interval_s, now_ns);
}

void StationJudge::PassDecided(std::int64_t now_ns) {
  while (const auto decided = runs_.NextDecided()) {
    alarms_.Slips(static_cast<int>(decided->slipped.size()), decided->satellites,
                  state_.interval_s.value_or(1), now_ns);
  }
}

// Runs

void StationJudge::FindPosition(const ObservationEpoch& epoch) {
  runs_.RefreshSky();
  const auto solution = sky_.PointPosition(epoch);
  if (!solution) return;
  solutions_m_.push_back(*solution);
  if (solutions_m_.size() < kPositionEpochs) return;
  sky_.SetPosition(MedianPlace(solutions_m_));
  solutions_m_.clear();
}

/// Counts, strength and alarms go on without a run.
void StationJudge::RunFailed(const std::exception& error, std::int64_t now_ns) {
  runs_.Abandon(latest_ns_.value_or(now_ns));
  Note("not_judged", error.what(), now_ns);
}

void StationJudge::EndRun(bool whole, std::int64_t now_ns) {
  if (!runs_.Running()) return;
  std::optional<orsolva_host::Report> report;
  try {
    report = runs_.End();
  } catch (const std::exception& error) {
    RunFailed(error, now_ns);
  }
  PassDecided(now_ns);
  if (report && whole) PublishHour(*report, now_ns);
}

// Minutes

void StationJudge::EndMinute(std::int64_t next_ns, std::int64_t now_ns) {
  counter_.Flush();
  TakeForeignEphemerides(now_ns);
  WindowSums frames;
  const Count all_frames = earlier_frames_.frames + frames_.Counts().frames;
  const Count all_errors = earlier_frames_.crc_errors + frames_.Counts().crc_errors;
  frames.messages = all_frames - std::exchange(minute_frames_, all_frames);
  frames.crc_errors = all_errors - std::exchange(minute_crc_errors_, all_errors);
  minutes_.Add(*latest_ns_, frames);
  alarms_.Frames(frames.messages, frames.crc_errors, now_ns);
  try {
    runs_.EndMinute();
  } catch (const std::exception& error) {
    RunFailed(error, now_ns);
  }
  const bool new_hour = BeginOfHour(*latest_ns_) != BeginOfHour(next_ns);
  if (new_hour) EndRun(true, now_ns);
  if (runs_.Running()) runs_.RefreshSky();
  minutes_.CloseUntil(BeginOfMinute(next_ns));
  JudgeMinute(now_ns);
  messages_.EndMinute(now_ns);
  if (new_hour) book_.Prune(next_ns);
}

void StationJudge::JudgeMinute(std::int64_t now_ns) {
  state_.latency_s.reset();
  if (!latencies_s_.empty()) state_.latency_s = Median(std::exchange(latencies_s_, {}));
  alarms_.Latency(state_.latency_s, now_ns);
  alarms_.Hour(minutes_.Hour(), minutes_.WholeMinutes(), now_ns);
  alarms_.Ephemerides(EphemerisAges(now_ns), now_ns);
  alarms_.Messages(messages_, now_ns);
  alarms_.AgeChanges(now_ns);
  if (!sky_.Known() || !stated_position_m_) return;
  if (const auto solution = sky_.PointPosition(latest_epoch_)) solutions_m_.push_back(*solution);
  if (solutions_m_.size() > kPositionEpochs) solutions_m_.erase(solutions_m_.begin());
  if (solutions_m_.size() < kPositionEpochs / 2) return;
  alarms_.Distance(Distance(MedianPlace(solutions_m_), *stated_position_m_), now_ns);
}

std::map<char, double> StationJudge::EphemerisAges(std::int64_t now_ns) const {
  std::map<char, double> ages;
  for (const char system : std::string("GREC")) {
    if (!latest_ns_ || !signals_.IsTracked(system, *latest_ns_)) continue;
    const auto last = last_ephemeris_ns_.find(system);
    ages[system] = Seconds(now_ns - (last == last_ephemeris_ns_.end() ? *began_ns_ : last->second));
  }
  return ages;
}

void StationJudge::Tick(std::int64_t now_ns) {
  if (replay_) return;
  if (!began_ns_) began_ns_ = now_ns;
  const double silent_s = Seconds(now_ns - (latest_ns_ ? arrived_ns_ : *began_ns_));
  alarms_.Silence(silent_s, state_.interval_s.value_or(1), latest_ns_.has_value(), state_.problem, now_ns);
  if (state_.connected && silent_s > kStuck_s && Seconds(now_ns - decoder_since_ns_) > kStuck_s)
    NewDecoder(now_ns);
  if (Seconds(now_ns - last_look_ns_) < kLook_s) return;
  last_look_ns_ = now_ns;
  // Minutes end with epochs only; what a second source sends without them must not pile up.
  if (silent_s > kStuck_s) {
    TakeForeignEphemerides(now_ns);
    if (!settings_.start_gps_ns) book_.Prune(now_ns);
  }
  if (state_.connected && !alarms_.InGap()) alarms_.Messages(messages_, now_ns);
}

void StationJudge::Finish(std::int64_t now_ns) {
  if (finished_) return;
  finished_ = true;
  frames_.Finish();
  Take({}, now_ns);
  decoder_->Finish();
  ObservationEpoch epoch;
  while (decoder_->Next(epoch)) TakeEpoch(epoch, replay_ ? epoch.time_ns : now_ns);
  const std::int64_t end_ns = replay_ ? latest_ns_.value_or(now_ns) : now_ns;
  counter_.Flush();
  EndRun(true, end_ns);
  if (latest_ns_) minutes_.CloseUntil(BeginOfMinute(*latest_ns_) + kMinute_ns);
  state_.phase = StreamPhase::kEnded;
  state_.connected = false;
  Note("ended", fmt::format("{} epochs judged", state_.epochs_total), end_ns);
}

}  // namespace orsolva_host::live
