"""Checks the gallery without a display: its report on a folder tree with every kind of entry, its error message for a
missing folder, and its screenshots."""

import argparse
import os
import pathlib
import re
import struct
import subprocess
import sys
import tempfile


def run(gallery, *arguments):
    with tempfile.TemporaryDirectory() as folder:
        own = {name: folder for name in ("HOME", "TMPDIR", "XDG_RUNTIME_DIR")}
        return subprocess.run([gallery, *map(os.fsencode, arguments)], stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, env={**os.environ, **own}, timeout=120)


def expect(condition, message):
    if not condition:
        sys.exit(message)


def make_tree(root):
    """Creates a folder tree. Returns the size of each top-level entry in bytes, or None for an entry without a size."""
    sizes = {}
    for name, size in ((b"plain", 1500), (b"with space", 2500000), (b'quote"d', 7), (b"not-utf8-\xff", 12),
                       (b"line\nbreak", 3), (b".hidden", 44)):
        folder = os.path.join(root, name)
        os.mkdir(folder)
        with open(os.path.join(folder, b"file"), "wb") as file:
            file.truncate(size)
        sizes[name] = size
    with open(os.path.join(root, b"file"), "wb") as file:
        file.truncate(99)
    sizes[b"file"] = 99
    os.symlink(b"file", os.path.join(root, b"link to file"))
    sizes[b"link to file"] = 99
    os.symlink(b"plain", os.path.join(root, b"link to folder"))
    sizes[b"link to folder"] = None
    os.symlink(b"nowhere", os.path.join(root, b"plain", b"dangling"))
    return sizes


def shown(name):
    return name.decode("utf-8", "replace").replace("\n", "\\n")


def check_report(gallery):
    with tempfile.TemporaryDirectory() as folder:
        root = os.fsencode(folder)
        sizes = make_tree(root)
        result = run(gallery, "--report", root)
        expect(result.returncode == 0, f"The report failed with exit code {result.returncode}: {result.stderr}")
        lines = result.stdout.decode().splitlines()
        for name, size in sizes.items():
            pattern = re.compile(rf"\s{size if size is not None else '-'}\s.*\b{re.escape(shown(name)).lstrip('.')}"
                                 if name[:1].isalnum() else rf"\s{size}\s.*{re.escape(shown(name))}")
            expect(any(pattern.search(line) for line in lines),
                   f"No line reports {size} bytes for {name!r}:\n" + "\n".join(lines))
        total = sum(size or 0 for size in sizes.values())
        expect(any(re.search(rf"\s{total}\s.*Total of {len(sizes)} entries", line) for line in lines),
               f"No line reports a total of {total} bytes:\n" + "\n".join(lines))
        expect(any("dangling" in line for line in lines), "The report does not list the dangling link")
        # For each file, folder or link that has no size, the library logs a line that starts with the misspelt word
        # "Erorr". The gallery must not print these lines.
        expect(b"Erorr" not in result.stderr, f"Log lines appear on the terminal: {result.stderr}")


def check_missing_folder(gallery):
    result = run(gallery, "--report", "/nonexistent/folder")
    expect(result.returncode == 1, f"The exit code for a missing folder is {result.returncode}, not 1")
    expect(b"/nonexistent/folder" in result.stderr, f"The message does not name the folder: {result.stderr}")
    expect(result.stdout == b"", f"The gallery printed a report on a missing folder: {result.stdout}")


def check_pictures(folder, name, min_width, min_height):
    contents = set()
    for palette in ("light", "dark"):
        data = (folder / f"{name}-{palette}.png").read_bytes()
        expect(data[:8] == b"\x89PNG\r\n\x1a\n", f"{name}-{palette}.png is not a PNG file")
        width, height = struct.unpack(">II", data[16:24])
        expect(width >= min_width and height >= min_height, f"{name}-{palette}.png is {width} by {height}")
        contents.add(data)
    expect(len(contents) == 2, f"{name} looks the same in light and dark")


def check_screenshots(gallery, pages, dialogs):
    with tempfile.TemporaryDirectory() as folder:
        sample = pathlib.Path(folder, "sample")
        sample.mkdir()
        make_tree(os.fsencode(sample))
        pictures = pathlib.Path(folder, "pictures")
        result = run(gallery, "--folder", sample, "--screenshots", pictures)
        expect(result.returncode == 0, f"The screenshots failed with exit code {result.returncode}: {result.stderr}")
        expect(result.stderr == b"", f"The gallery printed errors: {result.stderr}")
        for page in pages:
            check_pictures(pictures, page, 800, 500)
        for dialog in dialogs:
            check_pictures(pictures, dialog, 100, 60)
        expected = {f"{name}-{palette}.png" for name in (*pages, *dialogs) for palette in ("light", "dark")}
        expect({file.name for file in pictures.iterdir()} == expected, "The set of screenshots is not as expected")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("gallery")
    parser.add_argument("--pages", nargs="+", required=True)
    parser.add_argument("--dialogs", nargs="+", required=True)
    arguments = parser.parse_args()
    check_report(arguments.gallery)
    check_missing_folder(arguments.gallery)
    check_screenshots(arguments.gallery, arguments.pages, arguments.dialogs)


main()
