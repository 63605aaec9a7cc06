// ISerialize.h: the archive that a host hands to Serialize.
#pragma once

#include <cstddef>

#include "orv/core/Export.h"

namespace shr {

/// A byte archive, either storing or loading for its whole life.
class ORV_API ISerialize {
 public:
  virtual ~ISerialize();

  virtual bool IsStoring() const = 0;
  /// Fills `size` bytes at `data`, or throws what the host likes.
  virtual void Read(void* data, size_t size) = 0;
  virtual void Write(const void* data, size_t size) = 0;
};

}  // namespace shr
