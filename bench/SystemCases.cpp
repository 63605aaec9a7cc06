// Five whole transformations between systems of the catalogue, and what is done once.
//
// PROJ gets the operation that the catalogue's parameters describe, as a pipeline: its own choice between two codes would
// go by grids or by several candidates for each point, which is more work.  Degrees in and out on both sides.
#include <memory>
#include <stdexcept>

#include "bench/Cases.h"
#include "bench/Peers.h"
#include "orv/datum/DatumConverter.h"
#include "orv/datum/DatumList.h"
#include "orv/projection/Projector.h"
#include "orv/system/CSList.h"
#include "orv/system/CSTransformer.h"
#include "orv/system/ORVDef.h"
#include "tests/support/World.h"

namespace orv::bench {

namespace {

std::shared_ptr<const CSDef> Known(const std::string& token) {
  const CSDef* const system = ORVKnownSystemsList.Enum(ORVKnownSystemsList.FindByToken(token.c_str()));
  if (!system) throw std::runtime_error("the catalogue has no " + token);
  return std::shared_ptr<const CSDef>(system->Clone());
}

Case Transformation(const std::string& fromToken, const std::string& toToken, const Box& box,
                    const std::string& peer) {
  const std::shared_ptr<const CSDef> from = Known(fromToken), to = Known(toToken);
  Case result;
  result.subject = fromToken + " to " + toToken;
  result.goal = Goal::System;
  result.isWhole = true;
  result.draw = [from, box](size_t count) {
    Points points = RandomPoints(box, count);
    const ProjectionDef* const projection = static_cast<const ORVDef&>(*from).GetProjection();
    if (static_cast<const ORVDef&>(*from).HasProjection(false, true)) {
      Projector(*projection).TransformForward(points);
    }
    return points;
  };
  Side ours;
  ours.who = "orv";
  ours.make = [from, to] {
    const auto transformer = std::make_shared<CSTransformer>(from.get(), to.get(), false, false);
    transformer->Initialize();
    return Both{
        [transformer](shr::Vec2d* points, size_t count) { transformer->Transform(points, points, count); },
        Work()};
  };
  result.sides = {ours, ProjSide(peer, false, false)};
  result.apart = toToken == "EPSG:4326" ? 1e-7 : 0.01;  // a centimetre
  return result;
}

const std::string kToDegrees = " +step +proj=unitconvert +xy_in=rad +xy_out=deg";

std::string Helmert(const char* source, const char* parameters) {
  return std::string(" +step +proj=cart +ellps=") + source + " +step +proj=helmert " + parameters +
         " +convention=position_vector +step +inv +proj=cart +ellps=WGS84";
}

bool TakePolygon(void* context, size_t, const size_t*, const shr::Vec2d*) {
  ++*static_cast<size_t*>(context);
  return true;
}
bool TakeLine(void*, size_t, const shr::Vec2d*) { return true; }

/// The land of the world, clipped polygon by polygon: points of the input for each microsecond.
Once Clipping(ProjectionMethod method, double lon, double lat) {
  struct Flat {
    std::vector<size_t> counts;
    Points points;
  };
  auto land = std::make_shared<std::vector<Flat>>();
  size_t points = 0;
  for (const test::LandPolygon& polygon : test::ReadLand("land-50m")) {
    Flat& flat = land->emplace_back();
    for (const auto& ring : polygon) {
      flat.counts.push_back(ring.size());
      flat.points.insert(flat.points.end(), ring.begin(), ring.end());
      points += ring.size();
    }
  }
  ProjectionDef def(method);
  def.SetParameter(ProjectionParameterIDLon0, lon);
  def.SetParameter(ProjectionParameterIDLat0, lat);
  const auto projector = std::make_shared<Projector>(def);
  return {std::string("clip land-50m for ") + ProjectionDef::MethodToName(method), "million points/s",
          static_cast<double>(points), [land, projector] {
            size_t pieces = 0;
            for (const Flat& flat : *land) {
              projector->PreclipPolygon(&pieces, flat.counts.size(), flat.counts.data(), flat.points.data(),
                                        &TakePolygon, &TakeLine);
            }
            if (pieces == 0) throw std::runtime_error("clipping leaves nothing");
          }};
}

}  // namespace

std::vector<Case> SystemCases() {
  std::vector<Case> cases;
  const std::string step = "+proj=pipeline +step ", inverse = step + "+inv ";
  cases.push_back(Transformation("EPSG:4326", "EPSG:32633", {12, 18, 0, 84},
                                 step + "+proj=unitconvert +xy_in=deg +xy_out=rad "
                                        "+step +proj=utm +approx +zone=33 +ellps=WGS84"));
  cases.back().huge = true;
  cases.push_back(Transformation(
      "EPSG:31467", "EPSG:4326", {6, 12, 45, 55},
      inverse + "+proj=tmerc +approx +lon_0=9 +x_0=3500000 +ellps=bessel" +
          Helmert("bessel", "+x=598.1 +y=73.7 +z=418.2 +rx=0.202 +ry=0.045 +rz=-2.455 +s=6.7") + kToDegrees));
  cases.back().threads = true;
  cases.push_back(Transformation(
      "EPSG:27700", "EPSG:4326", {-6, 2, 50, 59},
      inverse +
          "+proj=tmerc +approx +lat_0=49 +lon_0=-2 +k=0.9996012717 +x_0=400000 +y_0=-100000 +ellps=airy" +
          Helmert("airy", "+x=446.448 +y=-125.157 +z=542.06 +rx=0.15 +ry=0.247 +rz=0.842 +s=-20.489") +
          kToDegrees));
  cases.push_back(Transformation("EPSG:2154", "EPSG:4326", {-5, 10, 41, 51},
                                 inverse +
                                     "+proj=lcc +lat_0=46.5 +lon_0=3 +lat_1=49 +lat_2=44 +x_0=700000 "
                                     "+y_0=6600000 +ellps=GRS80" +
                                     kToDegrees));
  cases.push_back(Transformation("EPSG:32632", "EPSG:3395", {6, 12, 0, 80},
                                 inverse + "+proj=utm +approx +zone=32 +ellps=WGS84 "
                                           "+step +proj=merc +lon_0=0 +k=1 +ellps=WGS84"));
  return cases;
}

std::vector<Once> OnceCases() {
  const std::shared_ptr<const CSDef> system = Known("EPSG:32632");
  std::string text;
  system->EncodeToText(text);
  DatumDef dhdn, wgs84;
  ORVKnownDatumsList.FindByToken("EPSG:6314", &dhdn);
  ORVKnownDatumsList.FindByToken("EPSG:6326", &wgs84);
  return {{"decode a system", "microseconds", 0.0,
           [text] {
             if (!std::unique_ptr<CSDef>(CSDef::BuildFromEncodedText(text, nullptr))) {
               throw std::runtime_error("a system is not decoded");
             }
           }},
          {"plan a datum route", "microseconds", 0.0,
           [dhdn, wgs84] { DatumConverter(&dhdn, &wgs84).Initialize(); }},
          {"load the datums", "microseconds", 0.0,
           [] {
             DatumList list;
             list.Load(nullptr, true);
             if (list.Count() == 0) throw std::runtime_error("no datum is loaded");
           }},
          Clipping(ProjectionMethodMercator, 100.0, 0.0),
          Clipping(ProjectionMethodCassini, 100.0, 40.0)};
}

}  // namespace orv::bench
