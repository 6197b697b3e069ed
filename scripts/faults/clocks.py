"""A clock that jumps. Needs Debian's libfaketime."""
import contextlib
import glob
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


@contextlib.contextmanager
def jumping_clock(work):
    """add of 3,000 photos, save and import of 40 while the clock jumps between 1970 and 2100"""
    photos = work.make_photos("photos", 3000)
    card = work.make_photos("card", 40, padding=100_000)
    copies = work.folder / "Imported"
    steps = (("create", work.library), ("import", card, "--copy-to", copies),
             ("set", "--title", "Bridge", "--source", "all"), ("save",), ("add", photos))
    of_files = ("photos.mtime",)  # which exiftool writes, by its clock
    for step in steps:
        work.run(*step)
    reference = work.content(of_files)

    def once():
        work.forget_library()
        shutil.rmtree(copies)
        clock = JumpingClock(work.folder / "clock")
        clock.start()
        try:
            for step in steps:
                work.run(*step, env=clock.env)
        finally:
            clock.stopped.set()
        expect(sorted(hashes(copies)) == sorted(file.name for file in card.rglob("*.JPG")), "not all were imported")
        expect(all(b"Bridge" in file.read_bytes() for file in copies.iterdir()), "not all were saved")
        work.expect_sound()
        work.expect_as(reference, of_files)
        return clock.jumps > 1, f"{clock.jumps} jumps"

    yield once
