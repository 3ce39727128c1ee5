#!/usr/bin/env python3
"""Runs the benchmarks of a build and compares the library with alternatives, which are called peers.

The result is a table of ratios: the time of the library divided by the time of each peer. Times are comparable only
within one run, so every run measures the library and all peers. The script prints the table and writes it to a Markdown
file, together with a description of the machine. At the end, the script prints the goals that the library misses. The
exit code is 1 if a benchmark fails. A missed goal does not change the exit code.
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
    """A benchmark failed, or one of its results is missing."""


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
    """A job that the library and its peers do.

    The result of the library has the name "<key>/<ours>". The result of each peer has the name "<key>/<peer>".
    """

    key: str
    title: str
    ours: str
    peers: tuple
    goals: tuple = ()


@dataclass(frozen=True)
class Peer:
    label: str
    description: str


PEERS = {
    "PostedEvent": Peer(
        "posted functor event",
        "**Lower bound.** Handwritten code that posts one `QEvent` per functor. The event contains the functor.",
    ),
    "PostedEvents": Peer(
        "posted job events",
        "**Lower bound.** Handwritten code that posts one `QEvent` to the worker thread for each job. The worker "
        "thread posts back one `QEvent` for each report and one for the completion. The code supports neither "
        "cancellation nor errors.",
    ),
    "InvokeMethod": Peer("`invokeMethod`", "Qt's own function for calling a functor on another thread, since Qt 5.10."),
    "SingleShot": Peer(
        "`singleShot(0)`", "`QTimer::singleShot()` with a delay of zero, an older idiom in many code bases."
    ),
    "Lean": Peer(
        "minimal forwarder",
        "**Lower bound.** The smallest class that passes a `std::function` through a queued signal, which is also how "
        "`FunctorExecutionForwarder` works.",
    ),
    "ThreadPool": Peer(
        "`QThreadPool`",
        "Qt's thread pool with one thread. Reports and completions return through `invokeMethod`.",
    ),
    "ThreadWeaver": Peer(
        "ThreadWeaver", "KDE's job queue with one worker thread. It is the peer most similar to `AsyncService`."
    ),
    "QtConcurrent": Peer(
        "QtConcurrent",
        "The way that Qt's manual suggests: `QtConcurrent::run()` and a `QFutureWatcher`, with one thread.",
    ),
    "FutureResults": Peer(
        "`QFutureInterface` results",
        "Qt's way to deliver every report: each report is a result of a `QFuture`. The progress values of a `QFuture` "
        "are not comparable, because Qt drops most of them.",
    ),
    "QLocale": Peer(
        "`QLocale`", "Qt's `formattedDataSize()`. It uses the language and the number format of the locale."
    ),
    "KFormat": Peer("`KFormat`", "KDE's formatter. It has most of the options of the library's functions."),
    "QTime": Peer(
        "`QTime::toString`", "Qt's function. It cannot format durations longer than a day, and it cannot omit parts."
    ),
    "Snprintf": Peer(
        "`snprintf` + `QString`", "The C library's function. Its result is converted to `QString`, which a label needs."
    ),
    "SnprintfBuffer": Peer(
        "`snprintf` alone", "**Lower bound.** The C library's function, which writes into a buffer on the stack."
    ),
    "GetdentsFstatat": Peer(
        "`getdents` + `fstatat`",
        "**Lower bound.** Handwritten code with few system calls. It reads each folder with `getdents()` and calls "
        "`fstatat()` once for each entry.",
    ),
    "Du": Peer("`du`", "The command `du -s --apparent-size -B1`, which runs as a separate process."),
    "DuOwn": Peer(
        "`du` without start-up",
        "The time of `du` minus the time of `du` on an empty folder. The goals are compared with this value.",
    ),
    "Fts": Peer("`fts`", "The functions of the C library that traverse a folder tree."),
    "StdFilesystem": Peer("`std::filesystem`", "The recursive iterator of the standard library."),
    "BoostFilesystem": Peer(
        "`boost::filesystem`",
        "The recursive iterator of Boost. The library uses the path class of Boost.",
    ),
    "QDirIterator": Peer("`QDirIterator`", "Qt's recursive iterator."),
    "Rm": Peer("`rm -rf`", "The command, which runs as a separate process. It does not check the age of files."),
    "RmOwn": Peer("`rm` without start-up", "The time of `rm -rf` minus the time of `rm -rf` on an empty folder."),
    "RemoveRecursively": Peer("`QDir::removeRecursively`", "Qt's function. It does not check the age of files."),
    "Glog": Peer("glog", "**Lower bound.** Direct calls of glog. `QtLogHandler` logs Qt messages through glog."),
    "QtDefault": Peer(
        "Qt's handler",
        "Qt's default message handler. It writes lines without time and thread to the standard error.",
    ),
    "Spdlog": Peer("spdlog", "A log library that new projects often choose. It does not look up the time zone."),
    "PlainDialog": Peer("plain dialog", "**Lower bound.** A dialog with a label and a button box."),
    "QMessageBox": Peer("`QMessageBox`", "Qt's message box, the base class of `AlertBox`."),
    "KMessageDialog": Peer("`KMessageDialog`", "KDE's message box, with more features than Qt's."),
    "ByHand": Peer(
        "by hand", "Handwritten code with the same steps: it sets the property and applies the style again."
    ),
    "OneByOne": Peer("one by one", "**Lower bound.** A loop that sends the same events to each widget."),
    "LockedVector": Peer(
        "vector under one mutex",
        "**Lower bound.** A vector of observers with one mutex. An observer that publishes an event deadlocks.",
    ),
    "QtDirect": Peer("Qt direct signal", "A Qt signal with direct connections. The observers must be QObjects."),
    "Sigc": Peer("sigc++", "The signal library of GTK applications. It supports only one thread."),
    "Signals2": Peer("`boost::signals2`", "Boost's signal library. It supports several threads."),
    "MinimalModel": Peer(
        "minimal model", "**Lower bound.** A list of strings with only the two functions that every list model needs."
    ),
    "QStringListModel": Peer("`QStringListModel`", "Qt's model for a list of strings. It has no custom roles."),
    "QStandardItemModel": Peer("`QStandardItemModel`", "Qt's general-purpose model."),
    "OnePass": Peer(
        "one pass", "**Lower bound.** A function that writes each character once, into a string of the final length."
    ),
    "ReplaceAndArg": Peer("`replace` and `arg`", "The most obvious code: `QString::replace()` and `QString::arg()`."),
    "ConnectByHand": Peer(
        "`connect` by hand",
        "The same connections, created with `QObject::connect()`. The code must know all emitters and all receivers.",
    ),
    "KF5CoreAddons": Peer(
        "KF5CoreAddons", "KDE's utilities without widgets. This is the library most similar to ZQtUtil."
    ),
    "KF5WidgetsAddons": Peer("KF5WidgetsAddons", "KDE's utilities with widgets."),
}

BOXES = ("PlainDialog", "QMessageBox", "KMessageDialog")
FORWARDING = ("PostedEvent", "InvokeMethod", "SingleShot", "Lean")
PUBLISHERS = ("LockedVector", "QtDirect", "Sigc", "Signals2")
WALKS = ("GetdentsFstatat", "DuOwn", "Du", "Fts", "StdFilesystem", "QDirIterator", "BoostFilesystem")

JOBS = (
    Job(
        "PostSmall",
        "Post 100 000 small functors from a worker thread",
        "FunctorExecutionForwarder",
        FORWARDING,
        (Goal("Lean", "≤", 1.05), Goal("InvokeMethod", "≤", 1.35)),
    ),
    Job(
        "PostBig",
        "Post 100 000 functors that capture 64 bytes",
        "FunctorExecutionForwarder",
        FORWARDING,
        (Goal("InvokeMethod", "≤", 1.60),),
    ),
    Job("Drain", "Call 100 000 posted functors", "FunctorExecutionForwarder", FORWARDING, (Goal("Lean", "≤", 1.05),)),
    Job("PingPong", "Make 1 000 round trips between two threads, on one core", "FunctorExecutionForwarder", FORWARDING),
    Job(
        "Batch",
        "Run 1 000 jobs queued together",
        "AsyncService",
        ("PostedEvents", "ThreadPool", "ThreadWeaver", "QtConcurrent"),
        (Goal("ThreadWeaver", "<", 1), Goal("QtConcurrent", "<", 0.25)),
    ),
    Job(
        "OneAfterTheOther",
        "Run 500 jobs on one core, each posted when the previous job has finished",
        "AsyncService",
        ("PostedEvents", "ThreadPool", "ThreadWeaver", "QtConcurrent"),
        (Goal("ThreadWeaver", "<", 1), Goal("QtConcurrent", "<", 1)),
    ),
    Job(
        "Progress",
        "Run 100 jobs with 100 progress reports each",
        "AsyncService",
        ("PostedEvents", "ThreadPool", "ThreadWeaver", "FutureResults"),
        (Goal("FutureResults", "≤", 1.20),),
    ),
    Job(
        "FileSizeText",
        "Format a file size",
        "FormatFileSize",
        ("SnprintfBuffer", "Snprintf", "QLocale", "KFormat"),
        (Goal("KFormat", "≤", 1.40),),
    ),
    Job(
        "DurationText",
        "Format a duration",
        "FormatDuration",
        ("SnprintfBuffer", "Snprintf", "QTime", "KFormat"),
        (Goal("Snprintf", "<", 1),),
    ),
    Job(
        "ManyFolders",
        "Compute the total size of 200 000 files in 2 000 folders",
        "GetPathSize",
        WALKS,
        (Goal("DuOwn", "≤", 1),),
    ),
    Job(
        "DeepChain",
        "Compute the total size of 1 000 files in a chain of nested folders",
        "GetPathSize",
        WALKS,
        (Goal("DuOwn", "≤", 1),),
    ),
    Job(
        "OneFolder",
        "Compute the total size of 100 000 files in one folder",
        "GetPathSize",
        WALKS,
        (Goal("DuOwn", "≤", 0.9),),
    ),
    Job(
        "Removal",
        "Remove 20 000 old files in 200 folders",
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
    Job("Publish1", "Publish an event to 1 observer", "EventHandlerList", PUBLISHERS, (Goal("QtDirect", "≤", 1.2),)),
    Job("Publish10", "Publish an event to 10 observers", "EventHandlerList", PUBLISHERS, (Goal("Sigc", "≤", 0.8),)),
    Job(
        "Publish1000",
        "Publish an event to 1 000 observers",
        "EventHandlerList",
        PUBLISHERS,
        (Goal("Sigc", "≤", 0.4),),
    ),
    Job(
        "ModelUid",
        "Read the uids of 100 items of a model",
        "SimpleModel",
        ("MinimalModel", "QStringListModel", "QStandardItemModel"),
        (Goal("QStringListModel", "≤", 1.05),),
    ),
    Job(
        "IconPath",
        "Read the icon paths of 100 items of a model",
        "SimpleModel",
        ("OnePass", "ReplaceAndArg"),
        (Goal("OnePass", "≤", 1.2),),
    ),
    Job(
        "Connect100",
        "Connect 100 emitters with 100 receivers under one name, and disconnect them",
        "ObjectsConnector",
        ("ConnectByHand",),
    ),
    Job(
        "Connect1000",
        "Connect 1 000 emitters with 1 000 receivers under one name, and disconnect them",
        "ObjectsConnector",
        ("ConnectByHand",),
    ),
    Job("MessageBox", "Build, show and close a message box", "AlertBox", BOXES, (Goal("QMessageBox", "≤", 2),)),
    Job(
        "StyledMessageBox",
        "Build, show and close a message box, with a style sheet",
        "AlertBox",
        BOXES,
        (Goal("KMessageDialog", "≤", 1),),
    ),
    Job(
        "HouseMessageBox",
        "Build, show and close a message box, with the style sheet of the gallery",
        "AlertBox",
        BOXES,
    ),
    Job("StyleProperty", "Set a style property of a widget with 200 ancestors", "ApplyWidgetStyle", ("ByHand",)),
    Job("Hover10", "Hover over a group of 10 widgets", "HoverGroup", ("OneByOne",)),
    Job("Hover100", "Hover over a group of 100 widgets", "HoverGroup", ("OneByOne",)),
    Job(
        "Load",
        "Load the library while its dependencies are already loaded",
        "ZQtUtil",
        ("KF5CoreAddons", "KF5WidgetsAddons"),
        (Goal("KF5CoreAddons", "<", 1),),
    ),
)


@dataclass(frozen=True)
class Tree:
    title: str
    entries: int


# The folder trees that PathSizeBenchmark creates with --scale=100. `entries` is the number of files and
# folders in the tree.
TREES = {
    "ManyFolders": Tree("200 000 files in 2 000 folders", 202000),
    "DeepChain": Tree("a chain of 1 000 nested folders", 2000),
    "OneFolder": Tree("100 000 files in one folder", 100000),
}

# The expected number of copies of a functor that FunctorExecutionForwarder makes:
# - "kept": the caller passes a variable, which is copied into the parameter and into the queue.
# - "handed_over": the caller passes a temporary, which is copied only into the queue.
# - "called": calling the functor does not copy it.
COPIES = {"kept": 2, "handed_over": 1, "called": 0}

# Loading the library runs the compiler's start-up function, and one function for each of the four source files that
# have global objects. tests/frame/library_file.py checks the same number.
FUNCTIONS_ON_LOAD = 5


@dataclass(frozen=True)
class Row:
    title: str
    ours: str
    peers: str
    goal: str = ""
    holds: object = None

    def cells(self):
        verdict = {True: "met", False: "**missed**", None: ""}[self.holds]
        return (self.title, self.ours, self.peers, self.goal, verdict)


@dataclass
class Results:
    """The results of all benchmarks.

    The keys have the form "<job>/<way>", where the way is a class or function of the library, or a peer. `seconds`
    contains the median times in seconds. `counters` contains the JSON entry of each median. An entry also contains the
    counters of the benchmark.
    """

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
            # Google Benchmark appends the name of the clock to the name of the benchmark. A benchmark without this
            # suffix measures processor time.
            pattern = r"(\w+/\w+)(?:/iterations:\d+)?(/(real_time|manual_time))?"
            name, _, clock = re.fullmatch(pattern, entry["run_name"]).groups()
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

    # A processor core is sometimes slow for about a second. Take many short samples, so that these slow periods affect
    # the library and the alternatives equally.
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
        self.benchmark(results, "ConnectorBenchmark", repetitions=2)  # one repetition takes minutes
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
    # Print three decimals if a goal is missed: with two decimals, the rounded ratio could look equal to the goal.
    return Row(job.title, time_text(ours), ratios_text(ours, peers, 3 if holds is False else 2), goal, holds)


def copies_row(results):
    def copies(way):
        return [int(results.counters[f"Copies/{way}"][counter]) for counter in COPIES]

    def text(numbers):
        return ", ".join(map(str, numbers))

    ours = copies("FunctorExecutionForwarder")
    goal = list(COPIES.values())
    title = "Number of copies of a functor: if passed as a variable, if passed as a temporary, during its call"
    return Row(title, text(ours), f"{PEERS['Lean'].label} {text(copies('Lean'))}", f"= {text(goal)}", ours == goal)


def functions_row(results):
    def functions(library):
        return int(results.counters[f"Load/{library}"]["functions"])

    ours = functions("ZQtUtil")
    peers = {peer: functions(peer) for peer in ("KF5CoreAddons", "KF5WidgetsAddons")}
    goal = f"≤ {FUNCTIONS_ON_LOAD}: the compiler's start-up function, and one for each source file with global objects"
    return Row(
        "Number of functions that run when the library is loaded",
        str(ours),
        ratios_text(ours, peers),
        goal,
        ours <= FUNCTIONS_ON_LOAD,
    )


def system_call_rows(runner):
    for name, tree in TREES.items():
        print(f"System calls: {tree.title} ...", file=sys.stderr, flush=True)
        ours = runner.system_calls_an_entry(name, "GetPathSize")
        peers = {peer: runner.system_calls_an_entry(name, peer) for peer in WALKS if peer != "DuOwn"}
        yield Row(f"System calls per file or folder: {tree.title}", f"{ours:.2f}", ratios_text(ours, peers))


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
    descriptions = [(peer.label, peer.description) for peer in PEERS.values()]
    warning = "\n**This was a quick run with few repetitions on small trees. Its times are not representative.**\n"
    return f"""# Benchmarks

