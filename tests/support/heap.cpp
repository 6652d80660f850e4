// The interposed malloc and free.
#include "support/heap.h"

#include <cstring>

extern "C" {
void* __real_malloc(size_t size);
void __real_free(void* block);
void* __wrap_malloc(size_t size);
void __wrap_free(void* block);
}

namespace nuqi::test {
namespace {
thread_local WatchedHeap* watched = nullptr;
}

WatchedHeap::WatchedHeap(bool refuse) : refuses(refuse) { watched = this; }
WatchedHeap::~WatchedHeap() { watched = nullptr; }

}  // namespace nuqi::test

using nuqi::test::watched;
using nuqi::test::WatchedHeap;

void* __wrap_malloc(size_t size) {
  WatchedHeap* heap = watched;
  if (heap == nullptr) return __real_malloc(size);
  if (heap->refuses) return ++heap->refused, nullptr;
  void* block = __real_malloc(size);
  if (block == nullptr) return nullptr;
  std::memset(block, WatchedHeap::kFresh, size);
  ++heap->given;
  heap->last_block = static_cast<uint8_t*>(block);
  heap->last_size = size;
  return block;
}

void __wrap_free(void* block) {
  if (watched != nullptr) ++watched->freed;
  __real_free(block);
}
