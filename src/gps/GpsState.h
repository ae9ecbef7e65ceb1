// The one record of what the receiver last reported, and its numbers.
//
// Every value of the record is kept as the receiver sent it: NUL-terminated
// 8-bit text, truncated to the field's width (the array size includes the
// NUL). The screens rely on these widths, so they must not change. Its
// numbers are read once, into FixValues, where a copy of the record is taken
// for the window or a tool; the copy's readers take them from there.
#pragma once

#include <cstdint>
#include <optional>

#include "FixText.h"

namespace satwalk::gps {

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
    // (or a copy made while the decoder writes) calls this before reading a
    // text as a C string.
    void TerminateTexts();
};

// The numbers of a fix record. A value is absent when its text is empty; a
// text that is there reads as TextToDouble and TextToInt read it (its
// leading number, 0 when it has none), up to the field's width.
struct FixValues {
    // Signed degrees, north and east positive, as NmeaToDegrees reads the
    // position texts. A coordinate is absent when its text and its
    // hemisphere letter are both empty.
    std::optional<double> latitude;
    std::optional<double> longitude;
    std::optional<double> speedKnots;
    std::optional<double> course;    // degrees true
    std::optional<double> altitude;  // metres
    std::optional<double> hdop;
    std::optional<double> pdop;
    std::optional<double> vdop;
    std::optional<int> satellitesUsed;
    std::optional<int> satellitesInView;
    bool valid = false;  // status 'A'

    struct Satellite {
        std::optional<double> elevation;  // degrees
        std::optional<double> azimuth;    // degrees true
        std::optional<int> snr;           // dB-Hz
    };
    Satellite satellites[kSatelliteRows];
};

// Where a number must stand for an absent coordinate: -0, as NmeaToDegrees
// reads an empty text without a hemisphere letter.
inline constexpr double kAbsentDegrees = -0.0;

// Reads every number of the record once. The texts need not be terminated:
// each is read within its width, as after TerminateTexts.
FixValues ReadFix(const GpsState& state);

}  // namespace satwalk::gps
