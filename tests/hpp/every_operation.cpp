// A call of every operation of docs/operations.tsv, with each number of arguments: what compilers and language
// versions are held to, from an installed tree.
#include <cstdint>
#include <nuqi/nuqi.hpp>
#include <type_traits>

using namespace nuqi;

template <class T>
void on_elements() {
  Image<T> a(16, 16), b(16, 16);
  Image<T, 3> colours(16, 16);
  Image<float> acc(16, 16);
  a(3, 3) = b(4, 4) = colours(5, 5, 1) = T{9};
  Image<std::uint8_t> selected(16, 16);
  selected(3, 3) = 1;
  const Mask some(selected);
  accumulate(a, acc), accumulate(a, some, acc);
  accumulate_square(a, acc), accumulate_square(a, some, acc);
  accumulate_product(a, b, acc), accumulate_product(a, b, some, acc);
  accumulate_weighted(a, acc, 0.5F), accumulate_weighted(a, some, acc, 0.5F);
  (void)accumulate(a, some, acc, std::nothrow);
  (void)mean(a), (void)mean(a, some), (void)mean(colours, 1), (void)mean(colours, some, 1);
  (void)mean_std(a), (void)mean_std(a, some), (void)mean_std(colours, 1),
      (void)mean_std(colours, some, 1);
  (void)min_max(a), (void)min_max(a, some), (void)min_max(colours, 1),
      (void)min_max(colours, some, 1);
  (void)norm_inf(a), (void)norm_l1(a, some), (void)norm_l2(colours, some, 1);
  (void)norm_diff_inf(a, b), (void)norm_diff_l1(a, b, some),
      (void)norm_diff_l2(colours, colours, some, 1);
  (void)norm_rel_inf(a, b), (void)norm_rel_l1(a, b, some),
      (void)norm_rel_l2(colours, colours, some, 1);
  min_eigen(a, acc);
  Image<float, 6> vectors(16, 16);
  eigen_vectors(a, vectors);
  Image<T> half(8, 8);
  pyramid_down(a, half), pyramid_up(half, a);
  Image<float> scores(9, 9);
  match_template(a, half, scores);

  using Slope = std::conditional_t<std::is_same_v<T, float>, float, std::int16_t>;
  Image<Slope> dx(16, 16), dy(16, 16);
  sobel3x3(a, Derivative::dx, dx), sobel3x3(a, Derivative::dy, dy, RowOrder::bottom_up);
  scharr(a, Derivative::dx, dx, 1);
  const Derivative which = Derivative::dy;  // known when the program runs
  sobel3x3(a, which, dy), scharr(a, which, dy);
  box_sum(a, dx), sobel(a, dx, 1, 0), laplace(a, dx);
  if constexpr (!std::is_same_v<T, float>) {
    Image<std::uint8_t> edges(16, 16);
    canny(a, edges, 10, 20), canny_from(dx, dy, edges, 10, 20);
    (void)canny_thresholds(a);
  }
  if constexpr (!std::is_same_v<T, std::int8_t>) {
    Image<T> c(16, 16);
    Image<T, 4> four(16, 16);
    abs_diff(a, b, c), abs_diff(a, 3, c);
    split(colours, a, b, c), split(colours, 1, a), join(a, b, c, colours);
    join(a, a, a, a, four);
    (void)sample_line(a, {0, 0}, {5, 3});
    erode(a, c, Element::cross(3, 3)), dilate(a, c, Element::rectangle(3, 3));
    (void)flood_fill(c, {1, 1}, 7), (void)flood_fill(c, {1, 1}, 8, 1, 1);
  }
}

int main() {
  on_elements<std::uint8_t>();
  on_elements<std::int8_t>();
  on_elements<float>();
  Image<std::uint8_t> bytes(16, 16);
  Image<std::uint8_t, 2> pairs(16, 16);
  Image<float> floats(16, 16), angles(16, 16);
  (void)histogram(bytes), (void)histogram(bytes, {0, 256});
  const JointHistogram joint = joint_histogram(pairs, {0, 256}, {0, 256});
  const std::int32_t counter = static_cast<std::int32_t>(joint(0, 0));
  check_histogram(&counter, 1);
  motion_history(bytes, floats, 1, 1);
  arctan(floats, floats, angles);
  distance_transform(bytes, floats);
}
