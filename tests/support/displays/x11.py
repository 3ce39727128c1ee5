"""Runs a command on a private X server with two screens and a window manager, and exits with the command's exit code.

The command has no access to the user's display, session or session bus.
"""

import argparse
import ctypes
import os
import select
import signal
import subprocess
import sys
import tempfile
import time

# Sizes of the screens in pixels, from left to right. The sizes differ, so that a test cannot confuse the screens.
SCREENS = ((1280, 1024), (1024, 768))
OUTPUT = "screen"  # the only RandR output of Xvfb

# The longest time in seconds that this script waits for a program to start, reply or exit. The limit is high because
# Xvfb starts slowly while the machine runs other tests under sanitizers.
TIMEOUT = 60

# Environment variables of the user's desktop session that would change the behaviour of Qt. This script removes them.
SESSION_VARIABLES = ("DBUS_STARTER_ADDRESS", "DESKTOP_SESSION", "KDE_FULL_SESSION", "QT_IM_MODULE",
                     "QT_QPA_PLATFORMTHEME", "QT_STYLE_OVERRIDE", "SESSION_MANAGER", "WAYLAND_DISPLAY", "XAUTHORITY",
                     "XDG_CURRENT_DESKTOP", "XMODIFIERS")

# With these settings, the window manager gives the focus to each new window and keeps the window at the position that
# its program requests.
WINDOW_MANAGER_SETTINGS = """<?xml version="1.0"?>
<openbox_config xmlns="http://openbox.org/3.4/rc">
  <focus><focusNew>yes</focusNew><followMouse>no</followMouse></focus>
  <placement><policy>Smart</policy></placement>
  <theme><name>Clearlooks</name></theme>
  <desktops><number>1</number></desktops>
</openbox_config>
"""


def die_with_parent():
    """Makes the kernel kill the calling process when this script exits. Used as preexec_fn of child processes."""
    set_parent_death_signal = 1
    ctypes.CDLL(None).prctl(set_parent_death_signal, signal.SIGKILL)


class Child:
    """A background program that is terminated at the end of a with block. If the program fails, its output is shown."""

    def __init__(self, command, log, environment, pass_fds=()):
        self.name = command[0]
        self.log = log
        with open(log, "wb") as output:
            self.process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=output, stderr=output,
                                            env=environment, pass_fds=pass_fds, preexec_fn=die_with_parent)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.terminate()
        try:
            self.process.wait(TIMEOUT)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()

    def fail(self, message):
        with open(self.log, encoding="utf-8", errors="replace") as file:
            sys.exit(f"{self.name} {message}\n{file.read()}")

    def check(self):
        if self.process.poll() is not None:
            self.fail(f"exited with {self.process.returncode}")


def run_tool(command, environment):
    """Runs a command-line tool that connects to the X server, and returns the output of the tool."""
    result = subprocess.run(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                            env=environment, timeout=TIMEOUT, encoding="utf-8", errors="replace")
    if result.returncode != 0:
        sys.exit(f"{command} exited with {result.returncode}\n{result.stdout}")
    return result.stdout


def start_server(folder, environment):
    """Starts the X server on a free display. Returns the server and the name of the display."""
    read_end, write_end = os.pipe()
    width = sum(width for width, _ in SCREENS)
    height = max(height for _, height in SCREENS)
    command = ["Xvfb", "-displayfd", str(write_end), "-nolisten", "tcp", "-dpi", "96", "-noreset",
               "-screen", "0", f"{width}x{height}x24"]
    server = Child(command, os.path.join(folder, "server.log"), environment, (write_end,))
    os.close(write_end)
    display = b""
    end = time.monotonic() + TIMEOUT
    with open(read_end, "rb", buffering=0) as pipe:
        while not display.endswith(b"\n"):
            if not select.select([pipe], [], [], max(0, end - time.monotonic()))[0]:
                server.fail(f"is not ready after {TIMEOUT} seconds")
            data = pipe.read(64)
            if not data:
                server.process.wait(TIMEOUT)
                server.fail(f"exited with {server.process.returncode}")
            display += data
    return server, ":" + display.decode().strip()


def divide_screen(environment):
    """Divides the only screen of the X server into monitors with the sizes SCREENS.

    If Xvfb had several screens instead, Qt would place all of them at the same position."""
    left = 0
    for number, (width, height) in enumerate(SCREENS):
        millimetres = [round(pixels / 96 * 25.4) for pixels in (width, height)]
        run_tool(["xrandr", "--setmonitor", f"part{number}",
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
    """Waits until the window manager is ready. It is ready when the root window has the two properties below."""
    end = time.monotonic() + TIMEOUT
    while time.monotonic() < end:
        output = run_tool(["xprop", "-root", "_NET_SUPPORTING_WM_CHECK", "_NET_CLIENT_LIST"], environment)
        if output.count("window id") == 2:
            return
        try:
            manager.process.wait(0.02)
        except subprocess.TimeoutExpired:
            continue
        manager.check()
    manager.fail(f"does not manage the screen after {TIMEOUT} seconds")


def run(command):
    with tempfile.TemporaryDirectory() as folder:
        common = {name: value for name, value in os.environ.items() if name not in SESSION_VARIABLES}
        common["DBUS_SESSION_BUS_ADDRESS"] = "disabled:"
        own = {name: folder for name in ("HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME",
                                         "XDG_RUNTIME_DIR", "XDG_CONFIG_DIRS")}
        server, display = start_server(folder, {**common, **own})
        with server:
            common["DISPLAY"] = display
            divide_screen({**common, **own})
            with start_window_manager(folder, {**common, **own}) as manager:
                wait_for_window_manager(manager, {**common, **own})
                # With RandR, Qt 5 finds only the single output of Xvfb. Without RandR, Qt 5 uses Xinerama and finds
                # both screens.
                environment = {**common, "QT_QPA_PLATFORM": "xcb", "QT_XCB_NO_XRANDR": "1",
                               "QT_XCB_GL_INTEGRATION": "none", "ZQTUTIL_TEST_SCREENS": str(len(SCREENS))}
                with subprocess.Popen(command, env=environment, preexec_fn=die_with_parent) as process:
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
    # Raise an exception on SIGTERM. Python then leaves the "with" blocks of run(). These blocks terminate the started
    # programs and remove the temporary folder. The default action of SIGTERM would skip this clean-up.
    signal.signal(signal.SIGTERM, lambda number, _: sys.exit(128 + number))
    sys.exit(run(arguments.command))


main()
