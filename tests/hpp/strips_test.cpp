// Filters and morphology: whole images and strips of them, against the C functions.
#include <gtest/gtest.h>
#include <sys/mman.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "support.h"

namespace {

using nuqi::Element;
using nuqi::Extremum;
using nuqi::Image;
using nuqi::View;
using nuqi::test::equal;
using nuqi::test::random_image;
using nuqi::test::roi_of;
using nuqi::test::status_of;
using nuqi::test::step;

// One call of a C function with a state of its own, made for the very width.
template <class T, class D, class State, class Call, class Make>
Image<D> by_c(const Image<T>& src, const Call& call, const Make& make) {
  State* state = nullptr;
  EXPECT_EQ(make(roi_of(src).width, &state), StatusOk);
  Image<D> dst(src.width(), src.height());
  RoiSize roi = roi_of(src);
  EXPECT_EQ(call(src.data(), step(src.step()), dst.data(), step(dst.step()), &roi, state, 0),
            StatusOk);
  return dst;
}

constexpr std::int32_t kBytes = 1, kFloats = 9;

Image<std::int16_t> sobel_by_c(const Image<std::uint8_t>& src, int x, int y, int size) {
  return by_c<std::uint8_t, std::int16_t, ConvolState>(
      src, nuqiSobel_8u16s_C1R, [&](std::int32_t width, ConvolState** state) {
        return nuqiSobelInitAlloc(width, kBytes, size, 0, x, y, state);
      });
}
template <class T, class D, class Call>
Image<D> laplace_by_c(const Image<T>& src, int size, std::int32_t type, const Call& call) {
  return by_c<T, D, ConvolState>(src, call, [&](std::int32_t width, ConvolState** state) {
    return nuqiLaplaceInitAlloc(width, type, size, state);
  });
}
template <class T, class D, class Call>
Image<D> box_by_c(const Image<T>& src, int size, std::int32_t type, const Call& call) {
  return by_c<T, D, ConvolState>(src, call, [&](std::int32_t width, ConvolState** state) {
    return nuqiBlurInitAlloc(width, type, size, state);
  });
}

// One object serves widths and types in any order.
TEST(Strips, FiltersGiveWhatCGives) {
  for (const int size : {3, 5, 7}) {
    nuqi::BoxSum box(size);
    nuqi::Sobel sobel(1, size - 2, size);
    nuqi::Laplace laplace(size);
    for (const int width : {40, 1, 64, 65, 7, 300}) {
      const auto bytes = random_image<std::uint8_t>(width, 11);
      const auto chars = random_image<std::int8_t>(width, 9);
      const auto floats = random_image<float>(width, 10);
      Image<std::int16_t> of_bytes(width, 11), of_chars(width, 9);
      Image<float> of_floats(width, 10);

      box(bytes, of_bytes);
      EXPECT_TRUE(equal(of_bytes, (box_by_c<std::uint8_t, std::int16_t>(bytes, size, kBytes,
                                                                        nuqiBlur_8u16s_C1R))));
      box(chars, of_chars);
      EXPECT_TRUE(equal(of_chars, (box_by_c<std::int8_t, std::int16_t>(chars, size, kBytes,
                                                                       nuqiBlur_8s16s_C1R))));
      box(floats, of_floats);
      EXPECT_TRUE(
          equal(of_floats, (box_by_c<float, float>(floats, size, kFloats, nuqiBlur_32f_C1R))));

      sobel(floats, of_floats);
      sobel(bytes, of_bytes);
      EXPECT_TRUE(equal(of_bytes, sobel_by_c(bytes, 1, size - 2, size)));

      laplace(bytes, of_bytes);
      EXPECT_TRUE(equal(of_bytes, (laplace_by_c<std::uint8_t, std::int16_t>(
                                      bytes, size, kBytes, nuqiLaplace_8u16s_C1R))));
      laplace(floats, of_floats);
      EXPECT_TRUE(equal(of_floats,
                        (laplace_by_c<float, float>(floats, size, kFloats, nuqiLaplace_32f_C1R))));
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
  const auto src = random_image<std::uint8_t>(20, 10);
  const auto narrow = random_image<std::uint8_t>(19, 10);
  Image<std::int16_t> dst(20, 10), low(20, 5);
  Image<float> floats(20, 10);
  nuqi::Sobel sobel(1, 0);
  EXPECT_EQ(status_of([&] { sobel.feed(src, dst); }), StatusBadArg);  // begin() is missing
  sobel.begin();
  EXPECT_EQ(status_of([&] { sobel.finish(dst); }), StatusBadArg);  // no strip
  EXPECT_EQ(status_of([&] { sobel.feed(src, low); }), StatusBadSize);
  EXPECT_EQ(sobel.feed(src, dst), 9);
  EXPECT_EQ(status_of([&] { sobel.feed(narrow, dst); }), StatusBadSize);
  EXPECT_EQ(status_of([&] { sobel.feed(floats, floats); }), StatusBadSize);  // other elements
  EXPECT_EQ(sobel.feed(src, dst), 10);  // refused strips change nothing
  EXPECT_EQ(status_of([&] { sobel.finish(low.roi(0, 0, 19, 5)); }), StatusBadSize);
  EXPECT_EQ(status_of([&] { sobel.finish(floats); }), StatusBadSize);
  EXPECT_EQ(sobel.finish(dst), 1);
  EXPECT_EQ(status_of([&] { sobel.finish(dst); }), StatusBadArg);

  EXPECT_EQ(sobel(src, low, std::nothrow), StatusBadSize);
  EXPECT_EQ(nuqi::box_sum(floats, floats, 3, std::nothrow), StatusBadArg);
  EXPECT_EQ(nuqi::box_sum(src, dst, 4, std::nothrow), StatusBadSize);
  EXPECT_EQ(nuqi::sobel(src, dst, 3, 0, 3, std::nothrow), StatusBadSize);
  EXPECT_EQ(nuqi::laplace(Image<std::uint8_t>(), dst, 3, std::nothrow), StatusBadSize);
  Image<std::uint8_t> same_type(20, 10);
  EXPECT_EQ(nuqi::erode(src, same_type, Element::cross(3, 3), std::nothrow), StatusOk);
  nuqi::Morphology square(Element::rectangle(3, 3));
  square.erode(src, same_type);
  EXPECT_EQ(square.erode(same_type, same_type, std::nothrow), StatusBadArg);
  EXPECT_EQ(nuqi::dilate(same_type, same_type, Element::cross(3, 3), std::nothrow), StatusBadArg);
  square.begin(Extremum::least);
  EXPECT_EQ(status_of([&] { square.feed(same_type, same_type); }), StatusBadArg);
}

// Rows further apart than 2^31 bytes: C takes them one by one only.
TEST(Strips, RowsMayLieFarApart) {
  if (sizeof(void*) < 8) GTEST_SKIP() << "not enough addresses";
  constexpr auto kApart = static_cast<std::ptrdiff_t>((std::int64_t{1} << 31) + 4096);
  constexpr std::int64_t kRows = 9;
  const auto room = static_cast<std::size_t>(2 * kRows * kApart);
  void* const memory = mmap(nullptr, room, PROT_READ | PROT_WRITE,
                            MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (memory == MAP_FAILED) GTEST_SKIP() << "not enough addresses";
  auto* const bytes = static_cast<unsigned char*>(memory);
  for (const std::int64_t rows : {std::int64_t{2}, kRows}) {
    const View<std::uint8_t> src(bytes, 30, rows, kApart);
    const auto tight = random_image<std::uint8_t>(30, rows);
    for (std::int64_t y = 0; y < rows; ++y) std::copy_n(tight.row(y), 30, src.row(y));
    const View<std::int16_t> dst(reinterpret_cast<std::int16_t*>(bytes + kRows * kApart), 30, rows,
                                 kApart);
    Image<std::int16_t> expected(30, rows);
    nuqi::laplace(tight, expected, 7);
    nuqi::laplace(src, dst, 7);
    EXPECT_TRUE(equal(dst, expected));

    const View<std::uint8_t> eroded(bytes + kRows * kApart, 30, rows, kApart);
    Image<std::uint8_t> expected_eroded(30, rows);
    nuqi::erode(tight, expected_eroded, Element::ellipse(3, 7));
    nuqi::erode(src, eroded, Element::ellipse(3, 7));
    EXPECT_TRUE(equal(eroded, expected_eroded));
  }
  munmap(memory, room);
}

TEST(Morphology, ShapesGiveWhatCGives) {
  const auto src = random_image<float>(37, 20);
  const std::vector<std::int32_t> mask = {1, 0, 0, 0, 1, 1};
  const View<const std::int32_t> pixels(mask.data(), 3, 2);
  const Image<std::uint8_t> bytes = [&] {
    Image<std::uint8_t> image(3, 2);
    for (int i = 0; i < 6; ++i)
      image(i % 3, i / 3) = static_cast<std::uint8_t>(3 * pixels(i % 3, i / 3));
    return image;
  }();
  const auto expect = [&](const Element& element, std::int32_t shape, const auto& eroded,
                          const auto& dilated) {
    const auto make = [&](std::int32_t width, MorphState** state) {
      return nuqiMorphologyInitAlloc(width, kFloats, 1, element.size(), element.anchor(), shape,
                                     mask.data(), state);
    };
    Image<float> dst(37, 20);
    nuqi::erode(src, dst, element);
    EXPECT_TRUE(equal(dst, (by_c<float, float, MorphState>(src, eroded, make))));
    nuqi::dilate(src, dst, element);
    EXPECT_TRUE(equal(dst, (by_c<float, float, MorphState>(src, dilated, make))));
  };
  expect(Element::rectangle(4, 3).anchored(0, 2), 0, nuqiErodeStrip_Rect_32f_C1R,
         nuqiDilateStrip_Rect_32f_C1R);
  expect(Element::cross(4, 3).anchored(0, 2), 1, nuqiErodeStrip_Cross_32f_C1R,
         nuqiDilateStrip_Cross_32f_C1R);
  expect(Element::arbitrary(bytes).anchored(2, 1), 100, nuqiErodeStrip_32f_C1R,
         nuqiDilateStrip_32f_C1R);
}

// Four channels go each on its own.
TEST(Morphology, TakesFourChannels) {
  const auto src = random_image<std::uint8_t, 4>(9, 8);
  Image<std::uint8_t, 4> dst(9, 8);
  nuqi::dilate(src, dst, Element::rectangle(2, 1).anchored(0, 0));
  for (int y = 0; y < 8; ++y)
    for (int x = 0; x < 9; ++x)
      for (int c = 0; c < 4; ++c)
        EXPECT_EQ(dst(x, y, c), std::max(src(x, y, c), src(std::min(x + 1, 8), y, c)));
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
  EXPECT_EQ(status_of([] { (void)Element::rectangle(0, 3); }), StatusBadSize);
  EXPECT_EQ(status_of([] { (void)Element::ellipse(3, 5000); }), StatusBadSize);
  EXPECT_EQ(status_of([] { (void)Element::cross(3, 3).anchored(3, 0); }), StatusBadArg);
  EXPECT_EQ(status_of([] { (void)Element::arbitrary(Image<std::uint8_t>(3, 3)); }), StatusBadArg);
  EXPECT_EQ(status_of([] { (void)Element::arbitrary(Image<std::uint8_t>()); }), StatusBadSize);
}

TEST(Morphology, SimplifiedElementsHaveTheSamePixels) {
  Image<std::uint8_t> full(3, 2), cross(3, 2);
  for (int i = 0; i < 6; ++i) full(i % 3, i / 3) = 1;
  for (int x = 0; x < 3; ++x) cross(x, 0) = 1;
  cross(2, 1) = 1;
  EXPECT_EQ(Element::arbitrary(full).simplified().shape(), 0);
  EXPECT_EQ(Element::arbitrary(cross).anchored(2, 0).simplified().shape(), 1);
  EXPECT_EQ(Element::arbitrary(cross).anchored(1, 0).simplified().shape(), 100);
}

}  // namespace
