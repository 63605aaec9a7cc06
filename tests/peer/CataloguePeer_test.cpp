// Systems of the shipped catalogue beside PROJ, which takes them by EPSG code from its own copy of the data set, so that
// no parameter passes through the generator.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "orv/datum/DatumDef.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/projection/Projector.h"
#include "orv/system/CSTransformer.h"
#include "tests/peer/Peer.h"
#include "tests/support/Paths.h"
#include "tests/support/ShippedCatalogue.h"

namespace orv {
namespace {

using shr::Vec2d;

constexpr double kMetresOfDegree = 111320.0;

/// An operation of the data set, either way, on longitudes and latitudes in degrees.
class PeerOperation {
 public:
  explicit PeerOperation(int code) : m_pContext(proj_context_create()) {
    proj_context_set_enable_network(m_pContext, 0);
    const std::string urn = "urn:ogc:def:coordinateOperation:EPSG::" + std::to_string(code);
    PJ* const operation = proj_create(m_pContext, urn.c_str());
    if (!operation) throw std::runtime_error("PROJ refuses " + urn);
    PJ* const source = proj_get_source_crs(m_pContext, operation);
    m_IsGeocentric = proj_get_type(source) == PJ_TYPE_GEOCENTRIC_CRS;
    if (m_IsGeocentric) {
      PJ* const target = proj_get_target_crs(m_pContext, operation);
      m_pSource = Cartesian(source);
      m_pTarget = Cartesian(target);
      proj_destroy(target);
      m_pOperation = operation;
    } else {
      m_pOperation = proj_normalize_for_visualization(m_pContext, operation);
      proj_destroy(operation);
    }
    proj_destroy(source);
  }
  ~PeerOperation() {
    for (PJ* const each : {m_pOperation, m_pSource, m_pTarget}) proj_destroy(each);
    proj_context_destroy(m_pContext);
  }
  PeerOperation(const PeerOperation&) = delete;
  PeerOperation& operator=(const PeerOperation&) = delete;

  Vec2d Run(const Vec2d& point, bool forward) const {
    PJ_COORD c = proj_coord(point.x, point.y, 0.0, 0.0);
    if (m_IsGeocentric) {
      c.lp.lam = proj_torad(point.x);
      c.lp.phi = proj_torad(point.y);
      c = proj_trans(forward ? m_pSource : m_pTarget, PJ_FWD, c);
      c = proj_trans(m_pOperation, forward ? PJ_FWD : PJ_INV, c);
      c = proj_trans(forward ? m_pTarget : m_pSource, PJ_INV, c);
      c.lp.lam = proj_todeg(c.lp.lam);
      c.lp.phi = proj_todeg(c.lp.phi);
    } else {
      c = proj_trans(m_pOperation, forward ? PJ_FWD : PJ_INV, c);
    }
    return {point.x + std::remainder(c.xy.x - point.x, 360.0), c.xy.y};
  }

 private:
  PJ* Cartesian(const PJ* crs) const {
    PJ* const ellipsoid = proj_get_ellipsoid(m_pContext, crs);
    double a = 0.0, rf = 0.0;
    proj_ellipsoid_get_parameters(m_pContext, ellipsoid, &a, nullptr, nullptr, &rf);
    proj_destroy(ellipsoid);
    std::ostringstream text;
    text.precision(17);
    text << "+proj=cart +a=" << a << " +rf=" << rf;
    return proj_create(m_pContext, text.str().c_str());
  }

  PJ_CONTEXT* m_pContext;
  PJ* m_pOperation = nullptr;
  PJ* m_pSource = nullptr;
  PJ* m_pTarget = nullptr;
  bool m_IsGeocentric = false;
};

/// From a datum to WGS 84 as the catalogue goes: "1763+1193", a negative code backward, "-" for no operation.
class PeerWay {
 public:
  explicit PeerWay(const std::string& operations) {
    std::istringstream stream(operations == "-" ? "" : operations);
    for (std::string code; std::getline(stream, code, '+');) {
      m_Forward.push_back(code[0] != '-');
      m_Steps.push_back(std::make_unique<PeerOperation>(std::abs(std::stoi(code))));
    }
  }
  Vec2d ToWgs84(Vec2d point) const {
    for (size_t i = 0; i < m_Steps.size(); ++i) point = m_Steps[i]->Run(point, m_Forward[i]);
    return point;
  }
  Vec2d FromWgs84(Vec2d point) const {
    for (size_t i = m_Steps.size(); i-- > 0;) point = m_Steps[i]->Run(point, !m_Forward[i]);
    return point;
  }

