"""Checks that the translation catalogues hold exactly the texts of the sources. With --write, brings them up to date."""

import argparse
import pathlib
import shutil
import subprocess
import sys
import tempfile


def update(catalogue, source_root):
    subprocess.run(["lupdate", "-silent", "-locations", "none", "-no-obsolete", "-I", source_root, source_root, "-ts",
                    catalogue], check=True)


def complaints_about(catalogue, source_root):
    with tempfile.TemporaryDirectory() as folder:
        fresh = pathlib.Path(folder, catalogue.name)
        shutil.copy(catalogue, fresh)
        update(fresh, source_root)
        if fresh.read_text() != catalogue.read_text():
            yield f"{catalogue.name} is not up to date: ./dev translations"
    text = catalogue.read_text()
    if "<source>" not in text:
        yield f"{catalogue.name} holds no text"
    if 'type="unfinished"' in text:
        yield f"{catalogue.name} has texts that are not translated"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("root", type=pathlib.Path)
    parser.add_argument("--write", action="store_true")
    arguments = parser.parse_args()
    source_root = arguments.root / "src"
    catalogues = sorted((arguments.root / "translations").glob("*.ts"))
    complaints = [] if catalogues else ["There is no catalogue"]
    for catalogue in catalogues:
        if arguments.write:
            update(catalogue, source_root)
        else:
            complaints += complaints_about(catalogue, source_root)
    for complaint in complaints:
        print(complaint)
    sys.exit(1 if complaints else 0)


main()
