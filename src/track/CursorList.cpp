#include "CursorList.h"

#include <atomic>
#include <cstdio>

#include "Strings.h"

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
    char code[16];
    std::snprintf(code, sizeof code, "0x%08x", static_cast<unsigned>(failure));
    return common::FormatString(common::LoadString(common::kStrCriticalError), code);
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
