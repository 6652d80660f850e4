/// Failures: what a status means, and the exception that carries one.
#ifndef NUQI_HPP_ERROR_HPP
#define NUQI_HPP_ERROR_HPP

#include <nuqi/nuqi.h>

#include <stdexcept>
#include <string>

namespace nuqi {

/// The name of a status as nuqi.h writes it: "StatusBadSize".
[[nodiscard]] inline const char* status_name(StatusCode status) noexcept {
  switch (status) {
    case StatusOk: return "StatusOk";
    case StatusNothingToDo: return "StatusNothingToDo";
    case StatusUnsupported: return "StatusUnsupported";
    case StatusBadSize: return "StatusBadSize";
    case StatusNullPtr: return "StatusNullPtr";
    case StatusNoMemory: return "StatusNoMemory";
    case StatusDivByZero: return "StatusDivByZero";
    case StatusBadArg: return "StatusBadArg";
    case StatusBadDataType: return "StatusBadDataType";
    case StatusBadStep: return "StatusBadStep";
    case StatusBadContext: return "StatusBadContext";
    case StatusBadCoi: return "StatusBadCoi";
    case StatusBadChannels: return "StatusBadChannels";
    default: return "an unknown status";
  }
}

/// What a status says, in words.
[[nodiscard]] inline const char* status_text(StatusCode status) noexcept {
  switch (status) {
    case StatusOk: return "success";
    case StatusNothingToDo: return "there were no rows to process";
    case StatusUnsupported: return "a value is none of those that this operation knows";
    case StatusBadSize: return "a size is out of range";
    case StatusNullPtr: return "a pointer is null";
    case StatusNoMemory: return "there is not enough memory";
    case StatusDivByZero: return "a sum that would divide is zero";
    case StatusBadArg: return "a value is outside its range";
    case StatusBadDataType: return "the element type is none of those that this operation knows";
    case StatusBadStep: return "a step is too small or not a multiple of the element's size";
    case StatusBadContext: return "the state was made for another purpose";
    case StatusBadCoi: return "there is no such channel";
    case StatusBadChannels:
      return "the number of channels is none of those that this operation knows";
    default: return "the library failed";
  }
}

/// Thrown by every operation that fails. what() reads
/// "abs_diff(64x48 of uint8_t, 32x48 of uint8_t, 64x48 of uint8_t): the sizes differ (StatusBadSize)".
class Error : public std::runtime_error {
 public:
  /// `function` must be a literal: it is kept as a pointer. `arguments` describes those of the call, `why`
  /// says what is wrong with them.
  Error(StatusCode status, const char* function, const std::string& arguments, const char* why)
      : std::runtime_error(std::string(function) + "(" + arguments + "): " + why + " (" +
                           status_name(status) + ")"),
        status_(status),
        function_(function) {}

  /// The status, one of those in nuqi.h.
  [[nodiscard]] StatusCode status() const noexcept { return status_; }
  /// The operation that failed: "abs_diff".
  [[nodiscard]] const char* function() const noexcept { return function_; }

 private:
  StatusCode status_;
  const char* function_;
};

namespace detail {

/// How a call ended: a status and, where it is a failure, the reason. Operations compute one; their throwing
/// and their std::nothrow overloads differ in what they make of it.
struct Outcome {
  StatusCode status = StatusOk;
  const char* why = nullptr;

  constexpr Outcome() noexcept = default;
  constexpr Outcome(StatusCode failure, const char* reason) noexcept
      : status(failure), why(reason) {}
  /// Of a C function: its status says all. Warnings and counts are successes.
  // NOLINTNEXTLINE(google-explicit-constructor)
  constexpr Outcome(StatusCode of_call) noexcept : status(of_call) {}

  [[nodiscard]] constexpr bool failed() const noexcept { return status < 0; }
  [[nodiscard]] const char* reason() const noexcept {
    return why != nullptr ? why : status_text(status);
  }
};

}  // namespace detail
}  // namespace nuqi

#endif
