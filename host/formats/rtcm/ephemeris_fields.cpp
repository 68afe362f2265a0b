#include "host/formats/rtcm/ephemeris_fields.h"

namespace orsolva_host::rtcm {
namespace {

using namespace term;

constexpr FieldKind kU = FieldKind::kUnsigned;
constexpr FieldKind kS = FieldKind::kSigned;
constexpr FieldKind kM_ = FieldKind::kSignMagnitude;
constexpr double P(int exponent) { return Power2(exponent); }

// clang-format off
constexpr FieldRow kGps[] = {
    {kMessage,        2, 12, kU, 1},
    {kSatellite,      9,  6, kU, 1},
    {kWeek,          76, 10, kU, 1},
    {kAccuracy,      77,  4, kU, 1},
    {kCodeOnL2,      78,  2, kU, 1},
    {kIdot,          79, 14, kS, P(-43)},
    {kIssue,         71,  8, kU, 1},
    {kToc,           81, 16, kU, 16},
    {kAf2,           82,  8, kS, P(-55)},
    {kAf1,           83, 16, kS, P(-43)},
    {kAf0,           84, 22, kS, P(-31)},
    {kIssueOfClock,  85, 10, kU, 1},
    {kCrs,           86, 16, kS, P(-5)},
    {kDeltaN,        87, 16, kS, P(-43)},
    {kM0,            88, 32, kS, P(-31)},
    {kCuc,           89, 16, kS, P(-29)},
    {kEccentricity,  90, 32, kU, P(-33)},
    {kCus,           91, 16, kS, P(-29)},
    {kSqrtA,         92, 32, kU, P(-19)},
    {kToe,           93, 16, kU, 16},
    {kCic,           94, 16, kS, P(-29)},
    {kOmega0,        95, 32, kS, P(-31)},
    {kCis,           96, 16, kS, P(-29)},
    {kI0,            97, 32, kS, P(-31)},
    {kCrc,           98, 16, kS, P(-5)},
    {kOmega,         99, 32, kS, P(-31)},
    {kOmegaDot,     100, 24, kS, P(-43)},
    {kGroupDelay1,  101,  8, kS, P(-31)},
    {kHealth,       102,  6, kU, 1},
    {kL2DataOff,    103,  1, kU, 1},
    {kFitInterval,  137,  1, kU, 1},
};

// Signed values are sign and magnitude. DF107 is hours, minutes and half-minutes.
constexpr FieldRow kGlonass[] = {
    {kMessage,              2, 12, kU, 1},
    {kSatellite,           38,  6, kU, 1},
    {kChannel,             40,  5, kU, 1},
    {kAlmanacHealth,      104,  1, kU, 1},
    {kAlmanacHealthGiven, 105,  1, kU, 1},
    {kP1,                 106,  2, kU, 1},
    {kTkHours,            107,  5, kU, 1},
    {kTkMinutes,          107,  6, kU, 1},
    {kTkHalfMinutes,      107,  1, kU, 30},
    {kHealthMsb,          108,  1, kU, 1},
    {kP2,                 109,  1, kU, 1},
    {kTb,                 110,  7, kU, 15},
    {kVelocityX,          111, 24, kM_, P(-20)},
    {kPositionX,          112, 27, kM_, P(-11)},
    {kAccelerationX,      113,  5, kM_, P(-30)},
    {kVelocityY,          114, 24, kM_, P(-20)},
    {kPositionY,          115, 27, kM_, P(-11)},
    {kAccelerationY,      116,  5, kM_, P(-30)},
    {kVelocityZ,          117, 24, kM_, P(-20)},
    {kPositionZ,          118, 27, kM_, P(-11)},
    {kAccelerationZ,      119,  5, kM_, P(-30)},
    {kP3,                 120,  1, kU, 1},
    {kGamma,              121, 11, kM_, P(-40)},
    {term::kP,            122,  2, kU, 1},
    {kLn3,                123,  1, kU, 1},
    {kTau,                124, 22, kM_, P(-30)},
    {kDeltaTau,           125,  5, kM_, P(-30)},
    {kAge,                126,  5, kU, 1},
    {kP4,                 127,  1, kU, 1},
    {kFt,                 128,  4, kU, 1},
    {kNt,                 129, 11, kU, 1},
    {term::kM,            130,  2, kU, 1},
    {kAdditional,         131,  1, kU, 1},
    {kNa,                 132, 11, kU, 1},
    {kTauC,               133, 32, kM_, P(-31)},
    {kN4,                 134,  5, kU, 1},
    {kTauGps,             135, 22, kM_, P(-30)},
    {kLn5,                136,  1, kU, 1},
    {kReserved,             1,  7, kU, 1},
};

constexpr FieldRow kNavic[] = {
    {kMessage,        2, 12, kU, 1},
    {kSatellite,    516,  6, kU, 1},
    {kWeek,         517, 10, kU, 1},
    {kAf0,          518, 22, kS, P(-31)},
    {kAf1,          519, 16, kS, P(-43)},
    {kAf2,          520,  8, kS, P(-55)},
    {kAccuracy,     521,  4, kU, 1},
    {kToc,          522, 16, kU, 16},
    {kGroupDelay1,  523,  8, kS, P(-31)},
    {kDeltaN,       524, 22, kS, P(-41)},
    {kIssue,        525,  8, kU, 1},
    {kReserved,     526, 10, kU, 1},
    {kHealth,       527,  1, kU, 1},
    {kHealth2,      528,  1, kU, 1},
    {kCuc,          529, 15, kS, P(-28)},
    {kCus,          530, 15, kS, P(-28)},
    {kCic,          531, 15, kS, P(-28)},
    {kCis,          532, 15, kS, P(-28)},
    {kCrc,          533, 15, kS, P(-4)},
    {kCrs,          534, 15, kS, P(-4)},
    {kIdot,         535, 14, kS, P(-43)},
    {kM0,           536, 32, kS, P(-31)},
    {kToe,          537, 16, kU, 16},
    {kEccentricity, 538, 32, kU, P(-33)},
    {kSqrtA,        539, 32, kU, P(-19)},
    {kOmega0,       540, 32, kS, P(-31)},
    {kOmega,        541, 32, kS, P(-31)},
    {kOmegaDot,     542, 22, kS, P(-41)},
    {kI0,           543, 32, kS, P(-31)},
    {kReserved2,    544,  2, kU, 1},
    {kReserved3,    545,  2, kU, 1},
};

constexpr FieldRow kBds[] = {
    {kMessage,        2, 12, kU, 1},
    {kSatellite,    488,  6, kU, 1},
    {kWeek,         489, 13, kU, 1},
    {kAccuracy,     490,  4, kU, 1},
    {kIdot,         491, 14, kS, P(-43)},
    {kIssue,        492,  5, kU, 1},
    {kToc,          493, 17, kU, 8},
    {kAf2,          494, 11, kS, P(-66)},
    {kAf1,          495, 22, kS, P(-50)},
    {kAf0,          496, 24, kS, P(-33)},
    {kIssueOfClock, 497,  5, kU, 1},
    {kCrs,          498, 18, kS, P(-6)},
    {kDeltaN,       499, 16, kS, P(-43)},
    {kM0,           500, 32, kS, P(-31)},
    {kCuc,          501, 18, kS, P(-31)},
    {kEccentricity, 502, 32, kU, P(-33)},
    {kCus,          503, 18, kS, P(-31)},
    {kSqrtA,        504, 32, kU, P(-19)},
    {kToe,          505, 17, kU, 8},
    {kCic,          506, 18, kS, P(-31)},
    {kOmega0,       507, 32, kS, P(-31)},
    {kCis,          508, 18, kS, P(-31)},
    {kI0,           509, 32, kS, P(-31)},
    {kCrc,          510, 18, kS, P(-6)},
    {kOmega,        511, 32, kS, P(-31)},
    {kOmegaDot,     512, 24, kS, P(-43)},
    {kGroupDelay1,  513, 10, kS, 1e-10},
    {kGroupDelay2,  514, 10, kS, 1e-10},
    {kHealth,       515,  1, kU, 1},
};

constexpr FieldRow kQzss[] = {
    {kMessage,        2, 12, kU, 1},
    {kSatellite,    429,  4, kU, 1},
    {kToc,          430, 16, kU, 16},
    {kAf2,          431,  8, kS, P(-55)},
    {kAf1,          432, 16, kS, P(-43)},
    {kAf0,          433, 22, kS, P(-31)},
    {kIssue,        434,  8, kU, 1},
    {kCrs,          435, 16, kS, P(-5)},
    {kDeltaN,       436, 16, kS, P(-43)},
    {kM0,           437, 32, kS, P(-31)},
    {kCuc,          438, 16, kS, P(-29)},
    {kEccentricity, 439, 32, kU, P(-33)},
    {kCus,          440, 16, kS, P(-29)},
    {kSqrtA,        441, 32, kU, P(-19)},
    {kToe,          442, 16, kU, 16},
    {kCic,          443, 16, kS, P(-29)},
    {kOmega0,       444, 32, kS, P(-31)},
    {kCis,          445, 16, kS, P(-29)},
    {kI0,           446, 32, kS, P(-31)},
    {kCrc,          447, 16, kS, P(-5)},
    {kOmega,        448, 32, kS, P(-31)},
    {kOmegaDot,     449, 24, kS, P(-43)},
    {kIdot,         450, 14, kS, P(-43)},
    {kCodeOnL2,     451,  2, kU, 1},
    {kWeek,         452, 10, kU, 1},
    {kAccuracy,     453,  4, kU, 1},
    {kHealth,       454,  6, kU, 1},
    {kGroupDelay1,  455,  8, kS, P(-31)},
    {kIssueOfClock, 456, 10, kU, 1},
    {kFitInterval,  457,  1, kU, 1},
};

// 1045 (F/NAV) and 1046 (I/NAV) differ in the accuracy's number and in what follows OMEGA-DOT.
#define ORSOLVA_GALILEO_ROWS(accuracy_field) \
    {kMessage,        2, 12, kU, 1},         \
    {kSatellite,    252,  6, kU, 1},         \
    {kWeek,         289, 12, kU, 1},         \
    {kIssue,        290, 10, kU, 1},         \
    {kAccuracy, accuracy_field, 8, kU, 1},   \
    {kIdot,         292, 14, kS, P(-43)},    \
    {kToc,          293, 14, kU, 60},        \
    {kAf2,          294,  6, kS, P(-59)},    \
    {kAf1,          295, 21, kS, P(-46)},    \
    {kAf0,          296, 31, kS, P(-34)},    \
    {kCrs,          297, 16, kS, P(-5)},     \
    {kDeltaN,       298, 16, kS, P(-43)},    \
    {kM0,           299, 32, kS, P(-31)},    \
    {kCuc,          300, 16, kS, P(-29)},    \
    {kEccentricity, 301, 32, kU, P(-33)},    \
    {kCus,          302, 16, kS, P(-29)},    \
    {kSqrtA,        303, 32, kU, P(-19)},    \
    {kToe,          304, 14, kU, 60},        \
    {kCic,          305, 16, kS, P(-29)},    \
    {kOmega0,       306, 32, kS, P(-31)},    \
    {kCis,          307, 16, kS, P(-29)},    \
    {kI0,           308, 32, kS, P(-31)},    \
    {kCrc,          309, 16, kS, P(-5)},     \
    {kOmega,        310, 32, kS, P(-31)},    \
    {kOmegaDot,     311, 24, kS, P(-43)},    \
    {kGroupDelay1,  312, 10, kS, P(-32)}

constexpr FieldRow kGalileoFnav[] = {
    ORSOLVA_GALILEO_ROWS(291),
    {kHealth,       314,  2, kU, 1},
    {kDataInvalid,  315,  1, kU, 1},
    {kReserved,       1,  7, kU, 1},
};

constexpr FieldRow kGalileoInav[] = {
    ORSOLVA_GALILEO_ROWS(286),
    {kGroupDelay2,  313, 10, kS, P(-32)},
    {kHealth,       316,  2, kU, 1},
    {kDataInvalid,  317,  1, kU, 1},
    {kHealth2,      287,  2, kU, 1},
    {kDataInvalid2, 288,  1, kU, 1},
    {kReserved,       1,  2, kU, 1},
};
#undef ORSOLVA_GALILEO_ROWS
// clang-format on

template <std::size_t n>
constexpr int BitsOf(const FieldRow (&rows)[n]) {
  int bits = 0;
  for (const FieldRow& row : rows) bits += row.bits;
  return bits;
}

// Lengths of the messages as the standard's table of messages lists them.
static_assert(BitsOf(kGps) == 488);
static_assert(BitsOf(kGlonass) == 360);
static_assert(BitsOf(kNavic) == 482);
static_assert(BitsOf(kBds) == 511);
static_assert(BitsOf(kQzss) == 485);
static_assert(BitsOf(kGalileoFnav) == 496);
static_assert(BitsOf(kGalileoInav) == 504);

}  // namespace

std::span<const FieldRow> EphemerisRows(int message) {
  switch (message) {
    case 1019:
      return kGps;
    case 1020:
      return kGlonass;
    case 1041:
      return kNavic;
    case 1042:
      return kBds;
    case 1044:
      return kQzss;
    case 1045:
      return kGalileoFnav;
    case 1046:
      return kGalileoInav;
    default:
      return {};
  }
}

}  // namespace orsolva_host::rtcm
