#include "CursorList.h"

#include <atomic>
#include <cstdio>

namespace satwalk::track {

namespace {

void WriteToStderr(ListFailure failure) {
    const std::string text = ListFailureMessage(failure) + "\n";
    std::fputs(text.c_str(), stderr);
}

std::atomic<ListFailureHandler> handler{WriteToStderr};
std::atomic<std::uint64_t> stamps{0};

}  // namespace

std::string ListFailureMessage(ListFailure failure) {
    char text[64];
    std::snprintf(text, sizeof text, "Critical Error: 0x%08x\nThe program will now exit.",
                  static_cast<unsigned>(failure));
    return text;
}

void SetListFailureHandler(ListFailureHandler h) {
    handler.store(h != nullptr ? h : WriteToStderr);
}

void ReportListFailure(ListFailure failure) {
    handler.load()(failure);
    std::exit(1);
}

std::uint64_t NextListStamp() {
    return stamps.fetch_add(1, std::memory_order_relaxed) + 1;
}

}  // namespace satwalk::track
