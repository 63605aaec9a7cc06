#include "orv/core/internal/Text.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "orv/core/Platform.h"

namespace orv::internal {

int CompareIgnoringCase(const char* a, const char* b) {
  a = EmptyIfNull(a);
  b = EmptyIfNull(b);
  while (*a != '\0' && (*a == *b || FoldCase(*a) == FoldCase(*b))) {
    ++a;
    ++b;
  }
  const unsigned char left = FoldCase(*a);
  const unsigned char right = FoldCase(*b);
  return left < right ? -1 : left > right ? 1 : 0;
}

// Eight characters at a time: texts that share them are a group, which is sorted by the eight that follow.
void SortIgnoringCase(std::vector<NumberedText>& texts) {
  struct Rest {
    uint64_t eight;  // the characters that the text is sorted by
    std::string_view text;
    uint32_t number;
  };
  struct Group {
    size_t begin, end, depth;
  };
  std::vector<Rest> rests;
  rests.reserve(texts.size());
  for (const NumberedText& t : texts) rests.push_back({0, t.text, t.number});

  std::vector<Group> groups = {{0, rests.size(), 0}};
  while (!groups.empty()) {
    const Group group = groups.back();
    groups.pop_back();
    const auto at = [&rests](size_t i) { return rests.begin() + static_cast<std::ptrdiff_t>(i); };
    for (auto rest = at(group.begin); rest != at(group.end); ++rest) {
      rest->eight = EightFolded(rest->text.substr(std::min(group.depth, rest->text.size())));
    }
    std::sort(at(group.begin), at(group.end), [](const Rest& a, const Rest& b) {
      return a.eight != b.eight ? a.eight < b.eight : a.number < b.number;
    });
    for (size_t i = group.begin; i < group.end;) {
      const uint64_t eight = rests[i].eight;
      size_t end = i + 1;
      while (end < group.end && rests[end].eight == eight) ++end;
      const bool ended = (eight & 0xff) == 0;  // a text of bytes that are not 0 goes on otherwise
      if (end - i > 1 && !ended) groups.push_back({i, end, group.depth + 8});
      i = end;
    }
  }
  for (size_t i = 0; i < texts.size(); ++i) texts[i] = {rests[i].text.data(), rests[i].number};
}

const char* ShortNameOf(const char* name) {
  const char* const bar = std::strrchr(name, '|');
  if (!bar) return name;
  const char* at = bar;
  while (*at == '|' || *at == ' ') ++at;
  return at;
}

std::string FormatV(const char* format, std::va_list args) {
  std::va_list again;
  va_copy(again, args);
  char room[512];
  const int length = platform::FormatInCLocale(room, sizeof room, format, args);
  std::string text;
  if (length >= 0 && static_cast<size_t>(length) < sizeof room) {
    text.assign(room, static_cast<size_t>(length));
  } else if (length >= 0) {
    text.resize(static_cast<size_t>(length) + 1);
    platform::FormatInCLocale(text.data(), text.size(), format, again);
    text.pop_back();
  }
  va_end(again);
  return text;
}

std::string Format(const char* format, ...) {
  std::va_list args;
  va_start(args, format);
  std::string text = FormatV(format, args);
  va_end(args);
  return text;
}

}  // namespace orv::internal
