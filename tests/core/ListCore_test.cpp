#include "orv/core/internal/ListCore.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "orv/core/internal/ListKeys.h"
#include "tests/support/Raises.h"

ORV_UNIT("ListCoreTest")

namespace {

using namespace orv::internal;

class Thing {
 public:
  Thing() = default;
  Thing(std::string name, int posc, int serial = 0)
      : m_Name(std::move(name)), m_POSC(posc), m_Serial(serial) {}
  const char* GetName() const { return NullIfEmpty(m_Name); }  // null for "", as the definitions do
  int GetPOSC() const { return m_POSC; }
  int Serial() const { return m_Serial; }

 private:
  std::string m_Name;
  int m_POSC = 0;
  int m_Serial = 0;  // which one it is, whatever it looks like
};

using NameKey = TextKey<Thing, &Thing::GetName>;
using POSCKey = NumberKey<Thing, &Thing::GetPOSC>;

// Numbered from 2, with indexes.
struct ThingTraits;
using Things = ListCore<ThingTraits>;
struct ThingTraits {
  using Info = Thing;
  static constexpr int kFirst = 2, kNone = 0;
  static constexpr const char* kBadIndex = "Bad 100% index.";
  using Keys = std::tuple<NameKey, POSCKey>;
  static const UniqueRule<Things> kUnique[2];
};
const UniqueRule<Things> ThingTraits::kUnique[2] = {{NumberTaken<Things, POSCKey>, "same number"},
                                                    {TextTaken<Things, NameKey>, "same name"}};

// Numbered from 0, without.
struct PlainTraits {
  using Info = int;
  static constexpr int kFirst = 0, kNone = -1;
  static constexpr const char* kBadIndex = "Bad plain index";
  using Keys = std::tuple<>;
  static constexpr std::array<UniqueRule<ListCore<PlainTraits>>, 0> kUnique = {};
};
using Plains = ListCore<PlainTraits>;

int FindName(const Things& list, const char* name) {
  return FindText<NameKey>(list, name, static_cast<Thing*>(nullptr));
}

// The list must agree with a plain vector of what it should hold.
void ExpectSame(const Things& list, const std::vector<Thing>& model) {
  ASSERT_EQ(list.Count(), static_cast<int>(model.size()));
  EXPECT_EQ(list.First(), 2);
  EXPECT_EQ(list.Last(), list.Count() + 1);
  for (int i = 0; i < list.Count(); ++i) {
    EXPECT_EQ(list.At(i + 2).Serial(), model[static_cast<size_t>(i)].Serial()) << "at position " << i;
  }
  // Each index holds every position once, in the order of its key.
  const auto positions = [&model](const KeyIndex& index) {
    std::vector<uint32_t> sorted = index.Slots();
    std::sort(sorted.begin(), sorted.end());
    std::vector<uint32_t> all(model.size());
    for (size_t i = 0; i < all.size(); ++i) all[i] = static_cast<uint32_t>(i);
    return sorted == all;
  };
  EXPECT_TRUE(positions(list.IndexOf<NameKey>()));
  EXPECT_TRUE(positions(list.IndexOf<POSCKey>()));
  const std::vector<uint32_t>& byName = list.IndexOf<NameKey>().Slots();
  const std::vector<uint32_t>& byPOSC = list.IndexOf<POSCKey>().Slots();
  for (size_t i = 1; i < model.size(); ++i) {
    EXPECT_LE(CompareIgnoringCase(model[byName[i - 1]].GetName(), model[byName[i]].GetName()), 0);
    EXPECT_LE(model[byPOSC[i - 1]].GetPOSC(), model[byPOSC[i]].GetPOSC());
  }
}

// Every find must agree with a scan of the model; which of several equals is met is open.
void ExpectSameFinds(const Things& list, const std::vector<Thing>& model,
                     const std::vector<std::string>& names, int highestPOSC) {
  for (const std::string& name : names) {
    const auto same = [&name](const Thing& t) {
      return t.GetName() && EqualIgnoringCase(t.GetName(), name.c_str());
    };
    const auto count = std::count_if(model.begin(), model.end(), same);
    Thing out("untouched", -1);
    const int found = FindText<NameKey>(list, name.c_str(), &out);
    EXPECT_EQ(found != 0, count > 0) << name;
    if (found != 0) {
      EXPECT_TRUE(same(list.At(found)));
      EXPECT_EQ(out.Serial(), list.At(found).Serial());
    } else {
      EXPECT_STREQ(out.GetName(), "untouched");
    }
    for (int except = 2; except <= list.Last(); ++except) {
      const bool others = count > (same(list.At(except)) ? 1 : 0);
      EXPECT_EQ(list.KeyTaken<NameKey>(name.c_str(), except), others) << name << " except " << except;
    }
    EXPECT_EQ(list.KeyTaken<NameKey>(name.c_str(), Things::kNone), count > 0);
  }
  for (int posc = -1; posc <= highestPOSC + 1; ++posc) {
    const auto same = [posc](const Thing& t) { return t.GetPOSC() == posc; };
    const auto first = std::find_if(model.begin(), model.end(), same);
    const int found = list.FindByKey<POSCKey>(posc);
    EXPECT_EQ(found != 0, first != model.end()) << posc;
    if (found != 0) {
      EXPECT_EQ(list.At(found).GetPOSC(), posc);
    }
    // A scan gives the first one, from any start.
    const int scanned = list.Find(same);
    EXPECT_EQ(scanned, first == model.end() ? 0 : static_cast<int>(first - model.begin()) + 2);
    if (scanned != 0) {
      EXPECT_EQ(list.Find(same, scanned), scanned);
      const auto second = std::find_if(first + 1, model.end(), same);
      EXPECT_EQ(list.Find(same, scanned + 1),
                second == model.end() ? 0 : static_cast<int>(second - model.begin()) + 2);
    }
  }
}

}  // namespace

