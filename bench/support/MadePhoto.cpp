#include "bench/support/MadePhoto.h"

#include "platform/PictureWriter.h"

#include <cmath>
#include <fstream>

namespace korvo::bench {

std::filesystem::path madePhoto(const std::filesystem::path& file, int width, int height, int number)
{
    const auto writer = pictureWriter(PictureFormat::jpeg, {width, height}, 89, file);
    std::vector<std::uint8_t> row(4 * static_cast<std::size_t>(width));
    auto state = static_cast<unsigned>(number);
    for (int y = 0; y < height; ++y) {
        for (int i = 0; i < 4 * width; ++i) {
            const double wave = std::sin(i * 0.002 + number) * std::cos(y * 0.003) * 80
                + std::sin(i * 0.07 + y * 0.05) * 20;
            state = state * 1664525 + 1013904223;
            row[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(128 + wave + (state >> 28));
        }
        writer->write(row.data());
    }
    const auto bytes = writer->finish();
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return file;
}

} // namespace korvo::bench
