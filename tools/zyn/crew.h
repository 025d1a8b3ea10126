// Batches through the workers, and out again in their order. With one job all is done in the calling thread.
#pragma once

#include <condition_variable>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "batch.h"

namespace zyn::tool {

class Crew {
public:
    // Results go to finish, in the calling thread. makeWorker is called once in each thread.
    Crew(unsigned jobs, std::function<std::unique_ptr<Worker>()> makeWorker, std::function<void(Batch&)> finish);
    ~Crew();

    // An empty batch to fill; give takes it. Where many are under way, finishes the oldest first.
    std::unique_ptr<Batch> take();
    void give(std::unique_ptr<Batch> batch);
    // Finishes all batches that were given. Rethrows what a worker threw.
    void drain();

private:
    void work();
    void finishOldest();

    std::function<std::unique_ptr<Worker>()> makeWorker;
    std::function<void(Batch&)> finish;
    std::unique_ptr<Worker> own;
    std::vector<std::thread> threads;
    std::deque<std::unique_ptr<Batch>> underWay; // oldest first
    std::vector<std::unique_ptr<Batch>> spare;

    std::mutex mutex; // guards what follows, and done of the batches under way
    std::condition_variable given, finished;
    std::deque<Batch*> waiting;
    std::exception_ptr failure;
    bool closed = false;
};

} // namespace zyn::tool
