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

// Bytes between two inaccessible pages, touching the one that `wall` names. Of rows of bytes, `step`
// apart, each has such pages of its own where they fit between.
class WalledBytes {
 public:
  WalledBytes(size_t size, Wall wall) : WalledBytes(1, size, size, wall) {}
  WalledBytes(int rows, size_t row, size_t step, Wall wall)
      : size_(rows == 0 ? 0 : step * (rows - 1) + row) {
    const size_t page = page_size(), inner = (size_ + page - 1) / page * page;
    mapped_ = inner + 2 * page;
    base_ = static_cast<uint8_t*>(
        mmap(nullptr, mapped_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0));
    if (base_ == MAP_FAILED) throw std::bad_alloc();
    data_ = base_ + page + (wall == Wall::after ? inner - size_ : 0);
    if (step < row + 2 * page)
      open(data_, size_);
    else
      for (int y = 0; y < rows; ++y) open(data_ + y * step, row);
  }
  WalledBytes(const WalledBytes&) = delete;
  WalledBytes& operator=(const WalledBytes&) = delete;
  ~WalledBytes() { munmap(base_, mapped_); }

  static size_t page_size() { return static_cast<size_t>(sysconf(_SC_PAGESIZE)); }
  uint8_t* data() { return data_; }
  size_t size() const { return size_; }

 private:
  // Makes the pages accessible that hold these bytes.
  void open(uint8_t* from, size_t size) {
    const size_t page = page_size(), before = (from - base_) % page;
    if (size != 0 && mprotect(from - before, before + size, PROT_READ | PROT_WRITE) != 0)
      throw std::bad_alloc();
  }

  size_t size_, mapped_;
  uint8_t *base_, *data_;
};

// Paddings that give every row a wall of its own; and lay rows so far apart that the offset of the
// second is all that 32 bits can hold.
constexpr int kWallsBetween = INT32_MAX - 1, kFarApart = INT32_MAX;

// An image of `roi` at a wall. `padding` elements lie between two rows; none after the last.
template <class T>
class WalledImage {
 public:
  WalledImage(RoiSize roi, int padding, Wall wall, int channels = 1)
      : row_elements_(static_cast<size_t>(roi.width) * channels),
        height_(roi.height),
        walls_between_(padding >= kWallsBetween),
        step_(step_of(padding)),
        bytes_(height_, row_bytes(), static_cast<size_t>(step_), wall) {
    if (walls_between_)
      for (int y = 0; y < height_; ++y) std::memset(row(y), 0xA5, row_bytes());
    else
      std::memset(bytes_.data(), 0xA5, bytes_.size());
  }

  T* data() { return reinterpret_cast<T*>(bytes_.data()); }
  int32_t step() const { return step_; }

  // Rows are copied in and out: they need not be aligned to T.
  template <class Generate>
  void fill(Generate generate) {
    std::vector<T> values(row_elements_);
    for (int y = 0; y < height_; ++y) {
      for (T& value : values) value = generate();
      std::memcpy(row(y), values.data(), row_bytes());
    }
  }
  // The pixels, row after row.
  std::vector<T> pixels() {
    std::vector<T> all(row_elements_ * height_);
    for (int y = 0; y < height_; ++y)
      std::memcpy(all.data() + y * row_elements_, row(y), row_bytes());
    return all;
  }
  // Whether the bytes between the rows still hold what the constructor wrote.
  bool padding_untouched() {
    if (walls_between_) return true;
    for (int y = 0; y + 1 < height_; ++y)
      for (uint8_t* at = row(y) + row_bytes(); at != row(y + 1); ++at)
        if (*at != 0xA5) return false;
    return true;
  }
  std::vector<uint8_t> all_bytes() { return {bytes_.data(), bytes_.data() + bytes_.size()}; }

 private:
  size_t row_bytes() const { return row_elements_ * sizeof(T); }
  uint8_t* row(int y) { return bytes_.data() + static_cast<ptrdiff_t>(y) * step_; }
  int32_t step_of(int padding) const {
    const size_t page = WalledBytes::page_size();
    if (padding == kFarApart) return static_cast<int32_t>(INT32_MAX / page * page);
    if (padding == kWallsBetween) return static_cast<int32_t>((row_bytes() / page + 3) * page);
    return static_cast<int32_t>(row_bytes()) + padding * static_cast<int32_t>(sizeof(T));
  }

  size_t row_elements_;
  int height_;
  bool walls_between_;
  int32_t step_;
  WalledBytes bytes_;
};

}  // namespace nuqi::test
