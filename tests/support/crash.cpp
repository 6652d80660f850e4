// The handler of signals that end a test program. It takes no memory and prints with write() alone.
#include "support/crash.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <ucontext.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "core/isa.h"
#include "support/walls.h"

namespace nuqi::test {
namespace {

constexpr int kSignals[] = {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGVTALRM};
struct sigaction previous[NSIG];

class Report {
 public:
  Report& operator<<(const char* text) {
    const size_t length = std::min(std::strlen(text), sizeof text_ - used_);
    std::memcpy(text_ + used_, text, length);
    used_ += length;
    return *this;
  }
  Report& operator<<(uint64_t number) { return print(number, 10); }
  Report& operator<<(int number) {
    if (number < 0) *this << "-";
    return *this << uint64_t(number < 0 ? -static_cast<int64_t>(number) : number);
  }
  Report& operator<<(const void* address) {
    return (*this << "0x").print(reinterpret_cast<uintptr_t>(address), 16);
  }
  ~Report() { [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, text_, used_); }

 private:
  Report& print(uint64_t number, unsigned base) {
    char digits[24], *at = digits + sizeof digits;
    *--at = 0;
    do *--at = "0123456789abcdef"[number % base];
    while ((number /= base) != 0);
    return *this << at;
  }

  char text_[1000];
  size_t used_ = 0;
};

// Whether it read or wrote, where the processor tells.
const char* access([[maybe_unused]] const void* context) {
#if defined(__x86_64__) || defined(__i386__)
  const bool writes = static_cast<const ucontext_t*>(context)->uc_mcontext.gregs[REG_ERR] & 2;
  return writes ? "wrote" : "read";
#else
  return "touched";
#endif
}

void print_report(int signal, const siginfo_t& info, const void* context) {
  Report report;
  // A lock of GoogleTest's is taken here; code under test never holds it.
  const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
  report << "\nCrash in ";
  if (test != nullptr)
    report << test->test_suite_name() << "." << test->name();
  else
    report << "no test";
  if (const Running* now = Running::now())
    report << ": " << now->function() << " " << now->roi().width << "x" << now->roi().height;
  report << ", level " << name_of(isa()) << ", ";

  switch (signal) {
    case SIGILL: report << "illegal instruction\n"; return;
    case SIGFPE: report << "integer division by zero\n"; return;
    case SIGVTALRM: report << "no processor time left\n"; return;
  }
  report << access(context) << " ";
  const auto* address = static_cast<const uint8_t*>(info.si_addr);
  if (const WalledBytes* image = WalledBytes::with_wall_at(address)) {
    const WalledBytes::Hit hit = image->hit(address);
    report << "byte " << uint64_t{hit.distance}
           << (hit.side == Wall::after ? " after " : " before ");
    if (hit.row >= 0) report << "row " << hit.row << " of ";
    report << image->name() << "\n";
  } else {
    report << "address " << address << ", which is no wall\n";
  }
}

void end_program(int signal, siginfo_t* info, void* context) {
  print_report(signal, *info, context);
  // A sanitizer had a handler here, which prints the stack.
  if (previous[signal].sa_flags & SA_SIGINFO) previous[signal].sa_sigaction(signal, info, context);
  _exit(1);
}

}  // namespace

void report_crashes() {
  static uint8_t memory[1 << 16];
  stack_t stack = {};
  sigaltstack(nullptr, &stack);
  if (stack.ss_flags & SS_DISABLE) {  // a sanitizer has brought its own
    stack = {};
    stack.ss_sp = memory;
    stack.ss_size = sizeof memory;
    sigaltstack(&stack, nullptr);
  }
  struct sigaction action = {};
  action.sa_sigaction = end_program;
  action.sa_flags = SA_SIGINFO | SA_ONSTACK;
  for (int signal : kSignals) sigaction(signal, &action, &previous[signal]);
}

}  // namespace nuqi::test
