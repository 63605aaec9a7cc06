// The examples of the manual pages are run and their output compared; the pages and completions are read by the programs
// that they are for.
//
// docs/examples.txt holds the examples, in blocks: "# " a sentence, "$ " the command, "= " its exit status when not 0,
// then what it writes, messages (which begin with "orv: ") behind the data.  Coordinates come from outside: the line with
// "% " is a command of PROJ whose first two numbers must stand in the output, digit by digit; it is run where PROJ's
// programs are installed.  The other outputs are exact arithmetic, or values of the EPSG data set as the catalogue has them.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/Paths.h"
#include "tests/support/RunOrv.h"

namespace {

using orv::test::Content;
using orv::test::Lines;
using orv::test::Result;
using orv::test::RunOrv;
using orv::test::ScratchFile;
using orv::test::ShareFolder;
using orv::test::SourceFolder;
using orv::test::ToolPath;

/// Runs a command by sh, in the folder of the sources, with the built orv first in the path.
Result RunShell(const std::string& command, const char* shell = "sh") {
  const ScratchFile script("cd '" + SourceFolder() + "' || exit 99\nPATH=$(dirname '" + ToolPath() +
                           "'):$PATH\n" + command + "\n");
  const ScratchFile out, err;
  const int state = std::system(
      (std::string(shell) + " " + script.Path() + " >" + out.Path() + " 2>" + err.Path()).c_str());
  return {WIFEXITED(state) ? WEXITSTATUS(state) : -1, Content(out.Path()), Content(err.Path())};
}

bool IsInstalled(const std::string& program) { return RunShell("command -v " + program).status == 0; }

struct Example {
  std::string command;
  std::string rival;
  int status = 0;
  std::string out;
  std::string err;
};

std::vector<Example> ReadExamples() {
  std::vector<Example> examples;
  for (const std::string& line : Lines(Content(SourceFolder() + "/docs/examples.txt"))) {
    const std::string kind = line.substr(0, 2), rest = line.size() > 2 ? line.substr(2) : "";
    if (kind == "# ") examples.emplace_back();
    if (kind == "# " || line.empty()) continue;
    Example& example = examples.back();
    if (kind == "$ ") {
      example.command = rest;
    } else if (kind == "% ") {
      example.rival = rest;
    } else if (kind == "= ") {
      example.status = std::stoi(rest);
    } else {
      (line.starts_with("orv: ") ? example.err : example.out) += line + "\n";
    }
  }
  return examples;
}

TEST(Manual, TheExamplesWriteWhatThePagesSay) {
  const std::vector<Example> examples = ReadExamples();
  EXPECT_GE(examples.size(), 20u);
  for (const Example& example : examples) {
    const Result result = RunShell(example.command);
    EXPECT_EQ(result.status, example.status) << example.command;
    EXPECT_EQ(result.out, example.out) << example.command;
    EXPECT_EQ(result.err, example.err) << example.command;
  }
}

TEST(Manual, TheCoordinatesOfTheExamplesArePROJs) {
  if (!IsInstalled("cs2cs")) GTEST_SKIP() << "PROJ's programs are not installed";
  size_t compared = 0;
  for (const Example& example : ReadExamples()) {
    if (example.rival.empty()) continue;
    std::string x, y;
    std::istringstream(RunShell(example.rival).out) >> x >> y;
    EXPECT_NE(x, "") << example.rival;
    EXPECT_NE(example.out.find(x), std::string::npos) << x << " not in " << example.out;
    EXPECT_NE(example.out.find(y), std::string::npos) << y << " not in " << example.out;
    ++compared;
  }
  EXPECT_GE(compared, 9u);
}

TEST(Manual, EveryCommandHasAPageWithoutWarnings) {
  std::vector<std::string> names = {"orv"};
  for (const std::string& command : Lines(RunOrv({"--print-commands"}).out))
    names.push_back("orv-" + command);
  EXPECT_GE(names.size(), 10u);
  const bool bGroff = IsInstalled("groff"), bMan = IsInstalled("man");
  for (const std::string& name : names) {
    const std::string page = ShareFolder() + "/man/man1/" + name + ".1";
    ASSERT_TRUE(std::filesystem::exists(page))
        << page << ": a command that tools/orv/CMakeLists.txt does not know?";
    if (bGroff) {
      EXPECT_EQ(RunShell("groff -man -ww -Tutf8 -z " + page).err, "") << name;
    }
    if (bMan) {
      EXPECT_EQ(RunShell("man --warnings -l " + page + " 2>&1 >/dev/null").out, "") << name;
    }
  }
  const std::string convert = Content(ShareFolder() + "/man/man1/orv-convert.1");
  EXPECT_NE(convert.find("\\fB\\-\\-lat\\-first\\fR"), std::string::npos);
  EXPECT_NE(convert.find(".SH EXAMPLES"), std::string::npos);
  EXPECT_EQ(convert.find("| proj"), std::string::npos) << "what the test reads is not for readers";
  EXPECT_EQ(RunOrv({"--print-man", "nothing"}).err, "orv: there is no command 'nothing'\n");
}

std::string Complete(const std::string& words) {
  const Result result = RunShell(
      "source '" + ShareFolder() + "/bash-completion/completions/orv'\nCOMP_WORDS=(" + words +
          ")\nCOMP_CWORD=$((${#COMP_WORDS[@]} - 1))\n_orv\necho \"${COMPREPLY[@]}\"\ncomplete -p orv >&2",
      "bash");
  EXPECT_NE(result.err.find("-F _orv orv"), std::string::npos) << result.err;
  return result.out.substr(0, result.out.size() - 1);
}

TEST(Completion, BashOffersCommandsOptionsAndValues) {
  EXPECT_EQ(Complete("orv con"), "convert");
  EXPECT_EQ(Complete("orv --config /tmp con"), "convert");
  const std::string all = Complete("orv ''");
  for (const std::string& command : Lines(RunOrv({"--print-commands"}).out)) {
    EXPECT_NE((" " + all + " ").find(" " + command + " "), std::string::npos) << command;
  }
  EXPECT_EQ(Complete("orv --v"), "--version");
  EXPECT_EQ(Complete("orv convert --la"), "--lat-first");
  EXPECT_EQ(Complete("orv convert --qu"), "--quiet") << "those of the program as well";
  EXPECT_EQ(Complete("orv info --kind ''"), "system datum ellipsoid");
  EXPECT_EQ(Complete("orv convert --separator se"), "semicolon");
  EXPECT_EQ(Complete("orv list da"), "datums");
  EXPECT_EQ(Complete("orv convert --precision ''"), "") << "any number";
  EXPECT_EQ(Complete("orv convert README."), "README.md");
  EXPECT_EQ(Complete("orv --config doc"), "docs");
}

TEST(Completion, TheOthersAreReadByTheirShells) {
  const std::string zsh = ShareFolder() + "/zsh/site-functions/_orv",
                    fish = ShareFolder() + "/fish/vendor_completions.d/orv.fish";
  EXPECT_EQ(Content(zsh).substr(0, 12), "#compdef orv");
  EXPECT_NE(Content(zsh).find("--lat-first["), std::string::npos);
  EXPECT_NE(Content(fish).find("-l lat-first"), std::string::npos);
  EXPECT_EQ(RunOrv({"--print-completion", "tcsh"}).err, "orv: --print-completion: bash, zsh or fish\n");
  if (IsInstalled("zsh")) {
    EXPECT_EQ(RunShell("zsh -n " + zsh).err, "");
  }
  if (IsInstalled("fish")) {
    EXPECT_EQ(RunShell("fish --no-execute " + fish).err, "");
  }
}

}  // namespace
