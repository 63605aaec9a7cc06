#include "orv/convert/DatumRoute.h"

#include "orv/convert/internal/DatumSteps.h"
#include "orv/convert/internal/GridPlaces.h"
#include "orv/core/ORVGlobals.h"
#include "orv/datum/DatumConverter.h"
#include "orv/datum/DatumList.h"
#include "orv/datum/GridFiles.h"
#include "orv/datum/GridShift.h"
#include "orv/datum/internal/RoutePlanner.h"

namespace orv {

namespace {

/// Says of a step that needs grids which they are and whether they are there, by loading or finding them as a
/// conversion would.
void TellGrids(DatumStep& step) {
  const DatumMethod method = step.datum.GetMethod();
  if (method == DatumMethodNADCON) {
    const char* const folder = ORVGetNadconGridPath();
    step.grids = folder ? folder : std::string(internal::kNadconFiles) + ", in one of the usual folders";
    step.gridsFound = internal::Grids().LoadNadcon();
  } else if (method == DatumMethodNTV2) {
    const char* const name = ORVGetNTv2GridFile();
    step.gridsFound = name && ORVFindConfigFile(name, step.grids);
    if (!step.gridsFound) step.grids = name ? name : "an NTv2 file, whose name is not set";
  }
}

}  // namespace

std::vector<orv::DatumStep> internal::PlanDatumSteps(const DatumDef& from, const DatumDef& to) {
  DatumConverter(&from, &to).Initialize();  // raises when there is no way
  const DatumList& known = ORVKnownDatumsList;
  std::vector<internal::PlannedStep> plan;
  internal::PlanRoute(from, to, known, {}, plan);
  std::vector<orv::DatumStep> steps;
  for (const internal::PlannedStep& planned : plan) {
    orv::DatumStep step;
    if (planned.kind != internal::PlannedStep::Identity) {
      step.direction =
          planned.kind == internal::PlannedStep::Forward ? orv::DatumStep::Forward : orv::DatumStep::Backward;
      step.datum = *planned.datum;
      const int target = known.FindSpecial(step.datum.GetParameters()->target, known.First());
      if (target != 0) step.target = *known.Enum(target);
    }
    steps.push_back(step);
  }
  return steps;
}

std::vector<DatumStep> ORVPlanDatumRoute(const DatumDef& from, const DatumDef& to) {
  std::vector<DatumStep> steps = internal::PlanDatumSteps(from, to);
  for (DatumStep& step : steps) TellGrids(step);
  return steps;
}

}  // namespace orv
