"""Saving texts into files of every kind: the picture must stay what it was."""
import contextlib
import shutil
import subprocess

from workplace import LONGEST, TREE, expect

REFUSED = {"film.avi", "film.mpg", "plain.bmp"}  # what exiftool cannot write


def rendered(work, file):
    """The pixels, as the compressed rows of a PNG made of them; nothing when the file cannot be drawn."""
    out = work.folder / "out.png"
    out.unlink(missing_ok=True)
    subprocess.run([work.build / "app/korvo", "--quiet", "render", file, "--out", out], stdout=subprocess.DEVNULL,
                   stderr=subprocess.DEVNULL, timeout=LONGEST)
    if not out.exists():
        return b""
    data, at, rows = out.read_bytes(), 8, b""
    while at < len(data):
        length = int.from_bytes(data[at:at + 4], "big")
        if data[at + 4:at + 8] in (b"IHDR", b"IDAT"):
            rows += data[at + 8:at + 8 + length]
        at += length + 12
    return rows


@contextlib.contextmanager
def save_kinds(work):
    """save of the pictures of the tests (JPEG, PNG, TIFF, WebP, HEIC, GIF, DNG, films), drawn before and after"""
    photos = work.folder / "photos"
    originals = [file for file in sorted((TREE / "tests/data/images").iterdir()) if file.suffix not in ("", ".avif")]

    def once():
        work.create_anew()
        shutil.rmtree(photos, ignore_errors=True)
        photos.mkdir()
        for file in originals:
            shutil.copy(file, photos)
        work.run("add", photos)
        work.run("set", "--title", "Bridge", "--caption", "Seen from the river", "--source", "all")
        told = work.run("save", codes=(3,)).err
        for original in originals:
            before = rendered(work, original)
            expect(before, f"{original.name} cannot be drawn")
            expect(before == rendered(work, photos / original.name), f"{original.name}: another picture")
            is_written = original.read_bytes() != (photos / original.name).read_bytes()
            expect(is_written != (original.name in REFUSED), f"{original.name}: written or not, as was not expected")
            expect(is_written or original.name in told, f"{original.name} is not named: {told[-300:]}")
        work.expect_sound()
        written = len(originals) - len(REFUSED)
        return True, f"{written} written, {len(REFUSED)} refused and left as they were, the same pixels"

    yield once
