// Filters that images larger than memory go through, strip by strip.
#include <atomic>
#include <memory>
#include <nuqi/hpp/morphology.hpp>
#include <nuqi/hpp/strips.hpp>
#include <utility>

#include "element.h"
#include "operation.h"

namespace nuqi::python {
namespace {

// A filter of nuqi.hpp as Python's functions see it: of any element type and number of channels.
class Strips {
 public:
  Strips() = default;
  Strips(const Strips&) = delete;
  Strips& operator=(const Strips&) = delete;
  virtual ~Strips() = default;

  virtual void begin() = 0;
  virtual std::int64_t rows_due(std::int64_t rows) const = 0;
  virtual std::int64_t rows_left() const = 0;
  virtual void feed(PyObject* strip, PyObject* out) = 0;
  virtual void finish(PyObject* out) = 0;

  bool busy = false;  // another thread feeds it: the interpreter's lock guards this
};

template <class Filter>
class StripsOf : public Strips {
 public:
  explicit StripsOf(Filter filter) : filter_(std::move(filter)) { filter_.begin(); }

  void begin() override { filter_.begin(); }
  std::int64_t rows_due(std::int64_t rows) const override { return filter_.rows_due(rows); }
  std::int64_t rows_left() const override { return filter_.rows_left(); }

 protected:
  template <class Strip, class Output>
  void feed_views(const Strip& strip, const Output& out) {
    unlocked([&] { filter_.feed(strip, out); });
  }
  template <class Output>
  void finish_view(const Output& out) {
    unlocked([&] { filter_.finish(out); });
    filter_.begin();
  }

 private:
  Filter filter_;
};

// One channel, bytes to int16, floats to floats.
template <class Filter>
class Sums : public StripsOf<Filter> {
 public:
  using StripsOf<Filter>::StripsOf;

  void feed(PyObject* strip, PyObject* out) override {
    for_type<std::uint8_t, std::int8_t, float>(strip, "strip", [&](auto type) {
      using T = typename decltype(type)::type;
      const auto in = input<T>(strip, "strip");
      this->feed_views(in, output<detail::Filtered<T>>(out));
      return nullptr;
    });
  }
  void finish(PyObject* out) override {
    for_type<std::int16_t, float>(out, "out", [&](auto type) {
      this->finish_view(output<typename decltype(type)::type>(out));
      return nullptr;
    });
  }
};

// A Morphology that knows from the start what it takes of the pixels.
class Extremes : public Morphology {
 public:
  Extremes(nuqi::Element under, Extremum extremum)
      : Morphology(std::move(under)), extremum_(extremum) {}
  void begin() noexcept { Morphology::begin(extremum_); }

 private:
  Extremum extremum_;
};

class Extrema : public StripsOf<Extremes> {
 public:
  using StripsOf::StripsOf;

  void feed(PyObject* strip, PyObject* out) override {
    of(strip, "strip", [&](auto type, auto channels) {
      using T = typename decltype(type)::type;
      constexpr int kChannels = decltype(channels)::value;
      const auto in = input<T, kChannels>(strip, "strip");
      feed_views(in, output<T, kChannels>(out));
    });
  }
  void finish(PyObject* out) override {
    of(out, "out", [&](auto type, auto channels) {
      finish_view(output<typename decltype(type)::type, decltype(channels)::value>(out));
    });
  }

 private:
  template <class Go>
  void of(PyObject* array, const char* name, Go go) {
    for_type<std::uint8_t, float>(array, name, [&](auto type) {
      return for_channels<1, 3, 4>(array, name, [&](auto channels) {
        go(type, channels);
        return nullptr;
      });
    });
  }
};

constexpr const char* kCapsule = "nuqi.strips";

Strips* held(PyObject* capsule) {
  return static_cast<Strips*>(PyCapsule_GetPointer(capsule, kCapsule));
}

PyObject* capsule_of(std::unique_ptr<Strips> strips) {
  PyObject* capsule =
      checked(PyCapsule_New(strips.get(), kCapsule, [](PyObject* ended) { delete held(ended); }));
  strips.release();
  return capsule;
}

// The filter of a capsule, for one call at a time.
class Use {
 public:
  explicit Use(PyObject* capsule) : strips_(held(capsule)) {
    if (strips_ == nullptr) throw Raised{};
    if (strips_->busy) {
      PyErr_SetString(PyExc_RuntimeError,
                      "another thread uses this object; make one for each thread");
      throw Raised{};
    }
    strips_->busy = true;
  }
  ~Use() { strips_->busy = false; }
  Use(const Use&) = delete;
  Use& operator=(const Use&) = delete;
  Strips* operator->() const { return strips_; }

 private:
  Strips* strips_;
};

PyObject* box_sum(Arguments a) {
  return capsule_of(std::make_unique<Sums<BoxSum>>(BoxSum(integer(a[0], "size"))));
}
PyObject* sobel(Arguments a) {
  return capsule_of(std::make_unique<Sums<Sobel>>(
      Sobel(integer(a[0], "x_order"), integer(a[1], "y_order"), integer(a[2], "aperture"))));
}
PyObject* laplace(Arguments a) {
  return capsule_of(std::make_unique<Sums<Laplace>>(Laplace(integer(a[0], "size"))));
}
// (operation, footprint, anchor)
PyObject* morphology(Arguments a) {
  static constexpr const char* kWords[] = {"erode", "dilate"};
  const Extremum extremum =
      word(a[0], "operation", kWords, 2) == 0 ? Extremum::least : Extremum::greatest;
  return capsule_of(std::make_unique<Extrema>(Extremes(element(a[1], a[2]), extremum)));
}

// (capsule)
PyObject* begin(Arguments a) {
  Use(a[0])->begin();
  return none();
}
// (capsule, rows): of the strip; None asks for what is left at the end
PyObject* rows(Arguments a) {
  const Use strips(a[0]);
  return PyLong_FromLongLong(a[1] == Py_None ? strips->rows_left()
                                             : strips->rows_due(integer(a[1], "strip")));
}
// (capsule, strip, out)
PyObject* feed(Arguments a) {
  Use(a[0])->feed(a[1], a[2]);
  return none();
}
// (capsule, out)
PyObject* finish(Arguments a) {
  Use(a[0])->finish(a[1]);
  return none();
}

const Operation kOperations[] = {
    {"strips_of_box_sum", 1, box_sum}, {"strips_of_sobel", 3, sobel},
    {"strips_of_laplace", 1, laplace}, {"strips_of_morphology", 3, morphology},
    {"strips_begin", 1, begin},        {"strips_rows", 2, rows},
    {"strips_feed", 3, feed},          {"strips_finish", 2, finish},
};

}  // namespace

Operations strip_operations() { return {kOperations, std::size(kOperations)}; }

}  // namespace nuqi::python
