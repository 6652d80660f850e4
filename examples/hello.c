#include <nuqi/nuqi.h>
#include <stdio.h>

int main(void) {
  uint8_t picture[6][8] = {{0}};
  int16_t dx[6][8];
  for (int y = 0; y < 6; ++y) picture[y][4] = 100; /* a bright vertical line */
  RoiSize roi = {8, 6};
  StatusCode status = nuqiSobel3x3_Dx_8u16s_C1R(&picture[0][0], 8, &dx[0][0], 16, roi);
  for (int x = 0; x < 8; ++x) printf("%5d", dx[2][x]);
  printf("   status %d\n", (int)status);
  return status;
}
