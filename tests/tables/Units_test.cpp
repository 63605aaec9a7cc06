#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "orv/core/ORVGlobals.h"
#include "orv/core/internal/Fail.h"
#include "orv/core/internal/Globals.h"
#include "orv/tables/AngularUnits.h"
#include "orv/tables/LinearUnits.h"
#include "tests/support/CommaLocale.h"
#include "tests/support/Generators.h"
#include "tests/support/Raises.h"
#include "tests/support/TempFolder.h"

namespace {

using orv::test::TempFolder;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr const char* kBadIndex = "Bad parameter to function call.";
constexpr const char* kSamePOSC = "Can't have two linear units with same POSC/EPSG number.";
constexpr const char* kSameToken = "Can't have two linear units with same ID token.";
constexpr const char* kSameName = "Can't have two linear units with same name.";

// What differs between the two kinds of units.
struct Linear {
  using List = orv::LinearUnitList;
  using Info = orv::LinearUnitInfo;
  static List& Known() { return orv::ORVKnownLinearUnitsList; }
  static double Convert(double value, int from, int to) { return orv::ORVConvertLinearUnit(value, from, to); }
  static constexpr const char* kUnit = "LinearUnits";
  static constexpr const char* kWord = "linear";
};
struct Angular {
  using List = orv::AngularUnitList;
  using Info = orv::AngularUnitInfo;
  static List& Known() { return orv::ORVKnownAngularUnitsList; }
  static double Convert(double value, int from, int to) {
    return orv::ORVConvertAngularUnit(value, from, to);
  }
  static constexpr const char* kUnit = "AngularUnits";
  static constexpr const char* kWord = "angular";
};

// A text about linear units as the kind says it.
template <class Kind>
std::string Said(std::string text) {
  for (size_t at = text.find("linear"); at != std::string::npos; at = text.find("linear", at + 1)) {
    text.replace(at, 6, Kind::kWord);
  }
  return text;
}

#define EXPECT_UNITS_FAIL(statement, code, text) EXPECT_RAISES(statement, code, TypeParam::kUnit, text)

template <class Kind>
typename Kind::Info Make(const char* token, const char* name, const char* plural, double multiplier,
                         double divider = 0.0, int posc = 0) {
  typename Kind::Info unit;
  unit.token = token;
  unit.name = name;
  unit.namePlural = plural;
  unit.multiplier = multiplier;
  unit.divider = divider;
  unit.posc = posc;
  return unit;
}

template <class Kind>
typename Kind::Info Named(const char* token, const char* name, int posc = 0) {
  return Make<Kind>(token, name, "", 1.0, 0.0, posc);
}

template <class Kind>
typename Kind::Info Scaled(double multiplier, double divider) {
  return Make<Kind>("", "", "", multiplier, divider);
}

// Loads a text into a list.  The file's path holds a separator, so it is found as given.
template <class List>
bool LoadText(List& list, const TempFolder& folder, const std::string& text) {
  return list.Load(folder.Write("units.ocf", text).c_str(), true);
}

// Expects that loading `text` raises `message` (with "FILE" for the file's name) and leaves `left` entries.
template <class Kind>
void ExpectLoadFails(typename Kind::List& list, const std::string& text, int code, std::string message,
                     int left) {
  const TempFolder folder;
  const size_t at = message.find("FILE");
  if (at != std::string::npos) message.replace(at, 4, folder.Path("units.ocf"));
  EXPECT_RAISES(LoadText(list, folder, text), code, Kind::kUnit, message) << text;
  EXPECT_EQ(list.Count(), left) << text;
}

template <class Kind>
typename Kind::Info Loaded(const std::string& pairs) {
  const TempFolder folder;
  typename Kind::List list;
  EXPECT_TRUE(LoadText(list, folder, "{ " + pairs + " }"));
  EXPECT_EQ(list.Count(), 1);
  typename Kind::Info unit;
  if (list.Count() > 0) list.Enum(0, unit);
  return unit;
}

template <class List>
std::string Saved(const List& list) {
  const TempFolder folder;
  EXPECT_TRUE(list.Save(folder.Path("x.ocf").c_str()));
  return folder.Read("x.ocf");
}

template <class List>
std::string Tokens(const List& list) {
  std::string tokens;
  for (int i = list.First(); i <= list.Last(); ++i) tokens += std::string(list.EnumToken(i)) + " ";
  return tokens;
}

// Failures are recorded and not thrown while it lives.
class Quiet {
 public:
  Quiet() { orv::Globals().throwOnError = false; }
  ~Quiet() { orv::Globals().throwOnError = true; }
  Quiet(const Quiet&) = delete;
  Quiet& operator=(const Quiet&) = delete;
};

// The library-wide list is empty at the beginning and at the end of each test.
template <class Kind>
class Units : public ::testing::Test {
 protected:
  void SetUp() override { Kind::Known().Flush(); }
  void TearDown() override { Kind::Known().Flush(); }
};

struct KindNames {
  template <class Kind>
  static std::string GetName(int) {
    return Kind::kWord;
  }
};

using Kinds = ::testing::Types<Linear, Angular>;
TYPED_TEST_SUITE(Units, Kinds, KindNames);

}  // namespace

// ---- entries ---------------------------------------------------------------------------------------------

