#include "app/pictures/BandEncoder.h"

#include "edits/BasicPlan.h"
#include "edits/BasicStage.h"

#include <algorithm>

namespace korvo {

namespace {

constexpr int bandHeight = 250; // with both aprons two rows of the stage's tiles
constexpr int apron = sharpeningReach; // rows above and below that are looked at

} // namespace

BandEncoder::~BandEncoder()
{
    giveUp();
}

void BandEncoder::giveUp()
{
    {
        const std::scoped_lock lock(mutex_);
        isGivenUp_ = true;
    }
    changed_.notify_one();
    if (thread_.joinable())
        thread_.join();
}

void BandEncoder::rowsReady(const Bitmap& image, int rows)
{
    if (rows == 0)
        return giveUp();
    if (!hasBegun()) {
        bytes_ = image.bytes.data();
        width_ = image.width;
        height_ = image.height;
        ready_ = 0;
        isGivenUp_ = false;
        failure_ = nullptr;
        thread_ = std::thread([this] { run(); });
    }
    {
        const std::scoped_lock lock(mutex_);
        ready_ = rows;
    }
    changed_.notify_one();
}

std::vector<std::uint8_t> BandEncoder::finish()
{
    thread_.join();
    if (failure_)
        std::rethrow_exception(failure_);
    return std::move(encoded_);
}

bool BandEncoder::waitFor(int rows)
{
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return isGivenUp_ || ready_ >= rows; });
    return !isGivenUp_;
}

void BandEncoder::run()
try {
    const auto writer = makeWriter_(width_, height_);
    for (int top = 0; top < height_; top += bandHeight) {
        const int bottom = std::min(top + bandHeight, height_);
        if (!waitFor(std::min(bottom + apron, height_)))
            return;
        encodeBand(*writer, top, bottom);
    }
    encoded_ = writer->finish();
} catch (...) {
    failure_ = std::current_exception(); // thrown on by finish
}

void BandEncoder::encodeBand(PictureWriter& writer, int top, int bottom)
{
    const auto rowBytes = 4 * static_cast<std::size_t>(width_);
    const auto row = [&](int y) { return bytes_ + rowBytes * static_cast<std::size_t>(y); };
    if (plan_.isIdentity()) {
        for (int y = top; y < bottom; ++y)
            writer.write(row(y));
        return;
    }
    const int first = std::max(top - apron, 0), last = std::min(bottom + apron, height_);
    if (band_.height != last - first)
        band_ = Bitmap(width_, last - first);
    std::copy(row(first), row(last), band_.bytes.begin());
    runBasicStage(plan_, band_, adjusted_);
    for (int y = top; y < bottom; ++y)
        writer.write(adjusted_.row(y - first));
}

} // namespace korvo
