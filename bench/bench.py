"""The measurements; bench/run calls this. Each figure is the median of several rounds, each round measures
a thing and what it is held against one after the other."""

import argparse
import filecmp
import json
import math
import os
import re
import socket
import statistics
import subprocess
import threading
import time

import rows
from harness import (BIN, TOOLS, HBaseSink, Sink, Table, file, hbase, interrupt, load, mongo, node, path, project, run,
                     start_server, stop_server)

BENCH = os.path.dirname(os.path.abspath(__file__))

parser = argparse.ArgumentParser()
parser.add_argument("--quick", action="store_true")
parser.add_argument("name", nargs="?", default="")
options = parser.parse_args()

ROUNDS = 1 if options.quick else 5
table = Table()
measurements = []


def measurement(function):
    measurements.append(function)
    return function


def size(full, quick):
    return quick if options.quick else full


def rows_file(count):
    name = path("rows-%d.json" % count)
    if not os.path.exists(name):
        rows.write_rows(name, count)
    return name


def per_row(count, seconds):
    return "%.2f µs" % (seconds / count * 1e6)


def a_second(count, seconds):
    return "%s rows/s" % format(round(count / seconds, -2), ",.0f")


IDENTITY = [node(name, name, kind) for name, kind in rows.FIELDS]
ASSEMBLED = IDENTITY[:6] + [node("address", "address", "JSON Object"), node("tags", "tags", "JSON List"),
                            node("comment", "comment", "String"),
                            node("contacts", "rows", "Data Source (JSON List)",
                                 [node("mail", "email", "String"), node("call", "phone", "String")])]


@measurement
def json_text():
    """JSON text to document, one thread, CPU time."""
    rows.write_mixed(path("mixed.json"), 3000)
    for what, name in (("434-byte rows", rows_file(10_000)), ("mixed file", path("mixed.json"))):
        found = json.loads(run(os.path.join(BIN, "hm-bench-json"), name, str(ROUNDS)).out)
        ours = found["hollowmere"]
        for other, bar in (("rapidjson", 0.8), ("qjson", 3)):
            table.add("JSON text to document, %s, speed against %s" % (what, other),
                      [theirs / own for theirs, own in zip(found[other], ours)], ("at least", bar), " x",
                      "%.0f ns a document" % statistics.median(ours))


@measurement
def sql_to_mongodb():
    """SQL statements to shell commands, one thread, CPU time; the parser alone reads the same statements."""
    found = json.loads(run(os.path.join(BIN, "hm-bench-sql"), str(ROUNDS)).out)
    for form in ("classic", "modern"):
        table.add("SQL to MongoDB, %s form, 10,000 statements of %.0f characters" % (form, found["length"]),
                  found[form], ("at most", 1), " s")
        table.add("the same against the SQL parser alone", [a / b for a, b in zip(found[form], found["parser"])],
                  ("at most", 6), " x", "%.1f µs a statement" % (statistics.median(found[form]) * 100))


def load_file(count, children, bulk=1000, *sink_options):
    with Sink(*sink_options) as sink:
        return load(project(file(rows_file(count)), mongo(sink.port), children, bulk), count)


def hand_loop(count, bulk=1000):
    with Sink() as sink:
        return run(os.path.join(BIN, "hm-bench-handloop"), rows_file(count), str(sink.port), str(bulk))


@measurement
def file_to_mongodb():
    count = size(400_000, 100_000)
    found = {"identity": [], "no children": [], "nested": [], "hand": []}
    for _ in range(ROUNDS):
        found["identity"].append(load_file(count, IDENTITY))
        found["hand"].append(hand_loop(count))
        found["nested"].append(load_file(count, ASSEMBLED))
        found["no children"].append(load_file(count, []))

    def against(what, other):
        return [a.cpu / b.cpu for a, b in zip(found[what], found[other])]

    def note(what):
        return per_row(count, statistics.median(one.cpu for one in found[what])) + " of CPU a row"

    table.add("file to MongoDB, CPU against a hand-written loop", against("identity", "hand"), ("at most", 3), " x",
              note("identity") + ", the loop " + note("hand"))
    table.add("file to MongoDB without mapped fields, CPU against the loop", against("no children", "hand"),
              ("at most", 3), " x", note("no children"))
    table.add("file to MongoDB with a nested list, CPU against the plain mapping", against("nested", "identity"),
              ("at most", 2), " x", note("nested"))


