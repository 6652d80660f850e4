/* Where a template fits best: the greatest correlation coefficient. */
#include <nuqi/nuqi.h>
#include <stdio.h>
#include <stdlib.h>

enum { width = 12, height = 8, across = width - 3 + 1, down = height - 3 + 1 };

int main(void) {
  const uint8_t cross[3][3] = {{10, 90, 10}, {90, 90, 90}, {10, 90, 10}};
  uint8_t image[height][width];
  for (int i = 0; i < width * height; ++i) image[i / width][i % width] = (uint8_t)(i * i % 50);
  for (int i = 0; i < 9; ++i) image[4 + i / 3][6 + i % 3] = (uint8_t)(cross[i / 3][i % 3] + 100);
  float scores[down][across], best;
  RoiSize roi = {width, height}, tpl = {3, 3}, places = {across, down};
  PixelPoint at;
  int32_t size;
  if (nuqiMatchTemplateGetBufSize_CoeffNormed(roi, tpl, 1, &size) != StatusOk) return 1;
  void* buffer = malloc((size_t)size);
  if (buffer == NULL) return 1;
  if (nuqiMatchTemplate_CoeffNormed_8u32f_C1R(image[0], width, roi, cross[0], 3, tpl, scores[0],
                                              sizeof scores[0], buffer) != StatusOk)
    return 1;
  if (nuqiMinMaxIndx_32f_C1R(scores[0], sizeof scores[0], places, NULL, &best, NULL, &at) !=
      StatusOk)
    return 1;
  printf("%.2f at (%d, %d)\n", best, (int)at.x, (int)at.y);
  free(buffer);
  return 0;
}
/* prints: 1.00 at (6, 4) */
