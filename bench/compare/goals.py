"""What is compared and what each comparison has to reach: the one table that the page is made of."""
import collections

# A ratio of two contenders of one comparison. `most`: ours takes at most so many times theirs; `faster`: ours is at
# least so many times as fast; neither: shown without a goal.
Ratio = collections.namedtuple("Ratio", "what title ours theirs most faster", defaults=(None, None))
# A number that stands for itself, by its key or by (title, contender), and the most that it may be, if there is a goal.
Figure = collections.namedtuple("Figure", "what key unit most", defaults=(None,))

BARE_READ = "bare open + pread 64 KiB + close"
SHELL = "closest query in the sqlite3 shell"
BARE_LOOP = "bare loop into structs"
SIX_STEPS = "24 megapixels, all six steps"
EXPORT = "24 megapixels to JPEG q90 with all six steps"
WHOLE_EXPORT = "Export of 24 megapixels, whole programs"
THUMBNAILS = "500 thumbnails of 512 pixels, two workers"
WHOLE_THUMBNAIL = "A thumbnail of 24 megapixels, whole programs"
TAKEN_IN = "A file's metadata, whole programs"
LISTED = "Listing all photos, whole programs"
FACTS = "Camera facts of a file, whole programs"
STARTS = ("start without previews", "start with previews", "first start of the day")


