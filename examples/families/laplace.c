/* Negative on a bright spot, positive around it. */
#include <nuqi/nuqi.h>
#include <stdio.h>

int main(void) {
  const uint8_t image[3][5] = {{0, 0, 0, 0, 0}, {0, 0, 10, 0, 0}, {0, 0, 0, 0, 0}};
  int16_t second[3][5];
  ConvolState* state;
  RoiSize roi = {5, 3};
  if (nuqiLaplaceInitAlloc(5, 1, 3, &state) != StatusOk) return 1; /* width 5, 8u, size 3 */
  if (nuqiLaplace_8u16s_C1R(image[0], 5, second[0], 10, &roi, state, 0) != StatusOk) return 1;
  for (int i = 0; i < 15; ++i) printf("%d%s", second[i / 5][i % 5], i % 5 == 4 ? " | " : " ");
  putchar('\n');
  return nuqiConvolFree(state);
}
/* prints: 0 20 0 20 0 | 0 0 -80 0 0 | 0 20 0 20 0 | */
