// The tour's section on motion: differences of frames, their history and its direction.
#include <algorithm>

#include "pictures/colours.h"
#include "pictures/motion_picture.h"
#include "tour/families.h"
#include "tour/plain.h"

namespace tools {
namespace {

constexpr int kFrames = 24, kLast = 20;
constexpr int kThreshold = 30;
constexpr float kDuration = 15;

constexpr char kText[] =
    "Two balls cross the picture. Where a frame differs from the one before, something moves; a "
    "history keeps when that was, and forgets it after 15 frames. Its gradient points where the "
    "motion goes.";

const std::vector<Declaration> kDeclarations = {
    {"src1", "static uint8_t src1[height * width], src2[height * width];  /* two frames */"},
    {"dst", "static uint8_t dst[height * width];"},
    {"silhouette", "static uint8_t silhouette[height * width];  /* not 0: moves */"},
    {"step", "int32_t step = width;"},
    {"history", "static float history[height * width];  /* kept from frame to frame */"},
    {"history_step", "int32_t history_step = 4 * width;"},
    {"now", "float now = 20, duration = 15;  /* in frames */"},
    {"dx", "static float dx[height * width];"},
    {"dy", "static float dy[height * width];"},
    {"angle", "static float angle[height * width];  /* degrees */"},
    {"count", "int32_t count = width * height;"},
};

void add_difference(Section& section, const Plane<uint8_t>& previous, const Plane<uint8_t>& now) {
  const RoiSize roi = now.size;
  Plane<uint8_t> difference(roi);
  const uint8_t *src1 = previous.data(), *src2 = now.data();
  uint8_t* dst = difference.data();
  const int32_t step = now.step();
  Plane<uint8_t> plain_difference(roi);
  Call call = NUQI_TIMED(nuqiAbsDiff_8u_C1R(src1, step, src2, step, dst, step, roi)).against([&] {
    plain::difference(previous, now, plain_difference);
  });
  plain::require_same(plain_difference.values, difference.values, "nuqiAbsDiff_8u_C1R");
  Plane<float> shown(roi);
  std::copy(difference.values.begin(), difference.values.end(), shown.values.begin());
  const double range = usual_range(shown);
  Figure figure("Difference of frames", "The balls glow at their old and new places",
                heat_colours(shown, range));
  figure.note("Of the last two frames: what stands still leaves only the camera's noise.")
      .with(heat_legend(range, "grey levels"));
  section.after.push_back(std::move(figure.with(std::move(call))));
}

Plane<uint8_t> silhouette_at(const Scene& scene, int index) {
  const Plane<uint8_t> before = frame_of(scene, index - 1, kFrames);
  const Plane<uint8_t> now = frame_of(scene, index, kFrames);
  Plane<uint8_t> difference(now.size);
  require_ok(nuqiAbsDiff_8u_C1R(before.data(), before.step(), now.data(), now.step(),
                                difference.data(), difference.step(), now.size),
             "nuqiAbsDiff_8u_C1R");
  return silhouette_of(difference, kThreshold);
}

// The last update is timed: it writes the same again and again.
Call build_history(const Scene& scene, Motion& motion) {
  float* history = motion.history.data();
  const int32_t history_step = motion.history.step();
  const RoiSize roi = motion.history.size;
  Call call;
  for (int index = 1; index <= kLast; ++index) {
    const Plane<uint8_t> moving = silhouette_at(scene, index);
    const uint8_t* silhouette = moving.data();
    const int32_t step = moving.step();
    const float now = float(index), duration = kDuration;
    require_ok(nuqiUpdateMotionHistory_8u32f_C1IR(silhouette, step, history, history_step, roi, now,
                                                  duration),
               "nuqiUpdateMotionHistory_8u32f_C1IR");
    if (index < kLast) continue;
    call = NUQI_TIMED(nuqiUpdateMotionHistory_8u32f_C1IR(silhouette, step, history, history_step,
                                                         roi, now, duration));
  }
  motion.now = kLast;
  motion.duration = kDuration;
  return call;
}

void add_history(Section& section, const Motion& motion, Call update) {
  Plane<float> age = motion.history;
  for (float& time : age.values) time = std::max(0.0f, time - (motion.now - motion.duration - 1));
  const double range = double(motion.duration) + 1;
  Figure figure("Motion history", "The ways of the balls, brightest at their ends",
                heat_colours(age, range));
  figure.note("The brighter, the later something moved there.")
      .with(Legend{heat_legend(range, "").gradient, "still", "15 frames ago → now", "now"})
      .with(std::move(update));
  section.after.push_back(std::move(figure));
}

void add_direction(Section& section, Motion& motion) {
  const RoiSize roi = motion.history.size;
  motion.dx = motion.dy = motion.angle = Plane<float>(roi);
  const float* history = motion.history.data();
  float *dx = motion.dx.data(), *dy = motion.dy.data(), *angle = motion.angle.data();
  const int32_t history_step = motion.history.step();
  Call across = NUQI_TIMED(nuqiSobel3x3_Dx_32f_C1R(history, history_step, dx, history_step, roi));
  Call down = NUQI_TIMED(nuqiSobel3x3_Dy_32f_C1R(history, history_step, dy, history_step, 0, roi));
  keep_steps(motion.history, motion.dx, motion.dy);
  spread(motion.dx);
  spread(motion.dy);
  dx = motion.dx.data(), dy = motion.dy.data();
  const int32_t count = int32_t(motion.angle.values.size());
  Call direction = NUQI_TIMED(nuqibFastArctan_32f(dy, dx, angle, count));
  Figure figure("Direction of motion", "The ways of the balls in the colours of their directions",
                motion_picture(motion));
  figure
      .note(
          "The angle of the history's gradient, blurred where it is 0 between its steps. "
          "Red went to the right, yellow-green down, cyan to the left, violet up; the brighter, "
          "the later; grey where no direction is known.")
      .with(direction_legend())
      .with(std::move(across))
      .with(std::move(down))
      .with(std::move(direction));
  section.after.push_back(std::move(figure));
}

}  // namespace

Section motion_section(const Scene& scene) {
  Section section{"motion", "Motion", kText, {}, {}, {}, kDeclarations};
  const Plane<uint8_t> previous = frame_of(scene, kLast - 1, kFrames);
  Motion motion;
  motion.frame = frame_of(scene, kLast, kFrames);
  motion.history = Plane<float>(scene.grey.size);
  const char* alt = "The picture with two balls in front of it and noise";
  section.before.emplace_back("Frame " + std::to_string(kLast), alt, picture_of(previous));
  section.before.emplace_back("Frame " + std::to_string(kLast + 1), alt, picture_of(motion.frame));
  add_difference(section, previous, motion.frame);
  Call update = build_history(scene, motion);
  add_history(section, motion, std::move(update));
  add_direction(section, motion);
  return section;
}

}  // namespace tools
