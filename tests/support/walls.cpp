// Makes and finds the walls.
#include "support/walls.h"

#include <algorithm>
#include <new>

namespace nuqi::test {

WalledBytes::WalledBytes(int rows, size_t row, size_t step, Wall wall, const char* name)
    : name_(name),
      rows_(rows),
      row_(row),
      step_(step),
      size_(rows == 0 ? 0 : step * (rows - 1) + row) {
  const size_t page = page_size(), inner = (size_ + page - 1) / page * page;
  mapped_ = inner + 2 * page;
  base_ = static_cast<uint8_t*>(
      mmap(nullptr, mapped_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0));
  if (base_ == MAP_FAILED) throw std::bad_alloc();
  data_ = base_ + page + (wall == Wall::after ? inner - size_ : 0);
  if (step_ < row_ + 2 * page) rows_ = 1, row_ = size_;
  for (int y = 0; y < rows_; ++y) open(data_ + y * step_, row_);
  if (older_ != nullptr) older_->newer_ = this;
  newest_ = this;
}

WalledBytes::~WalledBytes() {
  (newer_ != nullptr ? newer_->older_ : newest_) = older_;
  if (older_ != nullptr) older_->newer_ = newer_;
  munmap(base_, mapped_);
}

// Makes the pages accessible that hold these bytes.
void WalledBytes::open(uint8_t* from, size_t size) {
  const size_t page = page_size(), before = (from - base_) % page;
  if (size != 0 && mprotect(from - before, before + size, PROT_READ | PROT_WRITE) != 0)
    throw std::bad_alloc();
}

WalledBytes::Hit WalledBytes::hit(const uint8_t* address) const {
  const auto beside = [&](Wall side, size_t distance, size_t row) {
    return Hit{side, distance, rows_ > 1 ? static_cast<int>(row) : -1};
  };
  if (address < data_) return beside(Wall::before, data_ - address, 0);
  const size_t offset = address - data_, last = rows_ - 1;
  const size_t row = rows_ > 1 ? std::min(offset / step_, last) : 0, next = (row + 1) * step_;
  const size_t after = offset - row * step_ - row_ + 1;
  if (row != last && next - offset < after) return beside(Wall::before, next - offset, row + 1);
  return beside(Wall::after, after, row);
}

const WalledBytes* WalledBytes::with_wall_at(const uint8_t* address) {
  for (const WalledBytes* bytes = newest_; bytes != nullptr; bytes = bytes->older_)
    if (address >= bytes->base_ && address < bytes->base_ + bytes->mapped_) return bytes;
  return nullptr;
}

}  // namespace nuqi::test
