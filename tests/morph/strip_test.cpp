// Tests of erosion and dilation.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

#include "morph/strip_members.h"
#include "morph/strip_reference.h"
#include "support/every_isa.h"
#include "support/stripes.h"

namespace nuqi::test {
namespace {

class Strips : public EveryIsa {};
NUQI_FOR_EVERY_ISA(Strips);

// Half of the pixels are inside, with any value.
Element element_of(int width, int height, int x, int y) {
  Random random(static_cast<uint64_t>(width) * 31 + height);
  Element element = {{width, height}, {x, y}, {}};
  for (int i = 0; i < width * height; ++i)
    element.mask.push_back(random.bits() % 2 == 0 ? 0 : random.integer<int32_t>());
  return element;
}

const std::vector<Element>& elements() {
  static const std::vector<Element> all = {
      element_of(1, 1, 0, 0), element_of(3, 3, 1, 1),  element_of(5, 5, 2, 2),
      element_of(1, 2, 0, 1), element_of(2, 1, 0, 0),  element_of(4, 4, 3, 0),
      element_of(7, 7, 3, 3), element_of(9, 3, 0, 2),  element_of(2, 6, 1, 5),
      element_of(3, 8, 2, 3), element_of(8, 9, 7, 4),  element_of(15, 5, 7, 1),
      element_of(6, 2, 2, 1), element_of(17, 1, 9, 0), element_of(1, 18, 0, 9)};
  return all;
}

// Values that are equal, or do not compare, as often as noise.
template <class T>
Picture<T> strip_picture(RoiSize roi, uint64_t seed, int channels) {
  Picture<T> picture = random_picture<T>(roi, seed, channels);
  Random random(seed);
  for (T& value : picture.pixels)
    if (random.bits() % 2 == 0) value = random.value<T>();
  return picture;
}

template <class T>
MorphState* state_for(const StripMember<T>& member, const Element& element, int32_t width) {
  MorphState* state = nullptr;
  EXPECT_EQ(nuqiMorphologyInitAlloc(width, data_type(T{}), member.channels, element.size,
                                    element.anchor, member.shape, element.mask.data(), &state),
            StatusOk);
  return state;
}

template <class T>
std::vector<T> expected_of(const StripMember<T>& member, const Element& element,
                           const Picture<T>& picture) {
  return strip_reference(member.dilates, member.shape, element, member.channels, picture.roi,
                         picture.pixels);
}

TEST_P(Strips, AgreeWithTheReference) {
  for_each_strip([]<class T>(const StripMember<T>& member) {
    size_t next = 0;
    for_each_case(member.name, 2,
                  [&](const Case& c) {
                    const Element& element = elements()[next++ % elements().size()];
                    SCOPED_TRACE(testing::Message()
                                 << element.size.width << "x" << element.size.height);
                    WatchedHeap heap;
                    MorphState* state = state_for(member, element, c.roi.width);
                    ASSERT_NE(state, nullptr);
                    const uint8_t* end = heap.last_block + heap.last_size - 16;
                    const auto picture = strip_picture<T>(c.roi, next, member.channels);
                    ASSERT_TRUE(same_bits(expected_of(member, element, picture),
                                          whole<T, T>(member, state, picture, c)));
                    for (int i = 0; i < 16; ++i) ASSERT_EQ(end[i], WatchedHeap::kFresh);
                  },
                  {{129, 20}, {8, 50}, {40, 40}});
  });
}

// Rows that end near the end of a register, of small elements with any anchor: each width has another.
TEST_P(Strips, SmallElementsAtTheEndsOfRows) {
  const Element some[] = {element_of(3, 3, 1, 1), element_of(5, 5, 2, 2), element_of(5, 5, 4, 1),
                          element_of(9, 4, 8, 0), element_of(3, 3, 0, 2), element_of(9, 9, 0, 4),
                          element_of(7, 2, 3, 1)};
  for_each_strip([&]<class T>(const StripMember<T>& member) {
    MorphState* states[std::size(some)];
    for (size_t i = 0; i < std::size(some); ++i) states[i] = state_for(member, some[i], 400);
    size_t next = 0;
    for (int bytes : {64, 128, 384})
      for (int beside = -9; beside <= 9; beside += bytes == 384 ? 3 : 1) {
        const int width = bytes / int{sizeof(T)} / member.channels + beside;
        if (width < 1) continue;
        const size_t i = next++ % std::size(some);
        const RoiSize roi = {width, 1 + static_cast<int>(next % 5)};
        const auto picture = strip_picture<T>(roi, next, member.channels);
        SCOPED_TRACE(testing::Message() << member.name << " " << some[i].size.width << "x"
                                        << some[i].size.height << " over " << width);
        const Case how = {roi, next % 2 == 0 ? Wall::after : Wall::before};
        ASSERT_TRUE(same_bits(expected_of(member, some[i], picture),
                              whole<T, T>(member, states[i], picture, how)));
      }
  });
}

// Feeds the picture in strips of these heights, of which the last may be empty. A strip completes as many
// rows of the result as it has rows, once the first `below` of the image have come.
template <class T>
std::vector<T> in_strips(const StripMember<T>& member, MorphState* state, const Picture<T>& picture,
                         int below, const std::vector<int>& heights) {
  std::vector<T> out;
  int y = 0, written = 0;
  for (size_t i = 0; i < heights.size(); ++i) {
    const bool first = i == 0, last = i + 1 == heights.size();
    const int border = first && last ? 0 : first ? 1 : last ? 2 : 4;
    const int complete = last ? picture.roi.height : std::max(0, y + heights[i] - below);
    const Case how = {{}, Wall::after, {i % 2 == 0 ? 0 : kWallsBetween, static_cast<int>(i % 3)}};
    run_stripe(static_cast<const StripeMember<T, T, MorphState>&>(member), state, picture, y,
               heights[i], border, complete - written, how, out);
    y += heights[i];
    written = complete;
  }
  return out;
}

// One state for each element, made for the widest picture.
TEST_P(Strips, AnySplitEqualsTheWhole) {
  for_each_strip([]<class T>(const StripMember<T>& member) {
    Random random(member.channels);
    for (const Element& element : elements()) {
      if (element.size.height == 1) continue;
      MorphState* state = state_for(member, element, 200);
      for (int round = 0; round < 6; ++round) {
        const RoiSize roi = {round == 0 ? 200 : random.between(1, 40), random.between(1, 30)};
        const auto picture = strip_picture<T>(roi, 77u + round, member.channels);
        const int most = round % 3 == 0 ? 1 : round % 3 == 1 ? element.size.height : roi.height;
        std::vector<int> heights;
        for (int left = roi.height; left > 0; left -= heights.back())
          heights.push_back(random.between(1, std::min(most, left)));
        if (random.bits() % 2 == 0) heights.push_back(0);
        SCOPED_TRACE(testing::Message()
                     << member.name << " " << element.size.width << "x" << element.size.height
                     << " over " << roi.width << " as " << testing::PrintToString(heights));
        ASSERT_TRUE(same_bits(whole<T, T>(member, state, picture),
                              in_strips(member, state, picture,
                                        element.size.height - 1 - element.anchor.y, heights)));
      }
    }
  });
}

// Larger than the image, up to 255x255; ellipses as the state draws them.
TEST_P(Strips, LargeElements) {
  for_each_strip([]<class T>(const StripMember<T>& member) {
    for (const auto& [width, height] : {RoiSize{255, 255}, {40, 3}, {3, 40}, {64, 1}, {1, 70}}) {
      if (width == height && member.channels != 3) continue;
      const Element element = element_of(width, height, width / 3, height - 1 - height / 4);
      const auto picture = strip_picture<T>({9, 7}, 3, member.channels);
      MorphState* state = state_for(member, element, 25);
      SCOPED_TRACE(testing::Message() << member.name << " " << width << "x" << height);
      const std::vector<T> expected = expected_of(member, element, picture);
      ASSERT_TRUE(same_bits(expected, whole<T, T>(member, state, picture)));
      if (height == 1) continue;
      ASSERT_TRUE(same_bits(expected, in_strips(member, state, picture,
                                                height - 1 - element.anchor.y, {1, 2, 3, 1})));
    }
  });
}

// Rectangles about as high as those whose rows are kept as they came, and pictures of many rows and bytes.
TEST_P(Strips, LargeRectangles) {
  for_each_strip([]<class T>(const StripMember<T>& member) {
    if (member.shape != kRectangle) return;
    for (const auto& [size, roi] : {std::pair<RoiSize, RoiSize>{{4, 16}, {530, 70}},
                                    {{3, 63}, {20, 140}},
                                    {{30, 64}, {65, 9}},
                                    {{2, 65}, {20, 70}},
                                    {{65, 3}, {70, 5}},
                                    {{90, 2}, {300, 4}}}) {
      const Element element = element_of(size.width, size.height, size.width / 2, size.height / 3);
      const auto picture = strip_picture<T>(roi, 3, member.channels);
      MorphState* state = state_for(member, element, roi.width);
      SCOPED_TRACE(testing::Message() << member.name << " " << size.width << "x" << size.height);
      const std::vector<T> expected = expected_of(member, element, picture);
      ASSERT_TRUE(same_bits(expected, whole<T, T>(member, state, picture)));
      ASSERT_TRUE(
          same_bits(expected, in_strips(member, state, picture, size.height - 1 - element.anchor.y,
                                        {1, roi.height - 3, 2})));
    }
  });
}

// An element of one row keeps no rows: strips are calls with border 0, and first strips; nothing is to
// do for the others.
TEST_P(Strips, OneRowNeedsNoOthers) {
  for_each_strip([]<class T>(const StripMember<T>& member) {
    const Element element = element_of(5, 1, 2, 0);
    MorphState* state = state_for(member, element, 33);
    const auto picture = strip_picture<T>({33, 9}, 5, member.channels);
    std::vector<T> out;
    run_stripe<T, T>(member, state, picture, 0, 4, 1, 4, {}, out);
    for (int32_t border : {2, 4}) {
      RoiSize roi = {33, 5};
      T nothing[1] = {};
      const int32_t step = 33 * member.channels * int{sizeof(T)};
      EXPECT_EQ(member.call({nothing, step, nothing, step, &roi, state, border}),
                StatusNothingToDo);
      EXPECT_EQ(roi.height, 0);
    }
    run_stripe<T, T>(member, state, picture, 4, 5, 0, 5, {}, out);
    EXPECT_TRUE(same_bits(expected_of(member, element, picture), out)) << member.name;
  });
}

// Oddity: no pixel inside gives what every pixel replaces.
TEST_P(Strips, EmptyMasks) {
  for_each_strip([]<class T>(const StripMember<T>& member) {
    if (member.shape != kArbitrary) return;
    for (const int size : {3, 21}) {
      Element element = element_of(size, size, 0, 0);
      for (int32_t& entry : element.mask) entry = 0;
      MorphState* state = state_for(member, element, 20);
      std::vector<T> nothing(20u * 5 * member.channels);
      const int32_t bits =
          sizeof(T) == 1 ? (member.dilates ? 0 : 255) : (member.dilates ? -1 : INT32_MAX);
      for (T& value : nothing) std::memcpy(&value, &bits, sizeof value);
      RoiSize roi = {20, 5};
      std::vector<T> src(nothing.size(), T{7}), dst(nothing.size());
      const int32_t step = 20 * member.channels * int{sizeof(T)};
      ASSERT_EQ(member.call({src.data(), step, dst.data(), step, &roi, state, 0}), StatusOk);
      EXPECT_EQ(std::memcmp(nothing.data(), dst.data(), dst.size() * sizeof(T)), 0) << member.name;
    }
  });
}

// Oddity: a dilation by an element does not reflect it, so that the second step of an opening takes the
// element turned round. Opening twice is opening once then.
TEST_P(Strips, OpeningTwiceIsOpeningOnce) {
  const Element element = {{3, 2}, {0, 1}, {1, 1, 0, 0, 1, 1}};
  const Element turned = {{3, 2}, {2, 0}, {1, 1, 0, 0, 1, 1}};
  const auto member_of = [](bool dilates) {
    StripMember<uint8_t> found = {};
    for_each_strip([&]<class T>(const StripMember<T>& member) {
      if constexpr (sizeof(T) == 1)
        if (member.channels == 1 && member.shape == kArbitrary && member.dilates == dilates)
          found = member;
    });
    return found;
  };
  const auto erode = member_of(false), dilate = member_of(true);
  const auto opened = [&](const Picture<uint8_t>& picture, const Element& second) {
    Picture<uint8_t> result = picture;
    result.pixels = whole<uint8_t, uint8_t>(erode, state_for(erode, element, 30), result);
    result.pixels = whole<uint8_t, uint8_t>(dilate, state_for(dilate, second, 30), result);
    return result;
  };
  // Dark around, so that no copy beyond an edge counts.
  Picture<uint8_t> picture = strip_picture<uint8_t>({30, 20}, 4, 1);
  for (int i = 0; i < 600; ++i)
    if (i % 30 < 4 || i % 30 > 25 || i / 30 < 4 || i / 30 > 15) picture.pixels[i] = 0;
  const auto once = opened(picture, turned);
  EXPECT_TRUE(same_bits(once.pixels, opened(once, turned).pixels));
  for (int i = 0; i < 600; ++i) EXPECT_LE(once.pixels[i], picture.pixels[i]);
  EXPECT_FALSE(
      same_bits(opened(picture, element).pixels, opened(opened(picture, element), element).pixels));
}

// Refused calls and those with nothing to do change neither the state nor, but for the height, anything.
// Each row breaks two rules and names the status that must win.
TEST(StripStatus, FirstFailureWinsAndNothingIsWritten) {
  for_each_strip([]<class T>(const StripMember<T>& member) {
    const Element element = element_of(3, 3, 1, 1);
    const auto state_of = [&](int32_t type, int32_t channels, int32_t shape) {
      MorphState* state = nullptr;
      EXPECT_EQ(nuqiMorphologyInitAlloc(12, type, channels, element.size, element.anchor, shape,
                                        element.mask.data(), &state),
                StatusOk);
      return state;
    };
    const int32_t type = data_type(T{}), es = sizeof(T), row = 10 * member.channels * es;
    MorphState* other_type = state_of(k8u + k32f - type, member.channels, member.shape);
    MorphState* other_channels = state_of(type, member.channels == 3 ? 4 : 3, member.shape);
    MorphState* other_shape = state_of(type, member.channels, member.shape == kCross ? 2 : 1);
    MorphState* fresh = state_of(type, member.channels, member.shape);
    const auto picture = strip_picture<T>({10, 6}, 5, member.channels);

    const auto expect_of = [&](const char* what, StatusCode status, MorphState* state, auto spoil) {
      WalledImage<T> dst("destination", Case{{10, 6}}, 0, member.channels);
      const auto before = dst.all_bytes();
      RoiSize roi = picture.roi;
      StripeArgs<T, T, MorphState> args = {
          picture.pixels.data(), row, dst.data(), dst.step(), &roi, state, 0};
      spoil(args);
      const RoiSize asked = roi;
      EXPECT_EQ(member.call(args), status) << member.name << ": " << what;
      EXPECT_EQ(before, dst.all_bytes()) << member.name << ": " << what;
      EXPECT_EQ(roi.width, asked.width);
      EXPECT_EQ(roi.height, status == StatusNothingToDo ? 0 : asked.height) << what;
    };
    // A state that has been used before: the strip that follows shows that it has not changed.
    MorphState* used = state_of(type, member.channels, member.shape);
    std::vector<T> out;
    run_stripe<T, T>(member, used, picture, 0, 2, 1, 1, {}, out);
    const auto expect = [&](const char* what, StatusCode status, auto spoil) {
      expect_of(what, status, used, spoil);
    };
    expect("null source, width 0", StatusNullPtr,
           [](auto& a) { a.src = nullptr, a.roi->width = 0; });
    expect("null source, last strip of no rows", StatusNullPtr,
           [](auto& a) { a.src = nullptr, a.roi->height = 0, a.phase = 2; });
    expect("null destination, border 3", StatusNullPtr,
           [](auto& a) { a.dst = nullptr, a.phase = 3; });
    expect("null ROI, short step", StatusNullPtr, [](auto& a) { a.roi = nullptr, a.srcStep = 1; });
    expect("null state, width 0", StatusNullPtr,
           [](auto& a) { a.state = nullptr, a.roi->width = 0; });
    expect("width 0, another shape", StatusBadSize,
           [&](auto& a) { a.roi->width = 0, a.state = other_shape; });
    expect("a state of 12 columns, another type", StatusBadSize,
           [&](auto& a) { a.roi->width = 13, a.state = other_type; });
    expect("height -1, other channels", StatusBadSize,
           [&](auto& a) { a.roi->height = -1, a.state = other_channels; });
    for (MorphState* wrong : {other_type, other_channels, other_shape})
      expect("a state of another kind, short steps", StatusBadContext,
             [&](auto& a) { a.state = wrong, a.srcStep = a.dstStep = row - es; });
    expect("short source step, border 3", StatusBadStep,
           [&](auto& a) { a.srcStep = row - es, a.phase = 3; });
    expect("short destination step, height 0", StatusBadStep,
           [&](auto& a) { a.dstStep = row - es, a.roi->height = 0; });
    if (es == 4) {
      expect("uneven source step, height 0", StatusBadStep,
             [&](auto& a) { a.srcStep = row + 2, a.roi->height = 0; });
      expect("uneven destination step, border 5", StatusBadStep,
             [&](auto& a) { a.dstStep = row + 1, a.phase = 5; });
    }
    for (int32_t border : {-1, 3, 5, 100})
      expect("border, height 0", StatusBadArg,
             [&](auto& a) { a.phase = border, a.roi->height = 0; });
    for (int32_t border : {0, 1, 4})
      expect("height 0", StatusNothingToDo, [&](auto& a) { a.phase = border, a.roi->height = 0; });
    for (int32_t border : {2, 4})
      expect_of("a new state", StatusNothingToDo, fresh, [&](auto& a) { a.phase = border; });
    run_stripe<T, T>(member, used, picture, 2, 4, 2, 5, {}, out);
    EXPECT_TRUE(same_bits(whole<T, T>(member, fresh, picture), out)) << member.name;
  });
}

TEST_P(Strips, GiveTheSameBitsEverywhere) {
  Hash hash;
  for_each_strip([&]<class T>(const StripMember<T>& member) {
    for (const Element& element : elements()) {
      MorphState* state = state_for(member, element, 70);
      for (RoiSize roi : {RoiSize{1, 9}, {7, 2}, {16, 20}, {70, 11}})
        hash.add(
            whole<T, T>(member, state, strip_picture<T>(roi, 6u + roi.width, member.channels)));
    }
  });
  EXPECT_TRUE(same_hash(0xFBE877334740B823, hash));
}

}  // namespace
}  // namespace nuqi::test