 private:
  std::vector<std::unique_ptr<PeerOperation>> m_Steps;
  std::vector<bool> m_Forward;
};

std::vector<Vec2d> Transformed(const ORVDef& source, const ORVDef& dest, const std::vector<Vec2d>& in) {
  CSTransformer transformer(&source, &dest, false, false);
  transformer.Initialize();
  std::vector<Vec2d> out;
  transformer.Transform(in, out);
  EXPECT_FALSE(transformer.CheckUnplottableResult());
  return out;
}

/// Metres by which a seven-parameter shift run backward may miss.  It reverses the signs only: what remains is the
/// rotation and scale difference of the translation, and their own second order on the earth's radius.
double ApproximateInverse(const DatumDef& datum) {
  DatumParameters p;
  datum.GetParameters(p);
  constexpr double kRadius = 6.4e6, kSecond = 3.141592653589793 / 180.0 / 3600.0;
  const double turned = std::hypot(p.rx, p.ry, p.rz) * kSecond + std::abs(p.k) * 1e-6;
  // Deliberate: a datum's prime meridian is taken off before the shift on the way back, so the shift then runs in a
  // frame that is turned by it.
  const double meridian = std::abs(p.pmShift) * 3600.0 * kSecond;
  return std::hypot(p.dx, p.dy, p.dz) * (turned + meridian) + kRadius * turned * turned;
}

/// A drawn system: the points on its own datum from Greenwich, and how PROJ takes them.
struct Drawn {
  explicit Drawn(const test::Row& row)
      : token(row.at("token")),
        code("EPSG:" + row.at("code")),
        base("EPSG:" + row.at("base")),
        operations(row.at("operations")),
        meridian(test::Number(row, "meridian")),
        turn(test::Number(row, "turn")),
        metres(test::Number(row, "metres")) {
    for (int i = 0; i < 5; ++i) {
      const std::string number = std::to_string(i);
      points.emplace_back(test::Number(row, "lon" + number), test::Number(row, "lat" + number));
    }
  }
  bool IsGeographic() const { return code == base; }
  /// The units of the system's plane in metres.
  double Metres() const { return IsGeographic() ? kMetresOfDegree * 360.0 / turn : metres; }
  /// In the base system's own angles.
  Vec2d Angles(const Vec2d& point) const {
    return {(point.x - meridian) * turn / 360.0, point.y * turn / 360.0};
  }

  std::string token, code, base, operations;
  double meridian, turn, metres;
  std::vector<Vec2d> points;
};

class CataloguePeer : public test::ShippedCatalogue {
 protected:
  /// From a system's own base to its plane, made once for each.
  static const test::Peer& Projection(const std::string& base, const std::string& code) {
    static std::map<std::string, std::unique_ptr<test::Peer>> peers;
    std::unique_ptr<test::Peer>& peer = peers[code];
    if (!peer) peer = std::make_unique<test::Peer>(base, code);
    return *peer;
  }
  static Vec2d Project(const Drawn& drawn, const Vec2d& point) {
    if (drawn.IsGeographic()) return drawn.Angles(point);
    return Projection(drawn.base, drawn.code).Forward(drawn.Angles(point));
  }
  static std::vector<Vec2d> Project(const Drawn& drawn, const std::vector<Vec2d>& points) {
    std::vector<Vec2d> plane;
    for (const Vec2d& point : points) plane.push_back(Project(drawn, point));
    return plane;
  }
  /// A geographic system's own angles in degrees, from its own meridian.
  static std::vector<Vec2d> Degrees(const Drawn& drawn, std::vector<Vec2d> angles) {
    for (Vec2d& angle : angles) angle = {angle.x * 360.0 / drawn.turn, angle.y * 360.0 / drawn.turn};
    return angles;
  }
  static bool IsEllipsoidalMercator(const ORVDef& system) {
    const ProjectionParameters& p = *system.GetProjection()->GetParameters();
    return p.method == ProjectionMethodMercator && p.ellipsoid.GetFlattening() != 0.0;
  }

