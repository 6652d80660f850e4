/* The mean of 3x3 pixels: the sums, divided by nine. */
#include <nuqi/nuqi.h>
#include <stdio.h>

int main(void) {
  const uint8_t image[3][5] = {{0, 0, 0, 0, 0}, {0, 0, 90, 0, 0}, {0, 0, 0, 0, 0}};
  int16_t sums[3][5];
  ConvolState* state;
  RoiSize roi = {5, 3};
  if (nuqiBlurInitAlloc(5, 1, 3, &state) != StatusOk) return 1; /* width 5, 8u, windows of 3x3 */
  if (nuqiBlur_8u16s_C1R(image[0], 5, sums[0], 10, &roi, state, 0) != StatusOk) return 1;
  for (int x = 0; x < 5; ++x) printf("%d ", sums[1][x] / 9);
  putchar('\n');
  return nuqiConvolFree(state);
}
/* prints: 0 10 10 10 0 */
