/// What the objects share that keep a state of a C function and feed it images, whole or in strips.
#ifndef NUQI_HPP_STRIP_FILTER_HPP
#define NUQI_HPP_STRIP_FILTER_HPP

#include <nuqi/hpp/bands.hpp>
#include <nuqi/hpp/checks.hpp>
#include <nuqi/hpp/data_type.hpp>
#include <nuqi/hpp/states.hpp>
#include <nuqi/hpp/strip_rows.hpp>

#include <cstdint>
#include <new>
#include <type_traits>
#include <utility>

namespace nuqi::detail {

inline constexpr Outcome kNotBegun{StatusBadArg, "begin() comes before the first strip"};
inline constexpr Outcome kNoStrip{StatusBadArg, "no strip has come since begin()"};
inline constexpr Outcome kOtherStrip{StatusBadSize,
                                     "strips of one image have one width and element type"};
inline constexpr Outcome kNoRoom{StatusBadSize,
                                 "the output is not as wide or has fewer rows than come out"};

/// The status of what may throw.
template <class Body>
StatusCode status_of(const Body& body) noexcept {
  try {
    body();
    return StatusOk;
  } catch (const Error& error) {
    return error.status();
  } catch (...) {
    return StatusNoMemory;
  }
}

/// `Filter` derives from this and has
///   name()                     of its operation
///   function<T, D, C>()        the C function from T to D of C channels
///   kTakes<T, D, C>            whether there is one
///   kType<T, C>                what states of those types and channels have in their key
///   key()                      the rest of the key, but for the width
///   make<T, C>(width, &state)  a state
///   below(), least_first(), alone()    see StripRows::begin
template <class Filter, class State>
class StripFilter {
 public:
  /// Begins an image that comes in strips. Another that is not finished is given up.
  void begin() noexcept { rows_.begin(filter().below(), filter().least_first(), filter().alone()); }

  /// How many rows feed() gives for a strip of so many rows: at most as many. The first strips give fewer,
  /// or none, because the rows that come last in an image wait for those below them.
  [[nodiscard]] std::int64_t rows_due(std::int64_t rows) const noexcept { return rows_.due(rows); }
  /// How many rows finish() gives.
  [[nodiscard]] std::int64_t rows_left() const noexcept { return rows_.due_at_end(); }

  /// Takes the next strip, from top to bottom, of any height, and writes the rows that are due to the first
  /// rows of `dst`, which is as wide. Returns how many: where it is 0, dst may be empty. All results together
  /// are what one call gives.
  template <class Strip, class Output>
  std::int64_t feed(const Strip& strip, Output&& dst) {
    const auto in = as_input(strip);
    const auto out = as_output<Output>(dst);
    const std::int64_t due = rows_.due(in.height());
    require(guarded([&] { return feed_rows(in, out, due); }), filter().name(), strip, dst);
    return due;
  }
  /// Ends the image: writes its last rows to the first of `dst` and returns how many.
  template <class Output>
  std::int64_t finish(Output&& dst) {
    const auto out = as_output<Output>(dst);
    const std::int64_t due = rows_.due_at_end();
    require(guarded([&] { return finish_rows(out, due); }), filter().name(), dst);
    return due;
  }

 protected:
  StripFilter() = default;
  StripFilter(StripFilter&&) noexcept = default;
  StripFilter& operator=(StripFilter&&) noexcept = default;
  ~StripFilter() = default;

  /// A whole image.
  template <class Output, class Source>
  [[gnu::always_inline]] inline Outcome run(const Source& src,
                                            std::remove_reference_t<Output>& dst) noexcept {
    rows_.end();
    const auto in = as_input(src);
    const auto out = as_output<Output>(dst);
    if (ready(out, in) && far_apart(out, in) &&
        state_.serves(in.width(),
                      Filter::template kType<ElementOf<const Source>, kChannelsOf<const Source>>)) {
      return call_whole(in, out);
    }
    return run_slowly<Output>(src, dst);
  }

 private:
  Filter& filter() noexcept { return static_cast<Filter&>(*this); }
  const Filter& filter() const noexcept { return static_cast<const Filter&>(*this); }

  template <class T, int C>
  static constexpr std::int32_t kTag = 16 * kDataType<T> + C;

  template <class Body>
  Outcome guarded(const Body& body) noexcept {
    try {
      return body();
    } catch (...) {
      rows_.end();  // a strip may have been taken in part
      return kNoMemory;
    }
  }

