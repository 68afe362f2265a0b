// Broadcast records that a run has, and those that come while it goes on.
#ifndef ORSOLVA_JUDGING_KNOWN_RECORDS_H
#define ORSOLVA_JUDGING_KNOWN_RECORDS_H

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <tuple>
#include <vector>

#include "host/judging/shared_navigation.h"

namespace orsolva_host {

class KnownRecords {
 public:
  /// Takes note of records.
  /// @return those that were not known: a record is known by its satellite, reference time and message, so
  /// that files that overlap, and a file given again, add each record once. For the library a Galileo
  /// satellite keeps the message, I/NAV or F/NAV, of the reading that had it first: their clocks differ by a
  /// group delay.
  ReadNavigation New(const ReadNavigation& read);

 private:
  /// Letter (small: a record of the library), number, reference time in ms, second message of Galileo.
  using Key = std::tuple<char, int, std::int64_t, bool>;

  std::vector<GalEph_gbt> OfOneMessage(const ReadNavigation& read);
  bool IsNew(char letter, int number, double reference_s, bool second_message = false);
  template <typename Record>
  void TakeNew(char letter, const std::vector<Record>& from, std::vector<Record>& to);

  std::set<Key> known_;
  std::map<int, bool> galileo_is_inav_;  ///< by satellite, of the library's records
};

/// Adds the records of one set to another.
void Append(const NavigationSet& more, NavigationSet& to);

/// All of both, and each file once.
std::shared_ptr<const ReadNavigation> Together(const ReadNavigation& before, const ReadNavigation& more);

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_KNOWN_RECORDS_H
