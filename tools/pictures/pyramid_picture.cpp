// Levels of a pyramid of pictures, and the differences between them.
#include "pictures/pyramid_picture.h"

#include <algorithm>
#include <cstdlib>
#include <nuqi/nuqi.hpp>
#include <type_traits>

#include "pictures/weighted_planes.h"

namespace tools {
namespace {

// `from` at (x, y) of `to`, or what of it has room there.
template <class T>
void place(const PictureOf<T>& from, PictureOf<T>& to, int32_t x, int32_t y) {
  const size_t channels = size_t(from.channels);
  const size_t width = channels * size_t(std::min(from.size.width, to.size.width - x));
  const int32_t height = std::min(from.size.height, to.size.height - y);
  for (int32_t row = 0; row < height; ++row) {
    std::copy_n(&from.pixels[size_t(row) * from.row_samples()], width,
                &to.pixels[size_t(y + row) * to.row_samples() + size_t(x) * channels]);
  }
}

struct Down {
  static constexpr uint32_t kWeight = 256;  // that its sums are divided by
  static constexpr auto* kBytes = nuqiPyrDownGetBufSize_Gauss5x5;
  static RoiSize size(RoiSize size) { return {size.width / 2, size.height / 2}; }
  template <class Src, class Dst>
  static void call(const Src& src, Dst dst, nuqi::Scratch& scratch) {
    nuqi::pyramid_down(src, dst, scratch);
  }
};

struct Up {
  static constexpr uint32_t kWeight = 64;
  static constexpr auto* kBytes = nuqiPyrUpGetBufSize_Gauss5x5;
  static RoiSize size(RoiSize size) { return {2 * size.width, 2 * size.height}; }
  template <class Src, class Dst>
  static void call(const Src& src, Dst dst, nuqi::Scratch& scratch) {
    nuqi::pyramid_up(src, dst, scratch);
  }
};

template <class Level, class Src, class Dst>
void call_timed(const Src& src, const Dst& dst, Stopwatch& calls) {
  constexpr int32_t kDataType = std::is_same_v<typename Src::element, float> ? 9 : 1;
  nuqi::Scratch scratch;
  fetch(scratch, Level::kBytes, int32_t(src.width()), kDataType, Src::channels());
  calls.time([&] { Level::call(src, dst, scratch); });
}

template <class Level>
Picture level_of_bytes(const Picture& src, Stopwatch& calls) {
  Picture dst(Level::size(src.size), src.channels);
  if (src.channels == 1) {
    call_timed<Level>(view_of(src).as<1>(), view_of(dst).as<1>(), calls);
  } else {
    call_timed<Level>(view_of(src).as<3>(), view_of(dst).as<3>(), calls);
  }
  return dst;
}

// Floats hold the sums exactly: 16 bits times the weight are 24.
template <class Level, class T>
PictureOf<T> level_of_planes(const PictureOf<T>& src, Stopwatch& calls) {
  WeightedPlanes<T, float> planes(src.channels);
  planes.take(src.pixels.data(), src.pixels.size() / size_t(src.channels));
  std::vector<Plane<float>> results;
  for (size_t i = 0; i < planes.count(); ++i) {
    results.emplace_back(Level::size(src.size));
    const nuqi::View plane(planes.plane(i), src.size.width, src.size.height);
    call_timed<Level>(plane, nuqi::as_view(results[i]), calls);
  }
  PictureOf<T> dst(Level::size(src.size), src.channels);
  for (size_t i = 0; i < results[0].values.size(); ++i) {
    planes.put([&](size_t p) { return results[p].values[i] * Level::kWeight; }, Level::kWeight,
               &dst.pixels[i * size_t(src.channels)]);
  }
  return dst;
}

template <class Level, class T>
PictureOf<T> level_of(const PictureOf<T>& src, Stopwatch& calls) {
  if constexpr (std::is_same_v<T, uint8_t>) {
    if (src.channels < 4) return level_of_bytes<Level>(src, calls);
  }
  return level_of_planes<Level>(src, calls);
}

// To `size`: twice the picture's, or one pixel less.
template <class T>
PictureOf<T> level_up(const PictureOf<T>& picture, RoiSize size) {
  Stopwatch calls;
  const PictureOf<T> up = level_of<Up>(picture, calls);
  PictureOf<T> result(size, picture.channels);
  place(up, result, 0, 0);
  return result;
}

template <class T>
PictureOf<T> picture_of(const Differences& differences, const PictureOf<T>& level) {
  PictureOf<T> picture(level.size, level.channels);
  const int32_t most = kGreatest<T>;
  std::transform(differences.begin(), differences.end(), picture.pixels.begin(),
                 [=](int32_t value) { return T(std::clamp(most / 2 + 1 + value, 0, most)); });
  return picture;
}

}  // namespace

int most_levels(RoiSize size) {
  int levels = 0;
  for (int64_t side = 1; side < std::max(size.width, size.height); side *= 2) ++levels;
  return levels;
}

template <class T>
PictureOf<T> made_even(const PictureOf<T>& picture) {
  const auto [width, height] = picture.size;
  PictureOf<T> even({width + width % 2, height + height % 2}, picture.channels);
  // What sticks out is covered by the copies before it.
  for (const int32_t y : {height % 2, 0}) {
    for (const int32_t x : {width % 2, 0}) place(picture, even, x, y);
  }
  return even;
}

template <class T>
std::vector<PictureOf<T>> levels_of(const PictureOf<T>& picture, int count, Stopwatch& calls) {
  std::vector<PictureOf<T>> levels = {picture};
  for (int i = 0; i < count; ++i) {
    levels.push_back(level_of<Down>(made_even(levels.back()), calls));
  }
  return levels;
}

template <class T>
Differences differences_of(const PictureOf<T>& level, const PictureOf<T>& below) {
  const PictureOf<T> up = level_up(below, level.size);
  Differences result(level.pixels.size());
  std::transform(level.pixels.begin(), level.pixels.end(), up.pixels.begin(), result.begin(),
                 [](T a, T b) { return int32_t(a - b); });
  return result;
}

template <class T>
PictureOf<T> rebuilt_level(const Differences& differences, const PictureOf<T>& below,
                           RoiSize size) {
  PictureOf<T> result = level_up(below, size);
  std::transform(differences.begin(), differences.end(), result.pixels.begin(),
                 result.pixels.begin(), [](int32_t a, T b) { return T(a + int32_t(b)); });
  return result;
}

template <class T>
std::vector<Differences> differences_of(const std::vector<PictureOf<T>>& levels) {
  std::vector<Differences> all;
  for (size_t i = 0; i + 1 < levels.size(); ++i) {
    all.push_back(differences_of(levels[i], levels[i + 1]));
  }
  return all;
}

template <class T>
PictureOf<T> rebuilt(const std::vector<Differences>& differences,
                     const std::vector<PictureOf<T>>& levels) {
  PictureOf<T> result = levels.back();
  for (size_t i = differences.size(); i-- > 0;) {
    result = rebuilt_level(differences[i], result, levels[i].size);
  }
  return result;
}

template <class T>
int largest_deviation(const PictureOf<T>& a, const PictureOf<T>& b) {
  int largest = 0;
  for (size_t i = 0; i < a.pixels.size(); ++i) {
    largest = std::max(largest, std::abs(int(a.pixels[i]) - int(b.pixels[i])));
  }
  return largest;
}

template <class T>
std::vector<PictureOf<T>> pictures_of(const std::vector<Differences>& differences,
                                      const std::vector<PictureOf<T>>& levels) {
  std::vector<PictureOf<T>> pictures;
  for (size_t i = 0; i < differences.size(); ++i) {
    pictures.push_back(picture_of(differences[i], levels[i]));
  }
  pictures.push_back(levels.back());
  return pictures;
}

template <class T>
PictureOf<T> sheet_of(const std::vector<PictureOf<T>>& levels) {
  const RoiSize top = levels[0].size;
  int32_t below = 0;
  for (size_t i = 1; i < levels.size(); ++i) below += levels[i].size.width;
  const int32_t row = levels.size() > 1 ? levels[1].size.height : 0;
  PictureOf<T> sheet({std::max(top.width, below), top.height + row}, levels[0].channels);
  std::fill(sheet.pixels.begin(), sheet.pixels.end(), T(kGreatest<T>));
  place(levels[0], sheet, 0, 0);
  int32_t x = 0;
  for (size_t i = 1; i < levels.size(); ++i) {
    place(levels[i], sheet, x, top.height);
    x += levels[i].size.width;
  }
  return sheet;
}

#define NUQI_INSTANTIATE(T)                                                              \
  template PictureOf<T> made_even(const PictureOf<T>&);                                  \
  template std::vector<PictureOf<T>> levels_of(const PictureOf<T>&, int, Stopwatch&);    \
  template Differences differences_of(const PictureOf<T>&, const PictureOf<T>&);         \
  template PictureOf<T> rebuilt_level(const Differences&, const PictureOf<T>&, RoiSize); \
  template std::vector<Differences> differences_of(const std::vector<PictureOf<T>>&);    \
  template PictureOf<T> rebuilt(const std::vector<Differences>&,                         \
                                const std::vector<PictureOf<T>>&);                       \
  template int largest_deviation(const PictureOf<T>&, const PictureOf<T>&);              \
  template std::vector<PictureOf<T>> pictures_of(const std::vector<Differences>&,        \
                                                 const std::vector<PictureOf<T>>&);      \
  template PictureOf<T> sheet_of(const std::vector<PictureOf<T>>&);
NUQI_INSTANTIATE(uint8_t)
NUQI_INSTANTIATE(float)
#undef NUQI_INSTANTIATE

}  // namespace tools
