// Diagnostics of the readers: notices about repaired defects, and the error that ends reading.
#ifndef ORSOLVA_RINEX_DIAGNOSTICS_H
#define ORSOLVA_RINEX_DIAGNOSTICS_H

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace orsolva_host {

/// Reading cannot continue: where, what was found, what was expected and what the user can do.
class FileError : public std::runtime_error {
 public:
  /// @param line  1-based, 0 for the file as a whole @param expected  empty when found says everything
  FileError(std::string file, long line, std::string found, std::string expected, std::string advice);

  const std::string& File() const { return file_; }
  long Line() const { return line_; }
  const std::string& Found() const { return found_; }
  const std::string& Expected() const { return expected_; }
  const std::string& Advice() const { return advice_; }

 private:
  std::string file_;
  long line_;
  std::string found_;
  std::string expected_;
  std::string advice_;
};

/// One kind of defect in one file, located at its first occurrence.
struct Notice {
  std::string file;
  long line = 0;  ///< 1-based; 0 for none
  std::string text;
  long count = 0;
  bool recovered = true;  ///< false when data were lost
};

/// The notices of a run, grouped by file and text, in order of first appearance.
///
/// At most kMaxKinds kinds are kept; any further ones are only counted, so that a damaged file cannot fill
/// the memory with its own text.
class Diagnostics {
 public:
  static constexpr std::size_t kMaxKinds = 200;

  void Add(const std::string& file, long line, const std::string& text, bool recovered = true);

  /// Like Add. @return the index of the kind, for further occurrences by Again
  std::size_t AddKind(const std::string& file, long line, const std::string& text, bool recovered = true);
  /// Data of which only a part is there, such as compressed data that end early or a file cut off within an
  /// epoch: a notice, and the error that the run ends with.
  void AddIncomplete(const std::string& file, long line, const std::string& what);
  /// Counts further occurrences of a kind, without its text: for defects that occur by the thousand.
  void Again(std::size_t kind, long cases = 1);
  /// Adds all notices of another instance, as if they had been added here.
  void Append(const Diagnostics& other);
  /// The same for a file that belongs to those before: a kind whose text one of them has counts for that.
  void Join(const Diagnostics& other);

  const std::vector<Notice>& Notices() const { return notices_; }
  /// The first file of which only a part is there.
  const std::optional<FileError>& Incomplete() const { return incomplete_; }
  /// Occurrences of kinds that were not kept.
  long Uncounted() const { return uncounted_; }
  /// Occurrences of all kinds.
  long Total() const { return total_; }

 private:
  std::vector<Notice> notices_;
  std::unordered_map<std::string, std::size_t> index_;
  std::optional<FileError> incomplete_;
  long uncounted_ = 0;
  long total_ = 0;
};

/// Text of a file with control characters, which could command a terminal, replaced by '?'.
std::string Printable(std::string_view text);

/// An excerpt of a file for a message: at most 40 characters, all but printable ASCII replaced by '?'.
std::string Quoted(const std::string& text);

}  // namespace orsolva_host

#endif  // ORSOLVA_RINEX_DIAGNOSTICS_H
