// Every line sampler.
#pragma once

#include "nuqi/nuqi.h"

namespace nuqi::test {

template <class T>
struct SampleLineMember {
  const char* name;
  int channels;
  StatusCode (*call)(const T*, int32_t, RoiSize, T*, PixelPoint, PixelPoint);
};

// Calls visit(member) with each of the 4.
template <class Visit>
void for_each_sample_line(const Visit& visit) {
  visit(SampleLineMember<uint8_t>{"nuqiSampleLine_8u_C1R", 1, nuqiSampleLine_8u_C1R});
  visit(SampleLineMember<uint8_t>{"nuqiSampleLine_8u_C3R", 3, nuqiSampleLine_8u_C3R});
  visit(SampleLineMember<float>{"nuqiSampleLine_32f_C1R", 1, nuqiSampleLine_32f_C1R});
  visit(SampleLineMember<float>{"nuqiSampleLine_32f_C3R", 3, nuqiSampleLine_32f_C3R});
}

}  // namespace nuqi::test
