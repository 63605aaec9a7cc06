// The latitude from the conformal latitude: by series up to an eccentricity of 0.087, by iteration beyond.
#include "orv/projection/ConformalLatitude.h"

#include <gtest/gtest.h>

#include <cmath>

#include "orv/projection/internal/ProjSetUp.h"

namespace {

using orv::internal::MakeLatitudeSeries;
using orv::one::LatitudeOf;

struct LatitudeRow {
  double e, t;  // t: tan(pi/4 - phi/2) / ((1 - e sin phi)/(1 + e sin phi))^(e/2), rounded
  double
      latitude;  // of that double t, radians: the root of its logarithm's equation in 40 digits (mpmath, findroot)
};
const LatitudeRow kLatitudes[] = {
    // clang-format off
    {0.0818191908426215, 0x1.63b43c3921a9ap+13, -1.570621793869697097},
    {0.0818191908426215, 0x1.35d7b438554b6p+1, -0.79063415115343124273},
    {0.0818191908426215, 0x1.000122dc257e2p+0, -0.000017453292519993846325},
    {0.0818191908426215, 0x1.9cfbbb22f6e20p-1, 0.21467549799530255051},
    {0.0818191908426215, 0x1.2898514c5f22cp-1, 0.5235987755982988964},
    {0.0818191908426215, 0x1.5d746da8072ffp-2, 0.91629785729702297962},
    {0.0818191908426215, 0x1.58e5f07a13b06p-3, 1.2391837689159739728},
    {0.0818191908426215, 0x1.26c9f498d887dp-17, 1.5707788735023765926},
    {0.0824832567634179, 0x1.63aa416525244p+13, -1.570621793869697097},
    {0.0824832567634179, 0x1.35d189e5ddf3fp+1, -0.79063415115343119574},
    {0.0824832567634179, 0x1.000122d3f7ab7p+0, -0.000017453292519921263476},
    {0.0824832567634179, 0x1.9cfe305b7385bp-1, 0.21467549799530259736},
    {0.0824832567634179, 0x1.289c76eb899cfp-1, 0.52359877559829892625},
    {0.0824832567634179, 0x1.5d7c31c900002p-2, 0.91629785729702305643},
    {0.0824832567634179, 0x1.58ef15dadbe45p-3, 1.2391837689159739754},
    {0.0824832567634179, 0x1.26d23a230c3e3p-17, 1.5707788735023765926},
    {0.087, 0x1.63643f0615404p+13, -1.570621793869697097},
    {0.087, 0x1.35a64a037e9b7p+1, -0.79063415115343126815},
    {0.087, 0x1.0001229a95287p+0, -0.000017453292519897283278},
    {0.087, 0x1.9d0f6f83aba3cp-1, 0.21467549799530249314},
    {0.087, 0x1.28b9918f5b26ep-1, 0.52359877559829882265},
    {0.087, 0x1.5db2b629c1d1ap-2, 0.91629785729702303257},
    {0.087, 0x1.592f4c61964e4p-3, 1.2391837689159740038},
    {0.087, 0x1.270c4df2c6b16p-17, 1.5707788735023765926},
    {0.0, 0x1.66193f3a9df2ep+13, -1.570621793869697097},
    {0.0, 0x1.375276b25b0dep+1, -0.7906341511534312915},
    {0.0, 0x1.000124d1f9893p+0, -0.000017453292520024264111},
    {0.0, 0x1.9c650cc7f9092p-1, 0.21467549799530250291},
    {0.0, 0x1.279a74590331cp-1, 0.52359877559829892325},
    {0.0, 0x1.5b99e5b13976dp-2, 0.91629785729702301272},
    {0.0, 0x1.56b7b8c9db27dp-3, 1.2391837689159740251},
    {0.0, 0x1.24d15211b9355p-17, 1.5707788735023765926},
    // clang-format on
};

TEST(ConformalLatitude, TheSeriesGivesTheLatitudeToItsLastDigits) {
  for (const LatitudeRow& row : kLatitudes) {
    const double found = LatitudeOf(row.t, row.e, MakeLatitudeSeries(row.e));
    EXPECT_NEAR(row.latitude, found, 4.5e-16) << row.e << " " << row.t;  // two units in the last place of 1.5
  }
}

TEST(ConformalLatitude, BeyondItsEccentricityTheIterationStands) {
  const double e = 0.3;
  for (const double t : {1e-40, 0.02, 0.4, 1.0, 1.7, 30.0, 1e40}) {
    const double found = LatitudeOf(t, e, MakeLatitudeSeries(e));
    EXPECT_EQ(LatitudeOf(t, e, 1e-12, 100), found) << t;
    // (7-9) put the other way: t of the latitude that was found.
    const double s = std::sin(found);
    const double back =
        std::tan(0.25 * 3.141592653589793 - 0.5 * found) * std::pow((1 + e * s) / (1 - e * s), 0.5 * e);
    if (t > 1e-30 && t < 1e30) {
      EXPECT_NEAR(1.0, back / t, 1e-12) << t;
    }
  }
}

TEST(ConformalLatitude, PolesAreReachedAndNaNPasses) {
  const double e = 0.0818191908426215;
  const orv::LatitudeSeries series = MakeLatitudeSeries(e);
  constexpr double kHalfPi = 1.5707963267948966;
  EXPECT_EQ(kHalfPi, LatitudeOf(0.0, e, series));
  EXPECT_EQ(kHalfPi, LatitudeOf(std::exp(-orv::one::kLargestLnT), e, series));
  EXPECT_EQ(-kHalfPi, LatitudeOf(std::exp(orv::one::kLargestLnT), e, series));
  EXPECT_EQ(0.0, LatitudeOf(1.0, e, series));
  EXPECT_TRUE(std::isnan(LatitudeOf(std::nan(""), e, series)));
}

}  // namespace
