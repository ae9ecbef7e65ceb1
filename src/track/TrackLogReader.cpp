#include "TrackLogReader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>

#include "FixText.h"

namespace satwalk::track {

namespace {

// atof on a NUL-terminated text, in any locale. Plain decimal numbers take
// the fast path; everything else (spaces, '+', hex, partial numbers) goes
// through the C library's own reading.
double ReadDegrees(const char* text, std::size_t length) {
    const char* end = text + length;
    double value = 0;
    const auto r = std::from_chars(text, end, value);
    if (r.ec == std::errc() && r.ptr == end)
        return std::isfinite(value) ? value : 0.0;  // "nan" and "inf" are no degrees
    return gps::TextToDouble(text);
}

// atoi on the characters [from, from + width) of a text of `length`
// characters: spaces, a sign, then digits.
int ReadPart(const char* text, std::size_t length, std::size_t from, std::size_t width) {
    std::size_t i = from;
    const std::size_t end = std::min(length, from + width);
    while (i < end && (text[i] == ' ' || (text[i] >= '\t' && text[i] <= '\r'))) ++i;
    bool negative = false;
    if (i < end && (text[i] == '+' || text[i] == '-'))
        negative = text[i++] == '-';
    int value = 0;
    while (i < end && text[i] >= '0' && text[i] <= '9') value = value * 10 + (text[i++] - '0');
    return negative ? -value : value;
}

}  // namespace

bool TrackLogParser::EndField() {
    text_[length_] = '\0';
    const std::size_t length = std::strlen(text_);  // a NUL ends the text
    switch (field_) {
        case 0:
            point_.longitude = ReadDegrees(text_, length);
            haveLongitude_ = true;
            break;
        case 1:
            point_.latitude = ReadDegrees(text_, length);
            haveLatitude_ = true;
            break;
        case 3: {
            TrackTime& t = point_.time;
            t.year = static_cast<std::int16_t>(ReadPart(text_, length, 0, 4));
            t.month = static_cast<std::int8_t>(ReadPart(text_, length, 4, 2));
            t.day = static_cast<std::int8_t>(ReadPart(text_, length, 6, 2));
            t.hour = static_cast<std::int8_t>(ReadPart(text_, length, 9, 2));
            t.minute = static_cast<std::int8_t>(ReadPart(text_, length, 12, 2));
            t.second = static_cast<std::int8_t>(ReadPart(text_, length, 15, 2));
            haveTime_ = true;
            break;
        }
        default:
            break;
    }
    if (field_ < 4)
        ++field_;  // later fields are all alike
    length_ = 0;
    if (!(haveLongitude_ && haveLatitude_ && haveTime_))
        return false;
    haveLongitude_ = haveLatitude_ = haveTime_ = false;
    return true;
}

TrackLogResult ReadTrackLog(const std::string& path, const TrackPointSink& onPoint,
                            const TrackProgress& progress, std::uint64_t maxPoints) {
    // Non-blocking open: a FIFO named like a log must not hang the reader.
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (fd < 0)
        return TrackLogResult::OpenFailed;
    struct stat st {};
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        ::close(fd);
        return TrackLogResult::OpenFailed;
    }
    constexpr std::size_t kBlock = 1 << 20;
    const std::unique_ptr<char[]> block(new char[kBlock]);
    const auto total = static_cast<std::uint64_t>(st.st_size);
    std::uint64_t done = 0;
    TrackLogParser parser;
    std::uint64_t points = 0;
    const auto budgeted = [&](const TrackLogPoint& p) {
        if (points < maxPoints)
            onPoint(p);
        ++points;
    };
    for (;;) {
        const ssize_t n = ::read(fd, block.get(), kBlock);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            break;  // the end, or a file that vanished under us: keep what was read
        parser.Feed(block.get(), static_cast<std::size_t>(n), budgeted);
        done += static_cast<std::uint64_t>(n);
        if (progress)
            progress(done, total < done ? done : total);
        if (points > maxPoints)
            break;  // a point past the budget: the rest is not read
    }
    ::close(fd);
    return points > maxPoints ? TrackLogResult::Truncated : TrackLogResult::Read;
}

std::string FormatTrackTime(const TrackTime& t) {
    char text[48];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", t.year, t.month, t.day,
                  t.hour, t.minute, t.second);
    return text;
}

}  // namespace satwalk::track
