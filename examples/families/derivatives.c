/* Both first derivatives of a picture with a bright corner. */
#include <nuqi/nuqi.h>
#include <stdio.h>

int main(void) {
  const uint8_t image[3][4] = {{0, 0, 0, 0}, {0, 0, 9, 9}, {0, 0, 9, 9}};
  int16_t dx[3][4], dy[3][4];
  RoiSize roi = {4, 3};
  /* Steps are in bytes. */
  if (nuqiSobel3x3_Dx_8u16s_C1R(image[0], 4, dx[0], 8, roi) != StatusOk) return 1;
  if (nuqiSobel3x3_Dy_8u16s_C1R(image[0], 4, dy[0], 8, 0, roi) != StatusOk) return 1;
  for (int x = 0; x < 4; ++x) printf("(%d, %d) ", dx[1][x], dy[1][x]);
  putchar('\n');
  return 0;
}
/* prints: (0, 0) (27, 9) (27, 27) (0, 36) */
