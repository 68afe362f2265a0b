#include "host/observation/carriers.h"

namespace orsolva_host {
namespace {

struct CarrierRow {
  char system;
  char band;
  double frequency_hz;
  double channel_step_hz;
};

constexpr CarrierRow kCarrierTable[] = {
    {'G', '1', 1575.420e6, 0},      {'G', '2', 1227.600e6, 0},      {'G', '5', 1176.450e6, 0},
    {'R', '1', 1602.000e6, 562500}, {'R', '2', 1246.000e6, 437500}, {'R', '3', 1202.025e6, 0},
    {'R', '4', 1600.995e6, 0},      {'R', '6', 1248.060e6, 0},      {'E', '1', 1575.420e6, 0},
    {'E', '5', 1176.450e6, 0},      {'E', '7', 1207.140e6, 0},      {'E', '8', 1191.795e6, 0},
    {'E', '6', 1278.750e6, 0},      {'J', '1', 1575.420e6, 0},      {'J', '2', 1227.600e6, 0},
    {'J', '5', 1176.450e6, 0},      {'J', '6', 1278.750e6, 0},      {'C', '2', 1561.098e6, 0},
    {'C', '1', 1575.420e6, 0},      {'C', '5', 1176.450e6, 0},      {'C', '7', 1207.140e6, 0},
    {'C', '8', 1191.795e6, 0},      {'C', '6', 1268.520e6, 0},      {'I', '1', 1575.420e6, 0},
    {'I', '5', 1176.450e6, 0},      {'I', '9', 2492.028e6, 0},      {'S', '1', 1575.420e6, 0},
    {'S', '5', 1176.450e6, 0},
};

}  // namespace

double CarrierFrequency(char system, char band, int channel) {
  for (const CarrierRow& row : kCarrierTable) {
    if (row.system == system && row.band == band) return row.frequency_hz + row.channel_step_hz * channel;
  }
  return 0;
}

}  // namespace orsolva_host
