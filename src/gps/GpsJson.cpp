#include "GpsJson.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "Json.h"

namespace satwalk::gps {

using common::AppendJsonNumber;
using common::AppendJsonString;

namespace {

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

void AppendGpsJsonMembers(std::string& out, const GpsState& s, const FixValues& values,
                          bool timeKnown) {
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
    out += "\"latitudeDegrees\":";
    AppendJsonNumber(out, values.latitude.value_or(kAbsentDegrees));
    out += ",\"longitudeDegrees\":";
    AppendJsonNumber(out, values.longitude.value_or(kAbsentDegrees));
    out += ",\"fixValid\":";
    out += values.valid ? "true" : "false";
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
