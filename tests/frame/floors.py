"""Checks that no include runs upward or in a circle, that only the platform folders name a system, and that the QML
module and everything outside the library use its public headers only."""

import argparse
import pathlib
import re
import sys

INCLUDE = re.compile(r'^\s*#\s*include\s*[<"]([^>"]+)[>"]', re.MULTILINE)
ASKS_SYSTEM = re.compile(r"^\s*#\s*(?:el)?if.*(?:__APPLE__|__linux__|__unix__|_WIN32|Q_OS_|GNUSTEP)|^\s*#\s*ifn?def\s+"
                         r"(?:__APPLE__|__linux__|__unix__|_WIN32|Q_OS_\w+)", re.MULTILINE)
SYSTEM_HEADER = re.compile(r"^(?:sys|net|arpa|mach|objc|linux)/|^(?:unistd|dirent|fcntl|pwd|grp|dlfcn|pthread|signal)\.h$|"
                           r"^(?:AppKit|Foundation|Carbon|CoreFoundation|CoreServices|IOKit|X11|xcb)/|^QtDBus/")
FLOORS = {"Base": 0, "WidgetKit": 1, "Util": 2, "Qml": 4}
PLATFORMS_FLOOR = 3


def floor_of(path):
    parts = pathlib.PurePath(path).parts
    return PLATFORMS_FLOOR if "Platforms" in parts else FLOORS.get(parts[0])


def public_headers(root):
    text = (root / "cmake" / "PublicHeaders.cmake").read_text()
    return set(re.findall(r"\b(?:Base|WidgetKit|Util)/[\w/]+\.h\b", text))


def sources(folder):
    return sorted(path for path in folder.rglob("*") if path.suffix in {".h", ".cpp", ".mm"})


def own_includes(path):
    return [name for name in INCLUDE.findall(path.read_text()) if floor_of(name) is not None]


def library_complaints(source_root):
    for path in sources(source_root):
        name = path.relative_to(source_root).as_posix()
        in_platforms = floor_of(name) == PLATFORMS_FLOOR
        for included in own_includes(path):
            if floor_of(included) > floor_of(name):
                yield f"{name} includes {included}, which stands above it"
        if in_platforms:
            continue
        text = path.read_text()
        if ASKS_SYSTEM.search(text):
            yield f"{name} asks which system it runs on"
        for included in INCLUDE.findall(text):
            if SYSTEM_HEADER.search(included):
                yield f"{name} names the system header {included}"


def circle_complaints(source_root):
    graph = {path.relative_to(source_root).as_posix(): own_includes(path)
             for path in sources(source_root) if path.suffix == ".h"}
    done = set()

    def visit(name, trail):
        if name in trail:
            yield "includes in a circle: " + " > ".join(trail[trail.index(name):] + [name])
            return
        if name in done:
            return
        for included in graph.get(name, []):
            yield from visit(included, trail + [name])
        done.add(name)

    for header in graph:
        yield from visit(header, [])


def user_complaints(root):
    allowed = public_headers(root)
    for folder in ("src/Qml", "tests", "benchmarks", "examples"):
        for path in sources(root / folder):
            for included in own_includes(path):
                own = folder == "src/Qml" and included.startswith("Qml/")
                platform_test = folder == "tests" and "/Platforms/" in included
                if included not in allowed and not own and not platform_test:
                    yield f"{path.relative_to(root)} includes {included}, which is not public"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("root", type=pathlib.Path)
    root = parser.parse_args().root
    if not own_includes(root / "src" / "Util" / "AsyncService.cpp"):
        sys.exit("The includes cannot be read: this check checks nothing")
    complaints = [*library_complaints(root / "src"), *circle_complaints(root / "src"), *user_complaints(root)]
    for complaint in complaints:
        print(complaint)
    sys.exit(1 if complaints else 0)


main()
