#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace korvo {

/// One file of a model, pinned: whichever host it comes from, only these bytes are installed.
struct ModelFile {
    std::filesystem::path place; ///< below the application-data folder
    std::string source; ///< the path on the host, with its leading slash
    std::string sha256; ///< lower-case hexadecimal
    std::uint64_t mostBytes; ///< a download is cut off beyond; also the file's share of the progress
};

/// The files that are fetched, installed and removed together, and how the user knows them.
struct ModelSet {
    std::string name; ///< within a sentence: "face recognition model"
    std::vector<ModelFile> files;
};

} // namespace korvo
