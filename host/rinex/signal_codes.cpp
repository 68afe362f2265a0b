#include "host/rinex/signal_codes.h"

#include "host/rinex/satellite_names.h"

namespace orsolva_host {
namespace {

// From this version on the BDS codes "1x" name the B1C signal, before they name B1I.
constexpr double kFirstVersionWithB1C = 3.025;
constexpr int kBdsB1IX = 152;

struct BandRow {
  int system;
  int band_slot;
  const char* name;
};

constexpr BandRow kBandTable[] = {
    {kGps, 1, "L1"},      {kGps, 2, "L2"},      {kGps, 3, "L5"},  //
    {kGlonass, 1, "G1"},  {kGlonass, 2, "G2"},  {kGlonass, 3, "G3"},  {kGlonass, 4, "G1a"},
    {kGlonass, 5, "G2a"},                                                                //
    {kBds, 1, "B1I"},     {kBds, 2, "B2I"},     {kBds, 3, "B3I"},     {kBds, 4, "B1C"},  //
    {kBds, 5, "B2a"},     {kBds, 6, "B2b"},                                              //
    {kGalileo, 1, "E1"},  {kGalileo, 2, "E5a"}, {kGalileo, 3, "E5b"}, {kGalileo, 4, "E5"},
    {kGalileo, 5, "E6"},                                                                 //
    {kQzss, 1, "L1"},     {kQzss, 2, "L2"},     {kQzss, 3, "L5"},     {kQzss, 4, "L6"},  //
};

const SignalCodeRow* FindNumber(int system, int number) {
  for (int i = 0; i < kSignalCodes; ++i) {
    if (kSignalCodeTable[i].system == system && kSignalCodeTable[i].number == number) {
      return &kSignalCodeTable[i];
    }
  }
  return nullptr;
}

}  // namespace

int SignalNumber(int system, std::string_view name, double version) {
  if (system == kBds && name == "1X" && version < kFirstVersionWithB1C) return kBdsB1IX;
  for (int i = 0; i < kSignalCodes; ++i) {
    if (kSignalCodeTable[i].system == system && name == kSignalCodeTable[i].name) {
      return kSignalCodeTable[i].number;
    }
  }
  return 0;
}

std::string_view SignalName(int system, int number) {
  const SignalCodeRow* row = FindNumber(system, number);
  return row ? row->name : std::string_view();
}

int SignalBandSlot(int system, int number) {
  const SignalCodeRow* row = FindNumber(system, number);
  return row ? row->band_slot : 0;
}

std::string_view BandName(int system, int band_slot) {
  for (const BandRow& row : kBandTable) {
    if (row.system == system && row.band_slot == band_slot) return row.name;
  }
  return {};
}

}  // namespace orsolva_host
