#include "orv/datum/internal/RoutePlanner.h"

#include <algorithm>
#include <cstdint>
#include <map>

#include "orv/core/internal/Fail.h"

ORV_UNIT("DatumConverter")

namespace orv::internal {

namespace {

constexpr int kMostDepth = 4;  // the deepest level of a search; the first is 0

/// Datums by number: the source, the destination, and the known ones by their index, which begins at 2.
using Node = int;
constexpr Node kSource = 0;
constexpr Node kDest = 1;

/// The least depth at which each pair of nodes has failed.
///
/// A pair that failed at one depth fails at every greater one: the deeper search is the same with branches
/// cut off, and meets no datum that the other did not meet.
class Failures {
 public:
  explicit Failures(size_t nodes) : m_Rows(nodes) {}

  /// More than kMostDepth when the pair has not failed yet.
  int LeastDepth(Node source, Node dest) const {
    const std::vector<int8_t>& row = m_Rows[static_cast<size_t>(source)];
    return row.empty() ? kMostDepth + 1 : row[static_cast<size_t>(dest)];
  }
  void Add(Node source, Node dest, int depth) {
    std::vector<int8_t>& row = m_Rows[static_cast<size_t>(source)];
    if (row.empty()) row.assign(m_Rows.size(), kMostDepth + 1);
    row[static_cast<size_t>(dest)] = static_cast<int8_t>(depth);
  }

 private:
  std::vector<std::vector<int8_t>> m_Rows;  // a row is filled when its source first fails
};

bool IsInvertible(DatumMethod method) {
  return method == DatumMethodNone || method == DatumMethodMolodensky || method == DatumMethodBursaWolf ||
         method == DatumMethodNADCON;
}

class RoutePlanner {
 public:
  RoutePlanner(const DatumDef& source, const DatumDef& dest, const DatumList& known,
               const std::vector<DatumMethod>& allowed, std::vector<PlannedStep>& route)
      : m_Source(source),
        m_Dest(dest),
        m_Known(known),
        m_Allowed(allowed),
        m_Route(route),
        m_Failures(static_cast<size_t>(known.Last()) + 1) {}

  /// Leaves a route from one node to the other; `depth` is at most kMostDepth.
  bool Plan(Node source, Node dest, int depth);

 private:
  const DatumDef& At(Node node) const {
    return node == kSource ? m_Source : node == kDest ? m_Dest : *m_Known.Enum(node);
  }
  bool IsAllowed(DatumMethod method) const {
    return m_Allowed.empty() || std::find(m_Allowed.begin(), m_Allowed.end(), method) != m_Allowed.end();
  }

  // A step of a route; routes are built from the front.
  static PlannedStep Forward(const DatumDef& datum) { return {PlannedStep::Forward, &datum}; }
  static PlannedStep Backward(const DatumDef& datum) { return {PlannedStep::Backward, &datum}; }
  static PlannedStep Identity() { return {PlannedStep::Identity, nullptr}; }

  /// Checks both datums and tries what needs no deeper search.
  bool PlanWithoutOthers(const DatumDef& s, const DatumDef& d);
  bool IdenticalDatums(const DatumDef& s, const DatumDef& d);
  bool SingleStep(const DatumDef& s, const DatumDef& d);
  bool TwoStepWithCommonTarget(const DatumDef& s, const DatumDef& d);
  bool BothSpecial(const DatumDef& s, const DatumDef& d);
  bool MultiStepRecursive(Node source, Node dest, int depth);
  bool OtherSameSpecial(Node source, Node dest, int depth);
  bool OtherSamePOSC(Node source, Node dest, int depth);

  /// Known datums of a special value, or of a POSC number, in list order; looked up once.
  const std::vector<Node>& WithSpecial(DatumTarget special);
  const std::vector<Node>& WithPOSC(int posc);
  template <class Matches>
  std::vector<Node> Collect(Matches matches) const;

