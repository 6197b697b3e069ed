#pragma once

#include "base/Bytes.h"
#include "base/SharedText.h"

#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <variant>
#include <vector>

namespace korvo {

/// Binary property lists (version "bplist00") and the keyed archives stored in them. Bytes from outside: no
/// buffer takes more memory or time than a small multiple of its size, or ends in anything but a value or a
/// ParseError.
struct BinaryPlist {
    class Value;
    struct Member;
    class ParseError;

    /// Buffers of more bytes are malformed.
    static constexpr std::size_t maxSize = std::size_t(1) << 30;
    /// Arrays and dictionaries nested deeper are malformed.
    static constexpr int maxDepth = 512;

    /// The top object. Throws ParseError.
    static Value parse(Bytes bytes);

    /// The root object of a keyed archive as plain values: dictionaries with text as keys (each of them
    /// once), arrays, strings, numbers, dates and data; members and elements that the archive holds as null
    /// are left out. Nothing when the list is no archive or its root leads nowhere. Throws ParseError, also
    /// for an archive whose objects refer to each other so often that it has no reasonable size.
    static std::optional<Value> unarchive(Bytes bytes);
};

/// One value of a property list. Copies share what arrays, dictionaries, strings and data hold, which never
/// changes.
class BinaryPlist::Value {
public:
    /// In the order of the alternatives below.
    enum class Kind { boolean, integer, real, date, data, string, uid, array, dict, null };

    struct Null { };
    struct Date {
        double seconds; ///< since 2001-01-01 00:00:00 UTC
    };
    struct Uid {
        std::int64_t index; ///< into a keyed archive's "$objects"
    };
    using Data = std::vector<std::uint8_t>;
    using Array = std::vector<Value>;
    using Dict = std::vector<Member>;

    Value() : storage_(Null()) { }
    explicit Value(bool value) : storage_(value) { }
    explicit Value(std::int64_t value) : storage_(value) { }
    explicit Value(double value) : storage_(value) { }
    explicit Value(Date value) : storage_(value) { }
    explicit Value(Uid value) : storage_(value) { }
    explicit Value(SharedText value) : storage_(std::move(value)) { }
    explicit Value(const char* text) : storage_(SharedText(text)) { }
    explicit Value(Data value) : storage_(std::make_shared<const Data>(std::move(value))) { }
    explicit Value(Array value);
    explicit Value(Dict value);

    Kind kind() const { return static_cast<Kind>(storage_.index()); }
    bool isNull() const { return kind() == Kind::null; }

    // Each is nothing, or empty, for a value of another kind.
    std::optional<bool> boolean() const { return plain<bool>(); }
    std::optional<std::int64_t> integer() const { return plain<std::int64_t>(); }
    std::optional<double> real() const { return plain<double>(); }
    /// An integer or a real.
    std::optional<double> number() const;
    std::optional<double> date() const;
    std::optional<std::int64_t> uid() const;
    std::optional<std::string_view> text() const;
    std::span<const std::uint8_t> data() const;
    std::span<const Value> elements() const;
    /// The pairs of a dictionary in the order of the file; keys may be of any kind and appear twice.
    std::span<const Member> members() const;

    /// The value under a key that is this text, the last one of several, or null when there is none.
    const Value* member(std::string_view key) const;

private:
    template <typename T>
    std::optional<T> plain() const
    {
        const T* const value = std::get_if<T>(&storage_);
        return value ? std::optional(*value) : std::nullopt;
    }
    template <typename T>
    std::span<const T> shared() const;

    std::variant<bool, std::int64_t, double, Date, std::shared_ptr<const Data>, SharedText, Uid,
        std::shared_ptr<const Array>, std::shared_ptr<const Dict>, Null>
        storage_;
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
