// Texts compressed as files in archives are.
#ifndef ORSOLVA_TESTS_HOST_COMPRESSED_TEXT_H
#define ORSOLVA_TESTS_HOST_COMPRESSED_TEXT_H

#include <archive.h>
#include <archive_entry.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace orsolva_test {

using AddFilter = int (*)(archive*);

inline void AddArchiveFile(archive* a, const std::string& name, const std::string& text) {
  archive_entry* entry = archive_entry_new();
  archive_entry_set_pathname(entry, name.c_str());
  archive_entry_set_filetype(entry, name.back() == '/' ? AE_IFDIR : AE_IFREG);
  archive_entry_set_size(entry, static_cast<la_int64_t>(text.size()));
  archive_write_header(a, entry);
  archive_write_data(a, text.data(), text.size());
  archive_entry_free(entry);
}

/// Files of an archive; a name that ends with '/' is a folder.
using ArchiveFiles = std::vector<std::pair<std::string, std::string>>;

inline std::string WriteArchive(int (*format)(archive*), AddFilter filter, const ArchiveFiles& files) {
  std::size_t size = 1U << 16;
  for (const auto& [name, text] : files) size += 2 * text.size();
  std::string compressed(size, 0);
  std::size_t used = 0;
  archive* a = archive_write_new();
  archive_write_set_bytes_in_last_block(a, 1);
  EXPECT_EQ(format(a), ARCHIVE_OK);
  if (filter != nullptr) {
    EXPECT_EQ(filter(a), ARCHIVE_OK);
  }
  EXPECT_EQ(archive_write_open_memory(a, compressed.data(), compressed.size(), &used), ARCHIVE_OK);
  for (const auto& [name, text] : files) AddArchiveFile(a, name, text);
  EXPECT_EQ(archive_write_close(a), ARCHIVE_OK);
  archive_write_free(a);
  compressed.resize(used);
  return compressed;
}

inline std::string Zipped(const ArchiveFiles& files) {
  return WriteArchive(archive_write_set_format_zip, nullptr, files);
}

inline std::string Filtered(AddFilter filter, const std::string& text) {
  return WriteArchive(archive_write_set_format_raw, filter, {{"data", text}});
}

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_HOST_COMPRESSED_TEXT_H
