// SPDX-License-Identifier: BSD-3-Clause
#include "host/shading/block.h"

#include "host/report/guess.h"
#include "host/report/message.h"
#include "host/shading/function.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <string_view>
#include <unordered_map>

namespace host {

namespace {

// What a parameter of a tag type may name, and how to say so.
struct Naming {
    bool (*accepts)(miScene_types kind);
    std::string_view expected;
};

Naming naming(Type type)
{
    switch (type) {
    case Type::light:
        // A light works only through an instance; one named by itself is passed on as it is.
        return {[](miScene_types k) { return k == miSCENE_INSTANCE || k == miSCENE_LIGHT; },
                "instance of a light"};
    case Type::geometry:
        return {[](miScene_types k) { return k == miSCENE_INSTANCE || k == miSCENE_OBJECT; },
                "instance or an object"};
    case Type::material:
        return {[](miScene_types k) { return k == miSCENE_MATERIAL; }, "material"};
    case Type::colorTexture:
    case Type::scalarTexture:
    case Type::vectorTexture:
        return {[](miScene_types k) { return k == miSCENE_IMAGE; }, "texture"};
    case Type::shader:
        return {[](miScene_types k) { return k == miSCENE_FUNCTION; }, "shader"};
    default:
        return {[](miScene_types k) { return k == miSCENE_USERDATA || k == miSCENE_LIGHTPROFILE; },
                "data element"};
    }
}

// A parameter is read through a pointer to the result, so a wider color serves as its own first components.
bool drives(Type result, Type parameter)
{
    if (result == Type::boolean || result == Type::integer)
        return parameter == Type::boolean || parameter == Type::integer;
    if (result == Type::color)
        return parameter == Type::color || parameter == Type::scalar || parameter == Type::vector;
    return result == parameter;
}

std::string formName(const Value& value)
{
    struct Name {
        std::string operator()(const Numbers& n) const
        {
            return !n.numbers.empty() && n.numbers[0].kind == Number::Kind::boolean ? "on or off"
                                                                                    : "a number";
        }
        std::string operator()(const Word& word) const { return inQuotes(word.text); }
        std::string operator()(const Null&) const { return "null"; }
        std::string operator()(const Connect&) const { return "a connection"; }
        std::string operator()(const Interface&) const { return "an interface parameter"; }
        std::string operator()(const Elements&) const { return "a list in brackets"; }
        std::string operator()(const Members&) const { return "a structure in braces"; }
    };
    return std::visit(Name(), value.form);
}

// A type as a value of it is written.
std::string valueName(Type type)
{
    return type == Type::boolean ? "on, off, 0 or 1" : std::string(typeName(type));
}

std::string guess(const std::vector<Field>& fields, std::string_view wrong)
{
    Guess made(wrong);
    for (const Field& field : fields)
        made.offer(field.name);
    return made.text();
}

class Builder {
public:
    Builder(const Declaration& declaration, Database& database, const Setting& setting, Block& block)
        : declaration_(declaration), database_(database), setting_(setting), block_(block)
    {
    }

    void build(const std::vector<Argument>& arguments, const Function* previous)
    {
        block_.bytes.resize(declaration_.blockSize);
        if (previous) {
            old_ = static_cast<const std::byte*>(static_cast<const void*>(previous->record()->parameters));
            for (const Connection& connection : previous->connections())
                oldConnections_.emplace(connection.fieldOffset, &connection);
        }
        fill(declaration_.parameters, 0, arguments);
    }

private:
    struct Step {
        const Field* field;
        std::size_t index; // of an array's element
    };
    static constexpr std::size_t noIndex = std::numeric_limits<std::size_t>::max();

    std::string path() const
    {
        std::string text;
        for (const Step& step : path_) {
            if (step.index != noIndex) {
                text += '[' + std::to_string(step.index) + ']';
                continue;
            }
            if (!text.empty())
                text += '.';
            text += step.field->name;
        }
        return text;
    }

    [[noreturn]] void fail(const Location& where, const std::string& text) const
    {
        throw Error(where, "parameter " + inQuotes(path()) + " of shader " + inQuotes(declaration_.name) +
                               ": " + text);
    }

    [[noreturn]] void failForm(const Value& value, std::string_view expected) const
    {
        fail(value.where, std::string(expected) + " expected, not " + formName(value));
    }

