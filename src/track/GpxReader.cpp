#include "GpxReader.h"

// The amplification limits are declared only for builds with DTD support,
// which Debian's expat is.
#ifndef XML_DTD
#define XML_DTD
#endif
#include <expat.h>

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <utility>

namespace satwalk::track {

namespace {

// expat's memory, counted per thread (a parser lives on the thread that made
// it): every block carries its size in front.
thread_local std::size_t tAllocated = 0;
constexpr std::size_t kHeader = alignof(std::max_align_t);

void* CountedMalloc(std::size_t size) {
    if (size > kGpxParserMemory || tAllocated + size > kGpxParserMemory)
        return nullptr;
    auto* block = static_cast<unsigned char*>(std::malloc(size + kHeader));
    if (block == nullptr)
        return nullptr;
    std::memcpy(block, &size, sizeof size);
    tAllocated += size;
    return block + kHeader;
}

void CountedFree(void* ptr) {
    if (ptr == nullptr)
        return;
    unsigned char* block = static_cast<unsigned char*>(ptr) - kHeader;
    std::size_t size = 0;
    std::memcpy(&size, block, sizeof size);
    tAllocated -= size;
    std::free(block);
}

void* CountedRealloc(void* ptr, std::size_t size) {
    if (ptr == nullptr)
        return CountedMalloc(size);
    unsigned char* block = static_cast<unsigned char*>(ptr) - kHeader;
    std::size_t old = 0;
    std::memcpy(&old, block, sizeof old);
    if (size > old && (size > kGpxParserMemory || tAllocated - old + size > kGpxParserMemory))
        return nullptr;
    auto* grown = static_cast<unsigned char*>(std::realloc(block, size + kHeader));
    if (grown == nullptr)
        return nullptr;
    std::memcpy(grown, &size, sizeof size);
    tAllocated = tAllocated - old + size;
    return grown + kHeader;
}

const XML_Memory_Handling_Suite kMemory = {CountedMalloc, CountedRealloc, CountedFree};

std::string_view LocalName(const char* name) {
    const char* colon = std::strrchr(name, ':');
    return colon != nullptr ? std::string_view(colon + 1) : std::string_view(name);
}

std::string_view Trim(std::string_view text) {
    constexpr std::string_view kSpace = " \t\r\n";
    const std::size_t first = text.find_first_not_of(kSpace);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(kSpace) - first + 1);
}

// A decimal number filling the whole (trimmed) text; NaN otherwise.
double Number(std::string_view text) {
    text = Trim(text);
    if (!text.empty() && text.front() == '+')
        text.remove_prefix(1);
    double value = 0;
    const auto r = std::from_chars(text.data(), text.data() + text.size(), value);
    return r.ec == std::errc() && r.ptr == text.data() + text.size() ? value : kNoValue;
}

bool Digits(std::string_view text, std::size_t at, std::size_t count, int& value) {
    if (at + count > text.size())
        return false;
    value = 0;
    for (std::size_t i = at; i < at + count; ++i) {
        if (text[i] < '0' || text[i] > '9')
            return false;
        value = value * 10 + (text[i] - '0');
    }
    return true;
}

// xsd:dateTime, "2024-05-01T08:00:01.250Z", the zone optional (UTC when
// missing) and given as Z or ±hh:mm.
bool ParseGpxTime(std::string_view text, std::int64_t& utcSeconds, int& millisecond) {
    text = Trim(text);
    int year, month, day, hour, minute, second;
    if (!Digits(text, 0, 4, year) || text.size() < 19 || text[4] != '-' || text[7] != '-' ||
        (text[10] != 'T' && text[10] != ' ') || text[13] != ':' || text[16] != ':' ||
        !Digits(text, 5, 2, month) || !Digits(text, 8, 2, day) || !Digits(text, 11, 2, hour) ||
        !Digits(text, 14, 2, minute) || !Digits(text, 17, 2, second))
        return false;
    if (month < 1 || month > 12 || day < 1 || day > 31 || hour > 24 || minute > 59 || second > 60)
        return false;
    std::size_t at = 19;
    millisecond = 0;
    if (at < text.size() && text[at] == '.') {
        int scale = 100;
        for (++at; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at) {
            millisecond += (text[at] - '0') * scale;
            scale /= 10;
        }
    }
    std::int64_t offset = 0;
    if (at < text.size() && (text[at] == '+' || text[at] == '-')) {
        int oh = 0, om = 0;
        if (!Digits(text, at + 1, 2, oh))
            return false;
        const std::size_t minutes = at + 3 < text.size() && text[at + 3] == ':' ? at + 4 : at + 3;
        Digits(text, minutes, 2, om);
        offset = (text[at] == '-' ? -1 : 1) * (oh * 3600 + om * 60);
    }
    utcSeconds =
        DaysFromCivil(year, month, day) * 86400 + hour * 3600 + minute * 60 + second - offset;
    return true;
}

// Cuts UTF-8 text to at most `max` bytes without splitting a character.
std::string CutUtf8(std::string_view text, std::size_t max) {
    if (text.size() <= max)
        return std::string(text);
    std::size_t n = max;
    while (n > 0 && (static_cast<unsigned char>(text[n]) & 0xC0) == 0x80) --n;
    return std::string(text.substr(0, n));
}

enum class Field { None, Elevation, Time, Speed, Course, Fix, Satellites, Name, Symbol, Type };
enum class Element { None, TrackPoint, Waypoint };

constexpr std::size_t kTextMax = 512;  // longest text collected for a field

}  // namespace