  static constexpr double kTolerance = 0.002;
};

// What PROJ 9.1.1 cannot be asked about.  The worked examples of 2985 and 31300 are met in the catalogue's own test;
// 2986 has the same parameters as 2985.
const std::map<std::string, const char*> kWithoutPeer = {
    {"EPSG:2985", "PROJ has no Polar Stereographic variant C"},
    {"ORV:2986", "PROJ has no Polar Stereographic variant C"},
    {"ORV:31300", "PROJ drops the angle of the Belgian variant, 760 m"},
};

TEST_F(CataloguePeer, ThreeHundredDrawnSystems) {
  int systems = 0, withWay = 0, left = 0;
  std::set<int> methods;
  std::set<std::string> datums;
  for (const test::Row& row : test::ReadTable(test::SourceFolder() + "/tests/peer/catalogue_sample.tsv")) {
    const Drawn drawn(row);
    const ORVDef& system = System(drawn.token);
    SCOPED_TRACE(drawn.token + " " + system.GetName());
    if (kWithoutPeer.count(drawn.token)) {
      ++left;
      continue;
    }
    ++systems;
    methods.insert(system.GetProjection()->GetMethod());
    datums.insert(system.GetDatum()->GetToken());
    const std::vector<Vec2d> plane = Project(drawn, drawn.points);

    if (system.GetProjection()->GetMethod() != ProjectionMethodUnprojected) {
      std::vector<Vec2d> ours = drawn.points;
      Projector(*system.GetProjection()).TransformForward(ours);
      EXPECT_LE(test::LargestDistance(ours, plane) * drawn.Metres(), kTolerance);
    }
    if (drawn.operations == "none") {
      EXPECT_TRUE(system.GetDatum()->IsUnknown());
      continue;
    }

    ++withWay;
    const PeerWay way(drawn.operations);
    std::vector<Vec2d> wgs84, expected;
    for (const Vec2d& point : drawn.points) {
      wgs84.push_back(way.ToWgs84(point));
      expected.push_back(Project(drawn, way.FromWgs84(wgs84.back())));
    }
    const ORVDef& world = System("EPSG:4326");
    // The way from WGS 84 runs the datum's shift backward.
    const std::vector<Vec2d> placed = Transformed(world, system, wgs84);
    const double apart =
        drawn.IsGeographic()
            ? test::LargestArc(Degrees(drawn, placed), Degrees(drawn, expected)) * kMetresOfDegree
            : test::LargestDistance(placed, expected) * drawn.metres;
    EXPECT_LE(apart, kTolerance + ApproximateInverse(*system.GetDatum()));
    // The way to WGS 84 runs the projection backward; Mercator's has the base 2.71828, deliberately: up to 2.9 m.
    EXPECT_LE(test::LargestArc(Transformed(system, world, plane), wgs84) * kMetresOfDegree,
              IsEllipsoidalMercator(system) ? 2.9 : kTolerance);
  }
  EXPECT_EQ(systems + left, 300);
  EXPECT_GT(systems, 230);
  EXPECT_GT(withWay, 200);
  EXPECT_GE(methods.size(), 7u);
  EXPECT_GT(datums.size(), 180u);
  RecordProperty("left_to_engines_that_are_missing", left);
}

// The transformer's short cut looks at the projections alone: zones of one number on different datums must not be
// taken for one, or a datum step would run on eastings and northings.
TEST_F(CataloguePeer, UtmZonesOfOtherDatumsAreNotTakenForTheSame) {
  struct Other {
    int first, last;  // zones
    int code;         // of zone 0
    bool south;
    const char* base;
    const char* operations;  // of the datum's default
  };
  const Other kOthers[] = {{28, 37, 25800, false, "EPSG:4258", "-"},    // ETRS89
                           {1, 23, 26900, false, "EPSG:4269", "-"},     // NAD83
                           {24, 24, 9688, false, "EPSG:4269", "-"},     //
                           {59, 60, 3313, false, "EPSG:4269", "-"},     //
                           {1, 60, 32200, false, "EPSG:4322", "1238"},  // WGS 72
                           {1, 60, 32300, true, "EPSG:4322", "1238"}};
  int pairs = 0;
  for (const Other& other : kOthers) {
    for (int zone = other.first; zone <= other.last; ++zone) {
      const std::string mine = std::to_string((other.south ? 32700 : 32600) + zone);
      const std::string theirs = std::to_string(other.code + zone);
      SCOPED_TRACE(mine + " and " + theirs);
      const ORVDef &a = SystemOfCode(mine), &b = SystemOfCode(theirs);
      // Far from the mainland NAD83 has another way, which stands behind the datum's code.
      const std::string datum = b.GetDatum()->GetToken();
      const PeerWay way(datum.find('-') == std::string::npos ? other.operations
                                                             : datum.substr(datum.find('-') + 1));
      const test::Peer peerA("EPSG:4326", "EPSG:" + mine), peerB(other.base, "EPSG:" + theirs);
      std::vector<Vec2d> inA, inB;
      for (const double lon : {-2.9, 0.4, 2.9}) {
        for (const double lat : {0.7, 27.0, 52.0, 83.0}) {
          const Vec2d there = {zone * 6.0 - 183.0 + lon, other.south ? -lat : lat};
          inB.push_back(peerB.Forward(there));
          inA.push_back(peerA.Forward(way.ToWgs84(there)));
        }
      }
      // A third of a millimetre is the series' and the two ellipsoids'; the rest is room.
      EXPECT_LE(test::LargestDistance(Transformed(a, b, inA), inB), 0.001);
      EXPECT_LE(test::LargestDistance(Transformed(b, a, inB), inA), 0.001);
      ++pairs;
    }
  }
  EXPECT_EQ(pairs, 10 + 24 + 2 + 60 + 60);
}

// Systems of which the peer differs more than by 2 mm forward or 5 cm inverse somewhere in the box of their area: the
// series of the Transverse Mercator ends far from the central meridian.  Metres.
struct Exception {
  const char* token;
  double forward, inverse;
  const char* name;
};
// clang-format off
constexpr Exception kExceptions[] = {
    {"EPSG:2193", 0.012, 0.094, "NZGD2000 / New Zealand Transverse Mercator 2000"},
    {"EPSG:2931", 0.0022, 0.05, "Beduaram / TM 13 NE"},
    {"EPSG:3006", 0.014, 0.98, "SWEREF99 TM"},
    {"EPSG:3067", 0.005, 0.34, "ETRS89 / TM35FIN(E,N)"},
    {"EPSG:3177", 0.12, 0.75, "LGD2006 / Libya TM"},
    {"EPSG:3296", 0.0021, 0.05, "RGPF / UTM zone 5S"},
    {"EPSG:3893", 0.036, 0.23, "ED50 / Iraq National Grid"},
    {"EPSG:4484", 0.0022, 0.05, "Mexico ITRF92 / UTM zone 11N"},
    {"EPSG:5048", 0.005, 0.34, "ETRS89 / TM35FIN(N,E)"},
    {"EPSG:5179", 0.014, 0.098, "Korea 2000 / Unified CS"},
    {"EPSG:5316", 0.0021, 0.13, "ETRS89 / Faroe TM"},
    {"EPSG:5629", 0.13, 0.05, "Moznet / UTM zone 38S"},
    {"EPSG:5887", 0.0036, 0.05, "TGD2005 / Tonga Map Grid"},
    {"EPSG:6366", 0.0022, 0.05, "Mexico ITRF2008 / UTM zone 11N"},
    {"EPSG:6646", 0.036, 0.23, "Karbala 1979 / Iraq National Grid"},
    {"EPSG:6875", 0.018, 0.14, "RDN2008 / Italy zone (N-E)"},
    {"EPSG:6876", 0.018, 0.14, "RDN2008 / Zone 12 (N-E)"},
    {"EPSG:7794", 0.018, 0.14, "RDN2008 / Italy zone (E-N)"},
    {"EPSG:7795", 0.018, 0.14, "RDN2008 / Zone 12 (E-N)"},
    {"EPSG:9377", 1.3, 2.0, "MAGNA-SIRGAS / Origen-Nacional"},
    {"EPSG:27700", 0.0067, 0.15, "OSGB36 / British National Grid"},
    {"EPSG:29333", 0.013, 0.05, "Schwarzeck / UTM zone 33S"},
    {"EPSG:31992", 0.0093, 0.05, "SIRGAS 1995 / UTM zone 17S"},
    {"EPSG:32766", 0.024, 0.087, "WGS 84 / TM 36 SE"},
    {"ORV:28232", 0.33, 0.36, "Pointe Noire / UTM zone 32S"},
    {"ORV:31028", 0.0029, 0.05, "Yoff / UTM zone 28N"},
};
// clang-format on

/// PROJ's projected system: the way to it from its base, its area of use and how the base counts longitudes.
struct PeerSystem {
  /// A context takes a while to open PROJ's data base: one for all.
  PeerSystem(PJ_CONTEXT* context, const std::string& code) : m_pContext(context) {
    PJ* const system = proj_create(m_pContext, code.c_str());
    PJ* const geographic = proj_crs_get_geodetic_crs(m_pContext, system);
    const std::string base = std::string("EPSG:") + proj_get_id_code(geographic, 0);
    PJ* const way = proj_create_crs_to_crs(m_pContext, base.c_str(), code.c_str(), nullptr);
    m_pWay = way ? proj_normalize_for_visualization(m_pContext, way) : nullptr;
    proj_get_area_of_use(m_pContext, system, &west, &south, &east, &north, nullptr);
    if (east < west) east += 360.0;
    PJ* const prime = proj_get_prime_meridian(m_pContext, geographic);
    double longitude = 0.0, radians = 0.0;
    proj_prime_meridian_get_parameters(m_pContext, prime, &longitude, &radians, nullptr);
    meridian = proj_todeg(longitude * radians);
    PJ* const angles = proj_crs_get_coordinate_system(m_pContext, geographic);
    proj_cs_get_axis_info(m_pContext, angles, 0, nullptr, nullptr, nullptr, &unit, nullptr, nullptr, nullptr);
    unit = proj_todeg(unit);
    PJ* const plane = proj_crs_get_coordinate_system(m_pContext, system);
    proj_cs_get_axis_info(m_pContext, plane, 0, nullptr, nullptr, nullptr, &metres, nullptr, nullptr,
                          nullptr);
    for (PJ* const each : {system, geographic, way, prime, angles, plane}) proj_destroy(each);
    if (!m_pWay) throw std::runtime_error("PROJ refuses " + code);
  }
  ~PeerSystem() { proj_destroy(m_pWay); }
  PeerSystem(const PeerSystem&) = delete;
  PeerSystem& operator=(const PeerSystem&) = delete;

