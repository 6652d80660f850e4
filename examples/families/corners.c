/* The strongest corner of a picture with a bright quadrant. */
#include <nuqi/nuqi.h>
#include <stdio.h>
#include <stdlib.h>

enum { width = 16, height = 12 };

int main(void) {
  uint8_t image[height][width] = {{0}};
  float strength[height][width], greatest;
  for (int y = 6; y < height; ++y)
    for (int x = 8; x < width; ++x) image[y][x] = 200;
  int32_t size;
  if (nuqiMinEigenValGetSize(width, 3, 3, &size) != StatusOk) return 1;
  void* buffer = malloc((size_t)size);
  RoiSize roi = {width, height};
  PixelPoint corner;
  if (buffer == NULL) return 1;
  if (nuqiMinEigenVal_8u32f_C1R(image[0], width, strength[0], sizeof strength[0], roi, 3, 3,
                                buffer) != StatusOk)
    return 1;
  if (nuqiMinMaxIndx_32f_C1R(strength[0], sizeof strength[0], roi, NULL, &greatest, NULL,
                             &corner) != StatusOk)
    return 1;
  printf("%.1f at (%d, %d)\n", greatest, (int)corner.x, (int)corner.y);
  free(buffer);
  return 0;
}
/* prints: 39.2 at (8, 6) */
