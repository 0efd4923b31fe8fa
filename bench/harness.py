"""Runs programs and servers for the measurements, and gathers the table."""

import json
import os
import re
import select
import signal
import statistics
import subprocess
import tempfile
import time

BIN = os.environ["HOLLOWMERE_BIN"]
TOOLS = os.environ["MONGO_TOOLS"]
CLI = os.path.join(BIN, "hollowmere-cli")

scratch = tempfile.TemporaryDirectory(prefix="hollowmere-bench-")
os.environ["HOLLOWMERE_DATA"] = os.path.join(scratch.name, "data")
os.environ["HOLLOWMERE_SETTINGS"] = os.path.join(scratch.name, "settings")
os.makedirs(os.environ["HOLLOWMERE_DATA"])


def path(name):
    return os.path.join(scratch.name, name)


class Ended:
    """A program that came to its end: seconds of wall clock and of CPU, peak memory in MB, what it printed."""

    def __init__(self, process, started):
        self.peak = watch_memory(process)
        self.out = process.stdout.read().decode()
        _, status, used = os.wait4(process.pid, 0)
        self.code = process.returncode = os.waitstatus_to_exitcode(status)
        self.wall = time.monotonic() - started
        self.cpu = used.ru_utime + used.ru_stime


def watch_memory(process):
    """Peak memory in MB, looked at until the output ends. (What the system tells at the end of a process
    begins with the memory of the one that started it.)"""
    peak = 0
    while not select.select([process.stdout], [], [], 0.02)[0]:
        with open("/proc/%d/status" % process.pid) as status:
            found = re.search(r"VmHWM:\s*(\d+) kB", status.read())
        peak = max(peak, int(found[1]) / 1024 if found else 0)
    return peak


def begin(*command):
    return subprocess.Popen(command, stdout=subprocess.PIPE, stderr=open(path("stderr"), "wb"))


def run(*command):
    started = time.monotonic()
    ended = Ended(begin(*command), started)
    if ended.code != 0:
        raise RuntimeError("%s: exit code %d\n%s" % (command[0], ended.code, open(path("stderr")).read()[-2000:]))
    return ended


class Sink:
    """A server of our own (hm-mongo-sink) for the time of a with statement; counts holds what it saw."""

    program = "hm-mongo-sink"

    def __init__(self, *options):
        self.command = [os.path.join(BIN, self.program), "--until-stdin-closes", *map(str, options)]
        self.counts = None

    def __enter__(self):
        self.process = subprocess.Popen(self.command, stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.port = int(self.process.stdout.readline())
        return self

    def __exit__(self, *error):
        self.process.stdin.close()
        self.counts = json.loads(self.process.stdout.read())
        self.process.wait()
        if self.counts["violations"] and not error[0]:
            raise RuntimeError("a client broke the protocol")


class HBaseSink(Sink):
    program = "hm-hbase-sink"


def hbase(port):
    return "HBase", {"dbtype": "HBase", "host": "127.0.0.1", "port": port, "infoport": 0, "encoding": "Default"}


SERVER = os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))), "tests", "servers", "mongodb")


def start_server():
    """A real MongoDB server with an empty data folder; gives its port. It ends with this program at the latest."""
    said = subprocess.run([SERVER, "start", "--port", "0", "--parent", str(os.getpid())], check=True,
                          stdout=subprocess.PIPE).stdout.decode()
    return int(re.search(r"127\.0\.0\.1:(\d+)", said)[1])


def stop_server(port):
    subprocess.run([SERVER, "stop", str(port)], check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def mongo(port):
    return "MongoDB", {"host": "127.0.0.1", "port": port, "database": "bench", "user": "", "password": ""}


def file(name):
    return "JSON File", name


def project(source, target, children=(), bulk=1000, degree=1, fetch=1000, count=True, name="load"):
    """Seals a project that loads one source into one target; gives its file."""
    document = json.loads(run(CLI, "new").out)
    document.update({
        "vgGeneralBulkInsert": bulk, "vgGeneralTargetDegree": degree, "vgGeneralFetchLimit": fetch,
        "vgGeneralIgnoreNulls": False, "vgGeneralSkipCount": not count,
        "vgGeneralLogFile": path(name + ".log"), "vgGeneralDiscFile": path(name + ".disc")})
    for key, side in (("vgGeneralCategorySourceDB", source), ("vgGeneralCategoryTargetDB", target)):
        kind = "Source" if "Source" in key else "Target"
        document[key] = {"vgGeneral%sDBType" % kind: side[0], "vgGeneral%sConn" % kind: side[1]}
    query = {"JSON File": source[1], "HBase": {"table": "rows", "query": ""}}.get(
        source[0], {"database": "bench", "collection": "rows", "query": ""})
    document["datasourcelist"] = [{"name": "rows", "datasource": query, "count": 0}]
    document["datatargetlist"] = [{"name": "copies", "datatarget": "copies", "saslpwd": ""}]
    document["datamaplist"] = [node("copies", "rows", "String", children)]
    for old in (".log", ".disc"):
        if os.path.exists(path(name + old)):
            os.remove(path(name + old))
    with open(path(name + ".document"), "w") as out:
        json.dump(document, out)
    run(CLI, "seal", path(name + ".document"), path(name + ".project"))
    return path(name + ".project")


def node(target, source, kind, children=()):
    made = {"target": target, "source": source, "targettype": kind}
    return dict(made, children=list(children)) if children else made


def load(project_file, rows, *sets):
    """Runs a load that must take every row; its result is that of the program's last line."""
    options = [part for each in sets for part in ("--set", each)]
    ended = run(CLI, "run", "--json", "--quiet", *options, project_file)
    ended.result = json.loads(ended.out)
    if ended.result["processed"] != rows or ended.result["skipped"]:
        raise RuntimeError("the load took %s" % ended.result)
    return ended


def interrupt(project_file, after):
    """Seconds from Ctrl-C, pressed some seconds into a load, to the end of the process."""
    process = begin(CLI, "run", "--json", "--quiet", project_file)
    time.sleep(after)
    if process.poll() is not None:
        raise RuntimeError("the load ended before it was stopped: " + open(path("stderr")).read())
    pressed = time.monotonic()
    process.send_signal(signal.SIGINT)
    ended = Ended(process, pressed)
    if ended.code != 130:
        raise RuntimeError("exit code %d after Ctrl-C" % ended.code)
    return ended.wall


class Table:
    """The figures, each with its bar. A bar is ("at least" or "at most", number)."""

    def __init__(self):
        self.lines = []

    def add(self, what, figures, bar, unit="", note=""):
        figure = statistics.median(figures)
        kind, limit = bar
        met = figure >= limit if kind == "at least" else figure <= limit
        self.lines.append("| %s | %s%s | %s %g%s | %s | %s |" % (
            what, shown(figure), unit, kind, limit, unit, "met" if met else "missed", note))
        print("%-70s %s%s" % (what, shown(figure), unit), flush=True)

    def text(self):
        head = "| measured | figure | bar | | beside it |\n|---|---|---|---|---|"
        return "\n".join([head, *self.lines])


def shown(figure):
    return "%.3g" % figure if figure < 1000 else "%.0f" % figure
