// Calls as whole programs, to be pasted.
#pragma once

#include <string>
#include <vector>

#include "pictures/picture.h"

namespace tools {

// What a name in a call is, as lines of C. They may use `width`, `height`, `roi` and names declared before.
struct Declaration {
  std::string name, lines;
};

// A program in C that makes the call, the last line of `text`, on pictures of a size: with those
// declarations that it needs. Lines before the last make what it uses.
std::string program_of(const std::string& text, const std::vector<Declaration>& declarations,
                       RoiSize size);

}  // namespace tools
