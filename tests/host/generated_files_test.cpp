// The committed files that follow from the rows of the figures are what the rows make.
// ORSOLVA_UPDATE=1 in the environment writes them instead.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "host/report/figure_types.h"

namespace orsolva_host {
namespace {

std::string TextAt(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

void HoldOrWrite(const std::string& name, const std::string& made) {
  const std::string path = ORSOLVA_SOURCE_DIR "/" + name;
  if (std::getenv("ORSOLVA_UPDATE") != nullptr) std::ofstream(path, std::ios::binary) << made;
  EXPECT_EQ(TextAt(path), made)
      << name
      << " is not what the rows of the figures make: run this test with ORSOLVA_UPDATE=1 and commit it";
}

TEST(GeneratedFiles, TheSchemaHasTheFiguresOfTheRows) {
  const std::string name = "docs/user/report.schema.json";
  HoldOrWrite(name, SchemaWithFigures(TextAt(ORSOLVA_SOURCE_DIR "/" + name)));
}

TEST(GeneratedFiles, ThePageHasTheTypesAndColumnsOfTheRows) {
  HoldOrWrite("host/web/src/figures.ts", PageTypes());
}

}  // namespace
}  // namespace orsolva_host
