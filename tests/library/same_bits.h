// What each family adds to the one hash over the results of the whole library.
#pragma once

#include "support/comparison.h"

namespace nuqi::test {

void hash_accumulate(Hash& hash);
void hash_derivative3x3(Hash& hash);
void hash_canny(Hash& hash);
void hash_mean(Hash& hash);
void hash_norm(Hash& hash);
void hash_min_max(Hash& hash);
void hash_abs_diff(Hash& hash);
void hash_copy(Hash& hash);
void hash_motion_history(Hash& hash);
void hash_fast_arctan(Hash& hash);
void hash_blur(Hash& hash);
void hash_sobel(Hash& hash);
void hash_laplace(Hash& hash);
void hash_sample_line(Hash& hash);
void hash_histogram(Hash& hash);

}  // namespace nuqi::test
