// Pictures larger than memory: strips of rows on their way from a file through the library's calls
// to a file. A stage takes a strip and returns the rows that it can then give, maybe none: stages
// are chained as functions are.
#pragma once

#include <algorithm>
#include <memory>
#include <optional>

#include "clock.h"
#include "failure.h"
#include "pictures/row_reader.h"
#include "pictures/row_writer.h"
#include "progress.h"

namespace tools {

// Whole rows, tight, in memory that is another's.
template <class T>
struct Strip {
  const T* values;
  int32_t rows;
};

// As many rows as stay in a cache, but enough of them for the filters, which need a few at first.
inline int32_t rows_of_strip(size_t row_bytes) {
  constexpr size_t kBytes = size_t{1} << 19, kLeast = 8, kMost = 64;
  return int32_t(std::clamp(kBytes / row_bytes, kLeast, kMost));
}

// Shown for pictures that take a while.
class RowProgress {
 public:
  RowProgress(RoiSize size, int passes) {
    constexpr int64_t kShownFrom = 20000000;  // pixels
    if (int64_t{size.width} * size.height < kShownFrom) return;
    bar_.emplace(passes == 1 ? "rows" : "rows, read twice", passes * size.height);
  }
  void advance(int32_t rows) {
    if (bar_) bar_->advance(rows);
  }

 private:
  std::optional<Progress> bar_;
};

// Calls `body` with each strip of a picture.
template <class Body>
void for_strips(RowReader& reader, RowProgress& progress, const Body& body) {
  const int32_t most = rows_of_strip(reader.row_bytes()), height = reader.size().height;
  Bytes strip(size_t(most) * reader.row_bytes());
  for (int32_t y = 0; y < height;) {
    const int32_t rows = std::min(most, height - y);
    for (int32_t i = 0; i < rows; ++i) reader.read(strip.data() + size_t(i) * reader.row_bytes());
    body(Strip<uint8_t>{strip.data(), rows});
    y += rows;
    progress.advance(rows);
  }
}

inline void write_strip(RowWriter& writer, Strip<uint8_t> strip, size_t row_bytes) {
  for (int32_t y = 0; y < strip.rows; ++y) writer.write(strip.values + size_t(y) * row_bytes);
}

// How many rows beside its own a row of results is made of.
struct Reach {
  int32_t above, below;
};

// A stage that is a call of the library with a state, call(src, src_step, dst, dst_step, &roi, state,
// phase). The rows that wait for others below them come with the picture's last strip.
template <class In, class Out, class State>
class LibraryStage {
 public:
  using Function = StatusCode (*)(const In*, int32_t, Out*, int32_t, RoiSize*,
                                  typename State::element_type*, int32_t);
  struct Call {
    const char* name;
    Function function;
  };

  LibraryStage(Call call, State state, RoiSize picture, int channels, Reach reach)
      : call_(call),
        state_(std::move(state)),
        picture_(picture),
        row_(size_t(picture.width) * size_t(channels)),
        reach_(reach) {}

  // Valid until the next call.
  Strip<Out> operator()(Strip<In> strip) {
    if (strip.rows == 0) return {nullptr, 0};
    const size_t most = row_ * size_t(strip.rows + reach_.below);
    if (rows_.size() < most) rows_.resize(most);
    RoiSize roi{picture_.width, strip.rows};
    const int32_t phase = phase_of(strip.rows);
    seconds_ += seconds_of([&] {
      require_ok(call_.function(strip.values, int32_t(row_ * sizeof(In)), rows_.data(),
                                int32_t(row_ * sizeof(Out)), &roi, state_.get(), phase),
                 call_.name);
    });
    return {rows_.data(), roi.height};
  }

  double seconds() const { return seconds_; }

 private:
  // 0 all rows, 1 the first of them, 2 the last, 4 those between. Rows that need no others are a
  // picture of their own.
  int32_t phase_of(int32_t rows) {
    const bool first = taken_ == 0, alone = reach_.above + reach_.below == 0;
    taken_ += rows;
    const bool last = taken_ == picture_.height;
    return alone || (first && last) ? 0 : first ? 1 : last ? 2 : 4;
  }

  Call call_;
  State state_;
  RoiSize picture_;
  size_t row_;  // values
  Reach reach_;
  int32_t taken_ = 0;
  double seconds_ = 0;
  std::vector<Out> rows_;
};

}  // namespace tools
