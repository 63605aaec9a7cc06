#include "orv/projection/ProjActor.h"

#include "orv/projection/internal/ProjEngine.h"

namespace orv {

ProjActor::~ProjActor() = default;

void ProjActor::SetParameters(const ProjectionParameters& radians) { m_Parameters = radians; }

bool ProjActor::Inverse(shr::Vec2d*, size_t) { return false; }

namespace {

struct EngineRow {
  ProjectionMethod method;
  std::unique_ptr<ProjActor> (*make)();
};

// clang-format off
constexpr EngineRow kEngines[] = {
    {ProjectionMethodAlbers,                 &internal::MakeProjectorAlbers},
    {ProjectionMethodAzimuthalEquidistant,   &internal::MakeProjectorAzimuthalEquidistant},
    {ProjectionMethodBonne,                  &internal::MakeProjectorBonne},
    {ProjectionMethodCassini,                &internal::MakeProjectorCassini},
    {ProjectionMethodEckert4,                &internal::MakeProjectorEckert4},
    {ProjectionMethodEckert6,                &internal::MakeProjectorEckert6},
    {ProjectionMethodEquidistantConic,       &internal::MakeProjectorEquiConic},
    {ProjectionMethodEquidistantCylindrical, &internal::MakeProjectorEquiCyl},
    {ProjectionMethodGnomonic,               &internal::MakeProjectorGnomonic},
    {ProjectionMethodHotine,                 &internal::MakeProjectorHotine},
    {ProjectionMethodLambert,                &internal::MakeProjectorLambert},
    {ProjectionMethodLambertAzimuthal,       &internal::MakeProjectorLambertAzimuthal},
    {ProjectionMethodMercator,               &internal::MakeProjectorMercator},
    {ProjectionMethodMiller,                 &internal::MakeProjectorMiller},
    {ProjectionMethodMollweide,              &internal::MakeProjectorMollweide},
    {ProjectionMethodObliqueMercator,        &internal::MakeProjectorObliqueMercator},
    {ProjectionMethodOrthographic,           &internal::MakeProjectorOrtho},
    {ProjectionMethodPolyconic,              &internal::MakeProjectorPolyconic},
    {ProjectionMethodRobinson,               &internal::MakeProjectorRobinson},
    {ProjectionMethodRobinsonSterling,       &internal::MakeProjectorRobinsonSterling},
    {ProjectionMethodSinusoidal,             &internal::MakeProjectorSinusoidal},
    {ProjectionMethodStereographic,          &internal::MakeProjectorPolar},
    {ProjectionMethodTransverseMercator,     &internal::MakeProjectorTransverseMercator},
    {ProjectionMethodUTM,                    &internal::MakeProjectorUTM},
    {ProjectionMethodVanDerGrinten,          &internal::MakeProjectorVanDerGrinten},
};
// clang-format on

}  // namespace

std::unique_ptr<ProjActor> MakeProjActor(ProjectionMethod method) {
  for (const EngineRow& row : kEngines) {
    if (row.method == method) return row.make();
  }
  return nullptr;
}

}  // namespace orv
