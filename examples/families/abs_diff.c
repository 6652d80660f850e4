/* Where two frames differ. */
#include <nuqi/nuqi.h>
#include <stdio.h>

int main(void) {
  const uint8_t before[2][3] = {{10, 20, 30}, {40, 50, 60}};
  const uint8_t after[2][3] = {{10, 25, 30}, {40, 50, 0}};
  uint8_t difference[2][3];
  RoiSize roi = {3, 2};
  if (nuqiAbsDiff_8u_C1R(before[0], 3, after[0], 3, difference[0], 3, roi) != StatusOk) return 1;
  for (int i = 0; i < 6; ++i) printf("%d ", difference[i / 3][i % 3]);
  putchar('\n');
  return 0;
}
/* prints: 0 5 0 0 0 60 */
