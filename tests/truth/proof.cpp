#include "tests/truth/proof.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <stdexcept>

namespace orsolva_test {
namespace {

constexpr std::size_t kShownFailures = 20;

std::string Row(const std::vector<std::string>& cells) {
  std::string row = "|";
  for (const std::string& cell : cells) row += " " + cell + " |";
  return row + "\n";
}

constexpr const char* kFigures = "- **Figures:** ";

/// Empty without figures.
std::string FigureLine(const std::vector<std::string>& figures) {
  if (figures.empty()) return {};
  return fmt::format("{}`{}`\n", kFigures, fmt::join(figures, "`, `"));
}

bool FindSection(const std::string& id, const std::string& page, std::size_t& from, std::size_t& end) {
  const std::string open = "<!-- proof:" + id + " -->\n";
  const std::size_t begin = page.find(open);
  if (begin == std::string::npos) return false;
  from = begin + open.size();
  end = page.find("<!-- /proof:" + id + " -->", from);
  return end != std::string::npos;
}

/// The lines of a section from the caption of a table to the next empty line after its rows.
std::string TableText(const ProofTable& table, const std::string& section) {
  const std::size_t caption = section.find("\n" + table.caption + "\n\n");
  if (caption == std::string::npos) return {};
  const std::size_t begin = caption + table.caption.size() + 3;
  return section.substr(begin, section.find("\n\n", begin) + 1 - begin);
}

}  // namespace

std::vector<std::string> Proof::MissingFrom(const std::string& section) const {
  std::vector<std::string> missing;
  if (section.find(FigureLine(figures)) == std::string::npos) missing.push_back("the list of its figures");
  for (const ProofTable& table : tables) {
    const std::string text = TableText(table, section);
    if (text.rfind(Row(table.columns), 0) != 0) {
      missing.push_back("the table or the columns of: " + table.caption);
      continue;
    }
    for (const auto& row : table.rows) {
      std::string keys = Row({row.begin(), row.begin() + static_cast<std::ptrdiff_t>(table.keys)});
      keys.pop_back();
      if (text.find("\n" + keys) == std::string::npos) missing.push_back("the row " + keys);
    }
  }
  return missing;
}

void Proof::Check(bool holds, const std::string& what) {
  ++checks_;
  if (holds) return;
  ++failed_;
  if (failures_.size() < kShownFailures) failures_.push_back(what);
}

std::string Proof::Markdown() const {
  std::string text = fmt::format(
      "- **Form:** {}\n- **Injected:** {}\n- **Expected:** {}\n- **Tolerance:** {}\n- **Why:** {}\n- "
      "**Outcome:** {} comparisons, {} failed.\n",
      long_form ? "long" : "short", injected, must_say, tolerance, reason, checks_, failed_);
  text += FigureLine(figures);
  for (const ProofTable& table : tables) {
    text += "\n" + table.caption + "\n\n" + Row(table.columns);
    text += Row(std::vector<std::string>(table.columns.size(), "---"));
    for (const auto& row : table.rows) text += Row(row);
  }
  for (const std::string& note : notes) text += "\n" + note + "\n";
  return text;
}

const std::vector<ProofEntry>& AllProofs() {
  // clang-format off
  static const std::vector<ProofEntry> kProofs = {
      {"completeness", ProveCompleteness},
      {"snr", ProveSnr},
      {"multipath-noise", ProveMultipathNoise},
      {"multipath-phase", ProveMultipathPhase},
      {"multipath-jumps", ProveMultipathJumps},
      {"multipath-gaps", ProveMultipathGaps},
      {"slips", ProveSlips},
      {"position", ProvePosition},
      {"results", ProveResults},
      {"laws", ProveLaws},
      {"detected-slips", ProveDetectedSlips},
      {"detected-clocks", ProveDetectedClocks},
      {"counted-epochs", ProveCountedEpochs},
      {"tracking", ProveTracking},
      {"code-figures", ProveCodeFigures},
      {"receiver-figures", ProveReceiverFigures},
      {"signal-figures", ProveSignalFigures},
      {"point-figures", ProvePointFigures},
      {"pooled-figures", ProvePooledFigures},
      {"slip-counts", ProveSlipCounts},
      {"statements", ProveStatements},
  };
  // clang-format on
  return kProofs;
}

Proof Prove(const std::string& id, bool long_form) {
  for (const ProofEntry& entry : AllProofs()) {
    if (id != entry.id) continue;
    Proof proof;
    proof.id = id;
    proof.long_form = long_form;
    entry.run(long_form, proof);
    return proof;
  }
  throw std::out_of_range("no proof " + id);
}

bool ReplaceSection(const std::string& id, const std::string& section, std::string& page) {
  std::size_t from = 0, end = 0;
  if (!FindSection(id, page, from, end)) return false;
  page.replace(from, end - from, section);
  return true;
}

std::vector<std::string> FiguresIn(const std::string& section) {
  std::vector<std::string> keys;
  const std::size_t line = section.find(kFigures);
  if (line == std::string::npos) return keys;
  const std::size_t end = section.find('\n', line);
  for (std::size_t open = section.find('`', line); open < end; open = section.find('`', open)) {
    const std::size_t close = section.find('`', open + 1);
    keys.push_back(section.substr(open + 1, close - open - 1));
    open = close + 1;
  }
  return keys;
}

std::string SectionOf(const std::string& id, const std::string& page) {
  std::size_t from = 0, end = 0;
  return FindSection(id, page, from, end) ? page.substr(from, end - from) : std::string();
}

}  // namespace orsolva_test
