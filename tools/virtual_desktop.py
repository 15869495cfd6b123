"""A desktop without a screen: an X server of its own, a window manager, a mouse and a keyboard.

Programs started on it run for a user of its own, whose home folder is empty. What happens on it
is waited for, never slept for: every wait_... polls until its deadline and fails with what it
waited for.
"""

import os
import shutil
import struct
import subprocess
import tempfile
import time
import zlib

from Xlib import X, XK, display, error
from Xlib.ext import xtest

DEADLINE = 240  # seconds; generous, for the machine may be busy with other things
PAUSE = 0.02  # seconds between two looks

MODIFIERS = {"ctrl": XK.XK_Control_L, "alt": XK.XK_Alt_L, "shift": XK.XK_Shift_L}


def wait_until(check, what):
    """The first true answer of check(); fails after DEADLINE seconds without one.

    `what` names what is waited for, or is a function that does so when the wait was in vain.
    """
    end = time.monotonic() + DEADLINE
    while time.monotonic() < end:
        answer = check()
        if answer:
            return answer
        time.sleep(PAUSE)
    name = what() if callable(what) else what
    raise AssertionError(f"waited {DEADLINE} s in vain for {name}")


def write_png(path, width, height, bgrx):
    """Writes the pixels as an RGB picture; `bgrx` has four bytes for each, row by row."""
    rgb = bytearray(width * height * 3)
    for channel in range(3):
        rgb[channel::3] = bgrx[2 - channel::4]
    stride = width * 3
    rows = b"".join(b"\0" + rgb[y * stride:(y + 1) * stride] for y in range(height))

    def chunk(kind, contents):
        return (struct.pack(">I", len(contents)) + kind + contents
                + struct.pack(">I", zlib.crc32(kind + contents)))

    header = struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)
    with open(path, "wb") as file:
        file.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header)
                   + chunk(b"IDAT", zlib.compress(rows, 9)) + chunk(b"IEND", b""))


