/// States of filters and morphology: those given back are kept for the next one who needs their like.
#ifndef NUQI_HPP_STATES_HPP
#define NUQI_HPP_STATES_HPP

#include <nuqi/nuqi.h>

#include <array>
#include <cstdint>
#include <limits>
#include <map>
#include <mutex>
#include <tuple>
#include <utility>
#include <vector>

namespace nuqi::detail {

/// Whatever two states must have in common to stand for each other.
struct StateKey {
  enum Kind : std::int32_t { blur, sobel, laplace, morphology };

  Kind kind = blur;
  std::int32_t width = 0;                 // a power of two, where there is one
  std::int32_t type = 0;                  // of elements and channels
  std::array<std::int32_t, 6> numbers{};  // sizes, orders, channels: the kind says which
  std::vector<std::int32_t> mask{};       // of arbitrary elements

  friend bool operator<(const StateKey& a, const StateKey& b) {
    return std::tie(a.kind, a.width, a.type, a.numbers, a.mask) <
           std::tie(b.kind, b.width, b.type, b.numbers, b.mask);
  }
};

/// The width of the state that serves images of a width. A state serves narrower images, too: powers
/// of two make 31 states at most of all widths, and waste less than half of a state.
inline std::int32_t state_width(std::int32_t width) noexcept {
  constexpr std::int32_t kGreatest = std::int32_t{1} << 30;
  if (width > kGreatest) return std::numeric_limits<std::int32_t>::max();
  std::int32_t result = 1;
  while (result < width) result *= 2;
  return result;
}

inline void end_state(ConvolState* state) noexcept { nuqiConvolFree(state); }
inline void end_state(MorphState* state) noexcept { nuqiMorphologyFree(state); }

/// The states that nobody uses. The C functions that end a state leave its memory allocated by
/// contract; a state that is kept here is used again instead, so that a program has as many of a key
/// as it has ever used at once. Safe to use from any thread.
template <class State>
class StatePool {
 public:
  /// The one pool. It is never destroyed: objects of static storage duration give back states, too.
  static StatePool& instance() {
    static StatePool& pool = *new StatePool;
    return pool;
  }

  /// Null where none is kept.
  State* take(const StateKey& key) {
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto found = kept_.find(key);
    if (found == kept_.end() || found->second.empty()) return nullptr;
    State* const state = found->second.back();
    found->second.pop_back();
    return state;
  }

  void keep(const StateKey& key, State* state) noexcept {
    try {
      const std::lock_guard<std::mutex> lock(mutex_);
      kept_[key].push_back(state);
    } catch (...) {  // no memory to remember it
      end_state(state);
    }
  }

 private:
  StatePool() = default;

  std::mutex mutex_;
  std::map<StateKey, std::vector<State*>> kept_;
};

/// A state from the pool, which goes back there.
template <class State>
class PooledState {
 public:
  PooledState() = default;
  /// `make()` returns a state with this key, and is called where none is kept.
  template <class Make>
  PooledState(StateKey key, const Make& make) : key_(std::move(key)) {
    state_ = StatePool<State>::instance().take(key_);
    if (state_ == nullptr) state_ = make();
  }
  PooledState(PooledState&& other) noexcept
      : key_(std::move(other.key_)), state_(std::exchange(other.state_, nullptr)) {}
  PooledState& operator=(PooledState&& other) noexcept {
    std::swap(key_, other.key_);
    std::swap(state_, other.state_);
    return *this;
  }
  ~PooledState() {
    if (state_ != nullptr) StatePool<State>::instance().keep(key_, state_);
  }

  State* get() const noexcept { return state_; }
  /// Whether it serves images of a width and a type.
  bool serves(std::int64_t width, std::int32_t type) const noexcept {
    return state_ != nullptr && width <= key_.width && type == key_.type;
  }

 private:
  StateKey key_;
  State* state_ = nullptr;
};

}  // namespace nuqi::detail

#endif
