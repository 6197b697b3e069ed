#include "platform/linux/images/DecoderProtocol.h"

#include "base/Text.h"

#include <algorithm>
#include <charconv>
#include <fcntl.h>
#include <fmt/format.h>
#include <limits>
#include <new>
#include <span>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace korvo {

namespace {

constexpr std::size_t lengthDigits = 8;
constexpr std::size_t longestMessage = 64 << 10; // two paths, or an error's text

[[noreturn]] void fail()
{
    throw std::invalid_argument("the message makes no sense");
}

constexpr int largest = std::numeric_limits<int>::max();

int numberIn(const std::string& text, int most, int least = 0)
{
    const auto value = wholeNumber<int>(text);
    if (!value || *value < least || *value > most)
        fail();
    return *value;
}

std::optional<std::size_t> announcedLength(std::string_view text)
{
    std::size_t length = 0;
    if (text.size() < lengthDigits
        || std::from_chars(text.data(), text.data() + lengthDigits, length, 16).ptr
            != text.data() + lengthDigits)
        return std::nullopt;
    return length;
}

/// The parts of the memory that the pixels lie in, one after the other.
std::vector<std::span<std::uint8_t>> partsOf(DecodedImage& image)
{
    if (auto* const bitmap = std::get_if<Bitmap>(&image.pixels))
        return {{bitmap->bytes.data(), bitmap->bytes.size()}};
    auto& linear = std::get<LinearImage>(image.pixels);
    std::vector<std::span<std::uint8_t>> parts;
    for (auto* const plane : {&linear.red, &linear.green, &linear.blue, &linear.alpha})
        parts.emplace_back(reinterpret_cast<std::uint8_t*>(plane->data()), plane->size() * sizeof(float));
    return parts;
}

std::size_t sizeOf(const std::vector<std::span<std::uint8_t>>& parts)
{
    std::size_t size = 0;
    for (const auto& part : parts)
        size += part.size();
    return size;
}

/// What the pixels of a picture take.
std::size_t bytesOf(const DecoderAnswer::Picture& picture)
{
    const std::size_t planes = picture.hasAlpha ? 4 : 3;
    return static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height)
        * (picture.isLinear ? planes * sizeof(float) : 4);
}

/// Room for its pixels.
DecodedImage emptyImage(const DecoderAnswer::Picture& picture)
{
    DecodedImage image{{}, picture.fullWidth, picture.fullHeight, picture.note};
    if (picture.isLinear)
        image.pixels = LinearImage(
            picture.width, picture.height, picture.hasAlpha ? AlphaPlane::present : AlphaPlane::absent);
    else
        image.pixels = Bitmap(picture.width, picture.height);
    return image;
}

/// A view of shared memory.
class Mapping {
public:
    Mapping(const PosixFile& file, std::size_t size, int protection)
        : size_(size), start_(mmap(nullptr, size, protection, MAP_SHARED, file.descriptor(), 0))
    {
        if (start_ == MAP_FAILED)
            throw std::bad_alloc();
    }
    ~Mapping() { munmap(start_, size_); }
    Mapping(const Mapping&) = delete;
    Mapping& operator=(const Mapping&) = delete;

    std::uint8_t* start() const { return static_cast<std::uint8_t*>(start_); }

private:
    std::size_t size_;
    void* start_;
};

constexpr auto imageWord = "image", failureWord = "failure";

} // namespace

std::string message(const std::vector<std::string>& texts)
{
    std::string rest;
    for (const auto& text : texts)
        rest.append(text).push_back('\0');
    return fmt::format("{:08x}", rest.size()) + rest;
}

bool isWholeMessage(std::string_view text)
{
    if (text.substr(0, lengthDigits).find_first_not_of("0123456789abcdef") != text.npos)
        return true;
    const auto length = announcedLength(text);
    return length && (*length > longestMessage || text.size() - lengthDigits >= *length);
}

std::vector<std::string> textsOf(std::string_view message)
{
    const auto length = announcedLength(message);
    if (!length || message.size() - lengthDigits != *length || *length == 0 || message.back() != '\0')
        return {};
    message.remove_suffix(1);
    const auto parts = split(message.substr(lengthDigits), '\0');
    return {parts.begin(), parts.end()};
}

