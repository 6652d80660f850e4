// Benchmarks of the distance transforms: to the edges of a picture, ":dot" to a single pixel, ":noise"
// to a third of all pixels, ":nothing" where there is no feature.
#include <string>
#include <vector>

#include "features/canny_members.h"
#include "features/canny_scene.h"
#include "features/distance_transform_plain.h"
#include "support/registry.h"

namespace nuqi::bench {
namespace {

constexpr float kWeights[2][3] = {{0.955f, 1.3693f}, {1, 1.4f, 2.1969f}};

std::vector<uint8_t> draw(const Images& im, const std::string& picture) {
  const size_t pixels = static_cast<size_t>(im.roi.width) * im.roi.height;
  std::vector<uint8_t> drawn(pixels, 255);
  if (picture == ":dot") drawn[pixels / 3] = 0;
  if (picture == ":noise")
    for (size_t i = 0; i < pixels; ++i) drawn[i] = im.u8.get()[i] < 85 ? 0 : 255;
  if (picture.empty()) {
    const CannyScene& scene = canny_scene(im.roi);
    const int32_t width = im.roi.width;
    test::call_canny({scene.dx.get(), 2 * width, scene.dy.get(), 2 * width, drawn.data(), width,
                      im.roi, kCannyLow, kCannyHigh, scene.buffer.get()});
    for (uint8_t& pixel : drawn) pixel = static_cast<uint8_t>(~pixel);
  }
  return drawn;
}

void register_distances() {
  for (const test::DistanceMember& member : test::kDistanceTransforms)
    for (const char* const picture : {"", ":dot", ":noise", ":nothing"})
      for (RoiSize roi : kSizes) {
        const std::string name = std::string(member.name) + picture;
        const auto run = [&](auto call) {
          return [=, &member](const Images& im) {
            return [=, &member, &im, src = draw(im, picture)] {
              call({src.data(), roi.width, reinterpret_cast<float*>(im.out.get()), 4 * roi.width,
                    roi, kWeights[member.weights == 3]});
            };
          };
        };
        const bool is_5x5 = member.weights == 3;
        register_limit<Streams<1>, Streams<>, Streams<4>>(name, roi);
        register_function(name, roi, run([&](const test::DistanceArgs& a) { member.call(a); }));
        register_plain(name, "gcc", roi,
                       run(is_5x5 ? gcc::plain_distance_5x5 : gcc::plain_distance_3x3));
#if NUQI_PLAIN_CLANG
        register_plain(name, "clang", roi,
                       run(is_5x5 ? clang::plain_distance_5x5 : clang::plain_distance_3x3));
#endif
      }
}

const Family family(register_distances);

}  // namespace
}  // namespace nuqi::bench
