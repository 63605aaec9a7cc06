#include "orv/core/ORVGlobals.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "orv/core/Error.h"
#include "orv/core/Platform.h"
#include "orv/core/internal/Fail.h"
#include "orv/core/internal/Globals.h"
#include "orv/shared/LocateFile.h"
#include "tests/support/TempFolder.h"

namespace {

namespace fs = std::filesystem;
using orv::ORVFindConfigFile;
using orv::ORVGetConfigPath;
using orv::ORVSetConfigPath;
using orv::test::TempFolder;
using orv::test::WriteBytes;

// A name that no folder holds by accident, another one in each process.
const std::string kName = "orv-globals-test-" + std::to_string(::getpid()) + ".ocf";

// A folder that a test makes beside the program: what was not there before is gone afterwards.
class MadeFolder {
 public:
  explicit MadeFolder(fs::path path) : m_Path(std::move(path)) {
    for (fs::path at = m_Path; !fs::exists(at); at = at.parent_path()) m_First = at;
    std::error_code failed;
    fs::create_directories(m_Path, failed);
  }
  ~MadeFolder() {
    std::error_code ignored;
    fs::remove(m_Path / kName, ignored);
    // Folders that something else stands in stay.
    for (fs::path at = m_Path; !m_First.empty(); at = at.parent_path()) {
      fs::remove(at, ignored);
      if (at == m_First) break;
    }
  }
  std::string Add() const { return WriteBytes((m_Path / kName).string(), "x"); }

 private:
  fs::path m_Path;
  fs::path m_First;  // the outermost folder that did not exist
};

// Keeps configuration path, environment and working directory as they were.
class ORVGlobals : public ::testing::Test {
 protected:
  void SetUp() override {
    m_ConfigPath = orv::Globals().configPath;
    m_Folder = fs::current_path();
    if (const char* const variable = std::getenv("ORV_CONFIG_PATH")) m_Variable = variable;
    ::unsetenv("ORV_CONFIG_PATH");
    ORVSetConfigPath(nullptr);
  }
  void TearDown() override {
    ORVSetConfigPath(m_ConfigPath.c_str());
    fs::current_path(m_Folder);
    if (m_Variable.empty()) {
      ::unsetenv("ORV_CONFIG_PATH");
    } else {
      ::setenv("ORV_CONFIG_PATH", m_Variable.c_str(), 1);
    }
  }

  // The path that is found, or "(none)".
  static std::string Found(const std::string& name = kName) {
    std::string path = "before";
    const bool found = ORVFindConfigFile(name.c_str(), path);
    EXPECT_EQ(found, !path.empty()) << "none found leaves the path empty";
    return found ? path : "(none)";
  }
  static fs::path ExecutableFolder() { return fs::path(orv::platform::ExecutablePath()).parent_path(); }

 private:
  std::string m_ConfigPath;
  std::string m_Variable;
  fs::path m_Folder;
};

}  // namespace

// ---- the configuration path ------------------------------------------------------------------------------

TEST_F(ORVGlobals, NoConfigurationPathIsNull) {
  EXPECT_EQ(ORVGetConfigPath(), nullptr);
  ORVSetConfigPath("/some/folder");
  EXPECT_STREQ(ORVGetConfigPath(), "/some/folder");
  ORVSetConfigPath(nullptr);
  EXPECT_EQ(ORVGetConfigPath(), nullptr);
  ORVSetConfigPath("x");
  ORVSetConfigPath("");
  EXPECT_EQ(ORVGetConfigPath(), nullptr);
}

TEST_F(ORVGlobals, TheConfigurationPathIsKeptAsItWasSet) {
  ORVSetConfigPath("relative\\with/both\\");
  EXPECT_STREQ(ORVGetConfigPath(), "relative\\with/both\\");
  ORVSetConfigPath(ORVGetConfigPath() + 9);  // a text that the library itself owns
  EXPECT_STREQ(ORVGetConfigPath(), "with/both\\");
}

// ---- out argument ----------------------------------------------------------------------------------------

TEST_F(ORVGlobals, ANullOrEmptyNameLeavesTheResultAlone) {
  std::string path = "before";
  EXPECT_FALSE(ORVFindConfigFile(nullptr, path));
  EXPECT_EQ(path, "before");
  EXPECT_FALSE(ORVFindConfigFile("", path));
  EXPECT_EQ(path, "before");
}

