#pragma once

#include <filesystem>
#include <string>

namespace korvo {

/// The file of that name in tests/data/metadata.
inline std::filesystem::path fixture(const std::string& name)
{
    return std::filesystem::path(KORVO_TEST_DATA) / "metadata" / name;
}

} // namespace korvo
