// Pictures on the tour's page: small ones in the page, whole ones in files beside it.
#include "tour/page_picture.h"

#include <algorithm>
#include <cmath>

namespace tools {
namespace {

constexpr int32_t kLongestSide = 440;   // of a picture in the page
constexpr int32_t kMagnifyBelow = 200;  // pixels of smaller pictures are shown as squares

bool magnified(RoiSize size) { return std::max(size.width, size.height) < kMagnifyBelow; }

std::string base64(const Bytes& bytes) {
  static constexpr char kDigits[] =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  text.reserve(bytes.size() * 4 / 3 + 4);
  for (size_t i = 0; i < bytes.size(); i += 3) {
    const size_t count = std::min<size_t>(3, bytes.size() - i);
    uint32_t bits = uint32_t{bytes[i]} << 16;
    if (count > 1) bits |= uint32_t{bytes[i + 1]} << 8;
    if (count > 2) bits |= bytes[i + 2];
    for (size_t digit = 0; digit < 4; ++digit) {
      text += digit <= count ? kDigits[bits >> (18 - 6 * digit) & 63] : '=';
    }
  }
  return text;
}

std::string data_url(const PagePicture& picture) {
  return std::string("data:image/") + (picture.small_is_jpeg ? "jpeg" : "png") + ";base64," +
         base64(picture.small);
}

// The stretch of pixels that a smaller picture's pixel stands for, the outermost ones in part.
struct Stretch {
  Stretch(int32_t at, double factor, int32_t limit)
      : begin(at * factor),
        end(std::min((at + 1) * factor, double(limit))),
        first(int32_t(begin)),
        past(std::min(int32_t(std::ceil(end)), limit)) {}
  double share_of(int32_t pixel) const {
    return std::min(end, pixel + 1.0) - std::max(begin, double(pixel));
  }

  double begin, end;
  int32_t first, past;
};

}  // namespace

Picture shrunk(const Picture& picture, int32_t longest_side, Shrink how) {
  const RoiSize from = picture.size;
  const double factor = double(std::max(from.width, from.height)) / longest_side;
  if (factor <= 1) return picture;
  const auto length = [&](int32_t side) {
    return std::max(1, int32_t(std::lround(side / factor)));
  };
  Picture small({length(from.width), length(from.height)}, picture.channels);
  const size_t channels = size_t(picture.channels);
  uint8_t* out = small.pixels.data();
  for (int32_t y = 0; y < small.size.height; ++y) {
    const Stretch rows(y, double(from.height) / small.size.height, from.height);
    for (int32_t x = 0; x < small.size.width; ++x, out += channels) {
      const Stretch columns(x, double(from.width) / small.size.width, from.width);
      double sums[4] = {}, weight = 0;
      uint8_t brightest[4] = {};
      for (int32_t v = rows.first; v < rows.past; ++v) {
        for (int32_t u = columns.first; u < columns.past; ++u) {
          const double share = rows.share_of(v) * columns.share_of(u);
          const uint8_t* pixel =
              &picture.pixels[(size_t(v) * size_t(from.width) + size_t(u)) * channels];
          weight += share;
          for (size_t c = 0; c < channels; ++c) {
            sums[c] += share * pixel[c];
            brightest[c] = std::max(brightest[c], pixel[c]);
          }
        }
      }
      for (size_t c = 0; c < channels; ++c) {
        out[c] = how == Shrink::mean ? uint8_t(std::lround(sums[c] / weight)) : brightest[c];
      }
    }
  }
  return small;
}

PagePicture::PagePicture(const Picture& picture, const std::string& what, Shrink how)
    : size(picture.size), whole(encode_png(picture, what)) {
  const Picture smaller = shrunk(picture, kLongestSide, how);
  small_size = smaller.size;
  small = encode_png(smaller, what);
  if (magnified(small_size)) return;  // squares must be sharp
  Bytes jpeg = encode_jpeg(smaller, what);
  small_is_jpeg = jpeg.size() < small.size();
  if (small_is_jpeg) small = std::move(jpeg);
}

std::string PagePictures::html(const PagePicture& picture, const std::string& alt,
                               const std::string& stem) {
  Entry& entry = entries_.at(key_of(picture));
  if (entry.file.empty()) {
    entry.file = "pictures/" + stem + ".png";
    files_.push_back({entry.file, picture.whole});
    if (entry.uses > 1) {
      entry.number = int(styles_.size());
      styles_.push_back(data_url(picture));
    }
  }
  const std::string width = std::to_string(picture.small_size.width);
  const std::string height = std::to_string(picture.small_size.height);
  const std::string link =
      "<a class=\"whole\" href=\"" + entry.file + "\" title=\"" + size_text(picture.size) + "\">";
  if (entry.number >= 0) {
    return link + "<span role=\"img\" aria-label=\"" + escaped(alt) + "\" class=\"shared shared" +
           std::to_string(entry.number) + "\" style=\"aspect-ratio:" + width + "/" + height +
           "\"></span></a>\n";
  }
  return link + "<img src=\"" + data_url(picture) + "\" width=\"" + width + "\" height=\"" +
         height + "\" alt=\"" + escaped(alt) + "\"" +
         (magnified(picture.small_size) ? " class=\"magnified\"" : "") + "></a>\n";
}

std::string PagePictures::style() const {
  std::string css;
  for (size_t i = 0; i < styles_.size(); ++i)
    css += ".shared" + std::to_string(i) + " { background-image: url(" + styles_[i] + "); }\n";
  return css;
}

std::string escaped(const std::string& text) {
  std::string html;
  for (const char c : text) {
    switch (c) {
      case '&': html += "&amp;"; break;
      case '<': html += "&lt;"; break;
      case '>': html += "&gt;"; break;
      case '"': html += "&quot;"; break;
      default: html += c;
    }
  }
  return html;
}

}  // namespace tools
