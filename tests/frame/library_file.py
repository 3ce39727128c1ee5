"""Checks the built library file:

- It exports exactly the symbols in exported-symbols.txt.
- It runs the expected number of functions when it is loaded.
- It does not contain the path of the source folder.

With --write, updates exported-symbols.txt instead.
"""

import argparse
import pathlib
import re
import subprocess
import sys
import tempfile

LIST = pathlib.Path(__file__).resolve().parent / "exported-symbols.txt"

# The number of functions that run when the library is loaded. The compiler adds one such function to every library, and
# one for each source that has global objects. Four sources have global objects: LinksUtils (the link schemes),
# ObjectsConnector (the roles and the registered objects), FontDatabase (the added fonts) and SpontaneousDialog (the
# main window).
INITIALIZERS = 5
POINTER_SIZE = 8


def output_of(*command):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout


def exported(library):
    # Use a set to remove duplicates: each constructor has two symbols with the same demangled name, one for complete
    # objects and one for base-class subobjects.
    lines = output_of("nm", "--dynamic", "--defined-only", "--demangle", library).splitlines()
    return sorted({line.split(maxsplit=2)[2] for line in lines})


def export_errors(library):
    found = set(exported(library))
    listed = set(LIST.read_text().splitlines())
    yield from (f"exported, but not in {LIST.name}: {name}" for name in sorted(found - listed))
    yield from (f"in {LIST.name}, but not exported: {name}" for name in sorted(listed - found))


def initializer_errors(library):
    match = re.search(r"\.init_array\s+INIT_ARRAY\s+\S+\s+\S+\s+(\S+)", output_of("readelf", "-SW", library))
    count = int(match.group(1), 16) // POINTER_SIZE
    if count != INITIALIZERS:
        yield f"loading runs {count} initializers, not {INITIALIZERS}"


def path_errors(library, source_dir):
    # Remove the debug information before the check, because the debug information contains full source paths.
    with tempfile.TemporaryDirectory() as folder:
        stripped = pathlib.Path(folder, "stripped")
        subprocess.run(["objcopy", "--strip-debug", library, stripped], check=True)
        if source_dir.encode() in stripped.read_bytes():
            yield f"the library contains the path {source_dir}"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("shared_object")
    parser.add_argument("--source-dir", required=True)
    parser.add_argument("--write", action="store_true")
    arguments = parser.parse_args()
    if arguments.write:
        LIST.write_text("".join(name + "\n" for name in exported(arguments.shared_object)))
        return
    errors = [*export_errors(arguments.shared_object), *initializer_errors(arguments.shared_object),
                  *path_errors(arguments.shared_object, arguments.source_dir)]
    for error in errors:
        print(error)
    sys.exit(1 if errors else 0)


main()
