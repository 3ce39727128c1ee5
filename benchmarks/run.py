#!/usr/bin/env python3
"""Runs the benchmarks of a build and puts them into one table of ratios, ours to each peer.

A figure counts only beside its peer in the same run. The table goes to the terminal and, with a description of the
machine, into a Markdown file. A goal that is missed is told last; the exit code tells only whether everything ran.
"""

import argparse
import contextlib
import datetime
import json
import operator
import os
import pathlib
import platform
import re
import subprocess
import sys
import tempfile
from dataclasses import dataclass, field

REPOSITORY = pathlib.Path(__file__).resolve().parent.parent
DEFAULT_OUTPUT = REPOSITORY / "docs" / "BENCHMARKS.md"

SECONDS = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}
COMPARISONS = {"<": operator.lt, "≤": operator.le}


class CannotRun(Exception):
    """A benchmark did not run, or one of its results is not there."""


@dataclass(frozen=True)
class Goal:
    peer: str
    comparison: str
    limit: float

    def text(self):
        return f"{self.comparison} {self.limit:.2f} × {PEERS[self.peer].label}"

    def holds(self, ours, peer):
        return COMPARISONS[self.comparison](ours / peer, self.limit)


@dataclass(frozen=True)
class Job:
    """A job that ours and its peers do; `key` and the peers' names are those of the results."""

    key: str
    title: str
    ours: str
    peers: tuple
    goals: tuple = ()


@dataclass(frozen=True)
class Peer:
    label: str
    reason: str


PEERS = {
    "PostedEvent": Peer(
        "bare posted event", "**The floor**: one allocation and one queue entry a functor, which a user writes by hand."
    ),
    "PostedEvents": Peer(
        "bare posted events", "**The floor**: one posted event there and one back, without cancelling, errors, order."
    ),
    "InvokeMethod": Peer("`invokeMethod`", "What Qt has for this since 5.10."),
    "SingleShot": Peer("`singleShot(0)`", "The older idiom that many code bases use for it."),
    "Lean": Peer(
        "lean form",
        "**What the mechanism costs**: the leanest class that carries a `std::function` in a queued signal.",
    ),
    "ThreadPool": Peer("`QThreadPool`", "Qt's own, with one thread, and a call-back by `invokeMethod`."),
    "ThreadWeaver": Peer("ThreadWeaver", "KDE's job queues, with one worker: the nearest complete library."),
    "QtConcurrent": Peer("QtConcurrent", "What Qt's manual suggests: `run()` and a `QFutureWatcher`, on one thread."),
    "FutureResults": Peer(
        "`QFutureInterface` results",
        "Qt's way to deliver every report. QtConcurrent's own progress is another job: it drops most reports.",
    ),
    "QLocale": Peer("`QLocale`", "Qt's own, in the locale's language and with its number format."),
    "KFormat": Peer("`KFormat`", "KDE's, which has most of the same choices."),
    "QTime": Peer("`QTime::toString`", "Qt's own, for less than a day and without leaving parts out."),
    "Snprintf": Peer("`snprintf`, as `QString`", "The C library, in the form that a label takes."),
    "SnprintfBuffer": Peer("`snprintf` alone", "**The floor**: the C library, into a buffer on the stack."),
    "GetdentsFstatat": Peer(
        "`getdents`, `fstatat`", "**The floor**: each folder read, each entry looked at once relative to it."
    ),
    "Du": Peer("`du`", "What a user has at the prompt: `du -s --apparent-size -B1` as a process."),
    "DuOwn": Peer("`du`, its own time", "The same, less the time of a `du` on an empty folder. The goals ask for this."),
    "Fts": Peer("`fts`", "The C library's walk."),
    "StdFilesystem": Peer("`std::filesystem`", "The standard library's recursive iterator."),
    "BoostFilesystem": Peer("`boost::filesystem`", "The same from the library that the paths come from."),
    "QDirIterator": Peer("`QDirIterator`", "Qt's own."),
    "Rm": Peer("`rm -rf`", "What a user has at the prompt; it need not look at a file's age."),
    "RmOwn": Peer("`rm`, its own time", "The same, less the time of an `rm` of an empty folder."),
    "RemoveRecursively": Peer("`QDir::removeRecursively`", "Qt's own, which removes files of any age."),
    "Glog": Peer("glog", "**The floor**: the log that the messages go to, without Qt."),
    "QtDefault": Peer("Qt's handler", "What Qt does by itself: a line on the standard error, without time and thread."),
    "Spdlog": Peer("spdlog", "What a project that starts afresh would take; it does not look the time zone up."),
    "PlainDialog": Peer("plain dialog", "**The floor**: a dialog with a label and a button box."),
    "QMessageBox": Peer("`QMessageBox`", "Qt's own, which ours is as well."),
    "KMessageDialog": Peer("`KMessageDialog`", "KDE's, for more than Qt's offers."),
    "ByHand": Peer("by hand", "What the function stands for: the property, and the style applied again."),
    "OneByOne": Peer("one by one", "**The floor**: the same events sent to each widget."),
    "LockedVector": Peer(
        "vector under one mutex", "**The floor**: written in a minute; an observer must not register or publish."
    ),
    "QtDirect": Peer("Qt direct signal", "What Qt has, for observers that are all objects of Qt."),
    "Sigc": Peer("sigc++", "The signals of the GTK world, on one thread only."),
    "Signals2": Peer("`boost::signals2`", "Boost's, for several threads."),
    "MinimalModel": Peer("minimal model", "**The floor**: a list of texts and two functions."),
    "QStringListModel": Peer("`QStringListModel`", "Qt's own for texts, without roles."),
    "QStandardItemModel": Peer("`QStandardItemModel`", "Qt's own for anything."),
    "OnePass": Peer("one pass", "**The floor**: each character written once into a text of the right length."),
    "ReplaceAndArg": Peer("`replace` and `arg`", "The first that comes to mind."),
    "ConnectByHand": Peer("`connect` by hand", "The same connections without a name, each side knowing all of the other."),
    "KF5CoreAddons": Peer("KF5CoreAddons", "KDE's helpers without widgets: the nearest in kind."),
    "KF5WidgetsAddons": Peer("KF5WidgetsAddons", "KDE's helpers with widgets."),
}

