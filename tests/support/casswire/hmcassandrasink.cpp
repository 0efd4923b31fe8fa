// A Cassandra sink and source as a process of its own, so that a benchmark can tell its CPU time from the
// client's. Prints its port on the first line, and what it counted at the end of standard input.
//
//   hm-cassandra-sink [--until-stdin-closes] [--delay-ms T] [--rows N]
//
// Table bench.copies takes rows and forgets them; bench.rows has N rows of 10 columns that it never holds.

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "support/casswire/standin.h"

int main(int argc, char** argv) {
  using namespace hollowmere::casswire;
  TCassandraStandIn server;
  // It always ends with its input; the options are those of the other sinks.
  for (int i = 1; i + 1 < argc; ++i) {
    if (std::strcmp(argv[i], "--delay-ms") == 0)
      server.setDelay(std::chrono::microseconds(static_cast<long>(std::atof(argv[i + 1]) * 1000)));
    if (std::strcmp(argv[i], "--rows") == 0) server.tables().virtualRows = std::atoll(argv[i + 1]);
  }
  std::vector<TColumn> columns{{"number", "bigint", "partition_key", {}}};
  for (const char* name : {"name", "email", "phone", "city", "street", "zip", "country", "note", "comment"})
    columns.push_back({name, "text", "regular", {}});
  server.add("bench.rows", columns);
  server.add("bench.copies", {{"number", "bigint", "partition_key", {}},
                              {"name", "text", "regular", {}},
                              {"email", "text", "regular", {}},
                              {"active", "boolean", "regular", {}},
                              {"balance", "double", "regular", {}},
                              {"created", "timestamp", "regular", {}},
                              {"phone", "text", "regular", {}},
                              {"address", "map<text, text>", "regular", {}},
                              {"tags", "list<text>", "regular", {}},
                              {"comment", "text", "regular", {}}});
  server.add("bench.texts", columns);
  server.tables().discards = true;
  std::printf("%u\n", static_cast<unsigned>(server.port()));
  std::fflush(stdout);
  while (std::getchar() != EOF) continue;
  server.stop();
  std::printf("{\"written\": %llu, \"violations\": %d}\n",
              static_cast<unsigned long long>(server.tables().written), server.violations());
  return 0;
}
