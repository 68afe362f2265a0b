#include "host/report/detail_data.h"

#include <fmt/format.h>
#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>
#include <new>
#include <tuple>
#include <utility>
#include <vector>

#include "host/report/run_events.h"
#include "host/rinex/satellite_names.h"
#include "host/rinex/signal_codes.h"

namespace orsolva_host {
namespace {

constexpr std::size_t kMaxEventsShown = 20'000;

// One name for each EventKind.
constexpr const char* kEventNames[kEventKinds] = {
    "ionospheric_rate", "long_gap", "geometry", "data_gap", "new_ephemeris", "jump", "restart_after_gap"};

enum class Coding { kPlain, kChanges };

/// The columns of all satellites, one after the other.
class Columns {
 public:
  /// @return the place of the column's first byte
  template <class Value>
  std::size_t Add(const std::vector<Value>& values, std::size_t size, Value missing, Coding coding) {
    const std::size_t place = bytes_.size();
    bytes_.resize(place + 2 * size);
    std::uint32_t before = 0;
    for (std::size_t i = 0; i < size; ++i) {
      const auto bits = static_cast<std::uint16_t>(i < values.size() ? values[i] : missing);
      const std::uint32_t kept = coding == Coding::kChanges ? bits - before : bits;
      before = bits;
      bytes_[place + i] = static_cast<char>(kept & 0xffU);
      bytes_[place + size + i] = static_cast<char>((kept >> 8U) & 0xffU);
    }
    return place;
  }
  const std::string& Bytes() const { return bytes_; }

 private:
  std::string bytes_;
};

template <class... Parts>
void Add(std::string& text, fmt::format_string<Parts...> form, Parts&&... parts) {
  fmt::format_to(std::back_inserter(text), form, std::forward<Parts>(parts)...);
}

void Comma(std::string& text) {
  if (text.back() != '[' && text.back() != '{') text += ',';
}

/// Neighbouring rows as [first, count, first, count, ...] in steps of the stride.
void AddRuns(const std::vector<EpochIndex>& epochs, EpochIndex stride, std::string& text) {
  text += "\"runs\":[";
  for (std::size_t i = 0; i < epochs.size();) {
    std::size_t end = i + 1;
    while (end < epochs.size() && epochs[end] == epochs[end - 1] + stride) ++end;
    Comma(text);
    Add(text, "{},{}", epochs[i] / stride, end - i);
    i = end;
  }
  text += ']';
}

void AddArcs(const std::vector<Arc>& arcs, std::string& text) {
  text += ",\"arcs\":[";
  for (const Arc& arc : arcs) {
    Comma(text);
    Add(text, "{},{}", arc.first, arc.last);
  }
  text += ']';
}

void AddSignals(const DetailCollector& detail, const SatelliteColumns& columns, Columns& blob,
                std::string& text) {
  const std::size_t rows = columns.epoch.size();
  const PairColumn* first_pair = nullptr;
  text += ",\"signals\":[";
  for (const SignalColumn& signal : columns.signals) {
    const PairColumn* pair = detail.PairOf(columns, signal.code);
    if (first_pair == nullptr) first_pair = pair;
    Comma(text);
    Add(text, "{{\"signal\":\"{}\",\"snr_values\":{},\"snr\":{}",
        SignalName(columns.satellite.sys, static_cast<int>(signal.code)), signal.values,
        blob.Add<std::uint16_t>(signal.snr, rows, 0, Coding::kChanges));
    if (pair != nullptr) {
      Add(text, ",\"partner\":\"{}\",\"mp_values\":{},\"mp\":{}",
          SignalName(columns.satellite.sys, static_cast<int>(pair->partner)), pair->values,
          blob.Add<std::int16_t>(pair->residual, rows, kNoValue, Coding::kPlain));
    }
    text += '}';
  }
  text += ']';
  if (first_pair == nullptr) return;
  Add(text, ",\"rate_pair\":[\"{}\",\"{}\"],\"rate\":{}",
      SignalName(columns.satellite.sys, static_cast<int>(first_pair->code)),
      SignalName(columns.satellite.sys, static_cast<int>(first_pair->partner)),
      blob.Add<std::int16_t>(first_pair->rate, rows, kNoValue, Coding::kPlain));
}

using SignalKey = std::tuple<int, std::uint32_t>;

struct SignalBins {
  ElevationBins snr;
  ElevationBins squares;
};

void Merge(const ElevationBins& from, ElevationBins& into) {
  for (std::size_t i = 0; i < from.size(); ++i) {
    into[i].count += from[i].count;
    into[i].sum += from[i].sum;
  }
}

void AddBins(const char* name, const ElevationBins& bins, std::string& text) {
  Add(text, ",\"{}\":[", name);
  for (const ElevationBin& bin : bins) {
    Comma(text);
    const bool good = std::isfinite(bin.sum);
    Add(text, "{},{:.6g}", good ? bin.count : 0, good ? bin.sum : 0.0);
  }
  text += ']';
}

/// [count, sum, ...] by 5 degrees of elevation, of every epoch: sums of SNR and of squared residuals.
void AddSignalBins(const DetailCollector& detail, std::string& text) {
  std::map<SignalKey, SignalBins> all;
  for (const auto& [number, columns] : detail.Satellites()) {
    for (const SignalColumn& signal : columns.signals) {
      SignalBins& bins = all[{SystemSlotOfCode(columns.satellite.sys), signal.code}];
      Merge(signal.mean_snr, bins.snr);
      if (const PairColumn* pair = detail.PairOf(columns, signal.code)) Merge(pair->squares, bins.squares);
    }
  }
  text += ",\"bins\":[";
  for (const auto& [key, bins] : all) {
    const auto [slot, code] = key;
    if (slot < 0) continue;
    Comma(text);
    Add(text, "{{\"letter\":\"{}\",\"signal\":\"{}\"", kSystemTable[slot].letter,
        SignalName(kSystemTable[slot].code, static_cast<int>(code)));
    AddBins("snr", bins.snr, text);
    AddBins("mp", bins.squares, text);
    text += '}';
  }
  text += ']';
}

/// [satellite, epoch, kind, elevation in 0.1 degrees, signals as bits] in the order of time.
void AddEventRows(const DetailCollector& detail, const RunEvents& events, std::string& text) {
  text += ",\"events\":[";
  const std::size_t shown = std::min(events.rows.size(), kMaxEventsShown);
  for (std::size_t i = 0; i < shown; ++i) {
    const EventRow& row = events.rows[i];
    Comma(text);
    Add(text, "[{},{},{},{},{}]", row.satellite, row.epoch, static_cast<int>(row.kind), row.elevation,
        row.signals);
  }
  Add(text, "],\"events_left_out\":{}", events.rows.size() - shown + detail.EventsLeftOut());
}

/// [first, end, ...]
void AddSpans(const char* name, const std::vector<EpochSpan>& spans, std::string& text) {
  Add(text, ",\"{}\":[", name);
  for (const EpochSpan& span : spans) {
    Comma(text);
    Add(text, "{},{}", span.first, span.end);
  }
  text += ']';
}

}  // namespace

std::string Base64(std::string_view bytes) {
  static constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const auto byte = [&](std::size_t k) {
      return k < bytes.size() ? static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[k])) : 0U;
    };
    const std::uint32_t group = (byte(i) << 16U) | (byte(i + 1) << 8U) | byte(i + 2);
    text += kDigits[group >> 18U];
    text += kDigits[(group >> 12U) & 63U];
    text += i + 1 < bytes.size() ? kDigits[(group >> 6U) & 63U] : '=';
    text += i + 2 < bytes.size() ? kDigits[group & 63U] : '=';
  }
  return text;
}

