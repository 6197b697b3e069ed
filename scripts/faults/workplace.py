"""Where faults are made: a temporary folder with photos, libraries and the program, and what must hold of them."""
import collections
import contextlib
import hashlib
import json
import os
import pathlib
import random
import shutil
import signal
import statistics
import subprocess
import tempfile
import time

import contents

TREE = pathlib.Path(__file__).resolve().parents[2]
FIXTURES = TREE / "tests/data/metadata"
LONGEST = 120  # seconds, of any command

Ended = collections.namedtuple("Ended", "out err code")


class Fault(Exception):
    """Something that must hold did not."""


def expect(holds, what):
    if not holds:
        raise Fault(what)


def expect_told(ended, all_done, words):
    """A command that was disturbed says so unless all is done, and why."""
    expect(all_done or ended.code, f"not all is done, and it ended well: {ended.out[-300:]} {ended.err[-300:]}")
    expect(not ended.code or any(word in ended.err for word in words), f"the reason is not told: {ended.err[-300:]}")


class Workplace:
    """A folder that ends with the fault; everything the program keeps lies in it."""

    def __init__(self, program, spoils=False):
        self.build = program.parents[1]
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="korvo-faults-"))
        self.library = self.folder / "Library"
        self.mounted, self.running = [], []
        self.program = shutil.copy2(program, self.folder / "korvo")  # a build that goes on must not change it
        self.spoils, self.seen, self.unseen = spoils, set(), set()  # of the values that were spoiled

    def __enter__(self):
        return self

    def __exit__(self, *_):
        for process in self.running:
            if process.poll() is None:
                os.killpg(process.pid, signal.SIGKILL)
                process.wait()
        for place in reversed(self.mounted):
            subprocess.run(["umount", "-l", place], stderr=subprocess.DEVNULL)
        shutil.rmtree(self.folder)

    # The program

    def start(self, *arguments, library=None, env=None):
        settings = dict(os.environ, KORVO_CONFIG=str(self.folder / "config"),
                        DBUS_SYSTEM_BUS_ADDRESS="unix:path=/nowhere", **(env or {}))
        process = subprocess.Popen(
            [self.program, "--json", "--library", library or self.library, *arguments], env=settings,
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, start_new_session=True)
        self.running = [other for other in self.running if other.poll() is None] + [process]
        return process

    def finish(self, process, codes=(0,)):
        """What it says, after it ended with one of these codes."""
        name = "korvo " + " ".join(map(str, process.args[4:6]))
        try:
            out, err = (text.decode(errors="replace") for text in process.communicate(timeout=LONGEST))
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            raise Fault(f"{name} hangs") from None
        expect(process.returncode in codes, f"{name} ended with {process.returncode}: {err.strip()[-300:]}")
        return Ended(out, err, process.returncode)

    def run(self, *arguments, codes=(0,), **more):
        return self.finish(self.start(*arguments, **more), codes)

    def disturb(self, *arguments):
        """Runs what may fail, but not crash."""
        return self.run(*arguments, codes=(0, 1, 3))

    def kill(self, longest, *arguments, earliest=0, whole_group=False):
        """Kills the program at a random moment, alone or with its helpers. Returns whether it was still running."""
        process = self.start(*arguments)
        time.sleep(random.uniform(earliest, longest))
        (os.killpg if whole_group else os.kill)(process.pid, signal.SIGKILL)
        ended = self.finish(process, codes=(0, -signal.SIGKILL))
        patience = time.monotonic() + LONGEST
        with contextlib.suppress(ProcessLookupError):
            while True:  # a helper that outlives it ends by itself
                os.killpg(process.pid, 0)
                expect(time.monotonic() < patience, "a helper outlives the program")
                time.sleep(0.005)
        return ended.code != 0

    def disturb_by(self, disturbance, longest, *arguments):
        """Runs what may fail, but not crash, disturbed at a random moment; and whether it was still running."""
        process = self.start(*arguments)
        time.sleep(random.uniform(0, longest))
        was_running = process.poll() is None
        disturbance()
        return self.finish(process, codes=(0, 1, 3)), was_running

    def seconds(self, prepare, *arguments):
        """How long it takes after `prepare`: the median of three."""
        taken = []
        for _ in range(3):
            prepare()
            begun = time.monotonic()
            self.run(*arguments)
            taken.append(time.monotonic() - begun)
        return statistics.median(taken)

    # The library

    def forget_library(self):
        shutil.rmtree(self.library, ignore_errors=True)

    def create_anew(self):
        self.forget_library()
        self.run("create", self.library)

    def is_there(self):
        return (self.library / "catalog.sqlite").exists()

    def content(self, but=()):
        with contents.opened(self.library) as database:
            return contents.content(database, but)

    def expect_as(self, wanted, but=()):
        """The library holds what `content` once gave, but for these columns."""
        with contents.opened(self.library) as database:
            found = contents.content(database, but)
            expect(found == wanted, "not what an undisturbed run leaves: " + contents.difference(found, wanted))
            for what in contents.spoiled(database) if self.spoils else ():
                is_seen = contents.content(database, but) != wanted
                if what not in but:
                    (self.seen if is_seen else self.unseen).add(what)

    def photos(self):
        """The rows of all photos, by their paths."""
        return {row["path"]: row for row in self.content()["photos"]}

    def query(self, sql):
        with contents.opened(self.library) as database:
            return database.execute(sql).fetchall()

    def count(self, sql):
        return self.query(sql)[0][0]

    def expect_sound(self):
        """What must hold of a library at any time: the program's own check, and SQLite's."""
        out = self.run("check").out
        expect(json.loads(out.splitlines()[-1]).get("problems") in ([], 0, None), "korvo check: " + out)
        said = self.query("PRAGMA integrity_check")
        expect(said == [("ok",)], f"integrity_check: {said}")
        expect(not self.query("PRAGMA foreign_key_check"), "foreign keys")

    # Files

    def make_photos(self, name, count, padding=0):
        """Photos with camera facts and texts, told apart by random bytes behind their pictures."""
        folder = self.folder / name
        kinds = [(FIXTURES / file).read_bytes()
                 for file in ("all-sources.jpg", "iptc-utf8.jpg", "camera.jpg", "languages.jpg", "plain.jpg")]
        for number in range(count):
            file = folder / f"{number // 500:03}" / f"IMG_{number:05}.JPG"
            file.parent.mkdir(parents=True, exist_ok=True)
            file.write_bytes(kinds[number % len(kinds)] + random.randbytes(padding))
        return folder

    def make_bundle(self, folder, masters):
        """An Aperture library."""
        subprocess.run([self.build / "tests/aperture/make_bundle", folder, str(masters)], check=True)


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
