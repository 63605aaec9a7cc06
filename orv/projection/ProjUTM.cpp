// UTM: the Transverse Mercator with one more term in each series of the inverse.  Its false origin is the
// business of the definition and the Projector.
#include "orv/projection/internal/ProjEngine.h"
#include "orv/projection/internal/ProjSetUp.h"

ORV_UNIT("ProjUTM")

namespace orv {

namespace {

constexpr internal::EngineRow<TransverseMercator> kRow = {kUnit, &lanes::KernelTable::utm,
                                                          internal::InsideWindow, internal::SplitAtWindow};

}  // namespace

std::unique_ptr<ProjActor> internal::MakeProjectorUTM() { return MakeEngine(kRow, &SetUpTransverseMercator); }

}  // namespace orv
