// nuqi diff: where two pictures differ.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <nuqi/hpp/arith.hpp>
#include <string>

#include "commands/commands.h"
#include "pictures/row_reader.h"
#include "report.h"

namespace tools {
namespace {

constexpr char kFooter[] =
    "Writes the absolute difference of two pictures of one size, in each channel: black where\n"
    "they are equal; grey where both are, of 16 bits where one has 16. Where one has alpha,\n"
    "colours are compared times alpha, and where alpha differs by more than a channel does,\n"
    "that is what shows there: black is what looks the same over every background. Exit code\n"
    "0, whether they differ or not.\n";

struct Options {
  std::string a, b, out;
};

// Channels differ each by itself, so that a row of n colours is one of 3n samples.
template <class T>
PictureOf<T> difference(const PictureOf<T>& a, const PictureOf<T>& b) {
  PictureOf<T> result(a.size, a.channels);
  const auto samples_of = [](auto& picture) {
    return nuqi::View(picture.pixels.data(), int64_t(picture.row_samples()), picture.size.height);
  };
  nuqi::abs_diff(samples_of(a), samples_of(b), samples_of(result));
  return result;
}

// Colours times alpha, rounded, and alpha; of an opaque picture those are its own, and the greatest.
template <class T>
PictureOf<T> weighted_by_alpha(const PictureOf<T>& picture) {
  constexpr uint32_t kWhite = kGreatest<T>;
  if (picture.channels == 4) {
    PictureOf<T> result = picture;
    for (size_t i = 0; i < result.pixels.size(); ++i) {
      if (i % 4 == 3) continue;
      const uint32_t product = uint32_t(picture.pixels[i]) * uint32_t(picture.pixels[i | 3]);
      const uint32_t weighted = (product + kWhite / 2) / kWhite;
      result.pixels[i] = T(weighted);
    }
    return result;
  }
  const PictureOf<T> colour = with_channels(picture, 3);
  PictureOf<T> result(picture.size, 4);
  for (size_t i = 0; i < result.pixels.size(); ++i) {
    result.pixels[i] = i % 4 == 3 ? T(kWhite) : colour.pixels[i / 4 * 3 + i % 4];
  }
  return result;
}

// Each channel's difference, or that of alpha where it is greater.
template <class T>
PictureOf<T> without_alpha(const PictureOf<T>& difference) {
  PictureOf<T> result(difference.size, 3);
  for (size_t i = 0; i < result.pixels.size(); ++i) {
    const T* const pixel = &difference.pixels[i / 3 * 4];
    result.pixels[i] = std::max(pixel[i % 3], pixel[3]);
  }
  return result;
}

template <class T>
void write_difference(RowReader& rows_a, RowReader& rows_b, const Options& options) {
  const auto a = whole_picture<T>(rows_a, options.a), b = whole_picture<T>(rows_b, options.b);
  const int channels = std::max(a.channels, b.channels);
  const PictureOf<T> result =
      channels == 4 ? without_alpha(difference(weighted_by_alpha(a), weighted_by_alpha(b)))
                    : difference(with_channels(a, channels), with_channels(b, channels));
  write_picture(options.out, result);
  int64_t differing = 0;
  T largest = 0;
  for (auto pixel = result.pixels.begin(); pixel != result.pixels.end(); pixel += result.channels) {
    const T most = *std::max_element(pixel, pixel + result.channels);
    differing += most > 0;
    largest = std::max(largest, most);
  }
  report("%s: %s, %lld pixels differ, by at most %d%s\n", options.out.c_str(),
         size_text(result.size).c_str(), static_cast<long long>(differing), int(largest),
         kBits<T> == 16 ? " of 65535" : "");
}

void compare(const Options& options) {
  check_picture_output(options.out);
  const auto a = open_rows(options.a, Form::stored, Depth::stored);
  const auto b = open_rows(options.b, Form::stored, Depth::stored);
  check_same_size(options.b, b->size(), options.a, a->size());
  const bool deep = a->format().bits == 16 || b->format().bits == 16;
  (deep ? write_difference<float> : write_difference<uint8_t>)(*a, *b, options);
}

}  // namespace

void add_diff(CLI::App& app) {
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("diff", "Shows where two pictures differ");
  command->footer(kFooter);
  command->add_option("A", options->a, "The first picture")->required();
  command->add_option("B", options->b, "The second picture, of the same size")->required();
  command->add_option("OUT", options->out, "The difference")->required();
  command->callback([options] { compare(*options); });
}

}  // namespace tools
