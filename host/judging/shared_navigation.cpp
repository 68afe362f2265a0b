#include "host/judging/shared_navigation.h"

#include "host/formats/sp3_reader.h"
#include "host/rinex/input_files.h"
#include "host/rinex/navigation_reader.h"

namespace orsolva_host {
namespace {

void TakeRecords(NavigationReader& reader, ReadNavigation& read) {
  read.set = reader.Take();
  read.broadcast = reader.TakeBroadcast();
}

}  // namespace

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
    const auto precise = std::make_shared<PreciseOrbits>();
    for (const std::string& file : read->files) {
      if (IsSp3File(file)) {
        ReadPreciseOrbits(file, read->notices, limits_, *precise);
      } else {
        reader.Read(file);
        read->has_record_files = true;
      }
    }
    TakeRecords(reader, *read);
    if (!precise->satellites.empty()) read->precise = precise;
  } catch (const FileError& error) {
    read->failure = error;
  }
  read_ = std::move(read);
  return read_;
}

}  // namespace orsolva_host
