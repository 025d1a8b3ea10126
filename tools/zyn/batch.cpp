#include "batch.h"

#include "channel.h"
#include "output/failed.h"
#include "output/view.h"
#include "zyn/failure.h"

namespace zyn::tool {

void Batch::add(const Frame& frame, uint64_t number) {
    items.push_back({frame, octets.size(), frame.complaint, number});
    octets.insert(octets.end(), frame.octets, frame.octets + frame.length);
}

void Batch::clear() {
    octets.clear();
    items.clear();
    out.clear();
    aside.clear();
    bad = 0;
    done = false;
}

Worker::Worker(const DecodeOptions& how, const std::vector<Condition>& which, bool colours)
    : options(how), conditions(which), view(makeView(how.view, colours)) {}

Worker::~Worker() = default;

void Worker::process(Batch& batch) {
    for (Item& item : batch.items) {
        item.frame.octets = batch.octets.data() + item.start;
        process(batch, item);
    }
}

void Worker::process(Batch& batch, const Item& item) {
    const Frame& frame = item.frame;
    const ZynChannel channel =
        options.channel >= 0 ? static_cast<ZynChannel>(options.channel) : likelyChannel(frame.octets, frame.length);
    Envelope envelope = {};
    const int32_t code = ZynDecode(channel, frame.octets, static_cast<uint32_t>(frame.length), &envelope);
    if (code == 0 && frame.kind == Frame::Message) {
        for (const Condition& condition : conditions) {
            if (!condition.holds(*ZynEnvelopeType(channel), &envelope)) return;
        }
        view->show(batch.out.text, channel, &envelope, frame.octets, frame.length);
        return;
    }
    ++batch.bad;
    Failed failed = {.input = batch.input, .item = item, .channel = channel, .failure = {}};
    if (code == 0 || !ZynLastFailure(&failed.failure)) failed.failure = {code, "", "", "", "", 0, ""};
    view->showBad(batch.out.text, channel, frame.octets, frame.length, failed.failure.offset, failed.failure.text);
    putReport(batch.out.report(), failed);
    if (!options.badFile.empty()) putAside(batch.aside, failed);
}

} // namespace zyn::tool
