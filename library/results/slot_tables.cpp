#include "results/slot_tables.h"

#include "toolkit/satellite.h"

namespace orsolva {
namespace {

enum : std::uint8_t { kOld = 1, kNew = 2, kAny = 3 };  // BDS generations that carry the band

struct SlotRow {
  std::uint8_t system;
  std::uint8_t band;
  std::uint8_t generations;
  std::uint8_t slot;
};

// Rows of one system in the order of their slots.
constexpr SlotRow kSlotRows[] = {
    {gnssqctoolkit::kGps, 1, kAny, 1},      //
    {gnssqctoolkit::kGps, 2, kAny, 2},      //
    {gnssqctoolkit::kGps, 5, kAny, 3},      //
    {gnssqctoolkit::kGlonass, 1, kAny, 1},  //
    {gnssqctoolkit::kGlonass, 2, kAny, 2},  //
    {gnssqctoolkit::kGalileo, 1, kAny, 1},  //
    {gnssqctoolkit::kGalileo, 5, kAny, 2},  //
    {gnssqctoolkit::kGalileo, 8, kAny, 3},  //
    {gnssqctoolkit::kGalileo, 7, kAny, 4},  //
    {gnssqctoolkit::kGalileo, 6, kAny, 5},  //
    {gnssqctoolkit::kQzss, 1, kAny, 1},     //
    {gnssqctoolkit::kQzss, 2, kAny, 2},     //
    {gnssqctoolkit::kQzss, 5, kAny, 3},     //
    {gnssqctoolkit::kQzss, 6, kAny, 4},     //
    {gnssqctoolkit::kBds, 21, kAny, 1},     //
    {gnssqctoolkit::kBds, 27, kOld, 2},     //
    {gnssqctoolkit::kBds, 5, kNew, 2},      //
    {gnssqctoolkit::kBds, 6, kAny, 3},      //
    {gnssqctoolkit::kBds, 1, kNew, 4},      //
    {gnssqctoolkit::kBds, 7, kNew, 5},      //
    {gnssqctoolkit::kBds, 8, kNew, 6},      //
};

std::uint8_t GenerationBits(BdsGeneration generation) {
  if (generation == BdsGeneration::kBds2) return kOld;
  return generation == BdsGeneration::kBds3 ? kNew : kAny;
}

}  // namespace

BdsGeneration BdsGenerationOf(int prn) {
  return prn >= gnssqctoolkit::kFirstBds3 ? BdsGeneration::kBds3 : BdsGeneration::kBds2;
}

int ChannelSlot(int system, int band, BdsGeneration generation) {
  const std::uint8_t wanted = GenerationBits(generation);
  for (const SlotRow& row : kSlotRows) {
    if (row.system == system && row.band == band && (row.generations & wanted) != 0) return row.slot;
  }
  return 0;
}

}  // namespace orsolva
