// zyn diff: messages of two files, field by field.
#include <algorithm>

#include "channel.h"
#include "input/framer.h"
#include "json-writer.h"
#include "options.h"
#include "output/failed.h"
#include "output/out.h"
#include "records.h"

namespace zyn::tool {
namespace {

// Writes a line for each difference of two records: the path, and what is in the one and in the other.
class Comparison {
public:
    explicit Comparison(std::string& to) : out(to) {}

    void compare(const ZynType& type, const void* one, const void* other, const std::string& path) {
        if (ZynTreeEqual(&type, one, other)) return;
        if (type.kind == ZYN_KIND_SEQUENCE) return compareFields(type, one, other, path);
        if (type.kind == ZYN_KIND_CHOICE) return compareChoices(type, one, other, path);
        if (type.kind == ZYN_KIND_SET_OF) return compareLists(type, one, other, path);
        differ(path, type, one, other);
    }
    bool hasFound() const { return found; }

private:
    static std::string below(const std::string& path, const char* name) {
        return path.empty() ? name : path + "." + name;
    }

    void compareFields(const ZynType& type, const void* one, const void* other, const std::string& path) {
        for (const ZynField* field = type.fields; field != type.fields + type.fieldCount; ++field) {
            const void* here = valueOf(*field, one);
            const void* there = valueOf(*field, other);
            if (here && there) compare(*field->type, here, there, below(path, field->name));
            else if (here || there) differ(below(path, field->name), *field->type, here, there);
        }
    }
    void compareChoices(const ZynType& type, const void* one, const void* other, const std::string& path) {
        const ZynAlternative* alternative = alternativeOf(type, one);
        if (!alternative || alternative != alternativeOf(type, other)) return differ(path, type, one, other);
        const void* here = valueOf(type, *alternative, one);
        const void* there = valueOf(type, *alternative, other);
        if (here && there) compare(*alternative->type, here, there, below(path, alternative->name));
    }
    void compareLists(const ZynType& type, const void* one, const void* other, const std::string& path) {
        const AsnListNode* here = static_cast<const AsnList*>(one)->first;
        const AsnListNode* there = static_cast<const AsnList*>(other)->first;
        for (unsigned i = 0; here || there; ++i) {
            const std::string place = path + "[" + std::to_string(i) + "]";
            if (here && there) compare(*type.element, here->data, there->data, place);
            else differ(place, *type.element, here ? here->data : nullptr, there ? there->data : nullptr);
            if (here) here = here->next;
            if (there) there = there->next;
        }
    }
    // null: absent.
    void differ(const std::string& path, const ZynType& type, const void* one, const void* other) {
        found = true;
        out += path.empty() ? "the message" : path;
        out += ": ";
        if (one) out += json.write(type, one);
        else out += "absent";
        out += " -> ";
        if (other) out += json.write(type, other);
        else out += "absent";
        out += '\n';
    }

    std::string& out;
    Json json;
    bool found = false;
};

// The messages of one of the files, each decoded into memory of its own.
class Side {
public:
    Side(const std::string& file, const DiffOptions& how)
        : options(how), reader(file, false), source(openSource(reader, how.input)), framer(*source, how.input) {}

    // Whether there is another message. What is bad is reported.
    bool next(Out& out) {
        Frame frame;
        while (framer.next(frame) == Fill::More) {
            ++number;
            channel = options.channel >= 0 ? static_cast<ZynChannel>(options.channel)
                                           : likelyChannel(frame.octets, frame.length);
            Envelope envelope = {};
            const int32_t code = ZynDecode(channel, frame.octets, static_cast<uint32_t>(frame.length), &envelope);
            if (code == 0 && frame.kind == Frame::Message) {
                const ZynType* type = ZynEnvelopeType(channel);
                memory.resize(ZynTreeSize(type, &envelope) / sizeof(std::max_align_t) + 1);
                record = ZynTreeCopy(type, &envelope, memory.data(), memory.size() * sizeof(std::max_align_t));
                return true;
            }
            const Item item = {frame, 0, frame.complaint, number};
            Failed failed = {.input = reader.name(), .item = item, .channel = channel, .failure = {}};
            if (code == 0 || !ZynLastFailure(&failed.failure)) failed.failure = {code, "", "", "", "", 0, ""};
            putReport(out.report(), failed);
            bad = true;
        }
        return false;
    }

    const DiffOptions& options;
    Reader reader;
    std::unique_ptr<Source> source;
    Framer framer;
    std::vector<std::max_align_t> memory;
    const void* record = nullptr;
    ZynChannel channel = ZYN_TRANS_REQUEST;
    uint64_t number = 0;
    bool bad = false;
};

} // namespace

int diff(const DiffOptions& options) {
    if (options.one == "-" && options.other == "-") throw WrongUse("only one of the files can be the standard input");
    Side one(options.one, options), other(options.other, options);
    Out out;
    bool differs = false;
    for (uint64_t number = 1;; ++number) {
        const bool here = one.next(out), there = other.next(out);
        if (!here && !there) break;
        std::string found;
        if (here != there) {
            found = std::string("only in ") + (here ? one : other).reader.name() + "\n";
        } else if (one.channel != other.channel) {
            found = std::string(channelTitle(one.channel)) + " -> " + channelTitle(other.channel) + "\n";
        } else {
            Comparison(found).compare(*ZynEnvelopeType(one.channel), one.record, other.record, "");
        }
        if (found.empty()) continue;
        // Where there is one message only, as is usual, its number tells nothing.
        if (differs || number > 1) out.text += "message " + std::to_string(number) + "\n";
        out.text += found;
        differs = true;
        out.write();
    }
    out.write();
    return differs || one.bad || other.bad ? someBad : allGood;
}

} // namespace zyn::tool
