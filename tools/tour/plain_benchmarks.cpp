// Plain loops that the benchmarks have already, on the tour's pictures.
#include "features/canny_plain.h"
#include "features/distance_transform_plain.h"
#include "features/eigen_plain.h"
#include "fill/flood_fill_plain.h"
#include "pyramid/pyramid_plain.h"
#include "tour/plain.h"

namespace tools::plain {

namespace loops = nuqi::bench::PLAIN_COMPILER;

void canny(const Plane<int16_t>& dx, const Plane<int16_t>& dy, float low, float high,
           std::vector<uint8_t>& buffer, Plane<uint8_t>& edges) {
  loops::plain_canny({dx.data(), dx.step(), dy.data(), dy.step(), edges.data(), edges.step(),
                      edges.size, low, high, buffer.data()});
}

void corner_strength(const Plane<float>& grey, int32_t aperture, int32_t block,
                     Plane<float>& strength) {
  constexpr int kValues = 1;
  loops::plain_eigen<float>(kValues, aperture,
                            block)({grey.data(), grey.step(), strength.data(), strength.step(),
                                    grey.size, aperture, block, nullptr});
}

void corner_vectors(const Plane<uint8_t>& grey, int32_t aperture, int32_t block,
                    std::vector<float>& vectors) {
  constexpr int kValues = 6;
  const int32_t step = grey.size.width * kValues * int32_t(sizeof(float));
  loops::plain_eigen<uint8_t>(kValues, aperture, block)(
      {grey.data(), grey.step(), vectors.data(), step, grey.size, aperture, block, nullptr});
}

void distances(const Plane<uint8_t>& map, const float* weights, bool knights_moves,
               Plane<float>& result) {
  (knights_moves ? loops::plain_distance_5x5 : loops::plain_distance_3x3)(
      {map.data(), map.step(), result.data(), result.step(), map.size, weights});
}

void pyramid(const Picture& level, bool up, Picture& result) {
  constexpr int kChannels = 3;
  loops::plain_pyramid<uint8_t>(
      up, kChannels)({level.pixels.data(), int32_t(level.row_samples()), result.pixels.data(),
                      int32_t(result.row_samples()), level.size, nullptr});
}

void fill(Plane<uint8_t>& image, PixelPoint seed, int32_t value, int32_t lower, int32_t upper,
          std::vector<uint8_t>& buffer) {
  constexpr bool kGradient = true, kDiagonal = false;
  FillRegion region{};
  loops::plain_fill<uint8_t>(
      {image.data(), image.step(), image.size, seed, value, lower, upper, &region, buffer.data()},
      kGradient, kDiagonal);
}

}  // namespace tools::plain
