#include "orv/convert/Identify.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <utility>

#include "orv/convert/internal/OneDatum.h"
#include "orv/core/internal/Number.h"
#include "orv/core/internal/Text.h"
#include "orv/datum/DatumDef.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/projection/internal/MapPlaces.h"
#include "orv/projection/internal/ProjectionTables.h"
#include "orv/system/CSList.h"
#include "orv/system/ORVDef.h"
#include "orv/system/internal/Georeferenced.h"

namespace orv {

namespace {

using internal::EmptyIfNull;
using internal::Georeferenced;
using internal::ShortestNumber;

constexpr double kNotMeasured = std::numeric_limits<double>::quiet_NaN();
/// Projections that are written otherwise are measured for so many of the nearest systems.
constexpr size_t kMostMeasured = 60;
constexpr size_t kFewDifferent = 3;

const ProjectionDef* Projected(const ORVDef& system) {
  return system.HasProjection(true, true) ? system.GetProjection() : nullptr;
}

// ---- differences -----------------------------------------------------------------------------------------

/// How far two definitions are from each other: what differs, and a number by which misses are ordered.
struct Gap {
  double size = 0.0;
  std::vector<SystemDifference> differences;

  void Add(double weight, std::string what, std::string asked, std::string known) {
    size += weight;
    differences.push_back({std::move(what), std::move(asked), std::move(known)});
  }
};

/// A difference of `unit` weighs a half more than the least one, a huge one twice as much.
double Weight(double difference, double unit) {
  const double units = std::fabs(difference) / unit;
  return 1.0 + (std::isfinite(units) ? units / (1.0 + units) : 1.0);
}

std::string EllipsoidText(const EllipsoidDef& ellipsoid) {
  const double f = ellipsoid.GetFlattening();
  return internal::Format("%s%sa=%s, %s", EmptyIfNull(ellipsoid.GetName()), ellipsoid.GetName() ? ": " : "",
                          ShortestNumber(ellipsoid.GetMajorRadius()).c_str(),
                          f == 0.0 ? "a sphere" : ("rf=" + ShortestNumber(1.0 / f)).c_str());
}

/// UTM is Transverse Mercator with customary values; its parameters stand in the block whichever it is.
bool SameFamily(ProjectionMethod a, ProjectionMethod b) {
  const auto isTransverse = [](ProjectionMethod m) {
    return m == ProjectionMethodUTM || m == ProjectionMethodTransverseMercator;
  };
  return a == b || (isTransverse(a) && isTransverse(b));
}

void CompareProjections(const ProjectionDef& asked, const ProjectionDef& known, Gap& gap) {
  const ProjectionMethod method = asked.GetMethod(), other = known.GetMethod();
  if (method != other) {
    gap.Add(SameFamily(method, other) ? 0.25 : 20.0, "Method", ProjectionDef::MethodToName(method),
            ProjectionDef::MethodToName(other));
  }
  if (!asked.GetEllipsoid()->CompareParameters(known.GetEllipsoid(), true)) {
    gap.Add(Weight(asked.GetEllipsoid()->GetMajorRadius() - known.GetEllipsoid()->GetMajorRadius(), 1000.0),
            "Ellipsoid", EllipsoidText(*asked.GetEllipsoid()), EllipsoidText(*known.GetEllipsoid()));
  }
  for (int number = ProjectionParameterIDScale; number <= ProjectionParameterIDUOffset; ++number) {
    const auto id = static_cast<ProjectionParameterID>(number);
    const bool isUsed = asked.UsesParameter(id), isUsedThere = known.UsesParameter(id);
    const bool isFlag = ProjectionDef::ParameterDataType(id) == ORVDataTypeIDBool;
    // A flag of one method only, as UTM's bSouth, shows in the false origin.
    if (isFlag ? !(isUsed && isUsedThere) : !(isUsed || isUsedThere)) continue;
    const double here = asked.GetParameter(id), there = known.GetParameter(id);
    if (here == there) continue;
    const double unit = internal::IsAngle(id)                                                ? 10.0
                        : id == ProjectionParameterIDXOrg || id == ProjectionParameterIDYOrg ? 1e6
                                                                                             : 1e-3;
    const auto text = [isFlag](double value) {
      return isFlag ? std::string(value != 0.0 ? "true" : "false") : ShortestNumber(value);
    };
    gap.Add(Weight(here - there, unit), ProjectionDef::ParameterName(id), text(here), text(there));
  }
}

std::string DatumText(const DatumDef* datum) {
  if (!datum) return "none";
  const std::string name = EmptyIfNull(datum->GetName() ? datum->GetName() : datum->GetToken());
  const char* const method = DatumDef::MethodToName(datum->GetMethod());
  return internal::Format("%s (%s)", name.empty() ? "unnamed" : name.c_str(), method ? method : "no method");
}

void CompareDatums(const ORVDef& asked, const ORVDef& known, Gap& gap) {
  const DatumDef *const here = asked.GetDatum(), *const there = known.GetDatum();
  if (!here && !there) return;
  if (here && there && internal::IsOneDatum(*here, *there)) return;
  if (here && there && here->GetPOSCNumber() != 0 && here->GetPOSCNumber() == there->GetPOSCNumber()) {
    gap.Add(1.0, "Datum Parameters", DatumText(here), DatumText(there));
  } else {
    gap.Add(3.0, "Datum", DatumText(here), DatumText(there));
  }
}

Gap GapBetween(const ORVDef& asked, const ORVDef& known) {
  Gap gap;
  const ProjectionDef* const here = Projected(asked);
  const ProjectionDef* const there = Projected(known);
  if (here && there) {
    CompareProjections(*here, *there, gap);
  } else if (here || there) {
    gap.Add(100.0, "Method", here ? ProjectionDef::MethodToName(here->GetMethod()) : "geographic",
            there ? ProjectionDef::MethodToName(there->GetMethod()) : "geographic");
  }
  CompareDatums(asked, known, gap);
  if (asked.HasWarp() != known.HasWarp()) {
    gap.Add(1.0, "Warp", asked.HasWarp() ? "one" : "none", known.HasWarp() ? "one" : "none");
  }
  return gap;
}

bool IsProjectionMatter(const SystemDifference& difference) {
  return difference.what != "Datum" && difference.what != "Datum Parameters" && difference.what != "Warp";
}

// ---- the systems -----------------------------------------------------------------------------------------

std::vector<SystemMatch> EqualSystems(const CSDef& system) {
  std::vector<int> positions;
  ORVKnownSystemsList.FindSystem(system, false, positions);
  // The list takes all datums of method Unknown for one.
  if (const ORVDef* const asked = Georeferenced(system); asked && asked->GetDatum()) {
    std::erase_if(positions, [asked](int position) {
      const ORVDef* const known = Georeferenced(*ORVKnownSystemsList.Enum(position));
      return known && known->GetDatum() && !internal::IsOneDatum(*asked->GetDatum(), *known->GetDatum());
    });
  }
  std::vector<SystemMatch> matches;
  if (positions.empty()) return matches;
  const int best = ORVKnownSystemsList.FindSystem(system, false, false);
  std::stable_partition(positions.begin(), positions.end(),
                        [best](int position) { return position == best; });
  for (const int position : positions) {
    SystemMatch match;
    match.position = position;
    match.kind = SystemMatch::Equal;
    matches.push_back(match);
  }
  return matches;
}

struct Candidate {
  double size;
  SystemMatch match;
};

/// All known systems that are not equal, with what differs, nearest first; the first of them measured.
std::vector<Candidate> Candidates(const ORVDef& asked, const std::vector<SystemMatch>& equal) {
  std::vector<Candidate> candidates;
  const CSList& list = ORVKnownSystemsList;
  for (int position = list.First(); position <= list.Last(); ++position) {
    const ORVDef* const known = Georeferenced(*list.Enum(position));
    const auto isThis = [position](const SystemMatch& match) { return match.position == position; };
    if (!known || std::any_of(equal.begin(), equal.end(), isThis)) continue;
    Gap gap = GapBetween(asked, *known);
    candidates.push_back(
        {gap.size, {position, SystemMatch::Different, kNotMeasured, std::move(gap.differences)}});
  }
  std::stable_sort(candidates.begin(), candidates.end(),
                   [](const Candidate& a, const Candidate& b) { return a.size < b.size; });

  const ProjectionDef* const projection = Projected(asked);
  if (!projection) return candidates;
  const internal::MapPlaces places(*projection);
  const size_t count = std::min(candidates.size(), kMostMeasured);
  for (size_t i = 0; i < count; ++i) {
    SystemMatch& match = candidates[i].match;
    const auto& known = static_cast<const ORVDef&>(*list.Enum(match.position));
    if (!Projected(known)) continue;
    match.distance = places.DistanceTo(*known.GetProjection());
    const bool isElsewhere =
        !std::all_of(match.differences.begin(), match.differences.end(), &IsProjectionMatter);
    if (!isElsewhere && match.distance <= kAlikeDistance) match.kind = SystemMatch::Alike;
  }
  return candidates;
}

void Shorten(std::vector<SystemMatch>& matches, size_t limit) {
  if (limit != 0 && matches.size() > limit) matches.resize(limit);
}

}  // namespace

std::vector<SystemMatch> ORVIdentifySystem(const CSDef& system, size_t limit) {
  std::vector<SystemMatch> matches = EqualSystems(system);
  const ORVDef* const asked = Georeferenced(system);
  if (!asked) {
    Shorten(matches, limit);
    return matches;  // a local system is what it is: there are no near ones
  }
  const std::vector<Candidate> candidates = Candidates(*asked, matches);
  const auto equal = static_cast<std::ptrdiff_t>(matches.size());
  for (const Candidate& candidate : candidates) {
    if (candidate.match.kind == SystemMatch::Alike) matches.push_back(candidate.match);
  }
  std::stable_sort(matches.begin() + equal, matches.end(),
                   [](const SystemMatch& a, const SystemMatch& b) { return a.distance < b.distance; });
  if (matches.empty()) {
    const size_t count = std::min(candidates.size(), limit != 0 ? limit : kFewDifferent);
    for (size_t i = 0; i < count; ++i) matches.push_back(candidates[i].match);
  }
  Shorten(matches, limit);
  return matches;
}

}  // namespace orv
