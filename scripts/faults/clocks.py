"""A clock that jumps. Needs Debian's libfaketime."""
import glob
import itertools
import json
import os
import random
import shutil
import threading

from workplace import expect, hashes

DATES = ("1970-01-01 00:00:10", "2001-09-09 01:46:40", "2024-02-29 23:59:59", "2038-01-19 03:14:07",
         "2026-03-29 01:59:59", "2100-12-31 23:59:59")


class JumpingClock(threading.Thread):
    """Sets the clock of programs started with `env` to another date every few milliseconds."""

    def __init__(self, file):
        super().__init__(daemon=True)
        libraries = glob.glob("/usr/lib/*/faketime/libfaketimeMT.so.1")
        expect(libraries, "libfaketime is missing: apt-get install faketime")
        self.file, self.stopped, self.jumps = file, threading.Event(), 0
        self.env = {"LD_PRELOAD": libraries[0], "FAKETIME_TIMESTAMP_FILE": str(file), "FAKETIME_NO_CACHE": "1",
                    "FAKETIME_DONT_FAKE_MONOTONIC": "1", "NO_FAKE_STAT": "1"}
        self.jump()

    def jump(self):
        beside = self.file.with_suffix(".new")
        beside.write_text("@" + random.choice(DATES))
        os.replace(beside, self.file)
        self.jumps += 1

    def run(self):
        while not self.stopped.wait(0.005):
            self.jump()


def jumping_clock(work, rounds):
    """add of 3,000 photos, save and import of 40 while the clock jumps between 1970 and 2100"""
    photos = work.make_photos("photos", 3000)
    card = work.make_photos("card", 40, padding=100_000)
    work.run("create", work.library)
    work.run("add", photos)
    reference = work.photos()
    copies = work.folder / "Imported"

    def once():
        work.forget_library()
        shutil.rmtree(copies, ignore_errors=True)
        clock = JumpingClock(work.folder / "clock")
        clock.start()
        try:
            work.run("create", work.library, env=clock.env)
            work.run("import", card, "--copy-to", copies, env=clock.env)
            work.run("set", "--title", "Bridge", "--source", "all", env=clock.env)
            work.run("save", env=clock.env)
            work.run("add", photos, env=clock.env)
        finally:
            clock.stopped.set()
        expect([row for row in work.photos() if "/photos/" in row["path"]] == reference, "not what a steady clock stores")
        expect(sorted(hashes(copies)) == sorted(f"{file.name}" for file in card.rglob("*.JPG")), "not all were imported")
        expect(all(b"Bridge" in file.read_bytes() for file in copies.iterdir()), "not all were saved")
        expect(json.loads(work.run("tree")[0])["totals"]["dirty"] == 0, "some still wait")
        work.expect_sound()
        return clock.jumps > 1, f"{clock.jumps} jumps"

    yield from itertools.repeat(once, min(rounds, 5))
