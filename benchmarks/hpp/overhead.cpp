// What an operation of nuqi.hpp takes beside the C function that it calls, at 64x64 with kept objects: the median
// difference of short batches of both in turn, on the same buffers. All operations are measured in rounds, of which
// the half counts in which the C function was fastest: a neighbour on the processor slows down everything.
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <nuqi/nuqi.hpp>
#include <utility>
#include <vector>

namespace {

constexpr std::int32_t kSide = 64;
constexpr RoiSize kRoi = {kSide, kSide};
const char* wanted = "";  // part of the operations' names

// Makes the compiler believe that somebody reads a result.
template <class T>
void keep(const T& result) {
  asm volatile("" : : "m"(result) : "memory");
}

// Nanoseconds of a call.
template <class Call>
[[gnu::noinline]] double time_of(const Call& call, int calls) {
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < calls; ++i) {
    call();
    asm volatile("" ::: "memory");
  }
  return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start)
             .count() /
         calls;
}

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// The rounds of an operation: the time of the C function and what C++ adds.
struct Row {
  const char* operation;
  std::vector<std::pair<double, double>> rounds;
};
std::vector<Row> rows;

template <class C, class Cpp>
void compare(const char* operation, const C& c, const Cpp& cpp) {
  if (std::strstr(operation, wanted) == nullptr) return;
  constexpr double kBatch = 3000;  // ns: much longer than it takes to look at the clock
  constexpr double kRound = 30e6;  // ns
  double once = 1e9;
  for (int i = 0; i < 20; ++i) once = std::min({once, time_of(c, 1), time_of(cpp, 1)});
  const int calls = std::max(4, static_cast<int>(kBatch / once));
  const int repetitions = std::max(100, static_cast<int>(kRound / (4 * once * calls)));
  std::vector<double> of_c, added;
  for (int i = 0; i < repetitions; ++i) {  // what drifts, drifts over both
    const double a = time_of(c, calls), b = time_of(cpp, calls), d = time_of(cpp, calls),
                 e = time_of(c, calls);
    of_c.push_back((a + e) / 2);
    added.push_back((b + d - a - e) / 2);
  }
  const auto known = std::find_if(rows.begin(), rows.end(), [&](const Row& row) {
    return std::strcmp(row.operation, operation) == 0;
  });
  Row& row = known != rows.end() ? *known : (rows.push_back({operation, {}}), rows.back());
  row.rounds.emplace_back(median(of_c), median(added));
}

void print() {
  std::printf("%-24s %10s %8s\n", "64x64, ns", "C", "added");
  for (Row& row : rows) {
    std::sort(row.rounds.begin(), row.rounds.end());
    row.rounds.resize((row.rounds.size() + 1) / 2);
    std::vector<double> added;
    for (const auto& round : row.rounds) added.push_back(round.second);
    std::printf("%-24s %10.1f %8.1f\n", row.operation, row.rounds[0].first, median(added));
  }
}

