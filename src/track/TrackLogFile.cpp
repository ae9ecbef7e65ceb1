#include "TrackLogFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <ctime>

namespace satwalk::track {

TrackTime LocalTrackTime() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    std::tm local{};
    localtime_r(&now.tv_sec, &local);
    TrackTime t;
    t.year = static_cast<std::int16_t>(local.tm_year + 1900);
    t.month = static_cast<std::int8_t>(local.tm_mon + 1);
    t.day = static_cast<std::int8_t>(local.tm_mday);
    t.hour = static_cast<std::int8_t>(local.tm_hour);
    t.minute = static_cast<std::int8_t>(local.tm_min);
    t.second = static_cast<std::int8_t>(local.tm_sec > 59 ? 59 : local.tm_sec);
    t.dayOfWeek = static_cast<std::int8_t>(local.tm_wday);
    t.millisecond = static_cast<std::int16_t>(now.tv_nsec / 1'000'000);
    return t;
}

std::string TrackFileName(const TrackTime& t) {
    char name[64];
    std::snprintf(name, sizeof name, "%d%02d%02d%02d%02d%02d.log", t.year, t.month, t.day, t.hour,
                  t.minute, t.second);
    return name;
}

std::string TrackFilePath(std::string_view folder, const TrackTime& start) {
    std::string path(folder);
    if (path.empty() || path.back() != '/')
        path += '/';
    return path + TrackFileName(start);
}

std::string TrackDateTimeText(const TrackTime& t) {
    char text[48];
    std::snprintf(text, sizeof text, "%d%02d%02d %02d:%02d:%02d", t.year, t.month, t.day, t.hour,
                  t.minute, t.second);
    return text;
}

namespace {

// "%f": six decimals, a '.' whatever the locale says.
void AppendFixed6(std::string& out, double value) {
    char digits[400];
    const auto r =
        std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed, 6);
    out.append(digits, r.ec == std::errc() ? r.ptr : digits);
}

}  // namespace

std::string FormatTrackLine(double longitude, double latitude, const TrackTime& time,
                            std::string_view speedKnots, std::string_view course,
                            std::string_view altitude) {
    std::string line;
    line.reserve(96);
    AppendFixed6(line, longitude);
    line += ',';
    AppendFixed6(line, latitude);
    line += ",,";
    line += TrackDateTimeText(time);
    for (const std::string_view text : {speedKnots, course, altitude}) {
        line += ',';
        line += text.substr(0, text.find('\0'));
    }
    line += "\r\n";
    if (line.size() > kTrackLineMax)
        line.resize(kTrackLineMax);
    return line;
}

TrackWrite AppendTrackLine(const std::string& path, std::string_view line, int* error) {
    int ignored = 0;
    int& err = error != nullptr ? *error : ignored;
    err = 0;
    // Non-blocking so that a FIFO in the track folder cannot hang the
    // program; only a regular file is written.
    const int fd =
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0644);
    if (fd < 0) {
        err = errno;
        return TrackWrite::NotOpened;
    }
    struct stat st {};
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        ::close(fd);
        err = EINVAL;
        return TrackWrite::NotOpened;
    }
    if (line.empty()) {
        ::close(fd);
        return TrackWrite::Created;
    }
    const off_t end = ::lseek(fd, 0, SEEK_END);
    TrackWrite result = end < 0 ? TrackWrite::NotWritten : TrackWrite::Written;
    std::size_t done = 0;
    while (result == TrackWrite::Written && done < line.size()) {
        const ssize_t n =
            ::pwrite(fd, line.data() + done, line.size() - done, end + static_cast<off_t>(done));
        if (n > 0) {
            done += static_cast<std::size_t>(n);
        } else if (n < 0 && errno == EINTR) {
            continue;
        } else {
            err = n < 0 ? errno : ENOSPC;
            result = TrackWrite::NotWritten;
        }
    }
    if (end < 0)
        err = errno;
    if (result == TrackWrite::NotWritten && done > 0)
        (void)!::ftruncate(fd, end);  // a half line would spoil the next one
    ::close(fd);
    return result;
}

}  // namespace satwalk::track
