#include "orv/system/CSDef.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <type_traits>

#include "orv/system/ORVDef.h"
#include "orv/system/UCSDef.h"
#include "tests/support/Raises.h"

namespace orv {
namespace {

/// A definition of neither kind, which keeps what the base does.
class Probe : public CSDef {
 public:
  void DecodeFromText(const std::string&, size_t*) override {}
  Probe* Clone() const override { return new Probe(*this); }
  bool Compare(const CSDef&, bool, std::string*) const override { return true; }
  void SetWarp(const WarpDef*) override {}
  const WarpDef* GetWarp() const override { return nullptr; }
  bool HasWarp() const override { return false; }
  void EncodeToText(std::string&) const override {}
  void Serialize(shr::ISerialize&) override {}

  static auto ReadConfigEntrySlot() { return &Probe::ReadConfigEntry; }
  static auto WriteConfigEntrySlot() { return &Probe::WriteConfigEntry; }

 protected:
  void ReadConfigEntry(ConfigFileReader*) override {}
  void WriteConfigEntry(ConfigFileWriter*) const override {}
};

#if !defined(_MSC_VER)
// The Itanium C++ ABI: a pointer to a virtual member function is the byte offset of its slot, plus 1 on most
// machines; on ARM the bit stands in the adjustment instead.
template <class MemberFunction>
size_t SlotOf(MemberFunction function) {
  struct {
    uintptr_t offset;
    ptrdiff_t adjustment;
  } parts;
  static_assert(sizeof parts == sizeof function);
  std::memcpy(&parts, &function, sizeof parts);
  const bool isVirtual = (parts.offset & 1) != 0 || (parts.adjustment & 1) != 0;
  EXPECT_TRUE(isVirtual);
  return (parts.offset & ~uintptr_t{1}) / sizeof(void*);
}

TEST(CSDef, VirtualOperationsStandInTheirOrder) {
  EXPECT_EQ(SlotOf(Probe::ReadConfigEntrySlot()), 0u);
  EXPECT_EQ(SlotOf(Probe::WriteConfigEntrySlot()), 1u);
  EXPECT_EQ(SlotOf(&CSDef::DecodeFromText), 2u);
  // The destructor takes two slots, 3 and 4.
  EXPECT_EQ(SlotOf(&CSDef::Clone), 5u);
  EXPECT_EQ(SlotOf(&CSDef::SetName), 6u);
  EXPECT_EQ(SlotOf(&CSDef::SetToken), 7u);
  EXPECT_EQ(SlotOf(&CSDef::SetComment), 8u);
  EXPECT_EQ(SlotOf(static_cast<bool (CSDef::*)() const>(&CSDef::Check)), 9u);
  EXPECT_EQ(SlotOf(static_cast<bool (CSDef::*)(std::string&) const>(&CSDef::Check)), 10u);
  EXPECT_EQ(SlotOf(&CSDef::Compare), 11u);
  EXPECT_EQ(SlotOf(&CSDef::GetName), 12u);
  EXPECT_EQ(SlotOf(&CSDef::GetToken), 13u);
  EXPECT_EQ(SlotOf(&CSDef::GetComment), 14u);
  EXPECT_EQ(SlotOf(&CSDef::SetWarp), 15u);
  EXPECT_EQ(SlotOf(&CSDef::GetWarp), 16u);
  EXPECT_EQ(SlotOf(&CSDef::HasWarp), 17u);
  EXPECT_EQ(SlotOf(&CSDef::EncodeToText), 18u);
  EXPECT_EQ(SlotOf(&CSDef::Serialize), 19u);
  EXPECT_EQ(SlotOf(&CSDef::DebugDump), 20u);
}
#endif

// Overridden operations belong to the derived class, the others to the base.
template <class Derived>
constexpr bool kOverridesAsStated = std::is_same_v<decltype(&Derived::DecodeFromText),
                                                   void (Derived::*)(const std::string&, size_t*)>&&
    std::is_same_v<decltype(&Derived::Clone), Derived* (Derived::*)() const>&& std::is_same_v<
        decltype(&Derived::Compare), bool (Derived::*)(const CSDef&, bool, std::string*) const>&&
        std::is_same_v<decltype(&Derived::SetWarp), void (Derived::*)(const WarpDef*)>&& std::is_same_v<
            decltype(&Derived::GetWarp), const WarpDef* (Derived::*)() const>&&
            std::is_same_v<decltype(&Derived::HasWarp), bool (Derived::*)() const>&& std::is_same_v<
                decltype(&Derived::EncodeToText),
                void (Derived::*)(std::string&) const>&& std::is_same_v<decltype(&Derived::Serialize),
                                                                        void (Derived::*)(shr::ISerialize&)>&&
                std::is_same_v<decltype(&Derived::DebugDump), void (Derived::*)(std::string&, size_t) const>&&
                    std::is_same_v<decltype(&Derived::SetName), void (CSDef::*)(const char*)>&&
                        std::is_same_v<decltype(&Derived::SetToken), void (CSDef::*)(const char*)>&&
                            std::is_same_v<decltype(&Derived::SetComment), void (CSDef::*)(const char*)>&&
                                std::is_same_v<decltype(&Derived::GetName), const char* (CSDef::*)() const>&&
                                    std::is_same_v<decltype(&Derived::GetToken),
                                                   const char* (CSDef::*)() const>&&
                                        std::is_same_v<decltype(&Derived::GetComment),
                                                       const char* (CSDef::*)() const>;
static_assert(kOverridesAsStated<ORVDef>);
static_assert(kOverridesAsStated<UCSDef>);
static_assert(std::is_abstract_v<CSDef>);
static_assert(std::has_virtual_destructor_v<CSDef>);
static_assert(CSTypeNone == 0 && CSTypeORV == 1 && CSTypeUCS == 2);
static_assert(std::is_same_v<std::underlying_type_t<CSType>, int>);

TEST(CSDef, TypeTellsTheKind) {
  EXPECT_EQ(Probe().Type(), CSTypeNone);
  EXPECT_EQ(ORVDef().Type(), CSTypeORV);
  EXPECT_EQ(UCSDef().Type(), CSTypeUCS);
}

TEST(CSDef, TypeSurvivesCopyingAndFlushing) {
  ORVDef orv;
  orv.Flush();
  EXPECT_EQ(ORVDef(orv).Type(), CSTypeORV);
  UCSDef ucs;
  ucs.Flush();
  EXPECT_EQ(UCSDef(ucs).Type(), CSTypeUCS);
}

TEST(CSDef, TextsAreNeverNull) {
  Probe probe;
  EXPECT_STREQ(probe.GetName(), "");
  EXPECT_STREQ(probe.GetToken(), "");
  EXPECT_STREQ(probe.GetComment(), "");
  probe.SetName("name");
  probe.SetToken("token");
  probe.SetComment("comment");
  EXPECT_STREQ(probe.GetName(), "name");
  EXPECT_STREQ(probe.GetToken(), "token");
  EXPECT_STREQ(probe.GetComment(), "comment");
  probe.SetName(nullptr);
  probe.SetToken(nullptr);
  probe.SetComment(nullptr);
  EXPECT_STREQ(probe.GetName(), "");
  EXPECT_STREQ(probe.GetToken(), "");
  EXPECT_STREQ(probe.GetComment(), "");
}

TEST(CSDef, BaseCheckPassesAndEmptiesTheExplanation) {
  const Probe probe;
  std::string why = "old";
  EXPECT_TRUE(probe.Check());
  EXPECT_TRUE(probe.Check(why));
  EXPECT_EQ(why, "");
}

TEST(CSDef, BaseDump) {
  Probe probe;
  probe.SetName("100% name");
  probe.SetToken("T");
  probe.SetComment("C");
  char address[64];
  std::snprintf(address, sizeof address, "%p", static_cast<const void*>(static_cast<const CSDef*>(&probe)));
  std::string text = "x";
  probe.DebugDump(text, 2);
  EXPECT_EQ(text, std::string("x  CSDef at ") + address +
                      "\n  Name:  '100% name'\n  Token:  'T'\n  Comment:  'C'\n");
}

TEST(CSDef, ShortNameIsWhatStandsBehindTheLastBar) {
  const struct {
    const char* name;
    const char* shortName;
  } rows[] = {
      {"", ""},
      {"Geographic (lat/lon)|WGS 84", "WGS 84"},
      {"A|B| |C", "C"},
      {"A|B|", ""},
      {"|", ""},
      {"||", ""},
      {"A| ", ""},
      {"A| B", "B"},
      {"A|  B C ", "B C "},
      {" B", " B"},  // deliberate: blanks are skipped behind a bar only
      {"plain", "plain"},
      {"|lead", "lead"},
      {"A|\tB", "\tB"},  // blanks only
  };
  for (const auto& row : rows) {
    Probe probe;
    probe.SetName(row.name);
    EXPECT_EQ(probe.GetShortName(), row.shortName) << "'" << row.name << "'";
  }
}

TEST(CSDef, BuildFromEncodedTextMakesTheKindThatTheBlockNames) {
  const std::string text =
      "<{6,ORVDef[1]>\r\n<s5,Token[1]=\"A\">\r\n<}6,ORVDef[1]>\r\n"
      "<{6,UCSDef[1]>\r\n<s5,Token[1]=\"B\">\r\n<}6,UCSDef[1]>\r\n";
  size_t at = 0;
  const std::unique_ptr<CSDef> first(CSDef::BuildFromEncodedText(text, &at));
  ASSERT_NE(dynamic_cast<ORVDef*>(first.get()), nullptr);
  EXPECT_STREQ(first->GetToken(), "A");
  EXPECT_EQ(at, text.find("<}6,ORVDef"));  // the cursor stands on the block's end

  at = text.find("<{6,UCSDef");
  const std::unique_ptr<CSDef> second(CSDef::BuildFromEncodedText(text, &at));
  ASSERT_NE(dynamic_cast<UCSDef*>(second.get()), nullptr);
  EXPECT_STREQ(second->GetToken(), "B");
  EXPECT_EQ(at, text.find("<}6,UCSDef"));

  const std::unique_ptr<CSDef> fromStart(CSDef::BuildFromEncodedText(text, nullptr));
  ASSERT_NE(fromStart, nullptr);
  EXPECT_EQ(fromStart->Type(), CSTypeORV);
}

TEST(CSDef, BuildFromEncodedTextIgnoresTheCaseOfTheBlockName) {
  const std::unique_ptr<CSDef> orv(CSDef::BuildFromEncodedText("<{6,orvdef[1]><}6,ORVDEF[1]>", nullptr));
  EXPECT_EQ(orv->Type(), CSTypeORV);
  const std::unique_ptr<CSDef> ucs(CSDef::BuildFromEncodedText("<{6,ucsDEF[1]><}6,UCSDef[1]>", nullptr));
  EXPECT_EQ(ucs->Type(), CSTypeUCS);
}

TEST(CSDef, BuildFromEncodedTextMessages) {
  constexpr const char* kHeader = "Corrupt coordinate system data.  Malformed or missing header.";
  const struct {
    const char* text;
    size_t at;
    const char* unit;
    const char* message;
  } rows[] = {
      {"", 0, "CSDef", kHeader},
      {"hello", 0, "CSDef", kHeader},
      {"<{6,ORVDef[1]><}6,ORVDef[1]>", 1, "CSDef", kHeader},
      {"<{6,ORVDef[1]><}6,ORVDef[1]>", 28, "CSDef", kHeader},
      {"<{6,ORVDef[1]><}6,ORVDef[1]>", 29, "CSDef", kHeader},
      {"<{6,ORV", 0, "CSDef", kHeader},
      {"<s5,Token[1]=\"A\">", 0, "CSDef", "Corrupt coordinate system data.  Expected BLOCKBEGIN."},
      {"<}6,ORVDef[1]>", 0, "CSDef", "Corrupt coordinate system data.  Expected BLOCKBEGIN."},
      {"<{5,Datum[1]>", 0, "CSDef", "Corrupt coordinate system data.  Expected ORVDef or UCSDef block."},
      {"<{0,[1]>", 0, "CSDef", "Corrupt coordinate system data.  Expected ORVDef or UCSDef block."},
      // Behind the head the kind itself complains.
      {"<{6,ORVDef[1]>", 0, "ORVDef", "Unexpected end of encoded data."},
      {"<{6,UCSDef[1]>", 0, "UCSDef", "Corrupt data encountered in encoded coordinate system."},
  };
  for (const auto& row : rows) {
    size_t at = row.at;
    EXPECT_RAISES(CSDef::BuildFromEncodedText(row.text, &at), 1026, row.unit, row.message) << row.text;
    EXPECT_EQ(at, row.at) << row.text;
  }
}

}  // namespace
}  // namespace orv
