// The options file: one fixed-size, little-endian record of every persistent
// setting, kept as a raw memory image so that existing files stay readable.
// No header, version or checksum; a shorter file fills only its own bytes.
//
// The "accept all satellite systems" setting has the first byte of the
// twelve that older files carry as zeros and write back unchanged (offset
// 48): 1 means on; any other value means off and is written back as read
// while the setting stays off. The record's size and every other field are
// as they always were.
#pragma once

#include <bit>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace satwalk::shell {

static_assert(std::endian::native == std::endian::little,
              "the options record is a little-endian memory image");

inline constexpr std::size_t kOptionsRecordSize = 3720;
inline constexpr std::size_t kPathChars = 260;  // wide characters per path slot
inline constexpr std::size_t kNameChars = 256;  // wide characters of the receiver name
inline constexpr int kRecentMapSlots = 5;

struct OptionsRecord {
    std::uint32_t showMap;                             // 0
    std::uint32_t showTrack;                           // 4
    std::uint32_t showReferencePoints;                 // 8
    std::uint32_t showPoi;                             // 12
    std::uint32_t bluetoothReceiver;                   // 16
    std::uint32_t baudIndex;                           // 20
    std::uint32_t comPort;                             // 24
    std::uint32_t trackLogOn;                          // 28
    std::uint32_t trackIntervalMs;                     // 32
    std::uint32_t speedAlarmLimit;                     // 36
    std::uint32_t speedAlarmOn;                        // 40
    std::uint32_t units;                               // 44
    std::uint8_t allTalkers;                           // 48, 1: accept all satellite systems
    std::uint8_t reserved[11];                         // 49, kept as read
    char16_t bluetoothName[kNameChars];                // 60
    std::uint32_t unused572;                           // 572, never set
    std::uint64_t bluetoothAddress;                    // 576
    std::uint32_t autoBluetooth;                       // 584
    std::uint32_t backlightAlwaysOn;                   // 588
    std::uint32_t recordNmea;                          // 592
    char16_t storageLocation[kPathChars];              // 596
    char16_t recentMaps[kRecentMapSlots][kPathChars];  // 1116
    std::uint32_t unused3716;                          // 3716, never set
};

static_assert(sizeof(OptionsRecord) == kOptionsRecordSize);
static_assert(offsetof(OptionsRecord, speedAlarmLimit) == 36);
static_assert(offsetof(OptionsRecord, allTalkers) == 48);
static_assert(offsetof(OptionsRecord, reserved) == 49);
static_assert(offsetof(OptionsRecord, bluetoothName) == 60);
static_assert(offsetof(OptionsRecord, unused572) == 572);
static_assert(offsetof(OptionsRecord, bluetoothAddress) == 576);
static_assert(offsetof(OptionsRecord, autoBluetooth) == 584);
static_assert(offsetof(OptionsRecord, recordNmea) == 592);
static_assert(offsetof(OptionsRecord, storageLocation) == 596);
static_assert(offsetof(OptionsRecord, recentMaps) == 1116);
static_assert(offsetof(OptionsRecord, unused3716) == 3716);

// Fills the record with the record defaults; the two unused words are left
// as they are.
void SetOptionDefaults(OptionsRecord& record);

// Copies the first bytes of `bytes` (at most the record's size) over the
// record; the rest keeps what it held.
void ReadOptionsBytes(std::span<const std::uint8_t> bytes, OptionsRecord& record);

// Opens and reads the file into the record. Returns 1 when it was read, 0
// when it does not exist or could not be opened in `attempts` tries spaced
// `retryDelay` apart.
int ReadOptionsFile(const std::string& path, OptionsRecord& record, int attempts,
                    std::chrono::milliseconds retryDelay = std::chrono::milliseconds(200));

// Writes the whole record to a new file in the same folder, flushes it to
// the disk and renames it over the old one, so that any failure leaves the
// old file (or no file) as it was. Bytes of a longer old file past the
// record, its permissions and a symbolic link at `path` are kept. Only a
// regular file is replaced. Returns 1 when written, else 0.
int WriteOptionsFile(const std::string& path, const OptionsRecord& record, int attempts = 5,
                     std::chrono::milliseconds retryDelay = std::chrono::milliseconds(200));

// A wide slot of the record as UTF-8, up to its first NUL or its end.
std::string WideSlotToUtf8(const char16_t* slot, std::size_t chars);
// Stores UTF-8 text into a wide slot, cut so that a NUL always fits.
void Utf8ToWideSlot(const std::string& text, char16_t* slot, std::size_t chars);

}  // namespace satwalk::shell
