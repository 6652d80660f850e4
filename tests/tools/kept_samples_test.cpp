// 16 bits and alpha pass through the commands that can keep them, against naive integers.
#include <algorithm>
#include <cstdlib>

#include "pictures/row_reader.h"
#include "run_program.h"

namespace tools::test {
namespace {

template <class T>
class KeptSamples : public ProgramTest {
 protected:
  // Alpha is 0 in a quarter of the pixels.
  PictureOf<T> noise(RoiSize size, int channels) {
    PictureOf<T> picture(size, channels);
    for (size_t i = 0; i < picture.pixels.size(); ++i) {
      state_ = state_ * 1664525 + 1013904223;
      const bool clear = channels == 4 && i % 4 == 3 && state_ >> 30 == 0;
      picture.pixels[i] = clear ? T(0) : T(state_ >> 8 & kGreatest<T>);
    }
    return picture;
  }

  PictureOf<T> read(const std::string& name) const {
    const auto rows = open_rows(path(name), Form::stored, Depth::stored);
    EXPECT_EQ(rows->format().bits, kBits<T>) << name;
    return rows->format().bits == kBits<T> ? whole_picture<T>(*rows, name) : PictureOf<T>();
  }

  // Of what the command writes and prints nothing is a note.
  PictureOf<T> result_of(std::vector<std::string> arguments) const {
    const Outcome outcome = run(arguments);
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    return read("out.png");
  }

