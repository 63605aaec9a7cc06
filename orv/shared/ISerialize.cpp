#include "orv/shared/ISerialize.h"

namespace shr {

ISerialize::~ISerialize() = default;

}  // namespace shr