TEST(ListCore, AnEmptyListHasNothing) {
  const Things things;
  EXPECT_EQ(things.Count(), 0);
  EXPECT_EQ(things.First(), 2);
  EXPECT_EQ(things.Last(), 1);
  EXPECT_EQ(FindName(things, "x"), 0);
  EXPECT_EQ(things.FindByKey<POSCKey>(0), 0);
  const Plains plains;
  EXPECT_EQ(plains.First(), 0);
  EXPECT_EQ(plains.Last(), -1);
  EXPECT_EQ(plains.Find([](int) { return true; }), -1);
  EXPECT_EQ(plains.Clash(5), nullptr) << "no rules, no clash";
}

TEST(ListCore, BadIndexesAreReportedInTheTraitsWords) {
  Things things;
  things.Append(Thing("a", 1));
  things.Append(Thing("b", 2));
  const orv::ErrorSite site = {"TheOwner", 12};
  EXPECT_STREQ(things.Get(2, site)->GetName(), "a");
  EXPECT_STREQ(things.Get(3, site)->GetName(), "b");
  for (const int index : {1, 0, -1, 4, 2147483647, -2147483647 - 1}) {
    EXPECT_FALSE(things.Holds(index));
    EXPECT_RAISES(things.Get(index, site), 1032, "TheOwner", "Bad 100% index.");
  }
  Plains plains;
  EXPECT_RAISES(plains.Get(0, site), 1032, "TheOwner", "Bad plain index");
  plains.Append(5);
  EXPECT_EQ(*plains.Get(0, site), 5);
  EXPECT_RAISES(plains.Get(1, site), 1032, "TheOwner", "Bad plain index");
  EXPECT_RAISES(plains.Get(-1, site), 1032, "TheOwner", "Bad plain index");
}

