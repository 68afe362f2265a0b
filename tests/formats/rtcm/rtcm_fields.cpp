// Fields of RTCM 3 messages as JSON, and random messages, for the comparison with independent decoders
// (oracles.py).
//
// usage: rtcm_fields dump FILE               a line of JSON per frame: [DF number, integer, value] of each
// field
//        rtcm_fields random COUNT SEED FILE  frames of every decoded type with random fields
//        rtcm_fields epochs FILE SECONDS     decoded epochs; SECONDS: GPS time near the recording, or 0
#include <cinttypes>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

#include "host/formats/rtcm/decoder.h"
#include "host/formats/rtcm/frame.h"
#include "host/formats/rtcm/msm_signals.h"
#include "host/formats/rtcm/reader.h"

namespace {

using namespace orsolva_host::rtcm;

std::string Triple(int data_field, std::int64_t raw, double scale, bool invalid) {
  char text[96];
  if (invalid) {
    std::snprintf(text, sizeof text, "[%d,%" PRId64 ",null]", data_field, raw);
  } else {
    std::snprintf(text, sizeof text, "[%d,%" PRId64 ",%.17g]", data_field, raw,
                  static_cast<double>(raw) * scale);
  }
  return text;
}

std::string Joined(const std::vector<std::string>& parts) {
  std::string text;
  for (const std::string& part : parts) text += (text.empty() ? "" : ",") + part;
  return "[" + text + "]";
}

template <class Values>
std::string RowsText(std::span<const FieldRow> rows, const Values& values) {
  std::vector<std::string> parts;
  for (const FieldRow& row : rows) {
    const std::int64_t raw = values[row.term];
    const bool phase =
        row.data_field == 12 || row.data_field == 18 || row.data_field == 42 || row.data_field == 48;
    const bool range = row.data_field == 17 || row.data_field == 47;
    const bool invalid = (phase && raw == kInvalidPhase20) || (range && raw == kInvalidRange14);
    parts.push_back(Triple(row.data_field, raw, row.scale, invalid));
  }
  return Joined(parts);
}

template <class Row>
std::string ColumnsText(std::span<const MsmColumn<Row>> columns, int kind, const Row& row) {
  std::vector<std::string> parts;
  for (const MsmColumn<Row>& column : columns) {
    if (!column.In(kind)) continue;
    const std::int32_t raw = row.*column.member;
    parts.push_back(Triple(column.data_field, raw, column.scale, raw == column.invalid));
  }
  return Joined(parts);
}

std::string MsmText(const MsmMessage& m) {
  std::vector<std::string> satellites;
  std::vector<std::string> cells;
  for (const MsmSatellite& row : m.satellites) {
    const auto id = MsmSatelliteAt(m.type.system, row.number);
    satellites.push_back("{\"place\":" + std::to_string(row.number) + ",\"name\":\"" +
                         (id ? orsolva_host::NameOf(*id) : "") +
                         "\",\"fields\":" + ColumnsText(MsmSatelliteColumns(), m.type.kind, row) + "}");
  }
  for (const MsmCell& cell : m.cells) {
    const auto code = MsmSignal(m.type.system, cell.signal);
    cells.push_back(
        "{\"satellite\":" + std::to_string(m.satellites[static_cast<std::size_t>(cell.satellite)].number) +
        ",\"signal\":\"" + (code ? orsolva_host::NameOf(*code) : "") +
        "\",\"fields\":" + ColumnsText(MsmCellColumns(), m.type.kind, cell) + "}");
  }
  return "\"head\":" + RowsText(MsmHeaderRows(m.type.system), m.header) +
         ",\"mask\":" + std::to_string(m.cell_mask) + ",\"satellites\":" + Joined(satellites) +
         ",\"cells\":" + Joined(cells);
}

std::string LegacyText(const LegacyMessage& m) {
  std::vector<std::string> satellites;
  for (const auto& row : m.satellites) satellites.push_back(RowsText(LegacySatelliteRows(m.message), row));
  return "\"head\":" + RowsText(LegacyHeaderRows(m.message), m.header) + ",\"rows\":" + Joined(satellites);
}

std::string Quoted(const std::string& text) {
  std::string out = "\"";
  for (const char c : text) {
    char code[8];
    std::snprintf(code, sizeof code, "\\u%04x", static_cast<unsigned>(static_cast<unsigned char>(c)));
    out += code;
  }
  return out + "\"";
}

std::string BiasText(const std::optional<double>& bias) { return bias ? std::to_string(*bias) : "null"; }

std::string StationText(std::string_view message) {
  StationDescription s;
  if (!TakeStation(message, s)) return "\"damaged\":true";
  std::string text = "\"texts\":[" + Quoted(s.antenna) + "," + Quoted(s.antenna_serial) + "," +
                     Quoted(s.receiver) + "," + Quoted(s.firmware) + "," + Quoted(s.receiver_serial) +
                     "],\"setup\":" + std::to_string(s.antenna_setup.value_or(-1));
  if (s.glonass_biases) {
    const GlonassBiases& b = *s.glonass_biases;
    text += ",\"biases\":[" + BiasText(b.l1_ca) + "," + BiasText(b.l1_p) + "," + BiasText(b.l2_ca) + "," +
            BiasText(b.l2_p) + "]";
  }
  return text;
}

std::string ContentText(int type, std::string_view message) {
  if (const auto m = ReadMsm(message)) return MsmText(*m);
  if (const auto m = ReadLegacy(message)) return LegacyText(*m);
  if (const auto m = ReadEphemeris(message)) return "\"fields\":" + RowsText(EphemerisRows(type), m->values);
  if (const std::span<const FieldRow> rows = PositionRows(type); !rows.empty()) {
    std::array<std::int64_t, position::kPositionTerms> values = {};
    BitReader bits(message);
    ReadFields(bits, rows, values);
    return "\"fields\":" + RowsText(rows, values);
  }
  if (const auto m = ReadText(message)) {
    return "\"text\":" + Quoted(m->text) + ",\"date\":[" + std::to_string(m->modified_julian_day) + "," +
           std::to_string(m->second_of_day) + "]";
  }
  if (const auto m = ReadSystemParameters(message)) {
    return "\"leap\":" + std::to_string(m->leap_seconds.value_or(255)) + ",\"date\":[" +
           std::to_string(m->modified_julian_day) + "," + std::to_string(m->second_of_day) + "]";
  }
  return IsDecoded(type) ? StationText(message) : "\"undecoded\":true";
}

std::string BytesOf(const char* path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void Dump(const char* path) {
  FrameScanner frames;
  frames.Append(BytesOf(path));
  frames.Finish();
  while (const auto message = frames.Next()) {
    BitReader bits(*message);
    const auto type = static_cast<int>(bits.Unsigned(12));
    std::string hex;
    for (const char c : *message) {
      for (const int shift : {4, 0})
        hex.push_back("0123456789abcdef"[static_cast<unsigned char>(c) >> shift & 15]);
    }
    std::printf("{\"type\":%d,\"bytes\":\"%s\",%s}\n", type, hex.c_str(),
                ContentText(type, *message).c_str());
  }
}

/// Random fields of every kind of message. Masks hold signals that are defined, and cells that fit.
class RandomMessages {
 public:
  explicit RandomMessages(std::uint64_t seed) : random_(seed) {}

  std::string Next() {
    switch (Below(5)) {
      case 0:
        return Fixed(kEphemerides[Below(std::size(kEphemerides))]);
      case 1:
        return Legacy(kLegacy[Below(std::size(kLegacy))]);
      case 2:
        return Fixed(Below(2) == 0 ? 1005 : 1006);
      default:
        return Msm();
    }
  }

 private:
  static constexpr int kEphemerides[] = {1019, 1020, 1041, 1042, 1044, 1045, 1046};
  static constexpr int kLegacy[] = {1001, 1002, 1003, 1004, 1009, 1010, 1011, 1012};
  static constexpr char kSystems[] = {'G', 'R', 'E', 'S', 'J', 'C', 'I'};

  std::size_t Below(std::size_t n) { return random_() % n; }

  /// Any bits; now and then those of a limit.
  std::int64_t Value(int bits, FieldKind kind) {
    std::uint64_t value = random_();
    const std::size_t choice = Below(20);
    if (choice == 0) value = 0;
    if (choice == 1) value = ~std::uint64_t{0};
    if (choice == 2) value = std::uint64_t{1} << (bits - 1);
    BitWriter writer;
    writer.Unsigned(value, bits);
    BitReader reader(writer.Bytes());
    return ReadField(reader, bits, kind);
  }

  std::string Fixed(int type) {
    std::array<std::int64_t, 256> values = {};
    const auto rows = PositionRows(type).empty() ? EphemerisRows(type) : PositionRows(type);
    for (const FieldRow& row : rows) values[row.term] = Value(row.bits, row.kind);
    values[rows[0].term] = type;
    BitWriter bits;
    WriteFields(bits, rows, values);
    return bits.Bytes();
  }

  std::string Legacy(int type) {
    LegacyMessage m;
    m.message = type;
    for (const FieldRow& row : LegacyHeaderRows(type)) m.header[row.term] = Value(row.bits, row.kind);
    m.satellites.resize(Below(32));
    for (auto& satellite : m.satellites) {
      for (const FieldRow& row : LegacySatelliteRows(type)) satellite[row.term] = Value(row.bits, row.kind);
    }
    return WriteLegacy(m);
  }

  std::string Msm() {
    MsmMessage m;
    m.type = {kSystems[Below(std::size(kSystems))], static_cast<int>(1 + Below(7))};
    for (const FieldRow& row : MsmHeaderRows(m.type.system)) m.header[row.term] = Value(row.bits, row.kind);
    std::vector<int> signals;
    for (int place = 1; place <= 32; ++place) {
      if (MsmSignal(m.type.system, place) && Below(3) == 0 && signals.size() < 8) signals.push_back(place);
    }
    const std::size_t most = signals.empty() ? 0 : 64 / signals.size();
    for (int place = 1; place <= 64 && m.satellites.size() < most; ++place) {
      if (MsmSatelliteAt(m.type.system, place) && Below(6) == 0) AddSatellite(place, signals, m);
    }
    return WriteMsm(m);
  }

  void AddSatellite(int place, const std::vector<int>& signals, MsmMessage& m) {
    MsmSatellite satellite;
    satellite.number = place;
    for (const auto& column : MsmSatelliteColumns()) {
      satellite.*column.member = static_cast<std::int32_t>(Value(column.bits, column.field_kind));
    }
    m.satellites.push_back(satellite);
    for (const int signal : signals) {
      if (Below(4) == 0) continue;
      MsmCell cell;
      cell.satellite = static_cast<int>(m.satellites.size()) - 1;
      cell.signal = signal;
      for (const auto& column : MsmCellColumns()) {
        if (column.In(m.type.kind)) {
          cell.*column.member = static_cast<std::int32_t>(Value(column.bits, column.field_kind));
        }
      }
      m.cells.push_back(cell);
    }
  }

  std::mt19937_64 random_;
};

void Random(std::uint64_t count, std::uint64_t seed, const char* path) {
  std::ofstream file(path, std::ios::binary);
  RandomMessages messages(seed);
  for (; count > 0; --count) file << FrameOf(messages.Next());
}

class FileBytes : public orsolva_host::ByteSource {
 public:
  explicit FileBytes(const char* path) : file_(path, std::ios::binary) {}
  std::size_t Read(char* out, std::size_t size) override {
    file_.read(out, static_cast<std::streamsize>(size));
    return static_cast<std::size_t>(file_.gcount());
  }

 private:
  std::ifstream file_;
};

void Epochs(const char* path, std::int64_t near_s) {
  orsolva_host::Diagnostics notices;
  ReaderOptions options;
  if (near_s != 0) options.near_ns = near_s * orsolva_host::kNanosecondsPerSecond;
  Reader reader(std::make_unique<FileBytes>(path), path, notices, options);
  orsolva_host::ObservationEpoch epoch;
  std::size_t epochs = 0;
  while (reader.Next(epoch)) {
    ++epochs;
    std::printf("> %" PRId64 " %zu\n", epoch.time_ns, epoch.satellites.size());
    for (const auto& satellite : epoch.satellites) {
      for (std::size_t i = 0; i < satellite.signal_count; ++i) {
        const auto& s = epoch.signals[satellite.first_signal + i];
        std::printf("%s %s %.4f %.4f %.4f %.4f %d\n", NameOf(satellite.id).c_str(), NameOf(s.code).c_str(),
                    s.pseudorange_m, s.phase_cycles, s.doppler_hz, s.snr_dbhz, s.loss_of_lock);
      }
    }
  }
  const auto broadcast = reader.TakeBroadcast();
  std::fprintf(stderr, "%zu epochs, %zu + %zu ephemerides, %s, %s\n", epochs, broadcast.kepler.size(),
               broadcast.state_vectors.size(), reader.Station().antenna.c_str(),
               reader.Station().receiver.c_str());
  for (const auto& notice : notices.Notices())
    std::fprintf(stderr, "%ld x %s\n", notice.count, notice.text.c_str());
}

}  // namespace

int main(int argc, char** argv) {
  const std::string command = argc > 1 ? argv[1] : "";
  if (command == "dump" && argc == 3) {
    Dump(argv[2]);
  } else if (command == "random" && argc == 5) {
    Random(std::strtoull(argv[2], nullptr, 10), std::strtoull(argv[3], nullptr, 10), argv[4]);
  } else if (command == "epochs" && argc == 4) {
    Epochs(argv[2], std::strtoll(argv[3], nullptr, 10));
  } else {
    std::fprintf(stderr, "usage: rtcm_fields dump FILE | random COUNT SEED FILE | epochs FILE SECONDS\n");
    return 2;
  }
  return 0;
}
