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

}  // namespace satwalk::gps