std::string Gzip(std::string_view bytes) {
  constexpr int kGzipWindow = 15 + 16;
  constexpr int kMemoryLevel = 8;
  z_stream stream = {};
  if (deflateInit2(&stream, 6, Z_DEFLATED, kGzipWindow, kMemoryLevel, Z_DEFAULT_STRATEGY) != Z_OK) {
    throw std::bad_alloc();
  }
  std::string compressed(deflateBound(&stream, static_cast<uLong>(bytes.size())), '\0');
  // zlib takes a pointer to what it only reads as one to what it may write.
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
  stream.avail_in = static_cast<uInt>(bytes.size());
  stream.next_out = reinterpret_cast<Bytef*>(compressed.data());
  stream.avail_out = static_cast<uInt>(compressed.size());
  deflate(&stream, Z_FINISH);
  compressed.resize(stream.total_out);
  deflateEnd(&stream);
  return compressed;
}

std::string EncodeDetail(const DetailCollector& detail, double cutoff_deg) {
  Columns blob;
  const RunEvents events = EventsOf(detail);
  std::string text = "{";
  Add(text, "\"first_s\":{},\"first_fraction_s\":{},\"interval_s\":{},\"stride\":{},\"least_gap\":{}",
      detail.First().time, detail.First().sec, detail.IntervalS(), detail.Stride(), detail.LeastGap());
  Add(text, ",\"cutoff_deg\":{},\"satellite_epochs\":{},\"event_kinds\":[", cutoff_deg,
      detail.SatelliteEpochs());
  for (const char* name : kEventNames) {
    Comma(text);
    Add(text, "\"{}\"", name);
  }
  text += "],\"satellites\":[";
  auto happened = events.satellites.begin();
  for (const auto& [number, columns] : detail.Satellites()) {
    Comma(text);
    const std::size_t rows = columns.epoch.size();
    Add(text, "{{\"satellite\":\"{}\",\"rows\":{},\"elevation\":{},\"azimuth\":{},",
        NameOf(columns.satellite), rows, blob.Add<std::int16_t>(columns.elevation, rows, 0, Coding::kChanges),
        blob.Add<std::uint16_t>(columns.azimuth, rows, 0, Coding::kChanges));
    AddRuns(columns.epoch, detail.Stride(), text);
    AddArcs(columns.arcs, text);
    AddSpans("gaps", happened->gaps, text);
    Add(text, ",\"geometry_free_slips\":{},\"code_jumps\":{}", happened->geometry_free_slips,
        happened->code_jumps);
    ++happened;
    AddSignals(detail, columns, blob, text);
    text += '}';
  }
  text += ']';
  AddSignalBins(detail, text);
  AddSpans("holes", events.holes, text);
  AddEventRows(detail, events, text);
  text += '}';
  std::string bytes;
  for (unsigned shift = 0; shift < 32; shift += 8) bytes += static_cast<char>((text.size() >> shift) & 0xffU);
  return bytes + text + blob.Bytes();
}

}  // namespace orsolva_host
