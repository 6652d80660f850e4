// The tour's page: what a family shows, and the HTML made of it.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "clock.h"
#include "failure.h"
#include "pictures/colours.h"
#include "pictures/picture.h"
#include "tour/page_picture.h"
#include "tour/snippet.h"

namespace tools {

// What precedes each run, for calls that work in place: no part of its time.
using Prepare = std::function<void()>;

// A call that was made: its text, after lines that make what it uses, its median time and the number of
// runs; and how long a plain loop takes, where one was measured.
struct Call {
  std::string text;
  double seconds = 0;
  int runs = 0;
  double plain_seconds = 0;

  Call made_by(const std::string& line) &&;  // what makes its state
  Call against(const std::function<void()>& plain_loop, const Prepare& prepare = {}) &&;
};

// Runs the call several times, fewer where it is slow. Throws unless it succeeds.
Call timed_call(const char* text, const std::function<StatusCode()>& run,
                const Prepare& prepare = {});

double median_of(std::vector<double> values);

// The page shows the very text that was compiled.
#define NUQI_TIMED(call) ::tools::timed_call(#call, [&] { return call; })

struct Figure {
  Figure(std::string title, std::string alt, const Picture& picture, Shrink how = Shrink::mean);

  Figure& with(Call call);
  Figure& with(Legend key);
  Figure& note(std::string text);  // a sentence; may hold HTML

  std::string title, alt;
  PagePicture shown;
  RoiSize size;  // that the times are for
  std::vector<Call> calls;
  std::vector<Legend> legends;  // none or one
  std::string caption;
};

// One family: pictures before its work, beside those after.
struct Section {
  std::string id, title, text;  // text may hold HTML
  std::vector<Figure> before, after;
  std::vector<std::string> cautions = {};      // what surprises, and its remedy; may hold HTML
  std::vector<Declaration> declarations = {};  // of the names in its calls
};

struct PageFacts {
  std::string name;  // the picture's file, or what the built-in scene is called
  std::string size;  // its size, and that at which it is shown
  PagePicture picture;
  std::string isa, version;
};

struct Page {
  std::string html;
  std::vector<PageFile> files;  // beside it
};
Page page_of(const PageFacts& facts, const std::vector<Section>& sections);

}  // namespace tools
