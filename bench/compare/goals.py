"""What is compared and what each comparison has to reach: the one table that the page is made of."""
import collections

# A ratio of two contenders of one comparison. `most`: ours takes at most so many times theirs; `faster`: ours is at
# least so many times as fast; neither: shown without a goal.
Ratio = collections.namedtuple("Ratio", "what title ours theirs most faster", defaults=(None, None))
# A number that stands for itself, with the most that it may be.
Figure = collections.namedtuple("Figure", "what key unit most")

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


def rows(sizes, import_title):
    largest = sizes[-1]
    sections = {
        "Camera data of 20,000 JPEGs": [
            *(row for threads, words in ((1, "one thread"), (2, "two threads")) for row in (
                Ratio(f"beside libexiv2, {words}", f"Camera facts of a file, {threads} threads", "readExif", "libexiv2",
                      faster=20),
                Ratio(f"beside bare reads, {words}", f"Camera facts of a file, {threads} threads", "readExif", BARE_READ,
                      most=1.3))),
        ],
        "Taking 20,000 files into the catalog, everything read": [
            Figure("one file", "adding ms", "ms", 0.2),
            Figure("the last 2,000 beside the first 2,000", "adding growth", "times", 1.2),
            Figure("most memory", "adding MB", "MB", 150),
            Ratio("whole `korvo add` beside `exiv2` (which stores nothing)", TAKEN_IN, "korvo add", "exiv2"),
            Ratio("whole `korvo add` beside `exiftool -fast2`", TAKEN_IN, "korvo add", "exiftool"),
            Ratio("whole `korvo add` beside `cat`", TAKEN_IN, "korvo add", "cat"),
            Ratio("inserting 100,000 rows beside a bare prepared loop", "Inserting 100000 photos", "Catalog::addPhotos",
                  "bare loop", most=1.15),
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
        ],
        "Writing metadata into files": [
            Ratio("small files, beside one exiftool a file", "small files", "the kept process",
                  "a process for each file", faster=20),
            Ratio("6 MB files, beside one exiftool a file", "large files", "the kept process", "a process for each file",
                  faster=8),
        ],
        "Thumbnails of 512 pixels from 24-megapixel JPEGs": [
            Ratio("500, two workers, beside the plain decoder's yardstick", THUMBNAILS, "korvo", "thumb_turbo",
                  most=1.05),
            Ratio("from embedded previews, beside whole files", THUMBNAILS, "korvo, embedded previews", "korvo",
                  faster=5),
            Ratio("one of 500 beside `vipsthumbnail`, two of each at once", WHOLE_THUMBNAIL, "korvo", "vipsthumbnail"),
            Ratio("one of 500 beside ImageMagick, two of each at once", WHOLE_THUMBNAIL, "korvo", "ImageMagick"),
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
            Ratio("export beside libvips (yardstick)", EXPORT, "korvo", "vips_render", faster=6),
            Ratio("whole `korvo render` beside ImageMagick", WHOLE_EXPORT, "korvo", "ImageMagick"),
            Ratio("whole `korvo render` beside darktable-cli, its default modules", WHOLE_EXPORT, "korvo",
                  "darktable-cli"),
            Ratio("whole `korvo render` beside rawtherapee-cli", WHOLE_EXPORT, "korvo", "rawtherapee-cli"),
            Ratio("whole `korvo render` beside `vips` (exposure and sharpening alone)", WHOLE_EXPORT, "korvo", "vips"),
            Figure("most memory of an export", "export MB", "MB", 300),
            Figure("histogram, one thread", ("Histogram of 24 megapixels", "one thread"), "s", 0.001),
        ],
        "Import from a card": [
            Ratio("beside `cp` and checksums of both sides", import_title, "import",
                  "cp -r, and checksums of both sides", most=1.15),
            Ratio("beside `cp` and `cat` of both sides", import_title, "import", "cp -r, and cat of both sides"),
        ],
        "Property lists": [
            Ratio(f"{title} beside libplist", title, "BinaryPlist::parse", "libplist", faster=2)
            for title in ("1,000 archives of one adjustment", "5,000 rows of text", "60,000 numbers")
        ],
        "Aperture library of 20,000 masters, 25,000 versions": [
            Ratio("writing beside bare prepared inserts of the same rows", "Writing the rows", "ApertureImporter::write",
                  "prepared inserts", most=1.5),
            Figure("the whole import", "aperture s", "s", 15),
            Figure("most memory", "aperture MB", "MB", 600),
        ],
        "The window, without a display": [
            *(Figure(f"start to first thumbnail, {size:,} photos", f"window first {size}", "ms", most)
              for size, most in zip(sizes[-2:], (1000, 4000))),
            Figure(f"scrolling {largest:,} photos, 95 % of frames", f"window scrolling {largest}", "ms", 16),
            Figure(f"most memory, {largest:,} photos", f"window MB {largest}", "MB", 1500),
            Figure("slider to pixels, 95 %", "slider ms", "ms", 30),
            Figure("next photo on screen, 95 %", "next photo ms", "ms", 50),
        ],
    }
    return sections


GROWTH = {  # what one photo costs at each size
    "loading, µs": ("Loading {} rows", "items"),
    "loading by name, µs": ("Loading {} photos by name, as the library lists them", "items"),
    "four rules, µs": ("A smart album of four rules over {} photos", "matcher over the items"),
    "one text rule, µs": ("A text rule alone over {} photos", "matcher over the items"),
    "auto-stack, µs": ("Auto-stacking {} photos, 401 s", "AutoStackPlan"),
}
