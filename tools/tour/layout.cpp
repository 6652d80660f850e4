// The tour's section on copies between layouts and samples along a line.
#include <algorithm>

#include "pictures/plot.h"
#include "tour/families.h"
#include "tour/plain.h"

namespace tools {
namespace {

constexpr char kText[] =
    "Colours lie pixel by pixel or plane by plane, and copies lead both ways. Along any straight "
    "line the pixels can be sampled: a profile.";

const std::vector<Declaration> kDeclarations = {
    {"src", "static uint8_t src[height * width * 3];  /* red, green, blue, red ... */"},
    {"src_step", "int32_t src_step = 3 * width;"},
    {"red", "static uint8_t red[height * width], green[height * width];"},
    {"blue", "static uint8_t blue[height * width];"},
    {"planes", "uint8_t* const planes[3] = {red, green, blue};"},
    {"only_blue", "uint8_t* const only_blue[3] = {NULL, NULL, blue};"},
    {"turned", "const uint8_t* const turned[3] = {green, blue, red};"},
    {"step", "int32_t step = width;"},
    {"dst", "static uint8_t dst[height * width * 3];"},
    {"dst_step", "int32_t dst_step = 3 * width;"},
    {"samples", "static uint8_t samples[(width + height) * 3];"},
    {"start", "PixelPoint start = {0, height / 5}, end = {width - 1, height * 7 / 10};"},
};

void add_channels(Section& section, const Scene& scene) {
  const RoiSize roi = scene.colour.size;
  const uint8_t* src = scene.colour.pixels.data();
  Plane<uint8_t> red(roi), green(roi), blue(roi);
  uint8_t* const planes[3] = {red.data(), green.data(), blue.data()};
  const int32_t src_step = 3 * roi.width, step = red.step();
  Plane<uint8_t> red2(roi), green2(roi), blue2(roi);
  const Call all = NUQI_TIMED(nuqiCopy_8u_C3P3R(src, src_step, planes, step, roi)).against([&] {
    plain::split(scene.colour, red2, green2, blue2);
  });
  plain::require_same(green2.values, green.values, "nuqiCopy_8u_C3P3R");
  Figure figure("Red, of three planes", "The picture's red as grey levels", picture_of(red));
  section.after.push_back(std::move(figure.note("One call writes red, green and blue.").with(all)));

  uint8_t* const only_blue[3] = {nullptr, nullptr, blue.data()};
  Call one = NUQI_TIMED(nuqiCopy_8u_C3P3R(src, src_step, only_blue, step, roi));
  Figure alone("Blue alone", "The picture's blue as grey levels", picture_of(blue));
  alone.note("Where only one plane is given, the others are passed over.");
  section.after.push_back(std::move(alone.with(std::move(one))));

  Picture swapped(roi, 3);
  uint8_t* dst = swapped.pixels.data();
  const uint8_t* const turned[3] = {green.data(), blue.data(), red.data()};
  const int32_t dst_step = 3 * roi.width;
  Call join = NUQI_TIMED(nuqiCopy_8u_P3C3R(turned, step, dst, dst_step, roi));
  Figure joined("Joined in another order", "The picture in strange colours", swapped);
  joined.note("Green stands for red, blue for green and red for blue.");
  section.after.push_back(std::move(joined.with(std::move(join))));
}

// Across the picture, a little downwards.
void add_profile(Section& section, const Scene& scene) {
  const RoiSize roi = scene.colour.size;
  const PixelPoint start{0, roi.height / 5}, end{roi.width - 1, roi.height * 7 / 10};
  const size_t count = size_t(std::max(end.x - start.x, end.y - start.y)) + 1;
  const uint8_t* src = scene.colour.pixels.data();
  const int32_t src_step = 3 * roi.width;
  std::vector<uint8_t> sampled(3 * count);
  uint8_t* samples = sampled.data();
  // The sampler returns its count where other functions return a status.
  const auto status = [&](StatusCode taken) {
    return taken == StatusCode(count) ? StatusOk : taken;
  };
  Call call = timed_call("nuqiSampleLine_8u_C3R(src, src_step, roi, samples, start, end)", [&] {
    return status(nuqiSampleLine_8u_C3R(src, src_step, roi, samples, start, end));
  });
  Plot plot(double(count - 1), 255);
  plot.channel_curves(sampled);
  Figure figure("Profile", "Red, green and blue along a line, as three curves", plot.picture());
  figure.size = {int32_t(count), 1};
  figure.note("The colours along the line from (" + std::to_string(start.x) + ", " +
              std::to_string(start.y) + ") to (" + std::to_string(end.x) + ", " +
              std::to_string(end.y) + ").");
  section.after.push_back(std::move(figure.with(std::move(call))));
}

}  // namespace

Section layout_section(const Scene& scene) {
  Section section{"layout", "Channels and profiles", kText, {}, {}, {}, kDeclarations};
  section.before.emplace_back("The picture", "The picture in colours", scene.colour);
  add_channels(section, scene);
  add_profile(section, scene);
  return section;
}

}  // namespace tools
