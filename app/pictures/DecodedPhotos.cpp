#include "app/pictures/DecodedPhotos.h"

#include "app/pictures/Previews.h"

#include <algorithm>
#include <utility>

namespace korvo {

namespace {

constexpr int workerCount = 2; // decoders use more than one processor where they can

std::size_t bytesOf(const Bitmap& image)
{
    return image.bytes.size();
}

std::size_t bytesOf(const LinearImage& image)
{
    return sizeof(float) * (3 * image.pixels() + image.alpha.size());
}

std::string faultOf(const std::filesystem::path& file, const std::exception& error)
{
    std::error_code unknown; // then the error says more
    const bool isMissing = !std::filesystem::exists(file, unknown) && !unknown;
    return isMissing ? missingFileText(file.native()) : error.what();
}

bool contains(const std::vector<DecodeWish>& wishes, const DecodeWish& wish)
{
    return std::ranges::find(wishes, wish) != wishes.end();
}

} // namespace

std::size_t DecodedPhoto::bytes() const
{
    return std::visit([](const auto& pixels) { return bytesOf(pixels); }, image.pixels);
}

DecodedPhotos::DecodedPhotos(MainThread& main, ImageReader& reader, std::size_t mostBytes)
    : main_(main), reader_(reader), mostBytes_(mostBytes)
{
    for (int i = 0; i < workerCount; ++i)
        workers_.emplace_back([this](const std::stop_token& stop) { work(stop); });
}

DecodedPhotos::~DecodedPhotos()
{
    *alive_ = false;
    for (auto& worker : workers_)
        worker.request_stop();
    const std::scoped_lock lock(mutex_);
    for (const auto& underWay : underWay_)
        underWay->stop.request_stop();
}

void DecodedPhotos::wish(int viewer, std::vector<DecodeWish> wishes)
{
    main_.assertCurrent();
    ++lists_;
    if (wishes.empty()) // it may have gone
        wishes_.erase(viewer);
    else
        wishes_[viewer] = std::move(wishes);
    std::erase_if(kept_, [](const auto& entry) { return !entry.second.photo->isThere(); });
    const std::scoped_lock lock(mutex_);
    waiting_.clear();
    for (const auto& [who, list] : wishes_)
        for (const auto& wish : list) {
            const auto kept = kept_.find(wish);
            if (kept != kept_.end())
                kept->second.wished = lists_;
            else if (std::ranges::find(underWay_, wish, &UnderWay::wish) == underWay_.end()
                && std::ranges::find(waiting_, wish) == waiting_.end())
                waiting_.push_back(wish);
        }
    for (const auto& underWay : underWay_)
        if (!isWished(underWay->wish))
            underWay->stop.request_stop();
    wished_.notify_all();
}

DecodedPhotos::FileTime DecodedPhotos::fileTime(const std::filesystem::path& file)
{
    std::error_code error; // one that is missing is an error once it is read
    return std::filesystem::last_write_time(file, error);
}

void DecodedPhotos::lookForChanges()
{
    main_.assertCurrent();
    if (std::exchange(isLooking_, true)) // a slow disk must hold up nobody
        return;
    std::vector<std::pair<DecodeWish, FileTime>> kept;
    for (const auto& [wish, picture] : kept_)
        kept.emplace_back(wish, picture.fileTime);
    looking_ = runInBackground(main_, [this, kept = std::move(kept)](const Task::Context& context) {
        std::vector<DecodeWish> changed;
        for (const auto& [wish, time] : kept)
            if (!context.stopRequested() && fileTime(wish.file) != time)
                changed.push_back(wish);
        context.deliver([this, changed = std::move(changed)] { forget(changed); });
    });
}

/// What is wished of these is decoded again.
void DecodedPhotos::forget(const std::vector<DecodeWish>& changed)
{
    isLooking_ = false;
    for (const auto& wish : changed)
        kept_.erase(wish);
    const std::scoped_lock lock(mutex_);
    for (const auto& wish : changed)
        if (isWished(wish))
            waiting_.push_back(wish);
    wished_.notify_all();
}

std::shared_ptr<const DecodedPhoto> DecodedPhotos::find(const DecodeWish& wish) const
{
    const auto kept = kept_.find(wish);
    return kept == kept_.end() ? nullptr : kept->second.photo;
}

bool DecodedPhotos::isBusy()
{
    const std::scoped_lock lock(mutex_);
    return !waiting_.empty() || !underWay_.empty();
}

bool DecodedPhotos::isWished(const DecodeWish& wish) const
{
    return std::ranges::any_of(wishes_, [&](const auto& list) { return contains(list.second, wish); });
}

std::shared_ptr<DecodedPhotos::UnderWay> DecodedPhotos::next(const std::stop_token& stop)
{
    std::unique_lock lock(mutex_);
    wished_.wait(lock, stop, [this] { return !waiting_.empty(); });
    if (stop.stop_requested())
        return nullptr;
    auto result = std::make_shared<UnderWay>(UnderWay{waiting_.front(), {}, {}});
    waiting_.pop_front();
    underWay_.push_back(result);
    return result;
}

void DecodedPhotos::work(const std::stop_token& stop)
{
    while (const auto underWay = next(stop)) {
        DecodedPhoto photo;
        underWay->fileTime = fileTime(underWay->wish.file);
        try {
            const ImageRequest request{
                .size = underWay->wish.size, .kind = PixelKind::asStored, .source = underWay->wish.source};
            photo.image = reader_.read(underWay->wish.file, request, underWay->stop.get_token());
        } catch (const std::exception& error) { // shown in the picture's place
            photo.fault = faultOf(underWay->wish.file, error);
        }
        auto shared = std::make_shared<DecodedPhoto>(std::move(photo));
        main_.post([this, alive = alive_, underWay, shared] {
            if (*alive)
                keep(underWay, std::move(*shared));
        });
    }
}

void DecodedPhotos::keep(const std::shared_ptr<UnderWay>& underWay, DecodedPhoto photo)
{
    const auto wish = underWay->wish;
    {
        const std::scoped_lock lock(mutex_);
        underWay_.remove(underWay);
        // Wished again after it was stopped: from the start.
        if (underWay->stop.stop_requested() && !photo.isThere()) {
            if (isWished(wish)) {
                waiting_.push_front(wish);
                wished_.notify_one();
            }
            return;
        }
    }
    kept_[wish] = {std::make_shared<const DecodedPhoto>(std::move(photo)), underWay->fileTime, lists_};
    makeRoom();
    if (isWished(wish))
        arrived.emit(wish);
}

void DecodedPhotos::makeRoom()
{
    std::size_t total = 0;
    for (const auto& [wish, kept] : kept_)
        total += kept.photo->bytes();
    while (total > mostBytes_) {
        const auto age
            = [this](const auto& entry) { return std::pair(isWished(entry.first), entry.second.wished); };
        const auto oldest
            = std::ranges::min_element(kept_, [&](const auto& a, const auto& b) { return age(a) < age(b); });
        if (oldest == kept_.end() || isWished(oldest->first))
            return;
        total -= oldest->second.photo->bytes();
        kept_.erase(oldest);
    }
}

} // namespace korvo
