// Grids whose first use comes from several threads at once.  ThreadSanitizer runs these too.
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "orv/core/ORVGlobals.h"
#include "orv/datum/DatumConverter.h"
#include "orv/datum/GridFiles.h"
#include "orv/datum/GridShift.h"
#include "tests/datum/Datums.h"
#include "tests/support/GridBytes.h"
#include "tests/support/TempFolder.h"

namespace orv {
namespace {

using shr::Vec2d;

constexpr size_t kThreads = 8;

/// Runs work(thread number) on all threads, which begin together.
template <class Work>
void OnAllThreads(Work work) {
  std::atomic<size_t> waiting{kThreads};
  std::vector<std::thread> threads;
  for (size_t i = 0; i < kThreads; ++i) {
    threads.emplace_back([&waiting, &work, i] {
      --waiting;
      while (waiting > 0) std::this_thread::yield();
      work(i);
    });
  }
  for (std::thread& thread : threads) thread.join();
}

class GridThreads : public test::KnownLists {
 protected:
  GridThreads() {
    const auto seconds = [](int, int) { return -36.0F; };  // so 36 seconds east and south
    m_Folder.Write("a.los", test::NadconFile({}, seconds));
    m_Folder.Write("a.las", test::NadconFile({}, seconds));
    m_Folder.Write("grid.gsb",
                   test::NTv2File({test::NTv2Box("A", "NONE", -100.0, 40.0, 1.0, 5, 5, [](int, int) {
                     return test::NTv2Shift{72.0F, 72.0F};
                   })}));
    ORVSetConfigPath(m_Folder.Path().c_str());
    ORVSetNadconGridPath(m_Folder.Path().c_str());
    ORVSetNTv2GridFile("grid.gsb");
    ORVKnownDatumsList.Add(test::Named(m_Nad83, "NAD83", "NAD83"), 0);
  }
  ~GridThreads() override {
    ORVSetConfigPath(nullptr);
    ORVSetNadconGridPath(nullptr);
    ORVSetNTv2GridFile("ntv2_0.gsb");
  }

  test::TempFolder m_Folder;
  DatumDef m_Nad83 = test::Make{DatumMethodNone, DatumTargetWGS84, DatumTargetNAD83};
};

TEST_F(GridThreads, TheFirstUseLoadsForAllConverters) {
  for (int round = 0; round < 4; ++round) {
    std::vector<std::vector<Vec2d>> points(kThreads, std::vector<Vec2d>(100, Vec2d(-98.25, 40.3125)));
    OnAllThreads([&](size_t i) {
      const DatumMethod method = i % 2 == 0 ? DatumMethodNADCON : DatumMethodNTV2;
      const DatumDef source = test::Make{method, DatumTargetNAD83};
      DatumConverter converter(&source, &m_Nad83);
      converter.Convert(points[i]);
    });
    for (size_t i = 0; i < kThreads; ++i) {
      const Vec2d expected =
          i % 2 == 0 ? Vec2d(-98.25 + 0.01, 40.3125 - 0.01) : Vec2d(-98.25 - 0.02, 40.3125 + 0.02);
      for (const Vec2d& point : points[i]) {
        EXPECT_NEAR(expected.x, point.x, 1e-12);
        EXPECT_NEAR(expected.y, point.y, 1e-12);
      }
    }
    internal::ReleaseGrids();  // the next round loads anew
  }
}

TEST_F(GridThreads, ALoadThatFailsFailsForAllAndIsTriedAgain) {
  ORVSetNTv2GridFile("none.gsb");
  ORVSetNadconGridPath(m_Folder.Path("none").c_str());
  std::atomic<int> failures{0};
  OnAllThreads([&](size_t i) {
    const bool failed = i % 2 == 0 ? !internal::Grids().LoadNadcon()
                                   : internal::Grids().LoadNTv2() == internal::NTv2NotPresent;
    failures += failed ? 1 : 0;
  });
  EXPECT_EQ(static_cast<int>(kThreads), failures);
  m_Folder.Write("none.gsb", m_Folder.Read("grid.gsb"));
  m_Folder.Write("none/a.los", m_Folder.Read("a.los"));
  m_Folder.Write("none/a.las", m_Folder.Read("a.las"));
  EXPECT_EQ(internal::NTv2Done, internal::Grids().LoadNTv2());
  EXPECT_TRUE(internal::Grids().LoadNadcon());
}

TEST_F(GridThreads, ReleasedGridsAreReadAnew) {
  ASSERT_TRUE(internal::Grids().LoadNadcon());
  ASSERT_EQ(internal::NTv2Done, internal::Grids().LoadNTv2());
  m_Folder.Write("a.las", "gone");
  m_Folder.Write("grid.gsb", "gone");
  EXPECT_TRUE(internal::Grids().LoadNadcon());
  EXPECT_EQ(internal::NTv2Done, internal::Grids().LoadNTv2());
  internal::ReleaseGrids();
  EXPECT_FALSE(internal::Grids().LoadNadcon());
  EXPECT_EQ(internal::NTv2ReadShort, internal::Grids().LoadNTv2());
}

}  // namespace
}  // namespace orv
