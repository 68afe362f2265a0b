#include "host/judging/known_records.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace orsolva_host {
namespace {

double ReferenceOf(const GloEph_gbt& record) { return static_cast<double>(record.toe.time) + record.toe.sec; }

template <typename Record>
double ReferenceOf(const Record& record) {
  return static_cast<double>(record.toc.time) + record.toc.sec;
}

template <typename Record>
void Join(const std::vector<Record>& from, std::vector<Record>& to) {
  to.insert(to.end(), from.begin(), from.end());
}

}  // namespace

bool KnownRecords::IsNew(char letter, int number, double reference_s, bool second_message) {
  if (!std::isfinite(reference_s)) return false;
  return known_.insert({letter, number, std::llround(reference_s * 1000), second_message}).second;
}

template <typename Record>
void KnownRecords::TakeNew(char letter, const std::vector<Record>& from, std::vector<Record>& to) {
  for (const Record& record : from) {
    if (IsNew(letter, record.prn, ReferenceOf(record))) to.push_back(record);
  }
}

/// One reading has one message of a satellite for the library, I/NAV where it holds both.
std::vector<GalEph_gbt> KnownRecords::OfOneMessage(const ReadNavigation& read) {
  std::map<int, bool> is_inav;
  for (const KeplerRecord& record : read.broadcast.kepler) {
    if (record.satellite.system != 'E') continue;
    bool& inav = is_inav[record.satellite.number];
    inav = inav || !record.second_message;
  }
  for (const auto& [number, inav] : is_inav) galileo_is_inav_.try_emplace(number, inav);
  std::vector<GalEph_gbt> kept;
  for (const auto& record : read.set.galileo) {
    const auto found = is_inav.find(record.prn);
    if (found == is_inav.end() || found->second == galileo_is_inav_[record.prn]) kept.push_back(record);
  }
  return kept;
}

ReadNavigation KnownRecords::New(const ReadNavigation& read) {
  ReadNavigation fresh;
  fresh.files = read.files;
  fresh.has_record_files = read.has_record_files;
  TakeNew('g', read.set.gps, fresh.set.gps);
  TakeNew('r', read.set.glonass, fresh.set.glonass);
  TakeNew('c', read.set.bds, fresh.set.bds);
  TakeNew('e', OfOneMessage(read), fresh.set.galileo);
  TakeNew('j', read.set.qzss, fresh.set.qzss);
  for (const KeplerRecord& record : read.broadcast.kepler) {
    if (IsNew(record.satellite.system, record.satellite.number, record.toe_s, record.second_message))
      fresh.broadcast.kepler.push_back(record);
  }
  for (const StateVectorRecord& record : read.broadcast.state_vectors) {
    if (IsNew(record.satellite.system, record.satellite.number, record.toe_s))
      fresh.broadcast.state_vectors.push_back(record);
  }
  return fresh;
}

void Append(const NavigationSet& more, NavigationSet& to) {
  Join(more.gps, to.gps);
  Join(more.glonass, to.glonass);
  Join(more.bds, to.bds);
  Join(more.galileo, to.galileo);
  Join(more.qzss, to.qzss);
}

std::shared_ptr<const ReadNavigation> Together(const ReadNavigation& before, const ReadNavigation& more) {
  auto both = std::make_shared<ReadNavigation>(before);
  for (const std::string& file : more.files) {
    if (std::find(both->files.begin(), both->files.end(), file) == both->files.end())
      both->files.push_back(file);
  }
  both->has_record_files = both->has_record_files || more.has_record_files;
  Append(more.set, both->set);
  Join(more.broadcast.kepler, both->broadcast.kepler);
  Join(more.broadcast.state_vectors, both->broadcast.state_vectors);
  return both;
}

}  // namespace orsolva_host
