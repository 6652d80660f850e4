// Registers one function's benchmarks: every level, its memory limit, and plain loops beside it.
#pragma once

#include <benchmark/benchmark.h>

#include <string>

#include "core/isa.h"
#include "nuqi/nuqi.h"
#include "support/images.h"
#include "support/limit.h"

namespace nuqi::bench {

// Registers a family's benchmarks: one constant of this type stands in each *_bench.cpp.
struct Family {
  explicit Family(void (*register_all)()) { register_all(); }
};

// A name that ends in what the summary needs: function/variant/WIDTHxHEIGHT.
inline std::string bench_name(const std::string& function, const std::string& variant,
                              RoiSize roi) {
  return function + "/" + variant + "/" + std::to_string(roi.width) + "x" +
         std::to_string(roi.height);
}

// Which limit the summary holds a function's time against.
void set_limit(const std::string& function, const std::string& limit);
const std::string& limit_of(const std::string& function);

// True the first time a name is asked for: several functions share a limit.
bool first_time(const std::string& name);

// Benchmarks the loop that make(images) returns.
template <class Make>
void register_loop(const std::string& name, RoiSize roi, Make make) {
  benchmark::RegisterBenchmark(name.c_str(), [make, roi](benchmark::State& state) {
    const auto call = make(images(roi));
    for (auto _ : state) {
      call();
      benchmark::ClobberMemory();
    }
  });
}

// The function itself, on every level that this machine has: make(images) returns the call.
template <class Make>
void register_function(const std::string& function, RoiSize roi, Make make) {
  for (Isa level : kEveryIsa) {
    if (level > best_isa()) continue;
    register_loop(bench_name(function, name_of(level), roi), roi, [make, level](const Images& im) {
      force_isa(level);
      return make(im);
    });
  }
}

// The best portable loop one would write, as one compiler makes it; the faster compiler counts.
template <class Make>
void register_plain(const std::string& function, const std::string& compiler, RoiSize roi,
                    Make make) {
  register_loop(bench_name(function, "plain_" + compiler, roi), roi, make);
}

// What the arithmetic alone takes, measured on independent registers, or the chain of additions that
// the contract asks for: a second column where it binds, never a replacement of the memory limit.
template <class Make>
void register_bound(const std::string& function, RoiSize roi, Make make) {
  register_loop(bench_name(function, "bound", roi), roi, make);
}

template <class Sources, class Accumulators, class Destinations>
struct Limit {
  // Streams lie one after the other.
  template <int... BytesPerPixel>
  static void place(uint8_t** stream, uint8_t* at, int64_t pixels, Streams<BytesPerPixel...>) {
    ((*stream++ = at, at += pixels * BytesPerPixel), ...);
  }

  template <int Pixels, Stores stores>
  static void add(const std::string& limit, const char* loop, RoiSize roi, int area) {
    const std::string name = bench_name(limit, loop, roi);
    if (!first_time(name)) return;
    register_loop(name, roi, [area](const Images& im) {
      const int64_t pixels = int64_t{im.roi.width} * im.roi.height / area;
      // The float images have room for the widest streams, of four channels.
      Traffic traffic = {{}, {(uint8_t*)im.acc.get(), (uint8_t*)im.s8b.get()}, {}, pixels};
      place(traffic.sources, im.in.get(), pixels, Sources{});
      place(traffic.destinations, im.out.get(), pixels, Destinations{});
      return [traffic] {
        MemoryLoop<Sources, Accumulators, Destinations, Pixels, stores>::run(traffic);
      };
    });
  }
};

// The limit of a function that reads, updates and writes so many bytes a pixel, or for every `area`
// pixels.
template <class Sources, class Accumulators = Streams<>, class Destinations = Streams<>,
          int area = 1>
void register_limit(const std::string& function, RoiSize roi) {
  const std::string limit =
      "limit:read" + std::to_string(Sources::kBytes) + "in" + std::to_string(Sources::kCount) +
      ",update" + std::to_string(Accumulators::kBytes) + ",write" +
      std::to_string(Destinations::kBytes) + "in" + std::to_string(Destinations::kCount) +
      (area == 1 ? "" : ",of" + std::to_string(area));
  set_limit(function, limit);
  using Loops = Limit<Sources, Accumulators, Destinations>;
  Loops::template add<64, Stores::cached>(limit, "fine", roi, area);
  if (roi.width < 64) return;
  Loops::template add<1024, Stores::cached>(limit, "coarse", roi, area);
  if (Destinations::kCount != 0)
    Loops::template add<1024, Stores::streaming>(limit, "streaming", roi, area);
}

}  // namespace nuqi::bench
