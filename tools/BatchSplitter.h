// Splits a byte stream into decoder batches the way the receiver link would
// hand them over: whole lines packed greedily up to a size, or (cut mode)
// plain slices of that size as a raw stream arrives.
#pragma once

#include <cstddef>
#include <functional>
#include <string_view>
#include <vector>

namespace satwalk::tools {

class BatchSplitter {
  public:
    // Reads up to `size` bytes into `buffer`; returns the count, 0 at the
    // end, or a negative value on a read error.
    using ReadFn = std::function<long(char* buffer, std::size_t size)>;

    BatchSplitter(ReadFn read, std::size_t batchSize, bool cut);

    // The next batch, valid until the next call; false at the end of input
    // or on a read error (see failed()).
    bool Next(std::string_view& batch);
    bool failed() const { return failed_; }

  private:
    bool Fill();  // reads more behind end_, moving the pending bytes to the front

    ReadFn read_;
    std::size_t batchSize_;
    bool cut_;
    std::vector<char> buffer_;
    std::size_t start_ = 0;   // first byte of the batch being built
    std::size_t cursor_ = 0;  // end of the whole lines taken into it
    std::size_t end_ = 0;     // end of the bytes read
    bool eof_ = false;
    bool failed_ = false;
};

}  // namespace satwalk::tools
