"""Cards and disks that are pulled or fail at a random moment."""
import contextlib
import json
import shutil

from disks import Card, Disk, FailingDisk
from kills import Saving
from workplace import expect, expect_told, hashes, state

GONE = ("No such file", "error", "not be read", "cannot be reached")
# Of a disk whose plug is pulled.
UNSOUND = ("nput/output error", "disk I/O error", "ead-only", "cannot be read or written", "disk is connected")


@contextlib.contextmanager
def vanished_card(work):
    """a card of 120 files pulled at a random moment of an import"""
    source = work.make_photos("source", 120, padding=300_000)
    card, copies = Card(work, source), work.folder / "Imported"
    wanted = sorted(hashes(source).values())
    call = ("import", card.place, "--copy-to", copies, "--pattern", "trip-{seq}")

    def prepare():
        card.put_in()
        work.create_anew()
        shutil.rmtree(copies, ignore_errors=True)

    longest = work.seconds(prepare, *call)
    reference = work.content()

    def once():
        prepare()
        ended, was_running = work.disturb_by(card.pull, longest, *call)
        work.expect_sound()
        there = hashes(copies) if copies.exists() else {}
        expect(set(there.values()) <= set(wanted), "a half file")
        expect(work.photos().keys() == {str(copies / name) for name in there}, "photos and files do not agree")
        # A place without its card is an empty folder.
        expect_told(ended, len(there) == 120, GONE if there else GONE + ("Nothing importable",))
        card.put_in()
        work.run(*call)
        expect(sorted(hashes(copies).values()) == wanted, "not each file once")
        work.expect_as(reference)
        return was_running and len(there) < 120, f"{len(there)} stored"

    yield once


@contextlib.contextmanager
def vanished_photos(work):
    """the disk of 3,000 photos pulled at a random moment of an add"""
    photos = Card(work, work.make_photos("source", 3000))
    longest = work.seconds(work.create_anew, "add", photos.place)
    reference = work.content()

    def once():
        work.create_anew()
        photos.put_in()
        ended, was_running = work.disturb_by(photos.pull, longest, "add", photos.place)
        photos.put_in()
        work.expect_sound()
        stored = len(work.photos())
        came_too_early = not any(json.loads(ended.out).values())  # a place without its disk is an empty folder
        expect_told(ended, stored == 3000 or came_too_early, GONE)
        work.run("add", photos.place)
        work.expect_as(reference)
        return was_running and stored < 3000 and not came_too_early, f"{stored} stored"

    yield once


@contextlib.contextmanager
def vanished_library(work):
    """the disk of the library pulled at a random moment of an add of 3,000 photos"""
    photos, disk = work.make_photos("photos", 3000), Disk(work)
    work.library = disk.place / "Library"

    def prepare():
        disk.make_anew()
        work.create_anew()

    longest = work.seconds(prepare, "add", photos)
    reference = work.content()

    def once():
        prepare()
        ended, was_running = work.disturb_by(disk.pull, longest, "add", photos)
        disk.put_in()
        expect(work.is_there(), "the library is gone")
        work.expect_sound()
        stored = len(work.photos())
        expect_told(ended, stored == 3000, UNSOUND)
        work.run("add", photos)
        work.expect_as(reference)
        return was_running and ended.code != 0, f"{stored} stored"

    yield once
    disk.take_out()


@contextlib.contextmanager
def vanished_save(work):
    """the disk of 40 described photos pulled at a random moment of a save"""
    disk = Disk(work)
    disk.make_anew()
    saving = Saving(work, disk.place / "photos")

    def prepare():
        disk.make_anew()
        saving.prepare()
        disk.put_in()  # so that all is written

    longest = work.seconds(prepare, "save")
    reference = work.content(saving.NOT_COMPARED)

    def once():
        prepare()
        ended, was_running = work.disturb_by(disk.pull, longest, "save")
        disk.put_in()
        work.expect_sound()
        written = saving.check()
        expect_told(ended, written == 40, UNSOUND)
        work.run("save")
        saving.check_done(reference)
        return was_running and ended.code != 0, f"{written} written"

    yield once
    disk.take_out()


