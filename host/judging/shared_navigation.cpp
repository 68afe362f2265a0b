#include "host/judging/shared_navigation.h"

#include "host/rinex/input_files.h"
#include "host/rinex/navigation_reader.h"

namespace orsolva_host {

std::shared_ptr<const ReadNavigation> SharedNavigation::Get() {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (read_) return read_;
  auto read = std::make_shared<ReadNavigation>();
  try {
    read->files = NavigationFilesOf(named_);
    NavigationReader reader(read->notices, {limits_});
    for (const std::string& file : read->files) reader.Read(file);
    read->set = reader.Take();
  } catch (const FileError& error) {
    read->failure = error;
  }
  read_ = std::move(read);
  return read_;
}

}  // namespace orsolva_host
