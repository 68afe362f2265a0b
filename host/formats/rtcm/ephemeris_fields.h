// Layouts of the ephemeris messages (RTCM 10403.3, section 3.5, tables of messages 1019 to 1046).
//
// The standard is sold and was not at hand: numbers, widths and scales of the fields are those of the public
// interface documents of the systems (IS-GPS-200, GLONASS ICD 5.1, Galileo OS SIS ICD, BDS-SIS-ICD B1I,
// IS-QZSS-PNT, IRNSS ICD 1.1), which the messages repeat, in the order that two independent decoders agree on
// (tests/formats/rtcm/oracles.py). Angles are in semicircles as transmitted.
#ifndef ORSOLVA_FORMATS_RTCM_EPHEMERIS_FIELDS_H
#define ORSOLVA_FORMATS_RTCM_EPHEMERIS_FIELDS_H

#include <span>

#include "host/formats/rtcm/fields.h"

namespace orsolva_host::rtcm {

/// Places in the values of an ephemeris message.
namespace term {
enum Ephemeris : std::uint8_t {
  kMessage,
  kSatellite,
  // Keplerian messages
  kWeek,  ///< GPS, QZSS, NavIC: modulo 1024; Galileo 4096; BDS 8192
  kAccuracy,
  kCodeOnL2,
  kIssue,         ///< IODE, IODnav, AODE, IODEC
  kIssueOfClock,  ///< IODC, AODC
  kToc,
  kAf2,
  kAf1,
  kAf0,
  kCrs,
  kDeltaN,
  kM0,
  kCuc,
  kEccentricity,
  kCus,
  kSqrtA,
  kToe,
  kCic,
  kOmega0,
  kCis,
  kI0,
  kCrc,
  kOmega,
  kOmegaDot,
  kIdot,
  kGroupDelay1,
  kGroupDelay2,
  kHealth,   ///< Galileo: of E5a or E5b; NavIC: L5
  kHealth2,  ///< Galileo: of E1-B; NavIC: S
  kDataInvalid,
  kDataInvalid2,
  kL2DataOff,
  kFitInterval,
  kReserved,
  kReserved2,
  kReserved3,
  // GLONASS
  kChannel,  ///< plus 7
  kAlmanacHealth,
  kAlmanacHealthGiven,
  kP1,
  kTkHours,
  kTkMinutes,
  kTkHalfMinutes,
  kHealthMsb,
  kP2,
  kTb,
  kVelocityX,
  kPositionX,
  kAccelerationX,
  kVelocityY,
  kPositionY,
  kAccelerationY,
  kVelocityZ,
  kPositionZ,
  kAccelerationZ,
  kP3,
  kGamma,
  kP,
  kLn3,
  kTau,
  kDeltaTau,
  kAge,
  kP4,
  kFt,
  kNt,
  kM,
  kAdditional,
  kNa,
  kTauC,
  kN4,
  kTauGps,
  kLn5,
  kEphemerisTerms
};
}  // namespace term

/// The rows of 1019, 1020, 1041, 1042, 1044, 1045 and 1046; empty for another message.
std::span<const FieldRow> EphemerisRows(int message);

}  // namespace orsolva_host::rtcm

#endif  // ORSOLVA_FORMATS_RTCM_EPHEMERIS_FIELDS_H
