// Runs the proofs and prints their sections, or writes them into a page between the markers of each proof.
//
//   truth_report [--long] [--only PROOF] [--write PAGE]
//
// Exit code 0 when every proof holds, 1 when one does not, 2 for wrong usage.
#include <fmt/format.h>

#include <cstdio>
#include <ctime>
#include <string>

#include "tests/support/text_file.h"
#include "tests/truth/proof.h"

namespace {

struct Order {
  bool long_form = false;
  std::string only, page;
};

bool Parse(int argc, char** argv, Order& order) {
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    if (argument == "--long") {
      order.long_form = true;
    } else if (argument == "--only" && i + 1 < argc) {
      order.only = argv[++i];
    } else if (argument == "--write" && i + 1 < argc) {
      order.page = argv[++i];
    } else {
      return false;
    }
  }
  return true;
}

bool WriteSection(const std::string& name, const std::string& id, const std::string& section) {
  std::string page = orsolva_test::ReadText(name);
  if (!orsolva_test::ReplaceSection(id, section, page)) {
    fmt::print(stderr, "{}: no section of {}; expected the lines <!-- proof:{} --> and <!-- /proof:{} -->\n",
               name, id, id, id);
    return false;
  }
  return orsolva_test::WriteText(name, page);
}

bool Report(const std::string& id, const Order& order) {
  const std::clock_t begin = std::clock();
  const orsolva_test::Proof proof = orsolva_test::Prove(id, order.long_form);
  fmt::print(stderr, "{}: {} comparisons, {} failed, {:.1f} s of CPU\n", id, proof.Checks(), proof.Failed(),
             static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC);
  for (const std::string& failure : proof.Failures()) fmt::print(stderr, "  {}\n", failure);
  if (order.page.empty()) fmt::print("## {}\n\n{}\n", id, proof.Markdown());
  const bool written = order.page.empty() || WriteSection(order.page, id, proof.Markdown());
  return written && proof.Failed() == 0;
}

}  // namespace

int main(int argc, char** argv) {
  Order order;
  if (!Parse(argc, argv, order)) {
    fmt::print(stderr, "usage: truth_report [--long] [--only PROOF] [--write PAGE]\n");
    return 2;
  }
  bool good = true;
  for (const orsolva_test::ProofEntry& entry : orsolva_test::AllProofs()) {
    if (order.only.empty() || order.only == entry.id) good = Report(entry.id, order) && good;
  }
  return good ? 0 : 1;
}