TYPED_TEST(Units, AUnitIsEmptyAtFirstAndCopyable) {
  const typename TypeParam::Info unit;
  EXPECT_EQ(unit.token, "");
  EXPECT_EQ(unit.name, "");
  EXPECT_EQ(unit.namePlural, "");
  EXPECT_EQ(unit.multiplier, 0.0);
  EXPECT_EQ(unit.divider, 0.0);
  EXPECT_EQ(unit.posc, 0);
  EXPECT_TRUE(std::is_copy_assignable_v<typename TypeParam::Info>);
}

TYPED_TEST(Units, AnEmptyListFindsNothing) {
  const typename TypeParam::List list;
  EXPECT_EQ(list.First(), 0);
  EXPECT_EQ(list.Last(), -1);
  EXPECT_EQ(list.Count(), 0);
  EXPECT_EQ(list.FindByToken(""), -1);
  EXPECT_EQ(list.FindByName(""), -1);
  EXPECT_EQ(list.FindByPOSCNumber(9001), -1);
  EXPECT_EQ(list.FindByMultiplier(0.0), -1);
  EXPECT_EQ(list.FindByDivider(0.0), -1);
}

TYPED_TEST(Units, EveryFieldOfAnEntryIsEnumerated) {
  typename TypeParam::List list;
  EXPECT_EQ(list.Add(Make<TypeParam>("FT", "Foot", "Feet", 0.3048, 3.25, 9002)), 0);
  EXPECT_EQ(list.Add(Scaled<TypeParam>(0.0, 7.0)), 1);
  EXPECT_EQ(list.First(), 0);
  EXPECT_EQ(list.Last(), 1);
  EXPECT_EQ(list.Count(), 2);
  EXPECT_STREQ(list.EnumToken(0), "FT");
  EXPECT_STREQ(list.EnumName(0), "Foot");
  EXPECT_STREQ(list.EnumNamePlural(0), "Feet");
  EXPECT_EQ(list.EnumMultiplier(0), 0.3048);
  EXPECT_EQ(list.EnumDivider(0), 3.25);
  EXPECT_EQ(list.EnumPOSC(0), 9002);
  EXPECT_EQ(list.EnumMultiplier(1), 0.0) << "kept as given, not computed from the divider";
  EXPECT_EQ(list.EnumDivider(1), 7.0);
  // An empty text is no null pointer: null is the answer to a bad index.
  EXPECT_STREQ(list.EnumToken(1), "");
  EXPECT_STREQ(list.EnumName(1), "");
  EXPECT_STREQ(list.EnumNamePlural(1), "");
  typename TypeParam::Info unit;
  EXPECT_TRUE(list.Enum(0, unit));
  EXPECT_EQ(unit.token, "FT");
  EXPECT_EQ(unit.name, "Foot");
  EXPECT_EQ(unit.namePlural, "Feet");
  EXPECT_EQ(unit.multiplier, 0.3048);
  EXPECT_EQ(unit.divider, 3.25);
  EXPECT_EQ(unit.posc, 9002);
}

