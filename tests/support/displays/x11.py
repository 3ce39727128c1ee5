"""Runs a command on an X server of its own that has two screens and a window manager, and ends as the command does. No
display, session or bus of the user is touched."""

import argparse
import ctypes
import os
import select
import signal
import subprocess
import sys
import tempfile
import time

# Side by side from the left, and of different sizes, so that one is never taken for the other.
SCREENS = ((1280, 1024), (1024, 768))
OUTPUT = "screen"  # the one that the server has

# Seconds; a machine that is busy with sanitizers starts a server slowly.
PATIENCE = 60

# What the user's own session would bring along.
FOREIGN = ("DBUS_STARTER_ADDRESS", "DESKTOP_SESSION", "KDE_FULL_SESSION", "QT_IM_MODULE", "QT_QPA_PLATFORMTHEME",
           "QT_STYLE_OVERRIDE", "SESSION_MANAGER", "WAYLAND_DISPLAY", "XAUTHORITY", "XDG_CURRENT_DESKTOP",
           "XMODIFIERS")

# New windows get the focus, and stay where their programs put them.
WINDOW_MANAGER_SETTINGS = """<?xml version="1.0"?>
<openbox_config xmlns="http://openbox.org/3.4/rc">
  <focus><focusNew>yes</focusNew><followMouse>no</followMouse></focus>
  <placement><policy>Smart</policy></placement>
  <theme><name>Clearlooks</name></theme>
  <desktops><number>1</number></desktops>
</openbox_config>
"""


def end_with_parent():
    """In a child: to be killed when the launcher is."""
    set_parent_death_signal = 1
    ctypes.CDLL(None).prctl(set_parent_death_signal, signal.SIGKILL)


class Child:
    """A program in the background, ended with the block. What it says goes into a file, shown when it fails."""

    def __init__(self, command, log, environment, pass_fds=()):
        self.name = command[0]
        self.log = log
        with open(log, "wb") as output:
            self.process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=output, stderr=output,
                                            env=environment, pass_fds=pass_fds, preexec_fn=end_with_parent)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.terminate()
        try:
            self.process.wait(PATIENCE)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()

    def fail(self, message):
        with open(self.log, encoding="utf-8", errors="replace") as file:
            sys.exit(f"{self.name} {message}\n{file.read()}")

    def check(self):
        if self.process.poll() is not None:
            self.fail(f"ended with {self.process.returncode}")


def ask(command, environment):
    """Runs one of the server's tools and returns what it says."""
    result = subprocess.run(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                            env=environment, timeout=PATIENCE, encoding="utf-8", errors="replace")
    if result.returncode != 0:
        sys.exit(f"{command} ended with {result.returncode}\n{result.stdout}")
    return result.stdout


def start_server(folder, environment):
    """Starts the server on a free display and returns it, and the display's name."""
    ready, told = os.pipe()
    width = sum(width for width, _ in SCREENS)
    height = max(height for _, height in SCREENS)
    command = ["Xvfb", "-displayfd", str(told), "-nolisten", "tcp", "-dpi", "96", "-noreset",
               "-screen", "0", f"{width}x{height}x24"]
    server = Child(command, os.path.join(folder, "server.log"), environment, (told,))
    os.close(told)
    display = b""
    end = time.monotonic() + PATIENCE
    with open(ready, "rb", buffering=0) as pipe:
        while not display.endswith(b"\n"):
            if not select.select([pipe], [], [], max(0, end - time.monotonic()))[0]:
                server.fail(f"is not ready after {PATIENCE} seconds")
            some = pipe.read(64)
            if not some:
                server.process.wait(PATIENCE)
                server.fail(f"ended with {server.process.returncode}")
            display += some
    return server, ":" + display.decode().strip()


def divide(environment):
    """Divides what the server has into the screens: the server's own screens of a desktop would lie upon each other."""
    left = 0
    for number, (width, height) in enumerate(SCREENS):
        millimetres = [round(pixels / 96 * 25.4) for pixels in (width, height)]
        ask(["xrandr", "--setmonitor", f"part{number}",
             f"{width}/{millimetres[0]}x{height}/{millimetres[1]}+{left}+0", OUTPUT if left == 0 else "none"],
            environment)
        left += width


def start_window_manager(folder, environment):
    settings = os.path.join(folder, "openbox.xml")
    with open(settings, "w", encoding="utf-8") as file:
        file.write(WINDOW_MANAGER_SETTINGS)
    return Child(["openbox", "--sm-disable", "--config-file", settings], os.path.join(folder, "openbox.log"),
                 environment)


def wait_for_window_manager(manager, environment):
    """Until the root window tells of it, and of the windows that it manages."""
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        told = ask(["xprop", "-root", "_NET_SUPPORTING_WM_CHECK", "_NET_CLIENT_LIST"], environment)
        if told.count("window id") == 2:
            return
        try:
            manager.process.wait(0.02)
        except subprocess.TimeoutExpired:
            continue
        manager.check()
    manager.fail(f"does not manage the screen after {PATIENCE} seconds")


def run(command):
    with tempfile.TemporaryDirectory() as folder:
        common = {name: value for name, value in os.environ.items() if name not in FOREIGN}
        common["DBUS_SESSION_BUS_ADDRESS"] = "disabled:"
        own = {name: folder for name in ("HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME",
                                         "XDG_RUNTIME_DIR", "XDG_CONFIG_DIRS")}
        server, display = start_server(folder, {**common, **own})
        with server:
            common["DISPLAY"] = display
            divide({**common, **own})
            with start_window_manager(folder, {**common, **own}) as manager:
                wait_for_window_manager(manager, {**common, **own})
                # Qt 5 reads outputs by RandR, of which there is one, but parts by Xinerama.
                environment = {**common, "QT_QPA_PLATFORM": "xcb", "QT_XCB_NO_XRANDR": "1",
                               "QT_XCB_GL_INTEGRATION": "none", "ZQTUTIL_TEST_SCREENS": str(len(SCREENS))}
                with subprocess.Popen(command, env=environment, preexec_fn=end_with_parent) as process:
                    try:
                        code = process.wait()
                    finally:
                        process.kill()
                server.check()
                manager.check()
    return code if code >= 0 else 128 - code


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("command", nargs="+", help="after --")
    arguments = parser.parse_args()
    # The blocks above end what they started.
    signal.signal(signal.SIGTERM, lambda number, _: sys.exit(128 + number))
    sys.exit(run(arguments.command))


main()
