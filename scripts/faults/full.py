"""Disks that are full or read-only: nothing half done, a reason that names the fault, and the job done once it is
mended."""
import contextlib
import json
import random
import shutil

from disks import kib, remount, small_disk, used
from kills import Saving
from workplace import expect, expect_told, hashes, state

FULL = ("full", "space", "room")
READ_ONLY = ("ead-only", "readonly")


def says(words, told):
    expect(any(word in told for word in words), f"the reason is not told: {told[-300:]}")


@contextlib.contextmanager
def full_add(work):
    """add of 3,000 photos, the library on a disk that fills"""
    photos = work.make_photos("photos", 3000)
    work.run("create", work.library)
    work.run("add", photos)
    reference = work.content()
    needed = kib(work.library)

    def once():
        disk = small_disk(work, "disk", random.randint(needed // 4, needed))
        work.library = disk / "Library"
        ended = work.disturb("create", work.library)
        if not ended.code:
            ended = work.disturb("add", photos)
        remount(disk, "size=1g")
        if not work.is_there():
            work.run("create", work.library)
        work.expect_sound()
        stored = len(work.photos())
        expect_told(ended, stored == 3000, FULL)
        work.run("add", photos)
        work.expect_as(reference)
        return ended.code != 0, f"{stored} stored"

    yield once


@contextlib.contextmanager
def full_save(work):
    """save of 40 photos on a disk that fills"""
    saving = Saving(work, work.folder / "disk" / "photos")
    saving.TEXTS = (*Saving.TEXTS[:2], "--caption", "x" * 5000)
    small_disk(work, "disk", 20_000)
    saving.prepare()
    work.run("save")
    reference = work.content(saving.NOT_COMPARED)

    def once():
        disk = small_disk(work, "disk", 20_000)
        saving.prepare()
        remount(disk, f"size={used(disk) + random.randint(0, 600)}k")
        ended = work.disturb("save")
        work.expect_sound()
        written = saving.check()
        expect(hashes(saving.photos).keys() == hashes(saving.originals).keys(), "something was left behind")
        expect(work.count("SELECT COUNT(*) FROM photos WHERE dirty") == 40 - written, "written, and waits")
        expect_told(ended, written == 40, FULL)
        remount(disk, "size=20m")
        work.run("save")
        saving.check_done(reference)
        return ended.code != 0, f"{written} written"

    yield once


@contextlib.contextmanager
def full_import(work):
    """import of 60 files of 300 KB onto a disk that fills"""
    card = work.make_photos("card/DCIM", 60, padding=300_000).parent
    wanted = sorted(hashes(card).values())
    disk = small_disk(work, "disk", 100_000)
    call = ("import", card, "--copy-to", disk, "--pattern", "trip-{seq}")
    work.run("create", work.library)
    work.run(*call)
    reference = work.content()

    def once():
        small_disk(work, "disk", random.randint(1000, 15_000))
        work.create_anew()
        ended = work.disturb(*call)
        work.expect_sound()
        there = hashes(disk)
        expect(set(there.values()) <= set(wanted), "a half file")
        expect(work.photos().keys() == {str(disk / name) for name in there}, "photos and files do not agree")
        expect_told(ended, len(there) == 60, FULL)
        remount(disk, "size=100m")
        work.run(*call)
        expect(sorted(hashes(disk).values()) == wanted, "not each file once")
        work.expect_as(reference)
        return ended.code != 0, f"{len(there)} stored"

    yield once


@contextlib.contextmanager
def full_aperture(work):
    """import-aperture of 2,000 masters, the library on a disk that fills"""
    bundle = work.folder / "Photos.aplibrary"
    work.make_bundle(bundle, 2000)
    work.run("import-aperture", bundle, "--into", work.library)
    reference = work.content()
    needed = kib(work.library)

    def once():
        disk = small_disk(work, "disk", random.randint(needed // 4, needed * 3 // 2))
        work.library = disk / "Library"
        call = ("import-aperture", bundle, "--into", work.library)
        ended = work.disturb(*call)
        remount(disk, "size=1g")
        stored = 0
        if work.is_there():
            work.expect_sound()
            stored = work.count("SELECT COUNT(*) FROM photos")
        expect(stored in (0, len(reference["photos"])), "half an import")
        expect_told(ended, stored, FULL)
        if not stored:
            work.run(*call)
        work.expect_as(reference)
        return ended.code != 0, "stored" if stored else "refused"

    yield once


@contextlib.contextmanager
def read_only(work):
    """photos, card, destination, bundle and library on a read-only disk"""
    originals = work.make_photos("originals", 40)
    own, copies = work.folder / "Library", work.folder / "Imported"

    def once():
        disk = small_disk(work, "disk", 200_000)
        shutil.copytree(originals, disk / "photos")
        work.make_bundle(disk / "Photos.aplibrary", 20)
        shutil.rmtree(copies, ignore_errors=True)
        work.run("create", disk / "Library")
        before = state(disk)
        remount(disk, "ro")
        work.create_anew()
        work.run("add", disk / "photos")
        work.run("set", "--title", "Bridge", "--source", "all")
        says((*READ_ONLY, "writ"), work.run("save", codes=(1, 3)).err)
        expect(work.count("SELECT COUNT(*) FROM photos WHERE dirty") == 40, "photos no longer wait")
        work.run("import", disk / "photos", "--copy-to", copies, "--keep-duplicates")
        expect(len(hashes(copies)) == 40, "not all came from the read-only card")
        says(READ_ONLY, work.run("import", copies, "--copy-to", disk, "--keep-duplicates", codes=(1, 3)).err)
        work.run("import-aperture", disk / "Photos.aplibrary", "--into", work.folder / "Other")
        shutil.rmtree(work.folder / "Other")
        says(READ_ONLY, work.run("rate", "3", "1", library=disk / "Library", codes=(1,)).err)
        expect(state(disk) == before, "the read-only disk changed")
        remount(disk, "rw")
        work.run("save")
        expect(json.loads(work.run("tree").out)["totals"]["dirty"] == 0, "some still wait")
        work.expect_sound()
        return True, "each refused with its reason or done without writing"

    work.library = own
    yield once
