#include "GpxWriter.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace satwalk::track {

namespace {

bool IsCalendarTime(const TrackTime& t) {
    static constexpr int kDays[] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return t.year >= 1 && t.month >= 1 && t.month <= 12 && t.day >= 1 &&
           t.day <= kDays[t.month - 1] && t.hour >= 0 && t.hour < 24 && t.minute >= 0 &&
           t.minute < 60 && t.second >= 0 && t.second < 60 &&
           (t.month != 2 || t.day < 29 ||
            (t.year % 4 == 0 && (t.year % 100 != 0 || t.year % 400 == 0)));
}

// Decimal without an exponent (GPX takes xsd:decimal), shortest exact form.
void AppendDecimal(std::string& out, double value) {
    char digits[400];
    const auto r = std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed);
    out.append(digits, r.ptr);
}

// A measured value to a tenth (or better, where it ends sooner).
void AppendMeasure(std::string& out, double value) {
    AppendDecimal(out, std::round(value * 100) / 100);
}

bool WriteAt(int fd, std::string_view bytes, off_t at) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t n =
            ::pwrite(fd, bytes.data() + done, bytes.size() - done, at + static_cast<off_t>(done));
        if (n > 0)
            done += static_cast<std::size_t>(n);
        else if (!(n < 0 && errno == EINTR))
            return false;
    }
    return true;
}

}  // namespace

std::string GpxHeader() {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<gpx version=\"1.1\" creator=\"Satwalk\" "
           "xmlns=\"http://www.topografix.com/GPX/1/1\" "
           "xmlns:gpxtpx=\"http://www.garmin.com/xmlschemas/TrackPointExtension/v2\">\n"
           "<trk>\n<trkseg>\n";
}

bool LocalToUtc::Convert(const TrackTime& t, std::tm& utc) {
    if (!IsCalendarTime(t))
        return false;
    const long long localSeconds =
        DaysFromCivil(t.year, t.month, t.day) * 86400 + t.hour * 3600 + t.minute * 60 + t.second;
    const long long hourKey = localSeconds / 3600;
    if (hourKey != hourKey_) {
        std::tm local{};
        local.tm_year = t.year - 1900;
        local.tm_mon = t.month - 1;
        local.tm_mday = t.day;
        local.tm_hour = t.hour;
        local.tm_isdst = -1;
        const std::time_t at = std::mktime(&local);
        if (at == static_cast<std::time_t>(-1))
            return false;
        offset_ = (hourKey * 3600) - static_cast<long long>(at);
        hourKey_ = hourKey;
    }
    const auto seconds = static_cast<std::time_t>(localSeconds - offset_);
    return gmtime_r(&seconds, &utc) != nullptr;
}

bool AppendGpxPoint(std::string& out, const TrackFilePoint& p, LocalToUtc& zone) {
    if (!(p.latitude >= -90 && p.latitude <= 90 && p.longitude >= -180 && p.longitude <= 180))
        return false;
    out += "<trkpt lat=\"";
    AppendDecimal(out, p.latitude);
    out += "\" lon=\"";
    AppendDecimal(out, p.longitude);
    out += "\">";
    if (std::isfinite(p.elevation) && std::fabs(p.elevation) < 1e7) {
        out += "<ele>";
        AppendMeasure(out, p.elevation);
        out += "</ele>";
    }
    std::tm utc{};
    if (p.hasTime && zone.Convert(p.time, utc)) {
        char time[96];
        std::snprintf(time, sizeof time, "<time>%04d-%02d-%02dT%02d:%02d:%02dZ</time>",
                      utc.tm_year + 1900, utc.tm_mon + 1, utc.tm_mday, utc.tm_hour, utc.tm_min,
                      utc.tm_sec);
        out += time;
    }
    static constexpr const char* kFix[] = {"none", "2d", "3d", "dgps"};
    if (p.fix >= 0 && p.fix <= 3) {
        out += "<fix>";
        out += kFix[p.fix];
        out += "</fix>";
    }
    if (p.satellites >= 0) {
        out += "<sat>";
        out += std::to_string(p.satellites);
        out += "</sat>";
    }
    const bool speed = std::isfinite(p.speed) && p.speed >= 0 && p.speed < 1e6;
    const bool course = std::isfinite(p.course) && p.course >= 0 && p.course < 360;
    if (speed || course) {
        out += "<extensions><gpxtpx:TrackPointExtension>";
        if (speed) {
            out += "<gpxtpx:speed>";
            AppendMeasure(out, p.speed);
            out += "</gpxtpx:speed>";
        }
        if (course) {
            out += "<gpxtpx:course>";
            AppendMeasure(out, p.course);
            out += "</gpxtpx:course>";
        }
        out += "</gpxtpx:TrackPointExtension></extensions>";
    }
    out += "</trkpt>\n";
    return true;
}

TrackWrite AppendGpxTrackPoint(const std::string& path, std::string_view pointLine) {
    const int fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0644);
    if (fd < 0)
        return TrackWrite::NotOpened;
    struct stat st {};
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        ::close(fd);
        return TrackWrite::NotOpened;
    }
    const off_t size = st.st_size;
    std::string bytes;
    off_t at = 0;
    if (size == 0) {
        bytes = GpxHeader();
    } else {
        // Only a file that ends as this writer leaves it is written to.
        const auto tail = static_cast<off_t>(kGpxTrailer.size());
        char end[64] = {};
        if (size < tail || ::pread(fd, end, kGpxTrailer.size(), size - tail) != tail ||
            std::string_view(end, kGpxTrailer.size()) != kGpxTrailer) {
            ::close(fd);
            return TrackWrite::NotWritten;
        }
        at = size - tail;
    }
    if (pointLine.empty() && size != 0) {
        ::close(fd);
        return TrackWrite::Created;
    }
    bytes += pointLine;
    bytes += kGpxTrailer;
    TrackWrite result = TrackWrite::Written;
    if (!WriteAt(fd, bytes, at)) {
        // The closing tags go back where they were (those bytes exist, so
        // this needs no new space) and whatever was added goes.
        if (size != 0)
            (void)WriteAt(fd, kGpxTrailer, at);
        (void)!::ftruncate(fd, size);
        result = TrackWrite::NotWritten;
    }
    ::close(fd);
    return pointLine.empty() && result == TrackWrite::Written ? TrackWrite::Created : result;
}

std::string GpxPathForLog(const std::string& logPath) {
    std::string path = logPath;
    if (path.size() >= 4 && path.compare(path.size() - 4, 4, ".log") == 0)
        path.resize(path.size() - 4);
    return path + ".gpx";
}

}  // namespace satwalk::track
