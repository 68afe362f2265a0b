// Lines of a byte stream, as views into one buffer.
#ifndef ORSOLVA_RINEX_LINE_READER_H
#define ORSOLVA_RINEX_LINE_READER_H

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

#include "host/rinex/byte_source.h"

namespace orsolva_host {

/// Returns the lines of a source one after another, without their terminators: "\n", "\r\n" or the end of the
/// data. A line longer than kLongestLine is split, so that memory stays bounded on data without lines.
class LineReader {
 public:
  static constexpr std::size_t kLongestLine = 1U << 18;

  explicit LineReader(std::unique_ptr<ByteSource> source);

  /// @param line  valid until the next call
  /// @return false at the end of the data
  bool Next(std::string_view& line);
  /// Makes the next call of Next return the same line again.
  void PushBack() { again_ = true; }
  /// Whether the last line was terminated by the end of the data.
  bool Unterminated() const { return unterminated_; }
  /// Number of the last line, 1-based; 0 before the first.
  long Line() const { return number_; }

 private:
  bool Refill();

  std::unique_ptr<ByteSource> source_;
  std::vector<char> buffer_;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  std::string_view last_;
  long number_ = 0;
  bool again_ = false;
  bool unterminated_ = false;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_RINEX_LINE_READER_H
