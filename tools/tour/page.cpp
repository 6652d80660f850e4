// The tour's page: what a family shows, and the self-contained HTML made of it.
#include "tour/page.h"

#include <algorithm>
#include <cstdio>

#include "tour/style.h"

namespace tools {
namespace {

constexpr int kMostRuns = 25;
constexpr double kMostSeconds = 0.4;    // per call, for all runs
constexpr int32_t kMostPixels = 800;    // along a side of a picture on the page
constexpr int32_t kMagnifyBelow = 200;  // pixels of smaller pictures are shown as squares

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

// Each pixel stands for a square of `factor` pixels, cut at the right and lower edges.
Picture shrunk(const Picture& picture, Shrink how) {
  const RoiSize from = picture.size;
  const int32_t factor = (std::max(from.width, from.height) + kMostPixels - 1) / kMostPixels;
  if (factor <= 1) return picture;
  Picture small({(from.width + factor - 1) / factor, (from.height + factor - 1) / factor},
                picture.channels);
  const size_t channels = size_t(picture.channels);
  uint8_t* out = small.pixels.data();
  for (int32_t y = 0; y < from.height; y += factor) {
    for (int32_t x = 0; x < from.width; x += factor) {
      for (size_t c = 0; c < channels; ++c) {
        uint32_t sum = 0, count = 0, brightest = 0;
        for (int32_t v = y; v < std::min(y + factor, from.height); ++v) {
          for (int32_t u = x; u < std::min(x + factor, from.width); ++u, ++count) {
            const uint32_t value =
                picture.pixels[(size_t(v) * size_t(from.width) + size_t(u)) * channels + c];
            sum += value;
            brightest = std::max(brightest, value);
          }
        }
        *out++ = uint8_t(how == Shrink::mean ? (sum + count / 2) / count : brightest);
      }
    }
  }
  return small;
}

std::string formatted(const char* format, double value) {
  char text[64];
  std::snprintf(text, sizeof text, format, value);
  return text;
}

std::string time_text(double seconds) {
  const double us = seconds * 1e6;
  if (us < 1) return formatted("%.0f ns", us * 1e3);
  if (us < 1000) return formatted(us < 10 ? "%.2f µs" : us < 100 ? "%.1f µs" : "%.0f µs", us);
  return formatted(us < 1e5 ? "%.2f ms" : "%.0f ms", us / 1e3);
}

// The function's name stands out from its arguments.
std::string code_html(const std::string& text) {
  const size_t open = std::min(text.find('('), text.size());
  return "<b>" + escaped(text.substr(0, open)) + "</b>" + escaped(text.substr(open));
}

std::string call_html(const Call& call, RoiSize size, const std::string& isa) {
  const double pixels = double(size.width) * double(size.height);
  return "<div class=\"call\"><pre><code>" + code_html(call.text) + "</code></pre>\n<p><strong>" +
         time_text(call.seconds) + "</strong> <span>median of " + std::to_string(call.runs) +
         "</span> <span>" + formatted("%.3f", call.seconds * 1e9 / pixels) +
         " ns/pixel</span> <span>" + isa + "</span></p></div>\n";
}

std::string legend_html(const Legend& legend) {
  return "<div class=\"legend\"><div style=\"background:linear-gradient(to right," +
         legend.gradient + ")\"></div><p><span>" + legend.low + "</span><span>" + legend.middle +
         "</span><span>" + legend.high + "</span></p></div>\n";
}

std::string image_html(const Picture& shown, const std::string& alt) {
  const RoiSize size = shown.size;
  const bool magnify = std::max(size.width, size.height) < kMagnifyBelow;
  return "<img src=\"data:image/png;base64," + base64(encode_png(shown, alt)) + "\" width=\"" +
         std::to_string(size.width) + "\" height=\"" + std::to_string(size.height) + "\" alt=\"" +
         escaped(alt) + "\"" + (magnify ? " class=\"magnified\"" : "") + ">\n";
}

std::string figure_html(const Figure& figure, const char* stage, const std::string& isa) {
  std::string html = "<figure>\n" + image_html(figure.shown, figure.alt) +
                     "<figcaption>\n<h3><small>" + stage + "</small> " + escaped(figure.title) +
                     "</h3>\n";
  if (!figure.caption.empty()) html += "<p>" + figure.caption + "</p>\n";
  for (const Legend& legend : figure.legends) html += legend_html(legend);
  for (const Call& call : figure.calls) html += call_html(call, figure.size, isa);
  return html + "</figcaption>\n</figure>\n";
}

std::string section_html(const Section& section, const std::string& isa) {
  std::string html = "<section id=\"" + section.id + "\">\n<h2>" + escaped(section.title) +
                     "</h2>\n<p class=\"lead\">" + section.text +
                     "</p>\n<div class=\"compare\">\n<div class=\"before\">\n";
  for (const Figure& figure : section.before) html += figure_html(figure, "before", isa);
  html += "</div>\n<div class=\"after\">\n";
  for (const Figure& figure : section.after) html += figure_html(figure, "after", isa);
  return html + "</div>\n</div>\n</section>\n";
}

std::string header_html(const PageFacts& facts, const std::vector<Section>& sections) {
  const auto fact = [](const char* name, const std::string& value) {
    return std::string("<div><dt>") + name + "</dt><dd>" + escaped(value) + "</dd></div>\n";
  };
  std::string html =
      "<header>\n<div>\n<h1>nuqi <span>tour</span></h1>\n"
      "<p class=\"lead\">Computer-vision primitives at work on one picture: before beside after, "
      "with the call that made each picture and the time it took.</p>\n<dl>\n" +
      fact("Picture", facts.name) + fact("Size", size_text(facts.picture.size)) +
      fact("Instruction set", facts.isa) + fact("Version", facts.version) + "</dl>\n</div>\n" +
      image_html(shrunk(facts.picture, Shrink::mean), "The picture: " + facts.name) +
      "</header>\n<nav aria-label=\"Contents\">\n<ul>\n";
  for (const Section& section : sections) {
    html += "<li><a href=\"#" + section.id + "\">" + escaped(section.title) + "</a></li>\n";
  }
  return html + "</ul>\n</nav>\n";
}

}  // namespace

double median_of(std::vector<double> values) {
  const auto middle = values.begin() + ptrdiff_t(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

Call timed_call(const char* text, const std::function<StatusCode()>& run) {
  std::vector<double> seconds;
  double total = 0;
  while (seconds.size() < kMostRuns && (seconds.empty() || total < kMostSeconds)) {
    seconds.push_back(seconds_of([&] { require_ok(run(), text); }));
    total += seconds.back();
  }
  return {text, median_of(seconds), int(seconds.size())};
}

Figure::Figure(std::string name, std::string description, const Picture& picture, Shrink how)
    : title(std::move(name)),
      alt(std::move(description)),
      shown(shrunk(picture, how)),
      size(picture.size) {}

Figure& Figure::with(Call call) {
  calls.push_back(std::move(call));
  return *this;
}

Figure& Figure::with(Legend key) {
  legends = {std::move(key)};
  return *this;
}

Figure& Figure::note(std::string text) {
  caption = std::move(text);
  return *this;
}

std::string page_html(const PageFacts& facts, const std::vector<Section>& sections) {
  std::string html =
      std::string(
          "<!doctype html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
          "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
          "<title>nuqi tour</title>\n<link rel=\"icon\" href=\"data:,\">\n<style>\n") +
      kTourStyle +
      "</style>\n</head>\n<body>\n<a class=\"skip\" href=\"#main\">Skip to the pictures</a>\n" +
      header_html(facts, sections) + "<main id=\"main\">\n";
  for (const Section& section : sections) html += section_html(section, facts.isa);
  return html +
         "</main>\n<footer><p>Times are medians on the machine that made this page, for the whole "
         "picture; the pictures shown are at most " +
         std::to_string(kMostPixels) +
         " pixels along a side. A call on one instruction set gives the same bits as on any "
         "other.</p></footer>\n</body>\n</html>\n";
}

}  // namespace tools
