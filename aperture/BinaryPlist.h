#pragma once

#include "base/Bytes.h"

#include <cstdint>
#include <exception>
#include <memory>
#include <memory_resource>
#include <optional>
#include <span>
#include <string_view>

namespace korvo {

/// A binary property list (version "bplist00"), or the keyed archive stored in one, as values in memory.
/// Bytes from outside: no buffer takes more memory or time than a small multiple of its size, or ends in
/// anything but a list or a ParseError. Copies share the values, which never change.
class BinaryPlist {
public:
    class Value;
    struct Member;
    class ParseError;

    /// Buffers of more bytes are malformed.
    static constexpr std::size_t maxSize = std::size_t(1) << 30;
    /// Arrays and dictionaries nested deeper are malformed.
    static constexpr int maxDepth = 512;

    /// The list whose root is the top object. Throws ParseError.
    static BinaryPlist parse(Bytes bytes);

    /// The root object of a keyed archive as plain values: dictionaries with text as keys (each of them
    /// once), arrays, strings, numbers, dates and data; members and elements that the archive holds as null
    /// are left out. Nothing when the list is no archive or its root leads nowhere. Throws ParseError, also
    /// for an archive whose objects refer to each other so often that it has no reasonable size.
    static std::optional<BinaryPlist> unarchive(Bytes bytes);

    /// A list without anything: its root is null.
    BinaryPlist();

    /// Lives, with all that it holds, as long as the list or a copy of it does.
    const Value& root() const& { return *root_; }
    const Value& root() const&& = delete;

private:
    /// All of a list lies in a few blocks that are freed at once: an allocation for each value takes longer
    /// than everything else.
    using Memory = std::pmr::monotonic_buffer_resource;

    BinaryPlist(std::shared_ptr<Memory> memory, const Value& root);
    static Value parseInto(Memory& memory, Bytes bytes);

    std::shared_ptr<const Memory> memory_;
    const Value* root_; // in the memory
};

/// One value of a property list. What arrays, dictionaries, strings and data hold belongs to the list.
class BinaryPlist::Value {
public:
    enum class Kind : std::uint8_t { boolean, integer, real, date, data, string, uid, array, dict, null };

    struct Date {
        double seconds; ///< since 2001-01-01 00:00:00 UTC
    };
    struct Uid {
        std::int64_t index; ///< into a keyed archive's "$objects"
    };
    using Data = std::span<const std::uint8_t>;
    using Array = std::span<const Value>;
    using Dict = std::span<const Member>;

    constexpr Value() = default;
    explicit Value(bool value) : boolean_(value), kind_(Kind::boolean) { }
    explicit Value(std::int64_t value) : integer_(value), kind_(Kind::integer) { }
    explicit Value(double value) : real_(value), kind_(Kind::real) { }
    explicit Value(Date value) : real_(value.seconds), kind_(Kind::date) { }
    explicit Value(Uid value) : integer_(value.index), kind_(Kind::uid) { }
    // These keep what they are given, which must outlive the value.
    explicit Value(Data value) : Value(value.data(), value.size(), Kind::data) { }
    explicit Value(std::string_view value) : Value(value.data(), value.size(), Kind::string) { }
    explicit Value(const char*) = delete; // would be a boolean
    explicit Value(Array value) : Value(value.data(), value.size(), Kind::array) { }
    explicit Value(Dict value);

    Kind kind() const { return kind_; }
    bool isNull() const { return is(Kind::null); }

    // Each is nothing, or empty, for a value of another kind.
    std::optional<bool> boolean() const { return is(Kind::boolean) ? std::optional(boolean_) : std::nullopt; }
    std::optional<std::int64_t> integer() const
    {
        return is(Kind::integer) ? std::optional(integer_) : std::nullopt;
    }
    std::optional<double> real() const { return is(Kind::real) ? std::optional(real_) : std::nullopt; }
    /// An integer or a real.
    std::optional<double> number() const;
    std::optional<double> date() const { return is(Kind::date) ? std::optional(real_) : std::nullopt; }
    std::optional<std::int64_t> uid() const { return is(Kind::uid) ? std::optional(integer_) : std::nullopt; }
    std::optional<std::string_view> text() const;
    Data data() const { return held<std::uint8_t>(Kind::data); }
    Array elements() const { return held<Value>(Kind::array); }
    /// The pairs of a dictionary in the order of the file; keys may be of any kind and appear twice.
    Dict members() const;

    /// The value under a key that is this text, the last one of several, or null when there is none.
    const Value* member(std::string_view key) const;

private:
    Value(const void* held, std::size_t count, Kind kind)
        : held_(held), count_(static_cast<std::uint32_t>(count)), kind_(kind)
    { }
    bool is(Kind kind) const { return kind_ == kind; }
    template <typename T>
    std::span<const T> held(Kind kind) const
    {
        return is(kind) ? std::span(static_cast<const T*>(held_), count_) : std::span<const T>();
    }

    union {
        bool boolean_;
        std::int64_t integer_ = 0;
        double real_;
        const void* held_;
    };
    std::uint32_t count_ = 0; // of bytes, elements or pairs held
    Kind kind_ = Kind::null;
};

struct BinaryPlist::Member {
    Value key;
    Value value;
};

/// Why bytes are no property list.
class BinaryPlist::ParseError : public std::exception {
public:
    enum class Case {
        notBinaryPlist, ///< not a binary property list of version "bplist00"
        malformed, ///< it claims to be one, but is damaged or made to do harm
    };

    explicit ParseError(Case which) : which_(which) { }

    Case which() const { return which_; }
    const char* what() const noexcept override
    {
        return which_ == Case::notBinaryPlist ? "It isn't a binary property list."
                                              : "The binary property list is damaged.";
    }

private:
    Case which_;
};

} // namespace korvo
