// Points per second of the engines, the datum methods, the warps and whole transformations: ours with each instruction
// set, PROJ's and GeographicLib's, in one run.  scripts/bench builds, runs and tabulates.
//
//   orv_bench --list                              subjects; fails when a method of the library is not among them
//   orv_bench --check [--only TEXT]               converts some points with every side and compares; takes no time
//   orv_bench --out FILE [--only TEXT] [--rounds N]
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/Cases.h"
#include "orv/core/Startup.h"
#include "tests/support/Paths.h"

namespace {

using orv::bench::Case;

std::vector<Case> AllCases() {
  std::vector<Case> all;
  for (const std::vector<Case>& some : {orv::bench::EngineCases(), orv::bench::DatumCases(),
                                        orv::bench::WarpCases(), orv::bench::SystemCases()}) {
    all.insert(all.end(), some.begin(), some.end());
  }
  return all;
}

int Run(int argc, char** argv) {
  orv::bench::Options options;
  bool isList = false, isCheck = false;
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    const auto value = [&] {
      if (++i == argc) throw std::runtime_error(argument + " wants a value");
      return std::string(argv[i]);
    };
    if (argument == "--list") {
      isList = true;
    } else if (argument == "--check") {
      isCheck = true;
    } else if (argument == "--only") {
      options.only = value();
    } else if (argument == "--out") {
      options.out = value();
    } else if (argument == "--rounds") {
      options.rounds = std::atoi(value().c_str());
    } else {
      throw std::runtime_error("unknown argument " + argument);
    }
  }
  if (options.rounds < 1) throw std::runtime_error("--rounds wants a number of at least 1");

  orv::ORVInitialize(orv::test::CatalogueFolder().c_str(), true);
  const std::vector<Case> cases = AllCases();
  orv::bench::RequireEveryMethod(cases);
  if (isList || isCheck) {
    int failures = 0;
    for (const Case& one : cases) {
      if (one.subject.find(options.only) == std::string::npos) continue;
      try {
        if (isCheck) orv::bench::Check(one);
      } catch (const std::exception& e) {
        std::fprintf(stderr, "orv_bench: %s\n", e.what());
        ++failures;
      }
      std::printf("%s:", one.subject.c_str());
      for (const orv::bench::Side& side : one.sides) std::printf(" %s", side.who.c_str());
      std::printf("\n");
    }
    return failures == 0 ? 0 : 1;
  }
  if (options.out.empty()) throw std::runtime_error("--list, --check or --out FILE is wanted");
  orv::bench::Measure(cases, orv::bench::OnceCases(), options);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const std::exception& e) {
    std::fprintf(stderr, "orv_bench: %s\n", e.what());
    return 1;
  }
}
