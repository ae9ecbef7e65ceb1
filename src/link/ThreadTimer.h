// A LinkTimer on a plain thread, for owners without an event loop
// (satwalk-tool, benchmarks): calls the tick every period until stopped.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

#include "ReceiverLink.h"

namespace satwalk::link {

class ThreadTimer final : public LinkTimer {
  public:
    ThreadTimer(std::function<void()> tick, std::chrono::milliseconds period);
    ~ThreadTimer();
    ThreadTimer(const ThreadTimer&) = delete;
    ThreadTimer& operator=(const ThreadTimer&) = delete;

    bool Start() override;
    // From the tick itself it only asks the thread to end after this tick.
    void Stop() override;

  private:
    void Run();

    std::function<void()> tick_;
    std::chrono::milliseconds period_;
    std::thread thread_;
    std::mutex mutex_;
    std::condition_variable wake_;
    bool stop_ = false;  // guarded by mutex_
};

}  // namespace satwalk::link
