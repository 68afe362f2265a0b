#include "navigation/orbits/bds_orbit_type.h"

namespace gnssqctoolkit {
namespace {

constexpr std::uint8_t kTypes[64] = {
    // clang-format off
     1,  1,  1,  1,  1,                                   //  1 to  5
    16, 16, 16, 16, 16,                                   //  6 to 10
    17, 17, 16, 17,  0, 16,  0, 16,                       // 11 to 18
    17, 17, 17, 17, 17, 17, 17, 17, 17, 17, 17, 17,  0,   // 19 to 31
    17, 17, 17, 17, 17, 17, 17, 17, 17, 17, 17, 17, 17, 17, 17,  // 32 to 46
     0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,       // 47 to 58
     1,  1,  1,                                           // 59 to 61
     0,  0,  0,                                           // 62 to 64
    // clang-format on
};

}  // namespace

int BdsOrbitType(std::int32_t prn) { return prn >= 1 && prn <= 64 ? kTypes[prn - 1] : kBdsTypeUnknown; }

bool BdsIsGeo(std::uint8_t record_type, std::int32_t prn) {
  if (record_type == 1) return true;
  if (record_type == 2) return false;
  return BdsOrbitType(prn) == kBdsTypeGeo;
}

}  // namespace gnssqctoolkit