BOXES = ("PlainDialog", "QMessageBox", "KMessageDialog")
FORWARDING = ("PostedEvent", "InvokeMethod", "SingleShot", "Lean")
PUBLISHERS = ("LockedVector", "QtDirect", "Sigc", "Signals2")
WALKS = ("GetdentsFstatat", "DuOwn", "Du", "Fts", "StdFilesystem", "QDirIterator", "BoostFilesystem")

JOBS = (
    Job(
        "PostSmall",
        "Post 100 000 small functors from a worker",
        "FunctorExecutionForwarder",
        FORWARDING,
        (Goal("Lean", "≤", 1.05), Goal("InvokeMethod", "≤", 1.35)),
    ),
    Job(
        "PostBig",
        "The same, 64 bytes captured",
        "FunctorExecutionForwarder",
        FORWARDING,
        (Goal("InvokeMethod", "≤", 1.60),),
    ),
    Job("Drain", "Call 100 000", "FunctorExecutionForwarder", FORWARDING, (Goal("Lean", "≤", 1.05),)),
    Job("PingPong", "1 000 round trips between two threads, on one core", "FunctorExecutionForwarder", FORWARDING),
    Job(
        "Batch",
        "1 000 jobs in a batch",
        "AsyncService",
        ("PostedEvents", "ThreadPool", "ThreadWeaver", "QtConcurrent"),
        (Goal("ThreadWeaver", "<", 1), Goal("QtConcurrent", "<", 0.25)),
    ),
    Job(
        "OneAfterTheOther",
        "500 jobs one after the other, on one core",
        "AsyncService",
        ("PostedEvents", "ThreadPool", "ThreadWeaver", "QtConcurrent"),
        (Goal("ThreadWeaver", "<", 1), Goal("QtConcurrent", "<", 1)),
    ),
    Job(
        "Progress",
        "100 jobs with 100 reports each",
        "AsyncService",
        ("PostedEvents", "ThreadPool", "ThreadWeaver", "FutureResults"),
        (Goal("FutureResults", "≤", 1.20),),
    ),
    Job(
        "FileSizeText",
        "File size as text",
        "FormatFileSize",
        ("SnprintfBuffer", "Snprintf", "QLocale", "KFormat"),
        (Goal("KFormat", "≤", 1.40),),
    ),
    Job(
        "DurationText",
        "Duration as text",
        "FormatDuration",
        ("SnprintfBuffer", "Snprintf", "QTime", "KFormat"),
        (Goal("Snprintf", "<", 1),),
    ),
    Job("ManyFolders", "Size of 200 000 files in 2 000 folders", "GetPathSize", WALKS, (Goal("DuOwn", "≤", 1),)),
    Job("DeepChain", "... of a chain of 1 000 folders", "GetPathSize", WALKS, (Goal("DuOwn", "≤", 1),)),
    Job("OneFolder", "... of 100 000 files in one folder", "GetPathSize", WALKS, (Goal("DuOwn", "≤", 0.9),)),
    Job(
        "Removal",
        "Remove 20 000 aged files in 200 folders",
        "RemoveDir",
        ("RmOwn", "Rm", "RemoveRecursively"),
        (Goal("RmOwn", "≤", 1.1),),
    ),
    Job(
        "Log",
        "Log 1 000 messages through Qt",
        "QtLogHandler",
        ("Glog", "QtDefault", "Spdlog"),
        (Goal("Glog", "≤", 1.2),),
    ),
    Job("Publish1", "Publish to 1 observer", "EventHandlerList", PUBLISHERS, (Goal("QtDirect", "≤", 1.2),)),
    Job("Publish10", "... 10 observers", "EventHandlerList", PUBLISHERS, (Goal("Sigc", "≤", 0.8),)),
    Job("Publish1000", "... 1 000 observers", "EventHandlerList", PUBLISHERS, (Goal("Sigc", "≤", 0.4),)),
    Job(
        "ModelUid",
        "The uids of 100 items of a model",
        "SimpleModel",
        ("MinimalModel", "QStringListModel", "QStandardItemModel"),
        (Goal("QStringListModel", "≤", 1.05),),
    ),
    Job("IconPath", "... their icon paths", "SimpleModel", ("OnePass", "ReplaceAndArg"), (Goal("OnePass", "≤", 1.2),)),
    Job("Connect100", "100 emitters and 100 receivers by one name", "ObjectsConnector", ("ConnectByHand",)),
    Job("Connect1000", "... 1 000 and 1 000", "ObjectsConnector", ("ConnectByHand",)),
    Job("MessageBox", "Build, show and close a message box", "AlertBox", BOXES, (Goal("QMessageBox", "≤", 2),)),
    Job(
        "StyledMessageBox",
        "... with a style sheet of the application",
        "AlertBox",
        BOXES,
        (Goal("KMessageDialog", "≤", 1),),
    ),
    Job("HouseMessageBox", "... with the gallery's house style", "AlertBox", BOXES),
    Job("StyleProperty", "A style property, 200 widgets deep", "ApplyWidgetStyle", ("ByHand",)),
    Job("Hover10", "Hover over a group of 10 widgets", "HoverGroup", ("OneByOne",)),
    Job("Hover100", "... of 100 widgets", "HoverGroup", ("OneByOne",)),
    Job(
        "Load",
        "Load the library, its dependencies being there",
        "ZQtUtil",
        ("KF5CoreAddons", "KF5WidgetsAddons"),
        (Goal("KF5CoreAddons", "<", 1),),
    ),
)


