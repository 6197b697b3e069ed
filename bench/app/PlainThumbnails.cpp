#include "bench/app/PlainThumbnails.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <thread>
#include <turbojpeg.h>

namespace korvo::bench {

namespace {

namespace fs = std::filesystem;

struct Picture {
    int width = 0, height = 0;
    std::vector<std::uint8_t> bytes; // four a pixel

    void resize(int newWidth, int newHeight)
    {
        width = newWidth, height = newHeight;
        bytes.resize(4 * static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    }
    const std::uint8_t* at(int x, int y) const
    {
        return bytes.data() + 4 * (static_cast<std::ptrdiff_t>(y) * width + x);
    }
};

using Turbo = std::unique_ptr<void, int (*)(tjhandle)>;

void require(int result, const fs::path& file)
{
    if (result != 0)
        throw std::runtime_error(file.string() + ": " + tjGetErrorStr());
}

void decodeScaled(tjhandle decoder, const fs::path& file, int size, Picture& picture)
{
    std::ifstream stream(file, std::ios::binary);
    std::vector<char> contents(fs::file_size(file));
    stream.read(contents.data(), static_cast<std::streamsize>(contents.size()));
    const auto* const jpeg = reinterpret_cast<const unsigned char*>(contents.data());
    int width = 0, height = 0, sampling = 0, colours = 0;
    require(tjDecompressHeader3(decoder, jpeg, contents.size(), &width, &height, &sampling, &colours), file);
    int count = 0;
    const auto* const factors = tjGetScalingFactors(&count);
    int least = width, high = height;
    for (const auto& factor : std::span(factors, static_cast<std::size_t>(count)))
        if (const int w = TJSCALED(width, factor), h = TJSCALED(height, factor);
            std::max(w, h) >= size && w < least)
            least = w, high = h;
    picture.resize(least, high);
    require(tjDecompress2(decoder, jpeg, contents.size(), picture.bytes.data(), least, 0, high, TJPF_RGBX, 0),
        file);
}

/// The average of what one pixel covers: from x0 to x1 and y0 to y1, in pixels of the picture.
void average(const Picture& picture, float x0, float x1, float y0, float y1, std::uint8_t* pixel)
{
    float sums[3] = {0, 0, 0}, area = 0;
    for (int y = static_cast<int>(y0); static_cast<float>(y) < y1 && y < picture.height; ++y) {
        const float high = std::min(y1, static_cast<float>(y + 1)) - std::max(y0, static_cast<float>(y));
        for (int x = static_cast<int>(x0); static_cast<float>(x) < x1 && x < picture.width; ++x) {
            const float part
                = high * (std::min(x1, static_cast<float>(x + 1)) - std::max(x0, static_cast<float>(x)));
            const auto* const from = picture.at(x, y);
            for (int channel = 0; channel < 3; ++channel)
                sums[channel] += part * from[channel];
            area += part;
        }
    }
    for (int channel = 0; channel < 3; ++channel)
        pixel[channel] = static_cast<std::uint8_t>(sums[channel] / area + 0.5F);
}

void shrink(const Picture& picture, int size, Picture& result)
{
    const float scale = std::max(
        1.0F, static_cast<float>(std::max(picture.width, picture.height)) / static_cast<float>(size));
    result.resize(static_cast<int>(std::lround(static_cast<float>(picture.width) / scale)),
        static_cast<int>(std::lround(static_cast<float>(picture.height) / scale)));
    auto* pixel = result.bytes.data();
    for (int y = 0; y < result.height; ++y)
        for (int x = 0; x < result.width; ++x, pixel += 4)
            average(picture, static_cast<float>(x) * scale, static_cast<float>(x + 1) * scale,
                static_cast<float>(y) * scale, static_cast<float>(y + 1) * scale, pixel);
}

void encode(tjhandle encoder, const Picture& picture, const fs::path& file)
{
    unsigned char* jpeg = nullptr;
    unsigned long size = 0;
    require(tjCompress2(encoder, picture.bytes.data(), picture.width, 0, picture.height, TJPF_RGBX, &jpeg,
                &size, TJSAMP_420, 80, 0),
        file);
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<const char*>(jpeg), static_cast<std::streamsize>(size));
    tjFree(jpeg);
}

} // namespace

void plainThumbnails(const std::vector<fs::path>& files, const fs::path& folder, int workers, int size)
{
    std::atomic<std::size_t> next = 0;
    const auto work = [&] {
        const Turbo decoder(tjInitDecompress(), tjDestroy), encoder(tjInitCompress(), tjDestroy);
        Picture picture, result;
        for (auto i = next++; i < files.size(); i = next++) {
            decodeScaled(decoder.get(), files[i], size, picture);
            shrink(picture, size, result);
            encode(encoder.get(), result, folder / (std::to_string(i) + ".jpg"));
        }
    };
    std::vector<std::jthread> threads;
    for (int i = 0; i < workers; ++i)
        threads.emplace_back(work);
}

} // namespace korvo::bench
