// How commands show results that may be negative: in colours, with their extremes on stdout.
#include "pictures/signed_filter.h"

#include <CLI/CLI.hpp>
#include <cmath>
#include <cstdio>
#include <memory>
#include <nuqi/nuqi.hpp>
#include <optional>
#include <vector>

#include "core/isa.h"
#include "failure.h"
#include "pictures/colours.h"
#include "pictures/file.h"
#include "pictures/pfm.h"
#include "report.h"

namespace tools {
namespace {

// The values themselves, in a file whose ending chooses its format.
class NumbersFile {
 public:
  NumbersFile(const std::string& path, RoiSize size) : width_(size_t(size.width)) {
    if (ends_with(path, ".pfm")) {
      pfm_.emplace(path, size);
    } else {
      png_ = create_picture(path, size, {1, 16});
    }
  }

  void write(Strip<int16_t> strip) {
    for (int32_t y = 0; y < strip.rows; ++y) {
      const int16_t* const row = strip.values + size_t(y) * width_;
      if (pfm_) {
        floats_.assign(row, row + width_);
        pfm_->write(floats_.data());
      } else {
        levels_.clear();
        for (size_t x = 0; x < width_; ++x) levels_.push_back(uint16_t(row[x] - INT16_MIN));
        png_->write(reinterpret_cast<const uint8_t*>(levels_.data()));
      }
    }
  }

  void finish() {
    if (pfm_) pfm_->finish();
    if (png_) png_->finish();
  }

 private:
  size_t width_;
  std::optional<PfmWriter> pfm_;
  std::unique_ptr<RowWriter> png_;
  std::vector<float> floats_;
  std::vector<uint16_t> levels_;
};

}  // namespace

void add_signed_filter(CLI::App& command, SignedFilter& options) {
  command.add_option("IN", options.in, "The picture")->required();
  command.add_option("OUT", options.out, "The result in colours")->required();
  command.add_option("--size", options.size, "The aperture: 3, 5 or 7")
      ->check(CLI::IsMember({3, 5, 7}))
      ->capture_default_str();
  command.add_option("--numbers", options.numbers, "A .png or .pfm file for the values themselves")
      ->type_name("FILE");
  command.add_option_function<double>(
      "--range",
      [&options](double range) {
        if (!(range > 0 && std::isfinite(range))) throw UserError("--range: must be above 0");
        options.range = range;
      },
      "The magnitude shown in the palest colours");
}

void check(const SignedFilter& options) {
  check_picture_output(options.out);
  if (options.numbers.empty()) return;
  if (!ends_with(options.numbers, ".png") && !ends_with(options.numbers, ".pfm")) {
    throw UserError(options.numbers + ": cannot be written: its ending must be .png or .pfm");
  }
  check_outputs_differ({options.out, options.numbers});
}

template <class Filter>
void write_signed(const SignedFilter& options, const std::string& how,
                  const std::function<Filter()>& make) {
  const std::string& in = options.in;
  const bool chosen = options.range > 0;
  const RowOpener once = [&] { return open_rows(in, Form::grey); };
  const RowOpener open = chosen ? once : rereadable(in, Form::grey);
  auto rows = open();
  const RoiSize size = rows->size();
  const auto out = create_picture(options.out, size, {3, 8});
  std::optional<NumbersFile> numbers;
  if (!options.numbers.empty()) numbers.emplace(options.numbers, size);
  RowProgress progress(size, chosen ? 1 : 2);
  double seconds = 0;
  const auto filter_rows = [&](const auto& use) {
    FilterStage<uint8_t, int16_t, Filter, 1> stage(make(), size, 1);
    for_strips<uint8_t>(*rows, progress, [&](Strip<uint8_t> strip) { use(stage(strip)); });
    seconds = stage.seconds();
  };

  const size_t width = size_t(size.width);
  ValueCounts counts;
  const auto count = [&](Strip<int16_t> strip) {
    counts.add(strip.values, width * size_t(strip.rows));
  };
  if (!chosen) {
    filter_rows(count);
    rows = open();
    check_same_size(in, rows->size(), "what was read before", size);
  }
  const double range = chosen ? options.range : counts.usual_range();
  const SignedColours colours(range);
  Bytes rgb;
  filter_rows([&](Strip<int16_t> strip) {
    if (chosen) count(strip);
    if (numbers) numbers->write(strip);
    rgb.resize(3 * width * size_t(strip.rows));
    colours.put(strip.values, width * size_t(strip.rows), rgb.data());
    write_strip<uint8_t>(*out, {rgb.data(), strip.rows}, 3 * width);
  });
  out->finish();
  if (numbers) numbers->finish();
  report("%s: %s, %s, values %d to %d, shown to %g, %.2f ms with %s\n", options.out.c_str(),
         size_text(size).c_str(), how.c_str(), counts.lowest(), counts.highest(), range,
         1e3 * seconds, nuqi::name_of(nuqi::isa()));
}

template void write_signed(const SignedFilter&, const std::string&,
                           const std::function<nuqi::Sobel()>&);
template void write_signed(const SignedFilter&, const std::string&,
                           const std::function<nuqi::Laplace()>&);

}  // namespace tools
