// The tour's page: what a family shows, and the self-contained HTML made of it.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "clock.h"
#include "failure.h"
#include "pictures/picture.h"

namespace tools {

// A call that was made: its text, its median time and the number of runs.
struct Call {
  std::string text;
  double seconds = 0;
  int runs = 0;
};

// Runs the call several times, fewer where it is slow. Throws unless it succeeds.
Call timed_call(const char* text, const std::function<StatusCode()>& run);

double median_of(std::vector<double> values);

// The page shows the very text that was compiled.
#define NUQI_TIMED(call) ::tools::timed_call(#call, [&] { return call; })

// How a picture too wide for the page is made smaller: thin bright lines survive only `brightest`.
enum class Shrink { mean, brightest };

struct Legend {
  std::string gradient;  // CSS colours, from the lowest value to the highest
  std::string low, middle, high;
};

struct Figure {
  Figure(std::string title, std::string alt, const Picture& picture, Shrink how = Shrink::mean);

  Figure& with(Call call);
  Figure& with(Legend key);
  Figure& note(std::string text);  // a sentence; may hold HTML

  std::string title, alt;
  Picture shown;
  RoiSize size;  // of the picture before it was shrunk
  std::vector<Call> calls;
  std::vector<Legend> legends;  // none or one
  std::string caption;
};

// One family: pictures before its work, beside those after.
struct Section {
  std::string id, title, text;  // text may hold HTML
  std::vector<Figure> before, after;
};

struct PageFacts {
  std::string name;  // the picture's file, or what the built-in scene is called
  Picture picture;
  std::string isa, version;
};

std::string page_html(const PageFacts& facts, const std::vector<Section>& sections);

}  // namespace tools