@dataclass(frozen=True)
class Tree:
    title: str
    entries: int


# As PathSizeBenchmark makes them at a scale of 100 percent.
TREES = {
    "ManyFolders": Tree("200 000 files in 2 000 folders", 202000),
    "DeepChain": Tree("a chain of 1 000 folders", 2000),
    "OneFolder": Tree("100 000 files in one folder", 100000),
}

# Copies of a functor that Forward() may make: by value and into the queue, into the queue alone, none.
COPIES = {"kept": 2, "handed_over": 1, "called": 0}

# The compiler's own, and those of the constants and registries that the tests of the library's file name.
FUNCTIONS_ON_LOAD = 5


@dataclass(frozen=True)
class Row:
    title: str
    ours: str
    peers: str
    goal: str = ""
    holds: object = None

    def cells(self):
        verdict = {True: "holds", False: "**misses**", None: ""}[self.holds]
        return (self.title, self.ours, self.peers, self.goal, verdict)


@dataclass
class Results:
    """Medians in seconds and counters, by "Job/Way"."""

    seconds: dict = field(default_factory=dict)
    counters: dict = field(default_factory=dict)
    context: dict = field(default_factory=dict)

    def add(self, report):
        self.context.update(report["context"])
        for entry in report["benchmarks"]:
            if entry.get("error_occurred"):
                raise CannotRun(f"{entry['run_name']}: {entry['error_message']}")
            if entry.get("aggregate_name") != "median":
                continue
            # Google Benchmark appends which clock a benchmark goes by; without that it is the processor's.
            name, _, clock = re.fullmatch(r"(\w+/\w+)(?:/iterations:\d+)?(/(real_time|manual_time))?", entry["run_name"]).groups()
            time = entry["real_time"] if clock else entry["cpu_time"]
            self.seconds[name] = time * SECONDS[entry["time_unit"]]
            self.counters[name] = entry

    def time(self, job, way):
        try:
            return self.seconds[f"{job}/{way}"]
        except KeyError as error:
            raise CannotRun(f"No result for {error}") from error


