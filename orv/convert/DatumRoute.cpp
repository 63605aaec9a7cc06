#include "orv/convert/DatumRoute.h"

#include "orv/datum/DatumConverter.h"
#include "orv/datum/DatumList.h"
#include "orv/datum/internal/RoutePlanner.h"

namespace orv {

std::vector<DatumStep> ORVPlanDatumRoute(const DatumDef& from, const DatumDef& to) {
  DatumConverter(&from, &to).Initialize();  // raises when there is no way
  const DatumList& known = ORVKnownDatumsList;
  std::vector<internal::PlannedStep> plan;
  internal::PlanRoute(from, to, known, {}, plan);
  std::vector<DatumStep> steps;
  for (const internal::PlannedStep& planned : plan) {
    DatumStep step;
    if (planned.kind != internal::PlannedStep::Identity) {
      step.direction =
          planned.kind == internal::PlannedStep::Forward ? DatumStep::Forward : DatumStep::Backward;
      step.datum = *planned.datum;
      const int target = known.FindSpecial(step.datum.GetParameters()->target, known.First());
      if (target != 0) step.target = *known.Enum(target);
    }
    steps.push_back(step);
  }
  return steps;
}

}  // namespace orv
