// The 36 erosions and dilations behind one argument list.
#pragma once

#include "support/stripe_members.h"

namespace nuqi::test {

enum Shape : int32_t { kRectangle = 0, kCross = 1, kEllipse = 2, kArbitrary = 100 };

template <class T>
struct StripMember : StripeMember<T, T, MorphState> {
  bool dilates;
  Shape shape;
};

#define MEMBER(name, T, channels, dilates, shape)                                \
  StripMember<T> {                                                               \
    {#name,                                                                      \
     [](const StripeArgs<T, T, MorphState>& a) {                                 \
       return name(a.src, a.srcStep, a.dst, a.dstStep, a.roi, a.state, a.phase); \
     },                                                                          \
     channels},                                                                  \
        dilates, shape                                                           \
  }

// Calls visit(member) with each.
// clang-format off
template <class Visit>
void for_each_strip(const Visit& visit) {
  visit(MEMBER(nuqiErodeStrip_8u_C1R,         uint8_t, 1, false, kArbitrary));
  visit(MEMBER(nuqiErodeStrip_8u_C3R,         uint8_t, 3, false, kArbitrary));
  visit(MEMBER(nuqiErodeStrip_8u_C4R,         uint8_t, 4, false, kArbitrary));
  visit(MEMBER(nuqiErodeStrip_32f_C1R,        float,   1, false, kArbitrary));
  visit(MEMBER(nuqiErodeStrip_32f_C3R,        float,   3, false, kArbitrary));
  visit(MEMBER(nuqiErodeStrip_32f_C4R,        float,   4, false, kArbitrary));
  visit(MEMBER(nuqiErodeStrip_Rect_8u_C1R,    uint8_t, 1, false, kRectangle));
  visit(MEMBER(nuqiErodeStrip_Rect_8u_C3R,    uint8_t, 3, false, kRectangle));
  visit(MEMBER(nuqiErodeStrip_Rect_8u_C4R,    uint8_t, 4, false, kRectangle));
  visit(MEMBER(nuqiErodeStrip_Rect_32f_C1R,   float,   1, false, kRectangle));
  visit(MEMBER(nuqiErodeStrip_Rect_32f_C3R,   float,   3, false, kRectangle));
  visit(MEMBER(nuqiErodeStrip_Rect_32f_C4R,   float,   4, false, kRectangle));
  visit(MEMBER(nuqiErodeStrip_Cross_8u_C1R,   uint8_t, 1, false, kCross));
  visit(MEMBER(nuqiErodeStrip_Cross_8u_C3R,   uint8_t, 3, false, kCross));
  visit(MEMBER(nuqiErodeStrip_Cross_8u_C4R,   uint8_t, 4, false, kCross));
  visit(MEMBER(nuqiErodeStrip_Cross_32f_C1R,  float,   1, false, kCross));
  visit(MEMBER(nuqiErodeStrip_Cross_32f_C3R,  float,   3, false, kCross));
  visit(MEMBER(nuqiErodeStrip_Cross_32f_C4R,  float,   4, false, kCross));
  visit(MEMBER(nuqiDilateStrip_8u_C1R,        uint8_t, 1, true,  kArbitrary));
  visit(MEMBER(nuqiDilateStrip_8u_C3R,        uint8_t, 3, true,  kArbitrary));
  visit(MEMBER(nuqiDilateStrip_8u_C4R,        uint8_t, 4, true,  kArbitrary));
  visit(MEMBER(nuqiDilateStrip_32f_C1R,       float,   1, true,  kArbitrary));
  visit(MEMBER(nuqiDilateStrip_32f_C3R,       float,   3, true,  kArbitrary));
  visit(MEMBER(nuqiDilateStrip_32f_C4R,       float,   4, true,  kArbitrary));
  visit(MEMBER(nuqiDilateStrip_Rect_8u_C1R,   uint8_t, 1, true,  kRectangle));
  visit(MEMBER(nuqiDilateStrip_Rect_8u_C3R,   uint8_t, 3, true,  kRectangle));
  visit(MEMBER(nuqiDilateStrip_Rect_8u_C4R,   uint8_t, 4, true,  kRectangle));
  visit(MEMBER(nuqiDilateStrip_Rect_32f_C1R,  float,   1, true,  kRectangle));
  visit(MEMBER(nuqiDilateStrip_Rect_32f_C3R,  float,   3, true,  kRectangle));
  visit(MEMBER(nuqiDilateStrip_Rect_32f_C4R,  float,   4, true,  kRectangle));
  visit(MEMBER(nuqiDilateStrip_Cross_8u_C1R,  uint8_t, 1, true,  kCross));
  visit(MEMBER(nuqiDilateStrip_Cross_8u_C3R,  uint8_t, 3, true,  kCross));
  visit(MEMBER(nuqiDilateStrip_Cross_8u_C4R,  uint8_t, 4, true,  kCross));
  visit(MEMBER(nuqiDilateStrip_Cross_32f_C1R, float,   1, true,  kCross));
  visit(MEMBER(nuqiDilateStrip_Cross_32f_C3R, float,   3, true,  kCross));
  visit(MEMBER(nuqiDilateStrip_Cross_32f_C4R, float,   4, true,  kCross));
}
// clang-format on

#undef MEMBER

}  // namespace nuqi::test