@measurement
def mongoimport():
    count = size(100_000, 50_000)

    def theirs(workers):
        with Sink() as sink:
            return run(TOOLS + "/mongoimport", "--quiet", "--host", "127.0.0.1", "--port", str(sink.port), "-d", "bench",
                       "-c", "copies", "--numInsertionWorkers", str(workers), rows_file(count)).wall

    best = min((1, 2, 4), key=theirs)
    own_count = count * 4
    ratios, speeds = [], []
    for _ in range(ROUNDS):
        peer = theirs(best) / count
        own = load_file(own_count, IDENTITY).wall / own_count
        ratios.append(peer / own)
        speeds.append((1 / own, 1 / peer))
    table.add("file to MongoDB, speed against mongoimport", ratios, ("at least", 5), " x",
              "%s against %s with %d workers" % (a_second(statistics.median(s[0] for s in speeds), 1),
                                                 a_second(statistics.median(s[1] for s in speeds), 1), best))


@measurement
def mongoexport():
    count = size(200_000, 50_000)
    ratios, speeds = [], []
    for _ in range(ROUNDS):
        with Sink("--source", count) as source:
            peer = run(TOOLS + "/mongoexport", "--quiet", "--host", "127.0.0.1", "--port", str(source.port), "-d", "bench",
                       "-c", "rows", "-o", path("peer.json")).wall
            own = load(project(mongo(source.port), file(path("own.json"))), count).wall
        ratios.append(peer / own)
        speeds.append((count / own, count / peer))
    table.add("MongoDB to file, speed against mongoexport", ratios, ("at least", 3), " x",
              "%s against %s" % tuple(a_second(statistics.median(s[i] for s in speeds), 1) for i in (0, 1)))


@measurement
def batches():
    """How much sending many documents at once brings: with the sink's own short way (some 30 µs a request),
    and with a server that takes 0.1 ms for an answer."""
    counts = {1: 10_000, 10: 50_000, 100: 200_000, 500: 200_000, 1000: 200_000}
    for what, delay, sizes in (("", 0, (1, 10, 100, 500, 1000)), (", 0.1 ms an answer", 0.1, (1, 100))):
        speeds = {bulk: [] for bulk in sizes}
        loop = []
        for _ in range(ROUNDS):
            for bulk in sizes:
                loaded = load_file(counts[bulk], IDENTITY, bulk, "--delay-ms", delay)
                speeds[bulk].append(counts[bulk] / loaded.result["seconds"])
            loop.append(hand_loop(counts[1], 1).wall / counts[1] / (hand_loop(counts[100], 100).wall / counts[100]))
        note = ", ".join("%d: %s" % (bulk, a_second(statistics.median(each), 1)) for bulk, each in speeds.items())
        if not delay:
            note += "; the hand-written loop: %.3g x" % statistics.median(loop)
        table.add("batches of 100 against single documents" + what,
                  [a / b for a, b in zip(speeds[100], speeds[1])], ("at least", 20), " x", note)


@measurement
def threads():
    """Every answer of source and target takes 1 ms: threads must wait side by side."""
    each, bulk = size(10_000, 5_000), 10
    speeds = {degree: [] for degree in (1, 2, 4, 8)}
    for _ in range(ROUNDS):
        for degree in speeds:
            count = each * degree
            with Sink("--source", count, "--delay-ms", 1) as source, Sink("--delay-ms", 1) as sink:
                loaded = load(project(mongo(source.port), mongo(sink.port), (), bulk, degree), count)
            speeds[degree].append(count / loaded.result["seconds"])
    for degree in (2, 4, 8):
        table.add("1 ms an answer, batches of 10, %d threads" % degree,
                  [a / b / degree for a, b in zip(speeds[degree], speeds[1])], ("at least", 0.9), " x threads")


