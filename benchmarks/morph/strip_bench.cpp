// Benchmarks of erosion and dilation: every function with an element of 5x5 pixels, some with others.
#include <string_view>
#include <vector>

#include "morph/strip_members.h"
#include "morph/strip_plain.h"
#include "support/registry.h"

namespace nuqi::bench {
namespace {

using test::StripMember;

// Half of the pixels, at random, or those of a filled disc.
std::vector<int32_t> mask_of(RoiSize size, bool disc) {
  std::vector<int32_t> mask;
  uint32_t state = 7;
  for (int y = 0; y < size.height; ++y)
    for (int x = 0; x < size.width; ++x) {
      const int dx = 2 * x - size.width + 1, dy = 2 * y - size.height + 1;
      state = state * 1664525u + 1013904223u;
      mask.push_back(disc ? dx * dx + dy * dy <= size.width * size.width : state >> 31);
    }
  return mask;
}

template <class T, int channels>
void register_element(const StripMember<T>& member, const std::string& element, RoiSize size,
                      bool disc = true) {
  const std::string name = std::string(member.name) + ":" + element;
  const std::vector<int32_t> mask = mask_of(size, disc);
  const StripPlain how = {member.dilates, member.shape, size, nullptr, channels};
  const auto run = [=](auto call) {
    return [=](const Images& im) {
      const int32_t width = im.roi.width, row = width * channels * int{sizeof(T)};
      MorphState* state = nullptr;
      nuqiMorphologyInitAlloc(width, test::data_type(T{}), channels, size,
                              {size.width / 2, size.height / 2}, member.shape, mask.data(), &state);
      const test::StripeArgs<T, T, MorphState> args = {
          im.source<T>(), row, reinterpret_cast<T*>(im.out.get()), row, nullptr, state, 0};
      return [=, roi = im.roi] {
        RoiSize taken = roi;
        auto one = args;
        one.roi = &taken;
        call(one);
      };
    };
  };
  const auto plain = [=](auto loop) {
    return run([=](const test::StripeArgs<T, T, MorphState>& args) {
      StripPlain one = how;
      one.mask = mask.data();
      loop(one, args);
    });
  };
  for (RoiSize roi : kSizes) {
    register_limit<Streams<channels * sizeof(T)>, Streams<>, Streams<channels * sizeof(T)>>(name,
                                                                                            roi);
    register_function(name, roi, run(member.call));
    register_plain(name, "gcc", roi, plain(gcc::plain_strip<T>));
#if NUQI_PLAIN_CLANG
    register_plain(name, "clang", roi, plain(clang::plain_strip<T>));
#endif
  }
}

template <class T, int channels>
void register_member(const StripMember<T>& member) {
  const auto add = [&](const char* element, int size, bool disc = true) {
    register_element<T, channels>(member, element, {size, size}, disc);
  };
  const std::string_view name = member.name;
  add(member.shape == test::kArbitrary ? "disc5" : "5x5", 5);
  if (name == "nuqiErodeStrip_Rect_8u_C1R") add("3x3", 3), add("15x15", 15), add("41x41", 41);
  if (name == "nuqiErodeStrip_Rect_32f_C1R") add("15x15", 15);
  if (name == "nuqiErodeStrip_Cross_8u_C1R") add("3x3", 3);
  if (name == "nuqiErodeStrip_8u_C1R") add("disc7", 7), add("any7", 7, false);
  if (name == "nuqiErodeStrip_32f_C1R") add("any7", 7, false);
}

void register_strips() {
  test::for_each_strip([]<class T>(const StripMember<T>& member) {
    if (member.channels == 1) register_member<T, 1>(member);
    if (member.channels == 3) register_member<T, 3>(member);
    if (member.channels == 4) register_member<T, 4>(member);
  });
}

const Family family(register_strips);

}  // namespace
}  // namespace nuqi::bench
