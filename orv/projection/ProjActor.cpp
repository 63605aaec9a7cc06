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
    {ProjectionMethodAlbers,                  &internal::MakeProjectorAlbers},
    {ProjectionMethodBonne,                   &internal::MakeProjectorBonne},
    {ProjectionMethodCassini,                 &internal::MakeProjectorCassini},
    {ProjectionMethodEquidistantConic,        &internal::MakeProjectorEquiConic},
    {ProjectionMethodEquidistantCylindrical,  &internal::MakeProjectorEquiCyl},
    {ProjectionMethodHotine,                  &internal::MakeProjectorHotine},
    {ProjectionMethodLambert,                 &internal::MakeProjectorLambert},
    {ProjectionMethodMercator,                &internal::MakeProjectorMercator},
    {ProjectionMethodMiller,                  &internal::MakeProjectorMiller},
    {ProjectionMethodObliqueMercator,         &internal::MakeProjectorObliqueMercator},
    {ProjectionMethodPolyconic,               &internal::MakeProjectorPolyconic},
    {ProjectionMethodTransverseMercator,      &internal::MakeProjectorTransverseMercator},
    {ProjectionMethodUTM,                     &internal::MakeProjectorUTM},
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
