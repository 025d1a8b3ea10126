#include "crew.h"

#include "channel.h"
#include "zyn/context.h"

namespace zyn::tool {

Crew::Crew(unsigned jobs, std::function<std::unique_ptr<Worker>()> make, std::function<void(Batch&)> done)
    : makeWorker(std::move(make)), finish(std::move(done)) {
    if (jobs <= 1) own = makeWorker();
    else
        for (unsigned i = 0; i < jobs; ++i) threads.emplace_back([this] { work(); });
}

Crew::~Crew() {
    {
        const std::lock_guard lock(mutex);
        closed = true;
    }
    given.notify_all();
    for (std::thread& thread : threads) thread.join();
}

std::unique_ptr<Batch> Crew::take() {
    while (underWay.size() > 2 * threads.size() + 1) finishOldest();
    if (spare.empty()) return std::make_unique<Batch>();
    auto batch = std::move(spare.back());
    spare.pop_back();
    return batch;
}

void Crew::give(std::unique_ptr<Batch> batch) {
    underWay.push_back(std::move(batch));
    if (own) {
        own->process(*underWay.back());
        underWay.back()->done = true;
        return finishOldest();
    }
    {
        const std::lock_guard lock(mutex);
        waiting.push_back(underWay.back().get());
    }
    given.notify_one();
}

void Crew::drain() {
    while (!underWay.empty()) finishOldest();
}

void Crew::finishOldest() {
    {
        std::unique_lock lock(mutex);
        finished.wait(lock, [this] { return underWay.front()->done || failure; });
        if (failure) std::rethrow_exception(failure);
    }
    finish(*underWay.front());
    underWay.front()->clear();
    spare.push_back(std::move(underWay.front()));
    underWay.pop_front();
}

void Crew::work() {
    ZynContext* context = ZynContextNew();
    ZynContextUse(context);
    try {
        if (!context) throw std::bad_alloc();
        beSilent();
        const auto worker = makeWorker();
        for (;;) {
            Batch* batch = nullptr;
            {
                std::unique_lock lock(mutex);
                given.wait(lock, [this] { return closed || !waiting.empty(); });
                if (closed) break;
                batch = waiting.front();
                waiting.pop_front();
            }
            worker->process(*batch);
            {
                const std::lock_guard lock(mutex);
                batch->done = true;
            }
            finished.notify_one();
        }
    } catch (...) {
        const std::lock_guard lock(mutex);
        failure = std::current_exception();
        finished.notify_one();
    }
    ZynContextUse(nullptr);
    ZynContextFree(context);
}

} // namespace zyn::tool
