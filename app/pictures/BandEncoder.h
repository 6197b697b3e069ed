#pragma once

#include "edits/BasicPlan.h"
#include "platform/PictureWriter.h"

#include <condition_variable>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>

namespace korvo {

/// Renders and encodes a picture band by band on a thread of its own while another still decodes it. What
/// comes out is what rendering it as a whole gives.
class BandEncoder {
public:
    using MakeWriter = std::function<std::unique_ptr<PictureWriter>(int width, int height)>;

    BandEncoder(BasicPlan plan, MakeWriter makeWriter) : plan_(plan), makeWriter_(std::move(makeWriter)) { }
    /// Gives up what is not finished.
    ~BandEncoder();
    BandEncoder(const BandEncoder&) = delete;
    BandEncoder& operator=(const BandEncoder&) = delete;

    /// The first `rows` rows of the picture are there. Its bytes must stay until `finish` has returned, or
    /// until this was called with 0 rows, which gives up.
    void rowsReady(const Bitmap& image, int rows);
    bool hasBegun() const { return thread_.joinable(); }

    /// The encoded picture, once all rows are there. Throws what the encoder throws.
    std::vector<std::uint8_t> finish();

private:
    void giveUp();
    void run();
    void encodeBand(PictureWriter& writer, int top, int bottom);
    /// Waits for rows; whether they came.
    bool waitFor(int rows);

    BasicPlan plan_;
    MakeWriter makeWriter_;
    const std::uint8_t* bytes_ = nullptr;
    int width_ = 0, height_ = 0;

    std::mutex mutex_;
    std::condition_variable changed_;
    int ready_ = 0;
    bool isGivenUp_ = false;

    Bitmap band_, adjusted_;
    std::vector<std::uint8_t> encoded_;
    std::exception_ptr failure_;
    std::thread thread_;
};

} // namespace korvo
