#include "connectors/mongodb/shellprogram.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstring>
#include <stdexcept>

#include "connectors/mongodb/childprocess.h"
#include "connectors/mongodb/shellhome.h"
#include "connectors/mongodb/shelltexts.h"

namespace hollowmere {

namespace {

constexpr std::int64_t probeMilliseconds = 30'000;
constexpr std::size_t probeBytes = 64 * 1024;

[[noreturn]] void refuse(const std::string& path, const std::string& reason) {
  throw std::runtime_error("Unable to use the MongoDB shell " + path + ": " + reason);
}

void checkFile(const std::string& path) {
  struct stat found {};
  if (stat(path.c_str(), &found) != 0)
    refuse(path, errno == ENOENT || errno == ENOTDIR ? "there is no such file." : std::strerror(errno));
  if (!S_ISREG(found.st_mode)) refuse(path, "it is not a file.");
  if (access(path.c_str(), X_OK) != 0) refuse(path, "it is not executable.");
}

/// The dotted number at the beginning of a text.
std::string versionAt(std::string_view text) {
  const std::size_t end = std::min(text.find_first_not_of("0123456789."), text.size());
  const std::string_view number = text.substr(0, end);
  return number.find('.') == std::string_view::npos ? std::string() : std::string(number);
}

int majorOf(const std::string& version) {
  int major = 0;
  std::from_chars(version.data(), version.data() + version.size(), major);
  return major;
}

std::string askVersion(const std::string& path, const TStopFlag* stop) {
  const TShellHome home;
  std::string output;
  TChildJob job{path, {"--version"}, home.environment(), probeMilliseconds, probeBytes, stop, {}, {}};
  job.output = [&](std::string_view piece) { output += piece; };
  const TChildResult result = runChild(job);
  switch (result.end) {
    case TChildEnd::NotStarted: refuse(path, std::strerror(result.code) + std::string("."));
    case TChildEnd::Stopped: refuse(path, "the operation was cancelled.");
    case TChildEnd::TimedOut: refuse(path, "it does not tell its version.");
    case TChildEnd::TooMuchOutput:
    case TChildEnd::Signalled:
    case TChildEnd::Exited: break;
  }
  if (result.code != 0 && !result.errors.empty())
    refuse(path, "it ended with code " + std::to_string(result.code) + ": " +
                     result.errors.substr(0, result.errors.find('\n')));
  return output;
}

}  // namespace

TShellProgram recogniseShell(const std::string& path, const TStopFlag* stop) {
  checkFile(path);
  const std::string output = askVersion(path, stop);
  constexpr std::string_view legacy = "MongoDB shell version";
  TShellProgram program{path, TShellKind::Today, versionAt(output)};
  if (const std::size_t at = output.find(legacy); at != std::string::npos) {
    const std::size_t number = output.find_first_of("0123456789", at);
    program.kind = TShellKind::Legacy;
    program.version = number == std::string::npos ? "" : versionAt(std::string_view(output).substr(number));
  }
  if (program.version.empty()) refuse(path, "it is no MongoDB shell.");
  const bool tooOld = program.kind == TShellKind::Legacy && majorOf(program.version) < 3;
  if (tooOld) refuse(path, "its version is " + program.version + ", but 3.0 or later is needed.");
  return program;
}

bool findShell(std::string& settingsPath, TPrompt& prompt, const TFileChoice& choose) {
  if (!settingsPath.empty()) return true;
  prompt.warning(shelltexts::findProgram);
  const auto chosen = choose(shelltexts::findTitle, shelltexts::findFilter);
  if (chosen && !chosen->empty()) {
    settingsPath = *chosen;
    return true;
  }
  prompt.error(shelltexts::noProgram);
  return false;
}

}  // namespace hollowmere
