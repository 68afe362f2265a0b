#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>

#include "host/cli/commands.h"
#include "host/cli/exit_codes.h"
#include "host/report/figures.h"
#include "host/report/text_layout.h"
#include "host/terminal/standard_streams.h"

namespace orsolva_host {
namespace {

constexpr std::size_t kWidth = 80;

std::string FigureLines() {
  std::string text = "orsolva explain FIGURE explains how a figure is computed. The figures:\n\n";
  for (const Figure& f : FigureTexts()) {
    std::string head = "  " + f.key;
    constexpr std::size_t kKeyWidth = 34;
    head.resize(std::max(head.size() + 1, kKeyWidth), ' ');
    text += Wrapped(f.title, head, std::string(kKeyWidth, ' '), kWidth);
  }
  return text;
}

int Explain(const std::string& name) {
  if (name.empty()) {
    std::fputs(FigureLines().c_str(), stdout);
    return kGood;
  }
  const Figure* figure = FindFigure(name);
  if (figure != nullptr) {
    std::fputs(Explanation(*figure).c_str(), stdout);
    return kGood;
  }
  std::string near;
  for (const std::string& key : FiguresLike(name)) near += (near.empty() ? " Did you mean " : ", ") + key;
  PrintError("'" + name + "' is not a figure." + near + (near.empty() ? "" : "?") +
             " `orsolva explain` lists them all.");
  return kWrongUsage;
}

}  // namespace

Command ExplainCommand() {
  auto name = std::make_shared<std::string>();
  Option row = TextOption("FIGURE", "FIGURE", *name,
                          "Key, column heading or name such as mp1; without it all are listed");
  for (const Figure& figure : FigureTexts()) row.words.push_back(figure.key);
  return {"explain",
          "Explain how a figure of the report is computed",
          {Positional(std::move(row), false)},
          [name] { return Explain(*name); }};
}

}  // namespace orsolva_host
