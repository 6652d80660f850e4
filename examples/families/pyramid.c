/* One level down: half the width and height, smoothed. */
#include <nuqi/nuqi.h>
#include <stdio.h>
#include <stdlib.h>

int main(void) {
  uint8_t image[4][8], half[2][4];
  for (int i = 0; i < 32; ++i) image[i / 8][i % 8] = (uint8_t)(10 * (i % 8));
  int32_t size;
  if (nuqiPyrDownGetBufSize_Gauss5x5(8, 1, 1, &size) != StatusOk)
    return 1; /* width 8, 8u, one channel */
  void* buffer = malloc((size_t)size);
  RoiSize roi = {8, 4};
  if (buffer == NULL) return 1;
  if (nuqiPyrDown_Gauss5x5_8u_C1R(image[0], 8, half[0], 4, roi, buffer) != StatusOk) return 1;
  for (int x = 0; x < 4; ++x) printf("%d ", half[1][x]);
  putchar('\n');
  free(buffer);
  return 0;
}
/* prints: 8 20 40 59 */
