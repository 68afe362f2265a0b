#include "host/formats/sp3_reader.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

#include "host/rinex/civil_time.h"
#include "host/rinex/decimal.h"
#include "host/rinex/line_reader.h"
#include "host/rinex/satellite_names.h"
#include "host/rinex/time_scales.h"

namespace orsolva_host {
namespace {

constexpr double kMetresPerKilometre = 1000;
constexpr double kMicrosecond_s = 1e-6;
constexpr double kAbsentClock_us = 999999;
constexpr double kMinRadius_m = 6.4e6;  // the ground
constexpr double kMaxRadius_m = 1e8;
constexpr double kMaxClock_s = 0.1;
constexpr std::string_view kLetters = "GRECJIS";
constexpr std::string_view kAdvice = "Name an SP3-c or SP3-d file.";

using Points = std::map<SatelliteId, std::vector<PrecisePoint>>;

/// One file from its first line to its last.
class Sp3File {
 public:
  Sp3File(std::string name, Diagnostics& diagnostics) : name_(std::move(name)), diagnostics_(diagnostics) {}

  /// @param most  points that may be read
  Points Read(LineReader& lines, std::size_t most);

 private:
  void TakeFirstLine(std::string_view line, long number);
  void TakeLine(std::string_view line, long number);
  void TakeTimeSystem(std::string_view line, long number);
  void TakeEpoch(std::string_view line, long number);
  void TakePosition(std::string_view line, long number);
  bool ReadPosition(std::string_view line, PrecisePoint& point) const;
  bool ReadClock(std::string_view line, PrecisePoint& point) const;
  void CheckWhole(long number);
  void Skip(long number, const std::string& what) { diagnostics_.Add(name_, number, what, false); }

