// Benchmarks of the flood fills, over pictures from one wide region to corridors that wind.
#include <cmath>
#include <map>
#include <string>

#include "fill/fill_pictures.h"
#include "fill/flood_fill_plain.h"
#include "support/registry.h"

namespace nuqi::bench {
namespace {

using test::BinaryPicture;

// A sea with islands.
BinaryPicture islands(RoiSize roi) {
  BinaryPicture picture(roi, 1);
  for (int y = 1; y < roi.height; ++y)
    for (int x = 0; x < roi.width; ++x) {
      const double u = x + 9 * std::sin(y / 23.0), v = y + 9 * std::sin(x / 31.0);
      picture.at(x, y) = std::sin(u / 11) * std::sin(v / 13) > 0.3 ? 0 : 1;
    }
  return picture;
}

// A page of letters of 7x9 pixels; the paper is filled.
BinaryPicture text(RoiSize roi) {
  BinaryPicture picture(roi, 1);
  test::Random random(1);
  for (int top = 2; top + 9 < roi.height; top += 14)
    for (int left = 2; left + 7 < roi.width; left += 9) {
      if (random.between(0, 5) == 0) continue;
      for (int stroke = 0; stroke < 3; ++stroke) {
        const bool upright = random.bits() % 2;
        const int at = random.between(0, upright ? 5 : 7);
        for (int i = 0; i < (upright ? 9 : 7); ++i)
          for (int thick = 0; thick < 2; ++thick)
            (upright ? picture.at(left + at + thick, top + i)
                     : picture.at(left + i, top + at + thick)) = 0;
      }
    }
  return picture;
}

// With a first row from which the pixels beside it are reached.
template <int percent>
BinaryPicture noise(RoiSize roi) {
  BinaryPicture picture = test::noise(roi, percent);
  std::fill(picture.pixels.begin(), picture.pixels.begin() + roi.width, 1);
  return picture;
}

// So many columns from the top to the bottom.
template <int width>
BinaryPicture column(RoiSize roi) {
  BinaryPicture picture(roi, 0);
  for (int y = 0; y < roi.height; ++y)
    for (int x = 0; x < width; ++x) picture.at(x, y) = 1;
  return picture;
}

// Teeth far apart that hang from the first row.
BinaryPicture fringe(RoiSize roi) {
  BinaryPicture picture(roi, 1);
  for (int y = 1; y < roi.height; ++y)
    for (int x = 0; x < roi.width; ++x) picture.at(x, y) = x % 64 == 0;
  return picture;
}

// Steps of two pixels down a diagonal.
BinaryPicture stairs(RoiSize roi) {
  BinaryPicture picture(roi, 0);
  for (int y = 0; y < roi.height; ++y)
    for (int x : {y, y + 1}) picture.at(x % roi.width, y) = 1;
  return picture;
}

BinaryPicture spot(RoiSize roi) {
  BinaryPicture picture(roi, 0);
  for (int i = 0; i < 10; ++i) picture.at(i % 4, i / 4) = 1;
  return picture;
}

// Light that changes slowly, and a little noise.
template <class T>
T shading(int x, int y, test::Random& random) {
  const double light = 128 + 60 * std::sin(x / 97.0) + 50 * std::sin(y / 71.0 + x / 200.0);
  return static_cast<T>(light + static_cast<double>(random.between(-100, 100)) / 100);
}

struct Scene {
  const char* name;
  BinaryPicture (*make)(RoiSize);  // null: shading
  RoiSize of = {0, 0};             // the image's own width and height, where they are not 0
  bool gradient = false;           // for these fills, too
};
constexpr RoiSize kLarge = {6000, 4000};
RoiSize size_of(const Scene& scene, RoiSize asked) {
  return {scene.of.width ? scene.of.width : asked.width,
          scene.of.height ? scene.of.height : asked.height};
}
constexpr Scene kScenes[] = {
    {"full", [](RoiSize roi) { return BinaryPicture(roi, 1); }},
    {"islands", islands},
    {"text", text},
    {"noise .6", noise<60>},
    {"noise .75", noise<75>},
    {"maze", test::maze, {0, 0}, true},
    {"spiral", test::spiral},
    {"comb", test::comb},
    {"checkerboard", test::checkerboard},
    {"legs", test::legs},
    {"fringe", fringe},
    {"stairs", stairs},
    {"column of 1", column<1>, {0, 0}, true},
    {"column of 3", column<3>},
    {"spot of 10", spot},
    {"spot of 10 of 24 million", spot, kLarge},
    {"full, 5 wide", [](RoiSize roi) { return BinaryPicture(roi, 1); }, {5, 0}, true},
    {"maze, 5 wide", test::maze, {5, 0}},
    {"full, 16 wide", [](RoiSize roi) { return BinaryPicture(roi, 1); }, {16, 0}},
};
constexpr Scene kShading = {"shading", nullptr};

// A picture, a copy of it, and a buffer.
template <class T>
struct Canvas {
  Canvas(const Scene& scene, RoiSize roi, int contrast)
      : roi(roi),
        image(static_cast<size_t>(roi.width) * roi.height),
        original(static_cast<size_t>(roi.width) * roi.height) {
    int32_t size = 0;
    nuqiFloodFillGetSize_Grad(roi, &size);
    buffer = std::make_unique<Buffer<uint8_t>>(size);
    std::fill(buffer->get(), buffer->get() + size, 0xA5);
    test::Random random(1);
    const BinaryPicture picture = scene.make ? scene.make(roi) : BinaryPicture({1, 1}, 0);
    size_t i = 0;
    for (int y = 0; y < roi.height; ++y)
      for (int x = 0; x < roi.width; ++x, ++i)
        original.get()[i] =
            scene.make ? static_cast<T>(picture.pixels[i] * contrast) : shading<T>(x, y, random);
    std::copy(original.get(), original.get() + i, image.get());
  }

