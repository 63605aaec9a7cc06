// Angle.h: degrees and radians.  Each conversion exists once, in this order of operations.
#pragma once

namespace orv::internal {

inline constexpr double kPi = 3.141592653589793;

inline double ToRadians(double degrees) { return degrees * kPi / 180.0; }
inline double ToDegrees(double radians) { return radians * 180.0 / kPi; }

}  // namespace orv::internal
