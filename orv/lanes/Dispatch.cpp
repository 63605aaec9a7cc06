#include "orv/lanes/Dispatch.h"

#include <cstdlib>
#include <cstring>

// The sets that CMakeLists.txt builds for this machine: the two must agree.
#if defined(__GNUC__) && defined(__x86_64__)
#define ORV_LANES_HAVE_X86
#if !defined(_WIN32)
#define ORV_LANES_HAVE_AVX
#endif
#elif defined(__GNUC__) && defined(__aarch64__)
#define ORV_LANES_HAVE_NEON
#endif

namespace orv::lanes {

extern const KernelTable kTable_one;
#if defined(ORV_LANES_HAVE_X86)
extern const KernelTable kTable_sse2;
#if defined(ORV_LANES_HAVE_AVX)
extern const KernelTable kTable_avx2, kTable_avx512;
#endif
#elif defined(ORV_LANES_HAVE_NEON)
extern const KernelTable kTable_neon;
#endif

namespace {

struct Candidate {
  const KernelTable* table;
  bool runs;  // on this machine
};

// The best first.
constexpr int kMostCandidates = 4;
int Candidates(Candidate (&list)[kMostCandidates]) {
  int count = 0;
#if defined(ORV_LANES_HAVE_X86)
#if defined(ORV_LANES_HAVE_AVX)
  __builtin_cpu_init();
  const bool avx2 = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
  const bool avx512 = avx2 && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq") &&
                      __builtin_cpu_supports("avx512vl");
  list[count++] = {&kTable_avx512, avx512};
  list[count++] = {&kTable_avx2, avx2};
#endif
  list[count++] = {&kTable_sse2, true};
#elif defined(ORV_LANES_HAVE_NEON)
  list[count++] = {&kTable_neon, true};
#endif
  list[count++] = {&kTable_one, true};
  return count;
}

constexpr std::size_t kFewPoints = 8;
constexpr std::size_t kOneByOne =
    2;  // points that one lane takes one after the other as quickly as four lanes at once

struct Choice {
  const KernelTable* best;
  const KernelTable* few[kFewPoints + 1];  // by the number of points
};

/// The sets up to the one of that name; all for null or an unknown name.
Choice Choose(const char* wanted) {
  Candidate list[kMostCandidates];
  const int count = Candidates(list);
  int first = 0;
  for (int i = 0; wanted && i < count; ++i) {
    if (std::strcmp(list[i].table->isa, wanted) == 0) first = i;
  }
  while (!list[first].runs) ++first;  // the last one runs everywhere
  Choice choice = {list[first].table, {}};
  for (std::size_t points = 0; points <= kFewPoints; ++points) {
    int narrowest = count - 1;
    if (points > kOneByOne) {
      while (narrowest > first && (list[narrowest].table->lanes < points || !list[narrowest].runs))
        --narrowest;
    }
    choice.few[points] = list[narrowest].table;
  }
  return choice;
}

Choice& Chosen() {
  static Choice choice = Choose(std::getenv("ORV_ISA"));
  return choice;
}

}  // namespace

const KernelTable& Kernels() { return *Chosen().best; }

const KernelTable& KernelsFor(std::size_t n) {
  const Choice& choice = Chosen();
  return n > kFewPoints ? *choice.best : *choice.few[n];
}

const KernelTable* KernelsOf(const char* isa) {
  Candidate list[kMostCandidates];
  const int count = Candidates(list);
  for (int i = 0; i < count; ++i) {
    if (list[i].runs && std::strcmp(list[i].table->isa, isa) == 0) return list[i].table;
  }
  return nullptr;
}

void LimitKernels(const char* isa) { Chosen() = Choose(isa ? isa : std::getenv("ORV_ISA")); }

}  // namespace orv::lanes
