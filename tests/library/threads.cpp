// Concurrent first calls and concurrent calls on shared sources: a program for the thread sanitizer.
// A program of its own, since a process makes its first call once.
#include <cstdio>
#include <thread>
#include <vector>

#include "nuqi/nuqi.h"

int main() {
  constexpr int kThreads = 8, kPixels = 5000;
  const std::vector<uint8_t> src(kPixels, 3);
  std::vector<std::vector<float>> sums(kThreads, std::vector<float>(kPixels));
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i)
    threads.emplace_back([&, i] {
      for (int round = 0; round < 100; ++round) {
        nuqiAdd_8u32f_C1IR(src.data(), 100, sums[i].data(), 400, {100, kPixels / 100});
      }
    });
  for (std::thread& thread : threads) thread.join();
  for (int i = 0; i < kThreads; ++i)
    for (int x = 0; x < kPixels; ++x)
      if (sums[i][x] != 300.0f) {
        std::fprintf(stderr, "thread %d, pixel %d: %g\n", i, x, sums[i][x]);
        return 1;
      }
}