template <class T, int C = 1>
nuqi::Image<T, C> noise(std::uint32_t bits = 1) {
  nuqi::Image<T, C> image(kSide, kSide);
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

const auto bytes = noise<std::uint8_t>(), more_bytes = noise<std::uint8_t>(2);
const auto selected = noise<std::uint8_t>(3);
const auto floats = noise<float>(), more_floats = noise<float>(2);
const auto colours = noise<std::uint8_t, 3>();
nuqi::Image<std::uint8_t> to_bytes(kSide, kSide), green(kSide, kSide), blue(kSide, kSide),
    half(kSide / 2, kSide / 2), twice(2 * kSide, 2 * kSide), all(kSide, kSide);
nuqi::Image<std::uint8_t, 3> to_colours(kSide, kSide);
nuqi::Image<std::int16_t> dx(kSide, kSide), dy(kSide, kSide);
nuqi::Image<float> to_floats(kSide, kSide), scores(kSide - 7, kSide - 7);
nuqi::Image<float, 6> vectors(kSide, kSide);
nuqi::Scratch scratch;
void* const buffer = scratch.get(1 << 20);  // one memory for both

void compare_pixels() {
  using nuqi::Mask;
  compare(
      "accumulate",
      [] {
        nuqiAdd_8u32f_C1IR(bytes.data(), step(bytes), to_floats.data(), step(to_floats), kRoi);
      },
      [] { nuqi::accumulate(bytes, to_floats); });
  compare(
      "accumulate, mask",
      [] {
        nuqiAdd_8u32f_C1IMR(bytes.data(), step(bytes), selected.data(), step(selected),
                            to_floats.data(), step(to_floats), kRoi);
      },
      [] { nuqi::accumulate(bytes, Mask(selected), to_floats); });
  compare(
      "abs_diff",
      [] {
        nuqiAbsDiff_8u_C1R(bytes.data(), step(bytes), more_bytes.data(), step(more_bytes),
                           to_bytes.data(), step(to_bytes), kRoi);
      },
      [] { nuqi::abs_diff(bytes, more_bytes, to_bytes); });
  static nuqi::Image<std::uint8_t> picture(3 * kSide, kSide);
  static const auto left = picture.roi(0, 0, kSide, kSide),
                    middle = picture.roi(kSide, 0, kSide, kSide),
                    right = picture.roi(2 * kSide, 0, kSide, kSide);
  compare(
      "abs_diff, one picture",
      [] {
        nuqiAbsDiff_8u_C1R(left.data(), step(left), middle.data(), step(middle), right.data(),
                           step(right), kRoi);
      },
      [] { nuqi::abs_diff(left, middle, right); });
  compare(
      "split",
      [] {
        std::uint8_t* const planes[] = {to_bytes.data(), green.data(), blue.data()};
        nuqiCopy_8u_C3P3R(colours.data(), step(colours), planes, step(to_bytes), kRoi);
      },
      [] { nuqi::split(colours, to_bytes, green, blue); });
  compare(
      "join",
      [] {
        const std::uint8_t* const planes[] = {to_bytes.data(), green.data(), blue.data()};
        nuqiCopy_8u_P3C3R(planes, step(to_bytes), to_colours.data(), step(to_colours), kRoi);
      },
      [] { nuqi::join(to_bytes, green, blue, to_colours); });
  compare(
      "motion_history",
      [] {
        nuqiUpdateMotionHistory_8u32f_C1IR(bytes.data(), step(bytes), to_floats.data(),
                                           step(to_floats), kRoi, 100, 10);
      },
      [] { nuqi::motion_history(bytes, to_floats, 100, 10); });
  compare(
      "arctan",
      [] {
        nuqibFastArctan_32f(floats.data(), more_floats.data(), to_floats.data(), kSide * kSide);
      },
      [] { nuqi::arctan(floats, more_floats, to_floats); });
  compare(
      "distance_transform",
      [] {
        const float metrics[] = {3, 4};
        nuqiDistanceTransform_3x3_8u32f_C1R(selected.data(), step(selected), to_floats.data(),
                                            step(to_floats), kRoi, metrics);
      },
      [] {
        nuqi::distance_transform(selected, to_floats, {3, 4});
      });
}

void compare_statistics() {
  const nuqi::Mask mask(selected);
  std::memset(all.data(), 255, kSide * kSide);
  const auto mean_std = [](const char* name, auto function, const auto& image) {
    compare(
        name,
        [&] {
          nuqi::MeanStd found{};
          function(image.data(), step(image), kRoi, &found.mean, &found.deviation);
          keep(found);
        },
        [&] { keep(nuqi::mean_std(image)); });
  };
  compare(
      "mean",
      [] {
        double found = 0, unused = 0;
        nuqiMean_StdDev_8u_C1R(bytes.data(), step(bytes), kRoi, &found, &unused);
        keep(found);
      },
      [] { keep(nuqi::mean(bytes)); });
  compare(
      "mean, mask",
      [] {
        double found = 0;
        nuqiMean_8u_C1MR(bytes.data(), step(bytes), selected.data(), step(selected), kRoi, &found);
        keep(found);
      },
      [&] { keep(nuqi::mean(bytes, mask)); });
  mean_std("mean_std", nuqiMean_StdDev_8u_C1R, bytes);
  mean_std("mean_std, float", nuqiMean_StdDev_32f_C1R, floats);
  compare(
      "mean_std, mask",
      [] {
        nuqi::MeanStd found{};
        nuqiMean_StdDev_8u_C1MR(bytes.data(), step(bytes), selected.data(), step(selected), kRoi,
                                &found.mean, &found.deviation);
        keep(found);
      },
      [&] { keep(nuqi::mean_std(bytes, mask)); });
  compare(
      "norm_l2",
      [] {
        double found = 0;
        nuqiNorm_L2_8u_C1MR(bytes.data(), step(bytes), all.data(), step(all), kRoi, &found);
        keep(found);
      },
      [] { keep(nuqi::norm_l2(bytes)); });
  compare(
      "norm_l2, mask",
      [] {
        double found = 0;
        nuqiNorm_L2_8u_C1MR(bytes.data(), step(bytes), selected.data(), step(selected), kRoi,
                            &found);
        keep(found);
      },
      [&] { keep(nuqi::norm_l2(bytes, mask)); });
  compare(
      "norm_rel_l1, mask",
      [] {
        double found = 0;
        nuqiNormRel_L1_8u_C1MR(bytes.data(), step(bytes), more_bytes.data(), step(more_bytes),
                               selected.data(), step(selected), kRoi, &found);
        keep(found);
      },
      [&] { keep(nuqi::norm_rel_l1(bytes, more_bytes, mask)); });
  compare(
      "min_max",
      [] {
        float min = 0, max = 0;
        PixelPoint min_at = {}, max_at = {};
        nuqiMinMaxIndx_8u_C1R(bytes.data(), step(bytes), kRoi, &min, &max, &min_at, &max_at);
        keep(min), keep(max), keep(min_at), keep(max_at);
      },
      [] { keep(nuqi::min_max(bytes)); });
}

// Hands a state to a filter, by the pool: where a state lies shows in the time, so both work with one.
template <class State, class Apply>
State* shared(State* state, nuqi::detail::StateKey key, const Apply& apply) {
  key.width = kSide;
  nuqi::detail::StatePool<State>::instance().keep(key, state);
  apply();
  return state;
}

void compare_filters() {
  using Key = nuqi::detail::StateKey;
  compare(
      "sobel3x3",
      [] { nuqiSobel3x3_Dy_8u16s_C1R(bytes.data(), step(bytes), dx.data(), step(dx), 0, kRoi); },
      [] { nuqi::sobel3x3(bytes, nuqi::Derivative::dy, dx); });
  compare(
      "scharr",
      [] { nuqiScharr_Dx_8u16s_C1R(bytes.data(), step(bytes), dx.data(), step(dx), kRoi, 1); },
      [] { nuqi::scharr(bytes, nuqi::Derivative::dx, dx, 1); });
  const auto row = [](const char* name, auto function, ConvolState* state, auto& filter) {
    compare(
        name,
        [=] {
          RoiSize roi = kRoi;
          function(bytes.data(), step(bytes), dx.data(), step(dx), &roi, state, 0);
        },
        [&] { filter(bytes, dx); });
  };
  static nuqi::BoxSum box_sum(3);
  static nuqi::Sobel sobel(1, 0);
  static nuqi::Laplace laplace(3);
  static ConvolState* const of_box_sum = [] {
    ConvolState* state = nullptr;
    nuqiBlurInitAlloc(kSide, 1, 3, &state);
    return shared(state, {Key::blur, 0, 1, {3}}, [] { box_sum(bytes, dx); });
  }();
  static ConvolState* const of_sobel = [] {
    ConvolState* state = nullptr;
    nuqiSobelInitAlloc(kSide, 1, 3, 0, 1, 0, &state);
    return shared(state, {Key::sobel, 0, 1, {3, 1}}, [] { sobel(bytes, dx); });
  }();
  static ConvolState* const of_laplace = [] {
    ConvolState* state = nullptr;
    nuqiLaplaceInitAlloc(kSide, 1, 3, &state);
    return shared(state, {Key::laplace, 0, 1, {3}}, [] { laplace(bytes, dx); });
  }();
  row("box_sum", nuqiBlur_8u16s_C1R, of_box_sum, box_sum);
  row("sobel", nuqiSobel_8u16s_C1R, of_sobel, sobel);
  row("laplace", nuqiLaplace_8u16s_C1R, of_laplace, laplace);

  static nuqi::Morphology square(nuqi::Element::rectangle(3, 3));
  static MorphState* const of_square = [] {
    MorphState* state = nullptr;
    nuqiMorphologyInitAlloc(kSide, 1, 1, {3, 3}, {1, 1}, 0, nullptr, &state);
    return shared(state, {Key::morphology, 0, 17, {0, 3, 3, 1, 1}},
                  [] { square.erode(bytes, to_bytes); });
  }();
  compare(
      "erode",
      [] {
        RoiSize roi = kRoi;
        nuqiErodeStrip_Rect_8u_C1R(bytes.data(), step(bytes), to_bytes.data(), step(to_bytes), &roi,
                                   of_square, 0);
      },
      [] { square.erode(bytes, to_bytes); });
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
      "min_eigen",
      [] {
        nuqiMinEigenVal_8u32f_C1R(bytes.data(), step(bytes), to_floats.data(), step(to_floats),
                                  kRoi, 3, 3, buffer);
      },
      [] {
        nuqi::min_eigen(bytes, to_floats, {3, 3}, scratch);
      });
  compare(
      "eigen_vectors",
      [] {
        nuqiEigenValsVecs_8u32f_C1R(bytes.data(), step(bytes), vectors.data(), step(vectors), kRoi,
                                    3, 3, buffer);
      },
      [] {
        nuqi::eigen_vectors(bytes, vectors, {3, 3}, scratch);
      });
  compare(
      "pyramid_down",
      [] {
        nuqiPyrDown_Gauss5x5_8u_C1R(bytes.data(), step(bytes), half.data(), step(half), kRoi,
                                    buffer);
      },
      [] { nuqi::pyramid_down(bytes, half, scratch); });
  compare(
      "pyramid_up",
      [] {
        nuqiPyrUp_Gauss5x5_8u_C1R(bytes.data(), step(bytes), twice.data(), step(twice), kRoi,
                                  buffer);
      },
      [] { nuqi::pyramid_up(bytes, twice, scratch); });
  const auto tpl = more_bytes.roi(10, 10, 8, 8);
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
        keep(region);
      },
      [] {
        keep(nuqi::flood_fill(to_bytes, {0, 0}, to_bytes(0, 0) == 0 ? 1 : 0,
                              nuqi::Connectivity::four, scratch));
      });
}

}  // namespace

// The argument is part of the names of the operations that are wanted.
int main(int argc, char** argv) {
  if (argc > 1) wanted = argv[1];
  constexpr int kRounds = 12;
  for (int round = 0; round < kRounds; ++round) {
    compare_pixels();
    compare_statistics();
    compare_filters();
    compare_scratch();
  }
  print();
}
