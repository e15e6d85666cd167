#include "aq/detail/pointers.h"

namespace aq {

void throwMissingObject() { throw Error(ErrorCode::ObjectNotSet, "an object is missing"); }

}  // namespace aq
