// What the subcommands write, and whole files that they read.
#include <fmt/core.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <sstream>

#include "tools/orv/Command.h"

namespace orv::tool {

void WriteOutput(const std::string& text) {
  if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) {
    throw UsageError(fmt::format("cannot write to standard output: {}", std::strerror(errno)));
  }
}

void FlushOutput() {
  if (std::fflush(stdout) != 0) {
    throw UsageError(fmt::format("cannot write to standard output: {}", std::strerror(errno)));
  }
}

std::string ReadFile(const std::string& name) {
  std::ostringstream text;
  if (name == "-") {
    text << std::cin.rdbuf();
    return text.str();
  }
  errno = 0;
  std::ifstream file(name, std::ios::binary);
  if (!file) throw UsageError(fmt::format("cannot open '{}': {}", name, std::strerror(errno)));
  text << file.rdbuf();
  return text.str();
}

namespace {

bool g_bQuiet = false;

}  // namespace

void Report(const std::string& text) { fmt::print(stderr, "orv: {}\n", text); }

void SetQuiet(bool bQuiet) { g_bQuiet = bQuiet; }

bool IsQuiet() { return g_bQuiet; }

void Note(const std::string& text) {
  if (!g_bQuiet) Report(text);
}

}  // namespace orv::tool
