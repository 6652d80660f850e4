/* A histogram of all 256 values: the last level is exclusive, so what is left over are the pixels of 255. */
#include <nuqi/nuqi.h>
#include <stdio.h>

int main(void) {
  const uint8_t image[2][4] = {{0, 0, 100, 255}, {100, 255, 254, 255}};
  uint8_t levels[256];
  int32_t counts[256] = {0};
  for (int i = 0; i < 256; ++i) levels[i] = (uint8_t)i;
  RoiSize roi = {4, 2};
  if (nuqiCalcHist_8u_C1R(image[0], 4, roi, counts, 256, levels) != StatusOk) return 1;
  counts[255] = roi.width * roi.height;
  for (int i = 0; i < 255; ++i) counts[255] -= counts[i];
  printf("%d %d %d %d\n", (int)counts[0], (int)counts[100], (int)counts[254], (int)counts[255]);
  return 0;
}
/* prints: 2 2 1 3 */
