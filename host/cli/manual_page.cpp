#include <fmt/format.h>

#include <string>
#include <vector>

#include "host/cli/exit_codes.h"
#include "host/cli/shell_texts.h"

namespace orsolva_host {
namespace {

/// A text as troff takes it: backslashes and minus signs unchanged, no request at the start of a line.
std::string Troff(const std::string& text) {
  std::string out;
  for (const char c : text) {
    if (c == '\\') {
      out += "\\e";
    } else if (c == '-') {
      out += "\\-";
    } else if ((c == '.' || c == '\'') && (out.empty() || out.back() == '\n')) {
      out += std::string("\\&") + c;
    } else {
      out += c;
    }
  }
  return out;
}

std::string OptionEntry(const Option& row) {
  return fmt::format(".TP\n.B {}\n{}.\n", Troff(row.Usage()), Troff(row.HelpWithDefault()));
}

}  // namespace

std::string ManualPage(const std::vector<Command>& commands) {
  std::string text =
      ".TH ORSOLVA 1\n.SH NAME\norsolva \\- checks the quality of GNSS observations\n.SH SYNOPSIS\n"
      ".B orsolva\n.I COMMAND\n[options] [files]\n.SH DESCRIPTION\n"
      "Reads RINEX observation and navigation files, also Hatanaka\\-compressed (CRINEX) ones, and reports "
      "how "
      "good the observations are: completeness, code multipath, cycle slips and signal strength, for GPS, "
      "GLONASS, BDS, Galileo and QZSS.\n"
      ".SH COMMANDS\n";
  for (const Command& command : commands) {
    text += fmt::format(".SS {}\n{}.\n", Troff(command.name), Troff(command.description));
    for (const Option& row : command.options) text += OptionEntry(row);
  }
  text += ".SH EXIT STATUS\n";
  for (int i = 0; i < kExitCodeCount; ++i) {
    text += fmt::format(".TP\n.B {}\n{}\n", kExitCodes[i].code, Troff(kExitCodes[i].meaning));
  }
  text +=
      ".SH ENVIRONMENT\n.TP\n.B NO_COLOR\nNo colours when set and not empty.\n"
      ".TP\n.B ORSOLVA_CONFIG\nConfiguration file that is read when \\-\\-config names none.\n"
      ".SH FILES\n.TP\n.I ~/.config/orsolva/config.toml\nOptions of orsolva qc; `orsolva config` prints "
      "one.\n"
      ".SH EXAMPLES\n.nf\norsolva qc station.crx.gz\norsolva qc \\-\\-output reports archive/2026/\n"
      "orsolva qc \\-\\-sum *.rnx | grep ^SUM\norsolva qc \\-\\-profile network day.rnx || mail operator\n"
      "orsolva explain mp1\n.fi\n";
  return text;
}

}  // namespace orsolva_host
