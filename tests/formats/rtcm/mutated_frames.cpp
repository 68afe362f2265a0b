// Frames of a stream whose messages are damaged at random, read as a recording.
//
// usage: rtcm_mutations COUNT [SEED]     exits with 1 when a law does not hold; meant for builds with
// sanitizers
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "host/formats/rtcm/reader.h"
#include "host/formats/rtcm/rtcm_writer.h"
#include "tests/formats/rtcm/frames.h"

namespace {

using namespace orsolva_host;
using orsolva_test::GpsTime;
using orsolva_test::kSecond;

constexpr std::int64_t kStart_ns = GpsTime(2300, 600);

void Require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", what);
  std::exit(1);
}

class Bytes : public ByteSource {
 public:
  explicit Bytes(std::string bytes) : bytes_(std::move(bytes)) {}
  std::size_t Read(char* out, std::size_t size) override {
    const std::size_t count = bytes_.copy(out, size, at_);
    at_ += count;
    return count;
  }

 private:
  std::string bytes_;
  std::size_t at_ = 0;
};

ObservationEpoch SkyOf(std::int64_t time_ns) {
  constexpr SignalCode kCodes[] = {{'1', 'C'}, {'2', 'I'}, {'5', 'X'}, {'1', 'X'}};
  ObservationEpoch epoch;
  epoch.time_ns = time_ns;
  for (const char system : {'C', 'E', 'G', 'I', 'J', 'R', 'S'}) {
    for (std::uint8_t number = 1; number <= 8; ++number) {
      const auto shown = static_cast<std::uint8_t>(system == 'S' ? number + 19 : number);
      epoch.satellites.push_back({{system, shown}, epoch.signals.size(), std::size(kCodes)});
      for (const SignalCode code : kCodes) {
        SignalObservation signal;
        signal.code = code;
        signal.pseudorange_m = 2.1e7 + 1e5 * number;
        signal.phase_cycles = 1.1e8 + number;
        signal.doppler_hz = 1000;
        signal.snr_dbhz = 40;
        epoch.signals.push_back(signal);
      }
    }
  }
  return epoch;
}

/// Messages of every kind that is written: MSM4 to 7 of all systems, ephemerides, a station.
std::vector<std::string> Messages() {
  std::vector<std::string> messages;
  rtcm::ChannelTable channels;
  channels.fill(1);
  for (int kind = 4; kind <= 7; ++kind) {
    for (std::string& message : rtcm::MsmWriter(kind, 1).Write(SkyOf(kStart_ns), channels)) {
      messages.push_back(std::move(message));
    }
  }
  constexpr std::pair<int, char> kTypes[] = {{1019, 'G'}, {1041, 'I'}, {1042, 'C'},
                                             {1044, 'J'}, {1045, 'E'}, {1046, 'E'}};
  for (const auto& [type, system] : kTypes) {
    KeplerRecord record;
    record.satellite = {system, 3};
    record.sqrt_a = 5153;
    record.toe_s = record.toc_s = static_cast<double>(kStart_ns / kSecond);
    messages.push_back(rtcm::WriteEphemeris(rtcm::MessageOf(record, type)));
  }
  StateVectorRecord vector;
  vector.satellite = {'R', 3};
  vector.toe_s = static_cast<double>(kStart_ns / kSecond);
  messages.push_back(rtcm::WriteEphemeris(rtcm::MessageOf(vector)));
  rtcm::StationDescription station;
  station.id = 1;
  station.position_m = {3.5e6, 0.8e6, 5.2e6};
  station.receiver = "RECEIVER";
  messages.push_back(rtcm::WritePosition(station));
  messages.push_back(rtcm::WriteEquipment(station));
  return messages;
}

class Mutations {
 public:
  explicit Mutations(std::uint64_t seed) : random_(seed) {}

  std::size_t Below(std::size_t bound) { return static_cast<std::size_t>(random_() % bound); }

  /// One to eight bits or bytes changed behind the type, often cut or lengthened.
  std::string Damaged(std::string message) {
    for (std::size_t left = 1 + Below(8); left > 0; --left) {
      const std::size_t at = Below(16) == 0 ? Below(message.size()) : 2 + Below(message.size() - 2);
      const auto byte = static_cast<unsigned char>(message[at]);
      const unsigned changed = Below(2) == 0 ? byte ^ 1U << Below(8) : static_cast<unsigned>(Below(256));
      message[at] = static_cast<char>(changed);
    }
    if (Below(8) == 0) message.resize(2 + Below(message.size() - 2));
    if (Below(16) == 0) message.append(Below(rtcm::kMaxMessageBytes - message.size() + 1), '\x5a');
    return message;
  }

 private:
  std::mt19937_64 random_;
};

void CheckEpoch(const ObservationEpoch& epoch) {
  std::size_t next = 0;
  for (const SatelliteObservation& satellite : epoch.satellites) {
    Require(satellite.first_signal == next && satellite.signal_count > 0, "signals follow one another");
    next += satellite.signal_count;
  }
  Require(next == epoch.signals.size(), "every signal has a satellite");
  for (const SignalObservation& signal : epoch.signals) {
    Require(!(std::fabs(signal.pseudorange_m) > 1e8), "ranges are those of satellites");
    Require(!(signal.snr_dbhz < 0 || signal.snr_dbhz > 64), "strength is within its field");
  }
}

/// Reads a recording of `frames` frames, of which `good` have a correct CRC. @return the epochs
std::uint64_t Check(std::string recording, std::uint64_t good) {
  Diagnostics notices;
  rtcm::ReaderOptions options;
  options.near_ns = kStart_ns;
  rtcm::Reader reader(std::make_unique<Bytes>(std::move(recording)), "mutated", notices, options);
  ObservationEpoch epoch;
  std::uint64_t epochs = 0;
  for (; reader.Next(epoch); ++epochs) CheckEpoch(epoch);
  reader.TakeBroadcast();
  Require(reader.Frames().frames >= good, "no good frame is lost to damaged ones");
  return epochs;
}

}  // namespace

int main(int argc, char** argv) {
  const std::uint64_t count = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : 100000;
  Mutations mutations(argc > 2 ? std::strtoull(argv[2], nullptr, 10) : 1);
  const std::vector<std::string> messages = Messages();
  constexpr std::uint64_t kFramesOfRecording = 2000;
  std::uint64_t made = 0, epochs = 0, good_frames = 0;
  while (made < count) {
    std::string recording;
    std::uint64_t good = 0;
    for (std::uint64_t i = 0; i < kFramesOfRecording && made < count; ++i, ++made) {
      std::string frame = rtcm::FrameOf(mutations.Damaged(messages[mutations.Below(messages.size())]));
      if (mutations.Below(8) == 0) {
        frame[mutations.Below(frame.size())] ^= 0x11;
      } else {
        ++good;
      }
      recording += frame;
    }
    epochs += Check(std::move(recording), good);
    good_frames += good;
  }
  std::printf("%llu frames, %llu with a correct CRC, %llu epochs\n", static_cast<unsigned long long>(made),
              static_cast<unsigned long long>(good_frames), static_cast<unsigned long long>(epochs));
  return epochs > 0 ? 0 : 1;
}
