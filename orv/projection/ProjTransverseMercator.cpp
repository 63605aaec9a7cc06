#include "orv/projection/ProjTransverseMercator.h"

#include "orv/projection/internal/ProjEngine.h"
#include "orv/projection/internal/ProjSetUp.h"

ORV_UNIT("ProjTransverseMercator")

namespace orv {

namespace {

constexpr internal::EngineRow<TransverseMercator> kRow = {kUnit, &lanes::KernelTable::transverseMercator,
                                                          internal::InsideWindow, internal::SplitAtWindow};

}  // namespace

std::unique_ptr<ProjActor> internal::MakeProjectorTransverseMercator() {
  return MakeEngine(kRow, &SetUpTransverseMercator);
}

}  // namespace orv
