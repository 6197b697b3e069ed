"""Media that are full, read-only or gone: nothing half done, a reason that names the fault, and the job done once it is
mended."""
import contextlib
import itertools
import json
import os
import random
import shutil
import subprocess
import time

from workplace import expect, hashes, pixels, state

FULL = ("full", "space", "room")


def remount(place, options):
    subprocess.run(["mount", "-o", f"remount,{options}", place], check=True)


def disk_of(work, name, size):
    """A disk of that many KiB in the place of the last one of that name."""
    place = work.folder / name
    if place in work.mounted:
        work.mounted.remove(place)
        subprocess.run(["umount", place], check=True)
    return work.small_disk(name, size)


def kib(folder):
    return sum(file.stat().st_size for file in folder.rglob("*")) // 1024


def used(disk):
    """KiB that its blocks take."""
    sizes = os.statvfs(disk)
    return (sizes.f_blocks - sizes.f_bfree) * sizes.f_frsize // 1024


def says(words, told):
    expect(any(word in told for word in words), f"the reason is not told: {told[-300:]}")


def full_add(work, rounds):
    """add of 3,000 photos, the library on a disk that fills"""
    photos = work.make_photos("photos", 3000)
    work.run("create", work.library)
    work.run("add", photos)
    reference = work.photos()
    needed = kib(work.library)

    def once():
        disk = disk_of(work, "disk", random.randint(needed // 4, needed))
        work.library = disk / "Library"
        _, err = work.run("create", work.library, codes=(0, 1))
        if not err:
            _, err = work.run("add", photos, codes=(0, 1, 3))
        if err:
            says(FULL, err)
        remount(disk, "size=1g")
        if not (work.library / "catalog.sqlite").exists():
            work.run("create", work.library)
        work.expect_sound()
        stored = work.photos()
        work.run("add", photos)
        expect(work.photos() == reference, "the second run does not end as a whole one")
        return bool(err), f"{len(stored)} stored"

    yield from itertools.repeat(once, min(rounds, 10))


def full_save(work, rounds):
    """save of 40 photos on a disk that fills"""
    originals = work.make_photos("originals", 40, padding=20_000)

    def once():
        disk = disk_of(work, "disk", 20_000)
        work.forget_library()
        shutil.copytree(originals, disk / "photos")
        work.run("create", work.library)
        work.run("add", disk / "photos")
        work.run("set", "--title", "Bridge", "--caption", "x" * 5000, "--source", "all")
        remount(disk, f"size={used(disk) + random.randint(0, 600)}k")
        _, err = work.run("save", codes=(0, 1, 3))
        if err:
            says(FULL, err)
        new = 0
        for row in map(json.loads, work.run("list")[0].splitlines()):
            file = disk / "photos" / os.path.relpath(row["path"], disk / "photos")
            original = originals / file.relative_to(disk / "photos")
            is_old = file.read_bytes() == original.read_bytes()
            expect(pixels(file) == pixels(original), f"{file.name}: the picture changed")
            expect(is_old == row.get("dirty", False), f"{file.name}: {'lost' if is_old else 'written, and waits'}")
            new += not is_old
        expect(hashes(disk).keys() == {f"photos/{name}" for name in hashes(originals)}, "something was left behind")
        remount(disk, "size=20m")
        work.run("save")
        expect(json.loads(work.run("tree")[0])["totals"]["dirty"] == 0, "some still wait")
        return bool(err), f"{new} written"

    yield from itertools.repeat(once, min(rounds, 10))


def full_import(work, rounds):
    """import of 60 files of 300 KB onto a disk that fills"""
    card = work.make_photos("card/DCIM", 60, padding=300_000).parent
    wanted = sorted(hashes(card).values())

    def once():
        disk = disk_of(work, "disk", random.randint(1000, 15_000))
        work.forget_library()
        work.run("create", work.library)
        call = ("import", card, "--copy-to", disk, "--pattern", "trip-{seq}")
        _, err = work.run(*call, codes=(0, 1, 3))
        if err:
            says(FULL, err)
        work.expect_sound()
        there = hashes(disk)
        expect(set(there.values()) <= set(wanted), "a half file")
        expect({row["path"] for row in work.photos()} == {str(disk / name) for name in there},
               "photos and files do not agree")
        remount(disk, "size=100m")
        work.run(*call)
        expect(sorted(hashes(disk).values()) == wanted, "not each file once")
        return bool(err), f"{len(there)} stored"

    yield from itertools.repeat(once, min(rounds, 10))


def full_aperture(work, rounds):
    """import-aperture of 2,000 masters, the library on a disk that fills"""
    bundle = work.folder / "Photos.aplibrary"
    work.make_bundle(bundle, 2000)
    work.run("import-aperture", bundle, "--into", work.library)
    reference = work.photos()
    needed = kib(work.library)

    def once():
        disk = disk_of(work, "disk", random.randint(needed // 4, needed * 3 // 2))
        work.library = disk / "Library"
        _, err = work.run("import-aperture", bundle, "--into", work.library, codes=(0, 1))
        if err:
            says(FULL, err)
        remount(disk, "size=1g")
        if (work.library / "catalog.sqlite").exists():
            work.expect_sound()
            expect(len(work.photos()) in ((0,) if err else (len(reference),)), "half an import")
        if err:
            work.run("import-aperture", bundle, "--into", work.library)
        expect(work.photos() == reference, "the second run does not end as a whole one")
        return bool(err), "refused" if err else "stored"

    yield from itertools.repeat(once, min(rounds, 10))


def read_only(work, rounds):
    """photos, card, destination, bundle and library on a read-only disk"""
    def once():
        disk = disk_of(work, "disk", 200_000)
        work.library = work.folder / "Library"
        work.forget_library()
        shutil.copytree(work.make_photos("originals", 40), disk / "photos")
        work.make_bundle(disk / "Photos.aplibrary", 20)
        shutil.rmtree(work.folder / "Imported", ignore_errors=True)
        work.run("create", disk / "Library")
        before = state(disk)
        remount(disk, "ro")
        work.run("create", work.library)
        work.run("add", disk / "photos")
        work.run("set", "--title", "Bridge", "--source", "all")
        _, err = work.run("save", codes=(1, 3))
        says(("read-only", "Read-only", "writ"), err)
        expect(json.loads(work.run("tree")[0])["totals"]["dirty"] == 40, "photos no longer wait")
        work.run("import", disk / "photos", "--copy-to", work.folder / "Imported", "--keep-duplicates")
        expect(len(hashes(work.folder / "Imported")) == 40, "not all came from the read-only card")
        _, err = work.run("import", work.folder / "Imported", "--copy-to", disk, "--keep-duplicates", codes=(1, 3))
        says(("ead-only",), err)
        work.run("import-aperture", disk / "Photos.aplibrary", "--into", work.folder / "Other")
        shutil.rmtree(work.folder / "Other")
        _, err = work.run("rate", "3", "1", library=disk / "Library", codes=(1,))
        says(("ead-only", "readonly"), err)
        expect(state(disk) == before, "the read-only disk changed")
        remount(disk, "rw")
        work.run("save")
        expect(json.loads(work.run("tree")[0])["totals"]["dirty"] == 0, "some still wait")
        work.expect_sound()
        return True, "each refused with its reason or done without writing"

    yield from itertools.repeat(once, min(rounds, 5))


def pull(place):
    subprocess.run(["umount", "-l", place], check=True)


def put_in(source, place):
    place.mkdir(exist_ok=True)
    subprocess.run(["mount", "--bind", source, place], check=True)


def vanished_card(work, rounds):
    """a card of 120 files pulled at a random moment of an import"""
    source = work.make_photos("source", 120, padding=300_000)
    card, copies = work.folder / "card", work.folder / "Imported"
    work.mounted.append(card)
    wanted = sorted(hashes(source).values())
    call = ("import", card, "--copy-to", copies, "--pattern", "trip-{seq}")
    put_in(source, card)
    work.run("create", work.library)
    longest = work.seconds(*call)

    def once():
        work.forget_library()
        shutil.rmtree(copies, ignore_errors=True)
        work.run("create", work.library)
        process = work.start(*call)
        time.sleep(random.uniform(0, longest))
        was_running = process.poll() is None
        pull(card)
        process.communicate()
        work.expect_sound()
        there = hashes(copies) if copies.exists() else {}
        expect(set(there.values()) <= set(wanted), "a half file")
        expect(len(work.photos()) == len(there), "photos and files do not agree")
        put_in(source, card)
        work.run(*call)
        expect(sorted(hashes(copies).values()) == wanted, "not each file once")
        return was_running and len(there) < 120, f"{len(there)} stored"

    yield from itertools.repeat(once, min(rounds, 20))


def vanished_photos(work, rounds):
    """the disk of 3,000 photos pulled at a random moment of an add"""
    source = work.make_photos("source", 3000)
    photos = work.folder / "photos"
    work.mounted.append(photos)
    put_in(source, photos)
    work.run("create", work.library)
    longest = work.seconds("add", photos)
    reference = work.photos()

    def once():
        work.forget_library()
        work.run("create", work.library)
        process = work.start("add", photos)
        time.sleep(random.uniform(0, longest))
        was_running = process.poll() is None
        pull(photos)
        process.communicate()
        put_in(source, photos)
        work.expect_sound()
        stored = len(work.photos())
        work.run("add", photos)
        expect(work.photos() == reference, "the second run does not end as a whole one")
        return was_running and stored < 3000, f"{stored} stored"

    yield from itertools.repeat(once, min(rounds, 20))


class FailingDisk:
    """A disk with these files, which answers with errors from where one of them begins when that is asked for: a
    block that is cut in two would be read as zeros."""

    def __init__(self, work, files):
        self.files = [file.relative_to(files) for file in files.rglob("*.JPG")]
        self.sound, self.image, self.place = work.folder / "sound", work.folder / "image", work.folder / "disk"
        self.place.mkdir()
        self.sound.touch()
        os.truncate(self.sound, 64 << 20)
        subprocess.run(["mkfs.ext4", "-q", "-b", "4096", "-d", files, self.sound], check=True)

    def any_place(self):
        blocks = subprocess.run(["debugfs", "-R", f"blocks /{random.choice(self.files)}", self.sound], check=True,
                                capture_output=True, text=True).stdout
        return 4096 * int(blocks.split()[0])

    @contextlib.contextmanager
    def mounted(self, good_bytes=64 << 20):
        shutil.copyfile(self.sound, self.image)
        subprocess.run(["mount", "-o", "loop,ro", self.image, self.place], check=True)
        try:
            for file in self.place.rglob("*"):
                file.stat()  # the system remembers names and sizes, as it does of a card that is pulled
            os.truncate(self.image, good_bytes)
            yield
        finally:
            subprocess.run(["umount", "-l", self.place], check=True)


def failing_add(work, rounds):
    """add of 1,000 photos from a disk that answers with errors"""
    disk = FailingDisk(work, work.make_photos("source", 1000, padding=20_000))
    work.run("create", work.library)
    with disk.mounted():
        work.run("add", disk.place)
    reference = work.photos()

    def once():
        work.forget_library()
        work.run("create", work.library)
        with disk.mounted(disk.any_place()):
            _, err = work.run("add", disk.place, codes=(0, 1, 3))
        says(("error",), err)
        with disk.mounted():
            work.expect_sound()
            unread = sum(row["file_size"] is None for row in work.photos())
            work.run("add", disk.place)
        expect(work.photos() == reference, "the second run does not end as a whole one")
        return bool(err), f"{unread} taken in unread"

    yield from itertools.repeat(once, min(rounds, 10))


def failing_import(work, rounds):
    """import of 120 files of 300 KB from a card that answers with errors"""
    source = work.make_photos("source", 120, padding=300_000)
    disk, copies = FailingDisk(work, source), work.folder / "Imported"
    wanted = sorted(hashes(source).values())

    def once():
        work.forget_library()
        shutil.rmtree(copies, ignore_errors=True)
        work.run("create", work.library)
        with disk.mounted(disk.any_place()):
            _, err = work.run("import", disk.place, "--copy-to", copies, codes=(0, 1, 3))
        says(("error",), err)
        work.expect_sound()
        there = hashes(copies) if copies.exists() else {}
        expect(set(there.values()) <= set(wanted), "a half file")
        expect(len(work.photos()) == len(there), "photos and files do not agree")
        with disk.mounted():
            work.run("import", disk.place, "--copy-to", copies)
        expect(sorted(hashes(copies).values()) == wanted, "not each file once")
        return bool(err), f"{len(there)} stored"

    yield from itertools.repeat(once, min(rounds, 10))