    [[noreturn]] void failName(std::string_view name, UnknownName::Of of, std::string_view kind,
                               const Location& where) const
    {
        throw UnknownName(std::string(name), of, where,
                          "parameter " + inQuotes(path()) + " of shader " + inQuotes(declaration_.name) +
                              ": there is no " + std::string(kind) + " named " + inQuotes(name));
    }

    // Fields of the block, or of a structure in it, from arguments in any order.
    void fill(const std::vector<Field>& fields, std::size_t base, const std::vector<Argument>& arguments)
    {
        std::unordered_map<std::string_view, const Argument*> given;
        for (const Argument& argument : arguments)
            if (!given.insert_or_assign(argument.name, &argument).second && argument.where.file)
                message(Level::warning, "SCEN",
                        argument.where.text() + ": shader " + inQuotes(declaration_.name) + " is given " +
                            inQuotes(argument.name) + " twice, the later value counts");
        std::size_t known = 0;
        for (const Field& field : fields)
            known += given.count(field.name);
        if (known != given.size())
            failUnknown(fields, arguments);

        for (const Field& field : fields) {
            const std::size_t at = base + field.offset;
            const auto argument = given.find(field.name);
            path_.push_back({&field, noIndex});
            if (argument != given.end())
                setField(field, at, argument->second->value);
            else if (old_ && path_.size() == 1)
                copyField(field, at, at);
            else
                setDefault(field, at);
            path_.pop_back();
        }
    }

    [[noreturn]] void failUnknown(const std::vector<Field>& fields,
                                  const std::vector<Argument>& arguments) const
    {
        for (const Argument& argument : arguments)
            if (!findField(fields, argument.name)) {
                const std::string wrong = inQuotes(argument.name) + guess(fields, argument.name);
                if (path_.empty())
                    throw Error(argument.where,
                                "shader " + inQuotes(declaration_.name) + " has no parameter " + wrong);
                fail(argument.where, "the structure has no member " + wrong);
            }
        throw Error("unreachable: every argument is known");
    }

    void setField(const Field& field, std::size_t at, const Value& value)
    {
        if (!field.isArray)
            return setValue(field, at, value);
        if (std::holds_alternative<Connect>(value.form))
            fail(value.where, "a whole array cannot be connected, only its elements");
        if (const Interface* const interface = std::get_if<Interface>(&value.form))
            return setInterfaceArray(field, at, interface->parameter, value.where);
        const Elements* const elements = std::get_if<Elements>(&value.form);
        if (!elements)
            failForm(value, "a list in brackets");
        // Shaders evaluate the slot to learn where the elements lie; an element connected there would run
        // then.
        const bool inSlot =
            elements->values.size() == 1 && !std::holds_alternative<Connect>(elements->values[0].form);
        const std::size_t payload = makeArray(field, at, elements->values.size(), inSlot, value.where);
        for (std::size_t k = 0; k < elements->values.size(); ++k) {
            path_.push_back({&field, k});
            setValue(field, payload + k * field.elementSize, elements->values[k]);
            path_.pop_back();
        }
    }

    // Writes i and n, makes room for the elements and returns where they begin: one element may sit in the
    // slot, others lie behind everything else, a multiple of their size away from the slot.
    std::size_t makeArray(const Field& field, std::size_t at, std::size_t count, bool inSlot,
                          const Location& where)
    {
        const std::size_t slot = at + field.slot();
        std::size_t first = 0;
        if (count > 0 && !inSlot) {
            first = (block_.bytes.size() - slot + field.elementSize - 1) / field.elementSize;
            const std::size_t begin = slot + first * field.elementSize;
            if (begin > maximumBlockSize || count > (maximumBlockSize - begin) / field.elementSize)
                fail(where,
                     "the parameters would take more than " + std::to_string(maximumBlockSize) + " bytes");
            block_.bytes.resize(begin + count * field.elementSize);
        }
        put(at, static_cast<int>(first));
        put(at + 4, static_cast<int>(count));
        return slot + first * field.elementSize;
    }

