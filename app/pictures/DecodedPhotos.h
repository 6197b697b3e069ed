#pragma once

#include "base/MainThread.h"
#include "base/Signal.h"
#include "base/Task.h"
#include "platform/ImageReader.h"

#include <condition_variable>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <thread>

namespace korvo {

/// A picture of a file as it is decoded, before any edits.
struct DecodeWish {
    std::filesystem::path file;
    int size = 0; ///< the most pixels of the longer side; 0: as many as there are
    PictureSource source = PictureSource::whole;

    auto operator<=>(const DecodeWish&) const = default;
};

/// What came of a wish: an image, or a sentence that says why there is none.
struct DecodedPhoto {
    DecodedImage image;
    std::string fault;

    bool isThere() const { return fault.empty(); }
    std::size_t bytes() const;
};

/// Pictures that are shown, or will be next, decoded on threads of its own and kept in memory. Who looks at
/// photos says what is wished, the most urgent first; each new list replaces the one before, stops what is
/// under way for it alone, and forgets faults, so that a file that has come back is read again. Used on the
/// main thread.
class DecodedPhotos {
public:
    static constexpr std::size_t usualBound = std::size_t(768) << 20;

    /// `main` and `reader` must outlive it. What was not wished for the longest time goes first when more
    /// than `mostBytes` are held; what is wished stays.
    DecodedPhotos(MainThread& main, ImageReader& reader, std::size_t mostBytes = usualBound);
    ~DecodedPhotos();
    DecodedPhotos(const DecodedPhotos&) = delete;
    DecodedPhotos& operator=(const DecodedPhotos&) = delete;

    /// A wished picture has been decoded, or could not be.
    Signal<const DecodeWish&> arrived;

    /// `viewer` tells apart who wishes: each has a list of its own, the first viewer's comes first.
    void wish(int viewer, std::vector<DecodeWish> wishes);
    /// A number for one more viewer, behind all others.
    int newViewer() { return viewers_++; }
    /// Decodes again what another program may have changed in its file meanwhile; till then the picture of
    /// before stays.
    void lookForChanges();
    /// Null while it is not there.
    std::shared_ptr<const DecodedPhoto> find(const DecodeWish& wish) const;
    /// Whether wished pictures are still to come.
    bool isBusy();

private:
    using FileTime = std::filesystem::file_time_type; ///< least for a file that is not there
    struct Kept {
        std::shared_ptr<const DecodedPhoto> photo;
        FileTime fileTime; ///< as it was read
        std::uint64_t wished = 0; ///< when last, as a count of lists
    };
    struct UnderWay {
        DecodeWish wish;
        std::stop_source stop;
        FileTime fileTime = {};
    };

    void work(const std::stop_token& stop);
    std::shared_ptr<UnderWay> next(const std::stop_token& stop);
    void keep(const std::shared_ptr<UnderWay>& underWay, DecodedPhoto photo);
    bool isWished(const DecodeWish& wish) const;
    void makeRoom();
    static FileTime fileTime(const std::filesystem::path& file);
    void forget(const std::vector<DecodeWish>& changed);

    MainThread& main_;
    ImageReader& reader_;
    std::size_t mostBytes_;
    int viewers_ = 0;
    std::map<int, std::vector<DecodeWish>> wishes_;
    std::map<DecodeWish, Kept> kept_; // main thread only
    std::uint64_t lists_ = 0;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true); // main thread only

    std::mutex mutex_; // for what follows
    std::condition_variable_any wished_;
    std::list<DecodeWish> waiting_;
    std::list<std::shared_ptr<UnderWay>> underWay_;
    std::vector<std::jthread> workers_; // last, so that they end first
    bool isLooking_ = false; // main thread only
    Task looking_;
};

} // namespace korvo
