// Images that end, or start, at an inaccessible page: one byte too far and the test dies there.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <new>
#include <vector>

#include "nuqi/nuqi.h"

namespace nuqi::test {

enum class Wall { after, before };

// Bytes between two inaccessible pages, touching the one that `wall` names.
class WalledBytes {
 public:
  WalledBytes(size_t size, Wall wall) : size_(size) {
    const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    const size_t inner = (size + page - 1) / page * page;
    mapped_ = inner + 2 * page;
    base_ = static_cast<uint8_t*>(
        mmap(nullptr, mapped_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    if (base_ == MAP_FAILED) throw std::bad_alloc();
    if (inner != 0 && mprotect(base_ + page, inner, PROT_READ | PROT_WRITE) != 0)
      throw std::bad_alloc();
    data_ = base_ + page + (wall == Wall::after ? inner - size : 0);
  }
  WalledBytes(const WalledBytes&) = delete;
  WalledBytes& operator=(const WalledBytes&) = delete;
  ~WalledBytes() { munmap(base_, mapped_); }

  uint8_t* data() { return data_; }
  size_t size() const { return size_; }

 private:
  size_t size_, mapped_;
  uint8_t *base_, *data_;
};

// An image of `roi` at a wall. `padding` bytes lie between two rows; none after the last.
template <class T>
class WalledImage {
 public:
  WalledImage(RoiSize roi, int32_t padding, Wall wall, int channels = 1)
      : row_elements_(static_cast<size_t>(roi.width) * channels),
        height_(roi.height),
        step_(static_cast<int32_t>(row_elements_ * sizeof(T)) + padding),
        bytes_(height_ == 0
                   ? 0
                   : static_cast<size_t>(step_) * (height_ - 1) + row_elements_ * sizeof(T),
               wall) {
    std::memset(bytes_.data(), 0xA5, bytes_.size());
  }

  T* data() { return reinterpret_cast<T*>(bytes_.data()); }
  int32_t step() const { return step_; }

  // Rows are copied in and out: they need not be aligned to T.
  template <class Generate>
  void fill(Generate generate) {
    std::vector<T> row(row_elements_);
    for (int y = 0; y < height_; ++y) {
      for (T& value : row) value = generate();
      std::memcpy(row_bytes(y), row.data(), row.size() * sizeof(T));
    }
  }
  // The pixels, row after row.
  std::vector<T> pixels() {
    std::vector<T> all(row_elements_ * height_);
    for (int y = 0; y < height_; ++y)
      std::memcpy(all.data() + y * row_elements_, row_bytes(y), row_elements_ * sizeof(T));
    return all;
  }
  // Whether the bytes between the rows still hold what the constructor wrote.
  bool padding_untouched() {
    const size_t row = row_elements_ * sizeof(T);
    for (int y = 0; y + 1 < height_; ++y)
      for (uint8_t* at = row_bytes(y) + row; at != row_bytes(y + 1); ++at)
        if (*at != 0xA5) return false;
    return true;
  }
  std::vector<uint8_t> all_bytes() { return {bytes_.data(), bytes_.data() + bytes_.size()}; }

 private:
  uint8_t* row_bytes(int y) { return bytes_.data() + static_cast<ptrdiff_t>(y) * step_; }

  size_t row_elements_;
  int height_;
  int32_t step_;
  WalledBytes bytes_;
};

}  // namespace nuqi::test
