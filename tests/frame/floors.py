"""Checks the layers of the library:

- A source includes only headers of its own layer or of a lower layer. Includes do not form a circle.
- Only platform folders use headers and macros of an operating system.
- A platform folder includes only those headers of Util that it implements, and internal interface headers.
"""

import argparse
import pathlib
import re
import sys

INCLUDE = re.compile(r'^\s*#\s*include\s*[<"]([^>"]+)[>"]', re.MULTILINE)
SYSTEM_MACRO = re.compile(r"^\s*#\s*(?:el)?if.*(?:__APPLE__|__linux__|__unix__|_WIN32|Q_OS_|GNUSTEP)|^\s*#\s*ifn?def\s+"
                          r"(?:__APPLE__|__linux__|__unix__|_WIN32|Q_OS_\w+)", re.MULTILINE)
SYSTEM_HEADER = re.compile(r"^(?:sys|net|arpa|mach|objc|linux)/|^(?:unistd|dirent|fcntl|pwd|grp|dlfcn|pthread|signal)\.h$|"
                           r"^(?:AppKit|Foundation|Carbon|CoreFoundation|CoreServices|IOKit|X11|xcb)/|^QtDBus/")
# The layers of the top-level folders of src, numbered from the lowest layer (0) to the highest (3). A source includes
# only headers of its own layer or of a lower layer.
FLOORS = {"Base": 0, "WidgetKit": 1, "Util": 2, "Qml": 3}
# PLATFORM matches the paths of platform-specific sources, for example a source in Base/Platforms/mac.
# SEAM matches the paths of internal interface headers, for example Util/Platforms/TreeSize.h. Such a header declares
# functions that platform-specific sources define.
PLATFORM = re.compile(r"^(?:Base|Util)/Platforms/[a-z]+/")
SEAM = re.compile(r"^(?:Base|Util)/Platforms/\w+\.h$")


def floor_of(name):
    return FLOORS.get(name.split("/")[0])


def public_headers(root):
    text = (root / "cmake" / "PublicHeaders.cmake").read_text()
    return set(re.findall(r"\b(?:Base|WidgetKit|Util)/[\w/]+\.h\b", text))


def sources(folder):
    return sorted(path for path in folder.rglob("*") if path.suffix in {".h", ".cpp", ".mm"})


def own_includes(path):
    return [name for name in INCLUDE.findall(path.read_text()) if floor_of(name) is not None]


def implements(name, header):
    """Returns True if the source implements the header, for example AutoLauncherImpl.cpp and Util/AutoLauncher.h."""
    return pathlib.PurePath(name).stem.startswith(pathlib.PurePath(header).stem)


def include_complaint(name, included):
    if floor_of(included) > floor_of(name):
        return f"{name} includes {included} from a higher floor"
    is_platform = PLATFORM.match(name)
    if PLATFORM.match(included) and not is_platform:
        return f"{name} includes {included} of a platform instead of a seam"
    if is_platform and included.startswith("Util/") and not (
            PLATFORM.match(included) or SEAM.match(included) or implements(name, included)):
        return f"{name} of a platform uses {included}, which it does not implement"
    return None


def system_complaints(name, text):
    if PLATFORM.match(name):
        return
    if SYSTEM_MACRO.search(text):
        yield f"{name} depends on a macro of a system"
    for included in INCLUDE.findall(text):
        if SYSTEM_HEADER.search(included):
            yield f"{name} includes the system header {included}"


def library_complaints(source_root, public):
    for path in sources(source_root):
        name = path.relative_to(source_root).as_posix()
        for included in own_includes(path):
            complaint = include_complaint(name, included)
            if complaint:
                yield complaint
        yield from system_complaints(name, path.read_text())
        if name.startswith("Util/") and name.endswith(".h") and "/Platforms/" not in name and name not in public:
            yield f"{name} is private, but is in the folder of the public headers"


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


def test_complaints(root, public):
    """Reports private headers that tests include, except platform headers and internal interface headers.

    The compiler cannot check this for all tests: some tests are built with all headers of the library."""
    for path in sources(root / "tests"):
        for included in own_includes(path):
            if included not in public and not PLATFORM.match(included) and not SEAM.match(included):
                yield f"{path.relative_to(root)} includes {included}, which is neither public nor of a platform"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("root", type=pathlib.Path)
    root = parser.parse_args().root
    if not own_includes(root / "src" / "Util" / "AsyncService.cpp"):
        sys.exit("No includes were found: the check would always pass")
    public = public_headers(root)
    complaints = [*library_complaints(root / "src", public), *circle_complaints(root / "src"),
                  *test_complaints(root, public)]
    for complaint in complaints:
        print(complaint)
    sys.exit(1 if complaints else 0)


main()
