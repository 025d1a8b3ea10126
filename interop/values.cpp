#include "interop/values.h"

#include <algorithm>

#include "interop/text.h"
#include "records/members.h"

namespace zyn::interop {
namespace {

class Collector {
public:
    explicit Collector(ListOrder how) : order(how) {}

    void collect(TypeId id, const void* value, const std::string& path) {
        const Type& type = typeOf(id);
        switch (type.shape) {
        case Shape::Sequence: return collectSequence(type, value, path);
        case Shape::SetOf: return collectList(type, static_cast<const AsnList*>(value), path);
        case Shape::Choice: return collectChoice(type, *static_cast<const ChoiceRecord*>(value), path);
        case Shape::Primitive: lines.push_back(path + " " + primitiveText(id, value));
        }
    }

    Lines lines;

private:
    static std::string below(const std::string& path, const std::string& name) {
        return path.empty() ? name : path + "." + name;
    }

    static std::string primitiveText(TypeId id, const void* value) {
        switch (id) {
        case TypeId::AsnBool: return *static_cast<const AsnBool*>(value) ? "true" : "false";
        case TypeId::AsnReal: return realText(*static_cast<const AsnReal*>(value));
        case TypeId::AsnOcts: {
            const auto& text = *static_cast<const AsnOcts*>(value);
            return octetsText(text.octs, text.octetLen);
        }
        case TypeId::AsnBits: {
            const auto& bits = *static_cast<const AsnBits*>(value);
            return bitsText(bits.bits, static_cast<std::size_t>(bits.bitLen));
        }
        default: return std::to_string(*static_cast<const AsnInt*>(value));
        }
    }

    // A null value is that of an empty record.
    void collectSequence(const Type& type, const void* value, const std::string& path) {
        const std::size_t before = lines.size();
        for (const Field& field : type.fields) {
            const void* member = valueOf(value, field);
            if (!member && field.optional) continue;
            collect(field.type, member, below(path, field.name));
        }
        if (lines.size() == before) lines.push_back(path + " {}");
    }

    void collectChoice(const Type& type, const ChoiceRecord& choice, const std::string& path) {
        const Alternative& row = *alternativeOf(type, choice.choiceId);
        collect(row.type, row.kind == Kind::Int ? &choice.number : choice.slot, below(path, row.name));
    }

    void collectList(const Type& type, const AsnList* list, const std::string& path) {
        std::vector<Lines> elements;
        for (const AsnListNode* node = list ? list->first : nullptr; node; node = node->next) {
            Collector element(order);
            element.collect(type.element, node->data, "");
            elements.push_back(std::move(element.lines));
        }
        if (order == ListOrder::byValue) std::ranges::sort(elements);
        lines.push_back(path + " [" + std::to_string(elements.size()) + "]");
        for (std::size_t i = 0; i < elements.size(); ++i) {
            const std::string element = below(path, std::to_string(i));
            for (const std::string& line : elements[i]) lines.push_back(element + (line[0] == ' ' ? "" : ".") + line);
        }
    }

    const ListOrder order;
};

} // namespace

Lines valuesOf(TypeId type, const void* value, ListOrder order) {
    Collector collector(order);
    collector.collect(type, value, "");
    std::ranges::sort(collector.lines);
    return std::move(collector.lines);
}

} // namespace zyn::interop