@contextlib.contextmanager
def vanished_destination(work):
    """the disk that 120 files of 300 KB are imported onto pulled at a random moment"""
    card, disk = work.make_photos("card/DCIM", 120, padding=300_000).parent, Disk(work)
    wanted = sorted(hashes(card).values())
    call = ("import", card, "--copy-to", disk.place, "--pattern", "trip-{seq}")

    def prepare():
        disk.make_anew()
        work.create_anew()

    longest = work.seconds(prepare, *call)
    reference = work.content()

    def once():
        prepare()
        ended, was_running = work.disturb_by(disk.pull, longest, *call)
        disk.put_in()
        work.expect_sound()
        there = {name: digest for name, digest in hashes(disk.place).items() if "/." not in f"/{name}"}
        stored = {path.removeprefix(f"{disk.place}/") for path in work.photos()}
        expect(stored <= there.keys(), f"photos without files: {sorted(stored - there.keys())[:3]}")
        expect(all(there[name] in wanted for name in stored), "a photo of half a file")
        expect_told(ended, len(stored) == 120, UNSOUND)
        work.run(*call)
        expect(sorted(hashes(disk.place).values()) == wanted, "not each file once")
        work.expect_as(reference)
        return was_running and ended.code != 0, f"{len(stored)} stored"

    yield once
    disk.take_out()


@contextlib.contextmanager
def vanished_bundle(work):
    """the disk of an Aperture library of 2,000 masters pulled at a random moment of its import"""
    bundle = work.folder / "made" / "Photos.aplibrary"
    bundle.parent.mkdir()
    work.make_bundle(bundle, 2000)
    disk = Disk(work, bundle.parent)
    disk.make_anew()
    before = state(disk.place)
    call = ("import-aperture", disk.place / bundle.name, "--into", work.library)
    longest = work.seconds(work.forget_library, *call)
    reference = work.content()

    def once():
        disk.put_in()
        work.forget_library()
        ended, was_running = work.disturb_by(disk.pull, longest, *call)
        disk.put_in()
        stored = 0
        if work.is_there():
            work.expect_sound()
            stored = work.count("SELECT COUNT(*) FROM photos")
        expect(stored in (0, len(reference["photos"])), f"{stored} photos: half an import")
        expect_told(ended, stored, UNSOUND)
        if not stored:
            work.run(*call)
        work.expect_as(reference)
        return was_running and ended.code != 0, f"{stored} stored"

    yield once
    expect(state(disk.place) == before, "the bundle was touched")
    disk.take_out()


@contextlib.contextmanager
def failing_add(work):
    """add of 1,000 photos from a disk that answers with errors"""
    disk = FailingDisk(work, work.make_photos("source", 1000, padding=20_000))
    work.run("create", work.library)
    with disk.mounted():
        work.run("add", disk.place)
    reference = work.content()

    def once():
        work.create_anew()
        with disk.mounted(disk.any_place()):
            ended = work.disturb("add", disk.place)
        with disk.mounted():
            work.expect_sound()
        unread = work.count("SELECT COUNT(*) FROM photos WHERE file_size IS NULL")
        expect_told(ended, not unread and len(work.photos()) == 1000, ("error",))
        with disk.mounted():
            work.run("add", disk.place)
        work.expect_as(reference)
        return ended.code != 0, f"{unread} taken in unread"

    yield once


@contextlib.contextmanager
def failing_import(work):
    """import of 120 files of 300 KB from a card that answers with errors"""
    source = work.make_photos("source", 120, padding=300_000)
    disk, copies = FailingDisk(work, source), work.folder / "Imported"
    wanted = sorted(hashes(source).values())
    call = ("import", disk.place, "--copy-to", copies)
    work.run("create", work.library)
    with disk.mounted():
        work.run(*call)
    reference = work.content()

    def once():
        work.create_anew()
        shutil.rmtree(copies, ignore_errors=True)
        with disk.mounted(disk.any_place()):
            ended = work.disturb(*call)
        work.expect_sound()
        there = hashes(copies) if copies.exists() else {}
        expect(set(there.values()) <= set(wanted), "a half file")
        expect(work.photos().keys() == {str(copies / name) for name in there}, "photos and files do not agree")
        expect_told(ended, len(there) == 120, ("error",))
        with disk.mounted():
            work.run(*call)
        expect(sorted(hashes(copies).values()) == wanted, "not each file once")
        work.expect_as(reference)
        return ended.code != 0, f"{len(there)} stored"

    yield once