  std::string name_;
  Diagnostics& diagnostics_;
  Points points_;
  std::size_t count_ = 0;
  std::string time_system_;
  std::optional<std::int64_t> epoch_ns_;
  std::int64_t epochs_stated_ = 0;
  std::int64_t epochs_ = 0;
  bool ended_ = false;
};

Points Sp3File::Read(LineReader& lines, std::size_t most) {
  std::string_view line;
  if (!lines.Next(line)) throw FileError(name_, 0, "an empty file", "SP3-c or SP3-d", std::string(kAdvice));
  TakeFirstLine(line, lines.Line());
  while (lines.Next(line)) {
    TakeLine(line, lines.Line());
    if (count_ > most) {
      throw FileError(name_, lines.Line(), "more than " + std::to_string(most) + " positions", "fewer",
                      "Name the files of the day alone, or raise the limit with --max-size.");
    }
  }
  if (!ended_) {
    diagnostics_.AddIncomplete(name_, lines.Line(), "the file ends without EOF");
  } else {
    CheckWhole(lines.Line());
  }
  return std::move(points_);
}

void Sp3File::TakeFirstLine(std::string_view line, long number) {
  if (!IsSp3Line(line)) {
    throw FileError(name_, number, Quoted(std::string(line)),
                    "the first line of an SP3 file, such as #dP2024", std::string(kAdvice));
  }
  if (line[1] < 'c') {
    throw FileError(name_, number, std::string("SP3-") + line[1], "SP3-c or SP3-d", std::string(kAdvice));
  }
  if (line[1] > 'd')
    diagnostics_.Add(name_, number, "the version is newer than any supported; read as SP3-d");
  if (ParseInteger(Field(line, 32, 7), epochs_stated_) != FieldState::kNumber) epochs_stated_ = 0;
  epochs_ = 0;
  time_system_.clear();
  epoch_ns_.reset();
  ended_ = false;
}

void Sp3File::TakeLine(std::string_view line, long number) {
  if (IsSp3Line(line)) {  // files joined one after another
    CheckWhole(number);
    return TakeFirstLine(line, number);
  }
  if (line.empty() || Trimmed(line).empty()) return;
  if (ended_) return Skip(number, "lines after EOF skipped");
  switch (line[0]) {
    case '*':
      return TakeEpoch(line, number);
    case 'P':
      return TakePosition(line, number);
    case '%':
      return TakeTimeSystem(line, number);
    case 'E':
      ended_ = line.substr(0, 3) == "EOF";
      return;
    case '#':
    case '+':
    case '/':
    case 'V':
      return;
    default:
      return Skip(number, "lines that are no part of an SP3 file skipped");
  }
}

/// The first line "%c" names the time system; the second is spare.
void Sp3File::TakeTimeSystem(std::string_view line, long number) {
  if (line.substr(0, 2) != "%c" || !time_system_.empty()) return;
  time_system_ = Trimmed(Field(line, 9, 3));
  for (const std::string_view known : {"GPS", "GAL", "QZS", "IRN", "BDT", "GLO", "UTC", "TAI"}) {
    if (time_system_ == known) return;
  }
  Skip(number, "an unknown time system; taken as GPS time");
  time_system_ = "GPS";
}

/// Nanoseconds of GPS time. @param civil  in a time system of the format; "GLO" is UTC without Moscow's hours
std::int64_t ToGpsTime(const CivilTime& civil, const std::string& system) {
  const Time_gbt time = ToTime(civil);
  std::int64_t shift_s = 0;
  if (system == "BDT") shift_s = kBdsTimeBehindGps_s;
  if (system == "TAI") shift_s = -kTaiAheadOfGps_s;
  if (system == "UTC" || system == "GLO") shift_s = LeapSecondsAt(time);
  return (time.time + shift_s) * kNanosecondsPerSecond + std::llround(time.sec * 1e9);
}

void Sp3File::TakeEpoch(std::string_view line, long number) {
  CivilTime civil;
  epoch_ns_.reset();
  if (!ParseCivil(Field(line, 3, 4), Field(line, 8, 2), Field(line, 11, 2), Field(line, 14, 2),
                  Field(line, 17, 2), Field(line, 20, 11), civil)) {
    return Skip(number, "an epoch line without a date; its positions skipped");
  }
  epoch_ns_ = ToGpsTime(civil, time_system_);
  ++epochs_;
}

bool Sp3File::ReadPosition(std::string_view line, PrecisePoint& point) const {
  double squares = 0;
  std::array<double, 3> read = {};
  for (std::size_t axis = 0; axis < 3; ++axis) {
    if (ParseDecimal(Field(line, 4 + 14 * axis, 14), read[axis]) != FieldState::kNumber) return false;
    read[axis] *= kMetresPerKilometre;
    squares += read[axis] * read[axis];
  }
  if (squares == 0) return true;
  const double radius = std::sqrt(squares);
  if (!(radius > kMinRadius_m && radius < kMaxRadius_m)) return false;
  point.position_m = read;
  return true;
}

bool Sp3File::ReadClock(std::string_view line, PrecisePoint& point) const {
  double clock_us = 0;
  const FieldState state = ParseDecimal(Field(line, 46, 14), clock_us);
  if (state == FieldState::kBad) return false;
  if (state == FieldState::kBlank || clock_us >= kAbsentClock_us) return true;
  if (!(std::fabs(clock_us * kMicrosecond_s) < kMaxClock_s)) return false;
  point.clock_s = clock_us * kMicrosecond_s;
  return true;
}

std::uint8_t FlagsOf(std::string_view line) {
  const auto flag = [&](std::size_t column, char letter, std::uint8_t bit) -> unsigned {
    return line.size() > column && line[column] == letter ? bit : 0U;
  };
  return static_cast<std::uint8_t>(flag(74, 'E', kClockEvent) | flag(75, 'P', kClockPredicted) |
                                   flag(78, 'M', kManeuver) | flag(79, 'P', kOrbitPredicted));
}

void Sp3File::TakePosition(std::string_view line, long number) {
  if (!epoch_ns_) {
    if (epochs_ == 0) Skip(number, "positions before the first epoch line skipped");
    return;
  }
  char letter = ' ';
  int satellite = 0;
  if (!ParseSatellite(Field(line, 1, 3), letter, satellite))
    return Skip(number, "a position of an unreadable satellite skipped");
  if (kLetters.find(letter) == std::string_view::npos)
    return Skip(number, std::string("positions of system ") + letter + " ignored");
  PrecisePoint point;
  point.time_ns = *epoch_ns_;
  if (!ReadPosition(line, point)) return Skip(number, "a position that is not one of a satellite skipped");
  if (!ReadClock(line, point)) Skip(number, "a clock that is not a number of microseconds taken as missing");
  if (std::isnan(point.position_m[0])) return;
  point.flags = FlagsOf(line);
  points_[{letter, static_cast<std::uint8_t>(satellite)}].push_back(point);
  ++count_;
}

void Sp3File::CheckWhole(long number) {
  if (!ended_) {
    Skip(number, "the file ends without EOF");
  } else if (epochs_ < epochs_stated_) {
    Skip(number, "fewer epochs than the first line states");
  }
}

bool IsPredicted(const PrecisePoint& point) { return (point.flags & kOrbitPredicted) != 0; }

/// In the order of time, each time once.
void Merge(std::vector<PrecisePoint>& points, const std::vector<PrecisePoint>& more) {
  points.insert(points.end(), more.begin(), more.end());
  std::stable_sort(points.begin(), points.end(), [](const PrecisePoint& a, const PrecisePoint& b) {
    return a.time_ns != b.time_ns ? a.time_ns < b.time_ns : IsPredicted(a) < IsPredicted(b);
  });
  const auto same = [](const PrecisePoint& a, const PrecisePoint& b) { return a.time_ns == b.time_ns; };
  points.erase(std::unique(points.begin(), points.end(), same), points.end());
}

std::size_t CountOf(const PreciseOrbits& orbits) {
  std::size_t count = 0;
  for (const auto& [satellite, points] : orbits.satellites) count += points.size();
  return count;
}

}  // namespace

bool IsSp3Line(std::string_view line) {
  const auto digit = [](char c) { return c >= '0' && c <= '9'; };
  return line.size() > 6 && line[0] == '#' && line[1] >= 'a' && line[1] <= 'z' &&
         (line[2] == 'P' || line[2] == 'V') && std::all_of(line.begin() + 3, line.begin() + 7, digit);
}

bool IsSp3File(const std::string& path) {
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(path, ignored)) return false;  // a pipe can be read once only
  try {
    Diagnostics unused;
    LineReader lines(OpenBytes(path, unused));
    std::string_view line;
    return lines.Next(line) && IsSp3Line(line);
  } catch (const std::exception&) {
    return false;
  }
}

void ReadPreciseOrbits(std::unique_ptr<ByteSource> source, const std::string& name, Diagnostics& diagnostics,
                       const InputLimits& limits, PreciseOrbits& orbits) {
  LineReader lines(std::move(source));
  const std::size_t there = CountOf(orbits);
  const std::size_t most = limits.max_records - std::min(limits.max_records, there);
  for (const auto& [satellite, points] : Sp3File(name, diagnostics).Read(lines, most)) {
    Merge(orbits.satellites[satellite], points);
  }
}

void ReadPreciseOrbits(const std::string& path, Diagnostics& diagnostics, const InputLimits& limits,
                       PreciseOrbits& orbits) {
  ReadPreciseOrbits(OpenBytes(path, diagnostics, limits), path, diagnostics, limits, orbits);
}

}  // namespace orsolva_host
