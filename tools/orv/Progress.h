// Progress.h: the line that tells how far a long conversion is.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace orv::tool {

/// "orv: [########            ]  42 %, 12.3 million points/s, 5 s left"; without the bar and the time when the size is not
/// known: "orv: 310.2 MB, 12.3 million points/s".
///
/// @param size  bytes in all; 0 when that is not known.
std::string ProgressText(uint64_t done, uint64_t size, uint64_t points, double seconds);

/// Shows it on standard error from the first second on, ten times a second at most; cut to the columns of the terminal.
///
/// Coloured unless NO_COLOR is set to something; nothing at all is shown when TERM is "dumb".
class Progress {
 public:
  using Clock = std::chrono::steady_clock;

  /// @param size   bytes in all; 0 when that is not known.
  /// @param bShow  whether standard error is a terminal, and messages are wanted.
  Progress(uint64_t size, bool bShow);
  ~Progress() { Hide(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void Update(uint64_t done, uint64_t points);
  /// Takes the line away; to be called before a message.
  void Hide();

 private:
  uint64_t m_Size;
  bool m_bShow;
  bool m_bColour;
  bool m_bVisible = false;
  Clock::time_point m_Start;
  Clock::time_point m_Next;
};

}  // namespace orv::tool
