#include "orv/core/internal/TextBlock.h"

namespace orv::internal {

size_t BehindBlockEnd(const std::string& text, size_t at) {
  at = text.find('>', at);
  if (at == std::string::npos) return text.size();
  ++at;
  if (at < text.size() && text[at] == '\r') ++at;
  if (at < text.size() && text[at] == '\n') ++at;
  return at;
}

}  // namespace orv::internal
