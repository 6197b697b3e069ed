#include "metadata/containers/Containers.h"

namespace korvo {

namespace {

constexpr std::uint8_t extension = 0x21, image = 0x2C, applicationExtension = 0xFF;
constexpr std::uint64_t screenSize = 13;

/// Bytes of the colour table that a flags byte announces.
std::uint64_t colorTableSize(std::uint8_t flags)
{
    return flags & 0x80 ? std::uint64_t(3) << ((flags & 7) + 1) : 0;
}

/// Walks the blocks of a GIF file (version 89a) to the XMP packet in one of them.
class GifFinder {
public:
    GifFinder(FileWindow& file, ByteRange area) : file_(file), rest_(area) { }

    MetadataBlocks find()
    {
        if (const auto screen = take(screenSize)) {
            blocks_.size = {screen->littleEndian(6, 2).value_or(0), screen->littleEndian(8, 2).value_or(0)};
            pass(colorTableSize((*screen)[10]));
            while (!blocks_.xmp && takeBlock()) { }
        }
        return blocks_;
    }

private:
    std::optional<Bytes> take(std::uint64_t length)
    {
        const auto bytes = file_.start(rest_, length);
        pass(length);
        return bytes;
    }

    void pass(std::uint64_t length) { rest_ = rest_.from(length); }

    /// Whether there was one that may be followed by others.
    bool takeBlock()
    {
        const auto mark = take(1);
        if (mark && (*mark)[0] == extension)
            return takeExtension();
        if (!mark || (*mark)[0] != image)
            return false;
        const auto descriptor = take(9);
        if (!descriptor)
            return false;
        pass(colorTableSize((*descriptor)[8]) + 1); // and the code size
        return passSubBlocks();
    }

    bool takeExtension()
    {
        const auto label = take(1);
        const auto name = file_.start(rest_, 12);
        const bool holdsXmp
            = label && (*label)[0] == applicationExtension && name && name->startsWith("\x0BXMP DataXMP");
        return holdsXmp ? takeXmp() : passSubBlocks();
    }

    /// The packet stands as it is, not in sub-blocks. A trailer of the numbers 1 and 255 to 0 after it makes
    /// those who take it for sub-blocks arrive at its end.
    bool takeXmp()
    {
        constexpr std::uint64_t trailerSize = 258;
        pass(12);
        const auto packet = rest_;
        const bool isWhole = passSubBlocks();
        const auto length = packet.length - rest_.length;
        if (isWhole && length > trailerSize)
            blocks_.xmp = packet.first(length - trailerSize);
        return isWhole;
    }

    bool passSubBlocks()
    {
        for (;;) {
            const auto length = take(1);
            if (!length)
                return false;
            if ((*length)[0] == 0)
                return true;
            pass((*length)[0]);
        }
    }

    FileWindow& file_;
    ByteRange rest_;
    MetadataBlocks blocks_{.parts = {.exif = false, .xmp = true}};
};

} // namespace

MetadataBlocks findInGif(FileWindow& file, ByteRange area)
{
    return GifFinder(file, area).find();
}

} // namespace korvo
