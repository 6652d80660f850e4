// Filters and morphology: whole images and strips of them, against the C functions.
#include <algorithm>
#include <cstdint>
#include <vector>

#include "support.h"

namespace {

using nuqi::Element;
using nuqi::Extremum;
using nuqi::Image;
using nuqi::View;
using namespace nuqi::test;

// One call of a C function with a state of its own, made for the very width.
template <class D, class State, class T, class Call, class Make>
Image<D> by_state(const Image<T>& src, const Call& call, const Make& make) {
  State* state = nullptr;
  EXPECT_EQ(make(roi_of(src).width, &state), StatusOk);
  Image<D> dst(src.width(), src.height());
  RoiSize roi = roi_of(src);
  EXPECT_EQ(call(src.data(), step(src), dst.data(), step(dst), &roi, state, 0), StatusOk);
  return dst;
}

constexpr std::int32_t kBytes = 1, kFloats = 9;

// One object serves widths and types in any order.
TEST(Strips, FiltersGiveWhatCGives) {
  for (const int size : {3, 5, 7}) {
    nuqi::BoxSum box(size);
    nuqi::Sobel sobel(1, size - 2, size);
    nuqi::Laplace laplace(size);
    const auto expect = [](auto& filter, const auto& src, auto* function, const auto& make) {
      using D = std::conditional_t<std::is_same_v<std::decay_t<decltype(src(0, 0))>, float>, float,
                                   std::int16_t>;
      Image<D> dst(src.width(), src.height());
      filter(src, dst);
      EXPECT_TRUE(equal(dst, (by_state<D, ConvolState>(src, function, make))));
    };
    const auto box_state = [=](std::int32_t type) {
      return [=](std::int32_t width, ConvolState** state) {
        return nuqiBlurInitAlloc(width, type, size, state);
      };
    };
    const auto laplace_state = [=](std::int32_t type) {
      return [=](std::int32_t width, ConvolState** state) {
        return nuqiLaplaceInitAlloc(width, type, size, state);
      };
    };
    const auto sobel_state = [=](std::int32_t width, ConvolState** state) {
      return nuqiSobelInitAlloc(width, kBytes, size, 0, 1, size - 2, state);
    };
    for (const int width : {40, 1, 64, 65, 7, 300}) {
      const auto bytes = random_image<std::uint8_t>(width, 11);
      const auto chars = random_image<std::int8_t>(width, 9);
      const auto floats = random_image<float>(width, 10);
      expect(box, bytes, nuqiBlur_8u16s_C1R, box_state(kBytes));
      expect(box, chars, nuqiBlur_8s16s_C1R, box_state(kBytes));
      expect(box, floats, nuqiBlur_32f_C1R, box_state(kFloats));
      expect(sobel, bytes, nuqiSobel_8u16s_C1R, sobel_state);
      expect(laplace, bytes, nuqiLaplace_8u16s_C1R, laplace_state(kBytes));
      expect(laplace, floats, nuqiLaplace_32f_C1R, laplace_state(kFloats));
    }
  }
}

// Feeds strips of pseudo-random heights, none of which writes more than it says.
template <class D, class Filter, class Begin, class T, int C>
Image<D, C> in_strips(Filter& filter, const Begin& begin, const Image<T, C>& src,
                      std::uint32_t seed) {
  Image<D, C> dst(src.width(), src.height());
  std::int64_t given = 0;
  seed *= 2654435761u;
  begin();
  for (std::int64_t y = 0; y < src.height();) {
    seed = seed * 1664525u + 1013904223u;
    const std::int64_t rows = std::min<std::int64_t>(1 + (seed >> 24) % 9, src.height() - y);
    const Image<T, C> strip = [&] {  // which is gone when the next one comes
      Image<T, C> copy(src.width(), rows);
      for (std::int64_t i = 0; i < rows; ++i)
        std::copy_n(src.row(y + i), src.width() * C, copy.row(i));
      return copy;
    }();
    const std::int64_t due = filter.rows_due(rows);
    EXPECT_EQ(filter.feed(strip, dst.roi(0, given, dst.width(), due)), due);
    given += due;
    y += rows;
  }
  const std::int64_t left = filter.rows_left();
  EXPECT_EQ(given + left, src.height());
  EXPECT_EQ(filter.finish(dst.roi(0, given, dst.width(), left)), left);
  return dst;
}

template <class D, class Filter, class T>
void expect_strips(Filter& filter, const Image<T>& src) {
  Image<D> expected(src.width(), src.height());
  filter(src, expected);
  for (std::uint32_t seed = 0; seed < 8; ++seed) {
    const auto found = in_strips<D>(
        filter, [&] { filter.begin(); }, src, seed);
    ASSERT_TRUE(equal(found, expected)) << "seed " << seed;
  }
}

TEST(Strips, FiltersGiveTheSameInStrips) {
  for (const int height : {1, 2, 3, 4, 7, 40}) {
    SCOPED_TRACE(height);
    for (const int size : {3, 5, 7}) {
      nuqi::BoxSum box(size);
      nuqi::Sobel sobel(0, 1, size);
      nuqi::Laplace laplace(size);
      expect_strips<std::int16_t>(box, random_image<std::uint8_t>(33, height));
      expect_strips<float>(box, random_image<float>(33, height));
      expect_strips<std::int16_t>(sobel, random_image<std::int8_t>(33, height));
      expect_strips<float>(laplace, random_image<float>(33, height));
    }
  }
}

TEST(Strips, MorphologyGivesTheSameInStrips) {
  const auto shape = random_image<std::uint8_t>(4, 5);
  for (const Element& element :
       {Element::rectangle(3, 1), Element::rectangle(3, 6), Element::cross(5, 5).anchored(0, 4),
        Element::cross(3, 5).anchored(2, 0), Element::ellipse(5, 9), Element::arbitrary(shape)}) {
    nuqi::Morphology morphology(element);
    for (const int height : {1, 2, 5, 40}) {
      const auto bytes = random_image<std::uint8_t, 3>(17, height);
      const auto floats = random_image<float>(17, height);
      Image<std::uint8_t, 3> eroded(17, height);
      Image<float> dilated(17, height);
      morphology.erode(bytes, eroded);
      morphology.dilate(floats, dilated);
      for (std::uint32_t seed = 0; seed < 8; ++seed) {
        ASSERT_TRUE(equal(in_strips<std::uint8_t>(
                              morphology, [&] { morphology.begin(Extremum::least); }, bytes, seed),
                          eroded));
        ASSERT_TRUE(
            equal(in_strips<float>(
                      morphology, [&] { morphology.begin(Extremum::greatest); }, floats, seed),
                  dilated));
      }
    }
  }
}

TEST(Strips, RefuseWhatDoesNotFit) {
  const auto src = random_image<std::uint8_t>(20, 10), narrow = random_image<std::uint8_t>(19, 10);
  Image<std::int16_t> dst(20, 10), low(20, 5);
  Image<float> floats(20, 10);
  nuqi::Sobel sobel(1, 0);
  expect_throws(StatusBadArg, {[&] { sobel.feed(src, dst); },                // begin() is missing
                               [&] { sobel.begin(), sobel.finish(dst); }});  // no strip
  expect_throws(StatusBadSize, {[&] { sobel.feed(src, low); }});
  EXPECT_EQ(sobel.feed(src, dst), 9);
  expect_throws(StatusBadSize,
                {[&] { sobel.feed(narrow, dst); }, [&] { sobel.feed(floats, floats); }});
  EXPECT_EQ(sobel.feed(src, dst), 10);  // refused strips change nothing
  expect_throws(StatusBadSize,
                {[&] { sobel.finish(low.roi(0, 0, 19, 5)); }, [&] { sobel.finish(floats); }});
  EXPECT_EQ(sobel.finish(dst), 1);
  expect_throws(StatusBadArg, {[&] { sobel.finish(dst); }});

  Image<std::uint8_t> same_type(20, 10);
  nuqi::Morphology square(Element::rectangle(3, 3));
  EXPECT_EQ(square.erode(src, same_type, std::nothrow), StatusOk);
  square.begin(Extremum::least);
  for (const StatusCode status :
       {sobel(src, low, std::nothrow), nuqi::box_sum(src, dst, 4, std::nothrow),
        nuqi::sobel(src, dst, 3, 0, 3, std::nothrow),
        nuqi::laplace(Image<std::uint8_t>(), dst, 3, std::nothrow)})
    EXPECT_EQ(status, StatusBadSize);
  for (const StatusCode status :
       {nuqi::box_sum(floats, floats, 3, std::nothrow),
        status_of([&] { square.feed(same_type, same_type); }),
        square.erode(same_type, same_type, std::nothrow),
        nuqi::dilate(same_type, same_type, Element::cross(3, 3), std::nothrow)})
    EXPECT_EQ(status, StatusBadArg);
}

// Rows further apart than 2^31 bytes: C takes them one by one only.
TEST(Strips, RowsMayLieFarApart) {
  constexpr std::int64_t kApart = (std::int64_t{1} << 31) + 4096, kRows = 9;
  const Reserved from(kRows * kApart), to(kRows * kApart);
  if (!from.usable() || !to.usable()) GTEST_SKIP() << "not enough addresses";
  for (const std::int64_t rows : {std::int64_t{2}, kRows}) {
    const auto src = from.rows<std::uint8_t>(30, rows, kApart);
    const auto tight = random_image<std::uint8_t>(30, rows);
    for (std::int64_t y = 0; y < rows; ++y) std::copy_n(tight.row(y), 30, src.row(y));
    const auto slopes = to.rows<std::int16_t>(30, rows, kApart);
    Image<std::int16_t> expected(30, rows);
    nuqi::laplace(tight, expected, 7);
    nuqi::laplace(src, slopes, 7);
    EXPECT_TRUE(equal(slopes, expected));

    const auto eroded = to.rows<std::uint8_t>(30, rows, kApart);
    Image<std::uint8_t> expected_eroded(30, rows);
    nuqi::erode(tight, expected_eroded, Element::ellipse(3, 7));
    nuqi::erode(src, eroded, Element::ellipse(3, 7));
    EXPECT_TRUE(equal(eroded, expected_eroded));
  }
}

TEST(Morphology, ShapesGiveWhatCGives) {
  const auto src = random_image<float>(37, 20);
  const std::vector<std::int32_t> mask = {1, 0, 0, 0, 1, 1};
  const auto pixels = image_of<std::uint8_t>(
      3, 2, [&](int x, int y) { return 3 * mask[static_cast<std::size_t>(3 * y + x)]; });
  const auto expect = [&](const Element& element, std::int32_t shape, auto* erode, auto* dilate) {
    const auto make = [&](std::int32_t width, MorphState** state) {
      return nuqiMorphologyInitAlloc(width, kFloats, 1, element.size(), element.anchor(), shape,
                                     mask.data(), state);
    };
    Image<float> dst(37, 20);
    nuqi::erode(src, dst, element);
    EXPECT_TRUE(equal(dst, (by_state<float, MorphState>(src, erode, make))));
    nuqi::dilate(src, dst, element);
    EXPECT_TRUE(equal(dst, (by_state<float, MorphState>(src, dilate, make))));
  };
  expect(Element::rectangle(4, 3).anchored(0, 2), 0, nuqiErodeStrip_Rect_32f_C1R,
         nuqiDilateStrip_Rect_32f_C1R);
  expect(Element::cross(4, 3).anchored(0, 2), 1, nuqiErodeStrip_Cross_32f_C1R,
         nuqiDilateStrip_Cross_32f_C1R);
  expect(Element::arbitrary(pixels).anchored(2, 1), 100, nuqiErodeStrip_32f_C1R,
         nuqiDilateStrip_32f_C1R);
}

// Four channels go each on its own.
TEST(Morphology, TakesFourChannels) {
  const auto src = random_image<std::uint8_t, 4>(9, 8);
  Image<std::uint8_t, 4> dst(9, 8);
  nuqi::dilate(src, dst, Element::rectangle(2, 1).anchored(0, 0));
  each_pixel(src, [&](int x, int y) {
    for (int c = 0; c < 4; ++c)
      EXPECT_EQ(dst(x, y, c), std::max(src(x, y, c), src(std::min(x + 1, 8), y, c)));
  });
}

TEST(Morphology, EllipsesAreFilledAndSymmetric) {
  const std::vector<std::int32_t> cross = {0, 1, 0, 1, 1, 1, 0, 1, 0};
  EXPECT_EQ(Element::ellipse(3, 3).mask(), cross);
  EXPECT_EQ(Element::ellipse(3, 3).simplified().shape(), 1);
  for (const RoiSize size : {RoiSize{7, 7}, {8, 5}, {1, 4}, {31, 12}}) {
    const Element element = Element::ellipse(size.width, size.height);
    const auto inside = [&](int x, int y) {
      return element.mask()[static_cast<std::size_t>(y) * static_cast<std::size_t>(size.width) +
                            static_cast<std::size_t>(x)];
    };
    for (int y = 0; y < size.height; ++y) {
      int runs = 0;
      for (int x = 0; x < size.width; ++x) {
        runs += inside(x, y) != 0 && (x == 0 || inside(x - 1, y) == 0) ? 1 : 0;
        EXPECT_EQ(inside(x, y), inside(size.width - 1 - x, y));
        EXPECT_EQ(inside(x, y), inside(x, size.height - 1 - y));
      }
      EXPECT_EQ(runs, 1) << "row " << y;
    }
    EXPECT_EQ(inside(0, size.height / 2), 1);
    EXPECT_EQ(inside(size.width / 2, 0), 1);
  }
}

// An opening gives nothing that is brighter and, done twice, changes nothing more: only with the second
// element turned.
TEST(Morphology, OpeningsAreIdempotent) {
  Image<std::uint8_t> shape(3, 2);
  shape(0, 0) = shape(1, 0) = shape(2, 1) = 1;
  const Element element = Element::arbitrary(shape).anchored(0, 1);
  const auto src = random_image<std::uint8_t>(40, 30);
  const auto open = [&](const Image<std::uint8_t>& image) {
    Image<std::uint8_t> eroded(40, 30), opened(40, 30);
    nuqi::erode(image, eroded, element);
    nuqi::dilate(eroded, opened, element.turned());
    return opened;
  };
  const auto once = open(src);
  const auto twice = open(once);
  const auto inner = [](const Image<std::uint8_t>& image) { return image.roi(6, 6, 28, 18); };
  EXPECT_TRUE(equal(inner(once), inner(twice)));
  for (int y = 6; y < 24; ++y)
    for (int x = 6; x < 34; ++x) EXPECT_LE(once(x, y), src(x, y));
}

TEST(Morphology, ElementsAreRefused) {
  expect_throws(StatusBadSize,
                {[] { (void)Element::rectangle(0, 3); }, [] { (void)Element::ellipse(3, 5000); },
                 [] { (void)Element::arbitrary(Image<std::uint8_t>()); }});
  expect_throws(StatusBadArg, {[] { (void)Element::cross(3, 3).anchored(3, 0); },
                               [] { (void)Element::arbitrary(Image<std::uint8_t>(3, 3)); }});
}

TEST(Morphology, SimplifiedElementsHaveTheSamePixels) {
  const auto full = image_of<std::uint8_t>(3, 2, [](int, int) { return 1; });
  const auto cross = image_of<std::uint8_t>(3, 2, [](int x, int y) { return y == 0 || x == 2; });
  EXPECT_EQ(Element::arbitrary(full).simplified().shape(), 0);
  EXPECT_EQ(Element::arbitrary(cross).anchored(2, 0).simplified().shape(), 1);
  EXPECT_EQ(Element::arbitrary(cross).anchored(1, 0).simplified().shape(), 100);
}

}  // namespace
