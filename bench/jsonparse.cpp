// Reads the lines of a file as JSON documents, with our reader and with two others in turn. Prints one line
// of JSON: for each reader its nanoseconds of CPU a document, round by round.

#include <rapidjson/document.h>

#include <QByteArray>
#include <QJsonDocument>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "json/json.h"

namespace {

using TLines = std::vector<std::string>;

struct TReader {
  const char* name;
  std::function<bool(const std::string& line)> read;  ///< makes the document and drops it
  std::vector<double> nanoseconds{};
};

double cpuNanoseconds() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) * 1e9 + static_cast<double>(now.tv_nsec);
}

/// Enough passes that a round lasts a tenth of a second or more.
double measure(const TReader& reader, const TLines& lines, int passes) {
  const double start = cpuNanoseconds();
  for (int pass = 0; pass < passes; ++pass)
    for (const std::string& line : lines)
      if (!reader.read(line)) std::exit(1);
  return (cpuNanoseconds() - start) / (static_cast<double>(lines.size()) * passes);
}

TLines readLines(const char* name) {
  std::ifstream file(name);
  TLines lines;
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  return lines;
}

std::vector<TReader> readers() {
  return {{"hollowmere",
           [reader = std::make_shared<hollowmere::TJsonReader>()](const std::string& line) {
             return reader->read(line).is(hollowmere::TKind::Object);
           }},
          {"rapidjson",
           [](const std::string& line) {
             rapidjson::Document document;
             document.Parse(line.data(), line.size());
             return !document.HasParseError() && document.IsObject();
           }},
          {"qjson", [](const std::string& line) {
             const auto bytes = QByteArray::fromRawData(line.data(), static_cast<qsizetype>(line.size()));
             return QJsonDocument::fromJson(bytes).isObject();
           }}};
}

}  // namespace

int main(int argc, char** argv) {
  const TLines lines = argc == 3 ? readLines(argv[1]) : TLines();
  if (lines.empty()) {
    std::fputs("usage: hm-bench-json FILE ROUNDS, a file of one JSON object a line\n", stderr);
    return 2;
  }
  std::vector<TReader> all = readers();
  for (int round = 0; round < std::atoi(argv[2]); ++round)
    for (TReader& reader : all) {
      const double once = measure(reader, lines, 1);
      const int passes = 1 + static_cast<int>(1e8 / (once * static_cast<double>(lines.size())));
      reader.nanoseconds.push_back(measure(reader, lines, passes));
    }
  hollowmere::TObject result;
  for (const TReader& reader : all) {
    hollowmere::TList rounds;
    for (const double each : reader.nanoseconds) rounds.emplace_back(each);
    result.add(reader.name, std::move(rounds));
  }
  std::puts(toJson(result).c_str());
  return 0;
}
