"""Checks the built library file: what it exports, what it runs when it is loaded, and that nothing of the machine that
built it stands in it. With --write, the list of exported symbols is written anew."""

import argparse
import pathlib
import re
import subprocess
import sys
import tempfile

LIST = pathlib.Path(__file__).resolve().parent / "exported-symbols.txt"

# The compiler's own start-up function, the link schemes of LinksUtils, the roles and the registry of ObjectsConnector,
# the added fonts of FontDatabase, the main window of SpontaneousDialog.
INITIALIZERS = 5
POINTER_SIZE = 8


def output_of(*command):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout


def exported(library):
    # One line a name: a constructor is there twice, for complete objects and for bases.
    lines = output_of("nm", "--dynamic", "--defined-only", "--demangle", library).splitlines()
    return sorted({line.split(maxsplit=2)[2] for line in lines})


def export_complaints(library):
    found = set(exported(library))
    listed = set(LIST.read_text().splitlines())
    yield from (f"exported, but not on the list: {name}" for name in sorted(found - listed))
    yield from (f"on the list, but not exported: {name}" for name in sorted(listed - found))


def initializer_complaints(library):
    match = re.search(r"\.init_array\s+INIT_ARRAY\s+\S+\s+\S+\s+(\S+)", output_of("readelf", "-SW", library))
    count = int(match.group(1), 16) // POINTER_SIZE
    if count != INITIALIZERS:
        yield f"loading runs {count} initializers, not {INITIALIZERS}"


def path_complaints(library, source_dir):
    # Debug information names sources by their full paths, for the debugger.
    with tempfile.TemporaryDirectory() as folder:
        stripped = pathlib.Path(folder, "stripped")
        subprocess.run(["objcopy", "--strip-debug", library, stripped], check=True)
        if source_dir.encode() in stripped.read_bytes():
            yield f"the library names {source_dir}"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("shared_object")
    parser.add_argument("--source-dir", required=True)
    parser.add_argument("--write", action="store_true")
    arguments = parser.parse_args()
    if arguments.write:
        LIST.write_text("".join(name + "\n" for name in exported(arguments.shared_object)))
        return
    complaints = [*export_complaints(arguments.shared_object), *initializer_complaints(arguments.shared_object),
                  *path_complaints(arguments.shared_object, arguments.source_dir)]
    for complaint in complaints:
        print(complaint)
    sys.exit(1 if complaints else 0)


main()
