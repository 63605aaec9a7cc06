// One conversion on many threads, whose first use loads the grids.  ThreadSanitizer runs these too.
#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <thread>
#include <vector>

#include "orv/convert/Conversion.h"
#include "orv/datum/GridFiles.h"
#include "orv/datum/GridShift.h"
#include "orv/projection/ProjectionDef.h"
#include "orv/system/ORVDef.h"
#include "tests/support/GridBytes.h"
#include "tests/support/KnownDatums.h"
#include "tests/support/TempFolder.h"

namespace orv {
namespace {

using shr::Vec2d;

constexpr size_t kThreads = 8;

class ConversionThreads : public test::KnownDatums {
 protected:
  ConversionThreads() {
    const auto seconds = [](int, int) { return -36.0F; };
    m_Folder.Write("a.los", test::NadconFile({}, seconds));
    m_Folder.Write("a.las", test::NadconFile({}, seconds));
    ORVSetNadconGridPath(m_Folder.Path().c_str());
  }
  ~ConversionThreads() override { ORVSetNadconGridPath(nullptr); }
  void SetUp() override {
    KnownDatums::SetUp();
    DatumParameters p;
    p.method = DatumMethodNone;
    p.target = DatumTargetWGS84;
    p.ellipsoid = test::Wgs84Ellipsoid();
    m_Nad83.SetParameters(&p);
    m_Nad83.SetSpecial(DatumTargetNAD83);
    m_Nad83.SetToken("NAD83");
    m_Nad83.SetName("North American Datum 1983");
    ORVKnownDatumsList.Add(m_Nad83, 0);
    p.method = DatumMethodNADCON;
    p.target = DatumTargetNAD83;
    m_Nad27.SetParameters(&p);
  }

  Conversion ToUtm14() const {
    const ProjectionDef geographic(ProjectionMethodUnprojected);
    ProjectionParameters p;
    p.method = ProjectionMethodUTM;
    p.ellipsoid = test::Wgs84Ellipsoid();
    p.Lon0 = -99;
    p.K0 = 0.9996;
    const ProjectionDef utm(p);
    return Conversion::Create(ORVDef(&m_Nad27, &geographic, nullptr), ORVDef(&m_Nad83, &utm, nullptr));
  }

  test::TempFolder m_Folder;
  DatumDef m_Nad27, m_Nad83;
};

/// Points inside and outside the grid, far from the meridian, and beyond a pole.
std::vector<Vec2d> PointsOf(size_t thread) {
  std::vector<Vec2d> points;
  for (size_t i = 0; i < 3000; ++i) {
    const auto n = static_cast<double>(i * (thread + 1) % 3000);
    points.emplace_back(-105.0 + n / 150.0, i % 3 == 0 ? 40.0 + n / 59.0 : 40.25);
  }
  return points;
}

TEST_F(ConversionThreads, OneObjectServesManyThreadsWhileTheGridsLoad) {
  std::vector<std::vector<Vec2d>> alone(kThreads);
  std::vector<ConversionReport> expected(kThreads);
  for (size_t i = 0; i < kThreads; ++i) {
    alone[i] = PointsOf(i);
    ToUtm14().Convert(alone[i].data(), alone[i].size(), expected[i]);
    EXPECT_GT(expected[i].Lost(), 0u);
    EXPECT_GT(expected[i].Tally(ConversionNotedOutsideGrids).count, 0u);
    EXPECT_LT(expected[i].Tally(ConversionNotedOutsideGrids).count, expected[i].Placed());
  }
  for (int round = 0; round < 3; ++round) {
    internal::ReleaseGrids();  // the next use loads them anew
    const Conversion conversion = ToUtm14();
    std::vector<std::vector<Vec2d>> together(kThreads);
    std::vector<ConversionReport> reports(kThreads);
    std::atomic<size_t> waiting{kThreads};
    std::vector<std::thread> threads;
    for (size_t i = 0; i < kThreads; ++i) {
      threads.emplace_back([&, i] {
        together[i] = PointsOf(i);
        --waiting;
        while (waiting > 0) std::this_thread::yield();
        // Half of them in pieces, out of the pool; half with a worker of their own.
        if (i % 2 == 0) {
          for (size_t at = 0; at < together[i].size(); at += 750) {
            conversion.Convert(together[i].data() + at, 750, reports[i]);
          }
        } else {
          Conversion::Worker worker = conversion.MakeWorker();
          worker.Convert(together[i].data(), together[i].size(), reports[i]);
        }
      });
    }
    for (std::thread& thread : threads) thread.join();
    for (size_t i = 0; i < kThreads; ++i) {
      EXPECT_EQ(0, std::memcmp(together[i].data(), alone[i].data(), alone[i].size() * sizeof(Vec2d))) << i;
      EXPECT_EQ(reports[i].ToJson(), expected[i].ToJson()) << i;
    }
  }
}

TEST_F(ConversionThreads, AWorkerOutlivesItsConversionAndMoves) {
  std::vector<Conversion::Worker> workers;
  workers.push_back(ToUtm14().MakeWorker());
  workers.push_back(std::move(workers[0]));
  std::vector<Vec2d> points = PointsOf(0), expected = points;
  ToUtm14().Convert(expected.data(), expected.size());
  workers[1].Convert(points.data(), points.size());
  EXPECT_EQ(0, std::memcmp(points.data(), expected.data(), points.size() * sizeof(Vec2d)));
}

}  // namespace
}  // namespace orv
