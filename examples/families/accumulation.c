/* A background model: the mean and the variance of frames, pixel by pixel. */
#include <nuqi/nuqi.h>
#include <stdio.h>

int main(void) {
  const uint8_t frames[4][6] = {{10, 20, 30, 40, 50, 60},
                                {10, 24, 30, 40, 50, 0},
                                {10, 20, 30, 40, 50, 60},
                                {10, 24, 30, 40, 50, 0}};
  float sum[6] = {0}, squares[6] = {0};
  RoiSize roi = {6, 1};
  for (int i = 0; i < 4; ++i) {
    StatusCode status = nuqiAdd_8u32f_C1IR(frames[i], 6, sum, 6 * sizeof(float), roi);
    if (status == StatusOk)
      status = nuqiAddSquare_8u32f_C1IR(frames[i], 6, squares, 6 * sizeof(float), roi);
    if (status != StatusOk) return 1;
  }
  for (int x = 0; x < 6; ++x) {
    const float mean = sum[x] / 4;
    printf("%g+-%g ", mean, squares[x] / 4 - mean * mean);
  }
  putchar('\n');
  return 0;
}
/* prints: 10+-0 22+-4 30+-0 40+-0 50+-0 30+-900 */
