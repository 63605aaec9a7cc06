// Cases.h: the cases and what is done once, by subject.
#pragma once

#include <vector>

#include "bench/Harness.h"

namespace orv::bench {

std::vector<Case> EngineCases();
std::vector<Case> DatumCases();
std::vector<Case> WarpCases();
std::vector<Case> SystemCases();
std::vector<Once> OnceCases();

/// Throws when a projection method, a datum method or a warp method of the library has no case.  Subjects of engines and
/// warps are the methods' own names; those of datum methods begin with them.
void RequireEveryMethod(const std::vector<Case>& cases);

}  // namespace orv::bench
