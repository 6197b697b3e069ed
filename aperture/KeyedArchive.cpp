#include "aperture/BinaryPlist.h"

#include <algorithm>
#include <unordered_map>

namespace korvo {

namespace {

using namespace std::string_view_literals;
using Value = BinaryPlist::Value;
using Resolved = std::optional<Value>;

/// Puts together the dictionary of these pairs; the last one under a key counts.
class PlainDict {
public:
    /// `room` is for as many members as there will be calls of set.
    explicit PlainDict(std::span<BinaryPlist::Member> room) : room_(room) { }

    void set(const Value& key, const Value& value)
    {
        auto* const known = find(*key.text());
        (known ? *known : room_[size_++]) = {known ? known->key : key, value};
    }

    Value take() const { return Value(Value::Dict(room_.first(size_))); }

private:
    BinaryPlist::Member* find(std::string_view key)
    {
        constexpr std::size_t few = 16; // in which looking is faster than remembering
        if (size_ < few) {
            const auto members = room_.first(size_);
            const auto found = std::find_if(members.begin(), members.end(),
                [&](const BinaryPlist::Member& member) { return member.key.text() == key; });
            return found == members.end() ? nullptr : &*found;
        }
        for (std::size_t i = places_.size(); i < size_; ++i)
            places_.emplace(*room_[i].key.text(), i);
        const auto place = places_.find(key);
        return place == places_.end() ? nullptr : &room_[place->second];
    }

    std::span<BinaryPlist::Member> room_;
    std::size_t size_ = 0;
    std::unordered_map<std::string_view, std::size_t> places_;
};

class Archive {
public:
    Archive(std::span<const Value> objects, std::size_t size, std::pmr::memory_resource& memory)
        : objects_(objects), memory_(memory), unspent_(6 * size)
    { }

    Resolved resolve(const Value& value, int depth)
    {
        if (depth > deepest)
            return std::nullopt;
        spend(1);
        const auto* const object = followed(value, depth);
        if (!object || object->isNull() || object->text() == "$null")
            return std::nullopt;
        if (object->kind() == Value::Kind::array)
            return array(*object, depth);
        if (object->kind() == Value::Kind::dict)
            return dict(*object, depth);
        return *object;
    }

private:
    static constexpr int deepest = 63;

    /// Objects that refer to each other in circles, each to several, would go on for ever; so, nearly, would
    /// many that refer to one with many members.
    void spend(std::size_t visits)
    {
        if (visits > unspent_)
            throw BinaryPlist::ParseError(BinaryPlist::ParseError::Case::malformed);
        unspent_ -= visits;
    }

    /// What the value is or refers to, through any number of UIDs; null when that leads nowhere.
    const Value* followed(const Value& start, int depth) const
    {
        const auto* value = &start;
        for (int hops = 0; const auto uid = value->uid();) {
            const auto index = static_cast<std::uint64_t>(*uid);
            if (index >= objects_.size() || depth + ++hops > deepest)
                return nullptr;
            value = &objects_[index];
        }
        return value;
    }

    /// Room for as many values or members, which is paid for before it is taken.
    template <typename T>
    std::span<T> room(std::size_t count)
    {
        spend(count);
        return {static_cast<T*>(memory_.allocate(count * sizeof(T), alignof(T))), count};
    }

    Resolved array(const Value& references, int depth)
    {
        const auto elements = room<Value>(references.elements().size());
        std::size_t size = 0;
        for (const auto& reference : references.elements())
            if (const auto element = resolve(reference, depth + 1))
                elements[size++] = *element;
        return Value(Value::Array(elements.first(size)));
    }

    Resolved dict(const Value& object, int depth)
    {
        spend(object.members().size()); // which are looked through
        const auto* const keys = object.member("NS.keys");
        const auto* const objects = object.member("NS.objects");
        if (keys && objects)
            return dictionary(*keys, *objects, depth);
        if (objects)
            return array(*objects, depth);
        if (const auto wrapped = wrappedValue(object, "NS.string", Value::Kind::string, depth))
            return wrapped;
        if (const auto wrapped = wrappedValue(object, "NS.data", Value::Kind::data, depth))
            return wrapped;
        return members(object, depth);
    }

    /// What an object is only a wrapping of. A member of the same name that is of another kind is a plain
    /// member of some other class.
    Resolved wrappedValue(const Value& object, std::string_view name, Value::Kind kind, int depth) const
    {
        const auto* const member = object.member(name);
        const auto* const wrapped = member ? followed(*member, depth) : nullptr;
        return wrapped && wrapped->kind() == kind ? Resolved(*wrapped) : std::nullopt;
    }

    Resolved dictionary(const Value& keys, const Value& objects, int depth)
    {
        const auto count = std::min(keys.elements().size(), objects.elements().size());
        PlainDict plain(room<BinaryPlist::Member>(count));
        for (std::size_t i = 0; i < count; ++i) {
            const auto key = resolve(keys.elements()[i], depth + 1);
            const auto value = resolve(objects.elements()[i], depth + 1);
            if (key && key->text() && value)
                plain.set(*key, *value);
        }
        return plain.take();
    }

    Resolved members(const Value& object, int depth)
    {
        PlainDict plain(room<BinaryPlist::Member>(object.members().size()));
        for (const auto& [key, value] : object.members()) {
            if (!key.text())
                continue;
            if (key.text() == "$class") {
                if (const auto name = className(value, depth))
                    plain.set(Value("__class__"sv), *name);
            } else if (const auto resolved = resolve(value, depth + 1))
                plain.set(key, *resolved);
        }
        return plain.take();
    }

    Resolved className(const Value& reference, int depth)
    {
        const auto* const described = followed(reference, depth);
        if (described)
            spend(described->members().size());
        const auto* const name = described ? described->member("$classname") : nullptr;
        return name && name->text() ? Resolved(*name) : std::nullopt;
    }

    std::span<const Value> objects_;
    std::pmr::memory_resource& memory_;
    std::size_t unspent_; // values that may still be made or looked at
};

} // namespace

std::optional<BinaryPlist> BinaryPlist::unarchive(Bytes bytes)
{
    auto memory = std::make_shared<Memory>(5 * bytes.size());
    const auto list = parseInto(*memory, bytes);
    std::span<const Value> objects;
    std::optional<Value> root;
    for (const auto& [key, value] : list.members()) {
        if (key.text() == "$objects" && value.kind() == Value::Kind::array)
            objects = value.elements();
        else if (const auto* const found = key.text() == "$top" ? value.member("root") : nullptr;
                 found && found->uid())
            root = *found;
    }
    const auto resolved = root ? Archive(objects, bytes.size(), *memory).resolve(*root, 0) : std::nullopt;
    return resolved ? std::optional(BinaryPlist(std::move(memory), *resolved)) : std::nullopt;
}

} // namespace korvo
