// The land of the world, clipped for every projection at five centres.  GEOS says whether rings are valid, and
// what the area is: its intersection with the usable area, which is built here from the definitions of the
// inside tests (columns of longitude), not from the library's own rim.
#include <geos_c.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <memory>

#include "orv/core/internal/Marker.h"
#include "orv/projection/ProjActor.h"
#include "tests/projection/ProjectionSamples.h"
#include "tests/support/Clipped.h"
#include "tests/support/World.h"

namespace orv::test {

namespace {

constexpr double kDegree = 0.017453292519943295;

struct Centre {
  double lon, lat;
};
// Equator, both hemispheres, a pole, and one whose cap holds the other pole; none of their antipodes is land but
// the fourth's.
constexpr Centre kCentres[] = {{0.0, 0.0}, {100.0, 40.0}, {-50.0, -30.0}, {12.5, 90.0}, {-160.0, -62.0}};

// ---- GEOS --------------------------------------------------------------------------------------------------

void Ignore(const char*, ...) {}

struct Destroy {
  void operator()(GEOSGeometry* g) const { GEOSGeom_destroy(g); }
};
using Geometry = std::unique_ptr<GEOSGeometry, Destroy>;

struct DestroyPrepared {
  void operator()(const GEOSPreparedGeometry* g) const { GEOSPreparedGeom_destroy(g); }
};
using Prepared = std::unique_ptr<const GEOSPreparedGeometry, DestroyPrepared>;

GEOSGeometry* LinearRing(const Line& ring) {
  const auto n = static_cast<unsigned>(ring.size());
  GEOSCoordSequence* sequence = GEOSCoordSeq_create(n + 1, 2);
  for (unsigned i = 0; i <= n; ++i) GEOSCoordSeq_setXY(sequence, i, ring[i % n].x, ring[i % n].y);
  return GEOSGeom_createLinearRing(sequence);
}

Geometry Polygon(const std::vector<Line>& rings) {
  std::vector<GEOSGeometry*> holes;
  for (size_t i = 1; i < rings.size(); ++i) holes.push_back(LinearRing(rings[i]));
  return Geometry(
      GEOSGeom_createPolygon(LinearRing(rings[0]), holes.data(), static_cast<unsigned>(holes.size())));
}

std::string WhyInvalid(const GEOSGeometry* g) {
  char* reason = GEOSisValidReason(g);
  const std::string text = reason ? reason : "failure";
  GEOSFree(reason);
  return text;
}

// What is wrong changes the area by less than a ten-millionth of a hemisphere seen from afar.
bool IsNearlyValid(const GEOSGeometry* g) {
  const Geometry valid(GEOSMakeValid(g));
  double before = 0.0, after = 0.0;
  GEOSArea(g, &before);
  GEOSArea(valid.get(), &after);
  return std::abs(after - before) < 1e-7 * 3.14159 * 6371000.0 * 6371000.0;
}

void CollectPolygons(const GEOSGeometry* g, std::vector<std::vector<Line>>& out) {
  if (GEOSGeomTypeId(g) != GEOS_POLYGON) {
    for (int i = 0; i < GEOSGetNumGeometries(g) && GEOSGeomTypeId(g) >= GEOS_MULTIPOINT; ++i) {
      CollectPolygons(GEOSGetGeometryN(g, i), out);
    }
    return;
  }
  if (GEOSisEmpty(g)) return;
  std::vector<Line> rings;
  for (int i = -1; i < GEOSGetNumInteriorRings(g); ++i) {
    const GEOSGeometry* ring = i < 0 ? GEOSGetExteriorRing(g) : GEOSGetInteriorRingN(g, i);
    const GEOSCoordSequence* sequence = GEOSGeom_getCoordSeq(ring);
    unsigned n = 0;
    GEOSCoordSeq_getSize(sequence, &n);
    rings.emplace_back();
    for (unsigned k = 0; k + 1 < n; ++k) {
      double x = 0.0, y = 0.0;
      GEOSCoordSeq_getXY(sequence, k, &x, &y);
      rings.back().emplace_back(x, y);
    }
  }
  out.push_back(std::move(rings));
}

// ---- the usable area ---------------------------------------------------------------------------------------

void Densify(Line& ring, double longest = 0.25) {
  Line dense;
  for (size_t i = 0; i < ring.size(); ++i) {
    const shr::Vec2d &a = ring[i], &b = ring[(i + 1) % ring.size()];
    const int n = static_cast<int>(std::max(std::abs(a.x - b.x), std::abs(a.y - b.y)) / longest) + 1;
    for (int k = 0; k < n; ++k) dense.emplace_back(a.x + (b.x - a.x) * k / n, a.y + (b.y - a.y) * k / n);
  }
  ring.swap(dense);
}

std::vector<Line> Box(double west, double east, double south, double north) {
  Line ring = {{west, south}, {east, south}, {east, north}, {west, north}};
  Densify(ring);
  return {ring};
}

// The parts of the plane within an arc (at most 90 degrees) of a centre, between two longitudes: in columns
// where R cos(phi - delta) >= cos(arc).
std::vector<Line> Cap(double lon, double lat, double arc, double west, double east) {
  std::vector<Line> parts;
  Line low, high;
  const auto close = [&] {
    if (low.size() > 1) {
      low.insert(low.end(), high.rbegin(), high.rend());
      Densify(low);
      parts.push_back(low);
    }
    low.clear();
    high.clear();
  };
  // Narrow columns where the rim of a hemisphere is steepest.
  double step = 0.0;
  for (double x = west; x < east; x += step) {
    const double cosine = std::cos((x - lon) * kDegree);
    step = std::abs(cosine) < 0.005 ? 0.002 : 0.05;
    const double u = std::sin(lat * kDegree), v = std::cos(lat * kDegree) * cosine;
    const double r = std::hypot(u, v), c = std::cos(arc * kDegree) / r;
    const double delta = std::atan2(u, v) / kDegree, a = std::acos(std::clamp(c, -1.0, 1.0)) / kDegree;
    const double south = std::max(-90.0, delta - a), north = std::min(90.0, delta + a);
    if (c > 1.0 || !(south < north)) {
      close();
      continue;
    }
    low.emplace_back(x, south);
    high.emplace_back(x, north);
  }
  close();
  return parts;
}

Geometry Collection(const std::vector<Line>& parts) {
  std::vector<GEOSGeometry*> polygons;
  for (const Line& part : parts) polygons.push_back(Polygon({part}).release());
  return Geometry(
      GEOSGeom_createCollection(GEOS_MULTIPOLYGON, polygons.data(), static_cast<unsigned>(polygons.size())));
}

// A tiny amount within the rim, so that nothing of it is beyond what can be projected.
Geometry UsableArea(const ProjectionParameters& p) {
  constexpr double kWithin = 1e-6;
  const double west = p.Lon0 - 180.0 + kWithin, east = p.Lon0 + 180.0 - kWithin;
  switch (static_cast<int>(p.method)) {
    case 9:
    case 17:
      return Collection(Box(-720.0, 720.0, -91.0, 91.0));
    case 6:
    case 19:
    case 20:
      return Collection(Cap(p.Lon0, p.Lat0, 90.0 - kWithin, -400.0, 400.0));
    case 11:
      return Collection(Cap(p.Lon0, p.Lat1, 60.0 - kWithin, -400.0, 400.0));
    case 4: {
      const Geometry all = Collection(Box(-400.0, 400.0, -91.0, 91.0));
      const Geometry out = Collection(Cap(p.Lon0 + 180.0, -p.Lat1, 10.0 + kWithin, -400.0, 400.0));
      return Geometry(GEOSDifference(all.get(), out.get()));
    }
    case 22:
      return Collection(Box(-180.0 + kWithin, 180.0 - kWithin, -91.0, 91.0));
    case 13:
    case 18:
      return Collection(Box(west, east, -90.0 + kWithin, 90.0 - kWithin));
    case 15:
      return Collection(Box(-720.0, 720.0, std::max({p.Lat1 - 45.0, p.Lat2 - 45.0, -90.0}) + kWithin,
                            std::min({p.Lat1 + 45.0, p.Lat2 + 45.0, 90.0}) - kWithin));
    case 12:
      return Collection(Box(p.Lon1 - 15.0 + kWithin, p.Lon1 + 15.0 - kWithin,
                            p.bUseAlpha ? -91.0 : p.Lat1 - 15.0 + kWithin,
                            p.bUseAlpha ? 91.0 : p.Lat1 + 15.0 - kWithin));
    default:
      return Collection(Box(west, east, -91.0, 91.0));
  }
}

// ---- the projections ---------------------------------------------------------------------------------------

ProjectionDef At(int method, const Centre& centre) {
  ProjectionParameters p;
  Valid(method).GetParameters(p);
  p.ellipsoid.SetMajorRadius(6371000.0);
  p.ellipsoid.SetFlattening(0.0);
  p.Lon0 = centre.lon;
  switch (method) {
    case 4:
    case 11:
    case 17:
      p.Lat1 = centre.lat;
      break;
    case 6:
    case 19:
    case 20:
      p.Lat0 = centre.lat;
      break;
    case 12:
      p.Lon1 = centre.lon;
      p.Lat1 = std::min(centre.lat, 60.0);
      p.bUseAlpha = centre.lat != 40.0 && centre.lat != -30.0;
      p.Lon2 = centre.lon + 8.0;
      p.Lat2 = p.Lat1 + 6.0;
      p.Lat0 = p.Lat1 + 1.0;
      break;
    case 15:
      p.Lon1 = centre.lon;
      p.Lon2 = centre.lon + 70.0;
      p.Lat1 = std::clamp(centre.lat, -40.0, 50.0) + 3.0;
      p.Lat2 = p.Lat1 - 20.0;
      break;
    default:
      break;
  }
  ProjectionDef def(p);
  std::string why;
  EXPECT_EQ(def.CheckParameters(why), 0) << method << ": " << why;
  return def;
}

// Whether the map is one to one there, and finite.  Transverse Mercator is torn along the Equator beyond 90 degrees
// from the central meridian and has its poles there, Oblique Mercator is torn along a meridian of its own pole (see
// IsTorn), Hotine bends meridians sharply far from its centre, and on Mercator and on a Lambert cone a pole
// lies infinitely far away.  Lambert's azimuthal map draws what is opposite to its
// centre out to its whole rim: edges of some degrees are too coarse there, and what surrounds that point turns
// inside out.
//
// Five probes set vertices of the rim degrees apart: where the map bends the rim strongly, beyond 80 degrees on
// Polyconic and anywhere on Oblique Mercator, their chords are another area.
bool IsPlain(const ProjectionParameters& p, const shr::Vec2d& at, bool bRefined) {
  const double l = std::abs(at.x - p.Lon0);
  switch (static_cast<int>(p.method)) {
    case 12:
      return std::abs(at.y - p.Lat1) < 60.0;
    case 13:
      return at.y > -86.0;
    case 25:
    case 26:
      return l < 80.0 || (std::abs(at.y) > 10.0 && l < 170.0);
    case 21:  // a pole is one point, to which a ring along the seam would come twice
      return std::abs(at.y) < 89.9 && (bRefined || l < 80.0);
    case 15:
      return bRefined;
    case 16:
      return at.y > -75.0;
    case 17: {  // 155 degrees from the centre
      const double cosine = std::sin(p.Lat1 * kDegree) * std::sin(at.y * kDegree) +
                            std::cos(p.Lat1 * kDegree) * std::cos(at.y * kDegree) * std::cos(l * kDegree);
      return cosine > std::cos(155.0 * kDegree);
    }
    default:
      return true;
  }
}

// Whether a ring of Oblique Mercator crosses the meridian of its pole along which the map is torn, or comes near one of
// the poles, which lie infinitely far away.
bool IsTorn(const ProjectionParameters& p, const Line& map) {
  if (p.method != ProjectionMethodObliqueMercator) return false;
  const double radius = p.ellipsoid.GetMajorRadius() * p.K0;
  for (size_t i = 0; i < map.size(); ++i) {
    const shr::Vec2d &a = map[i], &b = map[(i + 1) % map.size()];
    if (std::abs(a.y) > 3.0 * radius || std::abs(a.x - b.x) > 3.0 * radius) return true;
  }
  return false;
}

bool RepeatsAtEveryTurn(int method) {
  return method == 4 || method == 6 || method == 11 || method == 17 || method == 19 || method == 20;
}

bool IsSeam(const shr::Vec2d& p) { return std::abs(std::abs(p.x) - 180.0) < 1e-9 || std::abs(p.y) == 90.0; }

// The ring on the map.  The ring around the south pole is closed in the plane along a meridian and the pole; on
// a map on which those are one line and one point it is closed without them.
Line OnMap(Projector& projector, int method, const Line& ring) {
  Line line;
  for (const shr::Vec2d& p : ring) {
    if (!RepeatsAtEveryTurn(method) || !IsSeam(p)) line.push_back(p);
  }
  if (!line.empty()) projector.TransformForward(line);
  return line;
}

bool HasMarks(const Line& line) {
  return std::any_of(line.begin(), line.end(), [](const shr::Vec2d& p) { return internal::IsMarked(p); });
}

// Coasts are drawn as they come, clipped or not: an edge is a chord on the map.  Some of Antarctica's are 4
// degrees long and lie beside narrow inlets, and a cone with its standard parallels in the north bends them
// there by more than the inlets are wide (Albers: the edge from 171.540 W 83.204 S to 174.067 W 82.900 S is
// bent, its chord crosses two others of the coast).  That is in the land, not in the clipping: with such edges
// drawn in steps of 0.4 degree nothing may cross.  No traced edge is that long: what is wrong with one stays so.
bool IsValidInSteps(Projector& projector, int method, std::vector<Line> rings) {
  for (Line& ring : rings) {
    Densify(ring, 0.4);
    ring = OnMap(projector, method, ring);
  }
  return GEOSisValid(Polygon(rings).get()) == 1;
}

struct Case {
  int method;
  const char* land;
};

std::string CaseName(const testing::TestParamInfo<Case>& info) {
  const std::string size = info.param.land;
  return std::string(MethodRows()[static_cast<size_t>(info.param.method)].shortName) + "_" + size.substr(5);
}

class ClipWorld : public testing::TestWithParam<Case> {
 protected:
  static void SetUpTestSuite() { initGEOS(&Ignore, &Ignore); }
  static void TearDownTestSuite() { finishGEOS(); }
};

// The extent of the map, and its longest edge of coast.
struct Edges {
  internal::ClipBox box;
  double longest = 0.0;

