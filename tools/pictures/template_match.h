// Where a template is found in a picture: the scores of all places, the best ones, and both drawn.
#pragma once

#include <functional>
#include <vector>

#include "clock.h"
#include "pictures/peaks.h"
#include "pictures/picture.h"
#include "pictures/scale.h"

namespace tools {

struct Measure {
  using BufferSize = StatusCode (*)(RoiSize, RoiSize, int32_t, int32_t*);
  using Match = StatusCode (*)(const uint8_t*, int32_t, RoiSize, const uint8_t*, int32_t, RoiSize,
                               float*, int32_t, void*);
  enum class Range {
    above_zero,  // 0 is best
    positive,    // the largest is best
    about_zero,  // the same, and unlike places are below zero
  };

  const char* name;
  const char* function;  // what `match` is called
  BufferSize buffer_size;
  Match match;
  Range range;
};
inline constexpr size_t kMeasureCount = 6;
extern const Measure kMeasures[kMeasureCount];

// Throws UserError unless the template fits into the picture and the measure tells its places apart. `name`
// is the template's.
void check_template(const Plane<uint8_t>& tpl, const std::string& name, RoiSize picture,
                    const Measure& measure);

// Told how many rows of scores are done, of how many.
using RowsDone = std::function<void(int32_t rows, int32_t of)>;

// The score of each place, by its pixel at the upper left.
Plane<float> scores_of(const Plane<uint8_t>& picture, const Plane<uint8_t>& tpl,
                       const Measure& measure, Stopwatch& calls, const RowsDone& rows_done);

// The best local extrema, at most `count`, the best first, of equal ones the upper and then the left one;
// the template on one touches it on no other.
std::vector<Peak> best_places(const Plane<float>& scores, const Measure& measure, RoiSize tpl,
                              size_t count);

// The colour picture with a box around each place: orange around the first, blue around the others.
Picture with_boxes(Picture picture, const std::vector<Peak>& places, RoiSize tpl);

// From the worst to the best colour the scores are spread over this; what lies beyond has the same colours.
Scale score_scale(const Plane<float>& scores, const Measure& measure);
Colouring score_colours(const Measure& measure, const Scale& scale);

// Coloured scores on a dark sheet as large as the picture, each in the middle of its place.
Picture in_middle_of(RoiSize picture, const Picture& scores, RoiSize tpl);

}  // namespace tools
