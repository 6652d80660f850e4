/* The first derivative along x with an aperture of 5, of a slope. */
#include <nuqi/nuqi.h>
#include <stdio.h>

int main(void) {
  uint8_t slope[3][6];
  int16_t dx[3][6];
  for (int i = 0; i < 18; ++i) slope[i / 6][i % 6] = (uint8_t)(10 * (i % 6));
  ConvolState* state;
  RoiSize roi = {6, 3};
  /* Width 6, 8u, aperture 5, top row first, order 1 along x, order 0 along y. */
  if (nuqiSobelInitAlloc(6, 1, 5, 0, 1, 0, &state) != StatusOk) return 1;
  if (nuqiSobel_8u16s_C1R(slope[0], 6, dx[0], 12, &roi, state, 0) != StatusOk) return 1;
  for (int x = 0; x < 6; ++x) printf("%d ", dx[1][x] / 128); /* the gain of a slope of 1 is 128 */
  putchar('\n');
  return nuqiConvolFree(state);
}
/* prints: 5 8 10 10 8 5 */
