// How commands show results that may be negative: in colours, with their extremes on stdout.
#pragma once

#include <string>

#include "picture.h"

namespace CLI {
class App;
}

namespace tools {

struct SignedOutput {
  std::string path;
  double range = 0;  // 0: chosen from the values
};

inline constexpr char kSignedFooter[] =
    "Orange is positive, blue negative, black zero; the palest colours stand for the range and\n"
    "all beyond it. Without --range it is the magnitude that one pixel in a hundred exceeds.\n";

// Adds OUT and --range.
void add_signed_output(CLI::App& command, SignedOutput& output);

// Throws UserError where it could not be written for a reason known before the work.
void check(const SignedOutput& output);

// `how` says on stdout what the values are.
void write_signed(const SignedOutput& output, const Plane<int16_t>& values, const std::string& how,
                  double seconds);

}  // namespace tools
