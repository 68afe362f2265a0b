// Fields of SBF blocks as JSON, and random blocks, for the comparison with an independent parser (oracle.py).
//
// usage: sbf_fields dump FILE               a line of JSON per decoded block
//        sbf_fields random COUNT SEED FILE  blocks with random fields
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

#include "host/formats/sbf/ephemeris.h"
#include "host/formats/sbf/frame.h"
#include "host/formats/sbf/measurements.h"
#include "host/formats/sbf/receiver_setup.h"
#include "host/formats/sbf/signals.h"

namespace {

using namespace orsolva_host;
using namespace orsolva_host::sbf;

constexpr std::int64_t kSecond_ns = 1000000000;
constexpr std::int64_t kGpsBegins_s = 315964800;
constexpr std::int64_t kWeek_s = 604800;

void Print(const OtherSignal& s) {
  std::printf("[%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d]", s.signal, s.antenna, s.lock_s, s.cn0, s.code_offset_mm,
              s.has_code, s.carrier_m_cycles, s.has_carrier, s.doppler_offset, s.has_doppler, s.half_cycle);
}

void Print(const MeasEpoch& epoch) {
  std::printf("{\"block\":\"MeasEpoch\",\"scrambled\":%d,\"e6b\":%d,\"satellites\":[", epoch.scrambled,
              epoch.e6b);
  const char* separator = "";
  for (const FirstSignal& s : epoch.satellites) {
    std::printf("%s[%d,%d,%d,%lld,%d,%d,%d,%d,%d,%d,%d,%d,[", separator, s.svid, s.signal, s.antenna,
                static_cast<long long>(s.code_mm), s.doppler, s.has_doppler, s.carrier_m_cycles,
                s.has_carrier, s.cn0, s.lock_s, s.half_cycle, s.frequency_number);
    const char* inner = "";
    for (const OtherSignal& other : s.others) {
      std::fputs(inner, stdout);
      Print(other);
      inner = ",";
    }
    std::fputs("]]", stdout);
    separator = ",";
  }
  std::puts("]}");
}

void Print(const NavigationRecord& record) {
  std::printf("{\"block\":\"%c\",\"number\":%d,\"second\":%lld,\"v\":[%.17g", record.letter, record.number,
              static_cast<long long>((record.time.time - kGpsBegins_s) % kWeek_s), record.v[0]);
  for (std::size_t i = 1; i < record.v.size(); ++i) std::printf(",%.17g", record.v[i]);
  std::puts("]}");
}

int Dump(const char* path) {
  std::ifstream file(path, std::ios::binary);
  FrameFinder frames(kFrameForm);
  frames.Append(std::string(std::istreambuf_iterator<char>(file), {}));
  frames.Finish();
  while (const auto block = frames.Next()) {
    if (NumberOf(*block) == kMeasEpoch) {
      if (const auto epoch = ReadMeasEpoch(*block, 0)) Print(*epoch);
    } else if (const auto record = ReadEphemeris(*block)) {
      Print(*record);
    } else if (const auto setup = ReadReceiverSetup(*block)) {
      std::printf("{\"block\":\"ReceiverSetup\",\"marker\":\"%s\",\"number\":\"%s\"}\n",
                  setup->marker.c_str(), setup->marker_number.c_str());
    }
  }
  return 0;
}

class RandomBlocks {
 public:
  explicit RandomBlocks(unsigned seed) : random_(seed) {}

  std::string Next() {
    constexpr char kKinds[] = {'M', 'M', 'M', 'G', 'J', 'C', 'E', 'R', 'S'};
    const char kind = kKinds[Below(sizeof kKinds)];
    time_ns_ = (kGpsBegins_s + kWeek_s * (1400 + Below(2000)) + Below(kWeek_s)) * kSecond_ns;
    if (kind == 'M') return Measurements();
    return kind == 'S' ? Setup() : Ephemeris(kind);
  }

 private:
  unsigned Below(unsigned limit) { return static_cast<unsigned>(random_() % limit); }
  /// Evenly from -limit to limit - 1.
  int Around(int limit) { return static_cast<int>(Below(2U * static_cast<unsigned>(limit))) - limit; }
  bool Often() { return Below(8) != 0; }
  int Signal() { return static_cast<int>(Often() ? Below(31) : 32 + Below(32)); }

