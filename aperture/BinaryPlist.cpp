#include "aperture/BinaryPlist.h"

#include "aperture/PlistText.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <utility>

namespace korvo {

namespace {

using Value = BinaryPlist::Value;
using ParseError = BinaryPlist::ParseError;

[[noreturn]] void malformed()
{
    throw ParseError(ParseError::Case::malformed);
}

template <typename T>
T need(std::optional<T> found)
{
    return found ? *found : (malformed(), *found);
}

/// A big-endian integer of any width that fits 64 bits.
std::uint64_t wideInteger(Bytes bytes)
{
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (value >> 56)
            malformed();
        value = value << 8 | bytes[i];
    }
    return value;
}

/// The same, without the top bit.
std::int64_t positiveInteger(Bytes bytes)
{
    const auto value = wideInteger(bytes);
    return value >> 63 ? (malformed(), 0) : static_cast<std::int64_t>(value);
}

struct Trailer {
    unsigned offsetSize;
    unsigned refSize;
    std::uint64_t objectCount;
    std::uint64_t topObject;
    std::uint64_t tableOffset;
};

Trailer readTrailer(Bytes bytes)
{
    const auto trailer = bytes.from(bytes.size() - 32);
    const auto field = [&](std::uint64_t at) {
        return static_cast<std::uint64_t>(positiveInteger(need(trailer.slice(at, 8))));
    };
    return {trailer[6], trailer[7], field(8), field(16), field(24)};
}

class Reader {
public:
    Reader(Bytes bytes, std::pmr::memory_resource& memory)
        : bytes_(bytes), memory_(memory), trailer_(readTrailer(bytes)), unspent_(2 * bytes.size())
    {
        const auto [offsetSize, refSize, count, top, table] = trailer_;
        if (table > bytes.size() || (offsetSize > 0 && count > (bytes.size() - table) / offsetSize))
            malformed();
        if (offsetSize >= 8) // narrower ones cannot have the top bit
            for (std::uint64_t i = 0; i < count; ++i)
                offset(i);
        objects_.resize(offsetSize > 0 ? count : std::min<std::uint64_t>(count, 1));
    }

    Value top() { return object(trailer_.topObject).value; }

private:
    /// An object that has been decoded, or not yet. `weight` counts the values that a walk through it meets.
    struct Object {
        Value value;
        std::uint64_t weight = 0;
    };
    static constexpr auto unfinished = std::numeric_limits<std::uint64_t>::max();
    /// How many values a walk may meet for each byte. Objects that are shared are met many times: a few
    /// hundred bytes could stand for more values than anyone can walk through.
    static constexpr std::uint64_t valuesPerByte = 64;

    /// Where the contents of an object lie, and how many bytes, units, elements or pairs they are.
    struct Payload {
        std::uint64_t start;
        std::uint64_t count;
    };

    std::uint64_t offset(std::uint64_t index) const
    {
        const auto at = trailer_.tableOffset + index * trailer_.offsetSize;
        return static_cast<std::uint64_t>(positiveInteger(need(bytes_.slice(at, trailer_.offsetSize))));
    }

    const Object& object(std::uint64_t index)
    {
        if (index >= trailer_.objectCount)
            malformed();
        // Without bytes for offsets all objects are the same one.
        auto& object = objects_[trailer_.offsetSize > 0 ? index : 0];
        if (object.weight == unfinished)
            malformed(); // it contains itself
        if (object.weight == 0) {
            object.weight = unfinished;
            const auto outer = std::exchange(weight_, 1);
            object.value = decode(offset(index));
            object.weight = std::exchange(weight_, outer);
        }
        return object;
    }

    Value decode(std::uint64_t at)
    {
        const auto marker = need(bytes_.bigEndian(at, 1));
        const unsigned info = marker & 15;
        switch (marker >> 4) {
        case 0x0:
            return info == 8 || info == 9 ? Value(info == 9) : Value();
        case 0x1:
            return integer(take(at + 1, std::uint64_t(1) << info));
        case 0x2:
            return real(take(at + 1, std::uint64_t(1) << info));
        case 0x3:
            return Value(Value::Date{std::bit_cast<double>(wideInteger(take(at + 1, 8)))});
        case 0x4:
            return data(payload(at));
        case 0x5: {
            const auto [start, count] = payload(at);
            return Value(textFromUtf8(take(start, count), memory_));
        }
        case 0x6: {
            const auto [start, count] = payload(at);
            return Value(
                textFromUtf16(take(start, 2 * std::min<std::uint64_t>(count, bytes_.size())), memory_));
        }
        case 0x8:
            return Value(Value::Uid{positiveInteger(take(at + 1, info + 1))});
        case 0xA:
        case 0xC:
            return array(payload(at));
        case 0xD:
            return dict(payload(at));
        default:
            malformed();
        }
    }

