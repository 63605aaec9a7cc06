// Generators.h: random values and definitions, and properties checked with a fixed seed.
//
// All draw from the case that Holds is running.  Texts hold every byte but NUL, which ends a C string, and the backslash:
// encoded text writes a backslash as it is and reads one as the beginning of an escape, so a text that holds one does not come
// back (deliberate there). Numbers are finite, of any magnitude.  "Valid" definitions pass their own checks, "any" ones need
// not.  The generating library's templates stay in Generators.cpp: in each test they took ten seconds to compile.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

#include "orv/datum/DatumDef.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/system/ORVDef.h"
#include "orv/system/UCSDef.h"
#include "orv/tables/EllipsoidDef.h"
#include "orv/warp/WarpDef.h"

namespace orv::test {

inline constexpr uint64_t kSeed = 20260104;

/// Whether a property holds; always the same random cases.  A failure prints the shrunk case.
::testing::AssertionResult Holds(const std::function<void()>& property, int cases = 200,
                                 uint64_t seed = kSeed);

/// Ends a case: the property does not hold.
[[noreturn]] void Refute(const char* expression, const char* file, int line);

// ---- values ----------------------------------------------------------------------------------------------

bool AnyBool();
int AnyInt();
size_t AnySize();
/// From low on, below end.
int IntIn(int low, int end);
size_t SizeIn(size_t low, size_t end);
int64_t IntegerIn(int64_t low, int64_t end);
/// A number from low to high, both included, of 2^40 different ones.
double NumberIn(double low, double high);
double AnyNumber();
std::string AnyText();
/// A text that a quoted value of a file can hold.
std::string QuotableText();
/// Some of these characters, each any number of times.
std::string TextOf(const std::vector<char>& characters);
template <class T>
T OneOf(std::initializer_list<T> values) {
  return values.begin()[SizeIn(0, values.size())];
}

// ---- definitions -----------------------------------------------------------------------------------------

/// Any radius above 0 and any flattening from 0 on.
EllipsoidDef AnyEllipsoid();
EllipsoidDef ValidEllipsoid();
DatumDef AnyDatum();
DatumDef ValidDatum();
/// The flags of a projection, which any method may carry.
void SetFlags(ProjectionParameters& p);
ProjectionDef AnyProjection();
ProjectionDef ValidProjection();
void AddPoints(WarpDef& warp, size_t sources, size_t destinations, const std::function<double()>& coordinate);
/// Any method, and lists of control points of any, and different, lengths.
WarpDef AnyWarp();
WarpDef ValidWarp();
/// Valid parts, each there or not.
ORVDef ValidOrvDef();
/// Any scale from 0 on and any warp.
UCSDef AnyUcsDef();

}  // namespace orv::test

/// Inside a property: what has to be true.
#define ORV_HOLDS(expression)                                                \
  do {                                                                       \
    if (!(expression)) ::orv::test::Refute(#expression, __FILE__, __LINE__); \
  } while (false)
