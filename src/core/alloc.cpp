// Aligned blocks from malloc, with the raw address stored right before the block.
#include "core/alloc.h"

#include <cstdlib>
#include <cstring>

namespace nuqi {
namespace {

constexpr uintptr_t kAlignment = 32;

// The heap returns multiples of 8, so the block starts at least 8 bytes after the raw address: room
// for a pointer of either size.
void* word_before(void* block) { return static_cast<char*>(block) - sizeof(void*); }

}  // namespace

void* AlignedAlloc(uint32_t size) {
  constexpr uint32_t kSlack = 68;
  if (sizeof(size_t) == 4 && size > UINT32_MAX - kSlack) return nullptr;
  void* raw = std::malloc(size_t{size} + kSlack);
  if (raw == nullptr) return nullptr;
  const uintptr_t raw_address = reinterpret_cast<uintptr_t>(raw);
  const uintptr_t address = (raw_address + 36) / kAlignment * kAlignment;
  void* block = static_cast<char*>(raw) + (address - raw_address);
  std::memcpy(word_before(block), &raw, sizeof raw);
  return block;
}

void AlignedFree(void** block) {
  if (block == nullptr || *block == nullptr) return;
  if (reinterpret_cast<uintptr_t>(*block) % kAlignment != 0) return;
  void* raw = nullptr;
  std::memcpy(&raw, word_before(*block), sizeof raw);
  std::free(raw);
  *block = nullptr;
}

}  // namespace nuqi
