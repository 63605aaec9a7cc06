// The datum methods.  PROJ gets the same parameters, or the same nodes of a grid.
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <memory>

#include "bench/Cases.h"
#include "bench/Peers.h"
#include "orv/core/ORVGlobals.h"
#include "orv/datum/DatumConverter.h"
#include "orv/datum/DatumList.h"
#include "orv/datum/GridFiles.h"
#include "orv/tables/EllipsoidList.h"
#include "tests/support/GridBytes.h"
#include "tests/support/TempFolder.h"

namespace orv::bench {

namespace {

constexpr Box kEurope = {5, 15, 45, 55};

DatumDef Datum(const char* token) {
  DatumDef datum;
  ORVKnownDatumsList.FindByToken(token, &datum);
  return datum;
}

std::function<Work()> Conversion(const DatumDef& from, const DatumDef& to) {
  return [from, to]() -> Work {
    const auto converter = std::make_shared<DatumConverter>(&from, &to);
    converter->Initialize();
    return [converter](shr::Vec2d* points, size_t count) { converter->Convert(points, count); };
  };
}

/// `inverse` empty: there is none.
Case Shift(DatumMethod method, const char* what, Goal goal, const Box& box,
           const std::function<Work()>& forward, const std::function<Work()>& inverse,
           const std::string& peer) {
  Case result;
  result.subject = std::string(DatumDef::MethodToName(method)) + what;
  result.goal = result.inverseGoal = goal;
  result.draw = [box](size_t count) { return RandomPoints(box, count); };
  Side ours;
  ours.who = "orv";
  ours.make = [forward, inverse] { return Both{forward(), inverse ? inverse() : Work()}; };
  result.sides = {ours};
  if (!peer.empty()) result.sides.push_back(ProjShift(peer));
  result.apart = 1e-7;  // a centimetre
  return result;
}

DatumDef GridDatum(DatumMethod method, DatumTarget special, bool inverse = false) {
  DatumParameters p;
  p.method = method;
  p.target = method == DatumMethodNone ? DatumTargetWGS84 : DatumTargetNAD83;
  ORVKnownEllipsoidsList.FindByToken("EPSG:7030", &p.ellipsoid);
  p.inverse = inverse;
  DatumDef datum(&p, 0);
  datum.SetSpecial(special);
  return datum;
}

/// NADCON grids of the published ones' number, sizes and spacings, with shifts of their order; PROJ gets the nodes of
/// the first, in which all points lie, as an NTv2 file.
Case Nadcon() {
  static const test::TempFolder folder;  // as long as the process
  const auto west = [](int col, int row) {
    return 1.5F + 0.01F * static_cast<float>(col) - 0.004F * static_cast<float>(row);
  };
  const auto north = [](int col, int row) {
    return 0.5F - 0.003F * static_cast<float>(col) + 0.002F * static_cast<float>(row);
  };
  const test::NadconLayout layouts[] = {
      {273, 121, -131.0F, 0.25F, 20.0F, 0.25F},        {529, 249, -194.0F, 0.125F, 46.0F, 0.125F},
      {281, 201, -161.0F, 0.025F, 18.0F, 0.025F},      {81, 41, -68.0F, 0.05F, 17.0F, 0.05F},
      {121, 61, -171.0F, 1.0F / 60, 56.0F, 1.0F / 60}, {41, 21, -171.0F, 0.05F, 57.0F, 0.05F}};
  for (size_t i = 0; i < std::size(layouts); ++i) {
    folder.Write(std::to_string(i) + ".los", test::NadconFile(layouts[i], west));
    folder.Write(std::to_string(i) + ".las", test::NadconFile(layouts[i], north));
  }
  const std::string nodes = folder.Write(
      "nodes.gsb",
      test::NTv2File({test::NTv2Box("NODES", "NONE", -131, 20, 0.25, 273, 121, [&](int col, int row) {
        return test::NTv2Shift{north(col + 1, row + 1), west(col + 1, row + 1)};
      })}));
  ORVSetNadconGridPath(folder.Path().c_str());
  const DatumDef nad27 = GridDatum(DatumMethodNADCON, DatumTargetNAD27);
  const DatumDef nad83 = GridDatum(DatumMethodNone, DatumTargetNAD83);
  Case result = Shift(DatumMethodNADCON, "", Goal::Grid, {-125, -70, 25, 45}, Conversion(nad27, nad83),
                      Conversion(nad83, nad27), "+proj=hgridshift +grids=" + nodes);
  result.apart = 4e-6;  // ours shifts a whole cell as its node; neighbours differ by 0.01 seconds
  return result;
}

Case NTv2(const std::string& path) {
  ORVSetNTv2GridFile(path.c_str());
  const DatumDef nad83 = GridDatum(DatumMethodNone, DatumTargetNAD83);
  return Shift(DatumMethodNTV2, "", Goal::Grid, {-5, 9.5, 41.5, 51.5},
               Conversion(GridDatum(DatumMethodNTV2, DatumTargetNone), nad83),
               Conversion(GridDatum(DatumMethodNTV2, DatumTargetNone, true), nad83),
               "+proj=hgridshift +grids=" + path);
}

}  // namespace

std::vector<Case> DatumCases() {
  const DatumDef wgs84 = Datum("EPSG:6326"), dhdn = Datum("EPSG:6314");
  DatumDef ed50 = Datum("EPSG:6230");  // three shifts, which the catalogue has as seven parameters
  ed50.SetMethod(DatumMethodMolodensky, false);
  DatumParameters mre;
  mre.method = DatumMethodMRE;
  mre.target = DatumTargetWGS84;
  mre.mreType = DatumMRETypeED50;

  std::vector<Case> cases;
  cases.push_back(
      Shift(DatumMethodMolodensky, "", Goal::Shift, kEurope, Conversion(ed50, wgs84), Conversion(wgs84, ed50),
            "+proj=molodensky +ellps=intl +dx=-87 +dy=-98 +dz=-121 +da=-251 +df=-1.41927027e-05"));
  cases.push_back(
      Shift(DatumMethodBursaWolf, "", Goal::Shift, kEurope, Conversion(dhdn, wgs84), Conversion(wgs84, dhdn),
            "+proj=pipeline +step +proj=cart +ellps=bessel +step +proj=helmert +x=598.1 +y=73.7 +z=418.2 "
            "+rx=0.202 +ry=0.045 +rz=-2.455 +s=6.7 +convention=position_vector "
            "+step +inv +proj=cart +ellps=WGS84"));
  cases.back().threads = true;
  cases.push_back(Shift(DatumMethodMRE, " (ED50)", Goal::Shift, kEurope, Conversion(DatumDef(&mre, 0), wgs84),
                        nullptr,
                        ""));  // PROJ has none
  cases.push_back(Nadcon());
  cases.push_back(NTv2("/usr/share/proj/ntf_r93.gsb"));  // of the package proj-data
  return cases;
}

}  // namespace orv::bench
