// Benchmarks of the corner functions.
#include <memory>
#include <string>

#include "features/eigen_members.h"
#include "features/eigen_plain.h"
#include "support/registers.h"
#include "support/registry.h"

namespace nuqi::bench {
namespace {

// What a minimum takes at least: a square root in double precision.
void one_root(int64_t pixels) {
  using namespace native;
  auto a = broadcast(2.0);
  for (int64_t x = 0; x < pixels; x += 16) {
    opaque(a);
    auto root = square_root(a);
    opaque(root);
  }
}
// And vectors: three square roots and four divisions.
void roots_and_quotients(int64_t pixels) {
  using namespace native;
  auto a = broadcast(2.0), b = broadcast(3.0);
  for (int64_t x = 0; x < pixels; x += 16) {
    for_each<3>([&](int) NUQI_FORCED {
      opaque(a);
      auto root = square_root(a);
      opaque(root);
    });
    for_each<4>([&](int) NUQI_FORCED {
      opaque(a);
      auto quotient = a / b;
      opaque(quotient);
    });
  }
}

// A call's arguments, and the memory of which it has need.
template <class T>
struct Call {
  std::shared_ptr<Buffer<T>> src;
  std::shared_ptr<Buffer<char>> buffer;
  test::EigenArgs<T> args;
};
template <class T>
Call<T> call_of(const Images& im, int values, int aperture, int block) {
  const size_t pixels = static_cast<size_t>(im.roi.width) * im.roi.height;
  Call<T> call = {std::make_shared<Buffer<T>>(pixels),
                  std::make_shared<Buffer<char>>(size_t{96} * im.roi.width),
                  {}};
  // Floats as bright as bytes: from 0 to 255.
  for (size_t i = 0; i < pixels; ++i) {
    if constexpr (sizeof(T) == 1)
      call.src->get()[i] = im.source<T>()[i];
    else
      call.src->get()[i] = (im.source<T>()[i] - 1) * 255;
  }
  call.args = {call.src->get(),
               im.roi.width * int{sizeof(T)},
               reinterpret_cast<float*>(im.out.get()),
               4 * values * im.roi.width,
               im.roi,
               aperture,
               block,
               call.buffer->get()};
  return call;
}

template <class T>
void register_one(const test::EigenMember<T>& member, int aperture, int block, RoiSize roi) {
  const std::string name =
      std::string(member.name) + ":" + std::to_string(aperture) + "," + std::to_string(block);
  if (member.values == 1)
    register_limit<Streams<sizeof(T)>, Streams<>, Streams<4>>(name, roi);
  else
    register_limit<Streams<sizeof(T)>, Streams<>, Streams<8, 8, 8>>(name, roi);
  register_bound(name, roi, [values = member.values](const Images& im) {
    return [values, pixels = int64_t{im.roi.width} * im.roi.height] {
      (values == 1 ? one_root : roots_and_quotients)(pixels);
    };
  });
  const auto run = [=, values = member.values](auto function) {
    return [=](const Images& im) {
      return [=, call = call_of<T>(im, values, aperture, block)] { function(call.args); };
    };
  };
  const int window = member.window(aperture, block);
  register_function(name, roi, run(member.call));
  register_plain(name, "gcc", roi, run(gcc::plain_eigen<T>(member.values, aperture, window)));
#if NUQI_PLAIN_CLANG
  register_plain(name, "clang", roi, run(clang::plain_eigen<T>(member.values, aperture, window)));
#endif
}

void register_eigen() {
  constexpr int kSizePairs[][2] = {{3, 3}, {3, 5}, {5, 5}, {7, 7}};
  test::for_each_eigen([&]<class T>(const test::EigenMember<T>& member) {
    for (const auto& [aperture, block] : kSizePairs)
      for (RoiSize roi : kSizes) register_one(member, aperture, block, roi);
  });
}

const Family family(register_eigen);

}  // namespace
}  // namespace nuqi::bench
