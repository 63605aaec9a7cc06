#include "orv/datum/internal/RoutePlanner.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "orv/shared/Exception.h"
#include "tests/datum/Datums.h"
#include "tests/support/Raises.h"

namespace orv {
namespace {

using test::Make;
using Methods = std::vector<DatumMethod>;

const char* const kNoSpecial =
    "Master datum list has no datums with special datum code matching source datum's target code! This may "
    "indicate a software installation problem or a problem with the ORV configuration file(s).";

DatumList List(const std::vector<DatumDef>& datums) {
  DatumList list;
  for (const DatumDef& datum : datums) list.Add(datum, 0);
  return list;
}

/// "F3 B2 I": forward, backward, identity, each with the dx of the datum that it runs; "none" without a
/// route.
std::string Route(const DatumDef& s, const DatumDef& d, const DatumList& known, const Methods& allowed = {}) {
  std::vector<internal::PlannedStep> route = {{internal::PlannedStep::Identity, nullptr}};
  if (!internal::PlanRoute(s, d, known, allowed, route)) {
    EXPECT_TRUE(route.empty());
    return "none";
  }
  std::string text;
  for (const internal::PlannedStep& step : route) {
    if (!text.empty()) text += ' ';
    text += step.kind == internal::PlannedStep::Identity  ? 'I'
            : step.kind == internal::PlannedStep::Forward ? 'F'
                                                          : 'B';
    if (step.datum) text += std::to_string(static_cast<int>(step.datum->GetParameters()->dx));
  }
  return text;
}

constexpr auto kWgs = DatumTargetWGS84;
constexpr auto kNad27 = DatumTargetNAD27;
constexpr auto kNad83 = DatumTargetNAD83;
constexpr auto kPlain = DatumTargetNone;
constexpr auto kMol = DatumMethodMolodensky;
constexpr auto kBursa = DatumMethodBursaWolf;
constexpr auto kNone = DatumMethodNone;
constexpr auto kNtv2 = DatumMethodNTV2;
constexpr auto kNadcon = DatumMethodNADCON;
constexpr auto kMre = DatumMethodMRE;

// ---- each check by itself --------------------------------------------------------------------------------

TEST(RoutePlanner, EqualParametersAreIdentical) {
  const DatumDef s = Make{kMol, kWgs, kPlain, 1, 5};
  const DatumDef d = Make{kMol, kWgs, kNad27, 2, 5};
  EXPECT_EQ("I", Route(s, d, List({})));
  EXPECT_EQ("I", Route(s, d, List({}), {kNtv2}));  // the allowed methods are not asked
}

TEST(RoutePlanner, EqualSpecialsAreIdenticalWhateverTheirParameters) {
  EXPECT_EQ("I",
            Route(Make{kMol, kWgs, kNad27, 1, 5}, Make{kNadcon, kNad83, kNad27, 1, 6}, List({}), {kMre}));
}

TEST(RoutePlanner, EqualNtv2DatumsAreIdentical) {
  EXPECT_EQ("I", Route(Make{kNtv2, kNad83, kPlain, 1, 5}, Make{kNtv2, kNad83, kPlain, 2, 6}, List({})));
}

TEST(RoutePlanner, ASingleStepGoesForward) {
  // NTV2 to NAD83, and the destination is NAD83 itself.
  EXPECT_EQ("F1", Route(Make{kNtv2, kNad83, kPlain, 0, 1}, Make{kNone, kWgs, kNad83, 0, 2}, List({})));
}

TEST(RoutePlanner, ASingleStepGoesBackwardWhenInvertible) {
  const DatumDef special = Make{kNone, kWgs, kNad83, 0, 1};
  const DatumList known = List({special, Make{kNone, kWgs, kWgs, 0, 9}});
  for (const DatumMethod method : {kNone, kMol, kBursa, kNadcon}) {
    EXPECT_EQ("B2", Route(special, Make{method, kNad83, kPlain, 0, 2}, known)) << method;
  }
  // NTV2 and MRE are never run backward, and here no other way leads there.
  EXPECT_EQ("none", Route(special, Make{kNtv2, kNad83, kPlain, 0, 2}, known));
  EXPECT_EQ("none", Route(special, Make{kMre, kNad83, kPlain, 0, 2}, known));
}

TEST(RoutePlanner, ASingleStepAsksForItsMethod) {
  const DatumDef special = Make{kNone, kWgs, kNad83, 0, 1};
  const DatumDef datum = Make{kMol, kNad83, kPlain, 0, 2};
  const DatumList known = List({special, Make{kNone, kWgs, kWgs, 0, 9}});
  EXPECT_EQ("F2", Route(datum, special, known, {kMre, kMol}));
  EXPECT_EQ("B2", Route(special, datum, known, {kMre, kMol}));
  EXPECT_EQ("none", Route(special, datum, known, {kMre}));
}

TEST(RoutePlanner, AForbiddenForwardStepShutsOutTheBackwardOne) {
  // Both directions fit: S leads to D's role and D to S's.  S may not be used, D might, but is not tried.
  const DatumDef s = Make{kMol, kNad83, kNad27, 0, 1};
  const DatumDef d = Make{kBursa, kNad27, kNad83, 0, 2};
  EXPECT_EQ("F1", Route(s, d, List({}), {kMol}));
  // With S forbidden the route comes from the next check that serves: from NAD27 as it is, then D backward.
  const DatumList known = List({Make{kNone, kWgs, kNad27, 0, 7}, Make{kNone, kWgs, kNad83, 0, 8}});
  EXPECT_EQ("I B2", Route(s, d, known, {kBursa}));
}

TEST(RoutePlanner, TwoStepsOverACommonTarget) {
  const DatumDef s = Make{kMre, kWgs, kPlain, 0, 1};
  const DatumDef d = Make{kBursa, kWgs, kPlain, 0, 2};
  EXPECT_EQ("F1 B2", Route(s, d, List({})));
  // One allowed method of the two is enough.
  EXPECT_EQ("F1 B2", Route(s, d, List({}), {kMre}));
  EXPECT_EQ("F1 B2", Route(s, d, List({}), {kBursa}));
  EXPECT_EQ("F1 B2", Route(Make{kMol, kWgs, kPlain, 0, 1}, d, List({}), {kMol}));
}

TEST(RoutePlanner, TwoStepsNeedAnInvertibleDestination) {
  const DatumList known = List({Make{kNone, kWgs, kWgs, 0, 9}});
  EXPECT_EQ("none", Route(Make{kMol, kWgs, kPlain, 0, 1}, Make{kMre, kWgs, kPlain, 0, 2}, known));
}

TEST(RoutePlanner, BothSpecialNeedsTwoKnownDatums) {
  const DatumDef s = Make{kNone, kWgs, kNad27, 0, 1};
  const DatumDef d = Make{kMol, kWgs, kNad83, 0, 2};
  const DatumDef grid = Make{kNadcon, kNad83, kNad27, 0, 3};
  // S and D have the common target WGS 84, which wins; a target of its own for D leaves only the grid.
  const DatumDef dOwn = Make{kNone, DatumTargetNAD83Canada, kNad83, 0, 2};
  EXPECT_EQ("F1 B2", Route(s, d, List({grid, grid})));
  EXPECT_EQ("I F3", Route(s, dOwn, List({grid, grid})));
  // With one datum only, S's target is nowhere: the next check complains.
  EXPECT_RAISES(Route(s, dOwn, List({grid})), 1026, "DatumConverter", kNoSpecial);
}

TEST(RoutePlanner, BothSpecialTakesTheFirstKnownThatServes) {
  const DatumDef s = Make{kNone, kWgs, kNad27, 0, 1};
  const DatumDef d = Make{kMre, DatumTargetNAD83Canada, kNad83, 0, 2};
  const DatumDef filler = Make{kNone, DatumTargetNAD83Canada, DatumTargetNAD83Canada, 0, 9};
  const DatumDef first = Make{kNadcon, kNad83, kNad27, 0, 3};
  const DatumDef second = Make{kMol, kNad83, kNad27, 0, 4};
  const DatumDef viaWgs = Make{kMol, kNad83, kWgs, 0, 5};
  EXPECT_EQ("I F3", Route(s, d, List({filler, first, second, viaWgs})));
  EXPECT_EQ("I F4", Route(s, d, List({second, filler, first, viaWgs})));
  EXPECT_EQ("F1 F5", Route(s, d, List({viaWgs, filler, first, second})));
  EXPECT_EQ("I F4", Route(s, d, List({filler, first, second, viaWgs}), {kMol}));  // NADCON is not allowed
  // S may not run, so its own role is where the first leg starts.
  EXPECT_EQ("I F3", Route(s, d, List({viaWgs, filler, first, second}), {kNadcon}));
}

TEST(RoutePlanner, BothSpecialEndsBackwardWithoutAskingForTheMethod) {
  const DatumDef s = Make{kMre, kWgs, kNad27, 0, 1};
  const DatumDef d = Make{kBursa, kNad27, kNad83, 0, 2};
  const DatumDef k = Make{kNone, kWgs, kNad27, 0, 3};
  const DatumList known = List({Make{kNone, kWgs, kWgs, 0, 9}, k});
  // The single step backward is not allowed; as a leg of this check it is.
  EXPECT_EQ("B2", Route(s, d, known));
  EXPECT_EQ("I B2", Route(s, d, known, {kNadcon}));
  // A destination that cannot be run backward ends nowhere.
  EXPECT_EQ("none", Route(s, Make{kNtv2, kNad27, kNad83, 0, 2}, known, {kNadcon}));
}

TEST(RoutePlanner, BothSpecialMayEndInTheRoleItself) {
  // S leads to K's role, which is D's.  The single step would take it, were it not for K's place: S.t = D.sp
  // is SingleStep. So this leg is met only with S forbidden there and allowed nowhere: then the first leg is
  // closed as well.
  const DatumDef s = Make{kMol, kNad83, kNad27, 0, 1};
  const DatumDef d = Make{kMre, kWgs, kNad83, 0, 2};
  EXPECT_EQ("F1", Route(s, d, List({d, s})));
}

TEST(RoutePlanner, MultiStepGoesOnFromTheTarget) {
  // NTV2 to NAD83, NAD83 by Bursa-Wolf to WGS 84, and Molodensky backward from there.
  const DatumDef s = Make{kNtv2, kNad83, kPlain, 0, 1};
  const DatumDef d = Make{kMol, kWgs, kPlain, 0, 2};
  const DatumDef nad83 = Make{kBursa, kWgs, kNad83, 0, 3};
  const DatumDef wgs = Make{kNone, kWgs, kWgs, 0, 4};
  EXPECT_EQ("F1 F3 B2", Route(s, d, List({wgs, nad83})));
  // The first of several that leads on wins, and S itself is not asked whether it is allowed.
  const DatumDef other = Make{kMol, kWgs, kNad83, 0, 5};
  EXPECT_EQ("F1 F5 B2", Route(s, d, List({other, nad83, wgs})));
  EXPECT_EQ("F1 F3 B2", Route(s, d, List({nad83, other, wgs}), {kBursa}));
}

TEST(RoutePlanner, MultiStepWithoutAnyTargetComplains) {
  const DatumDef s = Make{kMol, kNad27, kPlain, 0, 1};
  const DatumDef d = Make{kMol, kWgs, kPlain, 0, 2};
  const DatumDef wgs = Make{kNone, kWgs, kWgs, 0, 4};
  EXPECT_RAISES(Route(s, d, List({})), 1026, "DatumConverter", kNoSpecial);
  EXPECT_RAISES(Route(s, d, List({wgs})), 1026, "DatumConverter", kNoSpecial);
}

TEST(RoutePlanner, AnotherDatumOfTheSourcesRoleStandsIn) {
  // S is NAD27 by an equation that leads nowhere near D; another NAD27 has the grid.
  const DatumDef s = Make{kMre, kWgs, kNad27, 0, 1};
  const DatumDef d = Make{kMol, kNad83, kPlain, 0, 2};
  const DatumDef wgs = Make{kNone, kWgs, kWgs, 0, 3};
  const DatumDef grid = Make{kNadcon, kNad83, kNad27, 0, 4};
  EXPECT_EQ("F4 B2", Route(s, d, List({wgs, grid})));
}

TEST(RoutePlanner, AnotherDatumOfTheDestinationsRoleStandsIn) {
  const DatumDef s = Make{kMol, kWgs, kPlain, 0, 1};
  const DatumDef d = Make{kNtv2, kWgs, kNad83, 0, 2};
  const DatumDef wgs = Make{kNone, kWgs, kWgs, 0, 3};
  const DatumDef other = Make{kBursa, kWgs, kNad83, 0, 4};
  // The turn before this one goes down first, WGS 84 "to WGS 84" at levels 1 and 2; at level 3 the other
  // datum of D's role is met, and level 4 runs it backward.
  EXPECT_EQ("F1 F3 F3 B4", Route(s, d, List({wgs, other})));
}

TEST(RoutePlanner, AnotherDatumOfTheDestinationsNumberStandsIn) {
  const DatumDef s = Make{kMol, kWgs, kPlain, 77, 1};
  const DatumDef d = Make{kMre, kWgs, kPlain, 77, 2};
  const DatumDef wgs = Make{kNone, kWgs, kWgs, 0, 3};
  const DatumDef other = Make{kBursa, kWgs, kPlain, 77, 4};
  const DatumDef stranger = Make{kBursa, kWgs, kPlain, 78, 5};
  // As above, two levels of WGS 84 "to WGS 84" come first.
  EXPECT_EQ("F1 F3 F3 B4", Route(s, d, List({wgs, stranger, other})));
  // The source's number does not help.
  const DatumDef plain = Make{kMre, kWgs, kPlain, 0, 2};
  EXPECT_EQ("none", Route(s, plain, List({wgs, stranger, other})));
}

TEST(RoutePlanner, TheDatumsThemselvesAreTriedToo) {
  // D, met again as a known datum of its own number, is searched for to the last level before the next one
  // is.
  const DatumDef s = Make{kMol, kWgs, kPlain, 0, 1};
  const DatumDef d = Make{kMre, kWgs, kPlain, 77, 2};
  const DatumDef wgs = Make{kNone, kWgs, kWgs, 0, 3};
  const DatumDef other = Make{kBursa, kWgs, kPlain, 77, 4};
  EXPECT_EQ("F1 F3 F3 B4", Route(s, d, List({wgs, d, other})));
  // A datum that is its own target begins a route over and over.
  EXPECT_EQ("F3 F3 F3 B4", Route(wgs, d, List({wgs, d, other})));
}

// ---- depth -----------------------------------------------------------------------------------------------

TEST(RoutePlanner, AChainOfTargetsIsFollowedThroughFiveLevels) {
  // Nothing can be run backward but D: the k-th link is the source at level k + 1, the last at level 4.
  const DatumTarget chain[] = {kWgs, kNad27, kNad83, DatumTargetNAD27Canada, DatumTargetNAD83Canada};
  std::vector<DatumDef> known;
  for (int i = 0; i < 4; ++i) known.push_back(Make{kNtv2, chain[i + 1], chain[i], 0, 10.0 + i});
  const DatumDef s = Make{kNtv2, chain[0], kPlain, 0, 1};
  EXPECT_EQ("F1 F10 F11 F12 F13 B2", Route(s, Make{kMol, chain[4], kPlain, 0, 2}, List(known)));
}

/// Datums that lead from one to the next by turns of equal numbers and equal roles, and only so.  The last
/// one can be run backward to WGS 84.
std::vector<DatumDef> Links(int count) {
  std::vector<DatumDef> links;
  for (int i = 0; i < count; ++i) {
    const bool last = i == count - 1;
    DatumDef link =
        Make{last ? kMol : kMre, last ? kWgs : DatumTargetNAD83Canada, kPlain, 1 + (i + 1) / 2, 10.0 + i};
    // The link reached by its number has a new role, which the following one shares.
    link.SetSpecial(static_cast<DatumTarget>(2 + i / 2));
    links.push_back(link);
  }
  return links;
}

TEST(RoutePlanner, FiveLevelsAreSearchedAndNotSix) {
  const DatumDef s = Make{kMol, kWgs, kPlain, 0, 1};
  DatumDef d = Make{kMre, DatumTargetNAD83Canada, kPlain, 1, 2};
  d.SetParameter(DatumParameterIDEquation, DatumMRETypeSA69);
  const DatumDef wgs = Make{kNone, kWgs, kWgs, 0, 3};
  // The i-th link is the destination at level i + 1, so the fourth is one at level 4.
  std::vector<DatumDef> known = Links(4);
  known.push_back(wgs);
  EXPECT_EQ("F1 B13", Route(s, d, List(known)));
  known = Links(5);
  known.push_back(wgs);
  EXPECT_EQ("none", Route(s, d, List(known)));
}

// ---- failures --------------------------------------------------------------------------------------------

TEST(RoutePlanner, UnknownAndFaultyDatumsRaise) {
  const DatumDef good = Make{kMol, kWgs, kPlain, 0, 1};
  DatumDef faulty = good;
  faulty.SetParameter(DatumParameterIDTarget, 0);
  const DatumList none;
  EXPECT_RAISES(Route(DatumDef(), good, none), 1032, "DatumConverter",
                "Invalid conversion method in source datum");
  EXPECT_RAISES(Route(good, DatumDef(), none), 1032, "DatumConverter",
                "Invalid conversion method in destination datum");
  EXPECT_RAISES(Route(DatumDef(), DatumDef(), none), 1032, "DatumConverter",
                "Invalid conversion method in source datum");
  EXPECT_RAISES(Route(faulty, good, none), 1032, "DatumConverter", "Invalid parameters in source datum");
  EXPECT_RAISES(Route(good, faulty, none), 1032, "DatumConverter", "Invalid parameters in destination datum");
  EXPECT_RAISES(Route(faulty, DatumDef(), none), 1032, "DatumConverter",
                "Invalid conversion method in destination datum");
}

TEST(RoutePlanner, AnUnknownDatumOfTheSameNumberEndsTheSearch) {
  const DatumDef s = Make{kMol, kWgs, kPlain, 0, 1};
  const DatumDef d = Make{kMre, kWgs, kPlain, 77, 2};
  const DatumDef wgs = Make{kNone, kWgs, kWgs, 0, 3};
  const DatumDef good = Make{kBursa, kWgs, kPlain, 77, 4};
  DatumDef unknown;
  unknown.SetPOSCNumber(77);
  // Deliberate: the failure is not taken for "no way here", though the next entry had a route.
  EXPECT_RAISES(Route(s, d, List({wgs, unknown, good})), 1032, "DatumConverter",
                "Invalid conversion method in destination datum");
  EXPECT_EQ("F1 F3 F3 B4", Route(s, d, List({wgs, good, unknown})));
}

TEST(RoutePlanner, AMissingTargetEndsTheSearchAtAnyDepth) {
  // From WGS 84's datum on, the target NAD27 is nowhere; the second WGS 84 would lead on, but is not met.
  const DatumDef s = Make{kMre, kWgs, kPlain, 0, 1};
  const DatumDef d = Make{kMol, kNad83, kPlain, 0, 2};
  const DatumDef stuck = Make{kMre, kNad27, kWgs, 0, 3};
  const DatumDef good = Make{kMol, kNad83, kWgs, 0, 4};
  EXPECT_RAISES(Route(s, d, List({stuck, good})), 1026, "DatumConverter", kNoSpecial);
  EXPECT_EQ("F1 F4 B2", Route(s, d, List({good, stuck})));
}

// ---- against the search as it is described, without a memory ---------------------------------------------

/// The search, step by step, on copies.
class Reference {
 public:
  Reference(const std::vector<DatumDef>& known, const Methods& allowed)
      : m_Known(known), m_Allowed(allowed) {}