class VirtualDesktop:
    """A context manager; at its end every program started on the desktop is gone."""

    def __init__(self, width=1024, height=768, folder=None):
        """`folder` is a new one to live in; without it one of a name nobody has is taken."""
        self.top = folder or tempfile.mkdtemp(prefix="zelmora-desktop-")
        os.makedirs(self.top, exist_ok=folder is None)
        self.home = self.folder("home")
        self._size = f"{width}x{height}x24"
        self._server = None
        self._processes = []

    def __enter__(self):
        try:
            name = self._start_server()
            self.environment = {
                "DISPLAY": name, "HOME": self.home, "PATH": "/usr/bin:/bin", "LC_ALL": "C",
                "XDG_CONFIG_HOME": self.folder("home/.config"),
                "XDG_DATA_HOME": self.folder("home/.local/share"),
                "XDG_STATE_HOME": self.folder("home/.local/state"),
                "XDG_CACHE_HOME": self.folder("home/.cache"),
                "XDG_RUNTIME_DIR": self.folder("run"),
                # No session bus: what runs on the real one is not to be talked to.
                "DBUS_SESSION_BUS_ADDRESS": "disabled:",
                **{key: value for key, value in os.environ.items() if key.endswith("SAN_OPTIONS")},
            }
            self._display = display.Display(name)
            self._root = self._display.screen().root
            # It forgets a window that is opened while it starts; wait for the very end of that.
            ready = os.path.join(self.top, "ready")
            self.start(["openbox", "--startup", f"touch {ready}"],
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            wait_until(lambda: os.path.exists(ready), "the window manager")
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        for process in reversed(self._processes):
            process.kill()
            process.wait()
        if self._server:
            self._server.terminate()  # not killed: it has files outside the folder to remove
            self._server.wait()
        shutil.rmtree(self.top)

    def folder(self, name):
        """The folder of that name under the desktop's own, made when it is not there."""
        path = os.path.join(self.top, name)
        os.makedirs(path, mode=0o700, exist_ok=True)
        return path

    def _start_server(self):
        """Answers the display's name, which the server chooses among the free ones."""
        reading, writing = os.pipe()
        self._server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(writing), "-screen", "0", self._size, "-dpi", "96",
             "-nolisten", "tcp", "-noreset"],
            pass_fds=[writing], stdin=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(writing)
        with os.fdopen(reading) as number:
            return ":" + number.readline().strip()

    def start(self, command, **options):
        process = subprocess.Popen(command, stdin=subprocess.DEVNULL, cwd=self.home,
                                   env={**self.environment, **options.pop("environment", {})},
                                   **options)
        self._processes.append(process)
        return process

    # Windows.

    def _property(self, window, name):
        found = window.get_full_property(self._display.get_atom(name), X.AnyPropertyType)
        return found.value if found else None

    def windows(self):
        """The titles of the windows that are open, by window, in the order they were opened."""
        titles = {}
        for number in self._property(self._root, "_NET_CLIENT_LIST") or ():
            window = self._display.create_resource_object("window", number)
            try:
                titles[window] = (self._property(window, "_NET_WM_NAME") or b"").decode()
            except error.BadWindow:
                pass  # closed since
        return titles

    def wait_for_window(self, title=None, but=()):
        """The open window of that title, or any, that is none of `but`; once it has the focus."""
        def find():
            active = self._property(self._root, "_NET_ACTIVE_WINDOW")
            for window, its_title in self.windows().items():
                if window not in but and title in (None, its_title):
                    return window if active and active[0] == window.id else None
            return None
        return wait_until(find, lambda: f"{title!r}; open are {list(self.windows().values())}")

    def wait_for_closing(self, window):
        wait_until(lambda: window not in self.windows(), "a window to close")

    def wait_for_menu(self):
        """The open menu (or list of choices): a window that the window manager does not touch."""
        def find():
            for window in self._root.query_tree().children:
                try:
                    attributes = window.get_attributes()
                    if (attributes.override_redirect and attributes.map_state == X.IsViewable
                            and self._property(window, "_NET_WM_WINDOW_TYPE")):
                        return window
                except error.BadWindow:
                    pass
            return None
        return wait_until(find, "a menu")

    def area(self, window, with_frame=False):
        """Where the window is on the screen: x, y, width, height."""
        if with_frame:
            while (parent := window.query_tree().parent) != self._root:
                window = parent
        size = window.get_geometry()
        corner = self._root.translate_coords(window, 0, 0)
        return corner.x, corner.y, size.width, size.height

    # The mouse and the keyboard.

    def _fake(self, *event, **details):
        xtest.fake_input(self._display, *event, **details)
        self._display.sync()

    def move_mouse(self, window, x, y):
        """To a place in the window; a negative one counts from its right or lower edge."""
        left, top, width, height = self.area(window)
        self._fake(X.MotionNotify, x=left + x % width, y=top + y % height)

    def press_button(self):
        self._fake(X.ButtonPress, 1)

    def release_button(self):
        self._fake(X.ButtonRelease, 1)

    def click(self, window, x, y):
        self.move_mouse(window, x, y)
        self.press_button()
        self.release_button()

    def key(self, combination):
        """Presses and releases keys held together, as "ctrl+o"."""
        *modifiers, last = combination.split("+")
        symbols = [MODIFIERS[name] for name in modifiers] + [XK.string_to_keysym(last)]
        codes = [self._display.keysym_to_keycode(symbol) for symbol in symbols]
        for code in codes:
            self._fake(X.KeyPress, code)
        for code in reversed(codes):
            self._fake(X.KeyRelease, code)

    # Pictures.

    def picture(self, window):
        """What the screen shows of the window and its frame: width, height, pixels."""
        x, y, width, height = self.area(window, with_frame=True)
        image = self._root.get_image(x, y, width, height, X.ZPixmap, 0xFFFFFFFF)
        return width, height, image.data

    def still_picture(self, window):
        """The picture, once the window has been drawn and shows nothing new."""
        pictures = [None]

        def is_still():
            time.sleep(0.3)
            pictures.append(self.picture(window))
            pixels = memoryview(pictures[-1][2]).cast("I")
            return pictures[-1] == pictures[-2] and len(set(pixels)) > 8
        wait_until(is_still, "a window to stand still")
        return pictures[-1]
