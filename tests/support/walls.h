// Images that end, or start, at an inaccessible page: one byte too far and the test dies there.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "nuqi/nuqi.h"

namespace nuqi::test {

enum class Wall { after, before };

// Bytes between two inaccessible pages, touching the one that `wall` names. Of rows of bytes, `step`
// apart, each has such pages of its own where they fit between. The report of a crash calls them by
// their name (support/crash.h).
class WalledBytes {
 public:
  WalledBytes(size_t size, Wall wall, const char* name = "buffer")
      : WalledBytes(1, size, size, wall, name) {}
  WalledBytes(int rows, size_t row, size_t step, Wall wall, const char* name = "buffer");
  WalledBytes(const WalledBytes&) = delete;
  WalledBytes& operator=(const WalledBytes&) = delete;
  ~WalledBytes();

  static size_t page_size() { return static_cast<size_t>(sysconf(_SC_PAGESIZE)); }
  uint8_t* data() { return data_; }
  size_t size() const { return size_; }
  const char* name() const { return name_; }

  // Where an address lies that is not one of the bytes: `distance` bytes beside them, or beside a row
  // of them, which is -1 where rows have no walls of their own.
  struct Hit {
    Wall side;
    size_t distance;
    int row;
  };
  Hit hit(const uint8_t* address) const;
  // The living bytes whose wall holds the address, or null.
  static const WalledBytes* with_wall_at(const uint8_t* address);

 private:
  void open(uint8_t* from, size_t size);

  const char* name_;
  int rows_;
  size_t row_, step_, size_, mapped_;
  uint8_t *base_, *data_;
  WalledBytes *older_ = newest_, *newer_ = nullptr;
  static inline WalledBytes* newest_ = nullptr;
};

// Paddings that give every row a wall of its own; and lay rows so far apart that the offset of the
// second is all that 32 bits can hold.
constexpr int kWallsBetween = INT32_MAX - 1, kFarApart = INT32_MAX;

// What a call's images look like: `padding[i]` is that of image i.
struct Case {
  static constexpr int kMostImages = 5;

  RoiSize roi;
  Wall wall = Wall::after;
  std::array<int, kMostImages> padding = {};
};

// Image number `image` of a case. Its padding lies between two rows, in elements; none after the last.
template <class T>
class WalledImage {
 public:
  WalledImage(const char* name, const Case& c, int image = 0, int channels = 1)
      : row_elements_(static_cast<size_t>(c.roi.width) * channels),
        height_(c.roi.height),
        walls_between_(c.padding[image] >= kWallsBetween),
        step_(step_of(c.padding[image])),
        bytes_(height_, row_bytes(), static_cast<size_t>(step_), c.wall, name) {
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
