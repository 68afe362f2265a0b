#include "host/rinex/signal_codes.h"

#include "host/rinex/satellite_names.h"
#include "orsolva/signals.h"

namespace orsolva_host {
namespace {

// From this version on the BDS codes "1x" name the B1C signal, before they name B1I.
constexpr double kFirstVersionWithB1C = 3.025;

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

const orsolva::SignalInfo* FindNumber(int system, int number) {
  return orsolva::FindSignal(static_cast<orsolva::System>(system), number);
}

}  // namespace

int SignalNumber(int system, std::string_view name, double version) {
  if (name.size() != 2) return 0;
  if (system == kBds && name == "1X" && version < kFirstVersionWithB1C) return ORSOLVA_BDS_2X;
  const char observation[] = {name[0], name[1], '\0'};
  const orsolva::SignalInfo* row = orsolva::FindSignal(static_cast<orsolva::System>(system), observation);
  return row ? static_cast<int>(row->signal) : 0;
}

std::string_view SignalName(int system, int number) {
  const orsolva::SignalInfo* row = FindNumber(system, number);
  return row ? row->observation : std::string_view();
}

int SignalBandSlot(int system, int number) {
  const orsolva::SignalInfo* row = FindNumber(system, number);
  return row ? row->band_slot : 0;
}

std::string_view BandName(int system, int band_slot) {
  for (const BandRow& row : kBandTable) {
    if (row.system == system && row.band_slot == band_slot) return row.name;
  }
  return {};
}

}  // namespace orsolva_host
