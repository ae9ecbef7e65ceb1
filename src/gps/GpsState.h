// The one record of what the receiver last reported.
//
// Every value is kept as the receiver sent it: NUL-terminated 8-bit text,
// truncated to the field's width (the array size includes the NUL). The
// screens rely on these widths, so they must not change.
#pragma once

#include <cstdint>

#include "FixText.h"

namespace satwalk::gps {

using common::FileTime;
using common::kFileTimeTicksPerSecond;

// One row of the satellite table (21 bytes of text).
struct SatelliteRecord {
    char prn[3];        // satellite number
    char elevation[6];  // degrees
    char azimuth[7];    // degrees true
    char snr[5];        // dB-Hz, empty when not tracked
};
static_assert(sizeof(SatelliteRecord) == 21);

inline constexpr int kSatelliteRows = 12;

struct GpsState {
    char header[7];  // scratch: header of the sentence being decoded

    // RMC block: utcTime .. course
    char utcTime[11];
    char date[7];
    char status;  // 'A' valid, 'V' void, 0 when empty
    char latitude[10];
    char northSouth;
    char longitude[11];
    char eastWest;
    char speedKnots[7];
    char course[7];

    // GGA block: fixQuality .. geoidUnit
    char fixQuality;
    char satellitesUsed[3];
    char altitude[10];
    char altitudeUnit;
    char geoidSeparation[10];
    char geoidUnit;

    // GSA block: hdop .. fixMode
    char hdop[8];
    char pdop[8];
    char vdop[8];
    char fixMode;

    // GSV block: satellitesInView .. satellites
    char satellitesInView[3];
    SatelliteRecord satellites[kSatelliteRows];

    FileTime fixTimeLocal;          // local time of the last sync, advanced by the clock
    std::uint32_t timeSyncPending;  // next good RMC recomputes fixTimeLocal

    // A new record: every text empty, no fix time, a time sync requested.
    GpsState();

    void ClearRmcBlock();
    void ClearGgaBlock();
    void ClearGsaBlock();
    void ClearGsvBlock();
    // What the stop-GPS command does: all four blocks emptied, the fix time
    // and its sync request left alone.
    void ClearAllBlocks();

    // Forces a NUL into the last byte of every text. The decoder always
    // leaves them terminated; a reader that takes a record from elsewhere
    // (or a copy made while the decoder writes) calls this before parsing.
    void TerminateTexts();
};

}  // namespace satwalk::gps
