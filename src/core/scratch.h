// A caller's scratch buffer, divided into regions.
//
// One plan_... function per family lays its regions out. The size query and the call that uses the
// buffer both ask it, so they cannot disagree:
//
//   ScratchLayout layout;
//   plan.rows = layout.add<float>(width * height);      the plan keeps Regions
//   plan.size = layout.size();                          the query returns it, where fits_int allows
//   const Scratch scratch(buffer);
//   float* rows = scratch[plan.rows];                   the call
#pragma once

#include <cstdint>

namespace nuqi {

// Where elements of T lie in a buffer. The buffer, and so a T, has any alignment unless the layout has
// one.
template <class T>
struct Region {
  int64_t begin = 0;  // in bytes from the start
  int64_t count = 0;
};

// Places regions one behind the other, each on a multiple of `alignment` (a power of 2) from the start.
class ScratchLayout {
 public:
  constexpr explicit ScratchLayout(int64_t alignment = 1) : alignment_(alignment) {}

  // Room for `count` elements.
  template <class T>
  constexpr Region<T> add(int64_t count) {
    constexpr int64_t kElement = sizeof(T);
    const Region<T> region = {end_, count};
    if (count > (kOversized - end_) / kElement)
      end_ = kOversized;
    else
      end_ = (end_ + count * kElement + alignment_ - 1) & -alignment_;
    return region;
  }

  // Bytes that the regions take; kOversized where that is more.
  constexpr int64_t end() const { return end_; }
  // Bytes that a buffer at any address needs: those, and what aligning its start may cost.
  constexpr int64_t size() const { return alignment_ == 1 ? end_ : end_ + alignment_; }

  static constexpr int64_t kOversized = int64_t{1} << 62;

 private:
  int64_t alignment_, end_ = 0;
};

// Sizes are told to callers as ints.
constexpr bool fits_int(int64_t size) { return size <= INT32_MAX; }

class Scratch {
 public:
  // Starts at the buffer's first multiple of `alignment`: the layout's.
  explicit Scratch(void* buffer, uintptr_t alignment = 1)
      : start_((reinterpret_cast<uintptr_t>(buffer) + alignment - 1) & -alignment) {}

  template <class T>
  T* operator[](Region<T> region) const {
    return reinterpret_cast<T*>(start_ + static_cast<uintptr_t>(region.begin));
  }

 private:
  uintptr_t start_;
};

}  // namespace nuqi