struct GpxParser::State {
    XML_Parser parser = nullptr;
    TrackFilePointSink onPoint;
    TrackWaypointSink onWaypoint;
    int depth = 0;
    bool rootSeen = false;
    bool isGpx = false;
    bool stopped = false;
    bool complete = false;
    std::string error;

    Element element = Element::None;
    int elementDepth = 0;
    bool positionValid = false;
    TrackFilePoint point;
    TrackWaypoint waypoint;
    Field field = Field::None;
    int fieldDepth = 0;
    std::string text;
    UtcToLocal zone;

    void Start(const char* name, const char** attributes);
    void End();
    void Apply();
};

namespace {

void XMLCALL OnStart(void* user, const XML_Char* name, const XML_Char** attributes) {
    static_cast<GpxParser::State*>(user)->Start(name, attributes);
}

void XMLCALL OnEnd(void* user, const XML_Char*) {
    static_cast<GpxParser::State*>(user)->End();
}

void XMLCALL OnText(void* user, const XML_Char* text, int length) {
    auto* s = static_cast<GpxParser::State*>(user);
    if (s->field == Field::None || s->text.size() >= kTextMax)
        return;
    const std::size_t room = kTextMax - s->text.size();
    s->text.append(text, std::min(room, static_cast<std::size_t>(length)));
}

bool InRange(double latitude, double longitude) {
    return std::isfinite(latitude) && std::isfinite(longitude) && latitude >= -90 &&
           latitude <= 90 && longitude >= -180 && longitude <= 180;
}

}  // namespace

void GpxParser::State::Start(const char* name, const char** attributes) {
    ++depth;
    const std::string_view local = LocalName(name);
    if (depth == 1) {
        rootSeen = true;
        isGpx = local == "gpx";
        if (!isGpx)
            XML_StopParser(parser, XML_FALSE);
        return;
    }
    if (element == Element::None) {
        if (local == "trkpt" || local == "rtept")
            element = Element::TrackPoint;
        else if (local == "wpt")
            element = Element::Waypoint;
        else
            return;
        elementDepth = depth;
        double latitude = kNoValue, longitude = kNoValue;
        for (const char** a = attributes; a[0] != nullptr; a += 2) {
            const std::string_view attribute = LocalName(a[0]);
            if (attribute == "lat")
                latitude = Number(a[1]);
            else if (attribute == "lon")
                longitude = Number(a[1]);
        }
        positionValid = InRange(latitude, longitude);
        point = TrackFilePoint{};
        point.latitude = latitude;
        point.longitude = longitude;
        waypoint = TrackWaypoint{};
        waypoint.latitude = latitude;
        waypoint.longitude = longitude;
        return;
    }
    if (field != Field::None)
        return;  // markup inside a field's text is passed over
    Field f = Field::None;
    if (local == "speed")
        f = Field::Speed;
    else if (local == "course")
        f = Field::Course;
    else if (depth == elementDepth + 1) {
        if (local == "ele")
            f = Field::Elevation;
        else if (local == "time")
            f = Field::Time;
        else if (local == "fix")
            f = Field::Fix;
        else if (local == "sat")
            f = Field::Satellites;
        else if (local == "name")
            f = Field::Name;
        else if (local == "sym")
            f = Field::Symbol;
        else if (local == "type")
            f = Field::Type;
    }
    if (f != Field::None) {
        field = f;
        fieldDepth = depth;
        text.clear();
        // Text is wanted only inside a field: the white space between
        // elements never reaches a handler.
        XML_SetCharacterDataHandler(parser, OnText);
    }
}

