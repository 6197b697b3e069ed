"""kill -9 at random moments: what stands must be whole, and the next run must finish the job.

Each fault prepares its workplace, gives the call of one round, which returns whether the fault came before the program
was done and a note on what stood then, and looks at what concerns all rounds at the end.
"""
import collections
import contextlib
import json
import random
import shutil

from workplace import expect, hashes, pixels, state


@contextlib.contextmanager
def kill_add(work):
    """add of 3,000 photos into a new library"""
    photos = work.make_photos("photos", 3000)
    before = state(photos)
    longest = work.seconds(work.create_anew, "add", photos)
    reference, rows = work.content(), work.photos()

    def once():
        work.create_anew()
        killed = work.kill(longest, "add", photos)
        work.expect_sound()
        stored = work.photos()
        for path, row in stored.items():
            expect(row == rows[path], f"half a row: {row}")
        out = work.run("add", photos).out
        expect(json.loads(out)["added"] == 3000 - len(stored), f"added twice or not at all: {out}")
        work.expect_as(reference)
        return killed, f"{len(stored)} stored"

    yield once
    expect(state(photos) == before, "the photos were touched")


@contextlib.contextmanager
def kill_create(work):
    """create, which makes the catalog and its schema"""
    longest = work.seconds(work.forget_library, "create", work.library)
    reference = work.content()

    def once():
        work.forget_library()
        killed = work.kill(longest, "create", work.library)
        if work.is_there():
            work.run("tree")
        else:
            work.run("create", work.library)
        work.expect_sound()
        work.expect_as(reference)
        return killed, ""

    yield once


class Saving:
    """A library of described photos, and what a disturbed save may have left of them."""

    NOT_COMPARED = ("photos.mtime",)  # of files that are written again
    TEXTS = ("--title", "Bridge", "--caption", "Seen from the river", "--keywords", "bridge, night")

    def __init__(self, work, photos, count=40):
        self.work, self.photos = work, photos
        self.originals = work.make_photos("originals", count, padding=20_000)

    def prepare(self):
        self.work.create_anew()
        shutil.rmtree(self.photos, ignore_errors=True)
        shutil.copytree(self.originals, self.photos)
        self.work.run("add", self.photos)
        self.work.run("set", *self.TEXTS, "--source", "all")

    def listed(self):
        return [json.loads(line) for line in self.work.run("list").out.splitlines()]

    def check(self):
        """How many are written; none is half written or lost."""
        written = 0
        for path, dirty in self.work.query("SELECT path, dirty FROM photos"):
            file = self.photos / path.split(f"/{self.photos.name}/", 1)[1]
            original = self.originals / file.relative_to(self.photos)
            is_old = file.read_bytes() == original.read_bytes()
            expect(pixels(file) == pixels(original), f"{file.name}: the picture changed")
            expect(is_old or b"Bridge" in file.read_bytes(), f"{file.name}: neither old nor new")
            expect(not is_old or dirty, f"{file.name}: not written, and no longer waits")
            written += not is_old
        return written

    def check_done(self, reference):
        expect(self.check() == len(hashes(self.originals)), "not all were written")
        there = hashes(self.photos).keys() - hashes(self.originals).keys()
        expect(not there, f"something was left behind: {there}")
        self.work.expect_as(reference, self.NOT_COMPARED)


@contextlib.contextmanager
def kill_save(work):
    """save of 40 described photos, alone or together with exiftool"""
    saving = Saving(work, work.folder / "photos")
    longest = work.seconds(saving.prepare, "save")
    reference = work.content(saving.NOT_COMPARED)

    def once():
        saving.prepare()
        killed = work.kill(longest, "save", whole_group=random.random() < 0.5)
        work.expect_sound()
        written = saving.check()
        work.run("save")
        saving.check_done(reference)
        work.run("revert", "--source", "all")
        expect(not any(row.get("metadata", {}).get("title") == "Bridge" for row in saving.listed()),
               "what the files held first is not known any more")
        return killed, f"{written} written"

    yield once


@contextlib.contextmanager
def kill_import(work):
    """import of a card of 120 files of 300 KB, renamed by number"""
    count = 120
    card = work.make_photos("card/DCIM", count, padding=300_000).parent
    before = state(card)
    wanted = sorted(hashes(card).values())
    copies = work.folder / "Imported"
    call = ("import", card, "--copy-to", copies, "--pattern", "trip-{seq}", "--creator", "Ana")

    def prepare():
        work.create_anew()
        shutil.rmtree(copies, ignore_errors=True)

    longest = work.seconds(prepare, *call)
    reference = work.content()

    def once():
        prepare()
        killed = work.kill(longest, *call)
        work.expect_sound()
        whole = {name: digest for name, digest in (hashes(copies) if copies.exists() else {}).items()
                 if not name.rsplit("/", 1)[-1].startswith(".")}
        stored = {path.split("/Imported/")[1] for path in work.photos()}
        expect(stored <= whole.keys(), f"photos without files: {stored - whole.keys()}")
        expect(all(digest in wanted for digest in whole.values()), "a half file under its name")
        expect(len(set(whole.values())) == len(whole), "a file came twice")
        work.run(*call)
        work.expect_sound()
        there = hashes(copies)
        expect(sorted(there.values()) == wanted, "not each file once, and nothing else")
        expect(sorted(name.rsplit("-", 1)[1] for name in there) == [f"{number:03}.JPG" for number in range(1, count + 1)],
               f"numbered with gaps: {sorted(there)[-3:]}")
        work.expect_as(reference)
        return killed, f"{len(stored)} stored"

    yield once
    expect(state(card) == before, "the card was touched")


@contextlib.contextmanager
def kill_aperture(work):
    """import-aperture of 2,000 masters into a new library"""
    bundle = work.folder / "Photos.aplibrary"
    work.make_bundle(bundle, 2000)
    before = state(bundle)
    call = ("import-aperture", bundle, "--into", work.library)
    longest = work.seconds(work.forget_library, *call)
    reference = work.content()

    def once():
        work.forget_library()
        earliest = longest * random.choice((0, 0.6))  # half of them while it writes
        killed = work.kill(longest, *call, earliest=earliest)
        done, log = 0, work.library / "catalog.sqlite-wal"
        was_writing = log.exists() and log.stat().st_size > 100_000
        if work.is_there():
            work.expect_sound()
            done = work.count("SELECT COUNT(*) FROM photos")
            expect(done in (0, len(reference["photos"])), f"{done} photos: half an import")
        said = work.run(*call, codes=(0, 1)).err
        expect(not done or "already" in said, f"imported twice: {said}")
        work.expect_sound()
        work.expect_as(reference)
        return killed, "all stored" if done else "nothing stored, as it wrote" if was_writing else "nothing stored"

    yield once
    expect(state(bundle) == before, "the bundle was touched")
