/* A picture that comes in stripes: a state keeps the rows that the next stripe needs. Make one for a width and
 * keep it, since releasing it frees nothing. */
#include <nuqi/nuqi.h>
#include <stdio.h>

int main(void) {
  uint8_t stripe[2][4];
  int16_t sums[3][4];
  ConvolState* state;
  if (nuqiBlurInitAlloc(4, 1, 3, &state) != StatusOk) return 1; /* width 4, 8u, windows of 3x3 */
  const int32_t phases[3] = {1, 4, 2};                          /* first, middle, last */
  for (int i = 0; i < 3; ++i) {
    for (int x = 0; x < 8; ++x) stripe[x / 4][x % 4] = (uint8_t)i;
    RoiSize roi = {4, 2}; /* rows in, then rows out */
    if (nuqiBlur_8u16s_C1R(stripe[0], 4, sums[0], 8, &roi, state, phases[i]) != StatusOk) return 1;
    for (int y = 0; y < roi.height; ++y) printf("%d ", sums[y][0]);
    printf("| ");
  }
  putchar('\n');
  return nuqiConvolFree(state);
}
/* prints: 0 | 3 6 | 12 15 18 | */
