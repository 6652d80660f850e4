// The library's one allocator. Only the functions that make and free states call it.
#pragma once

#include <cstdint>

namespace nuqi {

// A block whose address is a multiple of 32 and from which size + 32 bytes are usable; null when
// the heap refuses.
void* AlignedAlloc(uint32_t size);

// Frees the block that *block points to and sets *block to null. Does nothing when `block` or
// *block is null or *block is no multiple of 32.
void AlignedFree(void** block);

}  // namespace nuqi
