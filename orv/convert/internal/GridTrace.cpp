#include "orv/convert/internal/GridTrace.h"

#include <algorithm>

#include "orv/convert/internal/DatumSteps.h"
#include "orv/core/internal/Angle.h"
#include "orv/core/internal/Marker.h"
#include "orv/datum/NTv2Grid.h"
#include "orv/datum/NadconUtility.h"
#include "orv/lanes/Blocks.h"
#include "orv/lanes/Dispatch.h"

namespace orv::internal {

GridTrace::GridTrace(const DatumDef& from, const DatumDef& to) {
  for (const orv::DatumStep& step : PlanDatumSteps(from, to)) {
    if (step.direction == orv::DatumStep::Nothing) continue;
    DatumParameters p = *step.datum.GetParameters();
    // As the converter has it: backward toggles the flag.
    if (step.direction == orv::DatumStep::Backward) p.inverse = !p.inverse;
    m_Steps.push_back({DatumStep(p, *step.target.GetEllipsoid(), Grids()), p.method == DatumMethodNADCON,
                       p.method == DatumMethodNTV2});
  }
  while (!m_Steps.empty() && !m_Steps.back().run.UsesGrids()) m_Steps.pop_back();
}

GridTrace::Missing GridTrace::FindMissing() const {
  for (const Step& step : m_Steps) {
    if (!step.run.UsesGrids()) continue;
    if (const char* const message = step.run.Prepare())
      return {step.usesNadcon ? DatumMethodNADCON : DatumMethodNTV2, message};
  }
  return {};
}

bool GridTrace::FlagOutside(const shr::Vec2d* points, size_t count, unsigned char* flags) const {
  bool any = false;
  const lanes::KernelTable& kernels = lanes::Kernels();
  for (size_t at = 0; at < count; at += lanes::kBlockPoints) {
    const size_t n = std::min(count - at, lanes::kBlockPoints);
    shr::Vec2d block[lanes::kBlockPoints];
    double offsets[lanes::kBlockPoints];
    std::copy_n(points + at, n, block);
    kernels.beforeShift(&block->x, n, offsets);  // what the converter does in front of its steps
    for (const Step& step : m_Steps) {
      if (step.run.Prepare()) return any;  // the conversion fails here and says so
      const NadconUtility* const nadcon = step.usesNadcon ? LoadedNadcon() : nullptr;
      const NTv2Grid* const ntv2 = step.usesNTv2 ? LoadedNTv2() : nullptr;
      for (size_t i = 0; i < n && (nadcon || ntv2); ++i) {
        if (IsMarked(block[i])) continue;
        const bool inside = nadcon ? nadcon->GridFor(block[i]) != nullptr
                                   : ntv2->GridFor({ToRadians(block[i].x), ToRadians(block[i].y)}) != nullptr;
        if (inside) continue;
        flags[at + i] = 1;
        any = true;
      }
      if (&step != &m_Steps.back()) step.run.Run(&block->x, n);
    }
  }
  return any;
}

}  // namespace orv::internal
