// A proof: what is injected into a simulated sky, what the library or the analysis is expected to report, and
// what it reported.
//
// A proof runs in a short form (the tests of every build) and in a long one, and its tables are the figures
// of docs/internals/validation.md.
#ifndef ORSOLVA_TESTS_TRUTH_PROOF_H
#define ORSOLVA_TESTS_TRUTH_PROOF_H

#include <cstddef>
#include <string>
#include <vector>

namespace orsolva_test {

struct ProofTable {
  std::string caption;
  std::vector<std::string> columns;
  std::vector<std::vector<std::string>> rows;
  std::size_t keys = 1;  ///< leading cells of a row that say what was injected
};

class Proof {
 public:
  std::string id;
  bool long_form = false;
  std::string injected, must_say, tolerance, reason;
  /// Keys of the report's figures that are held against the truth here.
  std::vector<std::string> figures;
  std::vector<ProofTable> tables;
  std::vector<std::string> notes;  ///< what a reader of the tables has to know, a paragraph each

  /// One thing the library had to say.
  void Check(bool holds, const std::string& what);
  std::size_t Checks() const { return checks_; }
  std::size_t Failed() const { return failed_; }
  /// The first failures, at most twenty.
  const std::vector<std::string>& Failures() const { return failures_; }

  /// The section of the page, without its heading.
  std::string Markdown() const;
  /// What the section of a page lacks of this: the figures, a table, its columns, or a row with the same
  /// keys.
  std::vector<std::string> MissingFrom(const std::string& section) const;

 private:
  std::size_t checks_ = 0, failed_ = 0;
  std::vector<std::string> failures_;
};

using RunProof = void (*)(bool long_form, Proof& proof);

struct ProofEntry {
  const char* id;
  RunProof run;
};

/// Every proof, in the order of the page.
const std::vector<ProofEntry>& AllProofs();

/// Runs the proof of an id. @throws std::out_of_range for an unknown one
Proof Prove(const std::string& id, bool long_form);

/// Replaces the text between "<!-- proof:ID -->" and "<!-- /proof:ID -->" in a page.
/// @return false when the page lacks the markers
bool ReplaceSection(const std::string& id, const std::string& section, std::string& page);

/// The keys of figures that a section of the page says it proves.
std::vector<std::string> FiguresIn(const std::string& section);

/// The text between the markers of a proof; empty when the page lacks them.
std::string SectionOf(const std::string& id, const std::string& page);

void ProveCompleteness(bool long_form, Proof& proof);
void ProveSnr(bool long_form, Proof& proof);
void ProveMultipathNoise(bool long_form, Proof& proof);
void ProveMultipathPhase(bool long_form, Proof& proof);
void ProveMultipathJumps(bool long_form, Proof& proof);
void ProveMultipathGaps(bool long_form, Proof& proof);
void ProveSlips(bool long_form, Proof& proof);
void ProvePosition(bool long_form, Proof& proof);
void ProveResults(bool long_form, Proof& proof);
void ProveLaws(bool long_form, Proof& proof);
void ProveDetectedSlips(bool long_form, Proof& proof);
void ProveDetectedClocks(bool long_form, Proof& proof);
void ProveCountedEpochs(bool long_form, Proof& proof);
void ProveTracking(bool long_form, Proof& proof);
void ProveCodeFigures(bool long_form, Proof& proof);
void ProveReceiverFigures(bool long_form, Proof& proof);
void ProveSignalFigures(bool long_form, Proof& proof);
void ProvePointFigures(bool long_form, Proof& proof);
void ProvePooledFigures(bool long_form, Proof& proof);
void ProveSlipCounts(bool long_form, Proof& proof);
void ProveStatements(bool long_form, Proof& proof);

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_TRUTH_PROOF_H
