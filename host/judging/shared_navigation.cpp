#include "host/judging/shared_navigation.h"

#include <algorithm>

#include "host/formats/rtcm/reader.h"
#include "host/formats/sp3_reader.h"
#include "host/judging/rtcm_detection.h"
#include "host/judging/stream_navigation.h"
#include "host/rinex/input_files.h"
#include "host/rinex/navigation_reader.h"

namespace orsolva_host {
namespace {

void TakeRecords(NavigationReader& reader, ReadNavigation& read) {
  read.set = reader.Take();
  read.broadcast = reader.TakeBroadcast();
}

void TakeStream(const std::string& file, const InputLimits& limits, Diagnostics& notices,
                StreamNavigation& records) {
  rtcm::ReaderOptions options;
  options.epochs = false;
  rtcm::Reader reader(OpenBytes(file, notices, limits), file, notices, options);
  ObservationEpoch none;
  while (reader.Next(none)) continue;
  records.Take(reader);
}

/// Appends the records of satellites that are not among the first.
template <class Record, class Same>
bool AppendOthers(const std::vector<Record>& own, std::vector<Record>& to, Same same) {
  const std::size_t named = to.size();
  for (const Record& record : own) {
    const auto end = to.begin() + static_cast<std::ptrdiff_t>(named);
    if (std::any_of(to.begin(), end, [&](const Record& other) { return same(record, other); })) continue;
    to.push_back(record);
  }
  return to.size() > named;
}

}  // namespace

std::shared_ptr<const ReadNavigation> Joined(const ReadNavigation& named, const ReadNavigation& own) {
  auto joined = std::make_shared<ReadNavigation>(named);
  const auto same_prn = [](const auto& a, const auto& b) { return a.prn == b.prn; };
  const auto same_satellite = [](const auto& a, const auto& b) { return a.satellite == b.satellite; };
  bool any = AppendOthers(own.set.gps, joined->set.gps, same_prn);
  any = AppendOthers(own.set.glonass, joined->set.glonass, same_prn) || any;
  any = AppendOthers(own.set.bds, joined->set.bds, same_prn) || any;
  any = AppendOthers(own.set.galileo, joined->set.galileo, same_prn) || any;
  any = AppendOthers(own.set.qzss, joined->set.qzss, same_prn) || any;
  any = AppendOthers(own.broadcast.kepler, joined->broadcast.kepler, same_satellite) || any;
  any = AppendOthers(own.broadcast.state_vectors, joined->broadcast.state_vectors, same_satellite) || any;
  if (any) joined->files.insert(joined->files.end(), own.files.begin(), own.files.end());
  return joined;
}

std::shared_ptr<const ReadNavigation> ReadNavigationBeside(const std::string& observation_file,
                                                           const Time_gbt& first_epoch,
                                                           const InputLimits& limits) {
  auto read = std::make_shared<ReadNavigation>();
  read->files = NavigationBeside(observation_file, first_epoch);
  read->has_record_files = !read->files.empty();
  for (const std::string& file : read->files) {
    read->notices.Add(file, 0, "no navigation file is named; the one next to the observation file is used");
  }
  NavigationReader reader(read->notices, {limits});
  for (const std::string& file : read->files) {
    try {
      reader.Read(file);
    } catch (const FileError& error) {
      // A file nobody named must not stop a run.
      read->notices.Add(file, error.Line(), "passed over: found " + error.Found() + ". " + error.Advice(),
                        false);
    }
  }
  TakeRecords(reader, *read);
  return read;
}

std::shared_ptr<const ReadNavigation> SharedNavigation::Get() {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (read_) return read_;
  auto read = std::make_shared<ReadNavigation>();
  try {
    read->files = NavigationFilesOf(named_);
    NavigationReader reader(read->notices, {limits_});
    StreamNavigation streams;
    const auto precise = std::make_shared<PreciseOrbits>();
    for (const std::string& file : read->files) {
      if (IsSp3File(file)) {
        ReadPreciseOrbits(file, read->notices, limits_, *precise);
        continue;
      }
      read->has_record_files = true;
      if (RtcmContentOf(file) == RtcmContent::kNone) {
        reader.Read(file);
      } else {
        TakeStream(file, limits_, read->notices, streams);
      }
    }
    TakeRecords(reader, *read);
    streams.AppendTo(read->set, read->broadcast);
    if (!precise->satellites.empty()) read->precise = precise;
  } catch (const FileError& error) {
    read->failure = error;
  }
  read_ = std::move(read);
  return read_;
}

}  // namespace orsolva_host
