// Fields of RXM-RAWX as JSON, and random messages, for the comparison with an independent parser (oracle.py).
//
// usage: ubx_fields dump FILE               a line of JSON per RXM-RAWX
//        ubx_fields random COUNT SEED FILE  frames with random fields
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

#include "host/formats/ubx/frame.h"
#include "host/formats/ubx/messages.h"
#include "host/formats/ubx/raw_measurements.h"
#include "host/formats/ubx/signals.h"

namespace {

using namespace orsolva_host;
using namespace orsolva_host::ubx;

void Print(const RawMessage& message) {
  std::printf("{\"second\":%.17g,\"week\":%d,\"measurements\":[", message.second_of_week, message.week);
  const char* separator = "";
  for (const RawMeasurement& m : message.measurements) {
    const auto code = SignalOf(m.gnss_id, m.sig_id);
    std::printf("%s[%.17g,%.17g,%.9g,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,\"%s\"]", separator, m.pseudorange_m,
                m.phase_cycles, static_cast<double>(m.doppler_hz), m.gnss_id, m.sv_id, m.sig_id, m.channel,
                m.lock_ms, m.cno_dbhz, (m.tracking & kPseudorangeValid) != 0, (m.tracking & kPhaseValid) != 0,
                (m.tracking & kHalfCycleResolved) != 0, (m.tracking & kHalfCycleSubtracted) != 0,
                code ? NameOf(*code).c_str() : "");
    separator = ",";
  }
  std::puts("]}");
}

int Dump(const char* path) {
  std::ifstream file(path, std::ios::binary);
  FrameFinder frames(kFrameForm);
  frames.Append(std::string(std::istreambuf_iterator<char>(file), {}));
  frames.Finish();
  while (const auto message = frames.Next()) {
    if (TypeOf(*message) != kRawMeasurements) continue;
    if (const auto raw = ReadRaw(PayloadOf(*message))) Print(*raw);
  }
  return 0;
}

int WriteRandom(int count, unsigned seed, const char* path) {
  std::mt19937 random(seed);
  const auto below = [&random](unsigned limit) { return static_cast<unsigned>(random() % limit); };
  std::ofstream file(path, std::ios::binary);
  for (int i = 0; i < count; ++i) {
    RawMessage message;
    message.week = static_cast<std::uint16_t>(below(65536));
    message.second_of_week = below(604800000) / 1000.0;
    message.measurements.resize(below(8));
    for (RawMeasurement& m : message.measurements) {
      m.pseudorange_m = below(4000000000) / 128.0;
      m.phase_cycles = (static_cast<double>(below(4000000000)) - 2e9) / 64;
      m.doppler_hz = static_cast<float>(below(20000)) / 4 - 2500;
      m.gnss_id = static_cast<std::uint8_t>(below(8));
      m.sv_id = static_cast<std::uint8_t>(below(256));
      m.sig_id = static_cast<std::uint8_t>(below(10));
      m.channel = static_cast<std::uint8_t>(below(14));
      m.lock_ms = static_cast<std::uint16_t>(below(64501));
      m.cno_dbhz = static_cast<std::uint8_t>(below(64));
      m.tracking = static_cast<std::uint8_t>(below(16));
    }
    file << FrameOf(MessageOf(kRawMeasurements, WriteRaw(message)));
  }
  return file ? 0 : 1;
}

}  // namespace

int main(int count, char** words) {
  if (count == 3 && std::strcmp(words[1], "dump") == 0) return Dump(words[2]);
  if (count == 5 && std::strcmp(words[1], "random") == 0) {
    return WriteRandom(std::atoi(words[2]), static_cast<unsigned>(std::atoi(words[3])), words[4]);
  }
  std::fputs("usage: ubx_fields dump FILE | random COUNT SEED FILE\n", stderr);
  return 2;
}