TEST_F(ORVGlobals, AFileThatIsNotFoundEmptiesTheResultAndReportsNothing) {
  orv::ORVResetError();
  std::string path = "before";
  EXPECT_FALSE(ORVFindConfigFile(kName.c_str(), path));
  EXPECT_EQ(path, "");
  EXPECT_EQ(orv::ORVGetErrorCode(), 0);
}

TEST_F(ORVGlobals, TheNameMayStandInTheResultItself) {
  const TempFolder folder;
  folder.Write(kName, "x");
  ORVSetConfigPath(folder.Path().c_str());
  std::string path = kName;
  EXPECT_TRUE(ORVFindConfigFile(path.c_str(), path));
  EXPECT_EQ(path, folder.Path(kName));
}

// ---- separators ------------------------------------------------------------------------------------------

TEST_F(ORVGlobals, OneSeparatorStandsBetweenPathAndName) {
  const TempFolder folder;
  folder.Write(kName, "x");
  const std::string expected = folder.Path() + "/" + kName;
  ORVSetConfigPath(folder.Path().c_str());
  EXPECT_EQ(Found(), expected);
  ORVSetConfigPath((folder.Path() + "/").c_str());
  EXPECT_EQ(Found(), expected);
  ORVSetConfigPath((folder.Path() + "\\").c_str());
  EXPECT_EQ(Found(), expected) << "a backslash is one too, and turned: the path is the one that opened";
}

TEST_F(ORVGlobals, BackslashesAreTriedAsTheyStandAndThenTurned) {
  const TempFolder folder;
  const std::string turned = folder.Write("sub/" + kName, "x");
  ORVSetConfigPath((folder.Path() + "\\sub").c_str());
  EXPECT_EQ(Found(), turned);
  ORVSetConfigPath(folder.Path().c_str());
  EXPECT_EQ(Found("sub\\" + kName), turned);
  const std::string literal = folder.Write("sub\\" + kName, "a file with a backslash in its name");
  EXPECT_EQ(Found("sub\\" + kName), literal);
  EXPECT_EQ(Found("sub/" + kName), turned);
}

TEST_F(ORVGlobals, NamesKeepTheirCase) {
  const TempFolder folder;
  folder.Write(kName, "x");
  ORVSetConfigPath(folder.Path().c_str());
  EXPECT_EQ(Found("O" + kName.substr(1)), "(none)");
}

TEST_F(ORVGlobals, FoldersAreNoFiles) {
  const TempFolder folder;
  fs::create_directory(folder.Path(kName));
  ORVSetConfigPath(folder.Path().c_str());
  EXPECT_EQ(Found(), "(none)");
  EXPECT_EQ(Found(folder.Path(kName)), "(none)");
}

// ---- order of the search ---------------------------------------------------------------------------------

TEST_F(ORVGlobals, ANameWithASeparatorIsTriedAsGiven) {
  const TempFolder folder;
  const std::string path = folder.Write("sub/" + kName, "x");
  EXPECT_EQ(Found(path), path);
  fs::current_path(folder.Path());
  EXPECT_EQ(Found("sub/" + kName), "sub/" + kName);
  EXPECT_EQ(Found("sub\\" + kName), "sub/" + kName);
  EXPECT_EQ(Found("./sub/" + kName), "./sub/" + kName);
}

TEST_F(ORVGlobals, ANameWithoutSeparatorIsNotLookedForInTheWorkingDirectory) {
  const TempFolder folder;
  folder.Write(kName, "x");
  fs::current_path(folder.Path());
  EXPECT_EQ(Found(), "(none)");
  EXPECT_EQ(Found("./" + kName), "./" + kName);
}

TEST_F(ORVGlobals, TheConfigurationPathComesBeforeANameAsGiven) {
  const TempFolder folder;
  const std::string inPath = folder.Write("path/sub/" + kName, "x");
  folder.Write("sub/" + kName, "x");
  fs::current_path(folder.Path());
  ORVSetConfigPath(folder.Path("path").c_str());
  EXPECT_EQ(Found("sub/" + kName), inPath);
  fs::remove(inPath);
  EXPECT_EQ(Found("sub/" + kName), "sub/" + kName);
}