void GpxParser::State::Apply() {
    switch (field) {
        case Field::Elevation:
            point.elevation = Number(text);
            break;
        case Field::Time: {
            std::int64_t seconds = 0;
            int millisecond = 0;
            if (ParseGpxTime(text, seconds, millisecond)) {
                point.time = zone.Convert(seconds, millisecond);
                point.hasTime = true;
            }
            break;
        }
        case Field::Speed: {
            const double v = Number(text);
            point.speed = v >= 0 ? v : kNoValue;
            break;
        }
        case Field::Course:
            point.course = Number(text);
            break;
        case Field::Fix: {
            const std::string_view v = Trim(text);
            static constexpr std::pair<std::string_view, GpxFix> kFixes[] = {{"none", kFixNone},
                                                                             {"2d", kFix2d},
                                                                             {"3d", kFix3d},
                                                                             {"pps", kFix3d},
                                                                             {"dgps", kFixDgps}};
            point.fix = -1;
            for (const auto& [name, fix] : kFixes)
                if (v == name)
                    point.fix = fix;
            break;
        }
        case Field::Satellites: {
            const double n = Number(text);
            point.satellites = n >= 0 && n < 1000 ? static_cast<std::int16_t>(n) : -1;
            break;
        }
        case Field::Name:
            waypoint.name = CutUtf8(Trim(text), kWaypointTextMax);
            break;
        case Field::Symbol:
            waypoint.symbol = CutUtf8(Trim(text), kWaypointTextMax);
            break;
        case Field::Type:
            waypoint.type = CutUtf8(Trim(text), kWaypointTextMax);
            break;
        case Field::None:
            break;
    }
}

void GpxParser::State::End() {
    if (field != Field::None && depth == fieldDepth) {
        Apply();
        field = Field::None;
        XML_SetCharacterDataHandler(parser, nullptr);
    }
    if (element != Element::None && depth == elementDepth) {
        if (positionValid) {
            if (element == Element::TrackPoint && onPoint)
                onPoint(point);
            else if (element == Element::Waypoint && onWaypoint)
                onWaypoint(waypoint);
        }
        element = Element::None;
    }
    --depth;
}

GpxParser::GpxParser(TrackFilePointSink onPoint, TrackWaypointSink onWaypoint)
    : state_(std::make_unique<State>()) {
    state_->onPoint = std::move(onPoint);
    state_->onWaypoint = std::move(onWaypoint);
    state_->text.reserve(kTextMax);
    state_->parser = XML_ParserCreate_MM(nullptr, &kMemory, nullptr);
    if (state_->parser == nullptr) {
        state_->stopped = true;
        state_->error = "out of memory";
        return;
    }
    XML_SetUserData(state_->parser, state_.get());
    XML_SetElementHandler(state_->parser, OnStart, OnEnd);
    // No external entity or DTD is ever read; entity expansion is watched
    // from the first megabyte on.
    XML_SetParamEntityParsing(state_->parser, XML_PARAM_ENTITY_PARSING_NEVER);
    XML_SetBillionLaughsAttackProtectionActivationThreshold(state_->parser, 1u << 20);
    XML_SetBillionLaughsAttackProtectionMaximumAmplification(state_->parser, 20.0f);
}

GpxParser::~GpxParser() {
    if (state_->parser != nullptr)
        XML_ParserFree(state_->parser);
}

bool GpxParser::Feed(const char* data, std::size_t size, bool last) {
    State& s = *state_;
    if (s.stopped)
        return false;
    // expat takes an int's worth at a time.
    constexpr std::size_t kPiece = 1u << 30;
    do {
        const std::size_t n = std::min(size, kPiece);
        const bool end = last && n == size;
        if (XML_Parse(s.parser, data, static_cast<int>(n), end ? XML_TRUE : XML_FALSE) !=
            XML_STATUS_OK) {
            s.stopped = true;
            if (s.error.empty()) {
                s.error = XML_ErrorString(XML_GetErrorCode(s.parser));
                s.error += " at line " + std::to_string(XML_GetCurrentLineNumber(s.parser));
            }
            return false;
        }
        data += n;
        size -= n;
    } while (size > 0);
    if (last) {
        s.complete = true;
        s.stopped = true;
    }
    return true;
}

bool GpxParser::IsGpx() const {
    return state_->isGpx;
}

bool GpxParser::Complete() const {
    return state_->complete;
}

const std::string& GpxParser::error() const {
    return state_->error;
}

}  // namespace satwalk::track
