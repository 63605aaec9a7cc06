#include "orv/projection/ProjectionParameters.h"

namespace orv {

ProjectionParameters::ProjectionParameters() = default;

void ProjectionParameters::Flush() { *this = ProjectionParameters(); }

}  // namespace orv
