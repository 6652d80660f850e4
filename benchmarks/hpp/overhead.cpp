// What an operation of nuqi.hpp takes beside the C function that it calls, at 64x64 with kept objects:
// the median of repetitions of both in turn.
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <nuqi/nuqi.hpp>
#include <vector>

namespace {

constexpr std::int32_t kSide = 64;
constexpr RoiSize kRoi = {kSide, kSide};

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// Nanoseconds of a call.
template <class Call>
double time_of(const Call& call) {
  constexpr int kCalls = 50;
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < kCalls; ++i) {
    call();
    asm volatile("" ::: "memory");
  }
  return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start)
             .count() /
         kCalls;
}

template <class C, class Cpp>
void compare(const char* operation, const C& c, const Cpp& cpp) {
  constexpr int kRepetitions = 2001;
  std::vector<double> of_c, of_cpp, added;
  for (int i = 0; i < kRepetitions; ++i) {
    double a = 0, b = 0;
    if (i % 2 == 0) a = time_of(c), b = time_of(cpp);
    if (i % 2 != 0) b = time_of(cpp), a = time_of(c);
    of_c.push_back(a), of_cpp.push_back(b), added.push_back(b - a);
  }
  std::printf("%-16s %10.1f %10.1f %10.1f\n", operation, median(of_c), median(of_cpp),
              median(added));
}

template <class T, int C = 1>
nuqi::Image<T, C> noise() {
  nuqi::Image<T, C> image(kSide, kSide);
  std::uint32_t bits = 1;
  for (int y = 0; y < kSide; ++y) {
    for (int x = 0; x < kSide * C; ++x) {
      bits = bits * 1664525u + 1013904223u;
      image.row(y)[x] = static_cast<T>(bits >> 25);
    }
  }
  return image;
}

template <class AnyImage>
std::int32_t step(const AnyImage& image) {
  return static_cast<std::int32_t>(image.step());
}

const auto bytes = noise<std::uint8_t>(), more_bytes = noise<std::uint8_t>();
const auto floats = noise<float>();
nuqi::Image<std::uint8_t> to_bytes(kSide, kSide), half(kSide / 2, kSide / 2);
nuqi::Image<std::int16_t> dx(kSide, kSide), dy(kSide, kSide);
nuqi::Image<float> to_floats(kSide, kSide), scores(kSide - 7, kSide - 7);
nuqi::Scratch scratch;
void* const buffer = scratch.get(1 << 20);  // one memory for both

void compare_pixels() {
  compare(
      "abs_diff",
      [] {
        nuqiAbsDiff_8u_C1R(bytes.data(), step(bytes), more_bytes.data(), step(more_bytes),
                           to_bytes.data(), step(to_bytes), kRoi);
      },
      [] { nuqi::abs_diff(bytes, more_bytes, to_bytes); });
}

void compare_filters() {
  const auto row = [](const char* name, auto function, const auto& make, auto& filter) {
    ConvolState* state = nullptr;
    make(&state);
    compare(
        name,
        [=] {
          RoiSize roi = kRoi;
          function(bytes.data(), step(bytes), dx.data(), step(dx), &roi, state, 0);
        },
        [&] { filter(bytes, dx); });
  };
  nuqi::BoxSum box_sum(3);
  nuqi::Sobel sobel(1, 0);
  nuqi::Laplace laplace(3);
  row(
      "box_sum", nuqiBlur_8u16s_C1R,
      [](ConvolState** state) { nuqiBlurInitAlloc(kSide, 1, 3, state); }, box_sum);
  row(
      "sobel", nuqiSobel_8u16s_C1R,
      [](ConvolState** state) { nuqiSobelInitAlloc(kSide, 1, 3, 0, 1, 0, state); }, sobel);
  row(
      "laplace", nuqiLaplace_8u16s_C1R,
      [](ConvolState** state) { nuqiLaplaceInitAlloc(kSide, 1, 3, state); }, laplace);

  nuqi::Morphology square(nuqi::Element::rectangle(3, 3));
  MorphState* state = nullptr;
  nuqiMorphologyInitAlloc(kSide, 1, 1, {3, 3}, {1, 1}, 0, nullptr, &state);
  compare(
      "erode",
      [=] {
        RoiSize roi = kRoi;
        nuqiErodeStrip_Rect_8u_C1R(bytes.data(), step(bytes), to_bytes.data(), step(to_bytes), &roi,
                                   state, 0);
      },
      [&] { square.erode(bytes, to_bytes); });
}

void compare_scratch() {
  nuqi::sobel(bytes, dx, 1, 0);
  nuqi::sobel(bytes, dy, 0, 1);
  compare(
      "canny_from",
      [] {
        nuqiCanny_16s8u_C1R(dx.data(), step(dx), dy.data(), step(dy), to_bytes.data(),
                            step(to_bytes), kRoi, 100, 200, buffer);
      },
      [] { nuqi::canny_from(dx, dy, to_bytes, 100, 200, scratch); });
  compare(
      "pyramid_down",
      [] {
        nuqiPyrDown_Gauss5x5_8u_C1R(bytes.data(), step(bytes), half.data(), step(half), kRoi,
                                    buffer);
      },
      [] { nuqi::pyramid_down(bytes, half, scratch); });
  const auto tpl = bytes.roi(10, 10, 8, 8);
  compare(
      "match_template",
      [=] {
        nuqiMatchTemplate_SqDiff_8u32f_C1R(bytes.data(), step(bytes), kRoi, tpl.data(), step(tpl),
                                           {8, 8}, scores.data(), step(scores), buffer);
      },
      [=] { nuqi::match_template(bytes, tpl, scores, nuqi::MatchMethod::sq_diff, scratch); });
  compare(
      "flood_fill",
      [] {
        FillRegion region;
        nuqiFloodFill_4Con_8u_C1IR(to_bytes.data(), step(to_bytes), kRoi, {0, 0},
                                   to_bytes(0, 0) == 0 ? 1 : 0, &region, buffer);
      },
      [] {
        nuqi::flood_fill(to_bytes, {0, 0}, to_bytes(0, 0) == 0 ? 1 : 0, nuqi::Connectivity::four,
                         scratch);
      });
}

}  // namespace

int main() {
  std::printf("%-16s %10s %10s %10s\n", "64x64, ns", "C", "C++", "added");
  compare_pixels();
  compare_filters();
  compare_scratch();
}
