#include "base/SharedText.h"

#include <atomic>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <stdexcept>

namespace korvo {

/// The characters stand right behind the block.
struct SharedText::Block {
    std::atomic<std::uint32_t> owners;
    std::uint32_t size;

    char* characters() { return reinterpret_cast<char*>(this + 1); }
    const char* characters() const { return reinterpret_cast<const char*>(this + 1); }
};

SharedText::Block* SharedText::allocate(std::string_view text)
{
    if (text.size() > std::numeric_limits<std::uint32_t>::max())
        throw std::length_error("a text of more than 4 GiB");
    void* const memory = ::operator new(sizeof(Block) + text.size());
    auto* const block = new (memory) Block{1, static_cast<std::uint32_t>(text.size())};
    std::memcpy(block->characters(), text.data(), text.size());
    return block;
}

std::string_view SharedText::viewOf(const Block* block)
{
    return {block->characters(), block->size};
}

void SharedText::retain() const
{
    if (block_)
        block_->owners.fetch_add(1, std::memory_order_relaxed);
}

void SharedText::release()
{
    if (!block_ || block_->owners.fetch_sub(1, std::memory_order_acq_rel) != 1)
        return;
    block_->~Block();
    ::operator delete(block_);
}

} // namespace korvo
