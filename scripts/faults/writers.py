"""Several processes on one library."""
import contextlib
import itertools
import sqlite3
import time

from workplace import expect


def two_writers(work, rounds):
    """two adds of 1,500 photos each, and ratings by a third process, at once"""
    photos = work.make_photos("photos", 3000)
    halves = [[photos / f"{number:03}" for number in numbers] for numbers in ((0, 1, 2), (3, 4, 5))]
    work.run("create", work.library)
    for half in halves:
        work.run("add", *half)
    reference = work.photos()
    first = work.make_photos("first", 20)

    def once():
        work.forget_library()
        work.run("create", work.library)
        work.run("add", first)
        adding = [work.start("add", *half) for half in halves]
        rated = 0
        while any(process.poll() is None for process in adding):
            work.run("rate", "5", str(1 + rated % 20))
            rated += 1
        for process in adding:
            _, err = process.communicate()
            expect(process.returncode == 0, f"an add failed beside the other: {err.decode()}")
        work.expect_sound()
        expect([row for row in work.photos() if "/first/" not in row["path"]] == reference, "not what one alone stores")
        expect(work.count("SELECT COUNT(*) FROM photos WHERE rating = 5") == min(rated, 20), "a rating was lost")
        return rated > 0, f"{rated} ratings meanwhile"

    yield from itertools.repeat(once, min(rounds, 10))


def locked(work, rounds):
    """a rating while another process holds the catalog for 2 s, then for 8 s"""
    work.run("create", work.library)
    work.run("add", work.make_photos("photos", 5))

    def rate(stars, held, codes):
        with contextlib.closing(sqlite3.connect(work.library / "catalog.sqlite", isolation_level=None)) as other:
            other.execute("BEGIN IMMEDIATE")
            process = work.start("rate", str(stars), "1")
            work.run("list")  # readers are not kept waiting
            time.sleep(held)
            other.execute("ROLLBACK")
        _, err = process.communicate()
        expect(process.returncode in codes, f"ended with {process.returncode} after {held} s: {err.decode()}")
        return err.decode()

    def once():
        rate(4, 2, (0,))
        expect(work.count("SELECT rating FROM photos WHERE id = 1") == 4, "the rating was lost")
        said = rate(2, 8, (1,))
        expect("writing" in said, f"the reason is not told: {said}")
        expect(work.count("SELECT rating FROM photos WHERE id = 1") == 4, "a refused rating was stored")
        work.expect_sound()
        return True, "waited 2 s and stored; refused after 5 s: " + " ".join(said.split())

    yield from itertools.repeat(once, min(rounds, 3))
