// How commands show results that may be negative: in colours, with their extremes on stdout.
#pragma once

#include <functional>
#include <string>

#include "pictures/strips.h"

namespace CLI {
class App;
}

namespace tools {

struct SignedFilter {
  std::string in;
  int size = 3;  // the aperture
  std::string out;
  std::string numbers;  // a file for the values themselves; empty: none
  double range = 0;     // 0: chosen from the values
};

inline constexpr char kSignedFooter[] =
    "Orange is positive, blue negative, black zero; the palest colours stand for the range and\n"
    "all beyond it. Without --range it is the magnitude that one pixel in a hundred exceeds, for\n"
    "which IN is read twice. --numbers writes the values themselves: into a .png of 16 bits as\n"
    "value + 32768, or into a .pfm as floats. Takes pictures larger than memory (`nuqi --help`).\n";

// Adds IN, OUT, --size, --numbers and --range.
void add_signed_filter(CLI::App& command, SignedFilter& options);

// Throws UserError where it could not be written for a reason known before the work.
void check(const SignedFilter& options);

// Writes what a filter that `make` makes, nuqi::Sobel or nuqi::Laplace, gives of the grey levels of IN. `how`
// says on stdout what the values are.
template <class Filter>
void write_signed(const SignedFilter& options, const std::string& how,
                  const std::function<Filter()>& make);

}  // namespace tools
