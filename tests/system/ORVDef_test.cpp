#include "orv/system/ORVDef.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>

#include "orv/datum/DatumDef.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/system/UCSDef.h"
#include "orv/warp/WarpDef.h"
#include "tests/support/MemoryArchive.h"
#include "tests/support/Raises.h"

namespace orv {
namespace {

using test::MemoryArchive;

constexpr const char* kBadRecord =
    "Previously serialized global coordinate system (ORV) data is corrupt or has an unrecognized version.";

std::string Encoded(const CSDef& system) {
  std::string text;
  system.EncodeToText(text);
  return text;
}

ORVDef Decoded(const std::string& text) {
  ORVDef system;
  system.DecodeFromText(text, nullptr);
  return system;
}

DatumDef Molodensky(double dx) {
  DatumParameters p;
  p.method = DatumMethodMolodensky;
  p.target = DatumTargetWGS84;
  p.ellipsoid.SetMajorRadius(6378388.0);
  p.ellipsoid.SetFlattening(1.0 / 297.0);
  p.dx = dx;
  p.dy = -98.0;
  p.dz = -121.0;
  return DatumDef(&p, 4230);
}

ProjectionDef Mercator(double lon0) {
  ProjectionDef projection(ProjectionMethodMercator);
  projection.SetParameter(ProjectionParameterIDLon0, lon0);
  return projection;
}

WarpDef Affine(double c2) {
  WarpDef warp;
  warp.SetCoefficients(1.0, 0.0, c2, 0.0, 1.0, 5.0);
  return warp;
}

ORVDef Full() {
  const DatumDef datum = Molodensky(-87.0);
  const ProjectionDef projection = Mercator(9.0);
  const WarpDef warp = Affine(3.0);
  ORVDef system(&datum, &projection, &warp);
  system.SetName("Group|Full");
  system.SetToken("FULL");
  system.SetComment("all parts");
  system.SetPOSC(32632);
  system.SetUSGS(7);
  system.SetLegacyName("old full");
  return system;
}

// ---- state -----------------------------------------------------------------------------------------------

TEST(ORVDef, BeginsEmpty) {
  const ORVDef system;
  EXPECT_EQ(system.GetDatum(), nullptr);
  EXPECT_EQ(system.GetProjection(), nullptr);
  EXPECT_EQ(system.GetWarp(), nullptr);
  EXPECT_EQ(system.GetPOSC(), 0);
  EXPECT_EQ(system.GetUSGS(), 0);
  EXPECT_EQ(system.GetLegacyName(), nullptr);
  EXPECT_STREQ(system.GetName(), "");
  EXPECT_FALSE(system.HasDatum(false));
  EXPECT_FALSE(system.HasProjection(false, false));
  EXPECT_FALSE(system.HasWarp());
  EXPECT_TRUE(system.Check());
}

TEST(ORVDef, KeepsCodesAndLegacyName) {
  ORVDef system;
  system.SetPOSC(-5);
  system.SetUSGS(12);
  system.SetLegacyName("older");
  EXPECT_EQ(system.GetPOSC(), -5);
  EXPECT_EQ(system.GetUSGS(), 12);
  EXPECT_STREQ(system.GetLegacyName(), "older");
  system.SetLegacyName("");
  EXPECT_EQ(system.GetLegacyName(), nullptr);
  system.SetLegacyName("older");
  system.SetLegacyName(nullptr);
  EXPECT_EQ(system.GetLegacyName(), nullptr);
}

TEST(ORVDef, HoldsCopiesOfItsParts) {
  DatumDef datum = Molodensky(-87.0);
  ProjectionDef projection = Mercator(9.0);
  WarpDef warp = Affine(3.0);
  const ORVDef system(&datum, &projection, &warp);
  datum.Flush();
  projection.Flush();
  warp.Flush();
  ASSERT_NE(system.GetDatum(), nullptr);
  EXPECT_EQ(system.GetDatum()->GetParameter(DatumParameterIDdx), -87.0);
  ASSERT_NE(system.GetProjection(), nullptr);
  EXPECT_EQ(system.GetProjection()->GetParameter(ProjectionParameterIDLon0), 9.0);
  ASSERT_NE(system.GetWarp(), nullptr);
  double c[6];
  system.GetWarp()->GetCoefficients(c);
  EXPECT_EQ(c[2], 3.0);
}

TEST(ORVDef, HasDatumMayAskForAMethod) {
  ORVDef system;
  const DatumDef unknown;  // method 0 passes a datum's own check
  system.SetDatum(&unknown);
  EXPECT_TRUE(system.HasDatum(false));
  EXPECT_FALSE(system.HasDatum(true));
  const DatumDef datum = Molodensky(-87.0);
  system.SetDatum(&datum);
  EXPECT_TRUE(system.HasDatum(true));
}

TEST(ORVDef, HasProjectionMayAskForAKnownAndForAProjectedOne) {
  ORVDef system;
  const ProjectionDef geographic(ProjectionMethodUnprojected);
  system.SetProjection(&geographic);
  EXPECT_TRUE(system.HasProjection(false, false));
  EXPECT_TRUE(system.HasProjection(true, false));
  EXPECT_FALSE(system.HasProjection(false, true));
  EXPECT_FALSE(system.HasProjection(true, true));

  const ProjectionDef other(ProjectionMethodOther);
  system.SetProjection(&other);
  EXPECT_TRUE(system.HasProjection(true, true));  // 2 lies in 1 to 27

  const ORVDef unknown = Decoded("<{6,ORVDef[1]><{10,Projection[1]><}10,Projection[1]><}6,ORVDef[1]>");
  EXPECT_TRUE(unknown.HasProjection(false, false));
  EXPECT_TRUE(unknown.HasProjection(false, true));
  EXPECT_FALSE(unknown.HasProjection(true, false));
}

TEST(ORVDef, HasWarpNeedsAMethod) {
  const ORVDef system = Decoded("<{6,ORVDef[1]><{6,Georef[1]><}6,Georef[1]><}6,ORVDef[1]>");
  ASSERT_NE(system.GetWarp(), nullptr);
  EXPECT_FALSE(system.HasWarp());
  EXPECT_TRUE(Full().HasWarp());
}

TEST(ORVDef, FlushKeepsItsComment) {
  ORVDef system = Full();
  system.Flush();
  EXPECT_STREQ(system.GetComment(), "all parts");  // deliberate
  EXPECT_STREQ(system.GetName(), "");
  EXPECT_STREQ(system.GetToken(), "");
  EXPECT_EQ(system.GetPOSC(), 0);
  EXPECT_EQ(system.GetUSGS(), 0);
  EXPECT_EQ(system.GetLegacyName(), nullptr);
  EXPECT_EQ(system.GetDatum(), nullptr);
  EXPECT_EQ(system.GetProjection(), nullptr);
  EXPECT_EQ(system.GetWarp(), nullptr);
  EXPECT_EQ(system.Type(), CSTypeORV);
}

void ExpectIsFull(const ORVDef& system) {
  EXPECT_EQ(Encoded(system), Encoded(Full()));
  EXPECT_EQ(system.GetPOSC(), 32632);
  EXPECT_EQ(system.GetUSGS(), 7);
  EXPECT_STREQ(system.GetLegacyName(), "old full");
  EXPECT_STREQ(system.GetComment(), "all parts");
}

TEST(ORVDef, CopiesEverythingDeeply) {
  const ORVDef full = Full();
  const ORVDef copy(full);
  ExpectIsFull(copy);
  EXPECT_NE(copy.GetDatum(), full.GetDatum());
  EXPECT_NE(copy.GetProjection(), full.GetProjection());
  EXPECT_NE(copy.GetWarp(), full.GetWarp());

  const DatumDef other = Molodensky(1.0);
  ORVDef assigned(&other, nullptr, nullptr);
  assigned.SetComment("to be overwritten");
  assigned = full;
  ExpectIsFull(assigned);

  const std::unique_ptr<ORVDef> clone(full.Clone());
  ExpectIsFull(*clone);

  ORVDef all;
  all.CopyAll(full);
  ExpectIsFull(all);

  // What the source lacks goes, its empty comment included.
  all.CopyAll(ORVDef());
  EXPECT_EQ(Encoded(all), Encoded(ORVDef()));
  EXPECT_EQ(all.GetPOSC(), 0);
}

TEST(ORVDef, CopiesOfItselfChangeNothing) {
  ORVDef system = Full();
  system.CopyAll(system);
  ExpectIsFull(system);
  const ORVDef& same = system;
  system = same;
  ExpectIsFull(system);
}

TEST(ORVDef, InvalidPartsAreCopiedAsTheyAre) {
  // A projection of method 0, a datum without target and a warp of method 0: the setters would refuse two of
  // them.
  const std::string text =
      "<{6,ORVDef[1]>\r\n"
      "<{10,Projection[1]>\r\n<s6,Method[7]=\"Unknown\">\r\n<}10,Projection[1]>\r\n"
      "<{5,Datum[1]>\r\n<d4,POSC[1]=0>\r\n<s6,Method[4]=\"None\">\r\n<s6,Target[4]=\"NONE\">\r\n<}5,Datum[1]>\r\n"
      "<{6,Georef[1]>\r\n<}6,Georef[1]>\r\n"
      "<}6,ORVDef[1]>\r\n";
  const ORVDef system = Decoded(text);
  EXPECT_FALSE(system.Check());
  const std::unique_ptr<ORVDef> clone(system.Clone());
  ASSERT_NE(clone->GetProjection(), nullptr);
  ASSERT_NE(clone->GetDatum(), nullptr);
  ASSERT_NE(clone->GetWarp(), nullptr);
  EXPECT_EQ(clone->GetProjection()->GetMethod(), ProjectionMethodUnknown);
  EXPECT_EQ(clone->GetDatum()->GetMethod(), DatumMethodNone);
  EXPECT_EQ(Encoded(*clone), Encoded(system));
}

// ---- setters of parts ------------------------------------------------------------------------------------

TEST(ORVDef, SettersRefuseInvalidPartsAndLeaveNone) {
  DatumParameters datumParameters;
  datumParameters.method = DatumMethodMolodensky;  // and no target
  const DatumDef badDatum(&datumParameters, 0);
  ProjectionDef badProjection = Mercator(9.0);
  badProjection.SetParameter(ProjectionParameterIDLon0, 360.0);
  const ProjectionDef noProjection;
  ProjectionDef flatProjection = Mercator(9.0);
  flatProjection.SetParameter(ProjectionParameterIDEllipsoid, EllipsoidDef());
  WarpDef badWarp;
  badWarp.SetMethod(static_cast<WarpMethod>(1));  // and no points
  const WarpDef noWarp;

  ORVDef system = Full();
  EXPECT_RAISES(system.SetDatum(&badDatum), 1032, "ORVDef", "Datum parameters not valid.");
  EXPECT_EQ(system.GetDatum(), nullptr);

  EXPECT_RAISES(system.SetProjection(&badProjection), 1032, "ORVDef",
                "Projection parameters not valid (check failed on parameter 'Central Longitude').");
  EXPECT_EQ(system.GetProjection(), nullptr);
  system = Full();
  EXPECT_RAISES(system.SetProjection(&noProjection), 1032, "ORVDef",
                "Projection parameters not valid (check failed on parameter 'Projection Method').");
  EXPECT_EQ(system.GetProjection(), nullptr);
  EXPECT_RAISES(system.SetProjection(&flatProjection), 1032, "ORVDef",
                "Projection parameters not valid (check failed on parameter 'Ellipsoid').");

  EXPECT_RAISES(system.SetWarp(&badWarp), 1032, "ORVDef", "Warp parameters not valid.");
  EXPECT_EQ(system.GetWarp(), nullptr);
  system = Full();
  EXPECT_RAISES(system.SetWarp(&noWarp), 1032, "ORVDef", "Warp parameters not valid.");
  EXPECT_EQ(system.GetWarp(), nullptr);
}

TEST(ORVDef, ConstructionFailsWithTheFirstInvalidPart) {
  DatumParameters datumParameters;
  datumParameters.method = DatumMethodMolodensky;
  const DatumDef badDatum(&datumParameters, 0);
  const ProjectionDef noProjection;
  const WarpDef noWarp;
  EXPECT_RAISES(ORVDef(&badDatum, &noProjection, &noWarp), 1032, "ORVDef", "Datum parameters not valid.");
  EXPECT_RAISES(ORVDef(nullptr, &noProjection, &noWarp), 1032, "ORVDef",
                "Projection parameters not valid (check failed on parameter 'Projection Method').");
  EXPECT_RAISES(ORVDef(nullptr, nullptr, &noWarp), 1032, "ORVDef", "Warp parameters not valid.");
}

TEST(ORVDef, NullRemovesAPart) {
  ORVDef system = Full();
  system.SetDatum(nullptr);
  system.SetProjection(nullptr);
  system.SetWarp(nullptr);
  EXPECT_EQ(system.GetDatum(), nullptr);
  EXPECT_EQ(system.GetProjection(), nullptr);
  EXPECT_EQ(system.GetWarp(), nullptr);
}

TEST(ORVDef, SettersTakeTheirOwnPart) {
  ORVDef system = Full();
  system.SetDatum(system.GetDatum());
  system.SetProjection(system.GetProjection());
  system.SetWarp(system.GetWarp());
  ExpectIsFull(system);
}

// ---- Check -----------------------------------------------------------------------------------------------

TEST(ORVDef, CheckExplainsTheFirstInvalidPart) {
  // Projection, datum and warp are all bad; they are mended one after the other.
  const std::string badProjection =
      "<{10,Projection[1]><s6,Method[8]=\"Mercator\"><f4,Lon0[1]=400><}10,Projection[1]>";
  const std::string badDatum = "<{5,Datum[1]><s6,Method[4]=\"None\"><}5,Datum[1]>";
  const std::string badWarp = "<{6,Georef[1]><s6,Method[7]=\"Helmert\"><}6,Georef[1]>";
  const std::string begin = "<{6,ORVDef[1]>";
  const std::string end = "<}6,ORVDef[1]>";
  const struct {
    std::string parts;
    bool valid;
    const char* why;
  } rows[] = {
      {badProjection + badDatum + badWarp, false, "Lon0 (central longitude) parameter out of range."},
      {badDatum + badWarp, false, "Conversion target not valid."},
      {badWarp, false, "One or more warping/georeference parameters not valid."},
      {"", true, ""},
      {"<{6,Georef[1]><}6,Georef[1]>", true, ""},  // a warp of method 0 is none
      {"<{5,Datum[1]><}5,Datum[1]>", true, ""},    // a datum of method 0 passes
      {"<{10,Projection[1]><}10,Projection[1]>", false, "Unrecognized projection method."},
  };
  for (const auto& row : rows) {
    const ORVDef system = Decoded(begin + row.parts + end);
    std::string why = "old";
    EXPECT_EQ(system.Check(why), row.valid) << row.parts;
    EXPECT_EQ(why, row.why);
    EXPECT_EQ(system.Check(), row.valid);
    const CSDef& base = system;
    EXPECT_EQ(base.Check(), row.valid);  // both forms are the derived class's own
  }
}

// ---- Compare ---------------------------------------------------------------------------------------------

void ExpectCompares(const CSDef& a, const CSDef& b, bool ignoreWarp, bool equal, const std::string& text) {
  std::string why = "old";
  EXPECT_EQ(a.Compare(b, ignoreWarp, &why), equal);
  EXPECT_EQ(why, text);
  EXPECT_EQ(a.Compare(b, ignoreWarp, nullptr), equal);
}

TEST(ORVDef, CompareLooksAtNoNamesAndNoCodes) {
  ORVDef other = Full();
  other.SetName("n");
  other.SetToken("t");
  other.SetComment("c");
  other.SetLegacyName("l");
  other.SetPOSC(1);
  other.SetUSGS(2);
  ExpectCompares(Full(), other, false, true, "");
}

TEST(ORVDef, CompareRefusesTheOtherKind) {
  ExpectCompares(ORVDef(), UCSDef(), true, false,
                 "Coordinate systems are not the same type (ORV versus UCS).");
  ExpectCompares(UCSDef(), ORVDef(), true, false,
                 "Coordinate systems are not the same type (ORV versus UCS).");
}

TEST(ORVDef, CompareNamesTheFirstDifference) {
  const ORVDef none;
  ORVDef projected, moved, withDatum, otherDatum, warped, otherWarp;
  const ProjectionDef mercator9 = Mercator(9.0), mercator10 = Mercator(10.0);
  projected.SetProjection(&mercator9);
  moved.SetProjection(&mercator10);
  const DatumDef datum = Molodensky(-87.0), datum2 = Molodensky(-88.0);
  withDatum.SetDatum(&datum);
  otherDatum.SetDatum(&datum2);
  const WarpDef warp = Affine(3.0), warp2 = Affine(4.0);
  warped.SetWarp(&warp);
  otherWarp.SetWarp(&warp2);

  ExpectCompares(projected, none, false, false, "First system is projected and second system isn't.");
  ExpectCompares(none, projected, false, false, "Second system is projected and first system isn't.");
  ExpectCompares(withDatum, none, false, false, "First system has datum and second system doesn't.");
  ExpectCompares(none, withDatum, false, false, "Second system has datum and first system doesn't.");
  ExpectCompares(warped, none, false, false, "First system has warp and second system doesn't.");
  ExpectCompares(none, warped, false, false, "Second system has warp and first system doesn't.");
  ExpectCompares(projected, moved, false, false, "Projection parameter differs (Central Longitude).");
  ExpectCompares(withDatum, otherDatum, false, false, "Datum parameters differ.");
  ExpectCompares(warped, otherWarp, false, false, "Warp parameters differ.");

  ExpectCompares(warped, none, true, true, "");
  ExpectCompares(none, warped, true, true, "");
  ExpectCompares(warped, otherWarp, true, true, "");
  ExpectCompares(projected, projected, false, true, "");
  ExpectCompares(none, none, false, true, "");
}

TEST(ORVDef, CompareStopsAtTheFirstDifferenceInItsOrder) {
  // Everything differs; from the last step to the first, differences are taken away.
  ORVDef a = Full();
  ORVDef b;
  ExpectCompares(a, b, false, false, "First system is projected and second system isn't.");
  const ProjectionDef mercator10 = Mercator(10.0);
  b.SetProjection(&mercator10);
  ExpectCompares(a, b, false, false, "First system has datum and second system doesn't.");
  const DatumDef datum2 = Molodensky(-88.0);
  b.SetDatum(&datum2);
  ExpectCompares(a, b, false, false, "First system has warp and second system doesn't.");
  const WarpDef warp2 = Affine(4.0);
  b.SetWarp(&warp2);
  ExpectCompares(a, b, false, false, "Projection parameter differs (Central Longitude).");
  b.SetProjection(a.GetProjection());
  ExpectCompares(a, b, false, false, "Datum parameters differ.");
  b.SetDatum(a.GetDatum());
  ExpectCompares(a, b, false, false, "Warp parameters differ.");
  b.SetWarp(a.GetWarp());
  ExpectCompares(a, b, false, true, "");
}

TEST(ORVDef, AGeographicProjectionCountsAsProjectedInCompare) {
  ORVDef geographic;
  const ProjectionDef latLon(ProjectionMethodUnprojected);
  geographic.SetProjection(&latLon);
  EXPECT_FALSE(geographic.HasProjection(true, true));
  ExpectCompares(geographic, ORVDef(), false, false, "First system is projected and second system isn't.");
  ExpectCompares(ORVDef(), geographic, false, false, "Second system is projected and first system isn't.");

  ORVDef projected;
  const ProjectionDef mercator = Mercator(9.0);
  projected.SetProjection(&mercator);
  ExpectCompares(geographic, projected, false, false, "Projection parameter differs (Projection Method).");
}

TEST(ORVDef, AMissingSecondProjectionCountsAsAnUnknownOne) {
  const ORVDef unknown = Decoded("<{6,ORVDef[1]><{10,Projection[1]><}10,Projection[1]><}6,ORVDef[1]>");
  ExpectCompares(unknown, ORVDef(), false, true, "");
  ExpectCompares(ORVDef(), unknown, false, true, "");
}

TEST(ORVDef, ADatumWithoutMethodDiffersOnTheFirstSideOnly) {
  ORVDef unknown;
  const DatumDef datum;
  unknown.SetDatum(&datum);
  ExpectCompares(unknown, ORVDef(), false, false, "Datum parameters differ.");  // deliberate
  ExpectCompares(ORVDef(), unknown, false, true, "");
  ExpectCompares(unknown, unknown, false, true, "");
}

TEST(ORVDef, AWarpWithoutMethodIsNoDifference) {
  const ORVDef unknown = Decoded("<{6,ORVDef[1]><{6,Georef[1]><}6,Georef[1]><}6,ORVDef[1]>");
  ExpectCompares(unknown, ORVDef(), false, true, "");
  ExpectCompares(ORVDef(), unknown, false, true, "");
  ExpectCompares(unknown, unknown, false, true, "");
}

TEST(ORVDef, CompareMeasuresToleranceOnTheFirstEllipsoid) {
  // Flattenings may differ by less than the first one's whole flattening: 0.003 against 0.001 passes only
  // this way.
  ProjectionDef thick = Mercator(9.0), thin = Mercator(9.0);
  thick.SetParameter(ProjectionParameterIDEllipsoid, EllipsoidDef(6378137.0, 0.003, "", "", "", 0));
  thin.SetParameter(ProjectionParameterIDEllipsoid, EllipsoidDef(6378137.0, 0.001, "", "", "", 0));
  const ORVDef a(nullptr, &thick, nullptr), b(nullptr, &thin, nullptr);
  ExpectCompares(a, b, false, true, "");
  ExpectCompares(b, a, false, false, "Projection parameter differs (Ellipsoid).");
}

// ---- encoded text ----------------------------------------------------------------------------------------

TEST(ORVDef, EncodesTheFourLinesOfTokenAndName) {
  ORVDef system;
  system.SetToken("MYGRID");
  system.SetName("My grid");
  std::string text = "before";
  system.EncodeToText(text);
  EXPECT_EQ(text,
            "before"
            "<{6,ORVDef[1]>\r\n"
            "<s5,Token[6]=\"MYGRID\">\r\n"
            "<s4,Name[7]=\"My grid\">\r\n"
            "<}6,ORVDef[1]>\r\n");
}

TEST(ORVDef, EncodesItsPartsInTheirOrder) {
  const ORVDef full = Full();
  std::string projection, datum, warp;
  full.GetProjection()->EncodeToText(projection);
  full.GetDatum()->EncodeToText(datum);
  full.GetWarp()->EncodeToText(warp);
  EXPECT_EQ(Encoded(full),
            "<{6,ORVDef[1]>\r\n<s5,Token[4]=\"FULL\">\r\n<s4,Name[10]=\"Group|Full\">\r\n"
            "<s7,Comment[9]=\"all parts\">\r\n" +
                projection + datum + warp + "<}6,ORVDef[1]>\r\n");
  EXPECT_EQ(projection.substr(0, 19), "<{10,Projection[1]>");
  EXPECT_EQ(datum.substr(0, 13), "<{5,Datum[1]>");
  EXPECT_EQ(warp.substr(0, 14), "<{6,Georef[1]>");
}

TEST(ORVDef, EncodesAWarpWithoutMethod) {
  const std::string text = "<{6,ORVDef[1]>\r\n<{6,Georef[1]>\r\n<}6,Georef[1]>\r\n<}6,ORVDef[1]>\r\n";
  EXPECT_EQ(Encoded(Decoded(text)), text);  // deliberate: whatever is held is written
}

TEST(ORVDef, DecodesWhatItEncoded) {
  const ORVDef full = Full();
  const ORVDef back = Decoded(Encoded(full));
  EXPECT_TRUE(full.Compare(back, false, nullptr));
  EXPECT_STREQ(back.GetName(), "Group|Full");
  EXPECT_STREQ(back.GetToken(), "FULL");
  EXPECT_STREQ(back.GetComment(), "all parts");
  EXPECT_EQ(back.GetPOSC(), 0);  // codes and legacy name are not encoded
  EXPECT_EQ(back.GetUSGS(), 0);
  EXPECT_EQ(back.GetLegacyName(), nullptr);
  EXPECT_EQ(Encoded(back), Encoded(full));
}

TEST(ORVDef, DecodingNeitherFlushesNorRepeats) {
  ORVDef system = Full();
  // A token, and a projection of which only the central longitude is told.
  system.DecodeFromText(
      "<{6,ORVDef[1]><s5,TOKEN[1]=\"N\"><s5,token[1]=\"M\">"
      "<{10,PROJECTION[1]><f4,lon0[1]=11><}10,Projection[1]><}6,orvdef[1]>",
      nullptr);
  EXPECT_STREQ(system.GetToken(), "M");  // the last one, not both
  EXPECT_STREQ(system.GetName(), "Group|Full");
  EXPECT_EQ(system.GetPOSC(), 32632);
  EXPECT_EQ(system.GetProjection()->GetMethod(), ProjectionMethodMercator);
  EXPECT_EQ(system.GetProjection()->GetParameter(ProjectionParameterIDLon0), 11.0);
  EXPECT_NE(system.GetDatum(), nullptr);
}

TEST(ORVDef, DecodingLeavesTheCursorOnTheBlockEnd) {
  const std::string text = "junk" + Encoded(Full()) + Encoded(ORVDef());
  size_t at = 4;
  ORVDef system;
  system.DecodeFromText(text, &at);
  EXPECT_EQ(at, text.find("<}6,ORVDef[1]>"));
  EXPECT_TRUE(system.Compare(Full(), false, nullptr));
}

TEST(ORVDef, DecodingSkipsUnknownItems) {
  const ORVDef system = Decoded(
      "<{6,ORVDef[1]><u3,New[2]=1,2><s5,Token[1]=\"A\"><v4,Blob[2]=00FF><s4,Name[1]=\"B\">"
      "<x3,Odd[1]=?><b4,Flag[1]=t><}6,ORVDef[1]>");
  EXPECT_STREQ(system.GetToken(), "A");
  EXPECT_STREQ(system.GetName(), "B");
}

TEST(ORVDef, AnUnknownNestedBlockEndsInTheWrongEndMessage) {
  // Deliberate: items are skipped one by one, so the unknown block's own items and its end are taken for
  // ours.
  ORVDef system;
  EXPECT_RAISES(
      system.DecodeFromText("<{6,ORVDef[1]><{3,New[1]><s5,Token[1]=\"X\"><}3,New[1]><}6,ORVDef[1]>", nullptr),
      1026, "ORVDef", "Corrupt coordinate system data.  Expected end of block.");
  EXPECT_STREQ(system.GetToken(), "X");
}

TEST(ORVDef, DecodingMessages) {
  constexpr const char* kHeader = "Corrupt coordinate system data.  Malformed or missing header.";
  constexpr const char* kValue = "Corrupt data while parsing encoded data.";
  const struct {
    const char* text;
    const char* unit;
    const char* message;
  } rows[] = {
      {"", "ORVDef", kHeader},
      {"ORVDef", "ORVDef", kHeader},
      {"<{6 ORVDef[1]>", "ORVDef", kHeader},
      {"<s5,Token[1]=\"A\">", "ORVDef", "Corrupt coordinate system data.  Expected BLOCKBEGIN."},
      {"<}6,ORVDef[1]>", "ORVDef", "Corrupt coordinate system data.  Expected BLOCKBEGIN."},
      {"<{6,UCSDef[1]><}6,UCSDef[1]>", "ORVDef", "Corrupt coordinate system data.  Expected ORVDef block."},
      {"<{6,ORVDef[1]><}6,UCSDef[1]>", "ORVDef", "Corrupt coordinate system data.  Expected end of block."},
      {"<{6,ORVDef[1]>", "ORVDef", "Unexpected end of encoded data."},
      {"<{6,ORVDef[1]><s5,Token[1]=\"A\">", "ORVDef", "Unexpected end of encoded data."},
      {"<{6,ORVDef[1]><{6,Georef[1]><}6,Georef[1]>", "ORVDef", "Unexpected end of encoded data."},
      {"<{6,ORVDef[1]><s5 Token", "ORVDef", "Unexpected end of encoded coordinate system data."},
      {"<{6,ORVDef[1]><}", "ORVDef", "Unexpected end of encoded coordinate system data."},
      // Values and parts speak for themselves.
      {"<{6,ORVDef[1]><d5,Token[1]=1><}6,ORVDef[1]>", "EncodeText", kValue},
      {"<{6,ORVDef[1]><s4,Name[3]=\"abc", "EncodeText", kValue},
      {"<{6,ORVDef[1]><s5,Datum[1]=\"A\">", "DatumDef",
       "Corrupt data enountered in encoded datum parameters."},
      {"<{6,ORVDef[1]><s10,Projection[1]=\"A\">", "ProjectionDef",
       "Corrupt projection data.  BLOCKBEGIN missing."},
      {"<{6,ORVDef[1]><s6,Georef[1]=\"A\">", "WarpDef",
       "Corrupt data encountered while decoding warp/georeference parameters."},
  };
  for (const auto& row : rows) {
    size_t at = 0;
    ORVDef system;
    EXPECT_RAISES(system.DecodeFromText(row.text, &at), 1026, row.unit, row.message) << row.text;
    EXPECT_EQ(at, 0u);
  }
  ORVDef system;
  size_t beyond = 100;
  EXPECT_RAISES(system.DecodeFromText("<{6,ORVDef[1]><}6,ORVDef[1]>", &beyond), 1026, "ORVDef", kHeader);
}

TEST(ORVDef, AFailedDecodeKeepsWhatItRead) {
  ORVDef system = Full();
  EXPECT_RAISES(system.DecodeFromText("<{6,ORVDef[1]><s5,Token[1]=\"A\">", nullptr), 1026, "ORVDef",
                "Unexpected end of encoded data.");
  EXPECT_STREQ(system.GetToken(), "A");
  EXPECT_STREQ(system.GetName(), "Group|Full");
}

// ---- Serialize -------------------------------------------------------------------------------------------

TEST(ORVDef, SerializesVersionLengthAndText) {
  ORVDef system;
  system.SetToken(std::string(300, 'T').c_str());
  MemoryArchive archive;
  system.Serialize(archive);
  const std::string text = Encoded(system);
  ASSERT_GT(text.size(), 255u);  // two bytes of length differ from 0
  std::string expected("\1\0\0\0", 4);
  expected += static_cast<char>(text.size() & 0xFF);
  expected += static_cast<char>(text.size() >> 8);
  expected += std::string(2, '\0');
  EXPECT_EQ(archive.Bytes(), expected + text);
}

TEST(ORVDef, LoadsWhatItStored) {
  ORVDef full = Full();
  MemoryArchive out;
  full.Serialize(out);

  ORVDef loaded;
  loaded.SetPOSC(99);
  loaded.SetUSGS(98);
  loaded.SetLegacyName("from before");
  MemoryArchive in(out.Bytes() + "more");
  loaded.Serialize(in);
  EXPECT_EQ(in.Left(), 4u);  // nothing behind the record is read
  EXPECT_TRUE(full.Compare(loaded, false, nullptr));
  EXPECT_STREQ(loaded.GetName(), "Group|Full");
  EXPECT_EQ(loaded.GetPOSC(), 0);
  EXPECT_EQ(loaded.GetUSGS(), 0);
  EXPECT_EQ(loaded.GetLegacyName(), nullptr);
}

TEST(ORVDef, LoadingKeepsNothingOld) {
  ORVDef full = Full();
  ORVDef small;
  small.SetToken("SMALL");
  MemoryArchive out;
  small.Serialize(out);
  MemoryArchive in(out.Bytes());
  full.Serialize(in);
  EXPECT_EQ(Encoded(full), Encoded(small));
}

std::string Record(uint32_t version, uint32_t length, const std::string& text) {
  std::string bytes;
  for (const uint32_t number : {version, length}) {
    for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>((number >> shift) & 0xFF);
  }
  return bytes + text;
}

TEST(ORVDef, LoadingRefusesOtherVersionsAndEmptyTexts) {
  const std::string text = Encoded(ORVDef());
  const uint32_t length = static_cast<uint32_t>(text.size());
  for (const std::string& bytes : {Record(2, length, text), Record(0, length, text),
                                   Record(0x01000000, length, text), Record(1, 0, text), Record(2, 0, "")}) {
    ORVDef system = Full();
    MemoryArchive archive(bytes);
    EXPECT_RAISES(system.Serialize(archive), 1035, "ORVDef", kBadRecord);
    EXPECT_EQ(archive.Left(), bytes.size() - 8);  // both numbers are read before either is judged
    ExpectIsFull(system);
  }
}

TEST(ORVDef, LoadingAShortRecordChangesNothing) {
  MemoryArchive out;
  ORVDef small;
  small.SetToken("SMALL");
  small.Serialize(out);
  for (size_t length = 0; length < out.Bytes().size(); ++length) {
    ORVDef system = Full();
    MemoryArchive archive(out.Bytes().substr(0, length));
    EXPECT_THROW(system.Serialize(archive), std::out_of_range) << length;
    ExpectIsFull(system);
  }
  // A length that cuts the text short.
  const std::string text = Encoded(small);
  ORVDef system = Full();
  MemoryArchive archive(Record(1, static_cast<uint32_t>(text.size()) - 16, text));
  EXPECT_RAISES(system.Serialize(archive), 1026, "ORVDef", "Unexpected end of encoded data.");
  ExpectIsFull(system);
}

TEST(ORVDef, LoadingReadsInBoundedPieces) {
  ORVDef system;
  MemoryArchive archive(Record(1, 0xFFFFFFFF, std::string(1000000, ' ')));
  EXPECT_THROW(system.Serialize(archive), std::out_of_range);
  EXPECT_LE(archive.LargestRead(), 65536u);

  // A text of many pieces arrives whole.
  ORVDef large, back;
  large.SetComment(std::string(300000, 'c').c_str());
  MemoryArchive out;
  large.Serialize(out);
  MemoryArchive in(out.Bytes());
  back.Serialize(in);
  EXPECT_EQ(Encoded(back), Encoded(large));
}

TEST(ORVDef, LoadingARecordOfTheOtherKindRaisesTheDecodersMessage) {
  UCSDef local;
  MemoryArchive out;
  local.Serialize(out);
  ORVDef system = Full();
  MemoryArchive in(out.Bytes());
  EXPECT_RAISES(system.Serialize(in), 1026, "ORVDef",
                "Corrupt coordinate system data.  Expected ORVDef block.");
  ExpectIsFull(system);
}

// ---- dump ------------------------------------------------------------------------------------------------

std::string Address(const void* object) {
  char text[64];
  std::snprintf(text, sizeof text, "%p", object);
  return text;
}

TEST(ORVDef, DumpOfAnEmptySystem) {
  ORVDef system;
  system.SetPOSC(4326);
  system.SetUSGS(-1);
  std::string text;
  system.DebugDump(text, 3);
  EXPECT_EQ(text, "   ORVDef at " + Address(&system) + "\n   CSDef at " + Address(&system) +
                      "\n   Name:  ''\n   Token:  ''\n   Comment:  ''\n   POSC:     4326\n   USGS:     -1\n"
                      "   NONE\n   Datum:\n   NONE\n   Warp:\n   NONE\n");
}

TEST(ORVDef, DumpHoldsTheDumpsOfItsParts) {
  const ORVDef full = Full();
  std::string text, projection, datum, warp;
  full.DebugDump(text, 0);
  full.GetProjection()->DebugDump(projection, 2);
  full.GetDatum()->DebugDump(datum, 2);
  full.GetWarp()->DebugDump(warp, 2);
  EXPECT_NE(text.find("USGS:     7\n" + projection + "Datum:\n" + datum + "Warp:\n" + warp),
            std::string::npos)
      << text;
}

}  // namespace
}  // namespace orv
