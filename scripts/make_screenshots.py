#!/usr/bin/env python3
"""Makes the pictures of the window in docs/images, on an X server of its own. Wants a built build/release, Xvfb, xdotool."""

import os
import shutil
import struct
import subprocess
import tempfile
import time
import zlib
from pathlib import Path

TREE = Path(__file__).resolve().parent.parent
PROGRAM = TREE / "build/release/bin/orvosky"
WIDTH, HEIGHT = 1280, 760


def png(dump: bytes) -> bytes:
    """The picture of an X window dump of 32 bits a pixel, as PNG."""
    head = struct.unpack(">25I", dump[:100])
    size, width, height, line, colours = head[0], head[4], head[5], head[12], head[19]
    pixels = dump[size + 12 * colours:]
    rows = []
    for y in range(height):
        row = pixels[y * line:y * line + width * 4]
        rgb = bytearray(width * 3)
        rgb[0::3], rgb[1::3], rgb[2::3] = row[2::4], row[1::4], row[0::4]
        rows.append(b"\0" + bytes(rgb))

    def chunk(kind: bytes, data: bytes) -> bytes:
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)) +
            chunk(b"IDAT", zlib.compress(b"".join(rows), 9)) + chunk(b"IEND", b""))


class Desktop:
    def __init__(self, folder: Path):
        self.folder = folder
        read, write = os.pipe()
        self.server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write), "-screen", "0", f"{WIDTH}x{HEIGHT}x24", "-fbdir", str(folder)],
            pass_fds=[write], stderr=subprocess.DEVNULL)
        os.close(write)
        self.display = ":" + os.read(read, 16).decode().strip()
        self.env = {**os.environ, "DISPLAY": self.display, "XDG_CONFIG_HOME": str(folder / "config")}
        config = folder / "config/orvosky"
        config.mkdir(parents=True)

    def start(self, *words: str) -> None:
        self.program = subprocess.Popen([str(PROGRAM), *words], env=self.env, stdout=subprocess.DEVNULL)
        self.do("search", "--sync", "--name", "Orvo sky", "windowmove", "0", "0", "windowsize", str(WIDTH), str(HEIGHT))
        self.settle()

    def stop(self) -> None:
        self.program.kill()
        self.program.wait()

    def settle(self) -> None:
        """Waits until the program has had next to nothing to do for two seconds."""
        still, before = 0, -1.0
        for _ in range(240):
            numbers = Path(f"/proc/{self.program.pid}/stat").read_text().rsplit(")", 1)[1].split()
            spent = (int(numbers[11]) + int(numbers[12])) / os.sysconf("SC_CLK_TCK")
            still = still + 1 if spent - before < 0.05 else 0
            if still == 4:
                return
            before = spent
            time.sleep(0.5)
        raise SystemExit("The window does not come to rest.")

    def do(self, *words: str) -> None:
        subprocess.run(["xdotool", *words], env=self.env, check=True, stdout=subprocess.DEVNULL)

    def click(self, x: int, y: int) -> None:
        self.do("mousemove", str(x), str(y), "click", "1")
        self.settle()

    def drag(self, start: tuple[int, int], end: tuple[int, int]) -> None:
        self.do("mousemove", *map(str, start))
        time.sleep(0.5)
        self.do("mousedown", "1")
        for i in range(1, 9):
            self.do("mousemove", *(str(a + (b - a) * i // 8) for a, b in zip(start, end)))
            time.sleep(0.2)
        self.do("mouseup", "1")
        self.settle()

    def enter(self, x: int, y: int, text: str) -> None:
        """Types into a field of the attributes."""
        self.do("mousemove", str(x), str(y), "click", "--repeat", "3", "1")
        self.do("key", "ctrl+a")
        self.do("type", "--delay", "20", text)
        self.do("key", "Return")
        self.settle()

    def shoot(self, name: str) -> None:
        self.do("mousemove", str(WIDTH - 4), str(HEIGHT - 60))
        self.settle()
        (TREE / "docs/images" / name).write_bytes(png((self.folder / "Xvfb_screen0").read_bytes()))

    def type_mel(self, mel: str) -> None:
        self.click(200, HEIGHT - 12)
        self.do("type", "--delay", "2", mel)
        self.do("key", "Return")
        self.settle()

    def end(self) -> None:
        self.server.terminate()
        self.server.wait()


def tutorial(desktop: Desktop, folder: Path) -> None:
    """A first sky, by hand alone, as docs/tutorial.md tells it."""
    project = folder / "first_sky"
    subprocess.run([str(PROGRAM), "new", str(project)], check=True, stdout=subprocess.DEVNULL)
    desktop.start("--project", str(project), "edit")
    desktop.shoot("tutorial-window-1.png")
    desktop.click(516, 250)  # the preset "Golden hour"
    desktop.shoot("tutorial-window-2.png")
    desktop.click(452, 51)  # "Cloud Dome" of the shelf
    desktop.enter(1066, 347, "0.7")  # "Placement"
    desktop.enter(1066, 376, "1.1")  # "Scale"
    desktop.shoot("tutorial-window-3.png")
    desktop.do("mousemove", "1180", "640", "click", "--repeat", "20", "5")  # to the end of the page
    desktop.settle()
    desktop.click(1046, 631)  # "Wires"
    desktop.drag((462, 425), (560, 412))  # the sun
    desktop.shoot("tutorial-window-4.png")
    desktop.do("key", "ctrl+e")
    desktop.shoot("tutorial-window-5.png")
    desktop.stop()


def main() -> None:
    # The pictures show paths in it.
    folder = Path(tempfile.gettempdir()) / "skies"
    folder.mkdir()
    try:
        project = folder / "cumulus"
        shutil.copytree(TREE / "examples/project", project)
        desktop = Desktop(folder)
        try:
            tutorial(desktop, folder)

            desktop.start("--project", str(project), "edit")
            desktop.shoot("window-start.png")
            desktop.stop()

            desktop.start("--project", str(project), "edit", str(project / "scenes/dusk.ma"))
            desktop.type_mel("setAttr cloudDomeShape.renderWireFrame 0; select -r duskSky;")
            desktop.shoot("window-sky.png")
            desktop.do("key", "ctrl+e")
            desktop.shoot("window-export.png")
            desktop.stop()

            shutil.rmtree(project / "autosave", ignore_errors=True)
            presets = TREE / "build/release/share/orvosky/presets"
            preset = presets / "5_towering_cumulus.ma"
            (project / "build/orvosky").mkdir(parents=True, exist_ok=True)
            shutil.copy(presets / "files/cloud_sprite.dds", project / "build/orvosky")
            desktop.start("--project", str(project), "edit", str(preset))
            desktop.type_mel("setAttr towerSpritesShape.renderWireFrame 0; select -r towerSphere22;")
            desktop.click(640, 30)
            desktop.do("key", "w")
            desktop.shoot("window-cloud.png")
            desktop.stop()
        finally:
            desktop.end()
    finally:
        shutil.rmtree(folder)


if __name__ == "__main__":
    main()
