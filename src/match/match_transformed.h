// Template matching of bytes by transforms: tiles of result columns, chunks of result rows, pieces of the
// template, all in the caller's buffer but for the transforms of a piece.
#pragma once

#include "match/byte_scores.h"
#include "match/transform.h"

namespace nuqi::NUQI_ISA {
namespace {

constexpr int kPieceSide = 64;

// How a call's results are divided, and the buffer.
struct TransformPlan {
  bool several;        // pieces of the template
  int width, height;   // of the first piece, which no other one exceeds
  int columns;         // of a tile of results
  int rows = 0;        // of a chunk: whole bands; none where the buffer has no room for one
  int64_t room;        // columns that there are residues of
  int64_t pitch;       // of a point's rows
  int64_t sums_pitch;  // of sums of pieces
  double work, direct_work;

  NUQI_INLINE static int64_t up(int64_t a, int64_t to) { return (a + to - 1) / to * to; }

  template <class T>
  NUQI_NOINLINE explicit TransformPlan(const MatchJob<T>& job) {
    constexpr int kMostRows = 128;  // so that cache holds a chunk
    const RoiSize tpl = job.tpl_roi, dst = job.dst_roi;
    width = tpl.width < kPieceSide ? tpl.width : kPieceSide;
    height = tpl.height < kPieceSide ? tpl.height : kPieceSide;
    several = tpl.width > width || tpl.height > height;
    const int most = kOrder - width + 1;
    columns = dst.width < most ? dst.width : most;
    room = up(columns < kPoints ? kPoints : columns, 4);
    sums_pitch = up(columns, 16);
    int64_t most_rows = dst.height < kMostRows ? up(dst.height, kBand) : kMostRows;
    while (most_rows > 0 && bytes(most_rows) > job.work_bytes) most_rows -= kBand;
    if (most_rows == 0) return;
    const int64_t chunks = up(dst.height, most_rows) / most_rows;
    rows = (int)up(up(dst.height, chunks) / chunks, kBand);
    pitch = pitch_of(rows);
    estimate(tpl, dst);
  }
  NUQI_INLINE bool is_faster() const { return rows != 0 && work < direct_work; }

  NUQI_INLINE int64_t residues_bytes() const { return 2 * room * rows; }
  NUQI_INLINE int64_t sums_bytes() const { return several ? 8 * sums_pitch * rows : 0; }

 private:
  NUQI_INLINE int64_t pitch_of(int64_t count) const { return up(count + height - 1, kBand); }
  NUQI_INLINE int64_t bytes(int64_t count) const {
    return (4 * room + (several ? 8 * sums_pitch : 0)) * count + 2 * kPoints * pitch_of(count);
  }

  // In instructions of transforms, as measured: docs/match.md has the figures.
  NUQI_INLINE void estimate(RoiSize tpl, RoiSize dst) {
    constexpr int kTransform = 3000;                        // a band, once
    constexpr int kPair = Machine::kDotsBytes ? 224 : 352;  // a band's points and a pair of rows
    constexpr int kPlace = 8;                               // from residues to scores
    constexpr int kProducts = Machine::kDotsBytes ? 40 : kRegBytes / 4;  // of the direct method
    const auto parts = [](int whole, int part) NUQI_FORCED {
      const int64_t count = up(whole, part) / part;
      return (double)count;
    };
    const double pieces = parts(tpl.width, kPieceSide) * parts(tpl.height, kPieceSide);
    const double blocks = parts(dst.width, columns) * parts(dst.height, rows);
    const double places = (double)dst.width * dst.height;
    const double bands = parts(rows, kBand), tpl_bands = parts(height, kBand);
    const int64_t both_ways = pitch / kBand + rows / kBand, row_pairs = height / 2 + 1;
    const double transforms = blocks * (double)both_ways + (several ? blocks : 1) * tpl_bands;
    const double pairs = blocks * bands * (double)row_pairs;
    work = pieces * (4 * (kTransform * transforms + kPair * pairs) + kPlace * places);
    direct_work = places * tpl.width * tpl.height / kProducts;
  }
};

// What a call works with.
struct TransformWork {
  Spectrum tpl[2][2];  // [field][half]
  BandPixels band;
  int32_t sums[kBand * kMostColumns];  // of a band, row after row
  double* all;                         // those of all pieces, of a chunk
  int16_t *residues[2], *points;
  int tpl_width, tpl_height;  // of the piece

