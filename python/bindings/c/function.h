// A row of the table of C functions: what the prototype says, and what it cannot say.
#pragma once

#include <string>
#include <tuple>
#include <vector>

#include "prototype.h"

namespace nuqi::python {

struct Call;
struct Function;

// How the sizes of the images of one call belong together.
enum class Sizes : uint8_t {
  same,  // all of one size, that of the ROI
  half,  // the target is half as wide and high as the source
  twice,
  matches,  // the target holds a score for every place of the second source in the first
};

// The bytes of scratch that a call needs; a status of the function that tells.
using BufferSize = StatusCode (*)(const Call& call, int64_t* bytes);
// The number of entries of a plain array.
using Length = int64_t (*)(const Call& call);
// A function of its own, for prototypes whose arguments only their documentation can tell.
using Body = PyObject* (*)(const Function& function, PyObject* const* arguments, Py_ssize_t count);

// A table line.
struct Row {
  const char* name = nullptr;
  Address address = nullptr;
  Invoke invoke = nullptr;
  const Parameter* parameters = nullptr;
  std::size_t count = 0;

  Sizes sizes = Sizes::same;
  int target_channels = 0;           // 0: as the name says
  bool in_place = false;             // a target may be one of the sources
  bool equal_steps = false;          // of the first two images
  BufferSize buffer_size = nullptr;  // where there is scratch memory
  Length length = nullptr;           // of the plain array
  bool optional = false;             // None stands for no plain array
  Body body = nullptr;
  const char* argument_lines = nullptr;  // of a body: lines of "name : type"
  const char* result_line = nullptr;     // of a body: "name : type"

  Row sized(Sizes how) const {
    Row row = *this;
    row.sizes = how;
    return row;
  }
  Row with_target_channels(int channels) const {
    Row row = *this;
    row.target_channels = channels;
    return row;
  }
  Row may_be_in_place() const {
    Row row = *this;
    row.in_place = true;
    return row;
  }
  Row with_equal_steps() const {
    Row row = *this;
    row.equal_steps = true;
    return row;
  }
  Row with_buffer(BufferSize size) const {
    Row row = *this;
    row.buffer_size = size;
    return row;
  }
  Row with_numbers(Length of_array, bool may_be_none = false) const {
    Row row = *this;
    row.length = of_array;
    row.optional = may_be_none;
    return row;
  }
};

// An argument or a result, and what it is in numpydoc's words: "(h, w) array of uint8, written".
struct Item {
  std::string name;
  std::string type;
};

// A table line, and what its name and the names of its prototype's parameters add.
struct Function : Row {
  explicit Function(const Row& row) : Row(row) {}

  int channels = 1;  // nuqiCopy_8u_C3P3R has three of them, and three planes
  int planes = 0;
  bool masked = false;
  std::vector<std::string> names;  // of the C parameters
  std::vector<Item> arguments;     // from Python; scratch memory, the last one, may be left out
  std::vector<Item> results;
  std::string signature;  // "(src, dst, buffer=None)"
  int fewest = 0;         // arguments from Python
  int most = 0;
};

template <class... P>
Row of_prototype(const char* name, StatusCode (*function)(P...)) {
  Row row;
  row.name = name;
  row.address = reinterpret_cast<Address>(function);
  row.invoke = &Prototype<P...>::invoke;
  row.parameters = Prototype<P...>::kKinds.data();
  row.count = sizeof...(P);
  return row;
}

// A function whose arguments its body reads.
template <class... P>
Row of_body(const char* name, StatusCode (*function)(P...), Body body, const char* arguments,
            const char* result) {
  Row row;
  row.name = name;
  row.address = reinterpret_cast<Address>(function);
  row.body = body;
  row.argument_lines = arguments;
  row.result_line = result;
  return row;
}

#define NUQI_FUNCTION(name)                      of_prototype(#name, name)
#define NUQI_BODY(name, body, arguments, result) of_body(#name, name, body, arguments, result)

// Rows of families, in the order of nuqi.h.
struct Rows {
  const Row* first;
  std::size_t count;
};
Rows arith_rows();
Rows statistics_rows();
Rows filter_rows();
Rows feature_rows();
Rows morphology_rows();
Rows match_rows();
Rows fill_rows();

// All of them, complete. Made once.
const std::vector<Function>& functions();

}  // namespace nuqi::python
