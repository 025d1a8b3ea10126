// zyn encode: JSON in, octets out.
#include <rapidjson/memorystream.h>
#include <rapidjson/reader.h>

#include "channel.h"
#include "input/documents.h"
#include "json-writer.h"
#include "options.h"
#include "output/out.h"
#include "output/spelled.h"
#include "progress.h"
#include "zyn/failure.h"

namespace zyn::tool {
namespace {

// Reads the keys of the outermost object until one of them tells the channel: the field of a request that only its
// channel has, or the alternative of a reply.
struct ChannelTeller : rapidjson::BaseReaderHandler<rapidjson::UTF8<>, ChannelTeller> {
    int channel = -1;
    unsigned depth = 0;

    bool StartObject() { return ++depth > 0; }
    bool EndObject(rapidjson::SizeType) { return --depth > 0; }
    bool StartArray() { return ++depth > 0; }
    bool EndArray(rapidjson::SizeType) { return --depth > 0; }
    bool Key(const char* name, rapidjson::SizeType, bool) {
        if (depth != 1) return true;
        int takers = 0;
        for (const ZynChannel one : {ZYN_QUERY_REPLY, ZYN_TRANS_REPLY, ZYN_QUERY_REQUEST, ZYN_TRANS_REQUEST}) {
            const ZynType& type = *ZynEnvelopeType(one);
            const bool isChoice = type.kind == ZYN_KIND_CHOICE;
            if (isChoice ? !ZynAlternativeByName(&type, name) : !ZynFieldByName(&type, name)) continue;
            channel = one;
            takers += isChoice ? 0 : 1;
        }
        return takers == 2 || channel < 0; // both requests have a userId
    }
};

ZynChannel tellChannel(std::string_view text) {
    rapidjson::MemoryStream stream(text.data(), text.size());
    rapidjson::Reader reader;
    ChannelTeller teller;
    reader.Parse<rapidjson::kParseStopWhenDoneFlag>(stream, teller);
    return teller.channel >= 0 ? static_cast<ZynChannel>(teller.channel) : ZYN_TRANS_REQUEST;
}

class Encoding {
public:
    explicit Encoding(const EncodeOptions& how) : options(how) {}
    void read(const std::string& file);
    bool someBad = false;

private:
    void encode(const std::string& input, const Document& document);
    void complain(const std::string& place, std::string_view path, std::string_view text);

    const EncodeOptions& options;
    Json json;
    Out out;
    std::vector<uint8_t> buffer;
};

void Encoding::complain(const std::string& place, std::string_view path, std::string_view text) {
    someBad = true;
    std::string& report = out.report();
    report += place + ": ";
    if (!path.empty()) report.append(path) += ": ";
    report.append(text) += '\n';
}

void Encoding::encode(const std::string& input, const Document& document) {
    const ZynChannel channel =
        options.channel >= 0 ? static_cast<ZynChannel>(options.channel) : tellChannel(document.text);
    const void* envelope =
        ZynJsonRead(json.get(), ZynEnvelopeType(channel), document.text.data(), document.text.size());
    if (!envelope) {
        ZynJsonError error = {};
        ZynJsonLastError(json.get(), &error);
        const uint64_t line = document.line + (error.line > 0 ? error.line - 1 : 0);
        return complain(input + ":" + std::to_string(line) + ":" + std::to_string(error.column), error.path,
                        error.text);
    }
    const std::size_t length = encodeInto(buffer, channel, envelope);
    if (length > 0) return putSpelled(out.text, options.spelling, buffer.data(), length);
    ZynFailure failure = {};
    ZynLastFailure(&failure);
    complain(input + ":" + std::to_string(document.line), failure.path, failure.text);
}

void Encoding::read(const std::string& file) {
    Reader reader(file, false);
    Documents documents(reader);
    Progress bar(reader.name(), reader.size(), "B");
    for (Document document;;) {
        reader.mayWait = false;
        Fill got = documents.next(document);
        if (got == Fill::Wait) {
            out.write();
            reader.mayWait = true;
            got = documents.next(document);
        }
        if (got == Fill::End) break;
        encode(reader.name(), document);
        if (out.text.size() < 256 * 1024) continue;
        bar.clear();
        out.write();
        bar.show(reader.position());
    }
    bar.clear();
    out.write();
}

} // namespace

int encode(const EncodeOptions& options) {
    Encoding encoding(options);
    for (const std::string& file : options.files) encoding.read(file);
    return encoding.someBad ? someBad : allGood;
}

} // namespace zyn::tool
