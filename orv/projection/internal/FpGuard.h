// FpGuard.h: turns a floating-point trap of the host into a verdict.
#pragma once

#include "orv/core/Platform.h"
#include "orv/core/internal/Globals.h"

namespace orv::internal {

/// Runs engines while the host's floating-point traps are held.
///
/// What the host has unmasked of divide by zero, overflow, underflow and denormal operand is asked once, at
/// construction. When that is nothing, and it is with most hosts, nothing is done and nothing is paid.
class FpGuard {
 public:
  FpGuard() : m_Unmasked(platform::UnmaskedFpExceptions()) {}

  /// Calls run() and gives its result.  When run() has raised one of the unmasked exceptions the result is
  /// false, the thread's fault flag is set, the status is cleared and the four are left unmasked; else the
  /// host's environment is put back as it was, also when run() throws.
  template <class Run>
  bool operator()(Run run) {
    if (m_Unmasked == 0) return run();
    bool result;
    {
      Hold hold;
      result = run();
      m_bTrapped = (platform::RaisedFpExceptions() & m_Unmasked) != 0;
    }
    return m_bTrapped ? Trap() : result;
  }

  /// Whether the last run raised an unmasked exception.
  bool Trapped() const { return m_bTrapped; }

 private:
  struct Hold {
    Hold() { platform::HoldFpExceptions(saved); }
    ~Hold() { platform::RestoreFpEnvironment(saved); }
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;
    platform::FpEnvironment saved;
  };

  static bool Trap() {
    FpFault() = true;
    platform::ClearAndUnmaskFpExceptions();
    return false;
  }

  unsigned m_Unmasked;
  bool m_bTrapped = false;
};

}  // namespace orv::internal
