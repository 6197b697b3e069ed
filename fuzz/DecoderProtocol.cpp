// What a decoder process may say, and the shared memory that it leaves behind: the input is the number of the
// memory's bytes, in three, one unused, and the text of its answer. What is an answer must be written as it
// was read, and an image lies wholly in the memory.
#include "platform/linux/images/DecoderProtocol.h"

#include "base/Bytes.h"

#include <cstdlib>
#include <stdexcept>
#include <sys/mman.h>
#include <unistd.h>

using namespace korvo;

namespace {

void load(const DecoderAnswer::Picture& picture, std::size_t size)
{
    const PosixFile memory(memfd_create("picture", MFD_CLOEXEC | MFD_ALLOW_SEALING));
    if (ftruncate(memory.descriptor(), static_cast<off_t>(size)) != 0)
        std::abort();
    const auto image = loadImage(picture, memory);
    const auto pixels = static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height);
    if (4 * pixels > size || image.fullWidth != picture.fullWidth)
        std::abort();
}

template <typename Message>
Message checked(std::string_view text)
{
    auto message = Message::decoded(text);
    const auto again = message.encoded();
    if (!isWholeMessage(again) || Message::decoded(again).encoded() != again)
        std::abort();
    return message;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const Bytes bytes(data, size);
    const auto memory = bytes.littleEndian(0, 3).value_or(0);
    const auto text = bytes.from(4).text();
    try {
        checked<DecoderRequest>(text);
    } catch (const std::invalid_argument&) { }
    try {
        const auto answer = checked<DecoderAnswer>(text);
        if (const auto* const picture = std::get_if<DecoderAnswer::Picture>(&answer.result))
            load(*picture, memory);
    } catch (const std::invalid_argument&) { }
    return 0;
}
