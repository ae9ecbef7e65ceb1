#include "GpsState.h"

#include <cstddef>
#include <cstring>

namespace satwalk::gps {

namespace {

// Each block is a run of adjacent char fields; clearing it in one stroke
// needs the fields to sit back to back, which these checks hold to.
constexpr std::size_t kRmcBegin = offsetof(GpsState, utcTime);
constexpr std::size_t kRmcEnd = offsetof(GpsState, course) + sizeof(GpsState::course);
constexpr std::size_t kGgaBegin = offsetof(GpsState, fixQuality);
constexpr std::size_t kGgaEnd = offsetof(GpsState, geoidUnit) + 1;
constexpr std::size_t kGsaBegin = offsetof(GpsState, hdop);
constexpr std::size_t kGsaEnd = offsetof(GpsState, fixMode) + 1;
constexpr std::size_t kGsvBegin = offsetof(GpsState, satellitesInView);
constexpr std::size_t kGsvEnd = offsetof(GpsState, satellites) + sizeof(GpsState::satellites);

static_assert(kRmcEnd - kRmcBegin == 56);
static_assert(kGgaEnd - kGgaBegin == 26);
static_assert(kGsaEnd - kGsaBegin == 25);
static_assert(kGsvEnd - kGsvBegin == 255);
static_assert(kRmcEnd == kGgaBegin && kGgaEnd == kGsaBegin && kGsaEnd == kGsvBegin);

void ClearRange(GpsState* state, std::size_t begin, std::size_t end) {
    std::memset(reinterpret_cast<unsigned char*>(state) + begin, 0, end - begin);
}

// A field's text as a C string, cut at the field's last byte as
// TerminateTexts cuts it.
template <std::size_t N>
struct Terminated {
    explicit Terminated(const char (&field)[N]) {
        std::memcpy(text, field, N - 1);
        text[N - 1] = '\0';
    }
    char text[N];
};

template <std::size_t N>
std::optional<double> ReadDouble(const char (&field)[N]) {
    if (field[0] == '\0')
        return std::nullopt;
    return TextToDouble(Terminated(field).text);
}

template <std::size_t N>
std::optional<int> ReadInt(const char (&field)[N]) {
    if (field[0] == '\0')
        return std::nullopt;
    return TextToInt(Terminated(field).text);
}

}  // namespace

GpsState::GpsState() {
    std::memset(header, 0, sizeof header);
    ClearAllBlocks();
    fixTimeLocal = 0;
    timeSyncPending = 1;
}

void GpsState::ClearRmcBlock() {
    ClearRange(this, kRmcBegin, kRmcEnd);
}
void GpsState::ClearGgaBlock() {
    ClearRange(this, kGgaBegin, kGgaEnd);
}
void GpsState::ClearGsaBlock() {
    ClearRange(this, kGsaBegin, kGsaEnd);
}
void GpsState::ClearGsvBlock() {
    ClearRange(this, kGsvBegin, kGsvEnd);
}
void GpsState::ClearAllBlocks() {
    ClearRange(this, kRmcBegin, kGsvEnd);
}

void GpsState::TerminateTexts() {
    const auto end = [](auto& text) { text[sizeof text - 1] = '\0'; };
    end(header);
    end(utcTime);
    end(date);
    end(latitude);
    end(longitude);
    end(speedKnots);
    end(course);
    end(satellitesUsed);
    end(altitude);
    end(geoidSeparation);
    end(hdop);
    end(pdop);
    end(vdop);
    end(satellitesInView);
    for (SatelliteRecord& r : satellites) {
        end(r.prn);
        end(r.elevation);
        end(r.azimuth);
        end(r.snr);
    }
}

FixValues ReadFix(const GpsState& s) {
    FixValues v;
    const bool haveLatitude = s.latitude[0] != '\0' || s.northSouth != '\0';
    const bool haveLongitude = s.longitude[0] != '\0' || s.eastWest != '\0';
    if (haveLatitude || haveLongitude) {
        double latitude = 0;
        double longitude = 0;
        NmeaToDegrees(Terminated(s.latitude).text, s.northSouth, Terminated(s.longitude).text,
                      s.eastWest, &latitude, &longitude);
        if (haveLatitude)
            v.latitude = latitude;
        if (haveLongitude)
            v.longitude = longitude;
    }
    v.speedKnots = ReadDouble(s.speedKnots);
    v.course = ReadDouble(s.course);
    v.altitude = ReadDouble(s.altitude);
    v.hdop = ReadDouble(s.hdop);
    v.pdop = ReadDouble(s.pdop);
    v.vdop = ReadDouble(s.vdop);
    v.satellitesUsed = ReadInt(s.satellitesUsed);
    v.satellitesInView = ReadInt(s.satellitesInView);
    v.valid = s.status == 'A';
    for (int i = 0; i < kSatelliteRows; ++i) {
        const SatelliteRecord& r = s.satellites[i];
        v.satellites[i] = {ReadDouble(r.elevation), ReadDouble(r.azimuth), ReadInt(r.snr)};
    }
    return v;
}

}  // namespace satwalk::gps
