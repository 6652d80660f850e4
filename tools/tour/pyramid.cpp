// The tour's section on the Gaussian pyramid.
#include <algorithm>

#include "pictures/pyramid_picture.h"
#include "tour/families.h"
#include "tour/plain.h"

namespace tools {
namespace {

constexpr char kText[] =
    "Each level is the one above it, smoothed and half as wide and high. What a level has that the "
    "next one, brought up to its size again, lacks, is its Laplacian level: with these and the "
    "smallest picture the whole is rebuilt, to the last bit.";

const std::vector<Declaration> kDeclarations = {
    {"src", "static uint8_t src[height * width * 3];\nint32_t src_step = 3 * width;"},
    {"dst", "static uint8_t dst[height * width * 3 / 4];\nint32_t dst_step = 3 * width / 2;"},
    {"small_roi", "RoiSize small_roi = {(width + 1) / 2, (height + 1) / 2};"},
    {"small", "static uint8_t small[(height + 1) / 2 * ((width + 1) / 2) * 3];"},
    {"large", "static uint8_t large[(height + 1) * (width + 1) * 3];"},
    {"small_step", "int32_t small_step = 3 * small_roi.width;"},
    {"large_step", "int32_t large_step = 6 * small_roi.width;"},
    {"buffer",
     "int32_t bytes = 0;\n"
     "nuqiPyrDownGetBufSize_Gauss5x5(width, 1, 3, &bytes);\n"
     "void* buffer = malloc((size_t)bytes);"},
    {"room",
     "int32_t bytes = 0;\n"
     "nuqiPyrUpGetBufSize_Gauss5x5(small_roi.width, 1, 3, &bytes);\n"
     "void* room = malloc((size_t)bytes);"},
};

Call against_plain(Call call, const Picture& level, bool up, const Picture& result) {
  Picture plain_result(result.size, result.channels);
  call = std::move(call).against([&] { plain::pyramid(level, up, plain_result); });
  plain::require_same(plain_result.pixels, result.pixels, "a level of the pyramid");
  return call;
}

// The first step down, and the first up, once more with a clock.
Call down_call(const Picture& level) {
  const Picture even = made_even(level);
  const RoiSize roi = even.size;
  Picture result({roi.width / 2, roi.height / 2}, 3);
  const uint8_t* src = even.pixels.data();
  uint8_t* dst = result.pixels.data();
  const int32_t src_step = 3 * roi.width, dst_step = 3 * result.size.width;
  int32_t size = 0;
  require_ok(nuqiPyrDownGetBufSize_Gauss5x5(roi.width, 1, 3, &size),
             "nuqiPyrDownGetBufSize_Gauss5x5");
  std::vector<uint8_t> room(static_cast<size_t>(size));
  uint8_t* buffer = room.data();
  Call call = NUQI_TIMED(nuqiPyrDown_Gauss5x5_8u_C3R(src, src_step, dst, dst_step, roi, buffer));
  return against_plain(std::move(call), even, false, result);
}
Call up_call(const Picture& level) {
  const RoiSize small_roi = level.size;
  Picture result({2 * small_roi.width, 2 * small_roi.height}, 3);
  const uint8_t* small = level.pixels.data();
  uint8_t* large = result.pixels.data();
  const int32_t small_step = 3 * small_roi.width, large_step = 6 * small_roi.width;
  int32_t size = 0;
  require_ok(nuqiPyrUpGetBufSize_Gauss5x5(small_roi.width, 1, 3, &size),
             "nuqiPyrUpGetBufSize_Gauss5x5");
  std::vector<uint8_t> memory(static_cast<size_t>(size));
  uint8_t* room = memory.data();
  Call call =
      NUQI_TIMED(nuqiPyrUp_Gauss5x5_8u_C3R(small, small_step, large, large_step, small_roi, room));
  return against_plain(std::move(call), level, true, result);
}

}  // namespace

Section pyramid_section(const Scene& scene) {
  Section section{"pyramid", "Gaussian pyramid", kText, {}, {}, {}, kDeclarations};
  section.before.emplace_back("The picture", "The picture in colour", scene.colour);
  const int count = std::min(5, most_levels(scene.colour.size));
  Stopwatch calls;
  const std::vector<Picture> levels = levels_of(scene.colour, count, calls);
  const std::vector<Differences> differences = differences_of(levels);
  const Picture whole = rebuilt(differences, levels);

  Figure gaussian("Gaussian levels", "The picture and below it smaller and smaller ones",
                  sheet_of(levels));
  gaussian.note("The picture and " + std::to_string(count) + " levels below it.");
  section.after.push_back(std::move(gaussian.with(down_call(scene.colour))));
  Figure laplacian("Laplacian levels", "Grey pictures with the edges of each level",
                   sheet_of(pictures_of(differences, levels)));
  laplacian.note("Mid-grey where a level is what the next one gives; the last is whole.");
  section.after.push_back(std::move(laplacian));
  Figure again("Rebuilt", "The picture rebuilt from its Laplacian levels", whole);
  again.note("From the Laplacian levels. Largest deviation from the picture: " +
             std::to_string(largest_deviation(whole, scene.colour)) + ".");
  section.after.push_back(std::move(again.with(up_call(levels[count == 0 ? 0 : 1]))));
  return section;
}

}  // namespace tools
