"""Checks that applications can use the installed package.

Installs the build and moves the installation to another folder. Then builds and runs the programs of tests/consumer
against the installation: with CMake and with pkg-config, for the library and for the QML module.
"""

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
        sys.exit(f"{shlex.join(command)}\n{result.stdout}\nexit code {result.returncode}")
    return result.stdout


def check_output(how, text, expected):
    if text.strip() != expected:
        sys.exit(f"The consumer built by {how} printed {text!r}, not {expected!r}")
    print(f"{how}: {text.strip()}")


def check_library(how, program):
    check_output(how, run(str(program)), f"{os.path.getsize('/etc/hostname')} B")


def check_qml(how, program, source):
    # Remove QML2_IMPORT_PATH from the environment: the program must find the QML module through the import path of the
    # installed package.
    env = {name: value for name, value in os.environ.items() if name != "QML2_IMPORT_PATH"}
    output = run(str(program), str(source / "consumer.qml"), env={**env, "QML_DISABLE_DISK_CACHE": "1"})
    check_output(f"{how}, QML", output, "Observers register with role 261")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--build-dir", required=True)
    parser.add_argument("--compiler", required=True)
    arguments = parser.parse_args()
    source = pathlib.Path(__file__).resolve().parent.parent / "consumer"

    with tempfile.TemporaryDirectory() as folder:
        installed = pathlib.Path(folder, "installed")
        run("cmake", "--install", arguments.build_dir, "--prefix", str(installed))
        prefix = pathlib.Path(folder, "with space", "prefix")
        prefix.parent.mkdir()
        installed.rename(prefix)

        build = pathlib.Path(folder, "build")
        # Request C++14, which is too old for the headers. The build succeeds only if the installed package itself
        # requires C++17.
        run("cmake", "-S", str(source), "-B", str(build), "-G", "Ninja", f"-DCMAKE_PREFIX_PATH={prefix}",
            f"-DCMAKE_CXX_COMPILER={arguments.compiler}", "-DCMAKE_CXX_STANDARD=14")
        run("cmake", "--build", str(build))
        check_library("CMake", build / "consumer")
        check_qml("CMake", build / "qml-consumer", source)

        (library,) = prefix.rglob("libZQtUtil.so")
        package_folder = library.parent / "pkgconfig"
        env = dict(os.environ, PKG_CONFIG_PATH=str(package_folder))

        def pkg_config(*options):
            return shlex.split(run("pkg-config", *options, env=env))

        def compile_with(program, source_name, *options):
            run(arguments.compiler, "-std=c++17", "-fPIC", str(source / source_name), "-o", str(program), *options)

        program = pathlib.Path(folder, "pkg-config-consumer")
        compile_with(program, "main.cpp", *pkg_config("--cflags", "--libs", "zqtutil"),
                     f"-Wl,-rpath,{library.parent}")
        check_library("pkg-config", program)

        (translations,) = pkg_config("--variable=translationsdir", "zqtutil")
        if not pathlib.Path(translations, "zqtutil_de.qm").is_file():
            sys.exit(f"{translations} contains no zqtutil_de.qm")

        program = pathlib.Path(folder, "pkg-config-qml-consumer")
        (import_dir,) = pkg_config("--variable=qmlimportdir", "zqtutil")
        compile_with(program, "qml.cpp", f'-DQML_IMPORT_DIR="{import_dir}"',
                     *pkg_config("--cflags", "--libs", "Qt5Qml"))
        check_qml("pkg-config", program, source)


main()
