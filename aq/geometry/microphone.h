#pragma once

namespace aq {

/// Where a microphone stands, in the unit of its file.
class AQ_Microphone {
 public:
  double X = 0;
  double Y = 0;
  double Z = 0;
  double Height = 0;  ///< above the ground at X, Y
};

}  // namespace aq
