// satwalk-tool track: a track log read exactly as the program reads it, as
// one JSON object of points or, with --gpx, as a GPX 1.1 track. Both are
// written as the file is read, so memory stays flat on any size of log; as
// in the program, a log is read up to kMaxTrackPoints points.
#include <unistd.h>

#include <charconv>
#include <cstdio>
#include <ctime>
#include <string>
#include <string_view>

#include "Json.h"
#include "ToolCommands.h"
#include "TrackLogReader.h"
#include "TrackState.h"

namespace satwalk::tools {

namespace {

constexpr const char* kUsage =
    "usage: satwalk-tool track FILE.log [--gpx]\n"
    "  Reads a track log as the program does and prints its points as one\n"
    "  JSON object {\"points\": [{\"longitude\", \"latitude\", \"time\"}]}.\n"
    "  --gpx  print a GPX 1.1 document instead (one track, one segment, times\n"
    "         converted from local time to UTC; points whose position or time\n"
    "         GPX cannot hold are left out)\n";

constexpr std::size_t kFlushAt = 1 << 20;

// Output collected in a buffer and written out in large pieces.
class Output {
  public:
    Output() { text.reserve(kFlushAt + 4096); }
    void FlushIfFull() {
        if (text.size() >= kFlushAt)
            Flush();
    }
    void Flush() {
        if (!WriteAll(STDOUT_FILENO, text))
            failed = true;
        text.clear();
    }
    std::string text;
    bool failed = false;
};

// Decimal degrees without an exponent (GPX takes xsd:decimal).
void AppendDecimal(std::string& out, double value) {
    char digits[400];
    const auto r = std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed);
    out.append(digits, r.ptr);
}

long long DaysFromCivil(int y, int m, int d) {
    y -= m <= 2;
    const long long era = (y >= 0 ? y : y - 399) / 400;
    const int yoe = y - static_cast<int>(era) * 400;
    const int doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const int doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + doe - 719468;
}

bool IsCalendarTime(const track::TrackTime& t) {
    static constexpr int kDays[] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return t.year >= 1 && t.month >= 1 && t.month <= 12 && t.day >= 1 &&
           t.day <= kDays[t.month - 1] && t.hour >= 0 && t.hour < 24 && t.minute >= 0 &&
           t.minute < 60 && t.second >= 0 && t.second < 60 &&
           (t.month != 2 || t.day < 29 ||
            (t.year % 4 == 0 && (t.year % 100 != 0 || t.year % 400 == 0)));
}

// Local time to UTC through the system time zone; the zone's offset is
// looked up once per local hour, as a log holds thousands of points an hour.
class LocalToUtc {
  public:
    bool Convert(const track::TrackTime& t, std::tm& utc) {
        const long long localSeconds = DaysFromCivil(t.year, t.month, t.day) * 86400 +
                                       t.hour * 3600 + t.minute * 60 + t.second;
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

  private:
    long long hourKey_ = -1LL << 62;
    long long offset_ = 0;
};

void AppendJsonPoint(std::string& out, const track::TrackLogPoint& p, bool first) {
    out += first ? "{\"longitude\":" : ",{\"longitude\":";
    common::AppendJsonNumber(out, p.longitude);
    out += ",\"latitude\":";
    common::AppendJsonNumber(out, p.latitude);
    out += ",\"time\":\"";
    out += track::FormatTrackTime(p.time);
    out += "\"}";
}

void AppendGpxPoint(std::string& out, const track::TrackLogPoint& p, LocalToUtc& zone) {
    if (!(p.latitude >= -90 && p.latitude <= 90 && p.longitude >= -180 && p.longitude <= 180))
        return;
    out += "<trkpt lat=\"";
    AppendDecimal(out, p.latitude);
    out += "\" lon=\"";
    AppendDecimal(out, p.longitude);
    out += "\">";
    std::tm utc{};
    if (IsCalendarTime(p.time) && zone.Convert(p.time, utc)) {
        char time[96];
        std::snprintf(time, sizeof time, "<time>%04d-%02d-%02dT%02d:%02d:%02dZ</time>",
                      utc.tm_year + 1900, utc.tm_mon + 1, utc.tm_mday, utc.tm_hour, utc.tm_min,
                      utc.tm_sec);
        out += time;
    }
    out += "</trkpt>\n";
}

}  // namespace

int RunTrack(int argc, char** argv) {
    const char* path = nullptr;
    bool gpx = false;
    for (int i = 0; i < argc; ++i) {
        const std::string_view arg = argv[i];
        if (arg == "-h" || arg == "--help") {
            std::fputs(kUsage, stdout);
            return 0;
        }
        if (arg == "--gpx") {
            gpx = true;
        } else if (path == nullptr && !arg.starts_with("--")) {
            path = argv[i];
        } else {
            std::fprintf(stderr, "satwalk-tool track: unexpected argument %s\n%s", argv[i], kUsage);
            return 2;
        }
    }
    if (path == nullptr) {
        std::fputs(kUsage, stderr);
        return 2;
    }

    Output out;
    LocalToUtc zone;
    bool first = true;
    if (gpx) {
        out.text +=
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
            "<gpx version=\"1.1\" creator=\"Satwalk\" "
            "xmlns=\"http://www.topografix.com/GPX/1/1\">\n"
            "<trk>\n<trkseg>\n";
    } else {
        out.text += "{\"points\":[";
    }
    const auto result = track::ReadTrackLog(path, [&](const track::TrackLogPoint& p) {
        if (gpx)
            AppendGpxPoint(out.text, p, zone);
        else
            AppendJsonPoint(out.text, p, first);
        first = false;
        out.FlushIfFull();
    });
    if (result == track::TrackLogResult::OpenFailed) {
        std::fprintf(stderr, "satwalk-tool track: %s: %s\n", path, track::kOpenTrackLogFailed);
        return 1;
    }
    if (result == track::TrackLogResult::Truncated) {
        std::fprintf(stderr,
                     "satwalk-tool track: %s: more than %llu points; the first %llu, as "
                     "the program shows them\n",
                     path, static_cast<unsigned long long>(track::kMaxTrackPoints),
                     static_cast<unsigned long long>(track::kMaxTrackPoints));
    }
    out.text += gpx ? "</trkseg>\n</trk>\n</gpx>\n" : "]}\n";
    out.Flush();
    return out.failed ? 1 : 0;
}

}  // namespace satwalk::tools
