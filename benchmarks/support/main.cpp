// Runs the benchmarks and prints the summary: each function against its limit and a plain loop.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "support/registry.h"

namespace nuqi::bench {
namespace {

// Keeps the median time of every benchmark: times[function][size][variant], in nanoseconds.
class Collector : public benchmark::ConsoleReporter {
 public:
  Collector() : ConsoleReporter(OO_Tabular) {}

  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.error_occurred) continue;
      if (run.run_type == Run::RT_Aggregate && run.aggregate_name != "median") continue;
      if (run.run_type == Run::RT_Iteration && run.repetitions > 1) continue;
      const std::string& name = run.run_name.function_name;
      const size_t last = name.rfind('/'), middle = name.rfind('/', last - 1);
      times[name.substr(0, middle)][name.substr(last + 1)]
           [name.substr(middle + 1, last - middle - 1)] = run.GetAdjustedRealTime();
    }
  }

  std::map<std::string, std::map<std::string, std::map<std::string, double>>> times;
};

double fastest(const std::map<std::string, double>& variants, const std::string& prefix = "") {
  double best = 0;
  for (const auto& [variant, time] : variants)
    if (variant.rfind(prefix, 0) == 0 && (best == 0 || time < best)) best = time;
  return best;
}

// A ratio column; "-" where one side was not measured.
std::string ratio(double time, double against) {
  if (time == 0 || against == 0) return "-";
  char text[32];
  std::snprintf(text, sizeof text, "%.2f", time / against);
  return text;
}

constexpr double kUnknown = -1e9;

struct Row {
  std::string function, size;
  double time, limit, bound, plain, call;
};

void print_summary(Collector& collector) {
  const std::string level = name_of(best_isa());
  std::vector<Row> rows;
  for (auto& [function, sizes] : collector.times) {
    if (limit_of(function).empty()) continue;
    auto& limits = collector.times[limit_of(function)];
    // What a call costs before its pixels: 8x8 less 64 pixels at the speed of 64x64.
    const double tiny = sizes["8x8"][level], small = sizes["64x64"][level];
    const double call = tiny == 0 || small == 0 ? kUnknown : tiny - small / 64;
    for (auto& [size, variants] : sizes)
      if (const double time = variants[level]; time != 0 && size != "8x8")
        rows.push_back({function, size, time, fastest(limits[size]), fastest(variants, "bound"),
                        fastest(variants, "plain"), call});
  }
  std::stable_sort(rows.begin(), rows.end(), [](const Row& a, const Row& b) {
    const auto worth = [](const Row& row) { return row.limit == 0 ? 0 : row.time / row.limit; };
    return worth(a) > worth(b);
  });
  std::printf(
      "\nOn %s, medians. time/limit: 1 is as fast as memory. time/bound: 1 is as fast as the "
      "arithmetic\n"
      "on registers alone, or as the chain of additions that the contract asks for. time/plain: "
      "below 1\n"
      "is faster than the better compiler's plain loop. call: ns of an 8x8 call beside its "
      "pixels.\n\n",
      level.c_str());
  std::printf("%-38s %10s %10s %11s %11s %11s %8s\n", "function", "size", "us", "time/limit",
              "time/bound", "time/plain", "call ns");
  for (const Row& row : rows)
    std::printf("%-38s %10s %10.2f %11s %11s %11s %8s\n", row.function.c_str(), row.size.c_str(),
                row.time / 1000, ratio(row.time, row.limit).c_str(),
                ratio(row.time, row.bound).c_str(), ratio(row.time, row.plain).c_str(),
                row.call == kUnknown ? "-" : ratio(row.call, 1).c_str());
}

}  // namespace
}  // namespace nuqi::bench

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  nuqi::bench::Collector collector;
  benchmark::RunSpecifiedBenchmarks(&collector);
  nuqi::bench::print_summary(collector);
}
