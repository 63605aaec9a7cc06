// A list's file that is found but does not open when it is to be read: between the search, which opens each candidate, and
// the reader lies a moment in which a file can vanish.  The linker puts the fopen below in front of the C library's
// (--wrap=fopen), so that the second of two calls can be made to fail.
#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <string>

#include "orv/datum/DatumList.h"
#include "orv/system/CSList.h"
#include "orv/tables/AngularUnits.h"
#include "orv/tables/EllipsoidList.h"
#include "orv/tables/LinearUnits.h"
#include "orv/tables/Meridians.h"
#include "tests/support/Raises.h"
#include "tests/support/TempFolder.h"

namespace {

int g_CallsToFailure = 0;  // 0: none fails

}  // namespace

// NOLINTBEGIN: the linker gives the names
extern "C" std::FILE* __real_fopen(const char* name, const char* mode);
extern "C" std::FILE* __wrap_fopen(const char* name, const char* mode) {
  if (g_CallsToFailure > 0 && --g_CallsToFailure == 0) return nullptr;
  return __real_fopen(name, mode);
}
// NOLINTEND

namespace orv {

namespace {

struct ListRow {
  const char* unit;
  const char* text;  // in front of the quoted path
  std::function<bool(const char* path, bool report)> load;
  bool always;               // reported even when missing files are not to be
  const char* content = "";  // of a file that loads
};

template <class List>
std::function<bool(const char*, bool)> LoaderOf() {
  return [](const char* path, bool report) {
    List list;
    return list.Load(path, report);
  };
}

class UnopenableFiles : public ::testing::TestWithParam<ListRow> {
 protected:
  void TearDown() override { g_CallsToFailure = 0; }

  const test::TempFolder m_Folder;
  const std::string m_Path = m_Folder.Write("list.ocf", "");
};

TEST_P(UnopenableFiles, AreReportedWithTheLocatedPath) {
  m_Folder.Write("list.ocf", GetParam().content);
  ASSERT_TRUE(GetParam().load(m_Path.c_str(), true));
  g_CallsToFailure = 2;
  EXPECT_RAISES(GetParam().load(m_Path.c_str(), true), ErrFileMissing, GetParam().unit,
                GetParam().text + ("'" + m_Path + "'"));
}

TEST_P(UnopenableFiles, AreQuietWhenMissingFilesAreButForDatums) {
  g_CallsToFailure = 2;
  if (GetParam().always) {
    EXPECT_RAISES(GetParam().load(m_Path.c_str(), false), ErrFileMissing, GetParam().unit,
                  GetParam().text + ("'" + m_Path + "'"));
  } else {
    EXPECT_FALSE(GetParam().load(m_Path.c_str(), false));
  }
}

INSTANTIATE_TEST_SUITE_P(
    OfEachList, UnopenableFiles,
    ::testing::Values(ListRow{"LinearUnits", "Failed opening linear units configuration file for reading ",
                              LoaderOf<LinearUnitList>(), false},
                      ListRow{"AngularUnits", "Failed opening angular units configuration file for reading ",
                              LoaderOf<AngularUnitList>(), false},
                      ListRow{"Meridians", "Failed opening meridians configuration file for reading ",
                              LoaderOf<MeridianList>(), false},
                      ListRow{"EllipsoidList", "Failed opening ellipsoid configuration file ",
                              LoaderOf<EllipsoidList>(), false},
                      ListRow{"DatumList", "Failed opening datum configuration file ", LoaderOf<DatumList>(),
                              true},
                      ListRow{"CSList", "Failed opening coordinate systems configuration file ",
                              LoaderOf<CSList>(), true, "{ type=unref token=T name=N }"}),
    [](const auto& row) { return std::string(row.param.unit); });

}  // namespace

}  // namespace orv
