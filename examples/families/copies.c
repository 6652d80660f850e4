/* Swaps red and blue: pixels to planes, and back in another order. */
#include <nuqi/nuqi.h>
#include <stdio.h>

int main(void) {
  const uint8_t pixels[2][3] = {{1, 2, 3}, {4, 5, 6}};
  uint8_t red[2], green[2], blue[2], swapped[2][3];
  uint8_t* const planes[3] = {red, green, blue};
  uint8_t* reversed[3] = {blue, green, red};
  RoiSize roi = {2, 1};
  if (nuqiCopy_8u_C3P3R(pixels[0], 6, planes, 2, roi) != StatusOk) return 1;
  /* C needs the cast: its rules for const stop at the first pointer. */
  if (nuqiCopy_8u_P3C3R((const uint8_t* const*)reversed, 2, swapped[0], 6, roi) != StatusOk)
    return 1;
  for (int i = 0; i < 6; ++i) printf("%d ", swapped[i / 3][i % 3]);
  putchar('\n');
  return 0;
}
/* prints: 3 2 1 6 5 4 */