    // One value: of a plain field, or of an array's element.
    void setValue(const Field& field, std::size_t at, const Value& value)
    {
        if (const Connect* const connection = std::get_if<Connect>(&value.form)) {
            setDefaultValue(field, at);
            return connect(field, at, *connection, value.where);
        }
        if (const Interface* const interface = std::get_if<Interface>(&value.form)) {
            setDefaultValue(field, at);
            const Parameter source = interfaceParameter(interface->parameter, value.where);
            return connectValue(field, at, {setting_.phenomenon, true}, *source.field, source.offset,
                                interface->parameter, value.where);
        }
        if (field.type == Type::structure) {
            const Members* const members = std::get_if<Members>(&value.form);
            if (!members)
                failForm(value, "a structure in braces");
            return fill(field.members, at, members->arguments);
        }
        if (isTag(field.type))
            return put(at, tagOf(field, value));
        const Numbers* const numbers = std::get_if<Numbers>(&value.form);
        if (!numbers)
            failForm(value, valueName(field.type));
        setNumbers(field, at, numbers->numbers, value.where);
    }

    void setNumbers(const Field& field, std::size_t at, const std::vector<Number>& numbers,
                    const Location& where)
    {
        const std::size_t components = static_cast<std::size_t>(componentCount(field.type));
        if (numbers.size() > components)
            fail(where, std::to_string(numbers.size()) + " numbers for a " +
                            std::string(typeName(field.type)) + ", which has " + std::to_string(components));
        for (const Number& number : numbers) {
            if (field.type == Type::boolean)
                put(at, booleanOf(number, where));
            else if (field.type == Type::integer)
                put(at, integerOf(number, where));
            else if (number.kind == Number::Kind::boolean)
                fail(where, std::string(typeName(field.type)) + " expected, not on or off");
            else
                put(at, static_cast<float>(number.value));
            at += sizeof(float);
        }
    }

    int booleanOf(const Number& number, const Location& where) const
    {
        if (number.kind == Number::Kind::real || (number.value != 0 && number.value != 1))
            fail(where, "on, off, 0 or 1 expected");
        return number.value != 0;
    }

    int integerOf(const Number& number, const Location& where) const
    {
        if (number.kind != Number::Kind::integer)
            fail(where, std::string("integer expected, not ") +
                            (number.kind == Number::Kind::real ? "a fraction" : "on or off"));
        if (number.value < std::numeric_limits<int>::min() || number.value > std::numeric_limits<int>::max())
            fail(where, "an integer of 32 bits expected");
        return static_cast<int>(number.value);
    }

    miTag tagOf(const Field& field, const Value& value)
    {
        if (std::holds_alternative<Null>(value.form))
            return miNULLTAG;
        const Word* const word = std::get_if<Word>(&value.form);
        if (!word)
            failForm(value, typeName(field.type));
        if (word->text.empty())
            return miNULLTAG;
        if (field.type == Type::string) {
            Text& text = database_.make<Text>({}, value.where);
            text.text = word->text;
            return text.tag;
        }
        const Element* element = database_.find(database_.lookup(word->text, setting_.names));
        const Naming named = naming(field.type);
        if (const auto* const function = dynamic_cast<const Function*>(element))
            if (function->expansion && function->expansion->element && field.type != Type::shader)
                element = database_.find(function->expansion->element);
        if (!element)
            failName(word->text, UnknownName::Of::element, named.expected, value.where);
        if (!named.accepts(element->kind))
            fail(value.where, "an element that can serve as " + std::string(typeName(field.type)) +
                                  " expected (" + std::string(named.expected) + "), but " +
                                  inQuotes(word->text) + " is of kind " +
                                  std::string(kindName(element->kind)));
        refer(field.type, element->tag);
        return element->tag;
    }

    void refer(Type type, miTag tag)
    {
        if (tag != miNULLTAG && (type == Type::shader || naming(type).accepts(miSCENE_IMAGE)))
            block_.references.push_back(tag);
    }

    // ---- connections

    void connect(const Field& field, std::size_t at, const Connect& connection, const Location& where)
    {
        const auto [source, members] = findSource(connection.source, where);
        const Field* result = &source->declaration().result;
        std::size_t offset = 0;
        for (std::size_t begin = 0; begin < members.size();) {
            const std::size_t end = std::min(members.find('.', begin), members.size());
            const std::string_view name = members.substr(begin, end - begin);
            const Field* const member = findField(result->members, name);
            if (!member)
                fail(where, "the result of shader " + inQuotes(source->declaration().name) +
                                " has no member " + inQuotes(members.substr(0, end)) +
                                guess(result->members, name));
            offset += member->offset;
            result = member;
            begin = end + 1;
        }
        connectValue(field, at, {source, false}, *result, offset, connection.source, where);
    }

