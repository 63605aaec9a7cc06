#include "orv/datum/GridShift.h"

namespace orv::internal {

namespace {

/// Stands in until grids can be read: none is ever there.
class NoGrids : public GridShift {
 public:
  bool LoadNadcon() override { return false; }
  void ShiftNadcon(shr::Vec2d*, size_t, bool) override {}
  NTv2Status LoadNTv2() override { return NTv2NotPresent; }
  NTv2Status ShiftNTv2(shr::Vec2d&, bool) override { return NTv2Done; }
};

}  // namespace

GridShift& Grids() {
  static NoGrids grids;
  return grids;
}

}  // namespace orv::internal
