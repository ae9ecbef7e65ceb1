#include "BatchSplitter.h"

#include <algorithm>
#include <cstring>

namespace satwalk::tools {

namespace {
constexpr std::size_t kMinBuffer = 1 << 20;
}

BatchSplitter::BatchSplitter(ReadFn read, std::size_t batchSize, bool cut)
    : read_(std::move(read)),
      batchSize_(batchSize == 0 ? 1 : batchSize),
      cut_(cut),
      buffer_(std::max(kMinBuffer, 4 * batchSize_)) {}

bool BatchSplitter::Fill() {
    if (eof_)
        return false;
    if (start_ > 0) {
        std::memmove(buffer_.data(), buffer_.data() + start_, end_ - start_);
        cursor_ -= start_;
        end_ -= start_;
        start_ = 0;
    }
    while (end_ < buffer_.size()) {
        const long n = read_(buffer_.data() + end_, buffer_.size() - end_);
        if (n < 0) {
            failed_ = true;
            eof_ = true;
            return false;
        }
        if (n == 0) {
            eof_ = true;
            return false;
        }
        end_ += static_cast<std::size_t>(n);
        // One read's worth is enough to go on with.
        break;
    }
    return true;
}

bool BatchSplitter::Next(std::string_view& batch) {
    auto emit = [&](std::size_t from, std::size_t to) {
        batch = std::string_view(buffer_.data() + from, to - from);
        start_ = to;
        cursor_ = to;
        return true;
    };

    if (cut_) {
        while (end_ - start_ < batchSize_ && Fill()) {
        }
        if (failed_)
            return false;
        if (end_ == start_)
            return false;
        return emit(start_, start_ + std::min(batchSize_, end_ - start_));
    }

    for (;;) {
        const char* base = buffer_.data();
        // Only a newline that keeps the line inside the batch matters.
        const std::size_t limit = std::min(end_, start_ + batchSize_);
        if (const void* nl = std::memchr(base + cursor_, '\n', limit - cursor_)) {
            cursor_ = static_cast<std::size_t>(static_cast<const char*>(nl) - base) + 1;
            continue;  // the line joins the batch
        }
        if (end_ < start_ + batchSize_ && !eof_) {
            Fill();  // the open line may still fit: read on
            if (failed_)
                return false;
            continue;
        }
        if (eof_ && end_ - start_ <= batchSize_) {
            if (end_ == start_)
                return false;           // all done
            return emit(start_, end_);  // the rest, last line unterminated
        }
        // The open line cannot fit beside the lines taken.
        if (cursor_ > start_)
            return emit(start_, cursor_);
        return emit(start_, start_ + batchSize_);  // a line longer than a batch is cut
    }
}

}  // namespace satwalk::tools
