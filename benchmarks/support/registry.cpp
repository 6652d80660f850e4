// What the summary knows of each function.
#include "support/registry.h"

#include <map>
#include <set>

namespace nuqi::bench {
namespace {

std::map<std::string, std::string>& limits() {
  static std::map<std::string, std::string> all;
  return all;
}

}  // namespace

void set_limit(const std::string& function, const std::string& limit) {
  limits()[function] = limit;
}

const std::string& limit_of(const std::string& function) { return limits()[function]; }

bool first_time(const std::string& name) {
  static std::set<std::string> seen;
  return seen.insert(name).second;
}

}  // namespace nuqi::bench