  const DatumDef& m_Source;
  const DatumDef& m_Dest;
  const DatumList& m_Known;
  const std::vector<DatumMethod>& m_Allowed;
  std::vector<PlannedStep>& m_Route;
  Failures m_Failures;
  std::map<DatumTarget, std::vector<Node>> m_BySpecial;
  std::map<int, std::vector<Node>> m_ByPOSC;
};

bool RoutePlanner::Plan(Node source, Node dest, int depth) {
  const int failedAt = m_Failures.LeastDepth(source, dest);
  if (failedAt <= depth) return false;
  m_Route.clear();
  // What does not depend on the depth has failed with the pair, too.
  const bool bNew = failedAt > kMostDepth;
  if (bNew && PlanWithoutOthers(At(source), At(dest))) return true;
  const bool found = MultiStepRecursive(source, dest, depth) || OtherSameSpecial(source, dest, depth) ||
                     OtherSamePOSC(source, dest, depth);
  if (!found) m_Failures.Add(source, dest, depth);
  return found;
}

bool RoutePlanner::PlanWithoutOthers(const DatumDef& s, const DatumDef& d) {
  if (s.IsUnknown()) return ORV_FAIL(ErrBadParameter, "Invalid conversion method in source datum");
  if (d.IsUnknown()) return ORV_FAIL(ErrBadParameter, "Invalid conversion method in destination datum");
  if (s.CheckParameters() != DatumParameterIDNone) {
    return ORV_FAIL(ErrBadParameter, "Invalid parameters in source datum");
  }
  if (d.CheckParameters() != DatumParameterIDNone) {
    return ORV_FAIL(ErrBadParameter, "Invalid parameters in destination datum");
  }
  return IdenticalDatums(s, d) || SingleStep(s, d) || TwoStepWithCommonTarget(s, d) || BothSpecial(s, d);
}

bool RoutePlanner::IdenticalDatums(const DatumDef& s, const DatumDef& d) {
  const bool bSameRole = s.GetSpecial() != DatumTargetNone && s.GetSpecial() == d.GetSpecial();
  if (!bSameRole && !s.CompareParameters(&d)) return false;
  m_Route = {Identity()};
  return true;
}

bool RoutePlanner::SingleStep(const DatumDef& s, const DatumDef& d) {
  if (s.GetTarget() == d.GetSpecial()) {
    // Deliberate: when S may not be used, D is not tried either.
    if (!IsAllowed(s.GetMethod())) return false;
    m_Route = {Forward(s)};
    return true;
  }
  if (d.GetTarget() == s.GetSpecial() && IsInvertible(d.GetMethod()) && IsAllowed(d.GetMethod())) {
    m_Route = {Backward(d)};
    return true;
  }
  return false;
}

bool RoutePlanner::TwoStepWithCommonTarget(const DatumDef& s, const DatumDef& d) {
  // Deliberate: one allowed method of the two is enough.
  if (!IsAllowed(s.GetMethod()) && !IsAllowed(d.GetMethod())) return false;
  if (s.GetTarget() != d.GetTarget() || !IsInvertible(d.GetMethod())) return false;
  m_Route = {Forward(s), Backward(d)};
  return true;
}

bool RoutePlanner::BothSpecial(const DatumDef& s, const DatumDef& d) {
  if (s.GetSpecial() == DatumTargetNone || d.GetSpecial() == DatumTargetNone || m_Known.Count() < 2) {
    return false;
  }
  for (Node node = m_Known.First(); node <= m_Known.Last(); ++node) {
    const DatumDef& k = At(node);
    PlannedStep first = Identity();
    if (s.GetTarget() == k.GetSpecial() && IsAllowed(s.GetMethod())) {
      first = Forward(s);
    } else if (s.GetSpecial() != k.GetSpecial()) {
      continue;
    }
    PlannedStep second = Identity();
    if (k.GetSpecial() == d.GetSpecial()) {
      second = Identity();
    } else if (k.GetTarget() == d.GetSpecial() && IsAllowed(k.GetMethod())) {
      second = Forward(k);
    } else if (d.GetTarget() == k.GetSpecial() && IsInvertible(d.GetMethod())) {
      second = Backward(d);
    } else {
      continue;
    }
    m_Route = {first, second};
    return true;
  }
  return false;
}

bool RoutePlanner::MultiStepRecursive(Node source, Node dest, int depth) {
  const DatumDef& s = At(source);
  const std::vector<Node>& targets = WithSpecial(s.GetTarget());
  if (targets.empty()) {
    return ORV_FAIL(ErrCorrupt,
                    "Master datum list has no datums with special datum code matching source datum's target "
                    "code! This may indicate a software installation problem or a problem with the ORV "
                    "configuration file(s).");
  }
  if (depth == kMostDepth) return false;
  for (const Node k : targets) {
    if (Plan(k, dest, depth + 1)) {
      m_Route.insert(m_Route.begin(), Forward(s));
      return true;
    }
  }
  return false;
}

bool RoutePlanner::OtherSameSpecial(Node source, Node dest, int depth) {
  if (depth == kMostDepth) return false;
  const DatumTarget from = At(source).GetSpecial();
  const DatumTarget to = At(dest).GetSpecial();
  if (from != DatumTargetNone) {
    for (const Node k : WithSpecial(from)) {
      if (Plan(k, dest, depth + 1)) return true;
    }
  }
  if (to != DatumTargetNone) {
    for (const Node k : WithSpecial(to)) {
      if (Plan(source, k, depth + 1)) return true;
    }
  }
  return false;
}

bool RoutePlanner::OtherSamePOSC(Node source, Node dest, int depth) {
  const int posc = At(dest).GetPOSCNumber();
  if (posc == 0 || depth == kMostDepth) return false;
  for (const Node k : WithPOSC(posc)) {
    if (Plan(source, k, depth + 1)) return true;
  }
  return false;
}

const std::vector<Node>& RoutePlanner::WithSpecial(DatumTarget special) {
  const auto found = m_BySpecial.find(special);
  if (found != m_BySpecial.end()) return found->second;
  const auto matches = [special](const DatumDef& datum) { return datum.GetSpecial() == special; };
  return m_BySpecial.emplace(special, Collect(matches)).first->second;
}

const std::vector<Node>& RoutePlanner::WithPOSC(int posc) {
  const auto found = m_ByPOSC.find(posc);
  if (found != m_ByPOSC.end()) return found->second;
  const auto matches = [posc](const DatumDef& datum) { return datum.GetPOSCNumber() == posc; };
  return m_ByPOSC.emplace(posc, Collect(matches)).first->second;
}

template <class Matches>
std::vector<Node> RoutePlanner::Collect(Matches matches) const {
  std::vector<Node> nodes;
  for (Node node = m_Known.First(); node <= m_Known.Last(); ++node) {
    if (matches(At(node))) nodes.push_back(node);
  }
  return nodes;
}

}  // namespace

bool PlanRoute(const DatumDef& source, const DatumDef& dest, const DatumList& known,
               const std::vector<DatumMethod>& allowed, std::vector<PlannedStep>& route) {
  std::vector<PlannedStep> found;
  route.clear();
  if (!RoutePlanner(source, dest, known, allowed, found).Plan(kSource, kDest, 0)) return false;
  route = std::move(found);
  return true;
}

}  // namespace orv::internal
