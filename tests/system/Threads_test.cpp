// Distinct objects on distinct threads over known lists that nobody changes.  ThreadSanitizer runs these too.
#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "orv/core/Error.h"
#include "orv/datum/DatumList.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/shared/Exception.h"
#include "orv/system/CSList.h"
#include "orv/system/CSTransformer.h"
#include "orv/system/ORVDef.h"
#include "orv/system/UCSDef.h"
#include "orv/warp/WarpDef.h"
#include "tests/support/KnownDatums.h"
#include "tests/support/TempFolder.h"

namespace orv {
namespace {

using shr::Vec2d;

constexpr int kThreads = 8;

/// Runs work(thread number) on all threads, which begin together.
template <class Work>
void OnAllThreads(Work work) {
  std::atomic<int> waiting{kThreads};
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&waiting, work, i] {
      --waiting;
      while (waiting > 0) std::this_thread::yield();
      work(i);
    });
  }
  for (std::thread& thread : threads) thread.join();
}

class Threads : public test::KnownDatums {};

ORVDef SourceOf(int i) {
  ProjectionParameters p;
  p.method = i % 2 == 0 ? ProjectionMethodTransverseMercator : ProjectionMethodMercator;
  p.ellipsoid = test::Bessel();
  p.Lon0 = 6.0 + i;
  p.xOrg = 500000.0;
  const ProjectionDef projection(p);
  const DatumDef datum = i % 3 == 0 ? test::MolodenskyDatum() : test::BursaWolfDatum();
  return ORVDef(&datum, &projection, nullptr);
}

ORVDef DestOf(int i) {
  ProjectionDef projection(ProjectionMethodUTM);
  projection.SetParameter(ProjectionParameterIDLon0, 3.0 + i);
  projection.SetParameter(ProjectionParameterIDLat0, 0.0);
  const DatumDef datum = test::Wgs84Datum();
  WarpDef warp;  // a polynomial fit, whose normal equations are solved on every thread
  warp.SetMethod(i % 2 == 0 ? WarpMethodFirstOrderPolynomial : WarpMethodSecondOrderPolynomial);
  const double xy[][2] = {{0, 0}, {9e5, 0}, {0, 7e6}, {9e5, 7e6}, {4e5, 2e6}, {2e5, 5e6}};
  for (const auto& c : xy) {
    warp.AddSourcePoint(c[0], c[1]);
    warp.AddDestinationPoint(c[0] * 0.5 + i, c[1] * 0.25 - i);
  }
  return ORVDef(&datum, &projection, &warp);
}

std::vector<Vec2d> PointsOf(int i) {
  std::vector<Vec2d> points;
  for (int k = 0; k < 500; ++k) points.emplace_back(400000.0 + 400.0 * k, 5000000.0 + 1000.0 * k + i);
  return points;
}

std::vector<Vec2d> Converted(int i) {
  const ORVDef source = SourceOf(i), dest = DestOf(i);
  CSTransformer transformer(&source, &dest, false, true);
  transformer.Initialize();
  std::vector<Vec2d> out;
  transformer.Transform(PointsOf(i), out);
  const CSTransformer copy(transformer);
  copy.Transform(PointsOf(i), out);
  return out;
}

TEST_F(Threads, DistinctTransformersWorkOnDistinctThreads) {
  std::vector<std::vector<Vec2d>> alone, together(kThreads);
  for (int i = 0; i < kThreads; ++i) alone.push_back(Converted(i));
  OnAllThreads([&together](int i) {
    for (int round = 0; round < 5; ++round) together[static_cast<size_t>(i)] = Converted(i);
  });
  for (size_t i = 0; i < kThreads; ++i) {
    ASSERT_EQ(together[i].size(), alone[i].size());
    EXPECT_EQ(0, std::memcmp(together[i].data(), alone[i].data(), alone[i].size() * sizeof(Vec2d))) << i;
  }
}

TEST_F(Threads, TextsAreWrittenAndReadOnDistinctThreads) {
  std::vector<int> equal(kThreads, 0);
  OnAllThreads([&equal](int i) {
    const ORVDef system = SourceOf(i);
    int good = 0;
    for (int round = 0; round < 50; ++round) {
      std::string text, dump;
      system.EncodeToText(text);
      ORVDef back;
      back.DecodeFromText(text, nullptr);
      back.DebugDump(dump, 0);
      if (system.Compare(back, false, nullptr)) ++good;
    }
    equal[static_cast<size_t>(i)] = good;
  });
  EXPECT_EQ(equal, std::vector<int>(kThreads, 50));
}

// A loaded list sorts its short names when the first thread asks for one that repeats.
TEST_F(Threads, FindInOneListThatHasJustBeenLoaded) {
  const test::TempFolder folder;
  CSList made;
  for (int i = 0; i < 60; ++i) {
    ORVDef system = SourceOf(i);
    system.SetToken(("T" + std::to_string(i)).c_str());
    system.SetName(("Group " + std::to_string(i) + "|Short " + std::to_string(i % 5)).c_str());
    made.Add(system);
  }
  made.Save(folder.Path("system.ocf").c_str());
  CSList list;
  ASSERT_TRUE(list.Load(folder.Path("system.ocf").c_str(), true));
  std::vector<int> wrong(kThreads);
  OnAllThreads([&list, &wrong](int i) {
    int misses = 0;
    for (int k = 0; k < 60; ++k) {
      const std::string shortName = "Short " + std::to_string((k + i) % 5);
      const int found = list.FindByShortName(shortName.c_str());
      misses += found == 0 || list.Enum(found)->GetShortName() != shortName;
      misses += list.FindByToken(("t" + std::to_string(k)).c_str()) != k + 2;
    }
    wrong[static_cast<size_t>(i)] = misses;
  });
  EXPECT_EQ(wrong, std::vector<int>(kThreads, 0));
}

TEST_F(Threads, AThreadSeesItsOwnFailuresOnly) {
  // Even threads fail in ways of their own, odd ones do not fail at all.
  std::vector<std::string> seen(kThreads);
  OnAllThreads([&seen](int i) {
    for (int round = 0; round < 200; ++round) {
      CSTransformer transformer;
      UCSDef system;
      try {
        if (i % 4 == 0) transformer.Transform(nullptr, nullptr, 0);
        if (i % 4 == 2) system.SetScale(-1.0);
        if (i % 2 != 0) system.SetScale(2.0);
      } catch (const shr::Exception&) {
      }
    }
    seen[static_cast<size_t>(i)] =
        std::to_string(ORVGetErrorCode()) + " " + ORVGetErrorFile() + ": " + ORVGetErrorText();
  });
  for (size_t i = 0; i < kThreads; ++i) {
    if (i % 4 == 0) {
      EXPECT_EQ(seen[i],
                "1027 CSTransformer: Transform not initialized.  API functions called in improper order.");
    } else if (i % 4 == 2) {
      EXPECT_EQ(seen[i], "1032 UCSDef: Scale parameter must not be negative.");
    } else {
      EXPECT_EQ(seen[i], "0 : ");  // a new thread has met no failure
    }
  }
}

}  // namespace
}  // namespace orv
