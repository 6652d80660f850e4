// NumPy arrays as nuqi sees them: a pointer, a size in pixels, bytes from row to row.
#pragma once

#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include <cstdint>
#include <string>

namespace nuqi::python {

enum class Element : uint8_t { u8, s8, s16, s32, f32 };

template <class T>
constexpr Element element_of();
template <>
constexpr Element element_of<uint8_t>() {
  return Element::u8;
}
template <>
constexpr Element element_of<int8_t>() {
  return Element::s8;
}
template <>
constexpr Element element_of<int16_t>() {
  return Element::s16;
}
template <>
constexpr Element element_of<int32_t>() {
  return Element::s32;
}
template <>
constexpr Element element_of<float>() {
  return Element::f32;
}

const char* name_of(Element element);
int64_t bytes_of(Element element);

// What an argument has to be. An image of one channel has shape (h, w), one of more (h, w, channels); a list,
// with 0 rows of dimensions to spare, is one-dimensional.
struct Wanted {
  const char* name;
  Element element;
  int channels = 1;
  bool written = false;
  bool mask = false;  // bool is as good as uint8
  bool list = false;  // one-dimensional: a single row
};

struct Image {
  char* data;
  int64_t width;
  int64_t height;
  int64_t step;
  int64_t row_bytes;
};

// Reads an array without copying it. False, with a TypeError that says what to pass instead, where nuqi cannot
// work on it as it lies.
bool read_array(PyObject* object, const Wanted& wanted, Image* image);

bool is_array(PyObject* object);

// Which of some element types, or numbers of channels, an image has; below 0 with a TypeError that names them where
// it is none.
int find_type(PyObject* object, const char* name, const Element* elements, int count);
int find_channels(PyObject* object, const char* name, const int* channels, int count);

// "uint8 (6, 8)", for messages.
std::string array_text(PyObject* array);

// Whether two images share a byte, and whether they are one and the same.
bool overlap(const Image& a, const Image& b);
bool identical(const Image& a, const Image& b);

}  // namespace nuqi::python
