// Streams of bytes and messages made by hand for the tests of RTCM 3.
#ifndef ORSOLVA_TESTS_FORMATS_RTCM_FRAMES_H
#define ORSOLVA_TESTS_FORMATS_RTCM_FRAMES_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/formats/rtcm/decoder.h"
#include "host/formats/rtcm/frame.h"

namespace orsolva_test {

constexpr std::int64_t kSecond = 1'000'000'000;

/// Nanoseconds of GPS time of a week and its second.
constexpr std::int64_t GpsTime(std::int64_t week, std::int64_t second) {
  return (315964800 + week * 604800 + second) * kSecond;
}

inline std::string FromHex(std::string_view hex) {
  std::string bytes;
  for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
    bytes.push_back(static_cast<char>(std::stoi(std::string(hex.substr(i, 2)), nullptr, 16)));
  }
  return bytes;
}

/// All messages in a stream that has ended.
inline std::vector<std::string> MessagesIn(std::string_view bytes, orsolva_host::rtcm::FrameScanner& frames) {
  std::vector<std::string> messages;
  frames.Append(bytes);
  frames.Finish();
  while (const auto message = frames.Next()) messages.emplace_back(*message);
  return messages;
}

/// An MSM with one satellite and one signal.
inline orsolva_host::rtcm::MsmMessage OneCell(char system, int kind, std::int64_t time_ms, int satellite = 5,
                                              int signal = 2) {
  orsolva_host::rtcm::MsmMessage m;
  m.type = {system, kind};
  m.header[orsolva_host::rtcm::msm::kTime] = time_ms;
  if (system == 'R') m.header[orsolva_host::rtcm::msm::kDayOfWeek] = 7;
  m.satellites.push_back({satellite, 70, 8, 512, 100});
  orsolva_host::rtcm::MsmCell cell;
  cell.signal = signal;
  cell.lock = 10;
  cell.strength = 40;
  m.cells.push_back(cell);
  return m;
}

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_FORMATS_RTCM_FRAMES_H
