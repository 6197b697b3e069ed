"""Saving texts into files of every kind: the picture must stay what it was."""
import functools
import shutil
import subprocess

from workplace import TREE, Fault, expect


def rendered(work, file):
    """The pixels, as the compressed rows of a PNG made of them; nothing when the file cannot be drawn."""
    out = work.folder / "out.png"
    out.unlink(missing_ok=True)
    subprocess.run([work.build / "app/korvo", "--quiet", "render", file, "--out", out], stdout=subprocess.DEVNULL,
                   stderr=subprocess.DEVNULL)
    if not out.exists():
        return b""
    data, at, rows = out.read_bytes(), 8, b""
    while at < len(data):
        length = int.from_bytes(data[at:at + 4], "big")
        if data[at + 4:at + 8] in (b"IHDR", b"IDAT"):
            rows += data[at + 8:at + 8 + length]
        at += length + 12
    return rows


def save_kinds(work, rounds):
    """save of a picture of each kind in the tests, drawn before and after"""
    del rounds
    photos = work.folder / "photos"
    photos.mkdir()
    originals = [file for file in sorted((TREE / "tests/data/images").iterdir()) if file.suffix]
    for file in originals:
        shutil.copy(file, photos)
    work.run("create", work.library)
    work.run("add", photos)
    work.run("set", "--title", "Bridge", "--caption", "Seen from the river", "--source", "all")
    work.run("save", codes=(0, 3))

    def once(original):
        before, after = rendered(work, original), rendered(work, photos / original.name)
        is_written = original.read_bytes() != (photos / original.name).read_bytes()
        if not before:
            raise Fault(f"{original.name} cannot be drawn")
        expect(before == after, f"{original.name}: another picture")
        return is_written, f"{original.suffix[1:]} {'written' if is_written else 'refused and left as it was'}"

    yield from (functools.partial(once, original) for original in originals)