`./dev bench` generates this page. It compares the speed of the library with that of alternatives, which are called
*peers*. The peers are described at the end of this page.

- **Ours** is the time of the library.
- **Ours ÷ peer** is the time of the library divided by the time of the peer. A value below 1.00 means that the library
  is faster.
- **Goal** is a limit for one of these ratios. The last column shows whether the library meets all goals of the row.

Every measured time is the median of 2 to 201 repetitions, depending on the duration of the job. The repetitions of the
library and of its peers alternate in random order. The last rows of the table count functions, copies or system calls
instead of time. The row about copies shows the numbers of the peer instead of a ratio.
{warning if quick else ""}
{result_table}

## How it is measured

- **Work on one thread** is measured in processor time of that thread, so that other programs do not affect the result.
  For `du` and `rm`, the benchmark measures the processor time of the whole process. Repeated runs differ by at most 5 %.
- **Work on two threads** is measured in wall-clock time. Repeated runs differ by at most 30 %.
- **Two threads that wait for each other in turn** run on the same core. Otherwise the results would mainly show how
  long an idle core takes to wake.
- **Functors**: A second thread posts all functors. The receiving thread waits until all of them are posted, and then
  calls them. In the benchmark of round trips, both threads post functors.
- **Jobs**: The library and each peer have one worker thread each, and reuse it for all jobs.
- **Folders and files** are already in the kernel's caches when the measurement starts.
- **Libraries** are loaded with `RTLD_NOW`, each time in a new process. The dependencies are loaded before the
  measurement. The benchmark fails if a dependency has not been loaded by then.

## The machine

{table(("", ""), facts.items())}

## The peers

A lower bound does only the minimum of the work, so the library is not expected to be faster.

{table(("Peer", "Description"), descriptions)}
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
        print("All goals are met.")


@contextlib.contextmanager
def scratch_folder():
    path = tempfile.mkdtemp(prefix="zqtutil-benchmarks-")
    try:
        yield path
    finally:
        # shutil.rmtree() fails on the chain of 1 000 nested folders, because the chain is too deep.
        subprocess.run(["rm", "-rf", path], check=False)


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build-dir", type=pathlib.Path, required=True, help="a build with ZQTUTIL_BENCHMARKS=ON")
    parser.add_argument("--quick", action="store_true", help="check that all benchmarks run; write no file by default")
    parser.add_argument("--output", type=pathlib.Path, help="the Markdown file to write (default: docs/BENCHMARKS.md)")
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
        print(f"A benchmark failed: {error}", file=sys.stderr)
        return 1
    report(rows, document(rows, machine(build_dir, context), arguments.quick), arguments.output)
    return 0


if __name__ == "__main__":
    sys.exit(main())
