// Multiple signal messages MSM1 to MSM7 of every system, as transmitted (RTCM 10403.3, section 3.5.16).
//
// A message is a header with masks, columns of satellite data, then columns of signal data: all values of one
// field follow one another. The same tables read and write.
#ifndef ORSOLVA_FORMATS_RTCM_MSM_H
#define ORSOLVA_FORMATS_RTCM_MSM_H

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/formats/rtcm/fields.h"

namespace orsolva_host::rtcm {

/// System and kind of a message type: 1074 is {'G', 4}.
struct MsmType {
  char system = ' ';
  int kind = 0;
};

/// @return absent when the type is no MSM
std::optional<MsmType> MsmTypeOf(int message);
/// 1074 of {'G', 4}; 0 when there is none.
int MessageOf(MsmType type);

/// Places in the values of a header.
namespace msm {
enum Header : std::uint8_t {
  kMessage,
  kStation,
  kDayOfWeek,  ///< GLONASS only
  kTime,       ///< ms of the week, GLONASS of the day
  kMore,
  kIssue,
  kReserved,
  kClockSteering,
  kExternalClock,
  kSmoothing,
  kSmoothingInterval,
  kSatellites,  ///< mask, bit 63 is satellite 1
  kSignals,     ///< mask, bit 31 is signal 1
  kHeaderTerms
};
}  // namespace msm

struct MsmSatellite {
  int number = 0;               ///< 1 to 64, place in the mask
  std::int32_t rough_ms = 0;    ///< 255 is invalid
  std::int32_t extended = 0;    ///< GLONASS: channel plus 7, 15 is not known
  std::int32_t rough_part = 0;  ///< 2^-10 ms
  std::int32_t rough_rate = 0;  ///< m/s, -8192 is invalid
};

struct MsmCell {
  int satellite = 0;  ///< index in MsmMessage::satellites
  int signal = 0;     ///< 1 to 32, place in the mask
  std::int32_t range = 0;
  std::int32_t phase = 0;
  std::int32_t lock = 0;
  std::int32_t half_cycle = 0;
  std::int32_t strength = 0;
  std::int32_t rate = 0;
};

/// A column of satellite or of signal data, in those kinds of MSM whose bit (1 << kind) is set.
template <class Row>
struct MsmColumn {
  std::int32_t Row::*member;
  unsigned kinds;
  std::uint16_t data_field;
  std::uint8_t bits;
  FieldKind field_kind;
  double scale;          ///< unit of the last bit: ms, m/s, dB-Hz
  std::int32_t invalid;  ///< the value that stands for none; kNoInvalid where there is no such value

  static constexpr std::int32_t kNoInvalid = INT32_MIN;
  bool In(int kind) const { return (kinds >> kind & 1) != 0; }
};

std::span<const FieldRow> MsmHeaderRows(char system);
std::span<const MsmColumn<MsmSatellite>> MsmSatelliteColumns();
std::span<const MsmColumn<MsmCell>> MsmCellColumns();

struct MsmMessage {
  MsmType type;
  std::array<std::int64_t, msm::kHeaderTerms> header = {};
  std::uint64_t cell_mask = 0;  ///< satellites by signals, the last one in bit 0
  std::vector<MsmSatellite> satellites;
  std::vector<MsmCell> cells;
};

/// @return absent when the type is no MSM, the masks describe more than 64 cells, or data are missing
std::optional<MsmMessage> ReadMsm(std::string_view message);
/// The header alone, without satellites and cells.
std::optional<MsmMessage> ReadMsmHeader(std::string_view message);

/// Masks are made from satellites and cells, whose order must be that of the masks.
/// @pre at most 64 satellites by signals
std::string WriteMsm(const MsmMessage& message);

}  // namespace orsolva_host::rtcm

#endif  // ORSOLVA_FORMATS_RTCM_MSM_H
