// The tour's page: what a family shows, and the HTML made of it.
#include "tour/page.h"

#include <algorithm>
#include <cstdio>
#include <ctime>

#include "tour/machine.h"
#include "tour/style.h"

namespace tools {
namespace {

constexpr int kMostRuns = 15;
constexpr double kMostSeconds = 0.1;  // per call, for all runs

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

std::string factor_text(double factor) {
  return formatted(factor < 100 ? "%.3g × as fast as" : "%.0f × as fast as", factor);
}

// The functions' names stand out from their arguments.
std::string code_html(const std::string& text) {
  const size_t line = std::min(text.find('\n'), text.size());
  const size_t open = std::min(text.find('('), line);
  const std::string first =
      "<b>" + escaped(text.substr(0, open)) + "</b>" + escaped(text.substr(open, line - open));
  return line == text.size() ? first : first + "\n" + code_html(text.substr(line + 1));
}

std::string span_html(const std::string& text) { return " <span>" + text + "</span>"; }

std::string call_html(const Call& call, const Figure& figure, const Section& section,
                      const std::string& isa) {
  const double pixels = double(figure.size.width) * double(figure.size.height);
  std::string html = "<div class=\"call\"><pre><code>" + code_html(call.text) +
                     "</code></pre>\n<p><strong>" + time_text(call.seconds) + "</strong>";
  if (call.plain_seconds > 0)
    html += span_html(factor_text(call.plain_seconds / call.seconds) + " a plain loop");
  html += span_html("median of " + std::to_string(call.runs)) +
          span_html(formatted("%.3f ns/pixel", call.seconds * 1e9 / pixels)) + span_html(isa);
  return html + "</p>\n<details><summary>Whole program</summary><pre><code>" +
         escaped(program_of(call.text, section.declarations, figure.size)) +
         "</code></pre></details></div>\n";
}

std::string legend_html(const Legend& legend) {
  return "<div class=\"legend\"><div style=\"background:linear-gradient(to right," +
         legend.gradient + ")\"></div><p><span>" + legend.low + "</span><span>" + legend.middle +
         "</span><span>" + legend.high + "</span></p></div>\n";
}

std::string header_html(const PageFacts& facts, const std::vector<Section>& sections,
                        PagePictures& pictures) {
  const auto fact = [](const char* name, const std::string& value) {
    return std::string("<div><dt>") + name + "</dt><dd>" + escaped(value) + "</dd></div>\n";
  };
  std::string html =
      "<header>\n<div>\n<h1>nuqi <span>tour</span></h1>\n"
      "<p class=\"lead\">Computer-vision primitives at work on one picture: before beside after, "
      "with the call that made each picture, the time it took, and a program to paste. Pictures "
      "open whole.</p>\n<dl>\n" +
      fact("Picture", facts.name) + fact("Size", facts.size) + fact("Processor", processor_name()) +
      fact("Instruction set", facts.isa) + fact("Compiler", compiler_name()) +
      fact("Version", facts.version) + fact("Date", today()) + "</dl>\n</div>\n" +
      pictures.html(facts.picture, "The picture: " + facts.name, "picture") +
      "</header>\n<nav aria-label=\"Contents\">\n<ul>\n";
  for (const Section& section : sections) {
    html += "<li><a href=\"#" + section.id + "\">" + escaped(section.title) + "</a></li>\n";
  }
  return html + "</ul>\n</nav>\n";
}

// One page in the making.
class PageWriter {
 public:
  explicit PageWriter(const PageFacts& facts) : facts_(facts) {}

  Page page_of(const std::vector<Section>& sections) {
    pictures_.count(facts_.picture);
    for (const Section& section : sections)
      for (const auto* figures : {&section.before, &section.after})
        for (const Figure& figure : *figures) pictures_.count(figure.shown);
    std::string body = header_html(facts_, sections, pictures_) + "<main id=\"main\">\n";
    for (const Section& section : sections) body += section_html(section);
    return {head_html() + body + kFoot, pictures_.files()};
  }

