// Encoded text of whole systems: random ones there and back, and text that means harm.
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "orv/shared/Exception.h"
#include "orv/system/CSDef.h"
#include "orv/system/ORVDef.h"
#include "orv/system/UCSDef.h"
#include "tests/support/Generators.h"
#include "tests/support/MemoryArchive.h"
#include "tests/support/Raises.h"

namespace orv {
namespace {

using test::Holds;

template <class T>
std::string Encoded(const T& part) {
  std::string text;
  part.EncodeToText(text);
  return text;
}

/// Decodes behind some other text; the cursor has to end on the block's own end, which is the last item.
std::unique_ptr<CSDef> Decoded(const std::string& text) {
  const std::string data = "before" + text;
  size_t at = 6;
  std::unique_ptr<CSDef> system(CSDef::BuildFromEncodedText(data, &at));
  ORV_HOLDS(at == data.rfind('<'));
  return system;
}

void ExpectRoundTrip(const CSDef& system) {
  const std::string text = Encoded(system);
  const std::unique_ptr<CSDef> back = Decoded(text);
  std::string why;
  ORV_HOLDS(system.Compare(*back, false, &why));
  ORV_HOLDS(why.empty());
  ORV_HOLDS(back->Compare(system, false, nullptr));
  ORV_HOLDS(Encoded(*back) == text);
  ORV_HOLDS(std::string(back->GetName()) == system.GetName());
  ORV_HOLDS(std::string(back->GetToken()) == system.GetToken());
  ORV_HOLDS(std::string(back->GetComment()) == system.GetComment());
}

TEST(SystemText, RandomGeoreferencedSystemsComeBack) {
  EXPECT_TRUE(Holds([] { ExpectRoundTrip(test::ValidOrvDef()); }));
}

TEST(SystemText, RandomLocalSystemsComeBack) {
  EXPECT_TRUE(Holds([] { ExpectRoundTrip(test::AnyUcsDef()); }));
}

TEST(SystemText, RandomPartsThatNoSetterTakesComeBack) {
  // The text is put together from the parts' own texts.
  EXPECT_TRUE(Holds([] {
    std::string text = "<{6,ORVDef[1]>\r\n";
    if (test::AnyBool()) text += Encoded(test::AnyProjection());
    if (test::AnyBool()) text += Encoded(test::AnyDatum());
    if (test::AnyBool()) text += Encoded(test::AnyWarp());
    text += "<}6,ORVDef[1]>\r\n";
    const std::unique_ptr<CSDef> system = Decoded(text);
    ORV_HOLDS(Encoded(*system) == text);
    ORV_HOLDS(system->Compare(*Decoded(text), false, nullptr));
    const std::unique_ptr<CSDef> clone(system->Clone());
    ORV_HOLDS(Encoded(*clone) == text);
  }));
}

TEST(SystemText, RandomSystemsAreSerializedAndLoaded) {
  EXPECT_TRUE(Holds([] {
    ORVDef stored = test::ValidOrvDef(), loaded = test::ValidOrvDef();
    test::MemoryArchive out;
    stored.Serialize(out);
    test::MemoryArchive in(out.Bytes());
    loaded.Serialize(in);
    ORV_HOLDS(in.Left() == 0u);
    ORV_HOLDS(stored.Compare(loaded, false, nullptr));
    ORV_HOLDS(Encoded(loaded) == Encoded(stored));
    ORV_HOLDS(loaded.GetPOSC() == 0);
    ORV_HOLDS(loaded.GetUSGS() == 0);
    ORV_HOLDS(loaded.GetLegacyName() == nullptr);
  }));
}

TEST(SystemText, RandomCopiesAreEqualAndCheckAlike) {
  EXPECT_TRUE(Holds([] {
    const ORVDef system = test::ValidOrvDef();
    ORV_HOLDS(system.Check());
    const std::unique_ptr<ORVDef> clone(system.Clone());
    ORV_HOLDS(system.Compare(*clone, false, nullptr));
    ORV_HOLDS(Encoded(*clone) == Encoded(system));
    ORV_HOLDS(clone->GetPOSC() == system.GetPOSC());
    ORV_HOLDS(clone->GetUSGS() == system.GetUSGS());
  }));
}

// ---- hostile text ----------------------------------------------------------------------------------------

/// Decodes, or fails with one of the library's own complaints about corrupt data; anything else is a defect.
bool DecodesOrRaises(const std::string& text) {
  try {
    const std::unique_ptr<CSDef> system(CSDef::BuildFromEncodedText(text, nullptr));
    // What was accepted must be good for everything else.
    const std::unique_ptr<CSDef> clone(system->Clone());
    std::string out;
    system->Check(out);
    system->Compare(*clone, false, &out);
    system->DebugDump(out, 0);
    system->EncodeToText(out);
    return true;
  } catch (const shr::Exception& e) {
    EXPECT_EQ(e.Code(), 1026) << e.Message();
    return false;
  }
}

std::string FullText() {
  DatumParameters d;
  d.method = DatumMethodBursaWolf;
  d.target = DatumTargetWGS84;
  d.ellipsoid = EllipsoidDef(6378388.0, 1.0 / 297.0, "INTL", "International", nullptr, 7022);
  d.dx = -87.0;
  DatumDef datum(&d, 6230);
  datum.SetName("A \"datum\"");
  ProjectionDef projection(ProjectionMethodHotine);
  WarpDef warp;
  warp.SetMethod(WarpMethodHelmert);
  for (int i = 0; i < 3; ++i) {
    warp.AddSourcePoint(i, i * i);
    warp.AddDestinationPoint(2.0 * i, 3.0 * i);
  }
  ORVDef system(&datum, &projection, &warp);
  system.SetToken("T");
  system.SetName("N<>\t\x7F");
  return Encoded(system);
}

TEST(SystemText, TextsCutAnywhereRaise) {
  const std::string text = FullText();
  ASSERT_TRUE(DecodesOrRaises(text));
  // The last item needs its header only: everything from "]" on may be missing.
  const size_t enough = text.rfind(']') + 1;
  for (size_t length = 0; length < text.size(); ++length) {
    EXPECT_EQ(DecodesOrRaises(text.substr(0, length)), length >= enough) << length;
  }
}

TEST(SystemText, TextsWithAnyByteChangedDecodeOrRaise) {
  const std::string text = FullText();
  for (size_t i = 0; i < text.size(); ++i) {
    for (const char c : {'\0', '<', '>', '{', '}', '[', ']', '=', ',', '"', '\\', '9', '-', '\xFF'}) {
      std::string changed = text;
      changed[i] = c;
      DecodesOrRaises(changed);
    }
    DecodesOrRaises(text.substr(0, i) + text.substr(i + 1));
  }
}

TEST(SystemText, RandomItemsDecodeOrRaise) {
  EXPECT_TRUE(Holds(
      [] {
        const char* const kNames[] = {"Token",     "Name",        "Projection", "Datum", "Georef",
                                      "Ellipsoid", "Method",      "Scale",      "Coeff", "ORVDef",
                                      "POSC",      "SrcControls", "bSouth",     "Radius"};
        std::string text = "<{6,ORVDef[1]>";
        const int items = test::IntIn(0, 30);
        for (int i = 0; i < items; ++i) {
          const std::string name = kNames[test::IntIn(0, 14)];
          const char type = "bdufsv{}{}"[test::IntIn(0, 10)];
          const size_t length = test::AnyBool() ? name.size() : test::AnySize();
          const size_t count = test::AnyBool() ? test::SizeIn(0, 8) : test::AnySize();
          text += std::string("<") + type + std::to_string(length) + ',' + name + '[' +
                  std::to_string(count) + ']';
          if (type != '{' && type != '}')
            text += test::OneOf<std::string>({"=1,2,3,4,5,6,7", "=\"text\"", "=t", "="});
          text += '>';
        }
        text += "<}6,ORVDef[1]>";
        DecodesOrRaises(text);
      },
      2000));
}

TEST(SystemText, CountsOfFourBillionTakeNoMemory) {
  for (const char* const items :
       {"<{6,Georef[1]><f11,SrcControls[4294967295]=1,2><}6,Georef[1]>",
        "<{6,Georef[1]><f11,SrcControls[18446744073709551615]=1,2><}6,Georef[1]>",
        "<{6,Georef[1]><f12,DestControls[4294967294]=1,2>", "<{6,Georef[1]><f5,Coeff[4294967295]=1,2>",
        "<s5,Token[4294967295]=\"", "<s4294967295,Token[1]=\"A\">", "<s18446744073709551615,Token[1]=\"A\">",
        "<s99999999999999999999,Token[1]=\"A\">"}) {
    EXPECT_FALSE(DecodesOrRaises(std::string("<{6,ORVDef[1]>") + items)) << items;
  }
  // Harmless: one element is asked for, whatever the count.
  EXPECT_TRUE(DecodesOrRaises("<{6,UCSDef[1]><f5,Scale[4294967295]=1,2><}6,UCSDef[1]>"));
}

TEST(SystemText, DeepNestingNeitherRecursesNorTakesLong) {
  for (const char* const block : {"<{6,ORVDef[1]>", "<{5,Datum[1]>", "<{10,Projection[1]>", "<{6,Georef[1]>",
                                  "<{9,Ellipsoid[1]>", "<{7,Unknown[1]>"}) {
    std::string text = "<{6,ORVDef[1]>";
    for (int i = 0; i < 200000; ++i) text += block;
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_FALSE(DecodesOrRaises(text)) << block;
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10)) << block;
  }
}

TEST(SystemText, ManyBlocksOfOnePartAreReadOneAfterTheOther) {
  std::string text = "<{6,ORVDef[1]>";
  for (int i = 0; i < 1000; ++i)
    text += "<{10,Projection[1]><f4,Lon0[1]=" + std::to_string(i % 90) + "><}10,Projection[1]>";
  text += "<}6,ORVDef[1]>";
  ORVDef system;
  system.DecodeFromText(text, nullptr);
  EXPECT_EQ(system.GetProjection()->GetParameter(ProjectionParameterIDLon0), 999 % 90);
}

TEST(SystemText, ABackslashInANameDoesNotComeBack) {
  // Deliberate: the writer leaves a backslash as it is, the reader takes one for the beginning of an escape.
  ORVDef system;
  system.SetName("C:\\maps");
  const std::string text = Encoded(system);
  EXPECT_NE(text.find("\"C:\\maps\""), std::string::npos);
  ORVDef back;
  EXPECT_RAISES(back.DecodeFromText(text, nullptr), 1026, "EncodeText",
                "Corrupt data while parsing encoded data.");
}

}  // namespace
}  // namespace orv
