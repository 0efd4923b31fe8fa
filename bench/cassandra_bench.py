"""The measurements with Cassandra, on a sink of our own and on the server itself."""

import csv
import json
import os
import statistics
import subprocess

import rows
from harness import CassandraSink, file, load, node, path, project, run

SERVERS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "servers", "cassandra")
COLUMNS = [("number", "bigint primary key"), ("name", "text"), ("email", "text"), ("active", "boolean"),
           ("balance", "double"), ("created", "timestamp"), ("phone", "text"), ("address", "map<text, text>"),
           ("tags", "list<text>"), ("comment", "text")]
IDENTITY = [node(name, name, kind) for name, kind in rows.FIELDS]
QUERY = {"keyspace": "bench", "columnfamily": "rows", "query": "select * from rows"}


def cassandra(port):
    return "Cassandra", {"host": "127.0.0.1", "port": port, "user": "", "password": "", "readlevel": "ONE",
                         "writelevel": "ONE"}


class Server:
    """The server itself, for the time of a with statement."""

    def __enter__(self):
        ready = subprocess.run([SERVERS, "start", "--speed", "--port", "0", "--parent", str(os.getpid())], check=True,
                               capture_output=True, text=True).stdout
        self.port = int(ready.split("127.0.0.1:")[1].split()[0])
        tools = subprocess.run([SERVERS, "tools"], check=True, capture_output=True, text=True).stdout.strip()
        self.cqlsh = [os.path.join(tools, "cqlsh"), "127.0.0.1", str(self.port - 118)]
        self.cql("create keyspace bench with replication = {'class': 'SimpleStrategy', 'replication_factor': 1}")
        self.cql("create table bench.copies (%s)" % ", ".join("%s %s" % column for column in COLUMNS))
        return self

    def __exit__(self, *error):
        subprocess.run([SERVERS, "stop", str(self.port)], check=True, capture_output=True)

    def cql(self, statement):
        run(*self.cqlsh, "-e", statement)


def numbered_file(count):
    """Rows with a number each: in this store rows of one key are one row."""
    name = path("numbered-%d.json" % count)
    if not os.path.exists(name):
        with open(name, "w", encoding="utf-8") as out:
            out.writelines(rows.line(number) for number in range(count))
    return name


def csv_file(count):
    name = path("numbered-%d.csv" % count)

    def text(value):
        if isinstance(value, dict):
            return "{%s}" % ", ".join("'%s': '%s'" % item for item in value.items())
        return "[%s]" % ", ".join("'%s'" % each for each in value) if isinstance(value, list) else value

    with open(name, "w", encoding="utf-8", newline="") as out:
        writer = csv.writer(out)
        for number in range(count):
            row = json.loads(rows.line(number))
            row["created"] = row["created"].replace("T", " ").replace("Z", "+0000")
            writer.writerow([text(row[column]) for column, _ in COLUMNS])
    return name


def write(port, count, bulk=1000, source=None):
    made = project(file(source or numbered_file(count)), cassandra(port), IDENTITY, bulk, target="bench.copies")
    return load(made, count)


def warm(port, size):
    """A server compiles what it does often only after a while."""
    for _ in range(size(5, 2)):
        write(port, 100_000)
    write(port, 10_000, 0)


def copy(port, sink_port, count, degree=1, bulk=1000, fetch=1000):
    return load(project(cassandra(port), cassandra(sink_port), (), bulk, degree, fetch, source_query=QUERY,
                        target="bench.texts"), count)


def register(measurement, table, size, rounds):
    @measurement
    def cassandra_batches():
        counts = {0: size(10_000, 5_000), 1000: size(100_000, 30_000)}
        for what, server in (("a sink", CassandraSink), ("the server", Server)):
            speeds = {bulk: [] for bulk in counts}
            with server() as one:
                warm(one.port, size)
                for _ in range(rounds):
                    for bulk, count in counts.items():
                        speeds[bulk].append(count / write(one.port, count, bulk).result["seconds"])
            table.add("Cassandra, many rows at once against single ones, " + what,
                      [a / b for a, b in zip(speeds[1000], speeds[0])], ("at least", 5), " x",
                      ", ".join("%d: %.0f rows/s" % (bulk, statistics.median(each)) for bulk, each in speeds.items()))

    @measurement
    def cassandra_copy():
        """The shell's own import, over the newer protocol, with as many processes as it likes."""
        count = size(100_000, 30_000)
        found = {"wall": [], "cpu": []}
        statement = "copy bench.copies (%s) from '%s'" % (", ".join(name for name, _ in COLUMNS), csv_file(count))
        with Server() as server:
            warm(server.port, size)
            for _ in range(rounds):
                peer = run(*server.cqlsh, "-e", statement)
                own = write(server.port, count)
                found["wall"].append(peer.wall / own.wall)
                found["cpu"].append(own.cpu / peer.cpu)
                note = "%.0f against %.0f rows/s" % (count / own.wall, count / peer.wall)
        table.add("file to Cassandra, speed against cqlsh COPY FROM", found["wall"], ("at least", 2), " x", note)
        table.add("file to Cassandra, CPU against cqlsh COPY FROM", found["cpu"], ("at most", 0.2), " x")

    @measurement
    def cassandra_cpu():
        count = size(400_000, 100_000)
        figures = []
        for _ in range(rounds):
            with CassandraSink() as one:
                figures.append(write(one.port, count).cpu / count * 1e6)
                one_row = write(one.port, 1).cpu
        table.add("file to Cassandra, 10 columns, CPU a row", figures, ("at most", 8), " us",
                  "of which %.2f to begin and end" % (one_row / count * 1e6))

    @measurement
    def cassandra_threads():
        each, bulk = size(10_000, 4_000), 10
        speeds = {degree: [] for degree in (1, 2, 4, 8)}
        for _ in range(rounds):
            for degree in speeds:
                count = each * degree
                with CassandraSink("--rows", count, "--delay-ms", 1) as source, CassandraSink("--delay-ms", 1) as target:
                    loaded = copy(source.port, target.port, count, degree, bulk, 10)
                speeds[degree].append(count / loaded.result["seconds"])
        for degree in (2, 4, 8):
            table.add("Cassandra, 1 ms an answer, %d threads" % degree,
                      [a / b / degree for a, b in zip(speeds[degree], speeds[1])], ("at least", 0.9), " x threads")

    @measurement
    def cassandra_memory():
        few, many = size((500_000, 5_000_000), (50_000, 500_000))
        peaks = []
        for count in (few, many):
            with CassandraSink("--rows", count) as source, CassandraSink() as target:
                peaks.append(copy(source.port, target.port, count).peak)
        table.add("Cassandra to Cassandra, peak memory of %s rows over %s" % (format(many, ","), format(few, ",")),
                  [peaks[1] - peaks[0]], ("at most", 5), " MB", "%.0f and %.0f MB" % tuple(peaks))
