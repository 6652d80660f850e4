// The measured memory limit: the fastest of several loops that read and write the same bytes once.
#pragma once

#include <immintrin.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>

// Compiled with -O3 -march=native. What a call moves is a list of streams, each of so many bytes a
// pixel: sources are read, accumulators read and written in place, destinations written.
namespace nuqi::bench {

template <int... BytesPerPixel>
struct Streams {
  static constexpr int kCount = sizeof...(BytesPerPixel);
  static constexpr int kBytes = (BytesPerPixel + ... + 0);
};

#if defined(__AVX512F__)
using Wide = __m512i;
inline Wide read_wide(const uint8_t* at) { return _mm512_loadu_si512(at); }
inline void write_wide(uint8_t* at, Wide value) { _mm512_storeu_si512(at, value); }
inline void stream_wide(uint8_t* at, Wide value) { _mm512_stream_si512((Wide*)at, value); }
inline Wide mix(Wide a, Wide b) { return _mm512_xor_si512(a, b); }
#elif defined(__AVX2__)
using Wide = __m256i;
inline Wide read_wide(const uint8_t* at) { return _mm256_loadu_si256((const Wide*)at); }
inline void write_wide(uint8_t* at, Wide value) { _mm256_storeu_si256((Wide*)at, value); }
inline void stream_wide(uint8_t* at, Wide value) { _mm256_stream_si256((Wide*)at, value); }
inline Wide mix(Wide a, Wide b) { return _mm256_xor_si256(a, b); }
#else
using Wide = __m128i;
inline Wide read_wide(const uint8_t* at) { return _mm_loadu_si128((const Wide*)at); }
inline void write_wide(uint8_t* at, Wide value) { _mm_storeu_si128((Wide*)at, value); }
inline void stream_wide(uint8_t* at, Wide value) { _mm_stream_si128((Wide*)at, value); }
inline Wide mix(Wide a, Wide b) { return _mm_xor_si128(a, b); }
#endif

// The memory of a call: streams of `pixels` pixels, each 64-byte aligned.
struct Traffic {
  uint8_t* sources[4];
  uint8_t* accumulators[2];
  uint8_t* destinations[4];
  int64_t pixels;
};

enum class Stores { cached, streaming };

// Moves `Pixels` pixels of every stream at a time: few keeps the streams interleaved as a kernel
// does, many reads longer runs of each.
template <class Sources, class Accumulators, class Destinations, int Pixels, Stores stores>
struct MemoryLoop;
template <int... S, int... A, int... D, int Pixels, Stores stores>
struct MemoryLoop<Streams<S...>, Streams<A...>, Streams<D...>, Pixels, stores> {
  static void run(const Traffic& t) {
    constexpr int kWide = sizeof(Wide);
    Wide sum[4] = {};
    for (int64_t x = 0; x + Pixels <= t.pixels; x += Pixels) {
      int s = 0, a = 0, d = 0;
      const auto read = [&](const uint8_t* from, int bytes) {
        for (int i = 0; i < bytes; i += kWide)
          sum[i / kWide % 4] = mix(sum[i / kWide % 4], read_wide(from + i));
      };
      const auto update = [&](uint8_t* at, int bytes) {
        for (int i = 0; i < bytes; i += kWide) write_wide(at + i, mix(read_wide(at + i), sum[0]));
      };
      const auto write = [&](uint8_t* to, int bytes) {
        for (int i = 0; i < bytes; i += kWide) {
          if constexpr (stores == Stores::streaming)
            stream_wide(to + i, sum[0]);
          else
            write_wide(to + i, sum[0]);
        }
      };
      (read(t.sources[s++] + x * S, Pixels * S), ...);
      (update(t.accumulators[a++] + x * A, Pixels * A), ...);
      (write(t.destinations[d++] + x * D, Pixels * D), ...);
      (void)s, (void)a, (void)d, (void)read, (void)update, (void)write;
    }
    volatile char sink[kWide];
    const Wide all = mix(mix(sum[0], sum[1]), mix(sum[2], sum[3]));
    std::memcpy(const_cast<char*>(sink), &all, kWide);
    if constexpr (stores == Stores::streaming) _mm_sfence();
  }
};

}  // namespace nuqi::bench