TEST(ListCore, EqualKeysStandInTheOrderInWhichTheyCame) {
  Things things;
  for (int serial = 0; serial < 6; ++serial) things.Append(Thing(serial % 2 ? "Same" : "sAME", 5, serial));
  EXPECT_EQ(things.IndexOf<NameKey>().Slots(), std::vector<uint32_t>({0, 1, 2, 3, 4, 5}));
  EXPECT_EQ(things.IndexOf<POSCKey>().Slots(), std::vector<uint32_t>({0, 1, 2, 3, 4, 5}));
  things.Replace(3, Thing("same", 5, 99));
  EXPECT_EQ(things.IndexOf<NameKey>().Slots(), std::vector<uint32_t>({0, 2, 3, 4, 5, 1}))
      << "a replaced one goes last";
}

TEST(ListCore, IndexesFollowUnsignedBytesWithoutCase) {
  Things things;
  for (const char* const name : {"b", "_", "A", "\xE4", "Z", "9", ""}) things.Append(Thing(name, 0));
  std::string order;
  for (const uint32_t slot : things.IndexOf<NameKey>().Slots()) order += NameKey::Of(things.Entries()[slot]);
  EXPECT_EQ(order, "9_AbZ\xE4");
}

TEST(ListCore, NullAndEmptyTextsAreNeverFound) {
  Things things;
  things.Append(Thing("", 0));
  EXPECT_EQ(FindName(things, ""), 0);
  EXPECT_EQ(FindName(things, nullptr), 0);
}

TEST(ListCore, TheFirstBrokenRuleWins) {
  Things things;
  things.Append(Thing("a", 1));
  things.Append(Thing("b", 2));
  EXPECT_STREQ(things.Clash(Thing("B", 1)), "same number");
  EXPECT_STREQ(things.Clash(Thing("B", 3)), "same name");
  EXPECT_EQ(things.Clash(Thing("c", 3)), nullptr);
  EXPECT_STREQ(things.Clash(Thing("c", 2)), "same number");
}

TEST(ListCore, EmptyTextsAndNumberZeroNeverClash) {
  Things things;
  things.Append(Thing("", 0));
  EXPECT_EQ(things.Clash(Thing("", 0)), nullptr);
  // Deliberate: every number but 0 counts, negative ones too.
  things.Append(Thing("x", -5));
  EXPECT_STREQ(things.Clash(Thing("", -5)), "same number");
}

TEST(ListCore, AnEntryDoesNotClashWithTheOneThatItReplaces) {
  Things things;
  things.Append(Thing("a", 1));
  things.Append(Thing("b", 2));
  EXPECT_EQ(things.Clash(Thing("A", 1), 2), nullptr);
  EXPECT_STREQ(things.Clash(Thing("A", 1), 3), "same number");
  EXPECT_STREQ(things.Clash(Thing("b", 1), 2), "same name");
}

TEST(ListCore, EntriesOfTheListItselfMayBeHandedIn) {
  Things things;
  things.Append(Thing("a", 1, 10));
  for (int i = 0; i < 20; ++i) things.Append(things.At(2));  // the storage moves meanwhile
  things.Replace(5, things.At(2));
  EXPECT_EQ(things.Count(), 21);
  EXPECT_EQ(things.At(22).Serial(), 10);
}

TEST(ListCore, CopiesAreIndependent) {
  Things things;
  things.Append(Thing("a", 1));
  Things copy = things;
  copy.Append(Thing("b", 2));
  things.Remove(2);
  EXPECT_EQ(FindName(things, "a"), 0);
  EXPECT_EQ(FindName(copy, "a"), 2);
  EXPECT_EQ(FindName(copy, "b"), 3);
}

