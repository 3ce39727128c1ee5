"""Checks that the type description of the QML module matches the types that the built plugin registers. With --write,
updates the description instead."""

import argparse
import os
import pathlib
import subprocess
import sys
import tempfile


def describe(qmlplugindump, import_dir):
    with tempfile.TemporaryDirectory() as folder:
        # qmlplugindump writes its own command line into the type description. Therefore, the import path is ".": a full
        # path would differ between machines. The platform plugin "minimal" needs no display.
        result = subprocess.run([qmlplugindump, "-nonrelocatable", "-noforceqtquick", "-defaultplatform", "Zelkor.Util",
                                 "1.0", "."], cwd=import_dir, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                                env={**os.environ, "QT_QPA_PLATFORM": "minimal", "XDG_RUNTIME_DIR": folder})
    if result.returncode != 0:
        sys.exit(f"qmlplugindump failed with exit code {result.returncode}:\n{result.stderr}")
    return result.stdout


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("description", type=pathlib.Path)
    parser.add_argument("--qmlplugindump", required=True)
    parser.add_argument("--import-dir", required=True)
    parser.add_argument("--write", action="store_true")
    arguments = parser.parse_args()
    fresh = describe(arguments.qmlplugindump, arguments.import_dir)
    if arguments.write:
        arguments.description.write_text(fresh)
    elif fresh != arguments.description.read_text():
        sys.exit(f"{arguments.description.name} is out of date; run ./dev qmltypes")


main()
