// SPDX-License-Identifier: BSD-3-Clause
#include "host/inspect/parameters.h"

#include <array>
#include <charconv>
#include <cstring>
#include <unordered_map>

namespace host {

namespace {

/// Elements of an array that stand in a text.
constexpr int mostElements = 16;

template <class T>
T read(const std::byte* from)
{
    T value;
    std::memcpy(&value, from, sizeof value);
    return value;
}

/// Texts of values in one block, or in a result, which has no connections.
class Texts {
public:
    explicit Texts(const Database& database, const Function* function = nullptr) : database_(database)
    {
        if (!function)
            return;
        block_ = static_cast<const std::byte*>(static_cast<const void*>(function->record()->parameters));
        for (const Connection& connection : function->connections())
            connections_.emplace(connection.fieldOffset, &connection);
    }

    const Connection* connection(const std::byte* value) const
    {
        const auto found = block_ ? connections_.find(std::size_t(value - block_)) : connections_.end();
        return found == connections_.end() ? nullptr : found->second;
    }

    std::string of(const Field& field, const std::byte* value) const
    {
        return field.isArray ? ofArray(field, value) : ofValue(field, value);
    }

private:
    std::string ofArray(const Field& field, const std::byte* value) const
    {
        const int first = read<int>(value);
        const int count = read<int>(value + sizeof(int));
        if (count <= 0)
            return "[]";
        std::string text = "[";
        const std::byte* element =
            value + field.slot() + std::ptrdiff_t(first) * std::ptrdiff_t(field.elementSize);
        for (int k = 0; k < std::min(count, mostElements); ++k, element += field.elementSize)
            text += (k ? ", " : " ") + ofValue(field, element);
        if (count > mostElements)
            text += ", ... " + std::to_string(count) + " in all";
        return text + " ]";
    }

    std::string ofValue(const Field& field, const std::byte* value) const
    {
        // A structure shares its place with its first member, and it is the members that are connected.
        if (const Connection* const found = field.type == Type::structure ? nullptr : connection(value)) {
            if (found->source)
                return "= " + sourceText(*found);
            if (!found->value) // in a phenomenon's definition, where nothing follows connections
                return "= " + elementText(database_, found->sourceTag);
            value = static_cast<const std::byte*>(found->value); // of a phenomenon's parameter
        }
        switch (field.type) {
        case Type::boolean:
            return read<int>(value) ? "on" : "off";
        case Type::integer:
            return std::to_string(read<int>(value));
        case Type::structure:
            return ofMembers(field, value);
        default:
            return isTag(field.type) ? elementText(database_, read<miTag>(value)) : ofNumbers(field, value);
        }
    }

    static std::string ofNumbers(const Field& field, const std::byte* value)
    {
        std::string text;
        for (int k = 0; k < componentCount(field.type); ++k)
            text += (k ? " " : "") + numberText(read<float>(value + sizeof(float) * std::size_t(k)));
        return text;
    }

    std::string ofMembers(const Field& field, const std::byte* value) const
    {
        std::string text = "{";
        for (const Field& member : field.members)
            text += (&member == field.members.data() ? " " : ", ") + inQuotes(member.name) + " " +
                    of(member, value + member.offset);
        return text + " }";
    }

    const Database& database_;
    const std::byte* block_ = nullptr;
    std::unordered_map<std::size_t, const Connection*> connections_; ///< by their place in the block
};

/// "values[2]" and "values.red" lie within "values".
bool liesWithin(const std::string& path, const std::string& name)
{
    return path.size() > name.size() && path.compare(0, name.size(), name) == 0 &&
           (path[name.size()] == '[' || path[name.size()] == '.');
}

/// The member of a result that lies at an offset, and its path, ".a.b" for a deeper one; a result that is no
/// structure is its own.
struct Member {
    const Field* field;
    std::string path;
};

Member memberAt(const Field& result, std::size_t offset)
{
    for (const Field& member : result.members)
        if (offset >= member.offset && offset < member.offset + member.size) {
            Member found = memberAt(member, offset - member.offset);
            found.path.insert(0, "." + member.name);
            return found;
        }
    return {&result, {}};
}

} // namespace

std::string numberText(float value)
{
    std::array<char, 32> text;
    const std::to_chars_result end = std::to_chars(text.data(), text.data() + text.size(), value);
    return {text.data(), end.ptr};
}

std::string elementText(const Database& database, miTag tag)
{
    if (tag == miNULLTAG)
        return "null";
    const Element* const element = database.find(tag);
    if (!element)
        return "a deleted element";
    if (const auto* const text = dynamic_cast<const Text*>(element))
        return inQuotes(text->text);
    if (const auto* const leaf = dynamic_cast<const Instance*>(element); leaf && leaf->record.parent)
        return elementText(database, leaf->record.parent);
    if (!element->name.empty())
        return inQuotes(element->name);
    const std::string place = element->where.text();
    return std::string(kindName(element->kind)) + (place.empty() ? " without name" : " at " + place);
}

std::string valueText(const Database& database, const Field& field, const void* value)
{
    return Texts(database).of(field, static_cast<const std::byte*>(value));
}

std::string sourceText(const Connection& connection)
{
    const Function& source = *connection.source;
    const std::string member = memberAt(source.declaration().result, connection.resultOffset).path;
    return source.name.empty() ? source.title() + member : inQuotes(source.name + member);
}

std::string deliveredText(const Database& database, const Connection& connection, const void* value)
{
    const Field& result = connection.source->declaration().result;
    return valueText(database, *memberAt(result, connection.resultOffset).field, value);
}

std::vector<Parameter> parametersOf(const Database& database, const Function& function)
{
    const Texts texts(database, &function);
    const auto* const block =
        static_cast<const std::byte*>(static_cast<const void*>(function.record()->parameters));
    std::vector<Parameter> parameters;
    for (const Field& field : function.declaration().parameters) {
        const std::byte* const value = block + field.offset;
        if (const Connection* const connection = field.isArray ? nullptr : texts.connection(value);
            connection && connection->source && connection->field == field.name) {
            parameters.push_back({field.name, {}, connection});
            continue;
        }
        parameters.push_back({field.name, texts.of(field, value), nullptr});
        for (const Connection& connection : function.connections())
            if (connection.source && liesWithin(connection.field, field.name))
                parameters.push_back({connection.field, {}, &connection});
    }
    return parameters;
}

} // namespace host
