// Verifying a model of 400 MB beside the command `openssl dgst -sha256`, whose start takes a few of its
// milliseconds. The file is in the page cache for both.
#include "bench/support/Compare.h"
#include "platform/Sha256.h"
#include "tests/support/TemporaryFolder.h"

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <random>
#include <stdexcept>

namespace {

constexpr std::size_t megabyte = 1'000'000;
constexpr std::size_t megabytes = 400;

void writeModel(const std::filesystem::path& file)
{
    std::string bytes(megabyte, '\0');
    std::minstd_rand random;
    std::ofstream stream(file, std::ios::binary);
    for (std::size_t i = 0; i < megabytes; ++i) {
        for (auto& byte : bytes)
            byte = static_cast<char>(random());
        stream << bytes;
    }
}

void runOpenssl(const std::filesystem::path& file)
{
    if (std::system(("openssl dgst -sha256 '" + file.string() + "' > /dev/null").c_str()) != 0)
        throw std::runtime_error("openssl does not run");
}

} // namespace

int main()
{
    const korvo::TemporaryFolder folder;
    const auto file = folder / "model";
    writeModel(file);
    const auto seconds = korvo::bench::compare("verify 400 MB",
        {
            {"korvo", [&] { korvo::sha256OfFile(file, {}); }},
            {"openssl dgst -sha256", [&] { runOpenssl(file); }},
        },
        11);
    std::cout << "rate beside openssl: " << seconds[1] / seconds[0] << ", "
              << static_cast<double>(megabytes) / seconds[0] << " MB/s\n";
}
