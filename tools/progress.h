// Progress on stderr: a bar on a terminal, nothing elsewhere or where --quiet.
#pragma once

#include <string>

namespace tools {

class Progress {
 public:
  Progress(std::string unit, int total);
  ~Progress();  // leaves the cursor on a fresh line
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // One more unit is done; `label` says which, where that helps.
  void advance(const std::string& label = "") { advance(1, label); }
  void advance(int units, const std::string& label = "");

 private:
  void draw_bar(const std::string& text) const;
  std::string count_text() const;

  std::string unit_;
  int total_;
  int done_ = 0;
  bool shown_;
};

}  // namespace tools
