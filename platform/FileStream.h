#pragma once

#include "base/Bytes.h"
#include "platform/DirectFile.h"
#include "platform/PosixFile.h"

#include <cstddef>
#include <filesystem>
#include <future>

namespace korvo {

/// Writes a file from its start to its end while its bytes are still coming: a disk is slow enough to be
/// worth a thread. Bytes go straight to the disk where it takes them so.
class FileStream {
public:
    /// `file`, open for writing, must stay so until this is finished or gone.
    FileStream(const PosixFile& file, std::filesystem::path path);
    FileStream(FileStream&&) noexcept = default;
    FileStream& operator=(FileStream&& other) noexcept;
    ~FileStream() = default;

    /// Adds to the end; the bytes are the caller's again when this returns. Throws std::system_error, also
    /// for bytes that came before.
    void write(Bytes bytes);

    /// Waits until all is written, though not yet safe on the disk. Throws std::system_error.
    void finish();

private:
    void send();

    int descriptor_;
    std::filesystem::path path_;
    DirectBlock filling_, writing_;
    std::size_t filled_ = 0;
    std::future<void> written_; // ends first, which waits for the thread
};

} // namespace korvo