    // A shader's result, or the parameters of a phenomenon's definition.
    struct Origin {
        const Function* function;
        bool interface;
    };

    void connectValue(const Field& field, std::size_t at, const Origin& source, const Field& result,
                      std::size_t offset, const std::string& name, const Location& where)
    {
        if (field.type == Type::structure && result.type == Type::structure &&
            sameShape(field.members, result.members)) {
            for (std::size_t k = 0; k < field.members.size(); ++k) {
                path_.push_back({&field.members[k], noIndex});
                connectValue(field.members[k], at + field.members[k].offset, source, result.members[k],
                             offset + result.members[k].offset, name, where);
                path_.pop_back();
            }
            return;
        }
        if (field.type == Type::structure || result.isArray || !drives(result.type, field.type))
            fail(where, inQuotes(name) + " gives " + typeText(result) + ", which cannot drive " +
                            std::string(typeName(field.type)));
        Connection& made = block_.connections.emplace_back();
        made.sourceTag = source.function->tag;
        made.memberOffset = offset;
        made.fieldOffset = at;
        made.field = path();
        made.sourceDeclaration = &source.function->declaration();
        made.interface = source.interface;
    }

    // ---- parameters of the phenomenon around

    struct Parameter {
        const Field* field;
        std::size_t offset; // in the block of the phenomenon's definition
    };

    // As with shaders, a name may contain dots and the longest one that exists counts.
    Parameter interfaceParameter(std::string_view text, const Location& where) const
    {
        if (!setting_.phenomenon)
            fail(where, "\"interface\" stands for a phenomenon's parameter and is known inside of one only");
        const Declaration& phenomenon = setting_.phenomenon->declaration();
        const auto fieldAt = [&](const std::vector<Field>& fields, std::size_t begin, std::size_t& end) {
            for (end = text.size(); end != std::string_view::npos && end > begin;
                 end = text.rfind('.', end - 1))
                if (const Field* const found = findField(fields, text.substr(begin, end - begin)))
                    return found;
            return static_cast<const Field*>(nullptr);
        };
        Parameter result{nullptr, 0};
        for (std::size_t begin = 0, end = 0; begin < text.size() || !result.field; begin = end + 1) {
            const bool first = !result.field;
            const bool ended = !first && result.field->isArray; // what follows would be a member of an array
            result.field =
                ended ? nullptr : fieldAt(first ? phenomenon.parameters : result.field->members, begin, end);
            if (!result.field)
                fail(where, "phenomenon " + inQuotes(phenomenon.name) + " has no parameter " +
                                inQuotes(text) +
                                (first ? guess(phenomenon.parameters, text.substr(0, text.find('.')))
                                       : std::string()));
            result.offset += result.field->offset;
        }
        return result;
    }

    // The array is as long as the definition's; each element is connected to its counterpart. What the
    // definition gives literally stands here too: shaders evaluate the slot and read on from there.
    void setInterfaceArray(const Field& field, std::size_t at, const std::string& name, const Location& where)
    {
        const Parameter source = interfaceParameter(name, where);
        if (!source.field->isArray)
            fail(where, inQuotes(name) + " gives " + typeText(*source.field) + ", which cannot drive " +
                            typeText(field));
        const auto* const theirs = static_cast<const std::byte*>(
                                       static_cast<const void*>(setting_.phenomenon->record()->parameters)) +
                                   source.offset;
        int first = 0;
        int count = 0;
        std::memcpy(&first, theirs, sizeof first);
        std::memcpy(&count, theirs + 4, sizeof count);
        Field element = *source.field;
        element.isArray = false;
        const std::size_t begin =
            source.offset + source.field->slot() + static_cast<std::size_t>(first) * element.elementSize;
        const std::size_t payload = makeArray(field, at, static_cast<std::size_t>(count), false, where);
        const bool alike = element.type == field.type && field.type != Type::structure;
        for (std::size_t k = 0; k < static_cast<std::size_t>(count); ++k) {
            path_.push_back({&field, k});
            if (alike)
                std::memcpy(block_.bytes.data() + payload + k * field.elementSize,
                            theirs - source.offset + begin + k * element.elementSize, field.elementSize);
            connectValue(field, payload + k * field.elementSize, {setting_.phenomenon, true}, element,
                         begin + k * element.elementSize, name, where);
            path_.pop_back();
        }
    }

