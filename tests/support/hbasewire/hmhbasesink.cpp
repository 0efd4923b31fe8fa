// HBase's Thrift service as a process of its own that keeps nothing, so that a benchmark can tell its CPU
// time from the client's. Prints the port on the first line; at the end one line of JSON with what was
// counted.

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include "support/hbasewire/sink.h"
#include "support/thriftwire/wireserver.h"

namespace {

using namespace hollowmere;

constexpr const char* usage =
    "usage: hm-hbase-sink [--delay-ms T] [--source N] [--until-stdin-closes]\n"
    "  --delay-ms T           answer T ms (may be a fraction) after the call came\n"
    "  --source N             serve N made rows of ten columns as any table\n"
    "It ends at the end of standard input.\n";

int run(int argc, char** argv) {
  thriftwire::TOptions options;
  std::int64_t rows = 0;
  for (int i = 1; i < argc; ++i) {
    const std::string option = argv[i];
    if (option == "--until-stdin-closes") continue;
    if (i + 1 == argc) throw std::invalid_argument("what is '" + option + "'?");
    const double value = std::stod(argv[++i]);
    if (option == "--delay-ms")
      options.delay = std::chrono::microseconds(static_cast<std::int64_t>(value * 1000));
    else if (option == "--source")
      rows = static_cast<std::int64_t>(value);
    else
      throw std::invalid_argument("what is '" + option + "'?");
  }
  const auto sink = std::make_shared<hbasewire::TSink>(rows);
  options.quick = [&sink](const std::string& method, const std::string& call) {
    return sink->quick(method, call);
  };
  thriftwire::TWireServer server(options, std::make_shared<hbasewire::HbaseProcessor>(sink));
  std::printf("%u\n", static_cast<unsigned>(server.port()));
  std::fflush(stdout);
  char ignored[4096];
  while (read(STDIN_FILENO, ignored, sizeof ignored) > 0) continue;
  server.stop();
  std::string calls;
  for (const auto& [method, count] : server.calls())
    calls += (calls.empty() ? "\"" : ",\"") + method + "\":" + std::to_string(count);
  std::printf(R"({"requests":{%s},"stored":%llu,"served":%llu,"connections":%llu,"violations":0})"
              "\n",
              calls.c_str(), static_cast<unsigned long long>(sink->stored()),
              static_cast<unsigned long long>(sink->served()),
              static_cast<unsigned long long>(server.connections()));
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n%s", error.what(), usage);
    return 2;
  }
}
