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

/// What came of it: what is to be known of an image whose pixels lie in the shared memory, or the error.
struct DecoderAnswer {
    struct Picture {
        int width = 0;
        int height = 0;
        bool isLinear = false;
        bool hasAlpha = false; ///< a plane of it, in a linear image
        int fullWidth = 0;
        int fullHeight = 0;
        std::string note;
    };
    struct Failure {
        ImageError::Case which = ImageError::Case::damaged;
        std::string reason;
    };

    int number = 0; ///< of the request
    std::variant<Picture, Failure> result;

    std::string encoded() const;
    /// Throws std::invalid_argument for what is no answer, and for images larger than may be.
    static DecoderAnswer decoded(std::string_view message);
};

/// Memory to share, and nothing else: opening a file by its name gives what it finds there. None on failure.
PosixFile openSharedMemory(const std::filesystem::path& memory);

/// Copies an image's pixels into shared memory, which grows to hold them. Throws std::bad_alloc.
DecoderAnswer::Picture storeImage(const DecodedImage& image, const PosixFile& memory);
/// Copies them out of it. Throws std::invalid_argument, before anything is asked for, when the memory is too
/// short, std::bad_alloc.
DecodedImage loadImage(const DecoderAnswer::Picture& picture, const PosixFile& memory);

} // namespace korvo