  void take_buffer(const TransformPlan& plan, char* buffer) {
    all = (double*)buffer;
    residues[0] = (int16_t*)(buffer + plan.sums_bytes());
    residues[1] = residues[0] + plan.residues_bytes() / 2;
    points = residues[1] + plan.residues_bytes() / 2;
  }
};

// The piece of the template from its pixel (u, v) on.
template <class T>
NUQI_NOINLINE void transform_piece(const MatchJob<T>& job, int64_t u, int64_t v,
                                   TransformWork& work) {
  const int64_t width = job.tpl_roi.width - u, height = job.tpl_roi.height - v;
  work.tpl_width = width < kPieceSide ? (int)width : kPieceSide;
  work.tpl_height = height < kPieceSide ? (int)height : kPieceSide;
  for (auto& of_field : work.tpl)
    for (auto& spectrum : of_field) spectrum = {};
  for (int start = 0; start < work.tpl_height; start += kBand) {
    take_template_band(job.tpl, u, v + start, work.tpl_width, work.tpl_height - start, work.band);
    for (int f = 0; f < 2; ++f) {
      transform_template<0>(work.band, kFields[f], start, work.tpl[f][0]);
      transform_template<1>(work.band, kFields[f], start, work.tpl[f][1]);
    }
  }
}

// The residues of the sums of `rows` rows and a tile of columns; pixel (x, y) meets the piece's first.
template <int half, class T>
NUQI_NOINLINE void transform_rows(const MatchJob<T>& job, const TransformPlan& plan, int64_t x,
                                  int64_t y, int64_t rows, int f, TransformWork& work) {
  const int64_t width = int64_t{job.dst_roi.width} + job.tpl_roi.width - 1 - x;
  const int64_t needed = rows + work.tpl_height - 1;
  const Field& field = kFields[f];
  for (int64_t i = 0; i < needed; i += kBand) {
    take_band(job.src, x, y + i, width, needed - i, work.band);
    transform<half>(work.band, field, work.points + i, plan.pitch);
  }
  const int bands = int((rows + kBand - 1) / kBand);
  multiply_points(work.points, plan.pitch, bands, work.tpl[f][half], work.tpl_height, field);
  for (int i = 0; i < bands; ++i)
    invert<half>(work.points + i * kBand, plan.pitch, field, work.residues[f] + i * kBand,
                 plan.rows, plan.room);
}
template <class T>
NUQI_NOINLINE void sum_piece(const MatchJob<T>& job, const TransformPlan& plan, int64_t x,
                             int64_t y, int64_t rows, TransformWork& work) {
  for (int f = 0; f < 2; ++f) {
    transform_rows<0>(job, plan, x, y, rows, f, work);
    transform_rows<1>(job, plan, x, y, rows, f, work);
  }
}
NUQI_INLINE void combine_band(const TransformPlan& plan, int64_t start, TransformWork& work) {
  combine(work.residues[0] + start, work.residues[1] + start, plan.rows,
          (int)TransformPlan::up(plan.columns, 4), work.sums, kMostColumns);
}

// Of all pieces, one after the other.
template <class T>
NUQI_NOINLINE void sum_pieces(const MatchJob<T>& job, const TransformPlan& plan, int64_t x,
                              int64_t y, int64_t rows, TransformWork& work) {
  for (int64_t i = 0; i < rows * plan.sums_pitch; i += 16) store(work.all + i, Px<double>{});
  for (int64_t v = 0; v < job.tpl_roi.height; v += kPieceSide)
    for (int64_t u = 0; u < job.tpl_roi.width; u += kPieceSide) {
      transform_piece(job, u, v, work);
      sum_piece(job, plan, x + u, y + v, rows, work);
      for (int64_t i = 0; i < rows; ++i) {
        if (i % kBand == 0) combine_band(plan, i, work);
        for (int j = 0; j < plan.columns; j += 16) {
          double* const all = work.all + i * plan.sums_pitch + j;
          store(all, load(all) + to_doubles(load(work.sums + i % kBand * kMostColumns + j)));
        }
      }
    }
}

// Of unsigned pixels, which were taken less 128, 128 (S1 + T1) - 16384 n is missing in a row's sums.
template <class T>
NUQI_NOINLINE void add_missing(const PatchSums<Of::sums, T>& sums, int64_t constant, int columns,
                               int32_t* ints, double* doubles) {
  for (int j = 0; j < columns; j += 16) {
    if (doubles == nullptr)
      store(ints + j, load(ints + j) + (sums.ints_at(j) << 7) + broadcast((int32_t)constant));
    else
      store(doubles + j,
            load(doubles + j) + sums.at(j) * broadcast(128.0) + broadcast((double)constant));
  }
}

template <class T>
NUQI_NOINLINE void match_by_transforms(const MatchJob<T>& job, const TransformPlan& plan,
                                       const Scorer& scorer) {
  const int64_t width = job.dst_roi.width, height = job.dst_roi.height;
  const int64_t pixels = int64_t{job.tpl_roi.width} * job.tpl_roi.height;
  const int64_t missing = 128 * scorer.tpl.sum - 16384 * pixels;
  PatchSumsIf<!kIsSigned<T>, Of::sums, T> sums(job);
  TransformWork work;
  work.take_buffer(plan, (char*)job.work);
  if (!plan.several) transform_piece(job, 0, 0, work);
  for (int64_t start = 0; start < width; start += plan.columns) {
    const int64_t x = start + plan.columns <= width ? start : width - plan.columns;
    sums.start(x, plan.columns);
    scorer.start(scorer.scores, x, plan.columns);
    for (int64_t y = 0; y < height; y += plan.rows) {
      const int64_t rows = height - y < plan.rows ? height - y : plan.rows;
      if (plan.several)
        sum_pieces(job, plan, x, y, rows, work);
      else
        sum_piece(job, plan, x, y, rows, work);
      for (int64_t i = 0; i < rows; i += kBand) {
        if (!plan.several) combine_band(plan, i, work);
        int32_t* const ints = plan.several ? nullptr : work.sums;
        double* const doubles = plan.several ? work.all + i * plan.sums_pitch : nullptr;
        const int64_t pitch = plan.several ? plan.sums_pitch : kMostColumns;
        const int count = int(rows - i < kBand ? rows - i : kBand);
        if constexpr (!kIsSigned<T>)
          for (int k = 0; k < count; ++k) {
            sums.at_row(y + i + k);
            add_missing(sums, missing, plan.columns, ints == nullptr ? ints : ints + k * pitch,
                        doubles == nullptr ? doubles : doubles + k * pitch);
          }
        scorer.put(scorer.scores, y + i, count, {ints, doubles, pitch});
      }
    }
  }
}

}  // namespace
}  // namespace nuqi::NUQI_ISA
