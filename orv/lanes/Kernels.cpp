// The kernels of one instruction set.  Compiled once for each, with ORV_ISA, ORV_LANES and the -m flags of
// the set: see CMakeLists.txt.  No inline function of a standard header may be used here (Lanes.h says why).
#include "orv/datum/BursaWolf.h"
#include "orv/datum/Molodensky.h"
#include "orv/datum/NTv2Shift.h"
#include "orv/datum/NadconShift.h"
#include "orv/datum/Regression.h"
#include "orv/lanes/Dispatch.h"
#include "orv/lanes/Frame.h"
#include "orv/projection/ProjAzimuthalEquidistant.h"
#include "orv/projection/ProjBonne.h"
#include "orv/projection/ProjCassini.h"
#include "orv/projection/ProjEckert4.h"
#include "orv/projection/ProjEckert6.h"
#include "orv/projection/ProjEquidistantConic.h"
#include "orv/projection/ProjEquidistantCylindrical.h"
#include "orv/projection/ProjGnomonic.h"
#include "orv/projection/ProjHotine.h"
#include "orv/projection/ProjLambertAzimuthal.h"
#include "orv/projection/ProjLambertConformalConic.h"
#include "orv/projection/ProjMercator.h"
#include "orv/projection/ProjMiller.h"
#include "orv/projection/ProjMollweide.h"
#include "orv/projection/ProjObliqueMercator.h"
#include "orv/projection/ProjOrthographic.h"
#include "orv/projection/ProjPolyconic.h"
#include "orv/projection/ProjRobinson.h"
#include "orv/projection/ProjRobinsonSterling.h"
#include "orv/projection/ProjSinusoidal.h"
#include "orv/projection/ProjStereographic.h"
#include "orv/projection/ProjTranAlbers.h"
#include "orv/projection/ProjTransverseMercator.h"
#include "orv/projection/ProjVanDerGrinten.h"
#include "orv/shared/RegistrationWarp.h"
#include "orv/warp/WarpTranCoeff.h"
#include "orv/warp/WarpTranHelmert.h"
#include "orv/warp/WarpTranOffset.h"
#include "orv/warp/WarpTranOrder3.h"

#define ORV_PASTE_(a, b) a##b
#define ORV_PASTE(a, b) ORV_PASTE_(a, b)
#define ORV_QUOTE_(a) #a
#define ORV_QUOTE(a) ORV_QUOTE_(a)

