#pragma once

#include "platform/ImageReader.h"
#include "platform/PosixFile.h"

#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// What we and the decoder process say to each other: messages of texts, and the pixels in shared memory.
namespace korvo {

/// A message: the length of the rest in 8 hexadecimal digits, then texts, each ended by a NUL.
std::string message(const std::vector<std::string>& texts);
/// Whether nothing more has to be waited for: the text begins with a whole message, or can never become one.
bool isWholeMessage(std::string_view text);
/// The texts of a message; empty when it is none.
std::vector<std::string> textsOf(std::string_view message);

struct DecoderRequest {
    int number = 0; ///< which the answer repeats
    std::filesystem::path file;
    ImageRequest image;
    std::filesystem::path memory; ///< the file of the shared memory

    std::string encoded() const;
    /// Throws std::invalid_argument for what is no request.
    static DecoderRequest decoded(std::string_view message);
};

/// What came of it: an image whose pixels are left out, or the error.
struct DecoderAnswer {
    struct Failure {
        ImageError::Case which = ImageError::Case::damaged;
        std::string reason;
    };

    int number = 0; ///< of the request
    std::variant<DecodedImage, Failure> result;

    /// Images are told by their size and kind.
    std::string encoded() const;
    /// Makes room for the pixels. Throws std::invalid_argument for what is no answer, and for images larger
    /// than may be.
    static DecoderAnswer decoded(std::string_view message);
};

/// Memory to share, and nothing else: opening a file by its name gives what it finds there. None on failure.
PosixFile openSharedMemory(const std::filesystem::path& memory);

/// Copies an image's pixels into shared memory, which grows to hold them. Throws std::bad_alloc.
void storePixels(const DecodedImage& image, const PosixFile& memory);
/// Copies them out of it. Throws std::invalid_argument when the memory is too short, std::bad_alloc.
void loadPixels(DecodedImage& image, const PosixFile& memory);

} // namespace korvo
