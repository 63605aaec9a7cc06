#include "orv/system/UCSDef.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <memory>
#include <string>

#include "orv/system/ORVDef.h"
#include "tests/support/MemoryArchive.h"
#include "tests/support/Raises.h"

namespace orv {
namespace {

using test::MemoryArchive;

constexpr const char* kCorrupt = "Corrupt data encountered in encoded coordinate system.";
constexpr const char* kBadRecord =
    "Previously serialized unreferenced coordinate system (UCS) data is corrupt or has an unrecognized version.";
constexpr const char* kNegative = "Scale parameter must not be negative.";

std::string Encoded(const CSDef& system) {
  std::string text;
  system.EncodeToText(text);
  return text;
}

UCSDef Decoded(const std::string& text) {
  UCSDef system;
  system.DecodeFromText(text, nullptr);
  return system;
}

WarpDef Affine(double c2) {
  WarpDef warp;
  warp.SetCoefficients(1.0, 0.0, c2, 0.0, 1.0, 5.0);
  return warp;
}

UCSDef Full() {
  const WarpDef warp = Affine(3.0);
  UCSDef system(2.5, 100.0, -200.0, &warp);
  system.SetName("Local|Plan");
  system.SetToken("PLAN");
  system.SetComment("site grid");
  return system;
}

void ExpectIsFull(const UCSDef& system) { EXPECT_EQ(Encoded(system), Encoded(Full())); }

TEST(UCSDef, BeginsWithScaleOneAtTheOrigin) {
  const UCSDef system;
  double x = -1.0, y = -1.0;
  system.GetOrigin(x, y);
  EXPECT_EQ(system.GetScale(), 1.0);
  EXPECT_EQ(x, 0.0);
  EXPECT_EQ(y, 0.0);
  EXPECT_FALSE(system.HasWarp());
  ASSERT_NE(system.GetWarp(), nullptr);  // held by value
  EXPECT_EQ(system.GetWarp()->GetMethod(), 0);
  EXPECT_STREQ(system.GetName(), "");
  EXPECT_TRUE(system.Check());
}

TEST(UCSDef, BothConstructorsTakeTheSameValues) {
  const WarpDef warp = Affine(3.0);
  shr::Vec2d origin(100.0, -200.0);
  const UCSDef a(2.5, 100.0, -200.0, &warp), b(2.5, origin, &warp);
  for (const UCSDef* const system : {&a, &b}) {
    EXPECT_EQ(system->GetScale(), 2.5);
    double x = 0.0, y = 0.0;
    system->GetOrigin(x, y);
    EXPECT_EQ(x, 100.0);
    EXPECT_EQ(y, -200.0);
    EXPECT_TRUE(system->GetWarp()->Compare(warp));
  }
  EXPECT_FALSE(UCSDef(1.0, 0.0, 0.0, nullptr).HasWarp());
}

TEST(UCSDef, OriginIsTwoNumbersOrAPoint) {
  UCSDef system;
  system.SetOrigin(1.0, 2.0);
  shr::Vec2d point;
  system.GetOrigin(point);
  EXPECT_EQ(point.x, 1.0);
  EXPECT_EQ(point.y, 2.0);
  system.SetOrigin(shr::Vec2d(3.0, 4.0));
  double x = 0.0, y = 0.0;
  system.GetOrigin(x, y);
  EXPECT_EQ(x, 3.0);
  EXPECT_EQ(y, 4.0);
}

TEST(UCSDef, NegativeScalesAreRefused) {
  UCSDef system;
  system.SetScale(2.0);
  EXPECT_RAISES(system.SetScale(-1e-300), 1032, "UCSDef", kNegative);
  EXPECT_EQ(system.GetScale(), 2.0);
  shr::Vec2d origin;
  EXPECT_RAISES(UCSDef(-1.0, 0.0, 0.0, nullptr), 1032, "UCSDef", kNegative);
  EXPECT_RAISES(UCSDef(-1.0, origin, nullptr), 1032, "UCSDef", kNegative);
  system.SetScale(0.0);  // 0 is not negative
  EXPECT_EQ(system.GetScale(), 0.0);
  system.SetScale(std::numeric_limits<double>::quiet_NaN());
  EXPECT_TRUE(std::isnan(system.GetScale()));
}

TEST(UCSDef, SetWarpCopiesWithoutChecking) {
  UCSDef system;
  WarpDef warp;
  warp.SetMethod(WarpMethodHelmert);  // and no points
  system.SetWarp(&warp);
  warp.Flush();
  EXPECT_TRUE(system.HasWarp());
  EXPECT_EQ(system.GetWarp()->GetMethod(), WarpMethodHelmert);
  system.SetWarp(system.GetWarp());  // its own
  EXPECT_EQ(system.GetWarp()->GetMethod(), WarpMethodHelmert);
  system.SetWarp(nullptr);
  EXPECT_FALSE(system.HasWarp());
  EXPECT_NE(system.GetWarp(), nullptr);
}

TEST(UCSDef, FlushKeepsTextsAndWarp) {
  UCSDef system = Full();
  system.Flush();
  EXPECT_EQ(system.GetScale(), 1.0);
  shr::Vec2d origin(9.0, 9.0);
  system.GetOrigin(origin);
  EXPECT_EQ(origin.x, 0.0);
  EXPECT_EQ(origin.y, 0.0);
  EXPECT_STREQ(system.GetName(), "Local|Plan");  // deliberate
  EXPECT_STREQ(system.GetToken(), "PLAN");
  EXPECT_STREQ(system.GetComment(), "site grid");
  EXPECT_TRUE(system.GetWarp()->Compare(Affine(3.0)));
  EXPECT_EQ(system.Type(), CSTypeUCS);
}

TEST(UCSDef, CopiesEverything) {
  const UCSDef full = Full();
  ExpectIsFull(UCSDef(full));
  UCSDef assigned(7.0, 8.0, 9.0, nullptr);
  assigned = full;
  ExpectIsFull(assigned);
  const std::unique_ptr<UCSDef> clone(full.Clone());
  ExpectIsFull(*clone);
  EXPECT_NE(clone->GetWarp(), full.GetWarp());
  assigned.CopyAll(UCSDef());
  EXPECT_EQ(Encoded(assigned), Encoded(UCSDef()));
  UCSDef self = Full();
  self.CopyAll(self);
  const UCSDef& same = self;
  self = same;
  ExpectIsFull(self);
}

TEST(UCSDef, CheckExplains) {
  const std::string begin = "<{6,UCSDef[1]>", end = "<}6,UCSDef[1]>";
  const std::string badWarp = "<{6,Georef[1]><s6,Method[7]=\"Helmert\"><}6,Georef[1]>";
  const struct {
    std::string items;
    bool valid;
    const char* why;
  } rows[] = {
      {"<f5,Scale[1]=-2>" + badWarp, false, "Scale must not be negative."},
      {badWarp, false, "One or more warping parameters not valid."},
      {"<f5,Scale[1]=0>", true, ""},
      {"<f5,Scale[1]=2><{6,Georef[1]><}6,Georef[1]>", true, ""},
  };
  for (const auto& row : rows) {
    const UCSDef system = Decoded(begin + row.items + end);
    std::string why = "old";
    EXPECT_EQ(system.Check(why), row.valid) << row.items;
    EXPECT_EQ(why, row.why);
    EXPECT_EQ(system.Check(), row.valid);
    const CSDef& base = system;
    EXPECT_EQ(base.Check(), row.valid);
  }
}

void ExpectCompares(const CSDef& a, const CSDef& b, bool ignoreWarp, bool equal, const std::string& text) {
  std::string why = "old";
  EXPECT_EQ(a.Compare(b, ignoreWarp, &why), equal);
  EXPECT_EQ(why, text);
  EXPECT_EQ(a.Compare(b, ignoreWarp, nullptr), equal);
}

TEST(UCSDef, CompareLooksAtWarpsOnly) {
  // Deliberate: scale and origin never count.
  ExpectCompares(UCSDef(1.0, 0.0, 0.0, nullptr), UCSDef(2.0, 5.0, 6.0, nullptr), false, true, "");

  const WarpDef warp = Affine(3.0), warp2 = Affine(4.0);
  const UCSDef none, warped(1.0, 0.0, 0.0, &warp), alike(2.0, 1.0, 1.0, &warp), other(1.0, 0.0, 0.0, &warp2);
  ExpectCompares(warped, none, false, false, "First system has warp and second system doesn't.");
  ExpectCompares(none, warped, false, false, "Second system has warp and first system doesn't.");
  ExpectCompares(warped, other, false, false, "Warp parameters are different.");
  ExpectCompares(warped, alike, false, true, "");
  ExpectCompares(warped, none, true, true, "");
  ExpectCompares(none, warped, true, true, "");
  ExpectCompares(warped, other, true, true, "");
}

TEST(UCSDef, CompareRefusesTheOtherKind) {
  ExpectCompares(UCSDef(), ORVDef(), false, false,
                 "Coordinate systems are not the same type (ORV versus UCS).");
}

// ---- encoded text ----------------------------------------------------------------------------------------

TEST(UCSDef, EncodesItsItemsInTheirOrder) {
  EXPECT_EQ(Encoded(UCSDef(0.5, 0.0, -0.0, nullptr)),
            "<{6,UCSDef[1]>\r\n"
            "<f5,Scale[1]=5.000000000000000000e-01>\r\n"
            "<f4,XOrg[1]=0>\r\n"
            "<f4,YOrg[1]=0>\r\n"
            "<}6,UCSDef[1]>\r\n");
  const UCSDef full = Full();
  std::string warp;
  full.GetWarp()->EncodeToText(warp);
  EXPECT_EQ(Encoded(full),
            "<{6,UCSDef[1]>\r\n"
            "<s5,Token[4]=\"PLAN\">\r\n"
            "<s4,Name[10]=\"Local|Plan\">\r\n"
            "<s7,Comment[9]=\"site grid\">\r\n"
            "<f5,Scale[1]=2.500000000000000000e+00>\r\n"
            "<f4,XOrg[1]=1.000000000000000000e+02>\r\n"
            "<f4,YOrg[1]=-2.000000000000000000e+02>\r\n" +
                warp + "<}6,UCSDef[1]>\r\n");
}

TEST(UCSDef, DecodesWhatItEncoded) {
  const UCSDef back = Decoded(Encoded(Full()));
  ExpectIsFull(back);
  EXPECT_TRUE(Full().Compare(back, false, nullptr));
  EXPECT_EQ(back.GetScale(), 2.5);
}

TEST(UCSDef, DecodesAnyCaseStoresValuesAsTheyAreAndKeepsTheRest) {
  UCSDef system = Full();
  const std::string text =
      "<{6,ucsdef[1]><f5,SCALE[1]=-3><f4,Xorg[1]=7><f4,yORG[1]=8><u1,Z[1]=1><}6,UCSDEF[1]>";
  size_t at = 0;
  system.DecodeFromText(text, &at);
  EXPECT_EQ(at, text.find("<}6"));
  EXPECT_EQ(system.GetScale(), -3.0);  // Check reports it
  shr::Vec2d origin;
  system.GetOrigin(origin);
  EXPECT_EQ(origin.x, 7.0);
  EXPECT_EQ(origin.y, 8.0);
  EXPECT_STREQ(system.GetToken(), "PLAN");
  EXPECT_TRUE(system.HasWarp());
  EXPECT_FALSE(system.Check());
}

TEST(UCSDef, DecodingMessages) {
  const struct {
    const char* text;
    const char* unit;
    const char* message;
  } rows[] = {
      {"", "UCSDef", kCorrupt},
      {"x", "UCSDef", kCorrupt},
      {"<{6 UCSDef[1]>", "UCSDef", kCorrupt},
      {"<s5,Token[1]=\"A\">", "UCSDef", kCorrupt},
      {"<{6,ORVDef[1]><}6,ORVDef[1]>", "UCSDef", kCorrupt},
      {"<{6,UCSDef[1]><}6,ORVDef[1]>", "UCSDef", kCorrupt},
      {"<{6,UCSDef[1]>", "UCSDef", kCorrupt},
      {"<{6,UCSDef[1]><f5,Scale[1]=1>", "UCSDef", kCorrupt},
      {"<{6,UCSDef[1]><{6,Georef[1]><}6,Georef[1]>", "UCSDef", kCorrupt},
      {"<{6,UCSDef[1]><f5 Scale", "UCSDef", kCorrupt},
      {"<{6,UCSDef[1]><f5,Scale[0]=><}6,UCSDef[1]>", "EncodeText",
       "Corrupt data while parsing encoded data."},
      {"<{6,UCSDef[1]><s6,Georef[1]=\"A\">", "WarpDef",
       "Corrupt data encountered while decoding warp/georeference parameters."},
  };
  for (const auto& row : rows) {
    size_t at = 0;
    UCSDef system;
    EXPECT_RAISES(system.DecodeFromText(row.text, &at), 1026, row.unit, row.message) << row.text;
    EXPECT_EQ(at, 0u);
  }
}

// ---- Serialize -------------------------------------------------------------------------------------------

TEST(UCSDef, SerializesVersionLengthAndText) {
  UCSDef full = Full();
  MemoryArchive archive;
  full.Serialize(archive);
  const std::string text = Encoded(full);
  ASSERT_GT(text.size(), 255u);
  std::string expected("\1\0\0\0", 4);
  expected += static_cast<char>(text.size() & 0xFF);
  expected += static_cast<char>(text.size() >> 8);
  expected += std::string(2, '\0');
  EXPECT_EQ(archive.Bytes(), expected + text);
}

TEST(UCSDef, LoadsWhatItStoredAndKeepsNothingOld) {
  UCSDef full = Full(), plain;
  MemoryArchive out;
  plain.Serialize(out);
  MemoryArchive in(out.Bytes());
  full.Serialize(in);
  EXPECT_EQ(Encoded(full), Encoded(UCSDef()));

  MemoryArchive out2;
  UCSDef again = Full();
  again.Serialize(out2);
  MemoryArchive in2(out2.Bytes());
  plain.Serialize(in2);
  ExpectIsFull(plain);
}

TEST(UCSDef, LoadingRefusesOtherVersionsEmptyTextsAndTheOtherKind) {
  const std::string two("\2\0\0\0\4\0\0\0....", 12);
  const std::string empty("\1\0\0\0\0\0\0\0", 8);
  for (const std::string& bytes : {two, empty}) {
    UCSDef system = Full();
    MemoryArchive archive(bytes);
    EXPECT_RAISES(system.Serialize(archive), 1035, "UCSDef", kBadRecord);
    ExpectIsFull(system);
  }
  ORVDef orv;
  MemoryArchive out;
  orv.Serialize(out);
  UCSDef system = Full();
  MemoryArchive in(out.Bytes());
  EXPECT_RAISES(system.Serialize(in), 1026, "UCSDef", kCorrupt);
  ExpectIsFull(system);
}

TEST(UCSDef, Dump) {
  const UCSDef full = Full();
  char address[64];
  std::snprintf(address, sizeof address, "%p", static_cast<const void*>(&full));
  std::string text, warp;
  full.DebugDump(text, 1);
  full.GetWarp()->DebugDump(warp, 3);
  EXPECT_EQ(text, std::string(" Unref this=") + address + ":\n CSDef at " + address +
                      "\n Name:  'Local|Plan'\n Token:  'PLAN'\n Comment:  'site grid'\n"
                      " Scale      =                 2.500000\n"
                      " XOrg       =               100.000000\n"
                      " YOrg       =              -200.000000\n"
                      " Warp:\n" +
                      warp);
}

}  // namespace
}  // namespace orv
