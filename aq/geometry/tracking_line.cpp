#include "aq/geometry/tracking_line.h"

#include "aq/text/fields.h"

namespace aq {

TrackingLine trackingLineFrom(const LineReader& lines) {
  FieldReader fields(lines, FieldReader::Form::Raw);
  TrackingLine line{std::make_shared<AQ_Position>(), 0};
  line.position->lazyTime().assign(fields.timeOfDay());
  line.quality = fields.byte("an integer RT20 figure");
  fields.skip(6, "a field before the coordinates");
  line.position->X(fields.number("a coordinate"));
  line.position->Y(fields.number("a coordinate"));
  line.position->Z(fields.number("a coordinate"));
  return line;
}

}  // namespace aq
