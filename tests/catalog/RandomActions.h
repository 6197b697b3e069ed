#pragma once

#include "tests/catalog/StoreModel.h"

#include <functional>
#include <memory>
#include <random>

namespace korvo {

/// What a user does, at random, to a store and to its model alike.
class RandomActions {
public:
    /// Both are used as they are at each action.
    RandomActions(unsigned seed, const std::unique_ptr<LibraryStore>& store, Model& model)
        : random_(seed), store_(store), model_(model)
    { }

    /// Does any one of them.
    void act() { actions_[upTo(actions_.size())](); }
    void chooseSource();
    /// Shows the list in another order, or other photos of it.
    void arrange();
    /// Any number below `n`.
    std::size_t upTo(std::size_t n) { return random_() % n; }

private:
    std::vector<PhotoID> somePhotos();
    /// The key of any entry; 0 when there is none.
    template <typename Map>
    std::int64_t anyOf(const Map& map)
    {
        return map.empty() ? 0 : std::next(map.begin(), static_cast<std::ptrdiff_t>(upTo(map.size())))->first;
    }
    /// Sets one thing of some photos in both.
    template <typename Value>
    void change(
        Value ModelPhoto::*member, Value value, const std::function<void(std::span<const PhotoID>)>& set);
    void changeAlbum(const std::function<void(std::int64_t, const std::vector<PhotoID>&)>& change);
    void remove();
    void removeFolder();
    void add();
    void deleteProject();
    void gather();
    void moveProject();
    void changeStack();
    void changeKeywords();
    void changeText();
    void moveInAlbum();
    std::vector<std::function<void()>> marks();
    std::vector<std::function<void()>> groups();
    std::vector<std::function<void()>> sidebar();
    std::vector<std::function<void()>> all();

    std::mt19937 random_;
    const std::unique_ptr<LibraryStore>& store_;
    Model& model_;
    const std::vector<std::function<void()>> actions_ = all();
};

} // namespace korvo
