// Pictures larger than memory: strips of rows on their way from a file through the library's calls
// to a file. A stage takes a strip and returns the rows that it can then give, maybe none: stages
// are chained as functions are.
#pragma once

#include <algorithm>
#include <nuqi/hpp/view.hpp>
#include <optional>
#include <vector>

#include "clock.h"
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

// Calls `body` with each strip of a picture: of bytes where that has 8 bits, else of floats.
template <class T, class Body>
void for_strips(RowReader& reader, RowProgress& progress, const Body& body) {
  const size_t row = reader.row_samples();
  const int32_t most = rows_of_strip(row * sizeof(T)), height = reader.size().height;
  std::vector<T> strip(size_t(most) * row);
  for (int32_t y = 0; y < height;) {
    const int32_t rows = std::min(most, height - y);
    for (int32_t i = 0; i < rows; ++i) reader.read(strip.data() + size_t(i) * row);
    body(Strip<T>{strip.data(), rows});
    y += rows;
    progress.advance(rows);
  }
}

template <class T>
void write_strip(RowWriter& writer, Strip<T> strip, size_t row_samples) {
  for (int32_t y = 0; y < strip.rows; ++y) {
    write_row(writer, strip.values + size_t(y) * row_samples, row_samples);
  }
}

// A stage that is a filter of nuqi.hpp, for pictures of some numbers of channels. The rows that wait for others
// below them come with the picture's last strip.
template <class In, class Out, class Filter, int... kChannels>
class FilterStage {
 public:
  // `how` is what the filter's begin() takes.
  template <class... How>
  FilterStage(Filter filter, RoiSize picture, int channels, How... how)
      : filter_(std::move(filter)), picture_(picture), channels_(channels) {
    filter_.begin(how...);
  }

  // Valid until the next call.
  Strip<Out> operator()(Strip<In> strip) {
    if (strip.rows == 0) return {nullptr, 0};
    taken_ += strip.rows;
    int64_t rows = 0;
    seconds_ += seconds_of([&] {
      ((channels_ == kChannels ? void(rows = results_of<kChannels>(strip)) : void()), ...);
    });
    return {rows_.data(), int32_t(rows)};
  }

  double seconds() const { return seconds_; }

 private:
  template <int C>
  int64_t results_of(Strip<In> strip) {
    const nuqi::View<const In, C> src(strip.values, picture_.width, strip.rows);
    int64_t rows = filter_.feed(src, room_for<C>(0, filter_.rows_due(strip.rows)));
    if (taken_ == picture_.height) rows += filter_.finish(room_for<C>(rows, filter_.rows_left()));
    return rows;
  }
  template <int C>
  nuqi::View<Out, C> room_for(int64_t row, int64_t rows) {
    const size_t length = size_t(picture_.width) * C, end = length * size_t(row + rows);
    if (rows_.size() < end) rows_.resize(end);
    return {rows_.data() + length * size_t(row), picture_.width, rows};
  }

  Filter filter_;
  RoiSize picture_;
  int channels_;
  int32_t taken_ = 0;
  double seconds_ = 0;
  std::vector<Out> rows_;
};

}  // namespace tools