class Runner:
    def __init__(self, build_dir, scratch, quick):
        self.bin = build_dir / "bin"
        self.shared_object = build_dir / "lib" / "libZQtUtil.so.1"
        self.trees = pathlib.Path(scratch) / "trees"
        self.report = pathlib.Path(scratch) / "report.json"
        self.quick = quick
        self.scale = 2 if quick else 100

    @staticmethod
    def command(arguments):
        words = [str(argument) for argument in arguments]
        environment = {**os.environ, "LC_ALL": "C.UTF-8"}
        try:
            subprocess.run(words, check=True, capture_output=True, encoding="utf-8", env=environment)
        except subprocess.CalledProcessError as error:
            raise CannotRun(f"{error}\n{error.stderr}") from error
        except OSError as error:
            raise CannotRun(str(error)) from error

    # A core has slow moments of a second or so, which are not ours. Many short samples meet them in equal shares; few
    # long ones make a median jump between the two paces.
    def benchmark(self, results, name, *arguments, repetitions=201, min_time=0.005):
        print(f"{name} ...", file=sys.stderr, flush=True)
        self.command(
            [
                self.bin / name,
                *arguments,
                f"--benchmark_repetitions={3 if self.quick else repetitions}",
                f"--benchmark_min_time={0.001 if self.quick else min_time}",
                "--benchmark_enable_random_interleaving=true",
                "--benchmark_report_aggregates_only=true",
                "--benchmark_out_format=json",
                f"--benchmark_out={self.report}",
            ]
        )
        results.add(json.loads(self.report.read_text(encoding="utf-8")))

    def run(self):
        results = Results()
        self.benchmark(results, "ForwardingBenchmark")
        self.benchmark(results, "TaskBenchmark")
        self.benchmark(results, "FormatBenchmark")
        self.benchmark(results, "LoadBenchmark", f"--library={self.shared_object}", repetitions=101, min_time=0.001)
        self.benchmark(results, "PathSizeBenchmark", f"--trees={self.trees}", f"--scale={self.scale}", repetitions=5)
        self.benchmark(results, "LogBenchmark")
        self.benchmark(results, "RemovalBenchmark", repetitions=21)
        self.benchmark(results, "ObserverBenchmark")
        self.benchmark(results, "ModelBenchmark")
        self.benchmark(results, "ConnectorBenchmark", repetitions=3)
        self.benchmark(results, "WidgetBenchmark", min_time=0.02)
        for tree in TREES:
            self.subtract_start(results, tree, "Du", "ProcessStart")
        self.subtract_start(results, "Removal", "Rm", "RemovalStart")
        return results

    @staticmethod
    def subtract_start(results, job, program, start):
        own = results.time(job, program) - results.time(start, program)
        results.seconds[f"{job}/{program}Own"] = max(own, sys.float_info.min)

    def system_calls(self, command):
        with tempfile.NamedTemporaryFile("r", encoding="utf-8") as summary:
            self.command(["strace", "-f", "-c", "-U", "calls,name", "-o", summary.name, *command])
            return sum(int(calls) for calls in re.findall(r"^\s*(\d+) (?!total)", summary.read(), re.MULTILINE))

    def system_calls_an_entry(self, tree, way):
        if way == "Du":
            command = ["du", "-s", "--apparent-size", "-B1"]
        else:
            command = [self.bin / "PathSizeBenchmark", f"--walk={way}"]
        calls = self.system_calls([*command, self.trees / tree]) - self.system_calls([*command, self.trees / "Empty"])
        return calls / (TREES[tree].entries * self.scale / 100)


