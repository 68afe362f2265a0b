// Compares a report with the truth of the simulated data.
#ifndef ORSOLVA_SIMULATOR_COMPARISON_H
#define ORSOLVA_SIMULATOR_COMPARISON_H

#include <stdexcept>
#include <string>

namespace orsolva_host {

struct DetailTable;

/// Two files that cannot be compared: which one, what was found and what is expected.
class ComparisonError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A file's name and its whole text.
struct NamedText {
  std::string name;
  std::string text;
};

/// Prints the figures of `orsolva qc --json` next to those of a truth.json, in lines of at most 80 columns.
/// @param detail  the detail table of the same run, read to its end, for the slips and jumps it detected; may
/// be null
/// @throws ComparisonError when a text is not what it should be, or when the two differ in span, interval or
///         elevation cut-off, so that no figure could agree
std::string ComparisonText(const NamedText& report, const NamedText& truth,
                           const DetailTable* detail = nullptr);

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATOR_COMPARISON_H
