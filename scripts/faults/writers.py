"""Several processes on one library."""
import contextlib
import random
import shutil
import sqlite3
import threading
import time

from workplace import expect, hashes

LEAST = 8  # seconds that two rate


class Rater(threading.Thread):
    """Rates some of the same photos again and again, and keeps what was last said to be stored of each, and when."""

    def __init__(self, work, photos, seed):
        super().__init__(daemon=True)
        self.work, self.photos, self.random = work, photos, random.Random(seed)
        self.done, self.told, self.fault, self.count = threading.Event(), {}, None, 0

    def run(self):
        try:
            while not self.done.is_set():
                stars, some = self.random.randint(1, 5), self.random.sample(self.photos, 10)
                begun = time.monotonic()
                self.work.run("rate", str(stars), *map(str, some))
                self.told.update({photo: (stars, begun, time.monotonic()) for photo in some})
                self.count += 1
        except Exception as error:  # it belongs to the round
            self.fault = error

    def stop(self):
        self.done.set()
        self.join()
        if self.fault:
            raise self.fault


def may_stand(one, other):
    """Which ratings a photo may have that both were told are stored: those that none was begun after."""
    both = [told for told in (one, other) if told]
    return {stars for stars, _, end in both if not any(begun > end for _, begun, _ in both)} or {0}


@contextlib.contextmanager
def two_writers(work):
    """two raters of the same 40 photos, for 8 s and longer while two adds of 6,000, a save and an import run beside"""
    photos = work.make_photos("photos", 12000)
    halves = [[photos / f"{number:03}" for number in numbers] for numbers in (range(12), range(12, 24))]
    originals = work.make_photos("originals", 40, padding=20_000)
    card = work.make_photos("card", 60, padding=300_000)
    own, copies = work.folder / "own", work.folder / "Imported"
    aside = ("photos.rating", "photos.mtime")  # which rating stands is looked at by itself
    calls = [("add", *half) for half in halves] + [("save",), ("import", card, "--copy-to", copies)]

    def prepare():
        work.create_anew()
        for folder in (own, copies):
            shutil.rmtree(folder, ignore_errors=True)
        shutil.copytree(originals, own)
        work.run("add", own)
        work.run("set", "--title", "Bridge", "--source", "all")

    prepare()
    for call in calls:
        work.run(*call)
    reference = work.content(aside)

    def once():
        prepare()
        ids = [row[0] for row in work.query("SELECT id FROM photos ORDER BY id")]
        raters = [Rater(work, ids, random.random()) for _ in range(2)]
        end = time.monotonic() + LEAST
        beside = [work.start(*call) for call in calls]
        for rater in raters:
            rater.start()
        for process in beside:
            work.finish(process)
        time.sleep(max(0, end - time.monotonic()))
        for rater in raters:
            rater.stop()
        work.expect_sound()
        for photo, rating in work.query("SELECT id, rating FROM photos"):
            stand = may_stand(*(rater.told.get(photo) for rater in raters))
            expect(rating in stand, f"photo {photo} has {rating} stars and not {stand}")
        expect(all(b"Bridge" in file.read_bytes() for file in own.rglob("*.JPG")), "a file was not saved")
        expect(sorted(hashes(copies).values()) == sorted(hashes(card).values()), "not each file was imported once")
        work.expect_as(reference, aside)
        count = sum(rater.count for rater in raters)
        return all(rater.count > 10 for rater in raters), f"{count} ratings of 10 photos each"

    yield once


@contextlib.contextmanager
def locked(work):
    """a rating while another process holds the catalog for 2 s, then for 8 s"""
    work.run("create", work.library)
    work.run("add", work.make_photos("photos", 5))

    def rate(stars, held, code):
        with contextlib.closing(sqlite3.connect(work.library / "catalog.sqlite", isolation_level=None)) as other:
            other.execute("BEGIN IMMEDIATE")
            process = work.start("rate", str(stars), "1")
            work.run("list")  # readers are not kept waiting
            time.sleep(held)
            other.execute("ROLLBACK")
        return work.finish(process, (code,)).err

    def once():
        rate(4, 2, 0)
        expect(work.count("SELECT rating FROM photos WHERE id = 1") == 4, "the rating was lost")
        said = rate(2, 8, 1)
        expect("writing" in said, f"the reason is not told: {said}")
        expect(work.count("SELECT rating FROM photos WHERE id = 1") == 4, "a refused rating was stored")
        work.expect_sound()
        return True, "waited 2 s and stored; refused after 5 s: " + " ".join(said.split())

    yield once
