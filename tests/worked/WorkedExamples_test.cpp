// One driver for all published examples: tests/data/worked_examples.tsv.
//
// A row gives a method, a (metres), f, parameters in degrees, lon and lat in degrees, and x and y at the
// level of the engine (before false origin and scale).  `precision` is one unit of the last printed digit, of
// x and y in "fwd" rows and in degrees of lon and lat in "inv" rows.  Values were recomputed at 50 digits
// from the published equations.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "orv/core/internal/Angle.h"
#include "orv/core/internal/Number.h"
#include "orv/projection/ProjActor.h"
#include "orv/projection/Projector.h"
#include "tests/support/Paths.h"

namespace orv {
namespace {

struct Row {
  int line = 0;
  std::string method, params, source, notes, precision;
  double a = 0.0, f = 0.0;
  shr::Vec2d lonlat, xy;
};

std::vector<std::string> Split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, separator);) parts.push_back(part);
  return parts;
}

double NumberOf(const std::string& text) {
  size_t used = 0;
  const double value = internal::ReadDecimal(text, &used);
  EXPECT_GT(used, 0u) << "'" << text << "' is no number";
  return value;
}

const std::vector<Row>& Rows() {
  static const std::vector<Row> rows = [] {
    std::vector<Row> read;
    std::ifstream file(test::DataFolder() + "/worked_examples.tsv");
    std::string text;
    std::getline(file, text);  // the header
    for (int line = 2; std::getline(file, text); ++line) {
      const std::vector<std::string> column = Split(text, '\t');
      if (column.size() != 11) {
        ADD_FAILURE() << "line " << line << " has " << column.size() << " columns";
        continue;
      }
      Row row;
      row.line = line;
      row.method = column[0];
      row.a = NumberOf(column[1]);
      row.f = NumberOf(column[2]);
      row.params = column[3];
      row.lonlat = {NumberOf(column[4]), NumberOf(column[5])};
      row.xy = {NumberOf(column[6]), NumberOf(column[7])};
      row.precision = column[8];
      row.source = column[9];
      row.notes = column[10];
      read.push_back(row);
    }
    return read;
  }();
  return rows;
}

// The definition of a row: what it does not name is 0, false or 1.0.
ProjectionDef DefinitionOf(const Row& row) {
  ProjectionParameters p;
  p.method = ProjectionDef::NameToMethod(row.method.c_str());
  EXPECT_GT(p.method, ProjectionMethodOther) << row.method;
  p.ellipsoid.SetMajorRadius(row.a);
  p.ellipsoid.SetFlattening(row.f);
  for (const std::string& item : row.params == "-" ? std::vector<std::string>() : Split(row.params, ' ')) {
    const size_t equals = item.find('=');
    const std::string value = item.substr(equals + 1);
    const ProjectionParameterID id = ProjectionDef::NameToParameter(item.substr(0, equals).c_str());
    EXPECT_TRUE(ProjectionDef::UsesParameter(p.method, id)) << row.method << ": " << item;
    if (ProjectionDef::ParameterDataType(id) == ORVDataTypeIDBool) {
      EXPECT_TRUE(value == "true" || value == "false") << item;
      ProjectionDef::SetParameter(p, id, value == "true");
    } else {
      ProjectionDef::SetParameter(p, id, NumberOf(value));
    }
  }
  return ProjectionDef(p);
}

// The printed value is a rounded or cut one, so a unit of its last digit is what can be asked; the 1e-9 of it
// lets the decimal numbers of the table themselves be inexact.
double Tolerance(const Row& row) { return NumberOf(row.precision) * (1.0 + 1e-9); }

// The tolerance of lon and lat: given in degrees, or the angle that the tolerance of x and y is on a sphere
// of radius a.
double AngularTolerance(const Row& row) {
  const bool inDegrees = row.precision.find("deg") != std::string::npos;
  return inDegrees ? Tolerance(row) : internal::ToDegrees(Tolerance(row) / row.a);
}

// Printed values that are wrong by more than a unit of their last digit, as their rows tell: the value
// recomputed at 50 digits takes their place, with a unit of its own last digit.  The row keeps what is
// printed.
struct Misprint {
  const char* method;
  shr::Vec2d lonlat, printed, exact;
};
const Misprint kMisprints[] = {
    // South polar, with K0 known: the printed example carries rho in too few digits and is 0.16 m off.
    {"Stereographic", {150, -75}, {-1573645.4, -572760.1}, {-1573645.258, -572760.033}},
};
constexpr double kMisprintTolerance = 0.001;