    static bool sameShape(const std::vector<Field>& a, const std::vector<Field>& b)
    {
        if (a.size() != b.size())
            return false;
        for (std::size_t k = 0; k < a.size(); ++k)
            if (a[k].name != b[k].name || a[k].isArray || b[k].isArray)
                return false;
        return true;
    }

    struct Source {
        const Function* function;
        std::string_view members; // "a.b", or nothing for the whole result
    };

    // Names may contain dots, so the longest name that exists counts.
    Source findSource(std::string_view text, const Location& where) const
    {
        for (std::size_t end = text.size(); end != std::string_view::npos && end > 0;
             end = text.rfind('.', end - 1)) {
            const Element* const element =
                database_.find(database_.lookup(text.substr(0, end), setting_.names));
            if (!element)
                continue;
            if (element->kind != miSCENE_FUNCTION)
                fail(where, inQuotes(text.substr(0, end)) + " cannot be connected: its kind is " +
                                std::string(kindName(element->kind)) + ", not shader");
            return {static_cast<const Function*>(element), text.substr(std::min(end + 1, text.size()))};
        }
        failName(text, UnknownName::Of::shader, "shader", where);
    }

    // ---- defaults and former values

    void setDefault(const Field& field, std::size_t at)
    {
        if (!field.isArray)
            setDefaultValue(field, at);
    }

    void setDefaultValue(const Field& field, std::size_t at)
    {
        if (field.type == Type::structure) {
            for (const Field& member : field.members)
                setDefault(member, at + member.offset);
            return;
        }
        for (const double number : field.defaults) {
            if (field.type == Type::boolean || field.type == Type::integer)
                put(at, static_cast<int>(number));
            else
                put(at, static_cast<float>(number));
            at += sizeof(float);
        }
    }

    void copyField(const Field& field, std::size_t from, std::size_t to)
    {
        if (!field.isArray)
            return copyValue(field, from, to);
        int first = 0;
        int count = 0;
        std::memcpy(&first, old_ + from, sizeof first);
        std::memcpy(&count, old_ + from + 4, sizeof count);
        const std::size_t source = from + field.slot() + static_cast<std::size_t>(first) * field.elementSize;
        const std::size_t elements = static_cast<std::size_t>(count);
        const std::size_t payload = makeArray(field, to, elements, first == 0, Location());
        for (std::size_t k = 0; k < elements; ++k)
            copyValue(field, source + k * field.elementSize, payload + k * field.elementSize);
    }

    void copyValue(const Field& field, std::size_t from, std::size_t to)
    {
        if (field.type == Type::structure) {
            for (const Field& member : field.members)
                copyField(member, from + member.offset, to + member.offset);
            return;
        }
        std::memcpy(block_.bytes.data() + to, old_ + from, field.elementSize);
        if (isTag(field.type)) {
            miTag tag = miNULLTAG;
            std::memcpy(&tag, old_ + from, sizeof tag);
            refer(field.type, tag);
        }
        const auto connection = oldConnections_.find(from);
        if (connection == oldConnections_.end())
            return;
        block_.connections.push_back(*connection->second);
        block_.connections.back().fieldOffset = to;
    }

    template <class T>
    void put(std::size_t at, T value)
    {
        std::memcpy(block_.bytes.data() + at, &value, sizeof value);
    }

    const Declaration& declaration_;
    Database& database_;
    const Setting& setting_;
    Block& block_;
    std::vector<Step> path_;
    const std::byte* old_ = nullptr;
    std::unordered_map<std::size_t, const Connection*> oldConnections_;
};

} // namespace

Block buildBlock(const Declaration& declaration, const std::vector<Argument>& arguments, Database& database,
                 const Setting& setting, const Function* previous)
{
    Block block;
    Builder(declaration, database, setting, block).build(arguments, previous);
    return block;
}

} // namespace host
