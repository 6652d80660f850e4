// Progress on stderr: a bar on a terminal, nothing elsewhere or where --quiet.
#include "progress.h"

#include <unistd.h>

#include <cstdio>

#include "report.h"

namespace tools {
namespace {

constexpr int kBarWidth = 30;

}  // namespace

Progress::Progress(std::string unit, int total)
    : unit_(std::move(unit)), total_(total), shown_(isatty(STDERR_FILENO) != 0 && !is_quiet()) {
  if (shown_) draw_bar(count_text());
}

Progress::~Progress() {
  if (shown_ && done_ < total_) std::fputc('\n', stderr);
}

void Progress::advance(int units, const std::string& label) {
  done_ += units;
  if (shown_) draw_bar(count_text() + (label.empty() ? "" : ": " + label));
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
