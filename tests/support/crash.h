// Says what ran, and which wall was hit, when a bad access ends a test program.
#pragma once

#include "nuqi/nuqi.h"

namespace nuqi::test {

// Names the call that is running while one of these lives: a report of a crash begins with it.
//   const Running now(member.name, roi);
// It costs a few stores, so that fixtures can have one around every call. The name must outlive it.
class Running {
 public:
  Running(const char* function, RoiSize roi) : function_(function), roi_(roi), outer_(now_) {
    now_ = this;
  }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;
  ~Running() { now_ = outer_; }

  static const Running* now() { return now_; }
  const char* function() const { return function_; }
  RoiSize roi() const { return roi_; }

 private:
  const char* function_;
  RoiSize roi_;
  const Running* outer_;
  static inline const Running* volatile now_ = nullptr;
};

// From here on, a crash prints test, function, level, shape and wall before the program ends. Under a
// sanitizer its own report follows.
void report_crashes();

}  // namespace nuqi::test
