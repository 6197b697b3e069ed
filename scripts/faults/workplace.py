"""Where faults are made: a temporary folder with photos, libraries and the program, and what must hold of them."""
import contextlib
import hashlib
import json
import os
import pathlib
import random
import shutil
import signal
import sqlite3
import subprocess
import tempfile
import time

TREE = pathlib.Path(__file__).resolve().parents[2]
FIXTURES = TREE / "tests/data/metadata"
NOT_COMPARED = {"added_at", "mtime", "folder_id", "project_id", "dirty", "id"}  # differ from run to run


class Fault(Exception):
    """Something that must hold did not."""


def expect(holds, what):
    if not holds:
        raise Fault(what)


class Workplace:
    """A folder that ends with the fault; everything the program keeps lies in it."""

    def __init__(self, program, parent=None):
        self.build = program.parents[1]
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="korvo-faults-", dir=parent))
        self.library = self.folder / "Library"
        self.mounted = []
        self.program = shutil.copy2(program, self.folder / "korvo")  # a build that goes on must not change it

    def __enter__(self):
        return self

    def __exit__(self, *_):
        for place in reversed(self.mounted):
            subprocess.run(["umount", "-l", place], stderr=subprocess.DEVNULL)
        shutil.rmtree(self.folder)

    # The program

    def start(self, *arguments, library=None, env=None):
        settings = dict(os.environ, KORVO_CONFIG=str(self.folder / "config"),
                        DBUS_SYSTEM_BUS_ADDRESS="unix:path=/nowhere", **(env or {}))
        return subprocess.Popen(
            [self.program, "--json", "--library", library or self.library, *arguments], env=settings,
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, start_new_session=True)

    def run(self, *arguments, codes=(0,), **more):
        """What it says, after it ended with one of these codes."""
        process = self.start(*arguments, **more)
        out, err = (text.decode(errors="replace") for text in process.communicate(timeout=300))
        expect(process.returncode in codes,
               f"korvo {' '.join(map(str, arguments[:2]))} ended with {process.returncode}: {err.strip()[-300:]}")
        return out, err

    def kill(self, longest, *arguments, earliest=0, whole_group=False):
        """Kills the program at a random moment, alone or with its helpers. Returns whether it was still running."""
        process = self.start(*arguments)
        time.sleep(random.uniform(earliest, longest))
        (os.killpg if whole_group else os.kill)(process.pid, signal.SIGKILL)
        process.communicate()
        with contextlib.suppress(ProcessLookupError):
            while True:  # a helper that outlives it ends by itself
                os.killpg(process.pid, 0)
                time.sleep(0.005)
        return process.returncode == -signal.SIGKILL

    def seconds(self, *arguments, **more):
        begun = time.monotonic()
        self.run(*arguments, **more)
        return time.monotonic() - begun

    # The library

    def forget_library(self):
        shutil.rmtree(self.library, ignore_errors=True)

    def rows(self, table="photos", library=None):
        """What a table holds, without what differs from run to run."""
        file = (library or self.library) / "catalog.sqlite"
        with contextlib.closing(sqlite3.connect(file)) as database:
            database.row_factory = sqlite3.Row
            return [{key: row[key] for key in row.keys() if key not in NOT_COMPARED}
                    for row in database.execute(f"SELECT * FROM {table} ORDER BY 1")]

    def photos(self, library=None):
        return sorted(self.rows(library=library), key=lambda row: row["path"])

    def count(self, sql):
        with contextlib.closing(sqlite3.connect(self.library / "catalog.sqlite")) as database:
            return database.execute(sql).fetchone()[0]

    def expect_sound(self, library=None):
        """What must hold of a library at any time: the program's own check, and SQLite's."""
        out, _ = self.run("check", library=library)
        expect(json.loads(out.splitlines()[-1]).get("problems") in ([], 0, None), "korvo check: " + out)
        with contextlib.closing(sqlite3.connect((library or self.library) / "catalog.sqlite")) as database:
            said = database.execute("PRAGMA integrity_check").fetchall()
            expect(said == [("ok",)], f"integrity_check: {said}")
            expect(not database.execute("PRAGMA foreign_key_check").fetchall(), "foreign keys")

    # Files

    def make_photos(self, name, count, padding=0):
        """Photos with camera facts and texts, told apart by random bytes behind their pictures."""
        folder = self.folder / name
        contents = [(FIXTURES / file).read_bytes()
                    for file in ("all-sources.jpg", "iptc-utf8.jpg", "camera.jpg", "languages.jpg", "plain.jpg")]
        for number in range(count):
            file = folder / f"{number // 500:03}" / f"IMG_{number:05}.JPG"
            file.parent.mkdir(parents=True, exist_ok=True)
            file.write_bytes(contents[number % len(contents)] + random.randbytes(padding))
        return folder

    def make_bundle(self, folder, masters):
        """An Aperture library."""
        subprocess.run([self.build / "tests/aperture/make_bundle", folder, str(masters)], check=True)

    def small_disk(self, name, size):
        """A file system in memory of so many KiB."""
        place = self.folder / name
        place.mkdir(exist_ok=True)
        subprocess.run(["mount", "-t", "tmpfs", "-o", f"size={size}k", "none", place], check=True)
        self.mounted.append(place)
        return place


def hashes(folder):
    """Every file's bytes, by its path in the folder."""
    return {str(file.relative_to(folder)): hashlib.sha256(file.read_bytes()).hexdigest()
            for file in sorted(folder.rglob("*")) if file.is_file()}


def state(folder):
    """Everything a folder holds, with times."""
    return {str(file.relative_to(folder)): (file.stat().st_mtime_ns, file.is_dir() or file.read_bytes())
            for file in sorted(folder.rglob("*"))}


def pixels(file):
    """The parts of a JPEG that make its picture: tables, frame and scan, without the segments of applications."""
    data = file.read_bytes()
    expect(data[:2] == b"\xff\xd8", f"{file.name} is no JPEG any more")
    at, kept = 2, []
    while data[at + 1] != 0xDA:
        length = 2 + int.from_bytes(data[at + 2:at + 4], "big")
        if not (0xE0 <= data[at + 1] <= 0xEF or data[at + 1] == 0xFE):
            kept.append(data[at:at + length])
        at += length
    return hashlib.sha256(b"".join(kept) + data[at:data.rindex(b"\xff\xd9") + 2]).hexdigest()