def rows(run):
    sizes, largest, import_title = run.sizes, run.sizes[-1], f"{run.import_files} files of 6 MB"
    sections = {
        "Camera data of 20,000 JPEGs": [
            *(row for threads, words in ((1, "one thread"), (2, "two threads")) for row in (
                Ratio(f"beside libexiv2, {words}", f"Camera facts of a file, {threads} threads", "readExif", "libexiv2",
                      faster=20),
                Ratio(f"beside bare reads, {words}", f"Camera facts of a file, {threads} threads", "readExif", BARE_READ,
                      most=1.3))),
            Ratio("all that a file says, with XMP and IPTC, beside libexiv2, one thread",
                  "Camera facts of a file, 1 threads", "readFileMetadata", "libexiv2"),
            Ratio("whole program beside `exiv2 -pt`", FACTS, "bench_metadata facts", "exiv2"),
            Ratio("whole program beside `exiftool -fast2`, the same tags", FACTS, "bench_metadata facts", "exiftool"),
        ],
        "Taking 20,000 files into the catalog, everything read": [
            Figure("one file", "adding ms", "ms", 0.2),
            Figure("the last 2,000 beside the first 2,000", "adding growth", "times", 1.2),
            Figure("most memory", "adding MB", "MB", 150),
            Ratio("whole `korvo add` beside `exiv2` (which stores nothing)", TAKEN_IN, "korvo add", "exiv2"),
            Ratio("whole `korvo add` beside `exiftool -fast2`", TAKEN_IN, "korvo add", "exiftool"),
            Ratio("whole `korvo add` beside `cat`", TAKEN_IN, "korvo add", "cat"),
            *(Ratio(f"inserting {size:,} rows beside a bare prepared loop", f"Inserting {size} photos",
                    "Catalog::addPhotos", "bare loop", most=most)
              for size, most in zip(sizes[-2:], (1.15, None))),
        ],
        "Loading and filtering": [
            *(Ratio(f"loading {size:,} rows beside a bare loop", f"Loading {size} rows", "items", BARE_LOOP, most=1.2)
              for size in sizes[-2:]),
            *(Ratio(f"{size:,} rows by name beside a bare loop",
                    f"Loading {size} photos by name, as the library lists them", "items", BARE_LOOP)
              for size in sizes[-2:]),
            Figure(f"memory a photo of {largest:,}", f"bytes of {largest}", "bytes", 800),
            *(Ratio(f"four rules over {size:,} photos beside the sqlite3 shell",
                    f"A smart album of four rules over {size} photos", "matcher over the items", SHELL, faster=5)
              for size in sizes[-2:]),
            Figure(f"four rules over {largest:,} photos",
                   (f"A smart album of four rules over {largest} photos", "matcher over the items"), "s", 0.25),
            Ratio(f"one text rule over {largest:,} photos beside the shell", f"A text rule alone over {largest} photos",
                  "matcher over the items", SHELL),
            *(Ratio(f"auto-stacking {largest:,} photos, {chains}, beside sorting their times",
                    f"Auto-stacking {largest} photos, {interval} s", "AutoStackPlan", "sorting their times", most=2)
              for interval, chains in ((1, "none near"), (401, "all in one chain"))),
            Ratio("rating 10,000 photos, with undo and list, beside a bare loop", "Rating 10000 of 100000 photos",
                  "LibraryStore::setRating (undo, items, signal)", "bare loop"),
            Ratio("whole `korvo --json list` of 20,000 beside the shell's `SELECT *`", LISTED, "korvo list", "sqlite3"),
            Figure("encoding a rich edit record", "encode MB/s", "MB/s"),
            Figure("decoding a rich edit record", "decode MB/s", "MB/s"),
            *(Figure(f"a preview {what}, of {largest // 10:,}", f"preview {what} ms", "ms")
              for what in ("stored", "found")),
        ],
        "Writing metadata into files": [
            *(Ratio(f"{run.saved_files} {kind} files, beside one exiftool a file",
                    f"Saving {run.saved_files} {kind} files", "the kept process", "a process for each file",
                    faster=faster)
              for kind, faster in (("small", 20), ("6 MB", 8))),
        ],
        "Thumbnails of 512 pixels from 24-megapixel JPEGs": [
            Ratio("500, two workers, beside plain loops around turbojpeg", THUMBNAILS, "korvo", "plain loops",
                  most=1.05),
            Ratio("500 from embedded previews, beside whole files", THUMBNAILS, "korvo, embedded previews", "korvo",
                  faster=5),
            Ratio("whole program, two workers, beside two `vipsthumbnail`", WHOLE_THUMBNAIL,
                  "bench_pictures thumbnails", "vipsthumbnail"),
            Ratio("whole program, two workers, beside two loops of ImageMagick", WHOLE_THUMBNAIL,
                  "bench_pictures thumbnails", "ImageMagick"),
        ],
        "Render of 24 megapixels, six adjustments": [
            Ratio("beside plain loops built for this machine", SIX_STEPS, "8 bits in and out",
                  "plain loops, 8 bits in and out", most=1.3),
            Ratio("beside one pass over memory in floats", SIX_STEPS, "8 bits in and out",
                  "float RGBA read and written once", most=4),
            Ratio("beside darktable's pixel pipeline, light modules", "Pixels of 24 megapixels", "korvo", "darktable",
                  faster=10),
            Ratio("export beside decode, render and encode one after the other", EXPORT, "korvo",
                  "decode, render, encode, one after the other", most=1.2),
            Ratio("export beside a libvips pipeline of the same steps", EXPORT, "korvo", "libvips", faster=6),
            Ratio("whole `korvo render` beside ImageMagick", WHOLE_EXPORT, "korvo", "ImageMagick"),
            Ratio("whole `korvo render` beside darktable-cli, its default modules", WHOLE_EXPORT, "korvo",
                  "darktable-cli"),
            Ratio("whole `korvo render` beside rawtherapee-cli", WHOLE_EXPORT, "korvo", "rawtherapee-cli"),
            Ratio("whole `korvo render` beside `vips` (exposure and sharpening alone, two programs)", WHOLE_EXPORT,
                  "korvo", "vips"),
            Figure("most memory of an export", "export MB", "MB", 300),
            Figure("histogram, one thread", ("Histogram of 24 megapixels", "one thread"), "s", 0.001),
            Ratio("auto enhance of 2,048 x 2,048 beside sorting its brightness", "Auto enhance of 2048 x 2048",
                  "all statistics", "the percentiles alone, by sorting"),
        ],
        f"Import from a card of {import_title}": [
            Ratio("beside `cp` and checksums of both sides, one thread", import_title, "import",
                  "cp -r, and checksums of both sides", most=1.15),
            Ratio("beside `cp` and checksums of both sides at once, two threads", import_title, "import",
                  "cp -r, and checksums of both sides at once"),
            Ratio("beside `cp`, `sync` and checksums of both sides, one thread", import_title, "import",
                  "cp -r, sync, and checksums of both sides"),
            Ratio("beside `cp` and `cat` of both sides", import_title, "import", "cp -r, and cat of both sides"),
        ],
        "Downloaded models": [
            Ratio("verifying 400 MB beside `openssl dgst -sha256`", "verify 400 MB", "korvo", "openssl dgst -sha256",
                  most=1 / 0.95),
        ],
        "Property lists": [
            Ratio(f"{title} beside libplist", title, "BinaryPlist::parse", "libplist", faster=2)
            for title in ("1,000 archives of one adjustment", "5,000 rows of text", "60,000 numbers")
        ],
        "Aperture library of 20,000 masters, 25,000 versions": [
            Ratio("writing beside bare prepared inserts of the same rows", "Writing the rows", "ApertureImporter::write",
                  "prepared inserts", most=1.5),
            Figure("the whole import", ("The whole import", "import"), "s", 15),
            Figure("most memory of it", "aperture MB", "MB", 600),
            *(Figure(f"reading and writing {20 * size:,} keywords, {5 * size:,} albums and projects",
                     (f"Groups of {size}", "import"), "s") for size in (500, 1000, 2000)),
        ],
        "The window, without a display": [
            *(Figure(f"{kind} to first thumbnail, {size:,} photos", f"first {kind} {size}", "ms", most)
              for size, most in zip(sizes[-2:], (1000, 4000)) for kind in STARTS),
            *(Figure(f"{kind} to first paint, {largest:,} photos", f"paint {kind} {largest}", "ms")
              for kind in STARTS),
            Figure(f"scrolling {largest:,} photos, 95 % of frames", f"frames {largest}", "ms", 16),
            Figure(f"scrolling {largest:,} photos, longest event of the main thread", f"event {largest}", "ms", 16),
            *(Figure(f"scrolling {largest:,} photos {how}, frames with empty cells", f"empty {how} {largest}", "%")
              for how in ("slowly", "by the wheel")),
            Figure(f"most memory, {largest:,} photos", f"window MB {largest}", "MB", 1500),
            Figure("slider to pixels, 95 %", "slider ms", "ms", 30),
            Figure("next photo on screen, 95 %", "next photo ms", "ms", 50),
        ],
    }
    return sections


