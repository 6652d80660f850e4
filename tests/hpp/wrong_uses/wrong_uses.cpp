// Wrong uses of the C++ header and what the compiler, or Error, has to say of each. check.sh compiles every
// numbered one by itself: that must fail with the text behind "expect". Without a number the file is a program
// that does all that throw.
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>
#include <nuqi/nuqi.hpp>
#include <string>

using namespace nuqi;

Image<std::uint8_t> image(8, 8), other(8, 8);
Image<std::uint8_t, 3> colours(8, 8);
Image<float> floats(8, 8);
Image<std::int16_t> slopes(8, 8);
const Image<std::uint8_t> fixed(8, 8);
View<std::uint8_t, kAnyChannels> any = colours.view();

struct Theirs {
  std::uint8_t pixels[64];
};
struct ColumnMajor : Theirs {};
template <>
struct nuqi::ImageTraits<ColumnMajor> {
  static constexpr int channels = 1;
  static constexpr bool row_major = false;
  static const std::uint8_t* data(const ColumnMajor& matrix) { return matrix.pixels; }
  static std::int64_t rows(const ColumnMajor&) { return 8; }
  static std::int64_t columns(const ColumnMajor&) { return 8; }
  static std::ptrdiff_t row_stride_bytes(const ColumnMajor&) { return 1; }
};

#if defined(WRONG_USE)
void wrong() {
#if WRONG_USE == 1  // expect: two images are compared by norm_diff
  (void)norm_l2(image, other);
#elif WRONG_USE == 2   // expect: masks come last among the inputs
  abs_diff(Mask(image), other, other);
#elif WRONG_USE == 3   // expect: an image stands where a mask belongs
  accumulate(image, other, floats);
#elif WRONG_USE == 4   // expect: the output is const
  abs_diff(image, other, fixed);
#elif WRONG_USE == 5   // expect: this operation does not exist for this element type
  min_eigen(slopes, floats);
#elif WRONG_USE == 6   // expect: ask for it by as<1>() or as<3>()
  (void)mean(any, 0);
#elif WRONG_USE == 7   // expect: say which is meant, counted from 0
  (void)mean_std(colours);
#elif WRONG_USE == 8   // expect: leave the number of the channel out
  (void)min_max(image, 0);
#elif WRONG_USE == 9   // expect: the images differ in their elements or channels
  abs_diff(image, floats, floats);
#elif WRONG_USE == 10  // expect: this operation writes other elements
  accumulate(image, other);
#elif WRONG_USE == 11  // expect: a Mask is made of one channel of uint8_t
  (void)mean(floats, Mask(floats));
#elif WRONG_USE == 12  // expect: specialise ImageTraits
  (void)mean(Theirs{});
#elif WRONG_USE == 13  // expect: make it row-major
  (void)mean(ColumnMajor{});
#elif WRONG_USE == 14  // expect: as many planes as there are channels
  split(colours, image, other, image, other);
#elif WRONG_USE == 15  // expect: a temporary Image: its pixels would be lost
  abs_diff(image, other, Image<std::uint8_t>(8, 8));
#elif WRONG_USE == 16  // expect: these elements have no such derivative
  sobel3x3(floats, Derivative::d2x, floats);
#elif WRONG_USE == 17  // expect: these elements have no such derivative
  scharr(image, Derivative::dxdy, slopes);
#elif WRONG_USE == 18  // expect: an image stands where a mask belongs
  accumulate_product(image, other, image, floats);
#elif WRONG_USE == 19  // expect: behind the image comes the derivative
  sobel3x3(image, slopes, slopes);
#elif WRONG_USE == 20  // expect: an image stands where a mask belongs
  (void)accumulate_weighted(image, other, floats, 0.5F, std::nothrow);
#endif
}
#else

struct Throwing {
  const char* expected;
  std::function<void()> use;
};

int main() {
  const Throwing uses[] = {
      {"abs_diff(8x8 of uint8_t, 7x8 of uint8_t, 8x8 of uint8_t): the sizes differ (StatusBadSize)",
       [] { abs_diff(image, other.roi(0, 0, 7, 8), other); }},
      {"the output overlaps an input or another output (StatusBadArg)",
       [] { sobel3x3(floats, Derivative::dx, floats); }},
      {"the image has another number of channels (StatusBadChannels)", [] { (void)any.as<1>(); }},
      {"the rectangle reaches outside the image (StatusBadArg)",
       [] { (void)image.roi(1, 1, 8, 8); }},
      {"the step is below a row's bytes (StatusBadSize)",
       [] { View<float>(floats.data(), 8, 8, 8); }},
      {"an image is empty (StatusBadSize)", [] { (void)mean(Image<float>()); }},
      {"the mask selects nothing (StatusBadSize)", [] { (void)norm_l1(image, Mask(other)); }},
      {"there is no such channel: they count from 0 (StatusBadCoi)",
       [] { (void)mean(colours, 3); }},
      {"levels are two or more integers from 0 to 256 that ascend (StatusBadArg)",
       [] {
         (void)histogram(image, {0, 300});
       }},
      {"there is no such derivative of these elements (StatusUnsupported)",
       [] { sobel3x3(floats, Derivative(Derivative::dxdy), Image<float>(8, 8).view()); }},
  };
  int failures = 0;
  for (const Throwing& wrong : uses) {
    std::string said = "nothing";
    try {
      wrong.use();
    } catch (const Error& error) {
      said = error.what();
    }
    if (said.find(wrong.expected) != std::string::npos) continue;
    std::printf("expected: %s\nfound:    %s\n", wrong.expected, said.c_str());
    ++failures;
  }
  return failures;
}
#endif
