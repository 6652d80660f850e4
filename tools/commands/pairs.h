// Pairs of whole numbers in arguments, as 10,20 and 640x480.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

namespace tools {

inline bool read_pair(const std::string& text, char between, int32_t& first, int32_t& second) {
  char found = 0;
  int length = 0;
  return std::sscanf(text.c_str(), "%9d%c%9d%n", &first, &found, &second, &length) == 3 &&
         found == between && size_t(length) == text.size();
}

}  // namespace tools
