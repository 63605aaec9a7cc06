// The kernels of every instruction set, and the choice among them.
//
// A kernel works in place on n points, interleaved doubles (x, y), so that no type of another header enters a
// kernel unit.  Any n is taken, 0 included; multiples of KernelTable::lanes are quickest (a partial group is
// padded inside the kernel, on the stack).  No kernel raises an error, allocates, or keeps state: all may run
// on any number of threads.  All sets give the same bits for the same input, so that it cannot be told which
// one has worked, nor how the points were grouped into calls.
#pragma once

#include <cstddef>

namespace orv {

struct Mercator;
struct Miller;
struct EquidistantCylindrical;
struct TransverseMercator;
struct Cassini;
struct LambertConformalConic;
struct Albers;
struct EquidistantConic;
struct Polyconic;
struct Bonne;
struct ObliqueMercator;
struct Hotine;
struct Stereographic;
struct Orthographic;
struct Gnomonic;
struct AzimuthalEquidistant;
struct LambertAzimuthal;
struct Sinusoidal;
struct Mollweide;
struct Eckert4;
struct Eckert6;
struct Robinson;
struct RobinsonSterling;
struct VanDerGrinten;
struct Molodensky;
struct BursaWolf;
struct Regression;
struct NadconSet;
struct NTv2Set;
struct WarpOffset;
struct WarpHelmert;
template <int kOrder>
struct WarpOrder3;
struct WarpCoeff;
struct RegistrationWarp;

namespace lanes {

/// The unplottable marker: the largest finite double.
inline constexpr double kMarker = 1.7976931348623157e308;

/// One projection: radians to metres (forward) and back (inverse), before false origin and scale.
///
/// A point with the marker in either coordinate passes untouched.  A point that the engine cannot compute
/// gets the marker in both.  A result that overflows to infinity stays: checkMarks finds it.
template <class E>
struct EngineKernels {
  using Run = void (*)(const E&, double* xy, std::size_t n);
  Run forward, inverse;
};

/// One datum method, degrees to degrees.  Markers as in EngineKernels.
template <class D>
using DatumKernel = void (*)(const D&, double* xy, std::size_t n);

/// A set of grids of shifts, both ways.  A point with the marker in either coordinate, and one that cannot be shifted,
/// passes untouched.  A shift that is NaN or infinite stays.
template <class G>
using GridKernels = EngineKernels<G>;

/// One warp, source plane to destination plane.
///
/// A point with the marker in either coordinate passes untouched.  Any other result stays as it is, NaN and infinity
/// included: warps mark nothing.
template <class W>
using WarpKernel = void (*)(const W&, double* xy, std::size_t n);

/// All kernels of one instruction set.
struct KernelTable {
  const char* isa;    ///< "one", "sse2", "avx2", "avx512", "neon"
  std::size_t lanes;  ///< points worked on at once: 1, 4, 8 or 16

  // ---- passes --------------------------------------------------------------------------------------------
  //
  // A marker is left alone by all of them.

  /// A point with a NaN or infinite coordinate gets the marker in both.  True when any point got it so or
  /// held the marker in either coordinate before (a point half marked stays half marked).
  bool (*checkMarks)(double* xy, std::size_t n);

  void (*toRadians)(double* xy, std::size_t n);           ///< v * kPi / 180.0
  void (*multiply)(double* xy, std::size_t n, double k);  ///< v * k

  // ---- passes of the projector ---------------------------------------------------------------------------

  /// Degrees to what an engine takes.  Coordinate by coordinate: x = fmod(x, 360), which keeps the sign; y = fmod(y, 180)
  /// and then folded into [-90, 90]: 180 - y above 90, -180 - y below -90.  A NaN or infinite coordinate alone becomes
  /// the marker.  Then v * kPi / 180.0.
  void (*beforeForward)(double* xy, std::size_t n);

  /// What an engine gave, to the map: checkMarks, then v + (dx, dy), where that is not (0, 0), then v * k.
  bool (*afterForward)(double* xy, std::size_t n, double dx, double dy, double k);

  /// The map to what an engine takes: checkMarks, then v / k, then v - (dx, dy), where that is not (0, 0).
  bool (*beforeInverse)(double* xy, std::size_t n, double k, double dx, double dy);

