// zyn schema: the types and messages there are.
#include <algorithm>

#include "channel.h"
#include "json-writer.h"
#include "names.h"
#include "options.h"
#include "output/element.h"
#include "output/out.h"
#include "zyn/failure.h"

namespace zyn::tool {
namespace {

const char* kindTitle(ZynKind kind) {
    constexpr const char* titles[] = {"INTEGER",    "ENUMERATED", "BOOLEAN", "REAL",  "OCTET STRING",
                                      "BIT STRING", "SEQUENCE",   "SET OF",  "CHOICE"};
    return titles[kind];
}

std::string tagOctetsText(AsnTag tag, unsigned octets) {
    const uint8_t bytes[] = {static_cast<uint8_t>(tag >> 24), static_cast<uint8_t>(tag >> 16),
                             static_cast<uint8_t>(tag >> 8)};
    std::string text;
    putHex(text, bytes, octets, true);
    return text;
}

// The types that hold one, each with the name by which it does: "ZynOrderRep.orders", "ZynTransReqChoice.order".
std::vector<std::string> usesOf(const ZynType& type) {
    std::vector<std::string> uses;
    for (uint32_t i = 0; i < ZynTypeCount(); ++i) {
        const ZynType& user = *ZynTypeByNumber(i);
        const std::string name = user.name;
        for (unsigned k = 0; k < user.fieldCount; ++k) {
            if (user.fields[k].type == &type) uses.push_back(name + "." + user.fields[k].name);
        }
        for (unsigned k = 0; k < user.alternativeCount; ++k) {
            if (user.alternatives[k].type == &type) uses.push_back(name + "." + user.alternatives[k].name);
        }
        if (user.element == &type) uses.push_back(name + "[]");
    }
    return uses;
}

std::vector<Message> messagesOf(const ZynType& type) {
    std::vector<Message> messages = allMessages();
    std::erase_if(messages, [&](const Message& one) { return one.alternative->type != &type; });
    return messages;
}

// What there is of codes: the code and its sentence. Some numbers are passed over.
template <typename See> void eachCode(const ZynType& type, See see) {
    for (int code = type.firstCode; code > type.firstCode - type.codes; --code) {
        if (const char* text = ZynFailureText(type.module, code)) see(code, text);
    }
}

void putType(std::string& out, const ZynType& type) {
    out += std::string(type.name) + "  " + kindTitle(type.kind);
    if (type.element) out += std::string(" ") + type.element->name;
    if (type.module) out += std::string(", module ") + type.module;
    out += ", " + std::to_string(type.size) + " bytes in memory\n";
    for (const Message& message : messagesOf(type)) {
        out += std::string("  message ") + message.alternative->name + ", number " +
               std::to_string(message.alternative->number) + ": " + channelTitle(message.channel) + "\n";
    }
    std::size_t names = 0, types = 0;
    for (unsigned i = 0; i < type.fieldCount; ++i) {
        names = std::max(names, std::string_view(type.fields[i].name).size());
        types = std::max(types, std::string_view(type.fields[i].type->name).size());
    }
    for (unsigned i = 0; i < type.alternativeCount; ++i) {
        names = std::max(names, std::string_view(type.alternatives[i].name).size());
        types = std::max(types, std::string_view(type.alternatives[i].type->name).size());
    }
    if (type.fieldCount > 0) out += "\nfields\n";
    for (unsigned i = 0; i < type.fieldCount; ++i) {
        const ZynField& field = type.fields[i];
        out += "  ";
        putPadded(out, field.name, names + 2);
        putPadded(out, field.type->name, types + 2);
        putPadded(out, field.tag ? tagOctetsText(field.tag, field.tagOctets) : "its own", 9);
        putPadded(out, field.tag ? tagTitle(field.tag) + (field.explicitTag ? " EXPLICIT" : "") : "", 16);
        out += field.optional ? "OPTIONAL" : "";
        while (out.back() == ' ') out.pop_back();
        out += '\n';
    }
    if (type.alternativeCount > 0) out += "\nalternatives\n";
    for (unsigned i = 0; i < type.alternativeCount; ++i) {
        const ZynAlternative& alternative = type.alternatives[i];
        out += "  ";
        putPadded(out, std::to_string(alternative.number), 5);
        putPadded(out, alternative.name, names + 2);
        putPadded(out, alternative.type->name, types + 2);
        out += tagOctetsText(alternative.tag, alternative.tagOctets) + (alternative.explicitTag ? "  EXPLICIT" : "") +
               "\n";
    }
    const std::size_t before = out.size();
    eachCode(type, [&](int code, const char* text) { out += "  " + std::to_string(code) + "  " + text + "\n"; });
    if (out.size() > before) out.insert(before, "\ncodes\n");
    const std::vector<std::string> uses = usesOf(type);
    if (!uses.empty()) out += "\nused in\n";
    for (const std::string& use : uses) out += "  " + use + "\n";
}

void putType(JsonWriter& json, const ZynType& type) {
    json.startObject();
    json.key("name").text(type.name);
    json.key("kind").text(kindTitle(type.kind));
    if (type.module) json.key("module").text(type.module);
    json.key("size").number(type.size);
    if (type.element) json.key("element").text(type.element->name);
    if (const auto messages = messagesOf(type); !messages.empty()) {
        json.key("messages").startArray();
        for (const Message& message : messages) {
            json.startObject();
            json.key("name").text(message.alternative->name);
            json.key("number").number(message.alternative->number);
            json.key("channel").text(channelName(message.channel));
            json.endObject();
        }
        json.endArray();
    }
    if (type.kind == ZYN_KIND_SEQUENCE) {
        json.key("fields").startArray();
        for (unsigned i = 0; i < type.fieldCount; ++i) {
            const ZynField& field = type.fields[i];
            json.startObject();
            json.key("name").text(field.name);
            json.key("type").text(field.type->name);
            if (field.tag) json.key("tag").text(tagOctetsText(field.tag, field.tagOctets));
            json.key("optional").truth(field.optional);
            json.key("explicit").truth(field.explicitTag);
            json.key("offset").number(field.offset);
            json.endObject();
        }
        json.endArray();
    }
    if (type.kind == ZYN_KIND_CHOICE) {
        json.key("alternatives").startArray();
        for (unsigned i = 0; i < type.alternativeCount; ++i) {
            const ZynAlternative& alternative = type.alternatives[i];
            json.startObject();
            json.key("number").number(alternative.number);
            json.key("name").text(alternative.name);
            json.key("type").text(alternative.type->name);
            json.key("tag").text(tagOctetsText(alternative.tag, alternative.tagOctets));
            json.key("explicit").truth(alternative.explicitTag);
            json.endObject();
        }
        json.endArray();
    }
    json.key("codes").startArray();
    eachCode(type, [&](int code, const char* text) {
        json.startObject();
        json.key("code").number(code);
        json.key("text").text(text);
        json.endObject();
    });
    json.endArray();
    json.key("usedIn").startArray();
    for (const std::string& use : usesOf(type)) json.text(use);
    json.endArray();
    json.endObject();
}

// The types that a name is for: that of the name, and those of the messages of that name or number.
std::vector<const ZynType*> typesNamed(const std::string& name) {
    std::vector<const ZynType*> types;
    if (const ZynType* type = ZynTypeByName(name.c_str())) types.push_back(type);
    for (const Message& message : allMessages()) {
        if (!isNamed(message, name)) continue;
        if (std::find(types.begin(), types.end(), message.alternative->type) == types.end())
            types.push_back(message.alternative->type);
    }
    if (types.empty()) throw WrongUse("there is no type or message '" + name + "'; zyn schema lists them");
    return types;
}

void putList(std::string& out) {
    for (uint32_t i = 0; i < ZynTypeCount(); ++i) {
        const ZynType& type = *ZynTypeByNumber(i);
        std::string line;
        putPadded(line, type.name, 36);
        putPadded(line, type.module ? type.module : "", 24);
        putPadded(line, kindTitle(type.kind), 14);
        for (const Message& message : messagesOf(type)) {
            line += std::to_string(message.alternative->number) + " " + message.alternative->name + " (" +
                    channelName(message.channel) + ") ";
        }
        line.erase(line.find_last_not_of(' ') + 1);
        out += line + "\n";
    }
}

} // namespace

int schema(const SchemaOptions& options) {
    Out out;
    if (options.name.empty() && !options.json) {
        putList(out.text);
        out.write();
        return allGood;
    }
    std::vector<const ZynType*> types;
    if (!options.name.empty()) types = typesNamed(options.name);
    else
        for (uint32_t i = 0; i < ZynTypeCount(); ++i) types.push_back(ZynTypeByNumber(i));
    for (const ZynType* type : types) {
        if (options.json) {
            JsonWriter json;
            putType(json, *type);
            out.text.append(json.view()) += '\n';
        } else {
            if (!out.text.empty()) out.text += '\n';
            putType(out.text, *type);
        }
    }
    out.write();
    return allGood;
}

} // namespace zyn::tool
