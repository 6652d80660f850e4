// Interposes malloc and free (linker option --wrap): counts blocks, fills them, or refuses them.
#pragma once

#include <cstddef>
#include <cstdint>

namespace nuqi::test {

// While one lives, blocks of this thread come filled with kFresh, or are refused.
class WatchedHeap {
 public:
  static constexpr uint8_t kFresh = 0xA5;

  explicit WatchedHeap(bool refuses = false);
  WatchedHeap(const WatchedHeap&) = delete;
  WatchedHeap& operator=(const WatchedHeap&) = delete;
  ~WatchedHeap();

  int given = 0, freed = 0, refused = 0;
  uint8_t* last_block = nullptr;
  size_t last_size = 0;
  const bool refuses;
};

}  // namespace nuqi::test
