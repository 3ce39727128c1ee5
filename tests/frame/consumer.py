"""Installs the build into a fresh prefix, then finds, links and runs it from outside, by CMake and by pkg-config."""

import argparse
import os
import pathlib
import shlex
import subprocess
import sys
import tempfile


def run(*command, env=None):
    result = subprocess.run(command, env=env, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    if result.returncode != 0:
        sys.exit(f"{shlex.join(command)}\n{result.stdout}\nended with {result.returncode}")
    return result.stdout


def check_output(how, text):
    expected = f"{os.path.getsize('/etc/hostname')} B"
    if text.strip() != expected:
        sys.exit(f"The consumer built by {how} printed {text!r}, not {expected!r}")
    print(f"{how}: {text.strip()}")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--build-dir", required=True)
    parser.add_argument("--compiler", required=True)
    arguments = parser.parse_args()
    source = pathlib.Path(__file__).resolve().parent.parent / "consumer"

    with tempfile.TemporaryDirectory() as folder:
        prefix = pathlib.Path(folder, "with space", "prefix")
        run("cmake", "--install", arguments.build_dir, "--prefix", str(prefix))

        build = pathlib.Path(folder, "build")
        run("cmake", "-S", str(source), "-B", str(build), "-G", "Ninja", f"-DCMAKE_PREFIX_PATH={prefix}",
            f"-DCMAKE_CXX_COMPILER={arguments.compiler}")
        run("cmake", "--build", str(build))
        check_output("CMake", run(str(build / "consumer")))

        (library,) = prefix.rglob("libZQtUtil.so")
        package_folder = library.parent / "pkgconfig"
        env = dict(os.environ, PKG_CONFIG_PATH=str(package_folder))
        options = shlex.split(run("pkg-config", "--cflags", "--libs", "zqtutil", env=env))
        program = pathlib.Path(folder, "pkg-config-consumer")
        run(arguments.compiler, "-std=c++17", "-fPIC", str(source / "main.cpp"), "-o", str(program), *options,
            f"-Wl,-rpath,{library.parent}")
        check_output("pkg-config", run(str(program)))


main()