namespace orv {

namespace ORV_ISA {

ORV_KERNEL inline void RunInverseUtm(const TransverseMercator& engine, double* xy, std::size_t n) {
  const TransverseMercator c = engine;
  Each<kNextBlock>(xy, n,
                   [&c](Point p) { return OnPlottable(p, [&c](Point q) { return InverseUtm(c, q); }); });
}

template <int kMethod>
ORV_KERNEL void RunRegistration(const RegistrationWarp& warp, double* xy, std::size_t n) {
  const RegistrationWarp c = warp;
  Each<kNextBlock>(
      xy, n, [&c](Point p) { return OnUnmarkedPoints(p, [&c](Point q) { return Forward<kMethod>(c, q); }); });
}

ORV_KERNEL inline void RunForwardNadcon(const NadconSet& set, double* xy, std::size_t n) {
  const NadconSet c = set;
  Each(xy, n, [&c](Point p) { return Forward(c, p); });
}
ORV_KERNEL inline void RunInverseNadcon(const NadconSet& set, double* xy, std::size_t n) {
  const NadconSet c = set;
  Each(xy, n, [&c](Point p) { return Inverse(c, p); });
}

ORV_KERNEL inline void RunForwardNTv2(const NTv2Set& set, double* xy, std::size_t n) {
  const NTv2Cells* last = nullptr;
  Each(xy, n, [&](Point p) {
    Point out = p;
    EachGrid(set, p, last, [&](const NTv2Cells& g, Mask lanes) {
      const Point there = Forward(g, OnLanes(p, lanes, g.west, g.south), lanes);
      out = {Select(lanes, there.x, out.x), Select(lanes, there.y, out.y)};
    });
    return out;
  });
}
ORV_KERNEL inline void RunInverseNTv2(const NTv2Set& set, double* xy, std::size_t n) {
  const NTv2Cells* last = nullptr;
  NTv2Searches searches;
  EachGroup(xy, n, [&](double* points, std::size_t first) {
    Point p;
    Load(points, p.x, p.y);
    EachGrid(set, p, last, [&](const NTv2Cells& g, Mask lanes) { searches.Add(g, points, p, lanes); });
    if (n - first <= kLanes) searches.Finish();  // the last group
  });
}

template <class E>
inline constexpr lanes::EngineKernels<E> kEngine = {RunForward<E>, RunInverse<E>};

}  // namespace ORV_ISA

namespace lanes {

extern const KernelTable ORV_PASTE(kTable_, ORV_ISA);
const KernelTable ORV_PASTE(kTable_, ORV_ISA) = {
    ORV_QUOTE(ORV_ISA),
    ORV_LANES,

    ORV_ISA::RunCheckMarks,
    ORV_ISA::RunToRadians,
    ORV_ISA::RunMultiply,
    ORV_ISA::RunBeforeForward,
    ORV_ISA::RunAfterForward,
    ORV_ISA::RunBeforeInverse,
    ORV_ISA::RunAfterInverse,
    ORV_ISA::RunBeforeShift,
    ORV_ISA::RunAfterShift,

    ORV_ISA::kEngine<Mercator>,
    ORV_ISA::kEngine<Miller>,
    ORV_ISA::kEngine<EquidistantCylindrical>,
    ORV_ISA::kEngine<TransverseMercator>,
    {ORV_ISA::RunForward<TransverseMercator>, ORV_ISA::RunInverseUtm},
    ORV_ISA::kEngine<Cassini>,
    ORV_ISA::kEngine<ObliqueMercator>,
    ORV_ISA::kEngine<Hotine>,
    ORV_ISA::kEngine<LambertConformalConic>,
    ORV_ISA::kEngine<Albers>,
    ORV_ISA::kEngine<EquidistantConic>,
    ORV_ISA::kEngine<Polyconic>,
    ORV_ISA::kEngine<Bonne>,
    ORV_ISA::kEngine<Stereographic>,
    ORV_ISA::kEngine<Orthographic>,
    ORV_ISA::kEngine<Gnomonic>,
    ORV_ISA::kEngine<AzimuthalEquidistant>,
    ORV_ISA::kEngine<LambertAzimuthal>,
    ORV_ISA::kEngine<Sinusoidal>,
    ORV_ISA::kEngine<Mollweide>,
    ORV_ISA::kEngine<Eckert4>,
    ORV_ISA::kEngine<Eckert6>,
    ORV_ISA::kEngine<Robinson>,
    ORV_ISA::kEngine<RobinsonSterling>,
    ORV_ISA::kEngine<VanDerGrinten>,

    ORV_ISA::RunShift<Molodensky>,
    ORV_ISA::RunShift<BursaWolf>,
    ORV_ISA::RunShift<Regression>,
    {ORV_ISA::RunForwardNadcon, ORV_ISA::RunInverseNadcon},
    {ORV_ISA::RunForwardNTv2, ORV_ISA::RunInverseNTv2},

    ORV_ISA::RunWarp<WarpOffset>,
    ORV_ISA::RunWarp<WarpHelmert>,
    ORV_ISA::RunWarp<WarpOrder3<0>>,
    ORV_ISA::RunWarp<WarpOrder3<1>>,
    ORV_ISA::RunWarp<WarpOrder3<2>>,
    ORV_ISA::RunWarp<WarpOrder3<3>>,
    ORV_ISA::RunWarp<WarpCoeff>,
    {ORV_ISA::RunRegistration<0>, ORV_ISA::RunRegistration<1>, ORV_ISA::RunRegistration<2>,
     ORV_ISA::RunRegistration<3>, ORV_ISA::RunRegistration<4>, ORV_ISA::RunRegistration<5>},
};

}  // namespace lanes
}  // namespace orv