  RoiSize roi;
  Buffer<T> image, original;
  std::unique_ptr<Buffer<uint8_t>> buffer;
  FillRegion region = {};
  int value = 2;  // the region's next one
};

template <class T>
Canvas<T>& canvas(const test::FillMember<T>& member, const Scene& scene, RoiSize size) {
  static std::map<std::string, std::unique_ptr<Canvas<T>>> made;
  const RoiSize roi = size_of(scene, size);
  auto& entry = made[member.name + std::string(scene.name) + std::to_string(size.width)];
  if (!entry) entry = std::make_unique<Canvas<T>>(scene, roi, member.gradient ? 100 : 1);
  return *entry;
}

template <class T>
test::FillArgs<T> args_of(Canvas<T>& c, int lower, int upper) {
  using Value = typename test::FillArgs<T>::Value;
  return {c.image.get(),  c.roi.width * int32_t(sizeof(T)),
          c.roi,          {0, 0},
          Value(2),       Value(lower),
          Value(upper),   &c.region,
          c.buffer->get()};
}

// An equality fill paints its region with two values by turns. A gradient fill's picture is copied anew
// each time, which the time includes, the plain fill's too.
template <class T, class Call>
auto run(const test::FillMember<T>& member, const Scene& scene, int lower, int upper,
         const Call& call) {
  return [=](const Images& im) {
    Canvas<T>& c = canvas(member, scene, im.roi);
    return [call, member, &c, lower, upper] {
      test::FillArgs<T> args = args_of(c, lower, upper);
      if (member.gradient)
        std::copy(c.original.get(), c.original.get() + size_t(c.roi.width) * c.roi.height,
                  c.image.get());
      else
        args.value = c.value = 5 - c.value;
      call(args);
    };
  };
}

template <class T>
void register_fill(const test::FillMember<T>& member, const Scene& scene, int lower, int upper) {
  std::string name = std::string(member.name) + " (" + scene.name;
  if (lower != upper) name += ", unequal deltas";
  name += ")";
  for (RoiSize roi : kSizes) {
    if (roi.width < 64 || (scene.of.height != 0 && roi.width != 640)) continue;
    register_limit<Streams<sizeof(T)>, Streams<>, Streams<sizeof(T)>>(name, roi);
    register_function(name, roi, run(member, scene, lower, upper, member.call));
    const auto plain = [&](const char* compiler, auto fill) {
      register_plain(name, compiler, roi,
                     run(member, scene, lower, upper, [=](const test::FillArgs<T>& args) {
                       fill(args, member.gradient, member.diagonal);
                     }));
    };
    plain("gcc", gcc::plain_fill<T>);
#if NUQI_PLAIN_CLANG
    plain("clang", clang::plain_fill<T>);
#endif
  }
}

void register_fills() {
  test::for_each_flood_fill([]<class T>(const test::FillMember<T>& member) {
    if (member.gradient) {
      register_fill(member, kShading, 2, 2);
      register_fill(member, kShading, 2, 3);
      for (const Scene& scene : kScenes)
        if (scene.gradient) register_fill(member, scene, 2, 2);
    } else {
      for (const Scene& scene : kScenes) register_fill(member, scene, 0, 0);
    }
  });
}

const Family family(register_fills);

}  // namespace
}  // namespace nuqi::bench