  /// What an engine gave, to degrees: checkMarks, then v * 180.0 / kPi, then into range as beforeForward.
  bool (*afterInverse)(double* xy, std::size_t n);

  // ---- passes of the datum converter ---------------------------------------------------------------------

  /// checkMarks, then degrees into range as beforeForward, but a point with the marker in either coordinate is skipped
  /// whole.  Then x in [-360, -180) goes up by 360 and its offset becomes -360; x in (180, 360] goes down by 360 and its
  /// offset becomes +360; every other offset, those of marked points included, becomes 0.
  bool (*beforeShift)(double* xy, std::size_t n, double* offsets);

  /// checkMarks, then adds its offset to the x of every point without a marker.
  bool (*afterShift)(double* xy, std::size_t n, const double* offsets);

  // ---- projections ---------------------------------------------------------------------------------------

  EngineKernels<Mercator> mercator;
  EngineKernels<Miller> miller;
  EngineKernels<EquidistantCylindrical> equidistantCylindrical;
  EngineKernels<TransverseMercator> transverseMercator;
  EngineKernels<TransverseMercator> utm;  ///< the same forward; an inverse with one more term in each series
  EngineKernels<Cassini> cassini;
  EngineKernels<ObliqueMercator> obliqueMercator;
  EngineKernels<Hotine> hotine;
  EngineKernels<LambertConformalConic> lambertConformalConic;
  EngineKernels<Albers> albers;
  EngineKernels<EquidistantConic> equidistantConic;
  EngineKernels<Polyconic> polyconic;
  EngineKernels<Bonne> bonne;
  EngineKernels<Stereographic> stereographic;
  EngineKernels<Orthographic> orthographic;
  EngineKernels<Gnomonic> gnomonic;
  EngineKernels<AzimuthalEquidistant> azimuthalEquidistant;
  EngineKernels<LambertAzimuthal> lambertAzimuthal;
  EngineKernels<Sinusoidal> sinusoidal;
  EngineKernels<Mollweide> mollweide;
  EngineKernels<Eckert4> eckert4;
  EngineKernels<Eckert6> eckert6;
  EngineKernels<Robinson> robinson;
  EngineKernels<RobinsonSterling> robinsonSterling;
  EngineKernels<VanDerGrinten> vanDerGrinten;

  // ---- datum methods -------------------------------------------------------------------------------------

  DatumKernel<Molodensky> molodensky;
  DatumKernel<BursaWolf> bursaWolf;
  DatumKernel<Regression> regression;
  GridKernels<NadconSet> nadcon;  ///< degrees
  GridKernels<NTv2Set> ntv2;      ///< radians

  // ---- warps ---------------------------------------------------------------------------------------------

  WarpKernel<WarpOffset> warpOffset;
  WarpKernel<WarpHelmert> warpHelmert;
  WarpKernel<WarpOrder3<0>> warpOrder0;
  WarpKernel<WarpOrder3<1>> warpOrder1;
  WarpKernel<WarpOrder3<2>> warpOrder2;
  WarpKernel<WarpOrder3<3>> warpOrder3;
  WarpKernel<WarpCoeff> warpCoeff;
  WarpKernel<RegistrationWarp> registration[6];  ///< by shr::WarpingMethod
};

/// The best set that this machine can run, chosen once.
///
/// The environment variable ORV_ISA (one, sse2, avx2, avx512, neon) limits the choice: no set above the one it
/// names is taken, so it is that set or, where machine or build lacks it, the best one below.  An unknown name
/// is ignored.
const KernelTable& Kernels();

/// The quickest set for a call of n points, none above Kernels(): that one itself from nine points on, one lane for one or
/// two, for others the narrowest that takes them in one group, if any does.
const KernelTable& KernelsFor(std::size_t n);

/// The set of that name, or null when this machine or this build lacks it.  For tests and benchmarks.
const KernelTable* KernelsOf(const char* isa);

/// Chooses anew, with `isa` in the place of ORV_ISA; null goes back to the environment's choice.  For tests and
/// benchmarks, which compare the sets in one process.  Not thread-safe: no other thread may be converting points.
void LimitKernels(const char* isa);

}  // namespace lanes
}  // namespace orv
