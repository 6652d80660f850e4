#include <cstdio>
#include <nuqi/nuqi.hpp>

int main() {
  nuqi::Image<std::uint8_t> picture(64, 48), edges(64, 48);
  const nuqi::View<std::uint8_t> square = picture.roi(20, 10, 24, 24);
  nuqi::abs_diff(square, 255, square);  // a white square on black
  nuqi::canny(picture, edges, 200, 400);
  std::printf("%.0f pixels of edges, mean %g\n", nuqi::norm_l1(edges) / 255, nuqi::mean(picture));
}
