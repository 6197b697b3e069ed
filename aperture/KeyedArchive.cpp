#include "aperture/BinaryPlist.h"

#include <string>
#include <unordered_map>

namespace korvo {

namespace {

using Value = BinaryPlist::Value;
using Resolved = std::optional<Value>;

/// The dictionary that is made of these pairs; the last one under a key counts.
class PlainDict {
public:
    explicit PlainDict(std::size_t count) { members_.reserve(count); }

    void set(const Value& key, Value value)
    {
        const auto [place, isNew] = places_.try_emplace(*key.text(), members_.size());
        if (isNew)
            members_.push_back({key, std::move(value)});
        else
            members_[place->second].value = std::move(value);
    }

    Value take() { return Value(std::move(members_)); }

private:
    Value::Dict members_;
    std::unordered_map<std::string_view, std::size_t> places_; // views into the shared texts of the keys
};

class Archive {
public:
    Archive(std::span<const Value> objects, std::size_t size) : objects_(objects), unspent_(4 * size) { }

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

    Resolved array(const Value& references, int depth)
    {
        Value::Array elements;
        for (const auto& reference : references.elements())
            if (auto element = resolve(reference, depth + 1))
                elements.push_back(*std::move(element));
        return Value(std::move(elements));
    }

    Resolved dict(const Value& object, int depth)
    {
        spend(object.members().size());
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
        PlainDict plain(count);
        for (std::size_t i = 0; i < count; ++i) {
            const auto key = resolve(keys.elements()[i], depth + 1);
            auto value = resolve(objects.elements()[i], depth + 1);
            if (key && key->text() && value)
                plain.set(*key, *std::move(value));
        }
        return plain.take();
    }

    Resolved members(const Value& object, int depth)
    {
        PlainDict plain(object.members().size());
        for (const auto& [key, value] : object.members()) {
            if (!key.text())
                continue;
            if (key.text() == "$class") {
                if (auto name = className(value, depth))
                    plain.set(Value("__class__"), *std::move(name));
            } else if (auto resolved = resolve(value, depth + 1))
                plain.set(key, *std::move(resolved));
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
    std::size_t unspent_; // values that may still be made or looked at
};

} // namespace

std::optional<Value> BinaryPlist::unarchive(Bytes bytes)
{
    const auto list = parse(bytes);
    std::span<const Value> objects;
    std::optional<Value> root;
    for (const auto& [key, value] : list.members()) {
        if (key.text() == "$objects" && value.kind() == Value::Kind::array)
            objects = value.elements();
        else if (const auto* const found = key.text() == "$top" ? value.member("root") : nullptr;
                 found && found->uid())
            root = *found;
    }
    return root ? Archive(objects, bytes.size()).resolve(*root, 0) : std::nullopt;
}

} // namespace korvo
