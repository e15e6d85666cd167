#include "aq/geometry/geometry.h"

namespace aq {

std::shared_ptr<AQ_Geometry> AQ_Geometry::Copy() {
  auto copy = std::make_shared<AQ_Geometry>();
  copy->Pe(Pe()->Copy());
  copy->Te(Te()->Copy());
  copy->Tm(Tm()->Copy());
  copy->BETAe = BETAe;
  copy->SRe = SRe;
  copy->THETAe = THETAe;
  copy->Tprope = Tprope;
  return copy;
}

}  // namespace aq