TEST_F(ORVGlobals, ANameAsGivenComesBeforeTheProgramsFolder) {
  const MadeFolder beside(ExecutableFolder() / "orv-globals-test-folder");
  const std::string inProgram = beside.Add();
  const std::string name = "orv-globals-test-folder/" + kName;
  const TempFolder elsewhere;
  fs::current_path(elsewhere.Path());
  EXPECT_EQ(Found(name), inProgram);
  const TempFolder folder;
  folder.Write(name, "x");
  fs::current_path(folder.Path());
  EXPECT_EQ(Found(name), name);
  EXPECT_EQ(Found("orv-globals-test-folder\\" + kName), name);
}

TEST_F(ORVGlobals, FoldersAreSearchedInTheirOrder) {
  const TempFolder folder;
  const fs::path program = ExecutableFolder();
  const MadeFolder module(program);  // this program is module and executable at once
  const MadeFolder config(program.parent_path() / "Config");
  const MadeFolder installed(program.parent_path() / "share" / "orvcore");
  const std::string inPath = folder.Write("path/" + kName, "x");
  const std::string inVariable = folder.Write("variable/" + kName, "x");
  ORVSetConfigPath(folder.Path("path").c_str());
  ::setenv("ORV_CONFIG_PATH", folder.Path("variable").c_str(), 1);
  const std::string inProgram = module.Add();
  config.Add();
  installed.Add();

  EXPECT_EQ(Found(), inPath);
  fs::remove(inPath);
  EXPECT_EQ(Found(), inProgram);
  fs::remove(inProgram);
  EXPECT_EQ(Found(), program.string() + "/../Config/" + kName);
  fs::remove(program / ".." / "Config" / kName);
  EXPECT_EQ(Found(), inVariable);
  fs::remove(inVariable);
  EXPECT_EQ(Found(), program.string() + "/../share/orvcore/" + kName);
  fs::remove(program / ".." / "share" / "orvcore" / kName);
  EXPECT_EQ(Found(), "(none)");
}

// ---- the last resort -------------------------------------------------------------------------------------

TEST_F(ORVGlobals, TheVariableHoldsFoldersLikePath) {
  const TempFolder folder;
  const std::string a = folder.Write("a/" + kName, "x");
  const std::string b = folder.Write("b/" + kName, "x");
  const std::string nowhere = folder.Path("nowhere");
  const auto located = [](const std::string& variable, const std::string& name = kName) {
    ::setenv("ORV_CONFIG_PATH", variable.c_str(), 1);
    std::string path = "before";
    return shr::LocateFile(name.c_str(), path) ? path : "(none)" + path;
  };
  EXPECT_EQ(located(folder.Path("a")), a);
  EXPECT_EQ(located(folder.Path("b") + ":" + folder.Path("a")), b);
  EXPECT_EQ(located(nowhere + ":" + folder.Path("a")), a);
  EXPECT_EQ(located("::" + folder.Path("a") + ":"), a) << "empty folders are left out";
  EXPECT_EQ(located(""), "(none)");
  EXPECT_EQ(located(":"), "(none)");
  EXPECT_EQ(located(nowhere), "(none)");
  EXPECT_EQ(located(folder.Path(), "a"), "(none)") << "folders are no files";
  EXPECT_EQ(located(folder.Path(), "a/" + kName), a);
  EXPECT_EQ(located(folder.Path(), "a\\" + kName), a) << "turned";
}

TEST_F(ORVGlobals, EmptyFoldersOfTheVariableAreLeftOut) {
  const TempFolder folder;
  folder.Write(kName, "x");
  fs::current_path(folder.Path());
  ::setenv("ORV_CONFIG_PATH", ":", 1);
  EXPECT_EQ(Found(), "(none)");
  // Nor the root of the file system.
  ASSERT_TRUE(fs::exists("/proc/self/status"));
  EXPECT_EQ(Found("proc/self/status"), "(none)");
}

TEST_F(ORVGlobals, LocatingHasTheSameRulesForItsArguments) {
  std::string path = "before";
  EXPECT_FALSE(shr::LocateFile(nullptr, path));
  EXPECT_FALSE(shr::LocateFile("", path));
  EXPECT_EQ(path, "before");
  EXPECT_FALSE(shr::LocateFile(kName.c_str(), path));
  EXPECT_EQ(path, "");
  const TempFolder folder;
  folder.Write(kName, "x");
  ::setenv("ORV_CONFIG_PATH", folder.Path().c_str(), 1);
  path = kName;
  EXPECT_TRUE(shr::LocateFile(path.c_str(), path)) << "the name may stand in the result";
  EXPECT_EQ(path, folder.Path(kName));
}
