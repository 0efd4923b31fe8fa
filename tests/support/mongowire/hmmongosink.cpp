// A MongoDB sink and source as a process of its own, so that a benchmark can tell its CPU time from the
// client's. Prints the port on the first line; at the end one line of JSON with what was counted.

#include <getopt.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <string_view>

#include "support/mongowire/sink.h"

namespace {

using namespace hollowmere::mongowire;

constexpr const char* kUsage =
    "usage: hm-mongo-sink [--delay-ms T] [--refuse-every K] [--source N [--doc-size BYTES]\n"
    "                     [--rows-per-match R]] [--validate] [--until-stdin-closes]\n"
    "  --delay-ms T           answer T ms (may be a fraction) after the request came\n"
    "  --refuse-every K       refuse each K-th row with a write error of code 121\n"
    "  --source N             serve N generated documents to reads of any collection\n"
    "  --doc-size BYTES       their encoded size, 128 or more (434)\n"
    "  --rows-per-match R     documents a filter on another field than _id gets (1)\n"
    "  --validate             look inside every document that comes in\n"
    "  --until-stdin-closes   end at the end of standard input too, not only at SIGTERM\n";

struct TArguments {
  TSinkOptions sink;
  TVirtualOptions source;
  std::size_t docSize = 434;
  bool serveReads = false;
  bool watchInput = false;
};

double number(const char* option, std::string_view text) {
  char* end = nullptr;
  const std::string copy(text);
  const double value = std::strtod(copy.c_str(), &end);
  if (copy.empty() || *end != '\0' || !std::isfinite(value) || value < 0)
    throw std::invalid_argument(std::string("--") + option + " takes a number, not '" + copy + "'");
  return value;
}

TArguments parse(int argc, char** argv) {
  static const option kOptions[] = {
      {"delay-ms", required_argument, nullptr, 'd'},       {"refuse-every", required_argument, nullptr, 'r'},
      {"source", required_argument, nullptr, 's'},         {"doc-size", required_argument, nullptr, 'b'},
      {"rows-per-match", required_argument, nullptr, 'm'}, {"validate", no_argument, nullptr, 'v'},
      {"until-stdin-closes", no_argument, nullptr, 'i'},   {nullptr, 0, nullptr, 0}};
  TArguments arguments;
  int at = 0;
  for (int got; (got = ::getopt_long(argc, argv, "", kOptions, &at)) != -1;) {
    if (got == '?') throw std::invalid_argument("");
    const double value = optarg ? number(kOptions[at].name, optarg) : 0;
    if (got == 'd') arguments.sink.delay = std::chrono::microseconds(std::llround(value * 1000));
    if (got == 'r') arguments.sink.refuseEvery = static_cast<std::uint64_t>(value);
    if (got == 's') arguments.source.count = static_cast<std::uint64_t>(value);
    if (got == 's') arguments.serveReads = true;
    if (got == 'b') arguments.docSize = static_cast<std::size_t>(value);
    if (got == 'm') arguments.source.rowsPerMatch = static_cast<std::uint64_t>(value);
    if (got == 'v') arguments.sink.server.validateBson = true;
    if (got == 'i') arguments.watchInput = true;
  }
  if (optind != argc) throw std::invalid_argument(std::string("what is '") + argv[optind] + "'?");
  return arguments;
}

/// Returns at SIGTERM or SIGINT, which the caller has blocked, or at the end of standard input.
void waitForTheEnd(const sigset_t& signals, bool watchInput) {
  const int fd = ::signalfd(-1, &signals, SFD_CLOEXEC);
  pollfd fds[2] = {{fd, POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}};
  char ignored[4096];
  while (true) {
    const int ready = ::poll(fds, watchInput ? 2 : 1, -1);
    if (ready < 0 && errno == EINTR) continue;
    if (ready < 0 || fds[0].revents != 0) break;
    if (fds[1].revents != 0 && ::read(STDIN_FILENO, ignored, sizeof ignored) <= 0) break;
  }
  ::close(fd);
}

double cpuSeconds() {
  rusage used{};
  ::getrusage(RUSAGE_SELF, &used);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  return seconds(used.ru_utime) + seconds(used.ru_stime);
}

void printCounts(const TMongoSink& sink, const TVirtualCollection* source) {
  const TSinkCounts counts = sink.counts();
  TBsonBuilder requests;
  for (const auto& [command, count] : counts.requests)
    requests.int64(command.c_str(), static_cast<std::int64_t>(count));
  TBsonBuilder line;
  const auto put = [&line](const char* key, std::uint64_t value) {
    line.int64(key, static_cast<std::int64_t>(value));
  };
  line.document("requests", requests.take());
  put("documents", counts.documents);
  put("documentBytes", counts.documentBytes);
  put("messageBytes", counts.messageBytes);
  put("stored", counts.stored);
  put("refused", counts.refused);
  put("served", source ? source->served() : 0);
  put("connections", sink.server().connectionsOpened());
  put("violations", sink.server().violations());
  line.real("cpuSeconds", cpuSeconds());
  std::printf("%s\n", line.take().json().c_str());
  for (const std::string& text : sink.server().violationTexts()) std::fprintf(stderr, "%s\n", text.c_str());
}

int run(int argc, char** argv) {
  TArguments arguments = parse(argc, argv);
  if (arguments.serveReads) {
    arguments.source.generate = patchedTemplate(sampleDocument(arguments.docSize), {"_id", "number"});
    arguments.sink.source = std::make_shared<TVirtualCollection>(arguments.source);
  }
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGTERM);
  sigaddset(&signals, SIGINT);
  ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);  // before any thread, which inherits it
  TMongoSink sink(arguments.sink);
  std::printf("%u\n", static_cast<unsigned>(sink.port()));
  std::fflush(stdout);
  waitForTheEnd(signals, arguments.watchInput);
  sink.stop();
  printCounts(sink, arguments.sink.source.get());
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n%s", error.what(), kUsage);
    return 2;
  }
}
