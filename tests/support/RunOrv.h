// RunOrv.h: runs the built command line tool as a process of its own.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/Paths.h"

namespace orv::test {

struct Result {
  int status = -1;
  std::string out;
  std::string err;
};

inline std::string Content(const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  std::ostringstream content;
  content << stream.rdbuf();
  return content.str();
}

/// A file of this test's own, removed at its end.
class ScratchFile {
 public:
  explicit ScratchFile(const std::string& content = "") {
    static std::atomic<int> number{0};
    m_Path = ::testing::TempDir() + "orv-tool-" + std::to_string(getpid()) + "-" + std::to_string(++number);
    std::ofstream(m_Path, std::ios::binary) << content;
  }
  ~ScratchFile() { std::remove(m_Path.c_str()); }
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;
  const std::string& Path() const { return m_Path; }

 private:
  std::string m_Path;
};

/// Runs orv with these arguments, `input` as its standard input, and `variables` in front of the environment.
inline Result RunOrv(std::vector<std::string> arguments, const std::string& input = "",
                     std::vector<std::string> variables = {}) {
  arguments.insert(arguments.begin(), "orv");
  std::vector<char*> argv, environment;
  for (std::string& text : arguments) argv.push_back(text.data());
  for (std::string& text : variables) environment.push_back(text.data());
  for (char** variable = environ; *variable; ++variable) environment.push_back(*variable);
  argv.push_back(nullptr);
  environment.push_back(nullptr);

  const ScratchFile in(input), out, err;
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 0, in.Path().c_str(), O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, 1, out.Path().c_str(), O_WRONLY | O_TRUNC, 0);
  posix_spawn_file_actions_addopen(&actions, 2, err.Path().c_str(), O_WRONLY | O_TRUNC, 0);
  pid_t process = 0;
  const int failed =
      posix_spawn(&process, ToolPath().c_str(), &actions, nullptr, argv.data(), environment.data());
  posix_spawn_file_actions_destroy(&actions);
  Result result;
  if (failed != 0) {
    ADD_FAILURE() << "cannot run " << ToolPath();
    return result;
  }
  int state = 0;
  waitpid(process, &state, 0);
  if (WIFEXITED(state)) result.status = WEXITSTATUS(state);
  result.out = Content(out.Path());
  result.err = Content(err.Path());
  return result;
}

inline std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

}  // namespace orv::test
