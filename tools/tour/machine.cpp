// What the tour's times were measured on.
#include "tour/machine.h"

#include <sys/utsname.h>

#include <ctime>
#include <fstream>

namespace tools {

std::string processor_name() {
  std::ifstream list("/proc/cpuinfo");
  for (std::string line; std::getline(list, line);) {
    if (line.rfind("model name", 0) != 0) continue;
    const size_t name = line.find(": ");
    if (name != std::string::npos) return line.substr(name + 2);
  }
  utsname system{};
  return uname(&system) == 0 ? system.machine : "unknown";
}

std::string compiler_name() {
#ifdef __clang__
  return "Clang " + std::to_string(__clang_major__) + "." + std::to_string(__clang_minor__);
#else
  return "GCC " + std::to_string(__GNUC__) + "." + std::to_string(__GNUC_MINOR__);
#endif
}

std::string today() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  char text[32] = "";
  localtime_r(&now, &local);
  std::strftime(text, sizeof text, "%Y-%m-%d", &local);
  return text;
}

}  // namespace tools
