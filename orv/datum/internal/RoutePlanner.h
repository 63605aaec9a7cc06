// RoutePlanner.h: the search for a chain of conversion steps between two datums.
//
// S and D are the source and the destination; sp is a datum's special value, m its method, t its target, posc
// its POSC number.  These checks are tried in order; the first that gives a complete route ends the search:
//
//   IdenticalDatums     the parameters compare equal, or both are the same special datum: one step that does
//                       nothing.
//   SingleStep          S.t = D.sp: S forward, and nothing else is tried when S.m is not allowed.  Else
//                       D.t = S.sp and D.m allowed and invertible: D backward.
//   TwoStepWithCommonTarget
//                       S.t = D.t, D.m invertible, S.m OR D.m allowed: S forward, D backward.
//   BothSpecial         both special: over each known K, from S to K's special datum (S forward when
//                       S.t = K.sp, or nothing to do), then on to D (nothing to do, K forward, or D backward).
//   MultiStepRecursive  S forward, then any route from a known K with K.sp = S.t.
//   OtherSameSpecial    any route from a known K with K.sp = S.sp, or to one with K.sp = D.sp.
//   OtherSamePOSC       any route to a known K with D's POSC number.
//
// The last three search again from the start, at most five levels deep.  Known datums are tried in list
// order.  Invertible are None, Molodensky, Bursa-Wolf and NADCON.
//
// Deliberate: IdenticalDatums, MultiStepRecursive's own step and the backward leg of BothSpecial do not ask
// whether a method is allowed; K may be S or D itself, so that a route can begin with steps that do nothing.
//
// A hopeless search meets the same pairs over and over: a pair that failed is remembered with its depth,
// which changes neither the order of trial nor the route nor the failure that is raised.
#pragma once

#include <vector>

#include "orv/datum/DatumDef.h"
#include "orv/datum/DatumList.h"

namespace orv::internal {

/// One step of a planned route.
struct PlannedStep {
  enum Kind { Identity, Forward, Backward };
  Kind kind;
  const DatumDef* datum;  ///< whose method it runs: the source, the destination or an entry of the list; null
                          ///< for Identity
};

/// Finds a route from one datum to another through a list of known datums.
///
/// @param allowed  methods that may be used; empty allows all.
/// @param route    receives the steps; it refers to the datums given and to the list's entries.  Empty
/// without a route. False when there is no route.  Faulty datums on the way raise, unit "DatumConverter": see
/// DatumConverter::Initialize. A raised failure ends the whole search, at whatever depth it was met, even if
/// another turn had found a route.
bool PlanRoute(const DatumDef& source, const DatumDef& dest, const DatumList& known,
               const std::vector<DatumMethod>& allowed, std::vector<PlannedStep>& route);

}  // namespace orv::internal
