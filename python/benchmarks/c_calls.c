/* What the C functions take, for overhead.py: reads names of work from stdin, a line each, and answers each with
 * a time. "abs_diff", "norm", "box" and "fill" of 64x64: nanoseconds a call, the least of many rounds. "threads":
 * calls of Canny on 640x480 a second by two threads. */
#define _POSIX_C_SOURCE 200809L
#include <nuqi/nuqi.h>
#include <pthread.h>
#include <stdio.h>
#include <string.h>
#include <time.h>

enum { kSide = 64, kCalls = 2000, kRounds = 30, kWidth = 640, kHeight = 480, kCannyCalls = 150 };

static double now(void) {
  struct timespec t;
  clock_gettime(CLOCK_MONOTONIC, &t);
  return (double)t.tv_sec * 1e9 + (double)t.tv_nsec;
}

static uint8_t a[kSide * kSide], b[kSide * kSide], out[kSide * kSide], buffer[6 * kSide * kSide];
static int16_t sums[kSide * kSide];
static ConvolState* state;

static void abs_diff(void) {
  const RoiSize roi = {kSide, kSide};
  nuqiAbsDiff_8u_C1R(a, kSide, b, kSide, out, kSide, roi);
}
static void norm(void) {
  const RoiSize roi = {kSide, kSide};
  double result;
  nuqiNormDiff_L2_8u_C1MR(a, kSide, b, kSide, b, kSide, roi, &result);
}
static void box(void) {
  RoiSize roi = {kSide, kSide};
  nuqiBlur_8u16s_C1R(a, kSide, sums, 2 * kSide, &roi, state, 0);
}
static void fill(void) {
  const RoiSize roi = {kSide, kSide};
  const PixelPoint seed = {0, 0};
  FillRegion region;
  nuqiFloodFill_4Con_8u_C1IR(a, kSide, roi, seed, 0, &region, buffer);
}

static double least(void (*call)(void)) {
  double best = 1e30;
  for (int round = 0; round < kRounds; ++round) {
    const double start = now();
    for (int i = 0; i < kCalls; ++i) call();
    const double time = (now() - start) / kCalls;
    if (time < best) best = time;
  }
  return best;
}

/* A picture's derivatives that have edges everywhere. */
typedef struct Picture {
  int16_t dx[kWidth * kHeight], dy[kWidth * kHeight];
  uint8_t edges[kWidth * kHeight];
  uint8_t scratch[12 * (kWidth + 2) * (kHeight + 2)];
} Picture;

static Picture pictures[2];

static void draw(Picture* picture) {
  for (int64_t i = 0; i < kWidth * kHeight; ++i) {
    picture->dx[i] = (int16_t)(i * 7919 % 401 - 200);
    picture->dy[i] = (int16_t)(i * 104729 % 401 - 200);
  }
}

static void* canny(void* argument) {
  const RoiSize roi = {kWidth, kHeight};
  Picture* p = argument;
  for (int i = 0; i < kCannyCalls; ++i) {
    nuqiCanny_16s8u_C1R(p->dx, 2 * kWidth, p->dy, 2 * kWidth, p->edges, kWidth, roi, 100, 300,
                        p->scratch);
  }
  return NULL;
}

static double two_threads(void) {
  pthread_t threads[2];
  draw(&pictures[0]);
  draw(&pictures[1]);
  const double start = now();
  for (int i = 0; i < 2; ++i) pthread_create(&threads[i], NULL, canny, &pictures[i]);
  for (int i = 0; i < 2; ++i) pthread_join(threads[i], NULL);
  return 2 * kCannyCalls / ((now() - start) * 1e-9);
}

int main(void) {
  nuqiBlurInitAlloc(kSide, 1, 3, &state);
  char line[64];
  while (fgets(line, sizeof line, stdin) != NULL) {
    line[strcspn(line, "\n")] = 0;
    double answer = -1;
    if (strcmp(line, "abs_diff") == 0) answer = least(abs_diff);
    if (strcmp(line, "norm") == 0) answer = least(norm);
    if (strcmp(line, "box") == 0) answer = least(box);
    if (strcmp(line, "fill") == 0) answer = least(fill);
    if (strcmp(line, "threads") == 0) answer = two_threads();
    printf("%f\n", answer);
    fflush(stdout);
  }
  return 0;
}