GROWTH = {  # of (title, contender) a photo's share is shown, of figures the figure
    "loading, µs a photo": ("Loading {} rows", "items"),
    "loading by name, µs a photo": ("Loading {} photos by name, as the library lists them", "items"),
    "inserting, µs a photo": ("Inserting {} photos", "Catalog::addPhotos"),
    "four rules, µs a photo": ("A smart album of four rules over {} photos", "matcher over the items"),
    "one text rule, µs a photo": ("A text rule alone over {} photos", "matcher over the items"),
    "auto-stack, µs a photo": ("Auto-stacking {} photos, 401 s", "AutoStackPlan"),
    "memory of a list, bytes a photo": "bytes of {}",
    **{f"window, {kind} to first thumbnail, ms": f"first {kind} {{}}" for kind in STARTS},
    "window, scrolling, 95 % of frames, ms": "frames {}",
    "window, scrolling, longest event, ms": "event {}",
    "window, rating one photo until all is done, ms": "rate 1 photo {}",
    "window, undoing a removal until all is done, ms": "undo {}",
    "window, most memory, MB": "window MB {}",
}
NOTES = (
    "Whole programs include their start, which all files of a call share: camera data and catalog 20,000 of ours, 2,000 "
    "of `exiv2` and `cat`, 500 of `exiftool`; thumbnails 48 of ours, 24 of `vipsthumbnail`, one of ImageMagick. "
    "Ours prints no camera data, theirs do.",
    "The import waits until the copy is on disk and reads it back from there; `cp` leaves it in memory, from where it "
    "is read again; with `sync` it waits as well. Ours takes checksums on several threads. The goal is for 2,000 files, "
    "which need 24 GB: `--import-files 2000`.",
    "Of saving, a process for each file is measured in one round, since it takes a minute.",
    "Starts are medians of three, from the page cache: without previews the first thumbnail is decoded from a photo of "
    "24 megapixels, the first start of the day copies the catalog too. Frames and events are the worst of ten ways to "
    "scroll, memory is the most until all actions that follow are done.",
)