 private:
  static constexpr char kFoot[] =
      "</main>\n<footer><p>Times are medians of processor time on the machine that made this page, "
      "for whole "
      "pictures; a plain loop is one as anybody would write it, in C++, made by the same compiler "
      "as this program and with the same options, which computes the same numbers, those of "
      "corners "
      "but for their rounding. A call on one "
      "instruction set gives the same bits as on any other.</p></footer>\n</body>\n</html>\n";

  std::string head_html() const {
    return std::string(
               "<!doctype html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
               "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
               "<title>nuqi tour</title>\n<link rel=\"icon\" href=\"data:,\">\n<style>\n") +
           kTourStyle + pictures_.style() +
           "</style>\n</head>\n<body>\n<a class=\"skip\" href=\"#main\">Skip to the pictures</a>\n";
  }

  std::string section_html(const Section& section) {
    std::string html = "<section id=\"" + section.id + "\">\n<h2>" + escaped(section.title) +
                       "</h2>\n<p class=\"lead\">" + section.text + "</p>\n";
    for (const std::string& caution : section.cautions)
      html += "<p class=\"caution\" role=\"note\"><b>Mind:</b> " + caution + "</p>\n";
    return html + "<div class=\"compare\">\n" + figures_html(section, section.before, "before") +
           figures_html(section, section.after, "after") + "</div>\n</section>\n";
  }

  std::string figures_html(const Section& section, const std::vector<Figure>& figures,
                           const std::string& stage) {
    std::string html = "<div class=\"" + stage + "\">\n";
    for (size_t i = 0; i < figures.size(); ++i) {
      const Figure& figure = figures[i];
      std::string stem = section.id;
      stem.append("-").append(stage).append("-").append(std::to_string(i + 1));
      html += "<figure>\n" + pictures_.html(figure.shown, figure.alt, stem);
      html.append("<figcaption>\n<h3><small>").append(stage).append("</small> ");
      html += escaped(figure.title) + "</h3>\n";
      if (!figure.caption.empty()) html += "<p>" + figure.caption + "</p>\n";
      for (const Legend& legend : figure.legends) html += legend_html(legend);
      for (const Call& call : figure.calls) html += call_html(call, figure, section, facts_.isa);
      html += "</figcaption>\n</figure>\n";
    }
    return html + "</div>\n";
  }

  const PageFacts& facts_;
  PagePictures pictures_;
};

// Of this thread alone: what else the machine does counts little.
double processor_seconds() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return double(now.tv_sec) + 1e-9 * double(now.tv_nsec);
}

// The times of several runs, fewer where they are slow.
template <class Run>
std::vector<double> times_of(const Run& run, const Prepare& prepare) {
  std::vector<double> seconds;
  double total = 0;
  while (seconds.size() < kMostRuns && (seconds.empty() || total < kMostSeconds)) {
    if (prepare) prepare();
    const double start = processor_seconds();
    run();
    seconds.push_back(processor_seconds() - start);
    total += seconds.back();
  }
  return seconds;
}

}  // namespace

double median_of(std::vector<double> values) {
  const auto middle = values.begin() + ptrdiff_t(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

Call timed_call(const char* text, const std::function<StatusCode()>& run, const Prepare& prepare) {
  const std::vector<double> seconds = times_of([&] { require_ok(run(), text); }, prepare);
  return {text, median_of(seconds), int(seconds.size())};
}

Call Call::made_by(const std::string& line) && {
  text = line + ";\n" + text;
  return std::move(*this);
}

Call Call::against(const std::function<void()>& plain_loop, const Prepare& prepare) && {
  plain_seconds = median_of(times_of(plain_loop, prepare));
  return std::move(*this);
}

Figure::Figure(std::string name, std::string description, const Picture& picture, Shrink how)
    : title(std::move(name)),
      alt(std::move(description)),
      shown(picture, alt, how),
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

Page page_of(const PageFacts& facts, const std::vector<Section>& sections) {
  return PageWriter(facts).page_of(sections);
}

}  // namespace tools