@measurement
def requests():
    """Nothing is asked of the server beyond the batches and what connecting needs."""
    for degree, count, bulk in ((1, 100_001, 100), (4, 100_003, 1000)):
        with Sink("--source", count) as source, Sink() as sink:
            load(project(mongo(source.port), mongo(sink.port), (), bulk, degree), count)
        shares = [count // degree] * (degree - 1) + [count - count // degree * (degree - 1)]
        wanted = sum(math.ceil(share / bulk) for share in shares)
        others = {name: n for name, n in sink.counts["requests"].items() if name != "insert"}
        table.add("insert requests other than rows / batch, threads: %d" % degree,
                  [abs(sink.counts["requests"]["insert"] - wanted)], ("at most", 0),
                  note="%d inserts; connecting: %s" % (wanted, ", ".join("%s %d" % o for o in others.items())))


@measurement
def memory():
    few, many = size((1_000_000, 10_000_000), (100_000, 1_000_000))

    def peak(count, degree):
        with Sink("--source", count) as source, Sink() as sink:
            return load(project(mongo(source.port), mongo(sink.port), (), 1000, degree), count).peak

    peaks = peak(few, 1), peak(many, 1)
    table.add("MongoDB to MongoDB, peak memory of %s rows over %s" % (format(many, ","), format(few, ",")),
              [peaks[1] - peaks[0]], ("at most", 5), " MB", "%.0f and %.0f MB" % peaks)
    table.add("MongoDB to MongoDB, peak memory with 4 threads", [peak(few, 4)], ("at most", 150), " MB")
    peaks = [load_file(count, IDENTITY).peak for count in (few // 10, few)]
    table.add("file to MongoDB, peak memory of %s rows over %s" % (format(few, ","), format(few // 10, ",")),
              [peaks[1] - peaks[0]], ("at most", 5), " MB", "%.0f and %.0f MB" % tuple(peaks))


@measurement
def refused_rows():
    """Refused rows go to the discard file, and the load keeps its pace."""
    count = size(400_000, 100_000)

    def speed(*sink_options):
        with Sink(*sink_options) as sink:
            return count / load(project(file(rows_file(count)), mongo(sink.port), IDENTITY), count).wall

    shares = {1: 0.90, 10: 0.60}
    ratios = {share: [] for share in shares}
    for _ in range(ROUNDS):
        clean = speed()
        for share in shares:
            ratios[share].append(speed("--refuse-every", 100 // share) / clean)
    for share, bar in shares.items():
        table.add("%d %% of the rows refused, speed against none" % share, ratios[share], ("at least", bar), " x")


def silent_server():
    """Takes connections and bytes and never says a word."""
    listener = socket.create_server(("127.0.0.1", 0))
    taken = []

    def accept():
        while True:
            try:
                taken.append(listener.accept()[0])
            except OSError:
                return

    threading.Thread(target=accept, daemon=True).start()
    return listener


@measurement
def stopping():
    """From Ctrl-C to the end of the process."""
    count = 3_000_000
    seconds = {"a load": [], "a server silent from the start": [], "a server silent during the load": []}
    listener = silent_server()
    for _ in range(ROUNDS):
        with Sink("--source", count) as source:
            with Sink() as sink:
                seconds["a load"].append(interrupt(project(mongo(source.port), mongo(sink.port)), 0.6))
            with Sink("--delay-ms", 600_000) as sink:
                seconds["a server silent during the load"].append(
                    interrupt(project(mongo(source.port), mongo(sink.port)), 0.6))
            seconds["a server silent from the start"].append(
                interrupt(project(mongo(source.port), mongo(listener.getsockname()[1])), 0.6))
    listener.close()
    for what, figures in seconds.items():
        table.add("stopping " + what, figures, ("at most", 0.5 if what == "a load" else 2), " s")


@measurement
def gridfs():
    """A large file into GridFS and back, beside the driver's own way, on a real server."""
    megabytes, rounds = size(1000, 100), min(3, ROUNDS)
    with open(path("large"), "wb") as out:
        for _ in range(megabytes):
            out.write(os.urandom(1_000_000))
    with open(path("small"), "wb") as out:
        out.write(b"x")
    port = start_server()
    uri, address = "mongodb://127.0.0.1:%d" % port, "127.0.0.1:%d/bench" % port
    theirs, ours = os.path.join(BIN, "hm-bench-gridfs"), (os.path.join(BIN, "hollowmere-cli"), "mongo", address)
    ratios, notes, peaks = {"put": [], "get": []}, {"put": [], "get": []}, []
    run(*ours, "gridfs", "put", path("small"))
    least = run(*ours, "gridfs", "get", "small", path("back")).peak
    for number in range(rounds):
        walls = {}
        for who in (("driver", "ours") if number % 2 else ("ours", "driver")):
            if who == "driver":
                walls[who] = (run(theirs, "put", uri, path("large"), "copy").wall,
                              run(theirs, "get", uri, path("back"), "copy").wall)
            else:
                ended = [run(*ours, "gridfs", "put", path("large"), "copy"),
                         run(*ours, "gridfs", "get", "copy", path("back"))]
                walls[who] = tuple(each.wall for each in ended)
                peaks.extend(each.peak for each in ended)
            if not filecmp.cmp(path("large"), path("back"), shallow=False):
                raise RuntimeError("the file came back changed")
            run(*ours, "gridfs", "delete", "copy")
        for i, way in enumerate(("put", "get")):
            ratios[way].append(walls["driver"][i] / walls["ours"][i])
            notes[way].append(megabytes / walls["ours"][i])
    stop_server(port)
    for way in ("put", "get"):
        table.add("GridFS %s of %d MB, speed against the driver's own" % (way, megabytes), ratios[way],
                  ("at least", 0.9), " x", "%.0f MB/s" % statistics.median(notes[way]))
    table.add("GridFS, peak memory of %d MB over one byte" % megabytes, [max(peaks) - least], ("at most", 16), " MB")


@measurement
def document_viewer():
    """A document of 50 MB, a list of rows, in the document window, from its text to the first paint."""
    count = size(115_000, 23_000)
    name = path("document.json")
    with open(rows_file(count)) as lines, open(name, "w") as out:
        out.write("[" + ",".join(line.rstrip() for line in lines) + "]")
    found = [json.loads(run(os.path.join(BIN, "hm-bench-viewjson"), name).out) for _ in range(ROUNDS)]
    what = "document window, %.0f MB of text, " % (os.path.getsize(name) / 1e6)
    table.add(what + "to the first paint", [each["parse"] + each["paint"] for each in found], ("at most", 1), " s",
              "reading %.2f s, window %.2f s" % tuple(statistics.median(each[part] for each in found)
                                                     for part in ("parse", "paint")))
    table.add(what + "peak memory", [each["memory"] for each in found], ("at most", 12), " x its text")
    table.add(what + "to the text page", [each["text"] for each in found], ("at most", 3), " s")
    for peer, bar in (("rapidjson", 4), ("simdjson", 12)):
        table.add(what + "to the first paint against a parse by " + peer,
                  [(each["parse"] + each["paint"]) / each[peer] for each in found], ("at most", bar), " x")


@measurement
def start():
    """A whole run of one row: its first row cannot be read later than that."""
    walls = []
    with Sink() as sink:
        made = project(file(rows_file(1)), mongo(sink.port), IDENTITY)
        for _ in range(ROUNDS):
            walls.append(load(made, 1).wall)
    table.add("hollowmere-cli run of one row, start to end", walls, ("at most", 0.2), " s")


def mapped_project(nodes):
    """A project with that many mapping nodes: groups of a hundred attributes."""
    groups = [node("group%d" % group, "rows", "Data Source (JSON Object)",
                   [node("attribute%d" % each, "id", "String") for each in range(99)])
              for group in range(nodes // 100)]
    return project(file(rows_file(100)), mongo(1), groups, name="mapped")


@measurement
def windows():
    """The windows, drawn offscreen."""
    os.environ["QT_QPA_PLATFORM"] = "offscreen"
    bench = os.path.join(BIN, "hm-bench-windows")
    program = os.path.join(BIN, "hollowmere")
    starts, ratios = [], []
    os.environ["HOLLOWMERE_END_AFTER_PAINT"] = "1"
    for _ in range(ROUNDS + 1):
        bare = run(bench, "bare").wall
        starts.append(run(program).wall)
        ratios.append(starts[-1] / bare)
    del os.environ["HOLLOWMERE_END_AFTER_PAINT"]
    # The first start has read the libraries from the disk.
    table.add("hollowmere, start to the first window drawn", starts[1:], ("at most", 1.0), " s")
    table.add("the same against an empty window", ratios[1:], ("at most", 3), " x")
    opened, median, slowest = [], [], []
    made = mapped_project(5000)
    for _ in range(ROUNDS):
        found = json.loads(run(bench, "project", made).out)
        opened.append(found["open"])
        median.append(statistics.median(found["edits"]) * 1000)
        slowest.append(max(found["edits"]) * 1000)
    table.add("a project of 5,000 mapping nodes, open and drawn", opened, ("at most", 0.5), " s")
    table.add("an edit in it, drawn", median, ("at most", 16), " ms", "slowest %.1f ms" % max(slowest))
    lines = size(400_000, 100_000)
    shown, filtered, against = [], [], []
    for _ in range(ROUNDS):
        found = json.loads(run(bench, "log", str(lines)).out)
        shown.append(lines / found["all"])
        filtered.append(lines / found["filtered"])
        against.append(found["plain"] / found["all"])
    table.add("log lines shown a second", shown, ("at least", 100_000))
    table.add("log lines filtered and shown a second", filtered, ("at least", 100_000))
    table.add("the log against a plain text view that takes all", against, ("at least", 1), " x")


def ticks_and_wakes(process):
    """CPU ticks of a process so far, and how often its threads were woken."""
    with open("/proc/%d/stat" % process) as stat:
        fields = stat.read().rpartition(")")[2].split()
    wakes = 0
    for task in os.listdir("/proc/%d/task" % process):
        with open("/proc/%d/task/%s/status" % (process, task)) as status:
            wakes += int(re.search(r"^voluntary_ctxt_switches:\s*(\d+)", status.read(), re.M)[1])
    return int(fields[11]) + int(fields[12]), wakes


@measurement
def idle():
    """What the program does while nobody does anything: main window, a project, the connection list."""
    os.environ["QT_QPA_PLATFORM"] = "offscreen"
    with open(os.environ["HOLLOWMERE_SETTINGS"], "a") as settings:
        settings.write("[General]\nshowConnWindow=true\n")
    process = subprocess.Popen([os.path.join(BIN, "hollowmere"), mapped_project(100)])
    try:
        time.sleep(8)  # the notices come after six seconds
        ticks, wakes = ticks_and_wakes(process.pid)
        time.sleep(5)
        ticks_then, wakes_then = ticks_and_wakes(process.pid)
    finally:
        process.terminate()
        process.wait()
    table.add("CPU ticks of the idle program in 5 s", [ticks_then - ticks], ("at most", 0))
    table.add("wake-ups of the idle program in 5 s", [wakes_then - wakes], ("at most", 5))

HBASE = [node("rowkey", "number", "String")] + [node("cf:" + name, name, "String") for name, _ in rows.FIELDS]

HBASE_COPY = [node(one["target"], one["target"], "String") for one in HBASE]


def load_into_hbase(count, bulk, *sink_options):
    with HBaseSink(*sink_options) as sink:
        return load(project(file(rows_file(count)), hbase(sink.port), HBASE, bulk), count)


@measurement
def hbase_rows():
    """Ten columns a row, into a sink that speaks HBase's Thrift."""
    count = size(400_000, 100_000)
    table.add("file to HBase, CPU a row of ten columns",
              [load_into_hbase(count, 1000).cpu / count * 1e6 for _ in range(ROUNDS)], ("at most", 8), " µs")


@measurement
def hbase_batches():
    counts = {1: 20_000, 100: 200_000}
    for what, delay in (("", 0), (", 0.1 ms an answer", 0.1)):
        speeds = {bulk: [] for bulk in counts}
        for _ in range(ROUNDS):
            for bulk, count in counts.items():
                speeds[bulk].append(count / load_into_hbase(count, bulk, "--delay-ms", delay).result["seconds"])
        table.add("HBase, batches of 100 against single rows" + what,
                  [a / b for a, b in zip(speeds[100], speeds[1])], ("at least", 20), " x",
                  ", ".join("%d: %s" % (bulk, a_second(statistics.median(each), 1)) for bulk, each in speeds.items()))


@measurement
def hbase_threads():
    """Every answer of source and target takes 1 ms."""
    each, bulk = size(10_000, 5_000), 10
    speeds = {degree: [] for degree in (1, 2, 4, 8)}
    for _ in range(ROUNDS):
        for degree in speeds:
            count = each * degree
            with HBaseSink("--source", count, "--delay-ms", 1) as source, HBaseSink("--delay-ms", 1) as sink:
                loaded = load(project(hbase(source.port), hbase(sink.port), HBASE_COPY, bulk, degree), count)
            speeds[degree].append(count / loaded.result["seconds"])
    for degree in (2, 4, 8):
        table.add("HBase, 1 ms an answer, batches of 10, %d threads" % degree,
                  [a / b / degree for a, b in zip(speeds[degree], speeds[1])], ("at least", 0.9), " x threads")


@measurement
def hbase_memory():
    few, many = size((500_000, 5_000_000), (100_000, 500_000))

    def copied(count):
        with HBaseSink("--source", count) as source, HBaseSink() as sink:
            return load(project(hbase(source.port), hbase(sink.port), HBASE_COPY, 1000), count).peak

    peaks = copied(few), copied(many)
    table.add("HBase to HBase, peak memory of %s rows over %s" % (format(many, ","), format(few, ",")),
              [peaks[1] - peaks[0]], ("at most", 5), " MB", "%.0f and %.0f MB" % peaks)


@measurement
def hbase_server():
    """A real HBase, and a loop over happybase's batches beside us."""
    server = os.path.join(os.path.dirname(BENCH), "tests", "servers", "hbase")
    started = run(server, "start", "--port", "0", "--parent", str(os.getpid())).out.decode()
    python = run(server, "client").out.decode().strip()
    port = re.search(r"127\.0\.0\.1:(\d+)", started)[1]
    count, bulk = size(100_000, 20_000), 500
    loop = [python, os.path.join(BENCH, "happybase_loop.py"), port]
    ratios, speeds = [], []
    run(*loop, "copies", "0", "1", os.devnull)
    for _ in range(ROUNDS):
        peer = run(*loop, "copies", str(count), str(bulk), rows_file(count)).wall
        own = load(project(file(rows_file(count)), hbase(int(port)), HBASE, bulk), count).wall
        ratios.append(peer / own)
        speeds.append((count / own, count / peer))
    alone = count // 50
    single = load(project(file(rows_file(alone)), hbase(int(port)), HBASE, 0), alone).result["seconds"] / alone
    many = load(project(file(rows_file(count)), hbase(int(port)), HBASE, 100), count).result["seconds"] / count
    table.add("a real HBase, batches of 100 against single rows", [single / many], ("at least", 20), " x",
              "%s against %s" % (a_second(1, many), a_second(1, single)))
    table.add("file to a real HBase, speed against happybase", ratios, ("at least", 2), " x",
              "%s against %s" % tuple(a_second(statistics.median(s[i] for s in speeds), 1) for i in (0, 1)))
    subprocess.run([server, "stop", port], stdout=subprocess.DEVNULL)


started = time.monotonic()
for each in measurements:
    if re.search(options.name, each.__name__):
        each()
print("\n%s\n\n%.0f s, %d rounds" % (table.text(), time.monotonic() - started, ROUNDS))
