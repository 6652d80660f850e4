// Pictures on the tour's page: small ones in the page, whole ones in files beside it.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "pictures/picture.h"

namespace tools {

// How a picture too wide for the page is made smaller: thin bright lines survive only `brightest`.
enum class Shrink { mean, brightest };

Picture shrunk(const Picture& picture, int32_t longest_side, Shrink how);

// Encoded twice, which takes less memory than its pixels.
struct PagePicture {
  PagePicture() = default;
  PagePicture(const Picture& picture, const std::string& what, Shrink how);

  RoiSize size{0, 0}, small_size{0, 0};
  Bytes whole, small;  // a PNG file, and what is shorter of PNG and JPEG
  bool small_is_jpeg = false;
};

struct PageFile {
  std::string name;
  Bytes bytes;
};

// Holds each picture once, however often it is shown: those shown more often in the style sheet.
class PagePictures {
 public:
  // All pictures of the page are counted before the first is shown.
  void count(const PagePicture& picture) { ++entries_[key_of(picture)].uses; }

  // A link to the whole picture, whose file is called after `stem` where it has no name yet.
  std::string html(const PagePicture& picture, const std::string& alt, const std::string& stem);

  std::string style() const;
  std::vector<PageFile> files() { return std::move(files_); }

 private:
  struct Entry {
    int uses = 0;
    int number = -1;  // of its style
    std::string file;
  };

  static std::string key_of(const PagePicture& picture) {
    return {picture.small.begin(), picture.small.end()};
  }

  std::map<std::string, Entry> entries_;
  std::vector<PageFile> files_;
  std::vector<std::string> styles_;
};

std::string escaped(const std::string& text);

}  // namespace tools
