/* When each pixel last moved, of the last two seconds. */
#include <nuqi/nuqi.h>
#include <stdio.h>

int main(void) {
  /* Something moves to the right, a pixel a second. */
  const uint8_t silhouettes[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};
  float history[4] = {0};
  RoiSize roi = {4, 1};
  for (int second = 1; second <= 4; ++second)
    if (nuqiUpdateMotionHistory_8u32f_C1IR(silhouettes[second - 1], 4, history, 16, roi,
                                           (float)second, 2) != StatusOk)
      return 1;
  for (int x = 0; x < 4; ++x) printf("%g ", history[x]);
  putchar('\n');
  return 0;
}
/* prints: 0 2 3 4 */
