// Progress on stderr: a bar on a terminal, at most about ten plain lines elsewhere.
#include "progress.h"

#include <unistd.h>

#include <cstdio>

namespace tools {
namespace {

constexpr int kBarWidth = 30;
constexpr int kPlainLines = 10;

}  // namespace

Progress::Progress(std::string unit, int total)
    : unit_(std::move(unit)), total_(total), terminal_(isatty(STDERR_FILENO) != 0) {
  if (terminal_) draw_bar(count_text());
}

Progress::~Progress() {
  if (terminal_ && done_ < total_) std::fputc('\n', stderr);
}

void Progress::advance(int units, const std::string& label) {
  const long lines_before = long{done_} * kPlainLines / total_;
  done_ += units;
  const std::string text = count_text() + (label.empty() ? "" : ": " + label);
  if (terminal_) {
    draw_bar(text);
  } else if (long{done_} * kPlainLines / total_ > lines_before) {
    std::fprintf(stderr, "%s\n", text.c_str());
  }
}

std::string Progress::count_text() const {
  return std::to_string(done_) + " of " + std::to_string(total_) + " " + unit_;
}

void Progress::draw_bar(const std::string& text) const {
  const size_t filled = size_t(long{done_} * kBarWidth / total_);
  const std::string bar = std::string(filled, '#') + std::string(kBarWidth - filled, '.');
  std::fprintf(stderr, "\r\033[K[%s] %s%s", bar.c_str(), text.c_str(), done_ == total_ ? "\n" : "");
  std::fflush(stderr);
}

}  // namespace tools
