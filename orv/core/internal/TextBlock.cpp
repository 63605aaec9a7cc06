#include "orv/core/internal/TextBlock.h"

namespace orv::internal {

size_t BehindBlockEnd(const std::string& text, size_t at) {
  // A BLOCKEND without its own ">" ends where the next item begins.
  at = text.find_first_of("<>", at + 1);
  if (at == std::string::npos) return text.size();
  if (text[at] == '<') return at;
  ++at;
  if (at < text.size() && text[at] == '\r') ++at;
  if (at < text.size() && text[at] == '\n') ++at;
  return at;
}

}  // namespace orv::internal
