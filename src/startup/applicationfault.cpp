#include "startup/applicationfault.h"

#ifdef __unix__
#include <fcntl.h>
#include <signal.h>
#include <unistd.h>
#endif

#include <array>
#include <cstdint>
#include <cstdio>
#include <typeinfo>
#include <variant>

#include "settings/safefile.h"

namespace hollowmere {

namespace {

constexpr std::string_view violation = "Access violation at address ";

#ifdef __unix__

constexpr std::size_t longestName = 4096;
std::array<char, longestName> noteFile{};
std::array<char, 64 * 1024> handlerStack;

/// In the handler of a signal: no memory may be asked for, no library called.
void noteViolation(int signal, siginfo_t* info, void* /*state*/) {
  std::array<char, 2 * sizeof(std::uintptr_t) + 1> digits{};
  auto address = reinterpret_cast<std::uintptr_t>(info->si_addr);
  for (std::size_t at = digits.size() - 1; at > 0; --at, address >>= 4U)
    digits[at - 1] = "0123456789ABCDEF"[address & 15U];
  const int file = ::open(noteFile.data(), O_CREAT | O_WRONLY | O_TRUNC, 0600);
  if (file >= 0) {
    const bool written = ::write(file, violation.data(), violation.size()) > 0 &&
                         ::write(file, digits.data(), digits.size() - 1) > 0;
    static_cast<void>(written);
    ::close(file);
  }
  ::raise(signal);  // the handler is gone: the process ends by it
}

#endif

}  // namespace

void reportProgramFault(const std::string& message, TPrompt& prompt,
                        const std::function<void()>& openSupport) {
  const std::string text = faulttexts::encountered + message + faulttexts::inform;
  if (prompt.ask(TPromptKind::Error, text, TButtons::YesNo) == TAnswer::Yes) openSupport();
}

void reportFault(const std::exception_ptr& fault, TPrompt& prompt, const std::function<void()>& openSupport) {
  try {
    std::rethrow_exception(fault);
  } catch (const TInvalidOperation&) {
    return;
  } catch (const std::logic_error& error) {
    reportProgramFault(error.what(), prompt, openSupport);
  } catch (const std::bad_cast& error) {
    reportProgramFault(error.what(), prompt, openSupport);
  } catch (const std::bad_optional_access& error) {
    reportProgramFault(error.what(), prompt, openSupport);
  } catch (const std::bad_variant_access& error) {
    reportProgramFault(error.what(), prompt, openSupport);
  } catch (const std::exception& error) {
    prompt.error(error.what());
  } catch (...) {
    reportProgramFault("unknown exception", prompt, openSupport);
  }
}

void noteAccessViolations(const std::string& file) {
#ifdef __unix__
  if (file.size() >= noteFile.size()) return;
  file.copy(noteFile.data(), file.size());
  // A stack of its own: the violation may be that the other one is full.
  stack_t stack{};
  stack.ss_sp = handlerStack.data();
  stack.ss_size = handlerStack.size();
  ::sigaltstack(&stack, nullptr);
  struct sigaction action {};
  action.sa_sigaction = noteViolation;
  action.sa_flags = SA_SIGINFO | SA_ONSTACK | static_cast<int>(SA_RESETHAND);
  ::sigaction(SIGSEGV, &action, nullptr);
  ::sigaction(SIGBUS, &action, nullptr);
#else
  static_cast<void>(file);
#endif
}

std::optional<std::string> takeAccessViolation(const std::string& file) {
  if (!fileExists(file)) return std::nullopt;
  std::string note;
  try {
    note = readWholeFile(file, 1024);
  } catch (const TFileError&) {
    note = violation;
  }
  std::remove(file.c_str());
  return note;
}

}  // namespace hollowmere
