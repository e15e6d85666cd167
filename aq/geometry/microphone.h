#pragma once

namespace aq {

/// The position of a microphone in metres, or in the length unit of its file: nothing is converted.
/// All members are 0 until set.
class AQ_Microphone {
 public:
  double X = 0;
  double Y = 0;
  double Z = 0;
  double Height = 0;  ///< height above the ground at X, Y
};

}  // namespace aq