  void Add(Projector& projector, const ProjectionParameters& p, const Line& coast) {
    Line map = coast;
    projector.TransformForward(map);
    for (size_t i = 0; i < map.size(); ++i) {
      if (internal::IsMarked(map[i]) || !IsPlain(p, coast[i], true)) continue;
      box.Add(map[i]);
      if (i == 0 || internal::IsMarked(map[i - 1]) || !IsPlain(p, coast[i - 1], true)) continue;
      if (IsTorn(p, {map[i - 1], map[i]})) continue;
      if (IsSeam(coast[i]) && IsSeam(coast[i - 1])) continue;
      // Cassini shows two points of its rim as lines; the coast beside them is drawn out.
      if (p.method == 6 && std::hypot(std::remainder(coast[i].x - p.Lon0 - 90.0, 180.0), coast[i].y) < 15.0)
        continue;
      longest = std::max(longest, std::hypot(map[i].x - map[i - 1].x, map[i].y - map[i - 1].y));
    }
  }
};

struct Sum {
  double plane = 0.0, map = 0.0;
};

// Both areas of polygons; on the map of those that are plain.  Every vertex of a clipped ring has a place there; of an
// expected one, chords between the columns of the usable area lie outside its bent rim, and such points have none.
void AddAreas(Projector& projector, const ProjectionParameters& p, const std::vector<Line>& rings,
              bool bClipped, bool bRefined, Sum& sum) {
  const auto twice = [](const Line& ring) { return std::abs(internal::TwiceArea(ring)); };
  bool bPlain = true;
  for (const Line& ring : rings) {
    for (const shr::Vec2d& at : ring) bPlain = bPlain && IsPlain(p, at, bRefined);
  }
  std::vector<Line> maps;
  for (const Line& ring : rings) {
    maps.push_back(OnMap(projector, p.method, ring));
    if (bClipped && bPlain) {
      EXPECT_FALSE(HasMarks(maps.back()));
    }
    maps.back().erase(std::remove_if(maps.back().begin(), maps.back().end(), &internal::IsMarked),
                      maps.back().end());
    bPlain = bPlain && !IsTorn(p, maps.back());
  }
  for (size_t i = 0; i < rings.size(); ++i) {
    const double sign = i == 0 ? 0.5 : -0.5;
    sum.plane += sign * twice(rings[i]);
    if (bPlain && maps[i].size() > 2) sum.map += sign * twice(maps[i]);
  }
}

}  // namespace

TEST_P(ClipWorld, EveryPieceIsValidAndTheAreaIsThatOfTheIntersection) {
  const Case& test = GetParam();
  if (!MakeProjActor(Method(test.method))) GTEST_SKIP() << "no engine";
  const std::vector<LandPolygon> land = ReadLand(test.land);
  for (const Centre& centre : kCentres) {
    SCOPED_TRACE(testing::Message() << "centre " << centre.lon << ", " << centre.lat);
    const ProjectionDef def = At(test.method, centre);
    const ProjectionParameters& p = *def.GetParameters();
    Projector projector(def);
    const Geometry usable = UsableArea(p);
    ASSERT_EQ(GEOSisValid(usable.get()), 1) << WhyInvalid(usable.get());
    const Prepared prepared(GEOSPrepare(usable.get()));
    Sum expected, expectedByProbes, refined, probed;
    Edges edges;
    size_t bad = 0;
    for (size_t i = 0; i < land.size() && bad < 10; ++i) {
      const LandPolygon& polygon = land[i];
      // What GEOS makes of it, and of its copy.
      double dx = 0.0, dy = 0.0;
      std::vector<double> shifts = {0.0};
      if (projector.OffsetSplitObject(polygon[0].data(), polygon[0].size(), &dx, &dy)) shifts.push_back(dx);
      std::vector<std::vector<Line>> parts;
      for (double shift : shifts) {
        LandPolygon moved = polygon;
        for (Line& ring : moved) {
          for (shr::Vec2d& at : ring) at.x += shift;
        }
        // Most are wholly inside or outside, which GEOS knows faster than how to intersect them.
        const Geometry whole = Polygon(moved);
        if (GEOSPreparedContains(prepared.get(), whole.get()) == 1) {
          parts.push_back(std::move(moved));
        } else if (GEOSPreparedIntersects(prepared.get(), whole.get()) == 1) {
          const Geometry cut(GEOSIntersection(whole.get(), usable.get()));
          ASSERT_TRUE(cut);
          CollectPolygons(cut.get(), parts);
        }
      }
      for (const std::vector<Line>& rings : parts) {
        AddAreas(projector, p, rings, false, true, expected);
        AddAreas(projector, p, rings, false, false, expectedByProbes);
      }

      for (const bool bRefined : {true, false}) {
        const Clipped clipped =
            bRefined ? ClipRings(projector, polygon, internal::kRefined) : ClipRings(projector, polygon);
        for (const Line& coast : clipped.lines) edges.Add(projector, p, coast);
        for (const std::vector<Line>& rings : clipped.polygons) {
          AddAreas(projector, p, rings, true, bRefined, bRefined ? refined : probed);
          const Geometry plane = Polygon(rings);
          if (GEOSisValid(plane.get()) != 1) {
            ++bad;
            ADD_FAILURE() << "polygon " << i << (bRefined ? " refined: " : ": ") << WhyInvalid(plane.get());
          }
          bool bPlain = true;
          std::vector<Line> map;
          for (size_t r = 0; r < rings.size(); ++r) {
            // Outer rings turn clockwise, as they came, and holes the other way.
            EXPECT_EQ(internal::TwiceArea(rings[r]) < 0.0, r == 0) << "polygon " << i;
            for (const shr::Vec2d& at : rings[r]) bPlain = bPlain && IsPlain(p, at, bRefined);
            map.push_back(OnMap(projector, test.method, rings[r]));
            bPlain = bPlain && map.back().size() > 2 && !HasMarks(map.back()) && !IsTorn(p, map.back());
          }
          // Five probes set vertices degrees apart: a straight rim in the plane is a chord of a bent one on the map.
          if (!bPlain || !bRefined) continue;
          const Geometry projected = Polygon(map);
          // Orthographic flattens the last 0.1 degree before the rim to 1e-6 of the radius: slivers may cross there.
          if (GEOSisValid(projected.get()) != 1 &&
              !(test.method == 3 && IsValidInSteps(projector, test.method, rings)) &&
              !(test.method == 19 && IsNearlyValid(projected.get()))) {
            ++bad;
            ADD_FAILURE() << "polygon " << i << (bRefined ? " refined" : "")
                          << " on the map: " << WhyInvalid(projected.get());
          }
          for (size_t r = 0; r < map.size(); ++r) {
            EXPECT_EQ(internal::TwiceArea(map[r]) < 0.0, r == 0) << "polygon " << i << " on the map";
          }
        }
      }
    }
    EXPECT_LE(edges.longest,
              0.1 * std::max(edges.box.high.x - edges.box.low.x, edges.box.high.y - edges.box.low.y));
    EXPECT_NEAR(refined.plane, expected.plane, 0.001 * expected.plane);
    EXPECT_NEAR(refined.map, expected.map, 0.001 * expected.map);
    EXPECT_NEAR(probed.plane, expected.plane, 0.02 * expected.plane);
    EXPECT_NEAR(probed.map, expectedByProbes.map, 0.02 * expectedByProbes.map);
  }
}

std::vector<Case> Cases() {
  std::vector<Case> cases;
  for (int method = 3; method <= 27; ++method) {
    cases.push_back({method, "land-110m"});
    cases.push_back({method, "land-50m"});
  }
  return cases;
}

INSTANTIATE_TEST_SUITE_P(AllEngines, ClipWorld, testing::ValuesIn(Cases()), &CaseName);

}  // namespace orv::test
