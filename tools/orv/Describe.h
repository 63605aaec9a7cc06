// Describe.h: definitions and routes as JSON, and JSON as text for people.
//
// Commands build one description and print it either way, so that both always tell the same.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "orv/convert/DatumRoute.h"
#include "orv/system/CSDef.h"

namespace orv::tool {

using Json = nlohmann::ordered_json;

/// Members that have nothing to tell (no comment, no code) are left out.
Json DescribeEllipsoid(const EllipsoidDef& ellipsoid);
/// With its method, target and the parameters that the method uses.
Json DescribeDatum(const DatumDef& datum);
/// Type, unit, projection with the parameters that it uses, ellipsoid, datum, warp.
Json DescribeSystem(const CSDef& system);
/// An array of steps.
Json DescribeRoute(const std::vector<DatumStep>& steps);

/// One line for each member: its key and its value, values below each other; objects and arrays follow their
/// key, indented.  The fields of a comment, between which it has "; ", stand below each other.  Ends in a line feed.
std::string ForPeople(const Json& description);

/// Lines of JSON that end in a line feed; bytes that are no UTF-8 become U+FFFD.
std::string JsonOf(const Json& description);
/// Writes a description to standard output: as JSON of several lines, or for people.
void WriteDescription(const Json& description, bool asJson);

}  // namespace orv::tool
