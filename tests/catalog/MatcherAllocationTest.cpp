#include "catalog/SmartAlbumMatcher.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // which count for themselves

namespace {

thread_local std::size_t allocations = 0;

} // namespace

// Those of this whole program, counted; not inlined, since the compiler would see one without the other.
[[gnu::noinline]] void* operator new(std::size_t size)
{
    ++allocations;
    if (void* const memory = std::malloc(size > 0 ? size : 1))
        return memory;
    throw std::bad_alloc();
}

[[gnu::noinline]] void operator delete(void* memory) noexcept
{
    std::free(memory);
}

[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

namespace korvo {

TEST(SmartAlbumMatcher, allocatesNothingForThePhotosItTries)
{
    using Field = SmartAlbumRule::Field;
    using Op = SmartAlbumRule::Op;
    SmartAlbumRules rules{{}, false};
    for (const auto& field : smartAlbumFields())
        rules.rules.push_back({field.field, field.ops.front(), "7"});
    rules.rules.insert(rules.rules.end(),
        {{Field::location, Op::near, "1 km of 80, 80"}, {Field::date, Op::is, "1990-01-01"},
            {Field::text, Op::contains, "nowhere ÄRGER"}, {Field::person, Op::is, "Nobody"},
            {Field::kind, Op::is, "video"}, {Field::flagged, Op::is, "yes"}});
    SmartAlbumMatcher matcher(rules);
    PhotoItem item;
    item.filename = "Straße und noch viel mehr.jpg";
    item.metadata = {"Brücke", "İstanbul", "a caption that is longer than any text kept in place", "a, b, ä",
        "Ana Müller", "© Ana"};
    item.people = "Ana, Bö";
    item.captureDate = 1e9;
    item.latitude = 10.0;
    item.longitude = 10.0;
    ASSERT_FALSE(matcher.matches(item)) << "every rule is tried";
    const auto before = allocations;
    for (int i = 0; i < 100; ++i)
        matcher.matches(item);
    EXPECT_EQ(allocations - before, 0U);
}

} // namespace korvo

#endif
