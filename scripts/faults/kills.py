"""kill -9 at random moments: what stands must be whole, and the next run must finish the job.

Each fault prepares its workplace, yields one call for each round, which returns whether the program was killed before it
was done and a note on what stood then, and looks at what concerns all rounds at the end.
"""
import collections
import functools
import itertools
import json
import shutil

from workplace import expect, hashes, pixels, state


def kill_add(work, rounds):
    """add of 3,000 photos into a new library"""
    photos = work.make_photos("photos", 3000)
    before = state(photos)
    work.run("create", work.library)
    longest = work.seconds("add", photos)
    reference = {row["path"]: row for row in work.photos()}

    def once():
        work.forget_library()
        work.run("create", work.library)
        killed = work.kill(longest, "add", photos)
        work.expect_sound()
        stored = work.photos()
        for row in stored:
            expect(row == reference[row["path"]], f"half a row: {row}")
        out, _ = work.run("add", photos)
        expect(json.loads(out)["added"] == 3000 - len(stored), f"added twice or not at all: {out}")
        expect({row["path"]: row for row in work.photos()} == reference, "the second run does not end as a whole one")
        return killed, f"{len(stored)} stored"

    yield from itertools.repeat(once, rounds)
    expect(state(photos) == before, "the photos were touched")


def kill_create(work, rounds):
    """create, which makes the catalog and its schema"""
    longest = work.seconds("create", work.library)
    reference = work.rows("sqlite_master")

    def once():
        work.forget_library()
        killed = work.kill(longest, "create", work.library)
        if (work.library / "catalog.sqlite").exists():
            work.run("tree")
        else:
            work.run("create", work.library)
        work.expect_sound()
        expect(work.rows("sqlite_master") == reference, "another schema")
        return killed, ""

    yield from itertools.repeat(once, rounds)


def kill_save(work, rounds):
    """save of 40 described photos, alone or together with exiftool"""
    count = 40
    originals = work.make_photos("originals", count, padding=20_000)
    photos = work.folder / "photos"
    texts = ("--title", "Bridge", "--caption", "Seen from the river", "--keywords", "bridge, night")

    def prepare():
        work.forget_library()
        shutil.rmtree(photos, ignore_errors=True)
        shutil.copytree(originals, photos)
        work.run("create", work.library)
        work.run("add", photos)
        work.run("set", *texts, "--source", "all")

    def titles():
        return {json.loads(line)["path"]: json.loads(line) for line in work.run("list")[0].splitlines()}

    def check(found, at_rest):
        for path, row in titles().items():
            file = photos.parent / path
            original = originals / file.relative_to(photos)
            is_old = file.read_bytes() == original.read_bytes()
            expect(pixels(file) == pixels(original), f"{file.name}: the picture changed")
            expect(is_old or b"Bridge" in file.read_bytes(), f"{file.name}: neither old nor new")
            expect(not is_old or row.get("dirty"), f"{file.name}: not written, and no longer waits")
            expect(not at_rest or not (is_old or row.get("dirty")), f"{file.name}: still waits")
            found["old" if is_old else "new"] += 1

    prepare()
    longest = work.seconds("save")

    def once(number):
        prepare()
        found = collections.Counter()
        killed = work.kill(longest, "save", whole_group=number % 2 == 0)
        work.expect_sound()
        check(found, at_rest=False)
        work.run("save")
        check(collections.Counter(), at_rest=True)
        expect(hashes(photos).keys() == hashes(originals).keys(), "something was left behind: "
               + str(hashes(photos).keys() - hashes(originals).keys()))
        work.run("revert", "--source", "all")
        expect(not any(row.get("metadata", {}).get("title") == "Bridge" for row in titles().values()),
               "what the files held first is not known any more")
        return killed, f"{found['new']} written"

    yield from (functools.partial(once, number) for number in range(rounds))


def kill_import(work, rounds):
    """import of a card of 120 files of 300 KB, renamed by number"""
    count = 120
    card = work.make_photos("card/DCIM", count, padding=300_000).parent
    before = state(card)
    wanted = sorted(hashes(card).values())
    copies = work.folder / "Imported"
    call = ("import", card, "--copy-to", copies, "--pattern", "trip-{seq}", "--creator", "Ana")

    def prepare():
        work.forget_library()
        shutil.rmtree(copies, ignore_errors=True)
        work.run("create", work.library)

    prepare()
    longest = work.seconds(*call)

    def once():
        prepare()
        killed = work.kill(longest, *call)
        work.expect_sound()
        stored = [row["path"] for row in work.photos()]
        whole = {name: digest for name, digest in (hashes(copies) if copies.exists() else {}).items()
                 if not name.rsplit("/", 1)[-1].startswith(".")}
        expect(all(digest in wanted for digest in whole.values()), "a half file under its name")
        expect(len(set(whole.values())) == len(whole), "a file came twice")
        work.run(*call)
        work.expect_sound()
        there = hashes(copies)
        expect(sorted(there.values()) == wanted, "not each file once, and nothing else")
        expect(sorted(name.rsplit("-", 1)[1] for name in there) == [f"{number:03}.JPG" for number in range(1, count + 1)],
               f"numbered with gaps: {sorted(there)[-3:]}")
        rows = work.photos()
        expect(len(rows) == count and all(row["creator"] == "Ana" for row in rows), "not each photo once, described")
        return killed, f"{len(stored)} stored"

    yield from itertools.repeat(once, rounds)
    expect(state(card) == before, "the card was touched")


def kill_aperture(work, rounds):
    """import-aperture of 2,000 masters into a new library"""
    masters = 2000
    bundle = work.folder / "Photos.aplibrary"
    work.make_bundle(bundle, masters)
    before = state(bundle)
    call = ("import-aperture", bundle, "--into", work.library)
    longest = work.seconds(*call)
    tables = ("photos", "albums", "album_items", "projects", "keywords", "stacks", "smart_albums")
    reference = {table: work.rows(table) for table in tables}

    def once(number):
        work.forget_library()
        killed = work.kill(longest, *call, earliest=longest * 0.6 * (number % 2))  # half of them while it writes
        done, log = 0, work.library / "catalog.sqlite-wal"
        was_writing = log.exists() and log.stat().st_size > 100_000
        if (work.library / "catalog.sqlite").exists():
            work.expect_sound()
            done = work.count("SELECT COUNT(*) FROM photos")
            expect(done in (0, len(reference["photos"])), f"{done} photos: half an import")
        _, said = work.run(*call, codes=(0, 1))
        expect(not done or "already" in said, f"imported twice: {said}")
        work.expect_sound()
        expect({table: work.rows(table) for table in tables} == reference, "the second run does not end as a whole one")
        return killed, "all stored" if done else "nothing stored, as it wrote" if was_writing else "nothing stored"

    yield from (functools.partial(once, number) for number in range(rounds))
    expect(state(bundle) == before, "the bundle was touched")