std::string DecoderRequest::encoded() const
{
    return message({std::to_string(number), file.native(), memory.native(), std::to_string(image.size),
        std::to_string(static_cast<int>(image.kind)), std::to_string(static_cast<int>(image.source))});
}

DecoderRequest DecoderRequest::decoded(std::string_view message)
{
    const auto texts = textsOf(message);
    if (texts.size() != 6)
        fail();
    return {numberIn(texts[0], largest), texts[1],
        {numberIn(texts[3], largest),
            static_cast<PixelKind>(numberIn(texts[4], static_cast<int>(PixelKind::asStored))),
            static_cast<PictureSource>(numberIn(texts[5], static_cast<int>(PictureSource::whole)))},
        texts[2]};
}

std::string DecoderAnswer::encoded() const
{
    if (const auto* const failure = std::get_if<Failure>(&result))
        return message({std::to_string(number), failureWord, std::to_string(static_cast<int>(failure->which)),
            failure->reason});
    const auto& picture = std::get<Picture>(result);
    return message({std::to_string(number), imageWord, std::to_string(picture.width),
        std::to_string(picture.height), std::to_string(picture.isLinear), std::to_string(picture.hasAlpha),
        std::to_string(picture.fullWidth), std::to_string(picture.fullHeight), picture.note});
}

DecoderAnswer DecoderAnswer::decoded(std::string_view message)
{
    const auto texts = textsOf(message);
    if (texts.size() == 4 && texts[1] == failureWord)
        return {numberIn(texts[0], largest),
            Failure{
                static_cast<ImageError::Case>(numberIn(texts[2], static_cast<int>(ImageError::Case::write))),
                texts[3]}};
    if (texts.size() != 9 || texts[1] != imageWord)
        fail();
    const Picture picture{numberIn(texts[2], largest, 1), numberIn(texts[3], largest, 1),
        numberIn(texts[4], 1) == 1, numberIn(texts[5], 1) == 1, numberIn(texts[6], largest, 1),
        numberIn(texts[7], largest, 1), texts[8]};
    if (picture.width > mostPixels / picture.height)
        fail();
    return {numberIn(texts[0], largest), picture};
}

PosixFile openSharedMemory(const std::filesystem::path& memory)
{
    auto file = openFile(memory, O_RDWR);
    if (file && fcntl(file.descriptor(), F_GET_SEALS) < 0) // files on disks have no seals
        return {};
    return file;
}

DecoderAnswer::Picture storeImage(const DecodedImage& image, const PosixFile& memory)
{
    const auto parts = partsOf(const_cast<DecodedImage&>(image));
    if (ftruncate(memory.descriptor(), static_cast<off_t>(sizeOf(parts))) != 0)
        throw std::bad_alloc();
    const Mapping mapping(memory, sizeOf(parts), PROT_READ | PROT_WRITE);
    std::uint8_t* to = mapping.start();
    for (const auto& part : parts)
        to = std::copy(part.begin(), part.end(), to);
    const auto* const linear = std::get_if<LinearImage>(&image.pixels);
    const auto [width, height]
        = std::visit([](const auto& pixels) { return std::pair(pixels.width, pixels.height); }, image.pixels);
    return {width, height, linear != nullptr, linear && !linear->isOpaque(), image.fullWidth,
        image.fullHeight, image.note};
}

DecodedImage loadImage(const DecoderAnswer::Picture& picture, const PosixFile& memory)
{
    struct stat status { };
    // It must not shrink while we look at it: that would end us with a signal.
    if (fcntl(memory.descriptor(), F_ADD_SEALS, F_SEAL_SHRINK) != 0
        || fstat(memory.descriptor(), &status) != 0
        || static_cast<std::size_t>(status.st_size) < bytesOf(picture))
        fail();
    auto image = emptyImage(picture);
    const auto parts = partsOf(image);
    const Mapping mapping(memory, sizeOf(parts), PROT_READ);
    const std::uint8_t* from = mapping.start();
    for (const auto& part : parts) {
        std::copy_n(from, part.size(), part.data());
        from += part.size();
    }
    return image;
}

} // namespace korvo
