#include "aq/geometry/position.h"

namespace aq {

std::shared_ptr<AQ_Position> AQ_Position::Copy() {
  auto copy = std::make_shared<AQ_Position>();
  copy->time_ = time_.copied();
  copy->X(x_);
  copy->Y(y_);
  copy->Z(z_);
  return copy;
}

}  // namespace aq
