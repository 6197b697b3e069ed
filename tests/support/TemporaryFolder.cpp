#include "tests/support/TemporaryFolder.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace korvo {

TemporaryFolder::TemporaryFolder()
{
    std::string name = (std::filesystem::temp_directory_path() / "korvo-XXXXXX").string();
    if (!mkdtemp(name.data()))
        throw std::runtime_error("no temporary folder");
    path_ = std::filesystem::canonical(name);
}

TemporaryFolder::~TemporaryFolder()
{
    // A folder that cannot be removed must not fail the test that used it.
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::filesystem::path TemporaryFolder::write(
    const std::filesystem::path& name, std::string_view contents) const
{
    const auto file = path_ / name;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << contents;
    return file;
}

std::string readFile(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace korvo
