#include "ThreadTimer.h"

#include <utility>

namespace satwalk::link {

ThreadTimer::ThreadTimer(std::function<void()> tick, std::chrono::milliseconds period)
    : tick_(std::move(tick)), period_(period) {}

ThreadTimer::~ThreadTimer() {
    Stop();
    if (thread_.joinable())
        thread_.join();
}

bool ThreadTimer::Start() {
    Stop();
    if (thread_.joinable()) {
        if (thread_.get_id() == std::this_thread::get_id())
            return false;
        thread_.join();
    }
    {
        std::lock_guard<std::mutex> g(mutex_);
        stop_ = false;
    }
    try {
        thread_ = std::thread(&ThreadTimer::Run, this);
    } catch (...) {
        return false;
    }
    return true;
}

void ThreadTimer::Stop() {
    {
        std::lock_guard<std::mutex> g(mutex_);
        stop_ = true;
    }
    wake_.notify_all();
    if (thread_.joinable() && thread_.get_id() != std::this_thread::get_id())
        thread_.join();
}

void ThreadTimer::Run() {
    auto next = std::chrono::steady_clock::now() + period_;
    for (;;) {
        {
            std::unique_lock<std::mutex> g(mutex_);
            if (wake_.wait_until(g, next, [this] { return stop_; }))
                return;
        }
        tick_();
        next += period_;
    }
}

}  // namespace satwalk::link
