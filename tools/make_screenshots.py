#!/usr/bin/env python3
"""Takes the pictures of every window and preferences page, in both languages.

Usage: make_screenshots.py ZELMORA ICON FOLDER [SERIES]...
"""

import os
import plistlib
import sys
import tempfile

from virtual_desktop import VirtualDesktop, wait_until, write_png

# The pages of the preferences, by the letter that chooses each.
PAGES = {"f": "files", "t": "text", "d": "declarations", "n": "names", "b": "backup"}

# The same fonts on every machine.
FONTS = """<?xml version="1.0"?>
<!DOCTYPE fontconfig SYSTEM "fonts.dtd">
<fontconfig>
 <match target="pattern">
  <edit name="family" mode="prepend" binding="strong">
   <string>DejaVu Sans</string><string>VL PGothic</string>
  </edit>
 </match>
</fontconfig>
"""

# Qt itself reads the colours of this desktop's settings.
DARK_DESKTOP = {"QT_QPA_PLATFORMTHEME": "kde", "KDE_SESSION_VERSION": "5"}
DARK_COLORS = """
[Icons]
Theme=hicolor
[Colors:Window]
BackgroundNormal=42,46,50
ForegroundNormal=252,252,252
[Colors:Button]
BackgroundNormal=49,54,59
ForegroundNormal=252,252,252
[Colors:View]
BackgroundNormal=27,30,32
BackgroundAlternate=35,38,41
ForegroundNormal=252,252,252
ForegroundLink=29,153,243
ForegroundVisited=155,89,182
[Colors:Selection]
BackgroundNormal=61,174,233
ForegroundNormal=252,252,252
[Colors:Tooltip]
BackgroundNormal=49,54,59
ForegroundNormal=252,252,252
"""


class Studio(VirtualDesktop):
    """A desktop on which Zelmora is photographed in one language and look."""

    def __init__(self, zelmora, icon, environment):
        scale = int(environment.get("QT_SCALE_FACTOR", 1))
        # The folder is seen in the pictures: one of the same name each time.
        super().__init__(1024 * scale, 768 * scale,
                         folder=os.path.join(tempfile.gettempdir(), "hanako"))
        self._zelmora = zelmora
        self._icon = icon
        self._environment = environment

    def __enter__(self):
        super().__enter__()
        self.write(".config/fontconfig/fonts.conf", FONTS)
        self.write(".config/kdeglobals", DARK_COLORS)
        with open(self._icon, "rb") as icon:
            self.write(".local/share/icons/hicolor/scalable/apps/" + os.path.basename(self._icon),
                       icon.read())
        return self

    def write(self, name, contents):
        """Makes a file in the user's home folder."""
        path = os.path.join(self.home, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            file.write(contents if isinstance(contents, bytes) else contents.encode())

    def launch(self, *paths, **settings):
        """Starts Zelmora with these settings saved; answers the first window to appear."""
        self.write(".config/zelmora/zelmora.plist",
                   plistlib.dumps({"displayManualAlert": True, **settings}))
        self.program = self.start([self._zelmora, *paths], environment=self._environment)
        return next(iter(wait_until(self.windows, "a window")))

    def quit(self):
        self.program.kill()
        self.program.wait()
        wait_until(lambda: not self.windows(), "the windows to go")

    def open(self, combination):
        """Presses the keys; answers the window that they open."""
        known = self.windows()
        self.key(combination)
        return self.wait_for_window(but=known)

    def close(self, window):
        self.key("Escape")
        self.wait_for_closing(window)
        self.wait_for_window()


def take_windows(studio, save):
    """Everything that a user can open."""
    main = studio.launch(displayManualAlert=False)
    save("manual", studio.still_picture(studio.wait_for_window(but=[main])))
    studio.quit()

    for name in ("Letters/spring.txt", "日記/一月.txt", "site/index.html", "memo.txt"):
        studio.write(name, "手紙\n")
    main = studio.launch()
    studio.wait_for_window()
    save("main", studio.still_picture(main))

    studio.key("alt+h")
    studio.wait_for_menu()
    studio.key("Up")  # to its last item
    about = studio.open("Return")
    save("about", studio.still_picture(about))
    studio.close(about)

    panel = studio.open("ctrl+o")
    studio.key("Down")
    save("open", studio.still_picture(panel))
    studio.close(panel)

    take_preferences(studio, save)
    studio.key("alt+f")
    save("menu", studio.still_picture(main))
    studio.quit()


def take_preferences(studio, save):
    """Every page of the preferences, opened from the main window."""
    preferences = studio.open("ctrl+comma")
    for letter, page in PAGES.items():
        studio.key(f"alt+{letter}")
        save(f"preferences-{page}", studio.still_picture(preferences))
    studio.close(preferences)


def take_work(studio, save):
    """The windows of a batch: the backup, the conversion, and what went wrong."""
    text = "いろはにほへと ちりぬるを わかよたれそ つねならむ\r\n".encode("cp932")
    for number in range(1, 21):
        # The conversion shall stay at a file in the middle.
        studio.write(f"letters/{number:02}.txt", text * (6_000_000 if number == 9 else 1))
    main = studio.launch(os.path.join(studio.home, "letters"))
    backup = studio.wait_for_window(but=[main])
    save("backup", studio.picture(backup))
    progress = studio.wait_for_window(but=[main, backup])
    save("progress", studio.still_picture(progress))
    studio.quit()

    for name in ("diary/04-01.txt", "diary/04-02.txt"):  # no files, but pipes
        os.makedirs(os.path.dirname(os.path.join(studio.home, name)), exist_ok=True)
        os.mkfifo(os.path.join(studio.home, name))
    main = studio.launch(os.path.join(studio.home, "diary"), autoBackup=False)
    alert = studio.wait_for_window("Zelmora", but=[main])  # the progress window is called otherwise
    wait_until(lambda: list(studio.windows()) == [main, alert], "the end of the batch")
    save("alert", studio.still_picture(alert))
    studio.quit()


# What is taken in which look, by the end of the pictures' names.
SERIES = {
    "en": ({"LC_ALL": "C"}, (take_windows, take_work)),
    "ja": ({"LC_ALL": "ja_JP.UTF-8"}, (take_windows, take_work)),
    "dark-en": ({"LC_ALL": "C", **DARK_DESKTOP}, (take_windows,)),
    "double-ja": ({"LC_ALL": "ja_JP.UTF-8", "QT_SCALE_FACTOR": "2"}, (take_windows,)),
}


def main():
    zelmora, icon, folder = (os.path.abspath(argument) for argument in sys.argv[1:4])
    os.makedirs(folder, exist_ok=True)
    for suffix, (environment, scenes) in SERIES.items():
        if len(sys.argv) > 4 and suffix not in sys.argv[4:]:
            continue

        def save(name, picture):
            write_png(f"{folder}/{name}-{suffix}.png", *picture)
        for take in scenes:
            with Studio(zelmora, icon, environment) as studio:
                take(studio, save)


main()
