#pragma once

#include "base/Bytes.h"
#include "base/PathFailure.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <stdexcept>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

namespace korvo {

/// One file of a card, a folder or a camera.
struct SourceFile {
    std::filesystem::path path; // absolute; on a camera, from the top of what it shows
    std::filesystem::path chosen; // the folder, named by the user, that it lies in; empty for none
    std::uint64_t size = 0;
    std::optional<std::filesystem::file_time_type> modified;
};

struct SourceListing {
    std::vector<SourceFile> files; // in an order that depends on the names alone
    std::vector<PathFailure> failures; // what cannot be looked into
};

/// A source that does not give what it holds; the text tells why, and names no file.
class SourceError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Where files are imported from. Used by one thread at a time, but for preview(); calls may take long.
class FileSource {
public:
    /// Which names are listed.
    using Admits = bool (*)(std::string_view filename);

    virtual ~FileSource() = default;

    /// Those of its files whose names are admitted, hidden ones left out; what was found until a stop
    /// request. Throws SourceError when nothing can be listed.
    virtual SourceListing list(Admits admits, const std::stop_token& stop) = 0;

    /// Hands out the bytes of a file in their order, until the end or a stop request. Throws SourceError, and
    /// what `use` throws.
    virtual void read(
        const SourceFile& file, const std::function<void(Bytes)>& use, const std::stop_token& stop)
        = 0;

    /// A small picture of a file, as a file of its own, where the source gives one without handing out the
    /// whole; else empty. Throws SourceError.
    virtual std::string preview(const SourceFile& file, const std::stop_token& stop)
    {
        (void)file, (void)stop;
        return {};
    }
};

} // namespace korvo
