"""What is measured on: made once, in the work folder, and used by all."""
import pathlib
import random
import struct
import subprocess
import zlib

TEMPLATE = pathlib.Path(__file__).resolve().parents[2] / "tests/data/metadata/camera.jpg"
CAPTION = ("Temple gate 000000 in Kyoto, photographed on 15 January 2022. Shot for the autumn issue; cleared for "
           "print and web, no crop below the waterline.")


def small_photos(folder, korvo, count):
    """JPEGs of some 25 KB with a thumbnail, camera facts, a position and all descriptive fields."""
    if folder.exists():
        return folder
    template, thumbnail = folder.with_suffix(".jpg"), folder.with_suffix(".thumbnail.jpg")
    rendered(template, korvo, 320, 240, 0)
    rendered(thumbnail, korvo, 160, 120, 0)
    subprocess.run(["exiftool", "-overwrite_original", "-q", "-m", "-codedcharacterset=utf8", "-sep", ", ",
                    "-tagsFromFile", TEMPLATE, "-all:all", f"-ThumbnailImage<={thumbnail}",
                    "-XMP-dc:Title=Temple gate 000000", "-IPTC:ObjectName=Temple gate 000000",
                    "-XMP-dc:Description=" + CAPTION, "-IPTC:Caption-Abstract=" + CAPTION,
                    "-XMP-dc:Subject=travel, night, event 000000", "-IPTC:Keywords=travel, night, event 000000",
                    "-XMP-dc:Creator=Ana Müller", "-IFD0:Artist=Ana Müller", "-XMP-dc:Rights=© 2022 Ana Müller",
                    template], check=True)
    contents = template.read_bytes()
    making = folder.with_suffix(".new")
    for number in range(count):
        file = making / f"{number // 500:03}" / f"IMG_{number:06}.JPG"
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_bytes(contents.replace(b"000000", b"%06d" % number))
    making.rename(folder)
    return folder


def wave(phase, width):
    """A row of a soft pattern, 0 to 239."""
    return bytes(channel for x in range(width) for channel in
                 (60 + (x + phase) % 120, 40 + (x // 7 + 2 * phase) % 160, 90 + abs((x + 3 * phase) % 200 - 100)))


def png(file, width, height, seed):
    """A picture of waves with a grain of four bits."""
    random.seed(seed)
    waves = [int.from_bytes(wave(phase + 31 * seed, width), "big") for phase in range(64)]
    grain = int.from_bytes(b"\x0f" * (3 * width), "big")
    pack = zlib.compressobj(1)
    data = b"".join(
        pack.compress(b"\0" + (waves[y // 9 % 64] + (random.getrandbits(24 * width) & grain)).to_bytes(3 * width, "big"))
        for y in range(height)) + pack.flush()

    def chunk(kind, contents):
        return struct.pack(">I", len(contents)) + kind + contents + struct.pack(">I", zlib.crc32(kind + contents))
    file.write_bytes(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0))
                     + chunk(b"IDAT", data) + chunk(b"IEND", b""))


def rendered(photo, korvo, width, height, seed):
    """A JPEG of waves."""
    made, making = photo.with_suffix(".made.png"), photo.with_suffix(".making.jpg")
    png(made, width, height, seed)
    subprocess.run([korvo, "render", made, "--out", making, "--quality", "89"], check=True, stdout=subprocess.DEVNULL)
    making.rename(photo)
    made.unlink()


def large_photos(folder, korvo, count):
    """JPEGs of 24 megapixels."""
    folder.mkdir(parents=True, exist_ok=True)
    photos = [folder / f"{number}.jpg" for number in range(count)]
    for number, photo in enumerate(photos):
        if not photo.exists():
            rendered(photo, korvo, 6000, 4000, number)
    return photos