  uint32_t state_ = 1;
};

using Depths = testing::Types<uint8_t, float>;
TYPED_TEST_SUITE(KeptSamples, Depths);

// The pixel at (x, y) or the nearest one.
template <class T>
const T* pixel_near(const PictureOf<T>& picture, int x, int y) {
  x = std::clamp(x, 0, picture.size.width - 1);
  y = std::clamp(y, 0, picture.size.height - 1);
  return &picture.pixels[size_t(y) * picture.row_samples() + size_t(x * picture.channels)];
}

// The mean of the pixels around (x, y), those `reach` away included, by the weights of `weight(u) * weight(v)`,
// and of colours by alpha; `at(u, v)` is the pixel u columns and v rows away.
template <class T, class Weight, class At>
void put_mean(int channels, int reach, const Weight& weight, const At& at, T* pixel) {
  for (int c = 0; c < channels; ++c) {
    uint64_t sum = 0, weights = 0;
    for (int v = -reach; v <= reach; ++v) {
      for (int u = -reach; u <= reach; ++u) {
        const T* const near = at(u, v);
        const uint64_t alpha = channels == 4 && c < 3 ? uint64_t(near[3]) : 1;
        sum += weight(u) * weight(v) * alpha * uint64_t(near[c]);
        weights += weight(u) * weight(v) * alpha;
      }
    }
    pixel[c] = weights == 0 ? T(0) : T((sum + weights / 2) / weights);
  }
}

template <class T>
PictureOf<T> blurred(const PictureOf<T>& in, int size) {
  PictureOf<T> out(in.size, in.channels);
  T* pixel = out.pixels.data();
  for (int y = 0; y < in.size.height; ++y) {
    for (int x = 0; x < in.size.width; ++x, pixel += in.channels) {
      put_mean(
          in.channels, size / 2, [](int) { return 1u; },
          [&](int u, int v) { return pixel_near(in, x + u, y + v); }, pixel);
    }
  }
  return out;
}

// Mirrored at the edges, without those; of even sizes.
template <class T>
PictureOf<T> halved(const PictureOf<T>& in) {
  const int width = in.size.width, height = in.size.height;
  const auto mirrored = [](int i, int count) {
    return i < 0 ? -i : i < count ? i : 2 * count - 2 - i;
  };
  PictureOf<T> out({width / 2, height / 2}, in.channels);
  T* pixel = out.pixels.data();
  for (int y = 0; y < height; y += 2) {
    for (int x = 0; x < width; x += 2, pixel += in.channels) {
      put_mean(
          in.channels, 2, [](int i) { return i == 0       ? 6u
                                             : i % 2 == 0 ? 1u
                                                          : 4u; },
          [&](int u, int v) {
            return pixel_near(in, mirrored(x + u, width), mirrored(y + v, height));
          },
          pixel);
    }
  }
  return out;
}

TYPED_TEST(KeptSamples, BlurWeighsColoursByAlpha) {
  for (const int channels : {1, 3, 4}) {
    for (const int size : {3, 7}) {
      auto in = this->noise({37, 90}, channels);  // several strips
      if (size == 7) std::fill(in.pixels.begin(), in.pixels.end(), TypeParam(kGreatest<TypeParam>));
      write_picture(this->path("in.png"), in);
      const auto out = this->result_of(
          {"blur", this->path("in.png"), this->path("out.png"), "--size", std::to_string(size)});
      EXPECT_TRUE(out.pixels == blurred(in, size).pixels) << channels << ", " << size;
    }
  }
}

TYPED_TEST(KeptSamples, PyramidWeighsColoursByAlpha) {
  for (const int channels : {1, 3, 4}) {
    const auto in = this->noise({12, 8}, channels);
    write_picture(this->path("in.png"), in);
    const std::string pattern = this->path("%d.png");
    ASSERT_EQ(this->run({"pyramid", this->path("in.png"), pattern, "--levels", "2"}).code, 0);
    EXPECT_TRUE(this->read("0.png").pixels == in.pixels);
    EXPECT_TRUE(this->read("1.png").pixels == halved(in).pixels) << channels;
    EXPECT_TRUE(this->read("2.png").pixels == halved(halved(in)).pixels) << channels;
    const Outcome differences = this->run(
        {"pyramid", this->path("in.png"), this->path("out.png"), "--levels", "2", "--laplacian"});
    EXPECT_NE(differences.out.find("a largest deviation of 0,"), std::string::npos);
    EXPECT_EQ(this->read("out.png").channels, std::min(channels, 3));
  }
}

TYPED_TEST(KeptSamples, CornersAreDrawnOverThePicture) {
  using T = TypeParam;
  PictureOf<T> in({24, 20}, 4);
  for (size_t i = 0; i < in.pixels.size(); ++i) {
    const bool inside = i / 4 % 24 >= 12 && i / 96 >= 10;
    in.pixels[i] = T(i % 4 == 3 ? kGreatest<T> - i / 4 % 7 : inside ? 3 : kGreatest<T> - i % 5);
  }
  write_picture(this->path("in.png"), in);
  const auto out =
      this->result_of({"corners", this->path("in.png"), this->path("out.png"), "--top", "1"});
  ASSERT_EQ(out.channels, 4);
  const T white = T(kGreatest<T>), red = white, green = T(138 * (kGreatest<T> / 255));
  int drawn = 0, rings = 0;
  for (size_t i = 0; i < in.pixels.size(); i += 4) {
    const T *const before = &in.pixels[i], *const after = &out.pixels[i];
    if (std::equal(before, before + 4, after)) continue;
    ++drawn;
    EXPECT_EQ(after[3], white);
    rings += after[0] == red && after[1] == green;
  }
  EXPECT_GT(rings, 10);
  EXPECT_LT(drawn, 60);
}

TYPED_TEST(KeptSamples, GradientIsOfAllBitsAndAlphaStays) {
  for (const int channels : {1, 3, 4}) {
    const auto in = this->noise({37, 90}, channels);
    write_picture(this->path("in.png"), in);
    const auto out =
        this->result_of({"gradient", this->path("in.png"), this->path("out.png"), "--size", "3x1"});
    ASSERT_EQ(out.pixels.size(), in.pixels.size());
    for (size_t i = 0; i < out.pixels.size(); ++i) {
      const int c = int(i) % channels, x = int(i) / channels % 37, y = int(i) / channels / 37;
      const auto [least, most] =
          std::minmax({pixel_near(in, x - 1, y)[c], in.pixels[i], pixel_near(in, x + 1, y)[c]});
      ASSERT_EQ(out.pixels[i], c == 3 ? in.pixels[i] : most - least) << i;
    }
  }
}

TYPED_TEST(KeptSamples, SplitAndJoinAreInverse) {
  const auto in = this->noise({37, 3}, 4);
  write_picture(this->path("in.png"), in);
  std::vector<std::string> parts;
  for (const char* name : {"r.png", "g.png", "b.png", "a.pgm"}) parts.push_back(this->path(name));
  ASSERT_EQ(
      this->run({"split", this->path("in.png"), parts[0], parts[1], parts[2], "--alpha", parts[3]})
          .code,
      0);
  EXPECT_EQ(this->read("g.png").pixels[5], in.pixels[21]);
  EXPECT_EQ(this->read("a.pgm").pixels[5], in.pixels[23]);
  const auto out = this->result_of(
      {"join", parts[0], parts[1], parts[2], this->path("out.png"), "--alpha", parts[3]});
  EXPECT_EQ(out.channels, 4);
  EXPECT_TRUE(out.pixels == in.pixels);

  write_picture(this->path("in.png"), this->noise({2, 1}, 3));  // opaque
  ASSERT_EQ(
      this->run({"split", this->path("in.png"), parts[0], parts[1], parts[2], "--alpha", parts[3]})
          .code,
      0);
  EXPECT_EQ(this->read("a.pgm").pixels, std::vector<TypeParam>(2, TypeParam(kGreatest<TypeParam>)));
}

TYPED_TEST(KeptSamples, DiffIsBlackWhereBothLookTheSame) {
  using T = TypeParam;
  const T most = T(kGreatest<T>), half = T(kGreatest<T> / 2 + 1);
  PictureOf<T> a({4, 1}, 4), b({4, 1}, 4);
  a.pixels = {9, 9, 9, 0, 9, 9, 9, most, 0, 0, 0, half, most, 0, 0, half};
  b.pixels = {0, 5, 0, 0, 9, 4, 9, most, 0, 0, most, half, most, 0, 0, most};
  write_picture(this->path("a.png"), a);
  write_picture(this->path("b.png"), b);
  const std::string out = this->path("out.png");
  const T rest = most - half;
  EXPECT_EQ(this->result_of({"diff", this->path("a.png"), this->path("b.png"), out}).pixels,
            (std::vector<T>{0, 0, 0, 0, 5, 0, 0, 0, half, rest, rest, rest}));
  write_picture(this->path("grey.png"), this->noise({4, 1}, 1));
  EXPECT_EQ(this->result_of({"diff", this->path("grey.png"), this->path("grey.png"), out}).pixels,
            std::vector<T>(4, 0));
}

using Widths = KeptSamples<float>;

TEST_F(Widths, PicturesOf8BitsJoinThoseOf16) {
  const std::string bytes = write_grey("bytes.png", {2, 1}, {1, 255}), out = path("out.png");
  Plane<float> plane({2, 1});
  plane.values = {300, 65535};
  write_picture(path("wide.png"), picture_of(plane));
  EXPECT_EQ(result_of({"join", bytes, path("wide.png"), bytes, out}).pixels,
            (std::vector<float>{257, 300, 257, 65535, 65535, 65535}));
  EXPECT_EQ(result_of({"diff", bytes, path("wide.png"), out}).pixels, (std::vector<float>{43, 0}));
}

TEST_F(Widths, FilesKeepWhatTheirFormatKnows) {
  const PictureOf<float> in = noise({5, 4}, 4);
  write_picture(path("in.png"), in);
  const auto copied_to = [&](const std::string& name) {
    return run({"erode", path("in.png"), path(name), "--size", "1x1"}).err;
  };
  EXPECT_EQ(copied_to("out.pam"), "");
  EXPECT_TRUE(read("out.pam").pixels == in.pixels);
  EXPECT_EQ(copied_to("out.ppm"), "nuqi: note: " + path("out.ppm") +
                                      ": PNM keeps no alpha, the picture is laid over white\n");
  EXPECT_EQ(read("out.ppm").channels, 3);
  EXPECT_NE(copied_to("out.jpg").find("JPEG keeps 8 bits, 16 are rounded"), std::string::npos);
}

}  // namespace
}  // namespace tools::test