TYPED_TEST(Units, IndexesOutsideTheListAreBadParameters) {
  typename TypeParam::List list;
  list.Add(Named<TypeParam>("A", "a name"));
  list.Add(Named<TypeParam>("B", "b name"));
  typename TypeParam::Info unit;
  for (const int index : {-1, 2, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
    EXPECT_UNITS_FAIL(list.Enum(index, unit), 1032, kBadIndex);
    EXPECT_UNITS_FAIL(list.EnumToken(index), 1032, kBadIndex);
    EXPECT_UNITS_FAIL(list.EnumName(index), 1032, kBadIndex);
    EXPECT_UNITS_FAIL(list.EnumNamePlural(index), 1032, kBadIndex);
    EXPECT_UNITS_FAIL(list.EnumMultiplier(index), 1032, kBadIndex);
    EXPECT_UNITS_FAIL(list.EnumDivider(index), 1032, kBadIndex);
    EXPECT_UNITS_FAIL(list.EnumPOSC(index), 1032, kBadIndex);
    EXPECT_UNITS_FAIL(list.Replace(index, unit), 1032, kBadIndex);
    EXPECT_UNITS_FAIL(list.Remove(index), 1032, kBadIndex);
  }
  EXPECT_EQ(Tokens(list), "A B ");
}

TYPED_TEST(Units, ABadIndexGivesNothingWhenItIsNotThrown) {
  const typename TypeParam::List list;
  typename TypeParam::Info unit = Named<TypeParam>("before", "before");
  const Quiet quiet;
  EXPECT_FALSE(list.Enum(0, unit));
  EXPECT_EQ(unit.token, "before");
  EXPECT_EQ(list.EnumToken(0), nullptr);
  EXPECT_EQ(list.EnumName(0), nullptr);
  EXPECT_EQ(list.EnumNamePlural(0), nullptr);
  EXPECT_EQ(list.EnumMultiplier(0), 0.0);
  EXPECT_EQ(list.EnumDivider(0), 0.0);
  EXPECT_EQ(list.EnumPOSC(0), 0);
}

TYPED_TEST(Units, EntriesAreReplacedRemovedAndFlushed) {
  typename TypeParam::List list;
  for (const char* const token : {"A", "B", "C"}) list.Add(Named<TypeParam>(token, token));
  EXPECT_TRUE(list.Replace(1, Named<TypeParam>("X", "ex", 5)));
  EXPECT_EQ(Tokens(list), "A X C ");
  EXPECT_EQ(list.FindByPOSCNumber(5), 1);
  EXPECT_TRUE(list.Remove(0));
  EXPECT_EQ(Tokens(list), "X C ");
  EXPECT_EQ(list.FindByToken("c"), 1);
  list.Flush();
  EXPECT_EQ(list.Count(), 0);
  EXPECT_EQ(list.Last(), -1);
}

TYPED_TEST(Units, ACopyIsAListOfItsOwn) {
  typename TypeParam::List list;
  list.Add(Named<TypeParam>("A", "a name"));
  typename TypeParam::List copy = list;
  copy.Add(Named<TypeParam>("B", "b name"));
  EXPECT_EQ(Tokens(list), "A ");
  EXPECT_EQ(Tokens(copy), "A B ");
  list = copy;
  copy.Flush();
  EXPECT_EQ(Tokens(list), "A B ");
}

// ---- finding ---------------------------------------------------------------------------------------------

TYPED_TEST(Units, TheFirstEntryWithATokenIsFoundWithoutRegardToCase) {
  typename TypeParam::List list;
  for (const char* const token : {"M", "Ft", "FT"}) list.Add(Named<TypeParam>(token, "name"));
  EXPECT_EQ(list.FindByToken("fT"), 1);
  EXPECT_EQ(list.FindByToken("FT"), 1);
  EXPECT_EQ(list.FindByToken("f"), -1);
  EXPECT_EQ(list.FindByToken("ftt"), -1);
  EXPECT_EQ(list.FindByToken("name"), -1);
  EXPECT_EQ(list.FindByToken(""), -1);
  EXPECT_EQ(list.FindByToken(nullptr), -1);
}

TYPED_TEST(Units, NameAndPluralNameOfEachEntryAreTriedBeforeTheNextEntry) {
  typename TypeParam::List list;
  list.Add(Make<TypeParam>("0", "Metre", "Metres", 1.0));
  list.Add(Make<TypeParam>("1", "Foot", "Feet", 0.3048));
  list.Add(Make<TypeParam>("2", "FEET", "Foot", 0.5));
  EXPECT_EQ(list.FindByName("feet"), 1);
  EXPECT_EQ(list.FindByName("fOOt"), 1);
  EXPECT_EQ(list.FindByName("metre"), 0);
  EXPECT_EQ(list.FindByName("1"), -1);
  EXPECT_EQ(list.FindByName(nullptr), -1);
  EXPECT_EQ(list.FindByName(""), -1);
  list.Add(Make<TypeParam>("3", "Yard", "", 0.9144));
  EXPECT_EQ(list.FindByName(""), 3) << "an empty plural name is a name like any other";
}

TYPED_TEST(Units, NumbersBelowOneAreNotLookedFor) {
  typename TypeParam::List list;
  for (const int posc : {0, -7, 9001, 1, 9001}) list.Add(Named<TypeParam>("", "", posc));
  EXPECT_EQ(list.FindByPOSCNumber(9001), 2);
  EXPECT_EQ(list.FindByPOSCNumber(1), 3);
  EXPECT_EQ(list.FindByPOSCNumber(9002), -1);
  EXPECT_EQ(list.FindByPOSCNumber(0), -1);
  EXPECT_EQ(list.FindByPOSCNumber(-7), -1);
}

TYPED_TEST(Units, AMultiplierFindsADividerThatMeansItWithinABillionth) {
  // 1 / 3.280839895 is 1.2e-12 above 0.3048; 1 / 3.28084 is 9.8e-9 below it.
  typename TypeParam::List list;
  list.Add(Scaled<TypeParam>(1.0, 0.0));
  list.Add(Scaled<TypeParam>(0.0, 3.28084));
  EXPECT_EQ(list.FindByMultiplier(0.3048), -1);
  list.Add(Scaled<TypeParam>(0.0, 3.280839895));
  list.Add(Scaled<TypeParam>(0.3048, 0.0));
  EXPECT_EQ(list.FindByMultiplier(0.3048), 2);
  EXPECT_EQ(list.FindByMultiplier(-0.3048), -1);
  EXPECT_EQ(list.FindByMultiplier(kNaN), -1);
  EXPECT_EQ(list.FindByMultiplier(kInfinity), -1);
}

TYPED_TEST(Units, ADividerFindsAMultiplierThatMeansIt) {
  typename TypeParam::List list;
  list.Add(Scaled<TypeParam>(0.25, 0.0));
  list.Add(Scaled<TypeParam>(0.0, 4.0));
  list.Add(Scaled<TypeParam>(0.0, 8.0));
  EXPECT_EQ(list.FindByDivider(4.0), 0);
  EXPECT_EQ(list.FindByDivider(8.0), 2);
  EXPECT_EQ(list.FindByDivider(0.25), -1);
  EXPECT_EQ(list.FindByDivider(kNaN), -1);
}

TYPED_TEST(Units, OfMultiplierAndDividerEachIsFoundByWhatIsGiven) {
  typename TypeParam::List list;
  list.Add(Scaled<TypeParam>(2.0, 4.0));
  EXPECT_EQ(list.FindByMultiplier(2.0), 0);
  EXPECT_EQ(list.FindByMultiplier(0.25), -1);
  EXPECT_EQ(list.FindByDivider(4.0), 0);
  EXPECT_EQ(list.FindByDivider(0.5), -1);
  // One that is not above 0 is not given.
  list.Add(Scaled<TypeParam>(-2.0, 16.0));
  EXPECT_EQ(list.FindByMultiplier(0.0625), 1);
  EXPECT_EQ(list.FindByMultiplier(-2.0), -1);
  list.Add(Scaled<TypeParam>(32.0, -4.0));
  EXPECT_EQ(list.FindByDivider(0.03125), 2);
  EXPECT_EQ(list.FindByDivider(-4.0), -1);
}

TYPED_TEST(Units, ScalesDifferByLessThanABillionthNotByABillionth) {
  typename TypeParam::List list;
  list.Add(Scaled<TypeParam>(1e-9, 1e-9));
  EXPECT_EQ(list.FindByMultiplier(0.0), -1);
  EXPECT_EQ(list.FindByDivider(0.0), -1);
  const double below = std::nextafter(1e-9, 0.0);
  list.Add(Scaled<TypeParam>(below, below));
  EXPECT_EQ(list.FindByMultiplier(0.0), 1);
  EXPECT_EQ(list.FindByDivider(0.0), 1);
  // Absolute: of a million, a billionth is looked at as of one.
  list.Add(Scaled<TypeParam>(1e6, 1e6));
  EXPECT_EQ(list.FindByMultiplier(1e6 + 1e-8), -1);
  EXPECT_EQ(list.FindByDivider(1e6 + 1e-8), -1);
}

TYPED_TEST(Units, AUnitWithoutScaleIsFoundByZero) {
  typename TypeParam::List list;
  list.Add(Scaled<TypeParam>(1.0, 0.0));
  list.Add(Scaled<TypeParam>(0.0, 0.0));
  EXPECT_EQ(list.FindByMultiplier(0.0), 1);
  EXPECT_EQ(list.FindByDivider(0.0), 1);
}

// ---- conversion ------------------------------------------------------------------------------------------

TYPED_TEST(Units, ValuesAreConvertedByMultipliersAndDividers) {
  auto& known = TypeParam::Known();
  known.Add(Make<TypeParam>("M", "metre", "", 1.0));
  known.Add(Make<TypeParam>("FT", "foot", "", 0.3048));
  known.Add(Make<TypeParam>("FTD", "foot by divider", "", 0.0, 3.280839895));
  known.Add(Make<TypeParam>("Q", "quarter by both", "", 0.25, 1024.0));
  known.Add(Make<TypeParam>("E", "eighth by divider", "", 0.0, 8.0));
  EXPECT_EQ(TypeParam::Convert(1.0, 1, 0), 0.3048);
  EXPECT_EQ(TypeParam::Convert(1.0, 2, 0), 1.0 / 3.280839895);
  EXPECT_EQ(TypeParam::Convert(1.0, 0, 2), 3.280839895);
  EXPECT_EQ(TypeParam::Convert(0.3048, 0, 1), 1.0);
  EXPECT_EQ(TypeParam::Convert(12.0, 3, 0), 3.0) << "the multiplier goes before the divider";
  EXPECT_EQ(TypeParam::Convert(3.0, 0, 3), 12.0);
  EXPECT_EQ(TypeParam::Convert(-6.0, 4, 3), -3.0);
  EXPECT_EQ(TypeParam::Convert(-3.0, 3, 4), -6.0);
  EXPECT_EQ(TypeParam::Convert(12.5, 4, 4), 12.5);
}

TYPED_TEST(Units, EachStepOfAConversionIsOneOperation) {
  auto& known = TypeParam::Known();
  known.Add(Make<TypeParam>("1", "one", "", 1.0));
  known.Add(Make<TypeParam>("D", "by divider", "", 0.0, 3.280839895));
  known.Add(Make<TypeParam>("7", "seventh by divider", "", 0.0, 7.0));
  known.Add(Make<TypeParam>("FT", "foot", "", 0.3048));
  known.Add(Make<TypeParam>("YD", "yard", "", 0.9144));
  // Values at which a joined factor, or 1 / divider, would give another result.
  ASSERT_NE(0.1 / 3.280839895, 0.1 * (1.0 / 3.280839895));
  EXPECT_EQ(TypeParam::Convert(0.1, 1, 0), 0.1 / 3.280839895);
  ASSERT_NE(11.0 / 3.280839895 * 7.0, 11.0 * (7.0 / 3.280839895));
  EXPECT_EQ(TypeParam::Convert(11.0, 1, 2), 11.0 / 3.280839895 * 7.0);
  ASSERT_NE(5.0 * 0.3048 / 0.9144, 5.0 * (0.3048 / 0.9144));
  EXPECT_EQ(TypeParam::Convert(5.0, 3, 4), 5.0 * 0.3048 / 0.9144);
}

TYPED_TEST(Units, ConvertingOutsideTheListGivesZeroWithoutAReport) {
  TypeParam::Known().Add(Named<TypeParam>("M", "metre"));
  typename TypeParam::List other;
  EXPECT_RAISES(other.Remove(3), 1032, TypeParam::kUnit, kBadIndex);
  const int line = orv::ORVGetErrorLine();
  const int pairs[][2] = {{0, 999}, {999, 0}, {0, 1}, {1, 0}, {-1, 0}, {0, -1}, {-1, -1}};
  for (const auto& pair : pairs) EXPECT_EQ(TypeParam::Convert(5.0, pair[0], pair[1]), 0.0);
  EXPECT_EQ(orv::ORVGetErrorCode(), 1032);
  EXPECT_EQ(orv::ORVGetErrorLine(), line);
  EXPECT_STREQ(orv::ORVGetErrorText(), kBadIndex);
  orv::ORVResetError();
  EXPECT_EQ(TypeParam::Convert(5.0, 0, 999), 0.0);
  EXPECT_EQ(orv::ORVGetErrorCode(), 0);
  EXPECT_EQ(TypeParam::Convert(5.0, 0, 0), 5.0);
  TypeParam::Known().Flush();
  EXPECT_EQ(TypeParam::Convert(5.0, 0, 0), 0.0);
}

TYPED_TEST(Units, UnitsWithoutASensibleScaleAreTakenAndConvertWithoutAReport) {
  // Deliberate: only loading refuses them.
  auto& known = TypeParam::Known();
  EXPECT_EQ(known.Add(Make<TypeParam>("M", "metre", "", 1.0)), 0);
  EXPECT_EQ(known.Add(Make<TypeParam>("NONE", "no scale", "", 0.0)), 1);
  EXPECT_EQ(known.Add(Make<TypeParam>("NEG", "negative", "", -2.0)), 2);
  EXPECT_TRUE(known.Replace(2, Make<TypeParam>("NEG", "negative", "", -4.0, -1.0)));
  orv::ORVResetError();
  EXPECT_EQ(TypeParam::Convert(5.0, 1, 0), kInfinity);
  EXPECT_EQ(TypeParam::Convert(5.0, 0, 1), 0.0);
  EXPECT_EQ(TypeParam::Convert(5.0, 2, 0), -20.0);
  EXPECT_EQ(orv::ORVGetErrorCode(), 0);
}

// ---- uniqueness ------------------------------------------------------------------------------------------

TYPED_TEST(Units, KnownOnesAreUniqueByNumberTokenAndName) {
  auto& known = TypeParam::Known();
  known.Add(Make<TypeParam>("M", "Metre", "Metres", 1.0, 0.0, 9001));
  const auto expect = [&known](const typename TypeParam::Info& unit, const char* message) {
    EXPECT_UNITS_FAIL(known.Add(unit), 1032, Said<TypeParam>(message));
    EXPECT_EQ(known.Count(), 1);
  };
  expect(Make<TypeParam>("m", "metre", "", 2.0, 0.0, 9001), kSamePOSC);
  expect(Make<TypeParam>("other", "other", "", 2.0, 0.0, 9001), kSamePOSC);
  expect(Make<TypeParam>("m", "metre", "", 2.0, 0.0, 1), kSameToken);
  expect(Make<TypeParam>("m", "other", "", 2.0), kSameToken);
  expect(Make<TypeParam>("other", "mETRE", "", 2.0, 0.0, 1), kSameName);
  expect(Make<TypeParam>("other", "mETRES", "", 2.0, 0.0, 1), kSameName);
  EXPECT_EQ(known.Add(Make<TypeParam>("other", "other", "Metre", 1.0, 0.0, 1)), 1)
      << "neither the plural name nor the scale is checked";
}

TYPED_TEST(Units, KnownOnesMayRepeatNumbersBelowOne) {
  auto& known = TypeParam::Known();
  EXPECT_EQ(known.Add(Named<TypeParam>("A", "a", 0)), 0);
  EXPECT_EQ(known.Add(Named<TypeParam>("B", "b", 0)), 1);
  EXPECT_EQ(known.Add(Named<TypeParam>("C", "c", -5)), 2);
  EXPECT_EQ(known.Add(Named<TypeParam>("D", "d", -5)), 3);
}

TYPED_TEST(Units, AnEmptyTokenOrNameIsATokenOrNameToo) {
  auto& known = TypeParam::Known();
  known.Add(Make<TypeParam>("", "a", "as", 1.0));
  EXPECT_UNITS_FAIL(known.Add(Named<TypeParam>("", "b")), 1032, Said<TypeParam>(kSameToken));
  EXPECT_EQ(known.Add(Make<TypeParam>("C", "", "cs", 1.0)), 1)
      << "no entry's name or plural name is empty yet";
  EXPECT_UNITS_FAIL(known.Add(Make<TypeParam>("D", "", "ds", 1.0)), 1032, Said<TypeParam>(kSameName));
  known.Flush();
  known.Add(Named<TypeParam>("A", "a"));
  EXPECT_UNITS_FAIL(known.Add(Make<TypeParam>("B", "", "bs", 1.0)), 1032, Said<TypeParam>(kSameName));
}

TYPED_TEST(Units, KnownOnesAreReplacedUnderTheSameRulesButForThemselves) {
  auto& known = TypeParam::Known();
  known.Add(Make<TypeParam>("A", "a name", "a names", 1.0, 0.0, 1));
  known.Add(Make<TypeParam>("B", "b name", "b names", 1.0, 0.0, 2));
  EXPECT_TRUE(known.Replace(0, Make<TypeParam>("a", "A NAME", "a names", 5.0, 0.0, 1)));
  EXPECT_TRUE(known.Replace(1, Make<TypeParam>("b", "B NAMES", "b names", 6.0, 0.0, 2)));
  const auto expect = [&known](int index, const typename TypeParam::Info& unit, const char* message) {
    EXPECT_UNITS_FAIL(known.Replace(index, unit), 1032, message);
    EXPECT_EQ(known.EnumMultiplier(0), 5.0);
    EXPECT_EQ(known.EnumMultiplier(1), 6.0);
  };
  expect(0, Named<TypeParam>("b", "b names", 2), Said<TypeParam>(kSamePOSC).c_str());
  expect(0, Named<TypeParam>("B", "b names", 1), Said<TypeParam>(kSameToken).c_str());
  expect(0, Named<TypeParam>("A", "B Names", 1), Said<TypeParam>(kSameName).c_str());
  expect(1, Named<TypeParam>("a", "x", 2), Said<TypeParam>(kSameToken).c_str());
  expect(2, Named<TypeParam>("b", "b names", 2), kBadIndex);
  expect(-1, Named<TypeParam>("b", "b names", 2), kBadIndex);
  EXPECT_TRUE(known.Replace(1, Named<TypeParam>("C", "c name", 3)));
  EXPECT_EQ(known.Add(Make<TypeParam>("B", "b name", "", 1.0, 0.0, 2)), 2);
}

TYPED_TEST(Units, AFailedAddGivesZeroWhenItIsNotThrown) {
  auto& known = TypeParam::Known();
  known.Add(Named<TypeParam>("A", "a"));
  known.Add(Named<TypeParam>("B", "b"));
  const Quiet quiet;
  EXPECT_EQ(known.Add(Named<TypeParam>("B", "c")), 0);  // deliberate: neither -1 nor an index
  EXPECT_FALSE(known.Replace(0, Named<TypeParam>("B", "c")));
  EXPECT_EQ(Tokens(known), "A B ");
}

TYPED_TEST(Units, OtherListsAcceptDuplicates) {
  typename TypeParam::List list;
  const auto unit = Make<TypeParam>("M", "Metre", "Metres", 1.0, 0.0, 9001);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(list.Add(unit), i);
  EXPECT_TRUE(list.Replace(1, unit));
  // A copy of the library-wide list is another list.
  TypeParam::Known().Add(unit);
  typename TypeParam::List copy = TypeParam::Known();
  EXPECT_EQ(copy.Add(unit), 1);
  EXPECT_UNITS_FAIL(TypeParam::Known().Add(unit), 1032, Said<TypeParam>(kSamePOSC));
}

// ---- loading ---------------------------------------------------------------------------------------------

TYPED_TEST(Units, EveryKeyIsLoaded) {
  const auto unit = Loaded<TypeParam>(
      "TOKEN=\"T\" Name=\"My ; name\" nameP='My \"names\"' Mul=0.3048006096 "
      "div=3.28083333 POSC=9003 unknown=5");
  EXPECT_EQ(unit.token, "T");
  EXPECT_EQ(unit.name, "My ; name");
  EXPECT_EQ(unit.namePlural, "My \"names\"");
  EXPECT_EQ(unit.multiplier, 0.3048006096);
  EXPECT_EQ(unit.divider, 3.28083333);
  EXPECT_EQ(unit.posc, 9003);
  EXPECT_EQ(Loaded<TypeParam>("mul=25e-4 mul2=7").multiplier, 0.0025);
  EXPECT_EQ(Loaded<TypeParam>("mul=1 mul=2").multiplier, 2.0);
  EXPECT_EQ(Loaded<TypeParam>("posc=-12").posc, -12);
  EXPECT_EQ(Loaded<TypeParam>("name=a\\tb").name, "a\\tb") << "escapes stay as they are";
}

TYPED_TEST(Units, EntriesBeginAfreshAndLoadingReplacesTheList) {
  const TempFolder folder;
  typename TypeParam::List list;
  list.Add(Named<TypeParam>("old", "old"));
  EXPECT_TRUE(LoadText(list, folder, "{ token=A name=N namep=P mul=2 div=3 posc=4 }{}"));
  ASSERT_EQ(list.Count(), 2);
  EXPECT_STREQ(list.EnumToken(0), "A");
  EXPECT_STREQ(list.EnumToken(1), "");
  EXPECT_STREQ(list.EnumName(1), "");
  EXPECT_STREQ(list.EnumNamePlural(1), "");
  EXPECT_EQ(list.EnumMultiplier(1), 0.0);
  EXPECT_EQ(list.EnumDivider(1), 0.0);
  EXPECT_EQ(list.EnumPOSC(1), 0);
  EXPECT_TRUE(LoadText(list, folder, "; nothing"));
  EXPECT_EQ(list.Count(), 0);
}

TYPED_TEST(Units, NegativeScalesAreRefusedAtTheEndOfTheirEntry) {
  typename TypeParam::List list;
  const std::string good = "{ token=A mul=0 div=0 }\n";
  const auto fails = [&](const std::string& text, const char* message) {
    ExpectLoadFails<TypeParam>(list, good + text + "{ token=C }", 1029, message, 1);
    EXPECT_EQ(Tokens(list), "A ");
  };
  fails("{ mul=-1 }", "FILE(2):  Scale must be positive.\n");
  fails("{ div=-0.5 }", "FILE(2):  Scale must be positive.\n");
  fails("{\nmul=1 div=-1\nname=N\n}", "FILE(5):  Scale must be positive.\n");
  EXPECT_EQ(Loaded<TypeParam>("mul=-1 mul=4").multiplier, 4.0) << "looked at when the entry is complete";
}

TYPED_TEST(Units, SyntaxErrorsTellFileAndLine) {
  typename TypeParam::List list;
  const std::string good = "; head\n{ mul=1 }\n";
  const auto fails = [&](const std::string& text, const char* message) {
    ExpectLoadFails<TypeParam>(list, good + text, 1029, message, 1);
  };
  // Deliberate: one blank behind the first one's colon.
  fails("100%s", "FILE(3): Expected '{', found '100' at start of entry\n");
  fails("%s", "FILE(3): Expected '{', found '%' at start of entry\n");
  fails("\n}", "FILE(4): Expected '{', found '}' at start of entry\n");
  fails("{ mul\n5 }", "FILE(4):  Expected '=' between parameter and value.\n");
  fails("{ mul=1e+5 }", "FILE(3):  Expected '=' between parameter and value.\n");
  fails("{ mul }", "FILE(3):  Expected '=' between parameter and value.\n");
  fails("{", "FILE(3):  Unexpected end of file.\n");
  fails("{ mul", "FILE(3):  Unexpected end of file.\n");
  fails("{ mul=", "FILE(3):  Unexpected end of file.\n");
  fails("{ mul=1\n", "FILE(4):  Unexpected end of file.\n");
}

TYPED_TEST(Units, KnownOnesNeedANameAndThenATokenInTheirFile) {
  auto& known = TypeParam::Known();
  const std::string good = "{ token=T name=N namep=Ns }\n";
  const auto fails = [&](const std::string& text, const char* message) {
    ExpectLoadFails<TypeParam>(known, good + text, 1029, message, 1);
  };
  fails("{ mul=-1 }", "FILE(2):  Scale must be positive.\n");
  fails("{ mul=1 }", "FILE(2):  No name parameter specified.\n");
  fails("{ token=T\n}", "FILE(3):  No name parameter specified.\n");
  fails("{ name=\"\" token=U }", "FILE(2):  No name parameter specified.\n");
  fails("{ name=N\n}", "FILE(3):  No token parameter specified.\n");
  const TempFolder folder;
  typename TypeParam::List other;
  EXPECT_TRUE(LoadText(other, folder, good + "{ mul=1 } { token=U } { name=M }"));
  EXPECT_EQ(other.Count(), 4);
}

TYPED_TEST(Units, KnownOnesAreUniqueInTheirFileToo) {
  auto& known = TypeParam::Known();
  const std::string first = "{ token=T name=N namep=Ns posc=5 }";
  const auto fails = [&](const std::string& text, const char* message) {
    ExpectLoadFails<TypeParam>(known, first + text, 1032, Said<TypeParam>(message), 1);
  };
  fails("{ token=U name=M posc=5 }", kSamePOSC);
  fails("{ token=t name=M }", kSameToken);
  fails("{ token=U name=ns }", kSameName);
  const TempFolder folder;
  typename TypeParam::List other;
  EXPECT_TRUE(LoadText(other, folder, first + first));
  EXPECT_EQ(other.Count(), 2);
  // The list is emptied first, so the same file can be loaded again.
  EXPECT_TRUE(LoadText(known, folder, first));
  EXPECT_TRUE(LoadText(known, folder, first));
  EXPECT_EQ(known.Count(), 1);
}

TYPED_TEST(Units, AMissingFileIsReportedOnRequestAndEmptiesTheListAnyway) {
  typename TypeParam::List list;
  list.Add(Named<TypeParam>("A", "a"));
  EXPECT_UNITS_FAIL(list.Load("no 100% such.ocf", true), 1028,
                    Said<TypeParam>("Can't find linear units configuration file 'no 100% such.ocf'"));
  EXPECT_EQ(list.Count(), 0);
  list.Add(Named<TypeParam>("A", "a"));
  orv::ORVResetError();
  EXPECT_FALSE(list.Load("no such.ocf", false));
  EXPECT_EQ(list.Count(), 0);
  EXPECT_EQ(orv::ORVGetErrorCode(), 0);
}

TYPED_TEST(Units, ABadFileIsReportedEvenWhenAMissingOneIsNot) {
  const TempFolder folder;
  const std::string path = folder.Write("bad.ocf", "{ mul=-1 }");
  typename TypeParam::List list;
  EXPECT_UNITS_FAIL(list.Load(path.c_str(), false), 1029, path + "(1):  Scale must be positive.\n");
}

TYPED_TEST(Units, TheDefaultFileIsFoundInTheConfigurationPath) {
  const TempFolder folder;
  const std::string name = Said<TypeParam>("linearunit.ocf");
  folder.Write(name, "{ token=Default }");
  const std::string before = orv::Globals().configPath;
  orv::ORVSetConfigPath(folder.Path().c_str());
  typename TypeParam::List list;
  EXPECT_TRUE(list.Load(nullptr, true));
  EXPECT_EQ(Tokens(list), "Default ");
  std::filesystem::remove(folder.Path(name));
  // Nobody but a full installation beside this program could offer another one.
  std::string elsewhere;
  if (!orv::ORVFindConfigFile(name.c_str(), elsewhere)) {
    EXPECT_UNITS_FAIL(list.Load(nullptr, true), 1028,
                      Said<TypeParam>("Can't find linear units configuration file 'linearunit.ocf'"));
    EXPECT_EQ(list.Count(), 0);
  }
  orv::ORVSetConfigPath(before.c_str());
}

// ---- saving ----------------------------------------------------------------------------------------------

namespace {

template <class Kind>
typename Kind::List ThreeUnits() {
  typename Kind::List list;
  list.Add(Make<Kind>("FT", "Foot", "Feet", 0.3048, 0.0, 9002));
  list.Add(Make<Kind>("100%d", "50% of it", "", 0.0, 3.280839895, -3));
  list.Add(Make<Kind>("", "", "", 0.0));
  return list;
}

// 0.3048 and 3.280839895 in doubles are 0.3048000000000000153766... and 3.2808398950000001725...
constexpr const char* kThreeSaved =
    ";\n; Brevan linear unit configuration file.\n;\n\n"
    "; Entry 1 of 3\n{\n   token=\"FT\"\n   name=\"Foot\"\n   namep=\"Feet\"\n"
    "   mul=0.30480000000000001537\n   posc=9002\n}\n\n"
    "; Entry 2 of 3\n{\n   token=\"100%d\"\n   name=\"50% of it\"\n   div=3.28083989500000017259\n"
    "   posc=-3\n}\n\n"
    "; Entry 3 of 3\n{\n   token=\"\"\n   name=\"\"\n}\n\n"
    ";\n; End linear unit configuration file.\n;\n";

double Scale() {
  return std::fabs(orv::test::AnyBool() ? orv::test::AnyNumber() : orv::test::NumberIn(0.0, 1e-3));
}

}  // namespace

TYPED_TEST(Units, AreSavedByteForByte) {
  EXPECT_EQ(Saved(ThreeUnits<TypeParam>()), Said<TypeParam>(kThreeSaved));
  EXPECT_EQ(Saved(typename TypeParam::List()),
            Said<TypeParam>(";\n; Brevan linear unit configuration file.\n;\n\n"
                            ";\n; End linear unit configuration file.\n;\n"));
}

TYPED_TEST(Units, BothScalesAreSavedWhenBothAreGiven) {
  typename TypeParam::List list;
  list.Add(Make<TypeParam>("T", "N", "Ns", 2.5, 0.4375, 7));
  EXPECT_NE(
      Saved(list).find("{\n   token=\"T\"\n   name=\"N\"\n   namep=\"Ns\"\n   mul=2.50000000000000000000\n"
                       "   div=0.43750000000000000000\n   posc=7\n}\n"),
      std::string::npos)
      << Saved(list);
}

TYPED_TEST(Units, ASavedListIsLoadedAgain) {
  // Twenty decimals give the same double back from 2^-14 on, where half a unit in the last place is more than
  // half of the last decimal; below, they are off by less than one of them.
  const TempFolder folder;
  const auto expectBack = [](double read, double written) {
    if (written == 0.0 || written >= std::ldexp(1.0, -14)) {
      ORV_HOLDS(read == written);
    } else {
      ORV_HOLDS(std::fabs(read - written) <= 1e-20);
    }
  };
  EXPECT_TRUE(orv::test::Holds([&] {
    typename TypeParam::List list;
    const int count = orv::test::IntIn(0, 5);
    for (int i = 0; i < count; ++i) {
      typename TypeParam::Info unit;
      unit.token = orv::test::QuotableText();
      unit.name = orv::test::QuotableText();
      unit.namePlural = orv::test::QuotableText();
      unit.multiplier = Scale();
      unit.divider = Scale();
      unit.posc = orv::test::AnyInt();
      list.Add(unit);
    }
    const std::string path = folder.Path("x.ocf");
    ORV_HOLDS(list.Save(path.c_str()));
    typename TypeParam::List read;
    ORV_HOLDS(read.Load(path.c_str(), true));
    ORV_HOLDS(read.Count() == count);
    for (int i = 0; i < count; ++i) {
      ORV_HOLDS(std::string(read.EnumToken(i)) == list.EnumToken(i));
      ORV_HOLDS(std::string(read.EnumName(i)) == list.EnumName(i));
      ORV_HOLDS(std::string(read.EnumNamePlural(i)) == list.EnumNamePlural(i));
      ORV_HOLDS(read.EnumPOSC(i) == list.EnumPOSC(i));
      expectBack(read.EnumMultiplier(i), list.EnumMultiplier(i));
      expectBack(read.EnumDivider(i), list.EnumDivider(i));
    }
  }));
}

TYPED_TEST(Units, TheDefaultFileIsSavedInTheWorkingDirectory) {
  const TempFolder folder;
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder.Path());
  EXPECT_TRUE(ThreeUnits<TypeParam>().Save(nullptr));
  std::filesystem::current_path(before);
  EXPECT_EQ(folder.Read(Said<TypeParam>("linearunit.ocf")), Said<TypeParam>(kThreeSaved));
}

TYPED_TEST(Units, AFileThatCannotBeWrittenIsReported) {
  EXPECT_UNITS_FAIL(
      typename TypeParam::List().Save("/no such 100% folder/x.ocf"), 1028,
      Said<TypeParam>(
          "Failed opening linear units configuration file for writing '/no such 100% folder/x.ocf'"));
  // The default name is told for null.
  const TempFolder folder;
  std::filesystem::create_directory(folder.Path(Said<TypeParam>("linearunit.ocf")));
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder.Path());
  EXPECT_UNITS_FAIL(
      typename TypeParam::List().Save(nullptr), 1028,
      Said<TypeParam>("Failed opening linear units configuration file for writing 'linearunit.ocf'"));
  std::filesystem::current_path(before);
}

TYPED_TEST(Units, ADecimalCommaOfTheHostChangesNothing) {
  ORV_WITH_COMMA_LOCALE();
  EXPECT_EQ(Saved(ThreeUnits<TypeParam>()), Said<TypeParam>(kThreeSaved));
  EXPECT_EQ(Loaded<TypeParam>("mul=0.3048 div=3.5").multiplier, 0.3048);
  EXPECT_EQ(Loaded<TypeParam>("mul=0.3048 div=3.5").divider, 3.5);
}
