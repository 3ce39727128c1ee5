"""Checks that the translation catalogues contain exactly the texts of the sources, and that each text is translated.
With --write, updates the catalogues instead."""

import argparse
import pathlib
import shutil
import subprocess
import sys
import tempfile


def update(catalogue, source_root):
    subprocess.run(["lupdate", "-silent", "-locations", "none", "-no-obsolete", "-I", source_root, source_root, "-ts",
                    catalogue], check=True)


def catalogue_errors(catalogue, source_root):
    with tempfile.TemporaryDirectory() as folder:
        fresh = pathlib.Path(folder, catalogue.name)
        shutil.copy(catalogue, fresh)
        update(fresh, source_root)
        if fresh.read_text() != catalogue.read_text():
            yield f"{catalogue.name} is out of date; run ./dev translations"
    text = catalogue.read_text()
    if "<source>" not in text:
        yield f"{catalogue.name} contains no text"
    if 'type="unfinished"' in text:
        yield f"{catalogue.name} contains texts that are not translated"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("root", type=pathlib.Path)
    parser.add_argument("--write", action="store_true")
    arguments = parser.parse_args()
    source_root = arguments.root / "src"
    catalogues = sorted((arguments.root / "translations").glob("*.ts"))
    errors = [] if catalogues else ["translations/ contains no catalogue"]
    for catalogue in catalogues:
        if arguments.write:
            update(catalogue, source_root)
        else:
            errors += catalogue_errors(catalogue, source_root)
    for error in errors:
        print(error)
    sys.exit(1 if errors else 0)


main()