  /// Of a point in degrees from Greenwich; NaN where PROJ has none.
  Vec2d Forward(const Vec2d& point) const {
    proj_errno_reset(m_pWay);
    const PJ_COORD c =
        proj_trans(m_pWay, PJ_FWD, proj_coord((point.x - meridian) / unit, point.y / unit, 0.0, 0.0));
    return proj_errno(m_pWay) == 0 ? Vec2d(c.xy.x, c.xy.y) : Vec2d(NAN, NAN);
  }

  double west = 0.0, south = 0.0, east = 0.0, north = 0.0;
  double meridian = 0.0, unit = 1.0, metres = 1.0;  // degrees, degrees, metres

 private:
  PJ_CONTEXT* m_pContext;
  PJ* m_pWay = nullptr;
};

// Every projected system for which there is an engine, over the whole box of its area, in both directions.
TEST_F(CataloguePeer, EveryProjectedSystemInItsWholeArea) {
  std::map<std::string, Exception> exceptions;
  for (const Exception& row : kExceptions) exceptions.emplace(row.token, row);
  int systems = 0;
  PJ_CONTEXT* const context = proj_context_create();
  proj_log_level(context, PJ_LOG_NONE);
  proj_context_set_enable_network(context, 0);
  for (const ORVDef* const system : Systems()) {
    const ProjectionParameters& p = *system->GetProjection()->GetParameters();
    // Plain geographic systems, and geographic ones as maps of their angles.
    if (p.method == ProjectionMethodUnprojected || p.method == ProjectionMethodEquidistantCylindrical)
      continue;
    if (kWithoutPeer.count(system->GetToken())) continue;
    SCOPED_TRACE(std::string(system->GetToken()) + " " + system->GetName());
    const std::string code = "EPSG:" + std::to_string(system->GetPOSC());
    const PeerSystem peer(context, code);
    const double centre = p.method == ProjectionMethodHotine ? p.Lon1 : p.Lon0;
    const double margin = p.method == ProjectionMethodMercator ? 85.0 : 89.9;
    std::vector<Vec2d> points, plane;
    for (int i = 0; i <= 6; ++i) {
      for (int j = 0; j <= 6; ++j) {
        const double lon = peer.west + (peer.east - peer.west) * (0.001 + 0.998 * i / 6.0);
        const double lat = peer.south + (peer.north - peer.south) * (0.001 + 0.998 * j / 6.0);
        points.emplace_back(centre + std::remainder(lon - centre, 360.0), std::clamp(lat, -margin, margin));
        plane.push_back(peer.Forward(points.back()));
      }
    }
    std::vector<Vec2d> there = points, back = plane;
    Projector(*system->GetProjection()).TransformForward(there);
    Projector(*system->GetProjection()).TransformInverse(back);
    const auto exception = exceptions.find(system->GetToken());
    const bool isException = exception != exceptions.end();
    EXPECT_LE(test::LargestDistance(there, plane) * peer.metres,
              isException ? exception->second.forward : kTolerance);
    const double inverse = IsEllipsoidalMercator(*system) ? 2.9 : 0.05;
    EXPECT_LE(test::LargestArc(back, points) * kMetresOfDegree,
              isException ? exception->second.inverse : inverse);
    ++systems;
  }
  proj_context_destroy(context);
  EXPECT_GT(systems, 3700);
}

}  // namespace
}  // namespace orv
