// The beginning of a JPEG, an EXIF block, and a file that may hold previews, as decoding looks at them.
#include "platform/ExifPicture.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const korvo::Bytes bytes(data, size);
    korvo::exifPicture(bytes);
    korvo::jpegSize(bytes);
    korvo::readJpegHead(bytes);
    const auto found = korvo::largestJpegIn(bytes);
    if (found && !bytes.slice(found->offset, found->length))
        std::abort();
    return 0;
}
