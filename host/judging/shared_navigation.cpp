#include "host/judging/shared_navigation.h"

#include <algorithm>
#include <cstddef>
#include <set>
#include <utility>

#include "host/formats/sp3_reader.h"
#include "host/judging/opened_file.h"
#include "host/judging/settings.h"
#include "host/judging/stream_navigation.h"
#include "host/judging/stream_reading.h"
#include "host/rinex/input_files.h"
#include "host/rinex/navigation_reader.h"
#include "host/rinex/satellite_names.h"

namespace orsolva_host {
namespace {

void TakeRecords(NavigationReader& reader, ReadNavigation& read) {
  read.set = reader.Take();
  read.broadcast = reader.TakeBroadcast();
}

void TakeStream(StreamFormat format, std::unique_ptr<ByteSource> bytes, const std::string& file,
                Diagnostics& notices, StreamNavigation& records) {
  const auto reading = ReadStream(format, std::move(bytes), file, notices, {std::nullopt, false});
  ObservationEpoch none;
  while (reading->Recording().Next(none)) continue;
  reading->GiveEphemerides(records);
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

/// Letters of the systems of records, from some of them on.
std::set<char> SystemsOf(const BroadcastRecords& records, std::size_t first_kepler = 0,
                         std::size_t first_state = 0) {
  std::set<char> letters;
  for (std::size_t i = first_kepler; i < records.kepler.size(); ++i)
    letters.insert(records.kepler[i].satellite.system);
  for (std::size_t i = first_state; i < records.state_vectors.size(); ++i)
    letters.insert(records.state_vectors[i].satellite.system);
  return letters;
}

std::string NamesOf(const std::set<char>& systems) {
  std::string names;
  for (const char letter : kAllSystems) {
    if (systems.count(letter) > 0) names += (names.empty() ? "" : ", ") + NameOfSystem(letter);
  }
  return names;
}

template <typename Record>
void Move(std::vector<Record>& from, std::vector<Record>& to) {
  to.insert(to.end(), from.begin(), from.end());
}

/// Reads the sources of navigation next to an observation file until no system is missing.
class NavigationFinder {
 public:
  NavigationFinder(const NavigationWanted& wanted, const InputLimits& limits, ReadNavigation& read)
      : wanted_(wanted), limits_(limits), read_(read) {}

  void Find() {
    // A folder may hold the files of hundreds of stations, and a system none of them has.
    constexpr int kMaxSources = 6;
    int sources = 0;
    for (const NavigationGroup& group : NavigationBeside(wanted_.beside, wanted_.first, wanted_.last)) {
      if (IsSatisfied() || ++sources > kMaxSources) break;
      ReadSource(group);
    }
    read_.has_record_files = !read_.files.empty();
    NameMissing();
  }

 private:
  bool IsSatisfied() const {
    return !held_.empty() && std::all_of(wanted_.systems.begin(), wanted_.systems.end(),
                                         [this](char letter) { return held_.count(letter) > 0; });
  }

  void ReadSource(const NavigationGroup& group) {
    NavigationReader reader(read_.notices, {limits_});
    for (const std::string& file : group) ReadOne(file, reader);
    NavigationSet set = reader.Take();
    BroadcastRecords records = reader.TakeBroadcast();
    const std::set<char> here = SystemsOf(records);
    const auto take = [this](char letter) { return held_.count(letter) == 0; };
    if (take('G')) Move(set.gps, read_.set.gps);
    if (take('R')) Move(set.glonass, read_.set.glonass);
    if (take('E')) Move(set.galileo, read_.set.galileo);
    if (take('J')) Move(set.qzss, read_.set.qzss);
    if (take('C')) Move(set.bds, read_.set.bds);
    for (const KeplerRecord& r : records.kepler)
      if (take(r.satellite.system)) read_.broadcast.kepler.push_back(r);
    for (const StateVectorRecord& r : records.state_vectors)
      if (take(r.satellite.system)) read_.broadcast.state_vectors.push_back(r);
    held_.insert(here.begin(), here.end());
  }

  void ReadOne(const std::string& file, NavigationReader& reader) {
    const std::size_t kepler = reader.Broadcast().kepler.size();
    const std::size_t states = reader.Broadcast().state_vectors.size();
    try {
      reader.Read(file);
    } catch (const FileError& error) {
      // A file nobody named must not stop a run.
      read_.files.push_back(file);
      return read_.notices.Add(file, error.Line(),
                               "passed over: found " + error.Found() + ". " + error.Advice(), false);
    }
    std::set<char> used = SystemsOf(reader.Broadcast(), kepler, states);
    for (const char letter : held_) used.erase(letter);
    if (used.empty() && reader.Broadcast().kepler.size() + reader.Broadcast().state_vectors.size() > 0)
      return;
    read_.files.push_back(file);
    read_.notices.Add(file, 0,
                      "no navigation file is named; this one next to the observation file is used" +
                          (used.empty() ? std::string() : " for " + NamesOf(used)));
  }

  void NameMissing() const {
    std::set<char> missing(wanted_.observed.begin(), wanted_.observed.end());
    for (const char letter : held_) missing.erase(letter);
    if (read_.files.empty() || missing.empty()) return;
    read_.notices.Add(
        wanted_.beside, 0,
        "the navigation files next to the observation file hold no records of " + NamesOf(missing), false);
  }

  const NavigationWanted& wanted_;
  const InputLimits& limits_;
  ReadNavigation& read_;
  std::set<char> held_;  ///< systems with records
};

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

std::shared_ptr<const ReadNavigation> ReadNavigationBeside(const NavigationWanted& wanted,
                                                           const InputLimits& limits) {
  auto read = std::make_shared<ReadNavigation>();
  NavigationFinder(wanted, limits, *read).Find();
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
      OpenedFile opened = OpenAnyFile(file, read->notices, limits_);
      if (opened.kind == ContentKind::kPreciseOrbits) {
        ReadPreciseOrbits(std::move(opened.bytes), file, read->notices, limits_, *precise);
        continue;
      }
      read->has_record_files = true;
      if (opened.kind == ContentKind::kStream) {
        TakeStream(*opened.stream, std::move(opened.bytes), file, read->notices, streams);
      } else {
        reader.Read(std::move(opened.bytes), file);
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