  std::string Route(const DatumDef& s, const DatumDef& d) {
    std::vector<std::string> route;
    try {
      if (!Recurse(s, d, 0, route)) return "none";
    } catch (const std::string& failure) {
      return failure;
    }
    std::string text;
    for (const std::string& step : route) text += (text.empty() ? "" : " ") + step;
    return text;
  }

  long calls = 0;

 private:
  static std::string Name(char kind, const DatumDef& datum) {
    return kind + std::to_string(static_cast<int>(datum.GetParameters()->dx));
  }
  bool Allowed(const DatumDef& datum) const {
    if (m_Allowed.empty()) return true;
    for (const DatumMethod method : m_Allowed) {
      if (method == datum.GetMethod()) return true;
    }
    return false;
  }
  static bool Invertible(const DatumDef& datum) { return datum.GetMethod() >= 1 && datum.GetMethod() <= 4; }

  bool Recurse(DatumDef s, DatumDef d, int depth, std::vector<std::string>& route) {
    ++calls;
    if (depth > 4) return false;
    route.clear();
    if (s.GetMethod() == 0) throw std::string("source method");
    if (d.GetMethod() == 0) throw std::string("destination method");
    const int ssp = s.GetSpecial(), dsp = d.GetSpecial(), st = s.GetTarget(), dt = d.GetTarget();

    // identical
    if (s.CompareParameters(&d) || (ssp != 0 && ssp == dsp)) {
      route = {"I"};
      return true;
    }
    // single step
    if (st == dsp) {
      if (Allowed(s)) {
        route = {Name('F', s)};
        return true;
      }
    } else if (dt == ssp && Invertible(d) && Allowed(d)) {
      route = {Name('B', d)};
      return true;
    }
    // two steps
    if ((Allowed(s) || Allowed(d)) && st == dt && Invertible(d)) {
      route = {Name('F', s), Name('B', d)};
      return true;
    }
    // both special
    if (ssp != 0 && dsp != 0 && m_Known.size() >= 2) {
      for (const DatumDef& k : m_Known) {
        route.clear();
        if (st == k.GetSpecial() && Allowed(s)) {
          route.push_back(Name('F', s));
        } else if (ssp == k.GetSpecial()) {
          route.push_back("I");
        } else {
          continue;
        }
        if (k.GetSpecial() != 0 && k.GetSpecial() == dsp) {
          route.push_back("I");
        } else if (k.GetTarget() == dsp && Allowed(k)) {
          route.push_back(Name('F', k));
        } else if (dt == k.GetSpecial() && Invertible(d)) {
          route.push_back(Name('B', d));
        } else {
          continue;
        }
        return true;
      }
      route.clear();
    }
    // several steps
    bool any = false;
    for (const DatumDef& k : m_Known) any = any || k.GetSpecial() == st;
    if (!any) throw std::string("no special");
    std::vector<std::string> rest;
    for (const DatumDef& k : m_Known) {
      if (k.GetSpecial() == st && Recurse(k, d, depth + 1, rest)) {
        route = {Name('F', s)};
        route.insert(route.end(), rest.begin(), rest.end());
        return true;
      }
    }
    // others of the same role
    if (ssp != 0) {
      for (const DatumDef& k : m_Known) {
        if (k.GetSpecial() == ssp && Recurse(k, d, depth + 1, route)) return true;
      }
    }
    if (dsp != 0) {
      for (const DatumDef& k : m_Known) {
        if (k.GetSpecial() == dsp && Recurse(s, k, depth + 1, route)) return true;
      }
    }
    // others of the same number
    if (d.GetPOSCNumber() != 0) {
      for (const DatumDef& k : m_Known) {
        if (k.GetPOSCNumber() == d.GetPOSCNumber() && Recurse(s, k, depth + 1, route)) return true;
      }
    }
    return false;
  }

