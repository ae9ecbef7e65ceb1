#include "GpsJson.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "NmeaDecoder.h"

namespace satwalk::gps {

namespace {

// Length of the valid UTF-8 sequence at p (1..4), or 0 when the bytes there
// are not one.
std::size_t Utf8SequenceLength(const unsigned char* p, const unsigned char* end) {
    const unsigned c = p[0];
    std::size_t n;
    unsigned min;
    if (c >= 0xC2 && c <= 0xDF) {
        n = 2;
        min = 0x80;
    } else if (c >= 0xE0 && c <= 0xEF) {
        n = 3;
        min = 0x800;
    } else if (c >= 0xF0 && c <= 0xF4) {
        n = 4;
        min = 0x10000;
    } else {
        return 0;
    }
    if (static_cast<std::size_t>(end - p) < n)
        return 0;
    unsigned cp = c & (0x7F >> n);
    for (std::size_t i = 1; i < n; ++i) {
        if ((p[i] & 0xC0) != 0x80)
            return 0;
        cp = (cp << 6) | (p[i] & 0x3F);
    }
    if (cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF))
        return 0;
    return n;
}

void AppendEscapedByte(std::string& out, unsigned char c) {
    static constexpr char kHex[] = "0123456789abcdef";
    const char buf[6] = {'\\', 'u', '0', '0', kHex[c >> 4], kHex[c & 0xF]};
    out.append(buf, 6);
}

template <std::size_t N>
std::string_view Text(const char (&field)[N]) {
    return {field, strnlen(field, N)};
}

std::string_view Char(const char& c) {
    return {&c, c ? 1u : 0u};
}

void Member(std::string& out, const char* name, std::string_view value) {
    out += '"';
    out += name;
    out += "\":";
    AppendJsonString(out, value);
    out += ',';
}

}  // namespace

void AppendJsonString(std::string& out, std::string_view text) {
    out += '"';
    const auto* p = reinterpret_cast<const unsigned char*>(text.data());
    const auto* end = p + text.size();
    while (p < end) {
        // Plain printable ASCII, by far the usual case, goes over in one run.
        const auto* run = p;
        while (run < end && *run >= 0x20 && *run < 0x7F && *run != '"' && *run != '\\') ++run;
        if (run != p) {
            out.append(reinterpret_cast<const char*>(p), static_cast<std::size_t>(run - p));
            p = run;
            if (p == end)
                break;
        }
        const unsigned char c = *p;
        if (c >= 0x20 && c < 0x7F) {
            if (c == '"' || c == '\\')
                out += '\\';
            out += static_cast<char>(c);
            ++p;
        } else if (c < 0x20 || c == 0x7F) {
            AppendEscapedByte(out, c);
            ++p;
        } else if (std::size_t n = Utf8SequenceLength(p, end)) {
            out.append(reinterpret_cast<const char*>(p), n);
            p += n;
        } else {
            AppendEscapedByte(out, c);
            ++p;
        }
    }
    out += '"';
}

void AppendJsonNumber(std::string& out, double value) {
    if (!std::isfinite(value)) {
        out += "null";
        return;
    }
    char buf[32];
    const auto result = std::to_chars(buf, buf + sizeof buf, value);
    out.append(buf, result.ptr);
}

namespace {

int FormatFixTimeInto(char (&buf)[40], FileTime time) {
    const CalendarTime c = FileTimeToCalendar(time);
    return std::snprintf(buf, sizeof buf, "%04d-%02d-%02d %02d:%02d:%02d.%03d", c.year, c.month,
                         c.day, c.hour, c.minute, c.second, c.millisecond);
}

}  // namespace

std::string FormatFixTime(FileTime time) {
    char buf[40];
    FormatFixTimeInto(buf, time);
    return buf;
}

void AppendGpsJsonMembers(std::string& out, const GpsState& s, bool timeKnown) {
    Member(out, "header", Text(s.header));
    Member(out, "utcTime", Text(s.utcTime));
    Member(out, "date", Text(s.date));
    Member(out, "status", Char(s.status));
    Member(out, "latitude", Text(s.latitude));
    Member(out, "northSouth", Char(s.northSouth));
    Member(out, "longitude", Text(s.longitude));
    Member(out, "eastWest", Char(s.eastWest));
    Member(out, "speedKnots", Text(s.speedKnots));
    Member(out, "course", Text(s.course));
    Member(out, "fixQuality", Char(s.fixQuality));
    Member(out, "satellitesUsed", Text(s.satellitesUsed));
    Member(out, "altitude", Text(s.altitude));
    Member(out, "altitudeUnit", Char(s.altitudeUnit));
    Member(out, "geoidSeparation", Text(s.geoidSeparation));
    Member(out, "geoidUnit", Char(s.geoidUnit));
    Member(out, "hdop", Text(s.hdop));
    Member(out, "pdop", Text(s.pdop));
    Member(out, "vdop", Text(s.vdop));
    Member(out, "fixMode", Char(s.fixMode));
    Member(out, "satellitesInView", Text(s.satellitesInView));
    out += "\"satellites\":[";
    for (int i = 0; i < kSatelliteRows; ++i) {
        const SatelliteRecord& r = s.satellites[i];
        out += i ? ",{" : "{";
        Member(out, "prn", Text(r.prn));
        Member(out, "elevation", Text(r.elevation));
        Member(out, "azimuth", Text(r.azimuth));
        out += "\"snr\":";
        AppendJsonString(out, Text(r.snr));
        out += '}';
    }
    out += "],";
    double lat = 0;
    double lon = 0;
    NmeaToDegrees(s.latitude, s.northSouth, s.longitude, s.eastWest, &lat, &lon);
    out += "\"latitudeDegrees\":";
    AppendJsonNumber(out, lat);
    out += ",\"longitudeDegrees\":";
    AppendJsonNumber(out, lon);
    out += ",\"fixValid\":";
    out += s.status == 'A' ? "true" : "false";
    out += ",\"fixTimeLocal\":";
    if (timeKnown) {
        char buf[40];
        const int n = FormatFixTimeInto(buf, s.fixTimeLocal);
        out += '"';
        out.append(buf, static_cast<std::size_t>(n));
        out += '"';
    } else {
        out += "null";
    }
}

}  // namespace satwalk::gps
