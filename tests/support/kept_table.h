// A table in the documentation that a test keeps up to date: compared with what the code gives, or written
// again.
#ifndef ORSOLVA_TESTS_SUPPORT_KEPT_TABLE_H
#define ORSOLVA_TESTS_SUPPORT_KEPT_TABLE_H

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "tests/support/text_file.h"

namespace orsolva_test {

/// Compares the text between the lines `begin` and `end` of a page with the table. With ORSOLVA_WRITE_DOCS
/// in the environment the page gets the table instead.
inline void HoldTable(const std::string& page, const std::string& begin, const std::string& end,
                      const std::string& table) {
  std::string text = ReadText(page);
  const std::size_t from = text.find(begin);
  const std::size_t to = text.find(end);
  ASSERT_NE(from, std::string::npos) << page << ": no line " << begin;
  ASSERT_NE(to, std::string::npos) << page << ": no line " << end;
  const std::size_t first = from + begin.size();
  ASSERT_LE(first, to);
  if (std::getenv("ORSOLVA_WRITE_DOCS") != nullptr) {
    ASSERT_TRUE(WriteText(page, text.replace(first, to - first, table))) << page;
    return;
  }
  EXPECT_EQ(text.substr(first, to - first), table)
      << "if the new table is right, run this test with ORSOLVA_WRITE_DOCS=1";
}

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_SUPPORT_KEPT_TABLE_H
