// CommentFields.h: the parts of a definition's comment.
#pragma once

#include <algorithm>
#include <string_view>
#include <vector>

namespace orv::internal {

/// The fields of a comment, which "; " separates: "EPSG operation 1777: DHDN to WGS 84 (2)", "area: Germany", "accuracy: 3 m".  None
/// in an empty comment.
inline std::vector<std::string_view> CommentFields(std::string_view comment) {
  std::vector<std::string_view> fields;
  while (!comment.empty()) {
    const size_t end = std::min(comment.find("; "), comment.size());
    fields.push_back(comment.substr(0, end));
    comment.remove_prefix(std::min(end + 2, comment.size()));
  }
  return fields;
}

}  // namespace orv::internal