  std::string Measurements() {
    MeasEpoch epoch{time_ns_, !Often(), !Often(), {}};
    epoch.satellites.resize(Below(6));
    for (FirstSignal& s : epoch.satellites) {
      s.svid = static_cast<int>(Below(256));
      s.signal = Signal();
      s.antenna = static_cast<int>(Below(8));
      s.code_mm = Often() ? static_cast<std::int64_t>(random_()) * 16 + Below(16) : 0;
      s.has_doppler = Often();
      s.doppler = s.has_doppler ? Around(2000000000) : INT32_MIN;
      s.has_carrier = Often();
      s.carrier_m_cycles = s.has_carrier ? Around(128 * 65536 - 1) : -128 * 65536;
      s.cn0 = static_cast<std::uint8_t>(Below(256));
      s.lock_s = static_cast<std::uint16_t>(Below(65536));
      s.half_cycle = !Often();
      s.frequency_number = s.signal < 31 ? static_cast<int>(Below(32)) : 0;
      s.others.resize(Below(4));
      for (OtherSignal& other : s.others) Fill(other);
    }
    return WriteMeasEpoch(epoch);
  }

  void Fill(OtherSignal& s) {
    s.signal = Signal();
    s.antenna = static_cast<int>(Below(8));
    s.lock_s = static_cast<std::uint8_t>(Below(256));
    s.cn0 = static_cast<std::uint8_t>(Below(256));
    s.has_code = Often();
    s.code_offset_mm = s.has_code ? Around(4 * 65536 - 1) : -4 * 65536;
    s.has_carrier = Often();
    s.carrier_m_cycles = s.has_carrier ? Around(128 * 65536 - 1) : -128 * 65536;
    s.has_doppler = Often();
    s.doppler_offset = s.has_doppler ? Around(16 * 65536 - 1) : -16 * 65536;
    s.half_cycle = !Often();
  }

  /// Bytes of one block with random health, issue and accuracy.
  std::string Ephemeris(char letter) {
    NavigationRecord record;
    record.letter = letter;
    record.number = static_cast<int>(1 + Below(letter == 'J' ? 7 : 24));
    record.time.time = time_ns_ / kSecond_ns + Around(7200);
    for (double& value : record.v) value = Around(1000000000) / 1048576.0;
    for (const std::size_t place : {3U, 20U, 23U, 24U, 26U, 28U}) record.v[place] = Below(256);
    record.v[11] = static_cast<double>((record.time.time - kGpsBegins_s) % kWeek_s);
    if (letter == 'R') record.v[6] = Below(2), record.v[10] = Around(7);
    if (letter == 'E') record.v[20] = Often() ? 517 : 258, record.v[24] = Below(512);
    std::string body = WriteEphemeris(record, time_ns_).substr(kHeadBytes);
    if (letter == 'R') {
      body[85 - kHeadBytes] = static_cast<char>(Below(8));
      body[90 - kHeadBytes] = static_cast<char>(Below(2));
    }
    if (letter == 'E') body[130 - kHeadBytes] = static_cast<char>(Below(256));
    constexpr const char* kLetters = "GJCER";
    constexpr int kNumbers[] = {kGpsNav, kQzsNav, kBdsNav, kGalNav, kGloNav};
    const int number = kNumbers[std::strchr(kLetters, letter) - kLetters];
    return BlockOf(number | static_cast<int>(Below(2)) << 13, body);
  }

  std::string Setup() {
    ReceiverSetup setup;
    for (unsigned i = Below(60); i > 0; --i) setup.marker += static_cast<char>('A' + Below(26));
    for (unsigned i = Below(20); i > 0; --i) setup.marker_number += static_cast<char>('0' + Below(10));
    // With room for the fields of all revisions, which the other parser wants.
    const std::string body = WriteReceiverSetup(setup, time_ns_).substr(kHeadBytes);
    return BlockOf(kReceiverSetup | 4 << 13, body + std::string(156, '\0'));
  }

  std::mt19937 random_;
  std::int64_t time_ns_ = 0;
};

int WriteRandom(int count, unsigned seed, const char* path) {
  RandomBlocks blocks(seed);
  std::ofstream file(path, std::ios::binary);
  for (int i = 0; i < count; ++i) file << blocks.Next();
  return file ? 0 : 1;
}

}  // namespace

int main(int count, char** words) {
  if (count == 3 && std::strcmp(words[1], "dump") == 0) return Dump(words[2]);
  if (count == 5 && std::strcmp(words[1], "random") == 0) {
    return WriteRandom(std::atoi(words[2]), static_cast<unsigned>(std::atoi(words[3])), words[4]);
  }
  std::fputs("usage: sbf_fields dump FILE | random COUNT SEED FILE\n", stderr);
  return 2;
}
