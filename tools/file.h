// Whole files as bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tools {

// Both throw UserError that names the file and the reason.
std::vector<uint8_t> read_file(const std::string& path);
void write_file(const std::string& path, const void* bytes, size_t count);

}  // namespace tools
