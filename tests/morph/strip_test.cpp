// Tests of erosion and dilation.
#include <gtest/gtest.h>

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
      for (int round = 0; round < 12; ++round) {
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

}  // namespace
}  // namespace nuqi::test
