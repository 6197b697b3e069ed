#include "platform/linux/images/DecoderProtocol.h"

#include "base/Text.h"

#include <algorithm>
#include <charconv>
#include <fcntl.h>
#include <fmt/format.h>
#include <span>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace korvo {

namespace {

constexpr std::size_t lengthDigits = 8;

[[noreturn]] void fail()
{
    throw std::invalid_argument("the message makes no sense");
}

int number(const std::string& text, int most)
{
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || value < 0 || value > most)
        fail();
    return value;
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

/// A view of shared memory.
class Mapping {
public:
    Mapping(const PosixFile& file, std::size_t size, int protection)
        : size_(size), start_(mmap(nullptr, size, protection, MAP_SHARED, file.descriptor(), 0))
    {
        if (start_ == MAP_FAILED)
            throw std::system_error(errno, std::generic_category(), "no memory for the picture");
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
    const auto length = announcedLength(text);
    return length && text.size() - lengthDigits >= *length;
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
    return message({file.native(), memory.native(), std::to_string(image.size),
        std::to_string(static_cast<int>(image.kind)), std::to_string(static_cast<int>(image.source))});
}

DecoderRequest DecoderRequest::decoded(std::string_view message)
{
    const auto texts = textsOf(message);
    if (texts.size() != 5)
        fail();
    return {texts[0],
        {number(texts[2], std::numeric_limits<int>::max()),
            static_cast<PixelKind>(number(texts[3], static_cast<int>(PixelKind::asStored))),
            static_cast<PictureSource>(number(texts[4], static_cast<int>(PictureSource::whole)))},
        texts[1]};
}

std::string DecoderAnswer::encoded() const
{
    if (const auto* const failure = std::get_if<Failure>(&result))
        return message({failureWord, std::to_string(static_cast<int>(failure->which)), failure->reason});
    const auto& image = std::get<DecodedImage>(result);
    const auto* const linear = std::get_if<LinearImage>(&image.pixels);
    const auto [width, height]
        = std::visit([](const auto& pixels) { return std::pair(pixels.width, pixels.height); }, image.pixels);
    return message({imageWord, std::to_string(width), std::to_string(height), linear ? "1" : "0",
        linear && !linear->isOpaque() ? "1" : "0", std::to_string(image.fullWidth),
        std::to_string(image.fullHeight), image.note});
}

DecoderAnswer DecoderAnswer::decoded(std::string_view message)
{
    constexpr int longestSide = std::numeric_limits<int>::max();
    const auto texts = textsOf(message);
    if (texts.size() == 3 && texts[0] == failureWord)
        return {Failure{
            static_cast<ImageError::Case>(number(texts[1], static_cast<int>(ImageError::Case::write))),
            texts[2]}};
    if (texts.size() != 8 || texts[0] != imageWord)
        fail();
    const int width = number(texts[1], longestSide), height = number(texts[2], longestSide);
    if (width == 0 || height == 0 || width > mostPixels / height)
        fail();
    DecodedImage image;
    if (number(texts[3], 1) == 1)
        image.pixels
            = LinearImage(width, height, number(texts[4], 1) == 1 ? AlphaPlane::present : AlphaPlane::absent);
    else
        image.pixels = Bitmap(width, height);
    image.fullWidth = number(texts[5], longestSide);
    image.fullHeight = number(texts[6], longestSide);
    image.note = texts[7];
    return {std::move(image)};
}

void storePixels(const DecodedImage& image, const std::filesystem::path& memory)
{
    const auto parts = partsOf(const_cast<DecodedImage&>(image));
    const auto file = openFile(memory, O_RDWR);
    if (!file || ftruncate(file.descriptor(), static_cast<off_t>(sizeOf(parts))) != 0)
        throwFileError("write", memory);
    const Mapping mapping(file, sizeOf(parts), PROT_READ | PROT_WRITE);
    std::uint8_t* to = mapping.start();
    for (const auto& part : parts)
        to = std::copy(part.begin(), part.end(), to);
}

void loadPixels(DecodedImage& image, const PosixFile& memory)
{
    const auto parts = partsOf(image);
    struct stat status { };
    // It must not shrink while we look at it: that would end us with a signal.
    if (fcntl(memory.descriptor(), F_ADD_SEALS, F_SEAL_SHRINK) != 0
        || fstat(memory.descriptor(), &status) != 0
        || static_cast<std::size_t>(status.st_size) < sizeOf(parts))
        fail();
    const Mapping mapping(memory, sizeOf(parts), PROT_READ);
    const std::uint8_t* from = mapping.start();
    for (const auto& part : parts) {
        std::copy_n(from, part.size(), part.data());
        from += part.size();
    }
}

} // namespace korvo
