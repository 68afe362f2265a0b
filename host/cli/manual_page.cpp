#include <fmt/format.h>

#include <string>

#include "host/cli/app.h"
#include "host/cli/exit_codes.h"
#include "host/cli/shell_texts.h"

namespace orsolva_host {
namespace {

/// A text as troff takes it: backslashes and minus signs as they stand, no request at the start of a line.
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

std::string OptionEntry(const OptionFacts& o) {
  const std::string argument = o.argument.empty() || o.argument[0] == '[' ? o.argument : " " + o.argument;
  std::string text = fmt::format(".TP\n.B {}\n{}.\n", Troff(o.name + argument), Troff(o.description));
  if (!o.default_text.empty() && !o.positional && o.argument[0] != '[') {
    text += fmt::format("Default: {}.\n", Troff(o.default_text));
  }
  return text;
}

}  // namespace

std::string ManualPage(const CLI::App& app) {
  std::string text =
      ".TH ORSOLVA 1\n.SH NAME\norsolva \\- judges the quality of GNSS observations\n.SH SYNOPSIS\n"
      ".B orsolva\n.I COMMAND\n[options] [files]\n.SH DESCRIPTION\n"
      "Reads RINEX observation and navigation files and reports how good the observations are: completeness, "
      "code multipath, cycle slips and signal strength, for GPS, GLONASS, BDS, Galileo and QZSS.\n"
      ".SH COMMANDS\n";
  for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
    text += fmt::format(".SS {}\n{}.\n", Troff(command->get_name()), Troff(command->get_description()));
    for (const OptionFacts& o : OptionsOf(*command)) text += OptionEntry(o);
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