  template <class T, class D, int C>
  [[gnu::always_inline]] Outcome call_whole(View<const T, C> src, View<D, C> dst) noexcept {
    const Part<const T> from = whole(src);
    const Part<D> to = whole(dst);
    RoiSize roi = roi_of(src);
    return filter().template function<T, D, C>()(from.data, from.step, to.data, to.step, &roi,
                                                 state_.get(), 0);
  }
  /// All else: what is wrong is found out, a state is fetched, bands are cut.
  template <class Output, class Source>
  [[gnu::noinline, gnu::cold]] Outcome run_slowly(const Source& src,
                                                  std::remove_reference_t<Output>& dst) noexcept {
    const auto in = as_input(src);
    const auto out = as_output<Output>(dst);
    Outcome outcome = check_sizes(in, out);
    if (outcome.failed()) return outcome;
    outcome = check_apart(out, in);
    if (outcome.failed()) return outcome;
    if (!fits(in, out)) return guarded([&] { return in_bands(in, out); });
    outcome = prepare<ElementOf<const Source>, kChannelsOf<const Source>>(in.width());
    return outcome.failed() ? outcome : call_whole(in, out);
  }

  /// A state for images of a width and type.
  template <class T, int C>
  Outcome prepare(std::int64_t width) noexcept {
    if (state_.serves(width, Filter::template kType<T, C>)) return {};
    return guarded([&] { return renew<T, C>(width); });
  }
  template <class T, int C>
  Outcome renew(std::int64_t width) {
    StateKey key = filter().key();
    key.type = Filter::template kType<T, C>;
    key.width = state_width(static_cast<std::int32_t>(width));
    StatusCode status = StatusOk;
    state_ = PooledState<State>(key, [&] {
      State* made = nullptr;
      status = filter().template make<T, C>(key.width, &made);
      return made;
    });
    return status;
  }

  template <class T, class D, int C>
  auto caller() noexcept {
    return [function = filter().template function<T, D, C>(), state = state_.get()](
               const T* src, std::int32_t src_step, D* dst, std::int32_t dst_step, RoiSize* roi,
               std::int32_t phase) {
      return function(src, src_step, dst, dst_step, roi, state, phase);
    };
  }

  template <class T, class D, int C>
  Outcome in_bands(View<const T, C> src, View<D, C> dst) {
    begin();
    const std::int64_t due = rows_.due(src.height());
    Outcome outcome = feed_rows(src, dst, due);
    if (outcome.failed()) return outcome;
    const View<D, C> rest(View<D, C>::unchecked, due < dst.height() ? dst.row(due) : nullptr,
                          dst.width(), dst.height() - due, dst.step());
    return finish_rows(rest, dst.height() - due);
  }

  template <class T, class D, int C>
  Outcome feed_rows(View<const T, C> strip, View<D, C> dst, std::int64_t due) {
    static_assert(
        Filter::template kTakes<T, D, C>,
        "nuqi: this operation does not exist for these element types and this number of channels");
    if (!rows_.begun()) return kNotBegun;
    if (strip.empty()) return kEmpty;
    if (strip.row_bytes() > kMost) return kTooLarge;
    if (rows_.taken() > 0 && (strip.width() != width_ || tag_ != kTag<T, C>)) return kOtherStrip;
    if (due > 0) {
      if (dst.width() != strip.width() || dst.height() < due) return kNoRoom;
      if (overlap(dst, strip)) return kOverlap;
    }
    width_ = strip.width();
    tag_ = kTag<T, C>;
    const Outcome outcome = prepare<T, C>(width_);
    if (outcome.failed()) return outcome;
    return rows_.feed(strip, dst, caller<T, D, C>());
  }

  template <class D, int C>
  Outcome finish_rows(View<D, C> dst, std::int64_t due) {
    if (!rows_.begun()) return kNotBegun;
    if (rows_.taken() == 0) return kNoStrip;
    if (due > 0 && (dst.width() != width_ || dst.height() < due)) return kNoRoom;
    Outcome outcome = kOtherStrip;
    (finish_as<std::uint8_t>(dst, outcome), finish_as<std::int8_t>(dst, outcome),
     finish_as<float>(dst, outcome));
    return outcome;
  }
  /// If the strips were of T.
  template <class T, class D, int C>
  void finish_as(View<D, C> dst, Outcome& outcome) {
    if constexpr (Filter::template kTakes<T, D, C>) {
      if (tag_ != kTag<T, C>) return;
      outcome = rows_.template finish<T>(dst, caller<T, D, C>());
      rows_.end();
    }
  }

  PooledState<State> state_;
  StripRows rows_;
  std::int64_t width_ = 0;
  std::int32_t tag_ = 0;
};

}  // namespace nuqi::detail

#endif