def time_text(seconds):
    for unit, size in (("s", 1.0), ("ms", 1e-3), ("µs", 1e-6)):
        if seconds >= size:
            return f"{seconds / size:.3g} {unit}" if seconds < 1000 * size else f"{seconds / size:.0f} {unit}"
    return f"{seconds * 1e9:.0f} ns"


def ratios_text(ours, peers, decimals=2):
    return ", ".join(f"{PEERS[peer].label} {ours / value:.{decimals}f}" for peer, value in peers.items())


def job_row(job, results):
    ours = results.time(job.key, job.ours)
    peers = {peer: results.time(job.key, peer) for peer in job.peers}
    holds = all(goal.holds(ours, peers[goal.peer]) for goal in job.goals) if job.goals else None
    goal = ", ".join(goal.text() for goal in job.goals)
    # Two decimals might round a miss to the goal itself.
    return Row(job.title, time_text(ours), ratios_text(ours, peers, 3 if holds is False else 2), goal, holds)


def copies_row(results):
    def copies(way):
        return [int(results.counters[f"Copies/{way}"][counter]) for counter in COPIES]

    def text(numbers):
        return ", ".join(map(str, numbers))

    ours = copies("FunctorExecutionForwarder")
    goal = list(COPIES.values())
    title = "Copies of a functor that the caller keeps, hands over; while it is called"
    return Row(title, text(ours), f"lean form {text(copies('Lean'))}", f"= {text(goal)}", ours == goal)


def functions_row(results):
    def functions(library):
        return int(results.counters[f"Load/{library}"]["functions"])

    ours = functions("ZQtUtil")
    peers = {peer: functions(peer) for peer in ("KF5CoreAddons", "KF5WidgetsAddons")}
    goal = f"≤ {FUNCTIONS_ON_LOAD}: the compiler's own, and the documented constants and registries"
    return Row(
        "Functions that run when it is loaded", str(ours), ratios_text(ours, peers), goal, ours <= FUNCTIONS_ON_LOAD
    )


def system_call_rows(runner):
    for name, tree in TREES.items():
        print(f"System calls: {tree.title} ...", file=sys.stderr, flush=True)
        ours = runner.system_calls_an_entry(name, "GetPathSize")
        peers = {peer: runner.system_calls_an_entry(name, peer) for peer in WALKS if peer != "DuOwn"}
        yield Row(f"System calls an entry, {tree.title}", f"{ours:.2f}", ratios_text(ours, peers))


def all_rows(runner):
    results = runner.run()
    rows = [job_row(job, results) for job in JOBS]
    rows.append(functions_row(results))
    rows.append(copies_row(results))
    rows += system_call_rows(runner)
    return rows, results.context


