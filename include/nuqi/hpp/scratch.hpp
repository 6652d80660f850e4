/// Working memory that is kept between calls.
#ifndef NUQI_HPP_SCRATCH_HPP
#define NUQI_HPP_SCRATCH_HPP

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <utility>

namespace nuqi {

namespace detail {

/// All that the working memory of a call depends on.
struct ScratchKey {
  void (*query)() = nullptr;
  std::uint64_t size = 0, more = 0;

  friend bool operator==(const ScratchKey& a, const ScratchKey& b) noexcept {
    return a.query == b.query && a.size == b.size && a.more == b.more;
  }
};

}  // namespace detail

/// Memory for operations that need some. It grows on demand and is kept: pass one object to all calls, and only
/// the first, or a larger one, allocates. Serves one call at a time, of any operation.
class Scratch {
 public:
  Scratch() noexcept = default;
  Scratch(Scratch&& other) noexcept { swap(other); }
  Scratch& operator=(Scratch&& other) noexcept {
    swap(other);
    return *this;
  }
  ~Scratch() = default;

  /// At least so many bytes, of undefined content; null where there are none. What was got before is lost.
  [[nodiscard]] void* get(std::size_t bytes) noexcept {
    if (bytes > size_) grow(bytes);
    return block_.get();
  }
  /// The bytes that are kept.
  [[nodiscard]] std::size_t size() const noexcept { return size_; }

  /// For operations: the memory of a call like the last one, whose needs are known, or get(bytes()). Null where
  /// bytes() is 0, too.
  template <class Bytes>
  [[nodiscard]] void* get_for(detail::ScratchKey key, Bytes bytes) noexcept {
    if (key == last_) return block_.get();
    const std::size_t needed = bytes();
    void* const memory = needed > 0 ? get(needed) : nullptr;
    if (memory != nullptr) last_ = key;
    return memory;
  }

 private:
  [[gnu::noinline, gnu::cold]] void grow(std::size_t bytes) noexcept {
    last_ = {};
    block_.reset();  // first, so that both need not fit
    block_.reset(new (std::nothrow) unsigned char[bytes]);
    size_ = block_ != nullptr ? bytes : 0;
  }
  void swap(Scratch& other) noexcept {
    std::swap(block_, other.block_);
    std::swap(size_, other.size_);
    std::swap(last_, other.last_);
  }

  std::unique_ptr<unsigned char[]> block_;
  std::size_t size_ = 0;
  detail::ScratchKey last_;
};

}  // namespace nuqi

#endif