    static Value integer(Bytes bytes)
    {
        return Value(
            bytes.size() == 8 ? static_cast<std::int64_t>(wideInteger(bytes)) : positiveInteger(bytes));
    }

    static Value real(Bytes bytes)
    {
        const auto bits = wideInteger(bytes);
        return Value(bytes.size() == 4
                ? static_cast<double>(std::bit_cast<float>(static_cast<std::uint32_t>(bits)))
                : std::bit_cast<double>(bits));
    }

    Value data(Payload payload)
    {
        const auto bytes = take(payload.start, payload.count);
        const auto copy = room<std::uint8_t>(bytes.size());
        std::copy_n(bytes.data(), bytes.size(), copy.data());
        return Value(Value::Data(copy));
    }

    Value array(Payload payload)
    {
        const auto references = takeReferences(payload.start, payload.count);
        const Nesting nesting(*this);
        const auto elements = room<Value>(payload.count);
        for (std::uint64_t i = 0; i < payload.count; ++i)
            elements[i] = referenced(references, i);
        return Value(Value::Array(elements));
    }

    Value dict(Payload payload)
    {
        const auto count = payload.count;
        if (count > bytes_.size())
            malformed();
        const auto references = takeReferences(payload.start, 2 * count);
        const Nesting nesting(*this);
        const auto members = room<BinaryPlist::Member>(count);
        for (std::uint64_t i = 0; i < count; ++i)
            members[i] = {referenced(references, i), referenced(references, count + i)};
        return Value(Value::Dict(members));
    }

    template <typename T>
    std::span<T> room(std::size_t count)
    {
        return {static_cast<T*>(memory_.allocate(count * sizeof(T), alignof(T))), count};
    }

    /// The length that the marker, or the integer behind it, gives.
    Payload payload(std::uint64_t at) const
    {
        const unsigned info = bytes_[at] & 15;
        if (info < 15)
            return {at + 1, info};
        const auto marker = need(bytes_.bigEndian(at + 1, 1));
        if (marker >> 4 != 1)
            malformed();
        const auto width = std::uint64_t(1) << (marker & 15);
        return {
            at + 2 + width, static_cast<std::uint64_t>(positiveInteger(need(bytes_.slice(at + 2, width))))};
    }

    /// Bytes of one object. Objects of a real list do not overlap, so that all of them together are not
    /// larger than the list; those that do overlap soon spend what there is.
    Bytes take(std::uint64_t at, std::uint64_t length)
    {
        const auto bytes = need(bytes_.slice(at, length));
        spend(length);
        return bytes;
    }

    void spend(std::uint64_t amount)
    {
        if (amount > unspent_)
            malformed();
        unspent_ -= amount;
    }

    Bytes takeReferences(std::uint64_t at, std::uint64_t count)
    {
        spend(count); // references without bytes cost their element all the same
        return trailer_.refSize == 0 ? Bytes() : take(at, count * trailer_.refSize);
    }

    /// The object that the i-th of these references means, for the container being decoded.
    const Value& referenced(Bytes references, std::uint64_t i)
    {
        const Bytes reference(references.data() + i * trailer_.refSize, trailer_.refSize); // taken as a whole
        const auto& found = object(static_cast<std::uint64_t>(positiveInteger(reference)));
        weight_ += found.weight;
        if (weight_ > valuesPerByte * bytes_.size())
            malformed();
        return found.value;
    }

    struct Nesting {
        explicit Nesting(Reader& owner) : reader(owner)
        {
            if (++reader.depth_ > BinaryPlist::maxDepth)
                malformed();
        }
        ~Nesting() { --reader.depth_; }
        Nesting(const Nesting&) = delete;
        Nesting& operator=(const Nesting&) = delete;
        Reader& reader;
    };

    Bytes bytes_;
    std::pmr::memory_resource& memory_; // for all that the values hold
    Trailer trailer_;
    std::vector<Object> objects_;
    std::uint64_t unspent_; // bytes and references that may still be decoded
    std::uint64_t weight_ = 0; // so far, of the container being decoded
    int depth_ = 0;
};

} // namespace

Value BinaryPlist::parseInto(Memory& memory, Bytes bytes)
{
    constexpr std::size_t smallest = 8 + 1 + 32; // header, an object, trailer
    if (bytes.size() < smallest || !bytes.startsWith("bplist00"))
        throw ParseError(ParseError::Case::notBinaryPlist);
    if (bytes.size() > maxSize)
        malformed();
    return Reader(bytes, memory).top();
}

BinaryPlist BinaryPlist::parse(Bytes bytes)
{
    auto memory = std::make_shared<Memory>(3 * bytes.size());
    const auto root = parseInto(*memory, bytes);
    return {std::move(memory), root};
}

} // namespace korvo
