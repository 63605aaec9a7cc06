#include "tools/orv/Progress.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "tools/orv/Descriptor.h"

namespace orv::tool {

namespace {

constexpr int kBarWidth = 20;

bool IsSet(const char* variable) {
  const char* const value = std::getenv(variable);
  return value && *value != '\0';
}

std::string Duration(double seconds) {
  const auto whole = static_cast<uint64_t>(seconds + 0.5);
  if (whole < 60) return fmt::format("{} s", whole);
  if (whole < 3600) return fmt::format("{}:{:02} min", whole / 60, whole % 60);
  return fmt::format("{}:{:02} h", whole / 3600, whole / 60 % 60);
}

}  // namespace

std::string ProgressText(uint64_t done, uint64_t size, uint64_t points, double seconds) {
  const double rate = seconds > 0.0 ? static_cast<double>(points) / seconds * 1e-6 : 0.0;
  const std::string speed = fmt::format("{:.1f} million points/s", rate);
  if (size == 0) return fmt::format("orv: {:.1f} MB, {}", static_cast<double>(done) * 1e-6, speed);
  const double share = std::min(1.0, static_cast<double>(done) / static_cast<double>(size));
  const int filled = static_cast<int>(share * kBarWidth);
  const double left = share > 0.0 ? seconds * (1.0 - share) / share : 0.0;
  return fmt::format("orv: [{:#<{}}{: <{}}] {:3} %, {}, {} left", "", filled, "", kBarWidth - filled,
                     static_cast<int>(share * 100.0), speed, Duration(left));
}

Progress::Progress(uint64_t size, bool bShow)
    : m_Size(size),
      m_bShow(bShow),
      m_bColour(!IsSet("NO_COLOR")),
      m_Start(Clock::now()),
      m_Next(m_Start + std::chrono::seconds(1)) {
  const char* const terminal = std::getenv("TERM");
  if (terminal && std::string_view(terminal) == "dumb") m_bShow = false;
}

void Progress::Update(uint64_t done, uint64_t points) {
  if (!m_bShow) return;
  const Clock::time_point now = Clock::now();
  if (now < m_Next) return;
  m_Next = now + std::chrono::milliseconds(100);
  std::string text = ProgressText(done, m_Size, points, std::chrono::duration<double>(now - m_Start).count());
  // A line that goes on in the next row could not be taken away.
  if (const int columns = ErrorColumns(); columns > 0)
    text.resize(std::min(text.size(), static_cast<size_t>(columns - 1)));
  fmt::print(stderr, "\r\033[K{}{}{}", m_bColour ? "\033[36m" : "", text, m_bColour ? "\033[0m" : "");
  std::fflush(stderr);
  m_bVisible = true;
}

void Progress::Hide() {
  if (!m_bVisible) return;
  std::fputs("\r\033[K", stderr);
  m_bVisible = false;
}

}  // namespace orv::tool