def first_match(pattern, file):
    with contextlib.suppress(OSError):
        found = re.search(pattern, pathlib.Path(file).read_text(encoding="utf-8"), re.MULTILINE)
        if found:
            return found.group(1).strip()
    return "unknown"


def machine(build_dir, context):
    kilobytes = first_match(r"^MemTotal:\s*(\d+)", "/proc/meminfo")
    memory = f"{int(kilobytes) / 2**20:.0f} GiB" if kilobytes.isdigit() else kilobytes
    return {
        "Processor": first_match(r"^model name\s*:(.*)", "/proc/cpuinfo"),
        "Cores": str(os.cpu_count()),
        "Memory": memory,
        "Kernel": f"{platform.system()} {platform.release()}",
        "Compiler": context["compiler"],
        "Qt": context["qt_version"],
        "Build type": first_match(r"^CMAKE_BUILD_TYPE:\w+=(.*)", build_dir / "CMakeCache.txt"),
        "Date": datetime.date.today().isoformat(),
    }


def table(header, rows):
    lines = ["| " + " | ".join(cells) + " |" for cells in (header, ["---"] * len(header), *rows)]
    return "\n".join(lines)


def document(rows, facts, quick):
    result_table = table(("Job", "Ours", "Ours ÷ peer", "Goal", ""), [row.cells() for row in rows])
    reasons = [(peer.label, peer.reason) for peer in PEERS.values()]
    smoke = "\n**A smoke run: a few repetitions on small trees, nothing to judge by.**\n" if quick else ""
    return f"""# Benchmarks

Made by `benchmarks/run.py`. Every figure is the median of repetitions that alternate at random with those of its peers;
below 1.00 ours takes less.
{smoke}
{result_table}

## How it is measured

Work of one thread is told in that thread's processor time, so that other programs do not count: posting, calling,
texts, folder walks (for `du`, the process's), loading. Two threads that work together are told in wall-clock time, which
repeats within 30 % only; the rest does within 5 %. Threads that only wait for each other in turn share one core, since
what an idle core takes to wake is neither ours nor the peers'.

Functors are posted by a thread of their own while the owner waits. Every way to run jobs has one worker, kept from job
to job. Folders and files are in the kernel's caches. A library is loaded with `RTLD_NOW` by a new process each time,
which refuses when anything but the library itself comes with it.

## The machine

{table(("", ""), facts.items())}

## The peers

{table(("Peer", "Why a user would pick it"), reasons)}
"""


def report(rows, text, output):
    print(text[: text.index("\n## ")])
    if output:
        output.write_text(text, encoding="utf-8")
        print(f"Written to {output}")
    missed = [row for row in rows if row.holds is False]
    for row in missed:
        print(f"MISSED: {row.title}: {row.goal}; ours {row.ours}; ours to {row.peers}")
    if not missed:
        print("Every goal holds.")


@contextlib.contextmanager
def scratch_folder():
    path = tempfile.mkdtemp(prefix="zqtutil-benchmarks-")
    try:
        yield path
    finally:
        # Deeper than Python's own removal goes.
        subprocess.run(["rm", "-rf", path], check=False)


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build-dir", type=pathlib.Path, required=True, help="a build with ZQTUTIL_BENCHMARKS=ON")
    parser.add_argument("--quick", action="store_true", help="only see that everything runs; no file unless --output")
    parser.add_argument("--output", type=pathlib.Path, help="the Markdown file (docs/BENCHMARKS.md)")
    arguments = parser.parse_args()
    if not arguments.output and not arguments.quick:
        arguments.output = DEFAULT_OUTPUT
    return arguments


def main():
    arguments = parse_arguments()
    build_dir = arguments.build_dir.resolve()
    try:
        with scratch_folder() as scratch:
            rows, context = all_rows(Runner(build_dir, scratch, arguments.quick))
    except CannotRun as error:
        print(f"A benchmark could not run: {error}", file=sys.stderr)
        return 1
    report(rows, document(rows, machine(build_dir, context), arguments.quick), arguments.output)
    return 0


if __name__ == "__main__":
    sys.exit(main())
