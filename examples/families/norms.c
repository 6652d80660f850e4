/* How far two images are apart, where a mask says so. */
#include <nuqi/nuqi.h>
#include <stdio.h>

int main(void) {
  const uint8_t a[4] = {10, 20, 30, 40}, b[4] = {13, 24, 30, 0}, mask[4] = {1, 1, 1, 0};
  double greatest, sum, root;
  RoiSize roi = {4, 1};
  if (nuqiNormDiff_Inf_8u_C1MR(a, 4, b, 4, mask, 4, roi, &greatest) != StatusOk) return 1;
  if (nuqiNormDiff_L1_8u_C1MR(a, 4, b, 4, mask, 4, roi, &sum) != StatusOk) return 1;
  if (nuqiNormDiff_L2_8u_C1MR(a, 4, b, 4, mask, 4, roi, &root) != StatusOk) return 1;
  printf("%g %g %g\n", greatest, sum, root);
  return 0;
}
/* prints: 4 7 5 */
