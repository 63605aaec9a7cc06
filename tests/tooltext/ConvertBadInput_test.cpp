// The pipeline of orv convert within the test's own process, on input that is no text of points.  The sanitizers run these:
// the threads', too, for every case runs with four workers as well as with one.
//
// On a sphere of 180/pi, the equator of Mercator is measured in degrees, so that what is written for "12.25,0" is known.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>

#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "orv/convert/SystemText.h"
#include "tests/support/TempFolder.h"
#include "tools/orv/Command.h"
#include "tools/orv/ConvertRun.h"
#include "tools/orv/LineSource.h"

namespace {

using namespace orv::tool;
using namespace std::string_literals;

/// Sends a descriptor to a file for as long as the object lives.
class Redirected {
 public:
  Redirected(int descriptor, const std::string& path) : m_Descriptor(descriptor), m_Before(dup(descriptor)) {
    std::fflush(nullptr);
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    EXPECT_GE(file, 0) << path;
    dup2(file, descriptor);
    close(file);
  }
  ~Redirected() {
    std::fflush(nullptr);
    dup2(m_Before, m_Descriptor);
    close(m_Before);
  }
  Redirected(const Redirected&) = delete;
  Redirected& operator=(const Redirected&) = delete;

 private:
  int m_Descriptor;
  int m_Before;
};

struct Outcome {
  std::string out;
  std::string messages;
  std::string failure;  ///< of a UsageError, or empty
  ConvertTally tally;
};

class ConvertBadInput : public ::testing::Test {
 protected:
  /// @param pOut  where standard output goes; null for a file that is read.
  Outcome Run(const std::string& input, size_t workers, bool bBinary = false,
              const char* pOut = nullptr) const {
    const std::string file = m_Folder.Write("points", input), out = m_Folder.Path("out"),
                      err = m_Folder.Path("err");
    Outcome outcome;
    {
      const Redirected toOut(STDOUT_FILENO, pOut ? pOut : out), toErr(STDERR_FILENO, err);
      try {
        InputFile source(file);
        TextOptions options;
        options.fromGeographic = options.fromDegrees = true;
        TextForm form(options);
        if (bBinary) {
          ConvertBinary(source, false, m_Conversion, workers, outcome.tally);
        } else {
          ConvertText(source, form, m_Conversion, workers, outcome.tally);
        }
      } catch (const UsageError& e) {
        outcome.failure = e.what();
      }
    }
    if (!pOut) outcome.out = orv::test::ReadBytes(out);
    outcome.messages = orv::test::ReadBytes(err);
    return outcome;
  }

  /// With one worker, after four have done the same.
  Outcome RunBoth(const std::string& input, bool bBinary = false) const {
    const Outcome many = Run(input, 4, bBinary), one = Run(input, 1, bBinary);
    EXPECT_TRUE(many.out == one.out) << many.out.size() << " and " << one.out.size() << " bytes";
    EXPECT_TRUE(many.messages == one.messages) << many.messages.substr(0, 200);
    EXPECT_EQ(many.failure, one.failure);
    EXPECT_EQ(many.tally.points, one.tally.points);
    EXPECT_EQ(many.tally.placed, one.tally.placed);
    EXPECT_EQ(many.tally.lines, one.tally.lines);
    return one;
  }

  std::string Title() const { return "'" + m_Folder.Path("points") + "'"; }