  const std::vector<DatumDef>& m_Known;
  const Methods& m_Allowed;
};

std::string Planned(const DatumDef& s, const DatumDef& d, const DatumList& known, const Methods& allowed) {
  try {
    return Route(s, d, known, allowed);
  } catch (const shr::Exception& e) {
    const std::string text = e.Message();
    return text == "Invalid conversion method in source datum"        ? "source method"
           : text == "Invalid conversion method in destination datum" ? "destination method"
           : text == kNoSpecial                                       ? "no special"
                                                                      : text;
  }
}

TEST(RoutePlanner, FindsWhatTheSearchWithoutMemoryFinds) {
  std::mt19937 random(20260104);
  const auto upTo = [&random](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
  double dx = 0.0;
  std::map<std::string, int> kinds;
  for (int trial = 0; trial < 4000; ++trial) {
    // Few roles and numbers, so that searches are deep; most methods cannot be run backward.
    const int roles = 2 + upTo(3);
    const auto datum = [&](bool known) {
      const DatumMethod methods[] = {kNtv2, kMre, kNtv2, kMol, kBursa, kNadcon, kNone, kMre};
      const DatumMethod method = known && upTo(40) == 0 ? DatumMethodUnknown : methods[upTo(8)];
      DatumParameters p =
          *DatumDef(Make{method, static_cast<DatumTarget>(1 + upTo(roles)), kPlain, 0, ++dx}).GetParameters();
      p.mreType = static_cast<DatumMREType>(1 + upTo(8));
      DatumDef made(&p, upTo(3));
      if (known || upTo(2) == 0) made.SetSpecial(static_cast<DatumTarget>(upTo(roles + 1)));
      return made;
    };
    std::vector<DatumDef> known;
    const int count = upTo(6);
    for (int i = 0; i < count; ++i) known.push_back(datum(true));
    const DatumDef s = upTo(4) == 0 && count > 0 ? known[static_cast<size_t>(upTo(count))] : datum(false);
    const DatumDef d = upTo(4) == 0 && count > 0 ? known[static_cast<size_t>(upTo(count))] : datum(false);
    Methods allowed;
    for (int i = upTo(4); i > 0; --i) allowed.push_back(static_cast<DatumMethod>(1 + upTo(6)));
    if (upTo(2) == 0) allowed.clear();

    Reference reference(known, allowed);
    const std::string expected = reference.Route(s, d);
    ASSERT_EQ(expected, Planned(s, d, List(known), allowed)) << "trial " << trial;
    const long steps = 1 + std::count(expected.begin(), expected.end(), ' ');
    const bool found = expected[0] == 'F' || expected[0] == 'B' || expected[0] == 'I';
    ++kinds[found ? std::to_string(steps) + " steps" : expected];
    if (reference.calls > 300) ++kinds["deep"];
  }
  // The trials cover every kind of end.
  EXPECT_GT(kinds["none"], 100);
  EXPECT_GT(kinds["no special"], 100);
  EXPECT_GT(kinds["source method"], 10);
  EXPECT_GT(kinds["destination method"], 10);
  for (const char* const steps : {"1 steps", "2 steps", "3 steps", "4 steps"})
    EXPECT_GT(kinds[steps], 10) << steps;
  EXPECT_GT(kinds["deep"], 100);
}

// ---- cost ------------------------------------------------------------------------------------------------

TEST(RoutePlanner, AHundredDatumsOfOneNumberArePlannedQuickly) {
  // Without a memory a hopeless pair among these would cost a hundred million plans and more.
  std::vector<DatumDef> datums = {Make{kNone, kWgs, kWgs, 4326, 1}, Make{kNadcon, kNad83, kNad27, 4267, 2},
                                  Make{kNone, kWgs, kNad83, 4269, 3}};
  for (int i = 0; i < 97; ++i) {
    // One half can be reached; the other cannot, and half of that is special besides.
    const bool reachable = i < 47;
    DatumDef datum = Make{reachable ? (i % 2 == 0 ? kMol : kBursa) : kMre, i % 3 == 0 ? kNad83 : kWgs, kPlain,
                          reachable ? 4230 : 4231, 10.0 + i};
    datum.SetParameter(DatumParameterIDEquation, 1 + i % 8);
    if (!reachable && i % 2 == 0) datum.SetSpecial(DatumTargetNAD27Canada);
    datums.push_back(datum);
  }
  const DatumList known = List(datums);
  int hopeless = 0;
  const auto begin = std::chrono::steady_clock::now();
  for (const DatumDef& s : datums) {
    for (const DatumDef& d : datums) {
      if (Route(s, d, known) == "none") ++hopeless;
    }
  }
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
  RecordProperty("microseconds_per_plan", std::to_string(seconds.count() * 1e6 / 10000));
  EXPECT_GT(hopeless, 100);
  // A thousandth of a second for each is what is wanted; the bound leaves room for sanitizers and a busy
  // machine.
  EXPECT_LT(seconds.count(), 10000 * 0.005);
}

}  // namespace
}  // namespace orv