TEST(ListCore, AgreesWithAPlainVectorUnderAnyChanges) {
  for (unsigned seed = 1; seed <= 30; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const auto below = [&random](size_t n) { return static_cast<size_t>(random() % n); };
    const std::vector<std::string> names = {"Alpha", "ALPHA",    "alpha_", "Beta", "b",
                                            "_",     "\xC4rger", "Zulu",   "none", "A"};
    constexpr int kHighestPOSC = 8;
    Things list;
    std::vector<Thing> model;
    for (int step = 0; step < 150; ++step) {
      const Thing thing(random() % 8 ? names[below(names.size() - 1)] : "",
                        static_cast<int>(below(kHighestPOSC + 1)), step);
      const size_t action = below(100);
      if (action < 55 || model.empty()) {
        EXPECT_EQ(list.Append(thing), static_cast<int>(model.size()) + 2);
        model.push_back(thing);
      } else if (action < 75) {
        const size_t at = below(model.size());
        list.Replace(static_cast<int>(at) + 2, thing);
        model[at] = thing;
      } else if (action < 98) {
        const size_t at = below(model.size());
        list.Remove(static_cast<int>(at) + 2);
        model.erase(model.begin() + static_cast<std::ptrdiff_t>(at));
      } else {
        list.Clear();
        model.clear();
      }
      ExpectSame(list, model);
      if (step % 10 == 0) ExpectSameFinds(list, model, names, kHighestPOSC);
      if (HasFailure()) return;
    }
  }
}

TEST(ListCore, FindsAreRightDuringABatchAndIndexesSortedBehindIt) {
  for (unsigned seed = 1; seed <= 30; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const std::vector<std::string> asked = {"Alpha", "ALPHA", "alpha_", "Beta", "b", "\xC4rger", "A"};
    std::vector<std::string> names = asked;
    names.emplace_back();  // things without a name are held, and not asked for
    Things list, oneByOne;
    std::vector<Thing> model;
    for (int round = 0; round < 3; ++round) {
      const Things::Batch batch(list);
      for (int step = 0; step < 20; ++step) {
        const Thing thing(names[random() % names.size()], static_cast<int>(random() % 9), step);
        list.Append(thing);
        oneByOne.Append(thing);
        model.push_back(thing);
        ExpectSameFinds(list, model, asked, 8);
        EXPECT_EQ(list.Clash(thing) != nullptr, oneByOne.Clash(thing) != nullptr);
      }
      if (round == 1) {  // brings the indexes up to date in the middle of a batch
        list.Remove(5);
        oneByOne.Remove(5);
        model.erase(model.begin() + 3);
        list.Append(model[0]);
        oneByOne.Append(model[0]);
        model.push_back(Thing(model[0]));
        ExpectSameFinds(list, model, asked, 8);
      }
    }
    ExpectSame(list, model);
    // Equal keys stand in the order in which they came.
    EXPECT_EQ(list.IndexOf<NameKey>().Slots(), oneByOne.IndexOf<NameKey>().Slots());
    EXPECT_EQ(list.IndexOf<POSCKey>().Slots(), oneByOne.IndexOf<POSCKey>().Slots());
    if (HasFailure()) return;
  }
}

TEST(ListCore, ClearingDuringABatchForgetsWhatItAdded) {
  Things things;
  {
    const Things::Batch batch(things);
    things.Append(Thing("a", 1));
    things.Clear();
    EXPECT_EQ(FindName(things, "a"), 0);
    things.Append(Thing("b", 2));
    EXPECT_EQ(FindName(things, "B"), 2);
  }
  EXPECT_EQ(FindName(things, "a"), 0);
  EXPECT_EQ(FindName(things, "b"), 2);
}

TEST(ListCore, DumpsOfIndexesHaveOneLineForEachSlot) {
  Things things;
  things.Append(Thing("Beta", 7));
  things.Append(Thing("alpha", 0));
  things.Append(Thing("", -3));
  std::string text;
  Dump dump(text, 2);
  DumpTextIndex<NameKey>(dump, "IndexByName:", things);
  DumpNumberIndex<POSCKey>(dump, "IndexByPOSC:", things);
  EXPECT_EQ(text,
            "  IndexByName:\n    0:     2 ()\n    1:     1 (alpha)\n    2:     0 (Beta)\n"
            "  IndexByPOSC:\n    0:     2 (POSC=-3)\n    1:     1 (POSC=0)\n    2:     0 (POSC=7)\n");
}