 private:
  const orv::test::TempFolder m_Folder;
  const Conversion m_Conversion{*orv::ORVReadSystem("method=geographic,a=57.29577951308232,f=0"),
                                *orv::ORVReadSystem("method=Mercator,a=57.29577951308232,f=0")};
};

TEST_F(ConvertBadInput, EmptyFilesAndMissingLineEnds) {
  const struct {
    std::string input, out;
    uint64_t points, placed;
  } kRows[] = {
      {"", "", 0, 0},
      {"\n", "\n", 0, 0},
      {"\n\r\n\n", "\n\r\n\n", 0, 0},
      {"12.25,0", "12.2500,0.0000", 1, 1},
      {"12.25,0\n-7.5,0", "12.2500,0.0000\n-7.5000,0.0000", 2, 2},
      {"12.25,0\r\n-7.5,0\r\n\r\n", "12.2500,0.0000\r\n-7.5000,0.0000\r\n\r\n", 2, 2},
      {"12.25,0\r\n-7.5,0\n1,0\r", "12.2500,0.0000\r\n-7.5000,0.0000\n1.0000,0.0000\r", 3, 3},
      {"\xEF\xBB\xBF"
       "12.25,0\n",
       "12.2500,0.0000\n", 1, 1},
      {"1,0\n,\n\"\n2", "1.0000,0.0000\n,\n\",,\n,", 4, 1},
  };
  for (const auto& row : kRows) {
    const Outcome outcome = RunBoth(row.input);
    EXPECT_EQ(outcome.failure, "") << row.input;
    EXPECT_EQ(outcome.out, row.out) << row.input;
    EXPECT_EQ(outcome.tally.points, row.points) << row.input;
    EXPECT_EQ(outcome.tally.placed, row.placed) << row.input;
  }
}

/// Lines of every kind, in turn: what is written for each, and whether it is a point and has a place.
struct Kind {
  std::string line, written;
  bool bPoint, bPlaced;
};
const Kind kKinds[] = {
    {"12.25,0,first\n", "12.2500,0.0000,first\n", true, true},
    {"\n", "\n", false, false},
    {"x,0,no number\n", ",,no number\n", true, false},
    {"7,0,\"a \"\"quoted\"\" field, with a comma\"\r\n",
     "7.0000,0.0000,\"a \"\"quoted\"\" field, with a comma\"\r\n", true, true},
    {"1,0,\"a quote that goes on\n", "1,0,\"a quote that goes on,,\n", true, false},
    {"in the next line\",5,0\n", ",,0\n", true, false},
    {"5\n", ",\n", true, false},
    {"0,91,beyond the pole\n", ",,beyond the pole\n", true, false},
    {"0,90,without a place\n", ",,without a place\n", true, false},
    {"9,\0,zero\n"s, ",,zero\n", true, false},
    {"\xFF\xFE\x80,\xC3(,no UTF-8\n", ",,no UTF-8\n", true, false},
    {"9d15mE,0,angle\n", "9.2500,0.0000,angle\n", true, true},
};

TEST_F(ConvertBadInput, ManyBlocksOfEveryKindOfLineKeepTheirOrder) {
  // The first block has to look like text; the zero bytes come later.
  std::string input, expected;
  uint64_t lines = 0, points = 0, placed = 0;
  const auto add = [&](const Kind& kind) {
    const std::string number = std::to_string(lines);
    input += kind.line.substr(0, kind.line.size() - 1);
    expected += kind.written.substr(0, kind.written.size() - 1);
    input += kind.line.back();
    expected += kind.written.back();
    ++lines;
    points += kind.bPoint ? 1 : 0;
    placed += kind.bPlaced ? 1 : 0;
  };
  while (input.size() < 2 * kBlockBytes) add(kKinds[0]);
  while (input.size() < 8 * kBlockBytes) add(kKinds[lines * lines % 97 % std::size(kKinds)]);
  SetQuiet(true);
  const Outcome outcome = RunBoth(input);
  SetQuiet(false);
  EXPECT_EQ(outcome.failure, "");
  EXPECT_EQ(outcome.messages, "");
  EXPECT_EQ(outcome.tally.lines, lines);
  EXPECT_EQ(outcome.tally.points, points);
  EXPECT_EQ(outcome.tally.placed, placed);
  EXPECT_TRUE(outcome.out == expected);
}

TEST_F(ConvertBadInput, TheMessagesComeInTheOrderOfTheLines) {
  std::string input;
  while (input.size() < 3 * kBlockBytes) input += "12.25,0\n";
  const auto before = std::to_string(std::count(input.begin(), input.end(), '\n') + 1);
  input += "12.25,\n";
  const Outcome outcome = RunBoth("12.25,a\n" + input);
  EXPECT_EQ(outcome.messages,
            "orv: line 1: 'a' is neither a number nor degrees, minutes and seconds\norv: line " +
                std::to_string(std::stoul(before) + 1) + ": the y coordinate is empty\n");
}

TEST_F(ConvertBadInput, DataThatIsNoTextIsRefused) {
  std::string noise(3 * kBlockBytes, '\0');
  uint32_t state = 1;
  for (char& c : noise) {
    state = state * 1664525 + 1013904223;  // [PTVF92], chapter 7.1
    c = static_cast<char>(state >> 24);
  }
  const Outcome binary = RunBoth(noise);
  EXPECT_EQ(binary.out, "");
  EXPECT_EQ(binary.failure.find(Title() + " is not text (a zero byte in line "), 0u) << binary.failure;

  // Without a zero byte it is taken for lines, none of which is a point.
  for (char& c : noise) c = c == '\0' ? '\1' : c;
  const auto feeds = static_cast<uint64_t>(std::count(noise.begin(), noise.end(), '\n'));
  const Outcome lines = RunBoth(noise);
  EXPECT_EQ(lines.failure, "");
  EXPECT_EQ(lines.tally.lines, feeds + 1);
  EXPECT_EQ(lines.tally.placed, 0u);
}

TEST_F(ConvertBadInput, AHugeLineIsConvertedUpToTheBoundAndRefusedBeyond) {
  std::string rows;
  while (rows.size() < 2 * kBlockBytes) rows += "12.25,0\n";
  const std::string most(kLongestLine - 8, 'a');
  const Outcome longest = Run(rows + "12.25,0," + most + "\n", 4);
  EXPECT_EQ(longest.failure, "");
  EXPECT_EQ(longest.tally.placed, longest.tally.points);
  EXPECT_TRUE(longest.out.ends_with("\n12.2500,0.0000," + most + "\n"));

  // What stands in front of it is written all the same.
  const Outcome refused = Run(rows + "12.25,0," + most + most, 4);
  EXPECT_EQ(refused.failure, "the line that begins at byte " + std::to_string(rows.size()) + " of " +
                                 Title() + " is longer than 16 MiB: each point needs a line");
  EXPECT_EQ(refused.tally.placed, rows.size() / 8);
  EXPECT_EQ(refused.out.size(), rows.size() / 8 * strlen("12.2500,0.0000\n"));
}

TEST_F(ConvertBadInput, BinaryDataMayEndWithinAPointAndHoldAnything) {
  const double values[] = {12.25, 0.0, -7.5, 0.0, 1e308, -1e308};
  std::string point(sizeof values, '\0');
  std::memcpy(point.data(), values, sizeof values);
  std::string input;
  while (input.size() < 3 * kBlockBytes) input += point;
  input += point.substr(0, 5);
  SetQuiet(true);
  const Outcome outcome = RunBoth(input, true);
  SetQuiet(false);
  EXPECT_EQ(outcome.failure, "the data ends with 5 bytes of a point that has 16");
  EXPECT_EQ(outcome.out.size(), input.size() - 5);
  EXPECT_EQ(outcome.tally.points, input.size() / 16);
  EXPECT_EQ(outcome.tally.placed, input.size() / 16 / 3 * 2);
}

TEST_F(ConvertBadInput, AFullDiskEndsTheRunWhateverTheWorkersAreDoing) {
  if (access("/dev/full", W_OK) != 0) GTEST_SKIP() << "no /dev/full";
  std::string rows;
  while (rows.size() < 8 * kBlockBytes) rows += "12.25,0\n";
  for (const size_t workers : {size_t{1}, size_t{4}}) {
    EXPECT_EQ(Run(rows, workers, false, "/dev/full").failure,
              "cannot write to standard output: No space left on device");
  }
}

}  // namespace