const Misprint* MisprintOf(const Row& row) {
  for (const Misprint& m : kMisprints) {
    if (m.method == row.method && m.lonlat.x == row.lonlat.x && m.lonlat.y == row.lonlat.y &&
        m.printed.x == row.xy.x && m.printed.y == row.xy.y) {
      return &m;
    }
  }
  return nullptr;
}

double DegreesApart(double a, double b) { return std::fabs(std::remainder(a - b, 360.0)); }

class WorkedExamples : public testing::TestWithParam<std::string> {};

TEST_P(WorkedExamples, AreReproducedWithinThePrintedPrecision) {
  const ProjectionMethod method = ProjectionDef::NameToMethod(GetParam().c_str());
  size_t count = 0;
  for (const Row& row : Rows()) count += row.method == GetParam();
  if (!MakeProjActor(method))
    GTEST_SKIP() << GetParam() << " has no engine yet: " << count << " rows are not run";
  for (const Row& row : Rows()) {
    if (row.method != GetParam()) continue;
    SCOPED_TRACE("line " + std::to_string(row.line) + ": " + row.params + "; " + row.source);
    const ProjectionDef def = DefinitionOf(row);
    Projector projector(def);
    // Only UTM has a false origin here, its own.
    const double xOrg = def.GetParameters()->xOrg, yOrg = def.GetParameters()->yOrg;
    const bool isForward = row.notes.rfind("fwd", 0) == 0;
    const bool isInverse = row.notes.rfind("inv", 0) == 0 || row.notes.rfind("fwd and inv", 0) == 0;
    ASSERT_TRUE(isForward || isInverse) << row.notes;
    if (isForward) {
      const Misprint* const misprint = MisprintOf(row);
      const double tolerance = misprint ? kMisprintTolerance : Tolerance(row);
      const shr::Vec2d expected = misprint ? misprint->exact : row.xy;
      std::vector<shr::Vec2d> point = {row.lonlat};
      projector.TransformForward(point);
      EXPECT_NEAR(point[0].x - xOrg, expected.x, tolerance);
      EXPECT_NEAR(point[0].y - yOrg, expected.y, tolerance);
      EXPECT_FALSE(projector.CheckUnplottableResult());
    }
    if (isInverse) {
      const double tolerance = AngularTolerance(row);
      std::vector<shr::Vec2d> point = {{row.xy.x + xOrg, row.xy.y + yOrg}};
      projector.TransformInverse(point);
      EXPECT_LE(DegreesApart(point[0].x, row.lonlat.x), tolerance)
          << point[0].x << " is not " << row.lonlat.x;
      EXPECT_NEAR(point[0].y, row.lonlat.y, tolerance);
      EXPECT_FALSE(projector.CheckUnplottableResult());
    }
  }
}

std::vector<std::string> Methods() {
  std::set<std::string> names;
  for (const Row& row : Rows()) names.insert(row.method);
  return {names.begin(), names.end()};
}

std::string TestNameOf(const testing::TestParamInfo<std::string>& info) {
  std::string name;
  for (const char c : info.param) {
    if (std::isalnum(static_cast<unsigned char>(c))) name += c;
  }
  return name;
}

INSTANTIATE_TEST_SUITE_P(ByMethod, WorkedExamples, testing::ValuesIn(Methods()), TestNameOf);

TEST(WorkedExamplesFile, HasEveryRowThatIsCalledAMisprintAndThatRowTellsSo) {
  for (const Misprint& m : kMisprints) {
    size_t found = 0;
    for (const Row& row : Rows()) {
      if (MisprintOf(row) != &m || row.notes.rfind("fwd", 0) != 0) continue;
      ++found;
      const bool isWrong = std::fabs(m.printed.x - m.exact.x) > Tolerance(row) ||
                           std::fabs(m.printed.y - m.exact.y) > Tolerance(row);
      EXPECT_TRUE(isWrong) << "the printed value of line " << row.line << " is good enough";
      EXPECT_NE(row.notes.find("recomputed"), std::string::npos) << row.notes;
    }
    EXPECT_EQ(found, 1u) << m.method;
  }
}

TEST(WorkedExamplesFile, HasAllRowsAndNamesEveryMethod) {
  EXPECT_EQ(Rows().size(), 145u);
  const std::vector<std::string> methods = Methods();
  EXPECT_EQ(methods.size(), 25u);
  for (int method = ProjectionMethodAlbers; method <= ProjectionMethodVanDerGrinten; ++method) {
    const std::string name = ProjectionDef::MethodToName(static_cast<ProjectionMethod>(method));
    EXPECT_EQ(std::count(methods.begin(), methods.end(), name), 1) << name << " has no worked example";
  }
}

}  // namespace
}  // namespace orv
