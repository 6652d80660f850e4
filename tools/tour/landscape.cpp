// The landscape that the tour draws where it is given no picture.
#include "tour/landscape.h"

#include <algorithm>
#include <cmath>

namespace tools {
namespace {

constexpr RoiSize kSize{640, 480};
constexpr float kHorizon = 262;  // the far shore
constexpr float kShore = 376;    // the near shore, before its waves
constexpr float kSunX = 210, kSunY = 168;

struct Colour {
  float r, g, b;
};

Colour operator*(Colour c, float k) { return {c.r * k, c.g * k, c.b * k}; }
Colour operator+(Colour a, Colour b) { return {a.r + b.r, a.g + b.g, a.b + b.b}; }
Colour mix(Colour a, Colour b, float part) { return a * (1 - part) + b * part; }

float smooth(float low, float high, float x) {
  const float t = std::clamp((x - low) / (high - low), 0.0f, 1.0f);
  return t * t * (3 - 2 * t);
}

// Smoothly changing chance between 0 and 1, one value a unit.
float value_noise(float x, float y, uint32_t seed) {
  const float left = std::floor(x), top = std::floor(y);
  const float u = smooth(0, 1, x - left), v = smooth(0, 1, y - top);
  const auto at = [&](int dx, int dy) {
    return float(hash(uint32_t(int(left) + dx), uint32_t(int(top) + dy), seed) >> 8) / 16777216.0f;
  };
  const float above = at(0, 0) * (1 - u) + at(1, 0) * u;
  const float below = at(0, 1) * (1 - u) + at(1, 1) * u;
  return above * (1 - v) + below * v;
}

// Noise at several scales, around 0.5.
float fractal_noise(float x, float y, int scales, uint32_t seed) {
  float sum = 0, weight = 0.5f;
  for (int i = 0; i < scales; ++i, weight /= 2, x *= 2.03f, y *= 2.03f) {
    sum += weight * value_noise(x, y, seed + uint32_t(i));
  }
  return sum / (1 - 2 * weight);
}

Colour sky(float x, float y) {
  const float down = y / kHorizon;
  Colour colour = mix({58, 92, 150}, {236, 178, 132}, smooth(0, 1.05f, down));
  const float distance = std::hypot(x - kSunX, y - kSunY);
  const float cloud = smooth(0.48f, 0.72f, fractal_noise(x / 150, y / 42, 6, 11));
  colour = mix(colour, mix({246, 226, 214}, {150, 120, 140}, down * 0.7f), 0.75f * cloud);
  colour = colour + Colour{150, 110, 50} * std::exp(-distance / 55);
  return mix(colour, {255, 244, 214}, smooth(24, 21, distance));
}

// The height of a ridge's crest above column x.
float crest(float x, int layer) {
  static constexpr float kBase[] = {196, 222, 248}, kRise[] = {105, 70, 38};
  static constexpr float kLength[] = {150, 105, 60};
  const float noise = fractal_noise(x / kLength[layer] + 5, 3, 7, 40 + 20 * uint32_t(layer));
  return kBase[layer] - kRise[layer] * (noise - 0.35f);
}

Colour mountain(float x, float y, int layer) {
  static constexpr Colour kNear[] = {{112, 122, 158}, {74, 88, 112}, {40, 58, 58}};
  const float slope = fractal_noise(x / 22 + 0.6f * y / 22, y / 12, 5, 90 + uint32_t(layer));
  const float light = 0.72f + 0.56f * slope;
  Colour rock = kNear[layer] * light;
  const float below = y - crest(x, layer);
  if (layer == 0) {  // snow on the far crests
    rock = mix(rock, {226, 222, 232}, smooth(34, 4, below + 60 * (slope - 0.5f)));
  }
  return mix(rock, {206, 172, 156}, 0.30f * smooth(0, 70, below) * float(2 - layer));
}

Colour backdrop(float x, float y) {
  for (int layer = 2; layer >= 0; --layer) {
    if (y > crest(x, layer)) return mountain(x, y, layer);
  }
  return sky(x, y);
}

// The lake mirrors what stands behind it, more shaken towards the viewer.
Colour lake(float x, float y) {
  const float near = (y - kHorizon) / (kShore - kHorizon);
  const float wave = fractal_noise(x / (14 + 50 * near), y / (1.3f + 4 * near), 4, 130) - 0.5f;
  const float mirrored = kHorizon - (y - kHorizon) * 1.75f + wave * (10 + 60 * near);
  Colour colour = backdrop(x + wave * 22 * near, std::clamp(mirrored, 2.0f, kHorizon - 1));
  colour = mix(colour, {34, 58, 84}, 0.22f + 0.35f * near);
  const float glitter = smooth(0.60f, 0.72f, wave + 0.5f) * std::exp(-std::abs(x - kSunX) / 26);
  return colour + Colour{130, 100, 60} * glitter;
}

float shore(float x) { return kShore + 26 * (fractal_noise(x / 130, 1, 5, 150) - 0.5f); }

Colour meadow(float x, float y) {
  const float depth = (y - kShore) / (float(kSize.height) - kShore);
  const float blades = fractal_noise(x / (1.1f + 2 * depth), y / (4 + 9 * depth), 4, 170);
  const float patches = fractal_noise(x / 70, y / 26, 4, 180);
  Colour colour = mix({58, 78, 40}, {148, 142, 66}, smooth(0.3f, 0.7f, patches));
  colour = colour * (0.45f + 1.05f * blades);
  const float flower = smooth(0.86f, 0.90f, value_noise(x / 5, y / 5, 190));
  return mix(colour, {238, 214, 190}, 0.8f * flower * smooth(0.1f, 0.5f, depth));
}

// A lighthouse with bands; false where the point is not on it.
bool lighthouse(float x, float y, Colour& colour) {
  constexpr float kX = 498, kTop = 118, kFoot = 392;
  const float half = 17 + 11 * (y - kTop) / (kFoot - kTop);
  const float side = (x - kX) / half;
  const float light = 1.06f - 0.5f * side * side - 0.28f * side;
  if (y > kTop && y < kFoot && std::abs(side) < 1) {
    const bool red = int((y - kTop + 5 * side * side) / 39) % 2 == 1;
    colour = (red ? Colour{176, 48, 40} : Colour{232, 224, 212}) * light;
    const float window_y = std::fmod(y - kTop, 78.0f);
    if (std::abs(side + 0.1f) < 0.17f && window_y > 48 && window_y < 64) colour = {36, 40, 52};
    return true;
  }
  if (y > kTop - 7 && y <= kTop && std::abs(x - kX) < 25) return colour = {52, 50, 56}, true;
  if (y > kTop - 36 && y <= kTop - 7 && std::abs(x - kX) < 13) {
    const bool bar = std::fmod(x - kX + 65, 6.5f) < 1.2f;
    colour = bar ? Colour{44, 44, 50} : Colour{255, 232, 160};
    return true;
  }
  if (y > kTop - 54 && y <= kTop - 36 && std::abs(x - kX) < (y - kTop + 54) * 0.95f) {
    return colour = Colour{150, 44, 40} * (light + 0.1f), true;
  }
  return false;
}

// A brick cottage with a tiled roof beside it.
bool cottage(float x, float y, Colour& colour) {
  constexpr float kLeft = 542, kRight = 622, kEaves = 338, kFoot = 398;
  const float roof = (kEaves - y) * 1.1f;
  if (y > kEaves - 36 && y <= kEaves && x > kLeft - 8 + roof && x < kRight + 8 - roof) {
    const float tile = std::fmod(y, 5.0f) < 1 ? 0.7f : 1.0f;
    return colour = Colour{124, 74, 58} * tile * (0.8f + 0.4f * value_noise(x / 3, y / 5, 210)),
           true;
  }
  if (y <= kEaves || y >= kFoot || x < kLeft || x > kRight) return false;
  const int row = int(y / 5);
  const float joint = std::fmod(x + (row % 2 == 0 ? 0.0f : 5.5f), 11.0f);
  const bool mortar = joint < 1.2f || std::fmod(y, 5.0f) < 1.0f;
  const float tone = 0.85f + 0.3f * value_noise(std::floor((x - joint) / 4), float(row), 220);
  colour = mortar ? Colour{186, 172, 158} : Colour{158, 88, 66} * tone;
  const auto inside = [&](float left, float top, float right, float bottom) {
    return x > left && x < right && y > top && y < bottom;
  };
  if (inside(552, 350, 574, 374)) {
    const bool frame = std::abs(x - 563) < 1.3f || std::abs(y - 362) < 1.3f;
    colour = frame ? Colour{235, 228, 216} : Colour{250, 206, 112};
  }
  if (inside(588, 352, 608, kFoot)) colour = {66, 78, 70};
  return true;
}

// Pines on the left: a stack of branches with ragged ends.
bool pine(float x, float y, Colour& colour) {
  struct Tree {
    float x, top, foot;
  };
  static constexpr Tree kTrees[] = {{58, 172, 418}, {118, 236, 404}, {14, 226, 430}};
  for (const Tree& tree : kTrees) {
    if (y < tree.top || y > tree.foot) continue;
    const float down = (y - tree.top) / (tree.foot - tree.top);
    const float layer = std::fmod(down * 9, 1.0f);
    const float ragged = 0.75f + 0.5f * value_noise(x / 4, y / 3, 240 + uint32_t(tree.x));
    const float half = (tree.foot - tree.top) * (0.035f + 0.17f * down) * (0.5f + 0.5f * layer);
    const float side = (x - tree.x) / (half * ragged);
    if (down < 0.93f && std::abs(side) < 1) {
      const float light = 0.5f + 0.7f * value_noise(x / 2.2f, y / 2.2f, 250) - 0.22f * side;
      return colour = Colour{38, 62, 46} * light, true;
    }
    if (std::abs(x - tree.x) < 3.5f) return colour = {54, 42, 34}, true;
  }
  return false;
}

// A fence in front: posts and two slanting rails.
bool fence(float x, float y, Colour& colour) {
  if (x > 470) return false;
  const float ground = 452 - 0.03f * x;
  const float post = std::fmod(x + 12, 58.0f);
  const bool on_post = post < 7 && y > ground - 46 && y < ground + 8;
  const bool on_rail = std::abs(y - ground + 34) < 2.6f || std::abs(y - ground + 14) < 2.6f;
  if (!on_post && !on_rail) return false;
  const float grain =
      0.75f + 0.5f * value_noise(x / (on_post ? 1.2f : 9), y / (on_post ? 9 : 1.2f), 260);
  colour = Colour{142, 116, 88} * grain * (on_post && post > 4.5f ? 0.68f : 1.0f);
  return true;
}

Colour scene_colour(float x, float y) {
  Colour colour;
  if (fence(x, y, colour) || cottage(x, y, colour) || lighthouse(x, y, colour) ||
      pine(x, y, colour)) {
    return colour;
  }
  if (y > shore(x)) return meadow(x, y);
  return y > kHorizon ? lake(x, y) : backdrop(x, y);
}

// A few grey levels of chance, near to normal.
float grain(uint32_t x, uint32_t y) {
  const uint32_t bits = hash(x, y, 1);
  const int sum = int(bits & 255) + int(bits >> 8 & 255) + int(bits >> 16 & 255) + int(bits >> 24);
  return float(sum - 510) / 60;
}

}  // namespace

uint32_t hash(uint32_t a, uint32_t b, uint32_t c) {
  uint32_t h = a * 0x9E3779B1u ^ b * 0x85EBCA77u ^ c * 0xC2B2AE3Du;
  h = (h ^ h >> 15) * 0x2C1B3C6Du;
  h = (h ^ h >> 12) * 0x297A2D39u;
  return h ^ h >> 15;
}

Picture landscape() {
  // Several samples along each side of a pixel make edges as soft as in a photograph.
  constexpr int kSamples = 2;
  Picture picture(kSize, 3);
  uint8_t* rgb = picture.pixels.data();
  for (int32_t y = 0; y < kSize.height; ++y) {
    for (int32_t x = 0; x < kSize.width; ++x, rgb += 3) {
      Colour sum{0, 0, 0};
      for (int row = 0; row < kSamples; ++row) {
        for (int column = 0; column < kSamples; ++column) {
          sum = sum + scene_colour(float(x) + (float(column) + 0.5f) / kSamples,
                                   float(y) + (float(row) + 0.5f) / kSamples);
        }
      }
      const Colour mean = sum * (1.0f / (kSamples * kSamples));
      const float noise = grain(uint32_t(x), uint32_t(y));
      const float values[3] = {mean.r, mean.g, mean.b};
      for (int c = 0; c < 3; ++c) {
        rgb[c] = uint8_t(std::clamp(values[c] + noise + 0.5f, 0.0f, 255.0f));
      }
    }
  }
  return picture;
}

}  // namespace tools
