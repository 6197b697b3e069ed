"""Disks of their own: small ones, ones that are taken out, ones that fail. All need root."""
import contextlib
import fcntl
import os
import random
import shutil
import struct
import subprocess

EXT4_IOC_SHUTDOWN = 0x8004587D
WITHOUT_ITS_LOG = struct.pack("I", 2)  # what was not yet written is lost, as when the plug is pulled


def remount(place, options):
    subprocess.run(["mount", "-o", f"remount,{options}", place], check=True)


def small_disk(work, name, size):
    """An empty disk of that many KiB in memory, in the place of the last one of that name."""
    place = work.folder / name
    if place in work.mounted:
        work.mounted.remove(place)
        subprocess.run(["umount", place], check=True)
    place.mkdir(exist_ok=True)
    subprocess.run(["mount", "-t", "tmpfs", "-o", f"size={size}k", "none", place], check=True)
    work.mounted.append(place)
    return place


def kib(folder):
    return sum(file.stat().st_size for file in folder.rglob("*")) // 1024


def used(disk):
    """KiB that its blocks take."""
    sizes = os.statvfs(disk)
    return (sizes.f_blocks - sizes.f_bfree) * sizes.f_frsize // 1024


class Card:
    """A folder that is seen in another place while it is put in."""

    def __init__(self, work, source):
        self.source, self.place = source, work.folder / "card"
        self.place.mkdir()
        self.is_in = False
        work.mounted.append(self.place)
        self.put_in()

    def put_in(self):
        if not self.is_in:
            subprocess.run(["mount", "--bind", self.source, self.place], check=True)
        self.is_in = True

    def pull(self):
        subprocess.run(["umount", "-l", self.place], check=True)
        self.is_in = False


class Disk:
    """A disk whose plug can be pulled: what was not written to it is lost, and all that is asked of it fails until it
    is put in again."""

    def __init__(self, work, files=None):
        self.image, self.place = work.folder / "disk.image", work.folder / "disk"
        self.place.mkdir(exist_ok=True)
        self.files = ["-d", files] if files else []
        self.is_in = False
        work.mounted.append(self.place)

    def make_anew(self):
        self.take_out()
        self.image.unlink(missing_ok=True)
        self.image.touch()
        os.truncate(self.image, 128 << 20)
        subprocess.run(["mkfs.ext4", "-q", "-b", "4096", *self.files, self.image], check=True)
        self.put_in()
        shutil.rmtree(self.place / "lost+found")

    def put_in(self):
        """Also after a pull, when nobody uses it any more."""
        self.take_out()
        subprocess.run(["mount", "-o", "loop", self.image, self.place], check=True)
        self.is_in = True

    def take_out(self):
        if self.is_in:
            subprocess.run(["umount", self.place], check=True)
        self.is_in = False

    def pull(self):
        place = os.open(self.place, os.O_RDONLY)
        try:
            fcntl.ioctl(place, EXT4_IOC_SHUTDOWN, WITHOUT_ITS_LOG)
        finally:
            os.close(place)


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
