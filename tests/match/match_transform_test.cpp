// Tests of template matching where transforms pay: large templates of bytes, and many places.
#include "match/match_template_fixture.h"
#include "support/every_isa.h"

namespace nuqi::test {
namespace {

enum class Picture { least, most, ends, ramp, noise };
constexpr int kPictures = 5;

template <class T>
void paint(WalledImage<T>& image, int width, Picture picture, Random& random) {
  using Limits = std::numeric_limits<T>;
  int number = 0;
  uint64_t bits = 0;
  image.fill([&] {
    const int i = number++;
    bits = i % 8 == 0 ? random.bits() : bits >> 8;
    switch (picture) {
      case Picture::least: return Limits::min();
      case Picture::most: return Limits::max();
      case Picture::ends: return bits & 1 ? Limits::max() : Limits::min();
      case Picture::ramp: return static_cast<T>(i % width + i / width * 3);
      default: return static_cast<T>(bits);
    }
  });
}

// By the definition.
template <class T>
int64_t products_at(const std::vector<T>& src, int width, const std::vector<T>& tpl, RoiSize roi,
                    PixelPoint place) {
  int64_t sum = 0;
  for (int r = 0; r < roi.height; ++r) {
    const T* const row = src.data() + (place.y + r) * width + place.x;
    int in_row = 0;
    for (int c = 0; c < roi.width; ++c) in_row += row[c] * tpl[r * roi.width + c];
    sum += in_row;
  }
  return sum;
}

class MatchTransform : public EveryIsa {
 protected:
  // The corners of the result and some other places, of Corr in the buffer that it asks for.
  template <class T>
  void expect_products(const MatchMember<T>& member, const Shape& shape, Picture picture) {
    SCOPED_TRACE(testing::Message() << shape << " picture " << static_cast<int>(picture));
    Fixture<T> fixture(member, shape, random_.between(0, 70));
    paint(fixture.src, shape.src.width, picture, random_);
    paint(fixture.tpl, shape.tpl.width, picture, random_);
    for (size_t i = 0; i < fixture.buffer.size(); ++i)
      fixture.buffer.data()[i] = static_cast<uint8_t>(i * 37 >> 2);
    const Running now(member.name, shape.src);
    ASSERT_EQ(member.call(fixture.args()), StatusOk);
    const auto src = fixture.src.pixels(), tpl = fixture.tpl.pixels();
    const auto result = fixture.dst.pixels();
    const RoiSize dst = result_size(shape.src, shape.tpl);
    for (int i = 0; i < 20; ++i) {
      const PixelPoint place =
          i < 4 ? PixelPoint{i % 2 * (dst.width - 1), i / 2 * (dst.height - 1)}
                : PixelPoint{random_.between(0, dst.width - 1), random_.between(0, dst.height - 1)};
      const int64_t products = products_at(src, shape.src.width, tpl, shape.tpl, place);
      ASSERT_EQ(result[place.y * dst.width + place.x], static_cast<float>(products))
          << "at " << place.x << ", " << place.y;
    }
  }
  // All measures everywhere.
  void expect_agreement(const Shape& shape, Picture picture) {
    for_each_match([&]<class T>(const MatchMember<T>& member) {
      if (HasFatalFailure() || sizeof(T) != 1) return;
      Fixture<T> fixture(member, shape, random_.between(0, 70));
      paint(fixture.src, shape.src.width, picture, random_);
      paint(fixture.tpl, shape.tpl.width, picture, random_);
      fixture.expect_agreement(member);
    });
  }
  Random random_{7};
};
NUQI_FOR_EVERY_ISA(MatchTransform);

// Results are so many that transforms pay from some 20 to 50 pixels a side on, depending on the level; buffers
// grow with the source's height and have room for them.
TEST_P(MatchTransform, TemplatesOfEverySize) {
  for (int width = 1; width <= 70; ++width)
    for (int height = 1; height <= 70; ++height) {
      const RoiSize dst = width < 20 ? RoiSize{random_.between(1, 40), random_.between(1, 20)}
                                     : RoiSize{random_.between(40, 70), random_.between(300, 340)};
      Shape shape = shape_for(dst, {width, height});
      shape.wall = height % 2 ? Wall::before : Wall::after;
      const Picture picture = static_cast<Picture>((width + 2 * height) % kPictures);
      for_each_match([&]<class T>(const MatchMember<T>& member) {
        if constexpr (sizeof(T) == 1)
          if (member.measure == MatchMeasure::corr &&
              std::is_signed_v<T> == ((width + height) % 2 == 1))
            expect_products(member, shape, picture);
      });
      if (HasFatalFailure()) return;
    }
}

// One tile and a shorter chunk; several tiles; a source narrower than a transform.
TEST_P(MatchTransform, AllMeasuresAgreeWithTheReference) {
  const auto check = [&](RoiSize dst, RoiSize tpl, Picture picture) {
    Shape shape = shape_for(dst, tpl);
    shape.padding = {3, 70, 5};
    expect_agreement(shape, picture);
  };
  check({66, 270}, {64, 33}, Picture::noise);
  check({140, 66}, {64, 64}, Picture::ends);
  check({41, 301}, {50, 21}, Picture::noise);
}

// Their sums are added up: of 4,096 pixels each, of less at the template's ends.
TEST_P(MatchTransform, SeveralPieces) {
  for (RoiSize tpl : {RoiSize{129, 130}, {64, 170}, {200, 70}})
    expect_agreement(shape_for({48, 35}, tpl), Picture::ends);
}

// More pixels than 32 bits hold the sum of: 66,051.
TEST_P(MatchTransform, SumsBeyond32Bits) {
  const Shape shape = shape_for({40, 33}, {258, 257});
  for_each_match([&]<class T>(const MatchMember<T>& member) {
    if (sizeof(T) != 1 || member.measure == MatchMeasure::sq_diff_normed ||
        member.measure == MatchMeasure::corr_normed || member.measure == MatchMeasure::coeff)
      return;
    Fixture<T> fixture(member, shape);
    paint(fixture.src, shape.src.width, Picture::least, random_);
    paint(fixture.tpl, shape.tpl.width, std::is_signed_v<T> ? Picture::least : Picture::most,
          random_);
    if (!std::is_signed_v<T>) paint(fixture.src, shape.src.width, Picture::most, random_);
    fixture.expect_agreement(member);
  });
}

}  // namespace
}  // namespace nuqi::test
