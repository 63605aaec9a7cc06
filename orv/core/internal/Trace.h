// Trace.h: lines about what the library does, for whoever listens.
#pragma once

namespace orv::internal {

/// Formats a line, which holds its own line feed, and hands it to the host's trace callback; nothing, not even
/// the formatting, happens without one.
#if defined(__GNUC__)
__attribute__((format(printf, 1, 2)))
#endif
void
Trace(const char* format, ...);

}  // namespace orv::internal
