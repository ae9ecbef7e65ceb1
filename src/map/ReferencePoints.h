// Reference points: their file beside the other reference files, its text
// both ways, the reference-point dialog's fields in degrees, minutes and
// seconds, and what placing a point and confirming the dialog do to the map
// state. Plain values and POSIX file calls; the dialog, the menu bars and
// the message boxes belong to the caller, which shows the messages below when
// a function reports a failure. Called on the user-interface thread.
#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>

#include "MapGeometry.h"

namespace satwalk::map {

// The file holds at most this many bytes that count; the rest is ignored.
inline constexpr std::size_t kReferenceTextLimit = 300;

// The map image's name without folder, up to (not including) its first '.',
// or the whole name when it has none.
std::string_view MapStem(std::string_view mapPath);

// storageRoot + "/My GPS/Reference Points/Ref Pt_" + stem + ".rpt". Two
// images that share a stem share a file.
std::string MakeReferenceFileName(std::string_view storageRoot, std::string_view mapPath);

// The five slots as the file's text: one "%d,%f,%f,%f,%f,\r\n" line per slot
// (valid, latitude, longitude, imageX, imageY), inactive slots included,
// always with '.' as the decimal point. Cut at 299 characters, the room the
// text has; only absurd coordinates come near it.
std::string FormatReferenceText(const ReferencePoints& slots);

// Fills slots from the file's bytes and returns how many became active. Only
// the fields present are written: the caller clears the slots first. Reads up
// to the length or the first NUL; CR and LF are skipped wherever they stand;
// fields are comma-separated, five per slot in file order; a first field
// other than exactly 1 leaves its slot inactive, an unparsable number reads
// 0 (so do "nan", "inf" and numbers past the double range), and tokens past
// the 25th are ignored.
int ParseReferenceText(std::span<const char> text, ReferencePoints& slots);

// Writes the slots to `path`, replacing the file as a whole (a new file is
// renamed over the old one, so a failed write never loses the previous
// file). A file that is there but cannot be read holds points the user has
// not seen: it is kept as `path` + ".bak" first (its name goes to `keptAs`),
// and when that fails nothing is written. False when the file cannot be
// written; the slots in memory are the caller's and stay as they are.
bool WriteReferenceFile(const std::string& path, const ReferencePoints& slots,
                        std::string* keptAs = nullptr);

enum class ReferenceRead {
    Read,        // the file was opened and its first 300 bytes parsed
    NotOpened,   // no such file: the slots are cleared
    Unreadable,  // there, but it cannot be opened (no access): the slots are cleared
    ReadFailed,  // opened, but not a readable regular file: parsed what came
};

// Clears the five slots and fills them from the file at `path`;
// `activeCount` is recounted. The map counts Read and ReadFailed alike as a
// file that was there; the command-line tool reports ReadFailed.
ReferenceRead ReadReferenceFile(const std::string& path, ReferencePoints& slots, int& activeCount);

// ----- degrees, minutes and seconds -----

struct Dms {
    double degrees = 0.0;
    double minutes = 0.0;
    double seconds = 0.0;
};

// |value| split into whole degrees, whole minutes and the seconds left over
// (not rounded).
Dms ToDms(double value);

// degrees + minutes/60 + seconds/3600 (minutes and seconds not range
// checked), negated when `negative` is set and the sum is above 0.
double FromDms(const Dms& dms, bool negative);

// A number as an edit of the dialog shows it ("%f": six decimals, '.').
std::string FormatDialogNumber(double value);

// The leading decimal number of an edit's text, as the dialog reads it: at
// most `maxChars` characters count, leading blanks are skipped, and text
// that starts with no number reads 0.
double ParseDialogNumber(std::string_view text, std::size_t maxChars);

// Characters the dialog reads from each edit; the longitude seconds edit
// keeps a shorter limit on purpose.
inline constexpr std::size_t kEditChars = 19;
inline constexpr std::size_t kLongitudeSecondsChars = 9;

// The reference-point dialog's fields, as texts the way its controls hold
// them.
struct ReferenceDialogFields {
    bool active = false;                   // the activate check box; enables the rest
    int latitudeHemisphere = 0;            // 0 north, 1 south
    int longitudeHemisphere = 0;           // 0 east, 1 west
    std::array<std::string, 3> latitude;   // degrees, minutes, seconds
    std::array<std::string, 3> longitude;  // degrees, minutes, seconds
};

// The slot's absolute coordinates into the six edits. The hemisphere lists
// are left alone, whatever the slot's sign: a southern or western point
// reopens under north/east, and confirming it unchanged stores it so.
void SlotToFields(const GeoPoint& slot, ReferenceDialogFields& fields);

// The fields into the slot's valid, latitude and longitude.
void FieldsToSlot(const ReferenceDialogFields& fields, GeoPoint& slot);

// The dialog as it opens on a slot: north and east selected, the edits
// filled from the slot, the check box ticked when the slot is active.
ReferenceDialogFields OpenReferenceDialog(const GeoPoint& slot);

// "Insert current GPS coordinate": ticks the check box, then writes the fix
// (hemispheres by sign) or, without a valid fix, north, east and zeros.
void InsertGpsCoordinate(ReferenceDialogFields& fields, bool haveFix, double latitude,
                         double longitude);

// The caption of the check box: string 40111 followed by " 1".." 5".
std::string ActivateCheckBoxText(std::string_view activateText, int slot);

// ----- residuals -----

// How far, in metres, the calibration puts each active slot's pixel from
// the place stated for it; NaN for an inactive slot or without a
// calibration. A mistyped point stands out by its residual.
std::array<double, kReferenceSlotCount> ReferenceResiduals(const MapCalibration& calibration,
                                                           const ReferencePoints& slots);

// The residuals as the reference-point dialog shows them under the fields:
// "残差（米） 1: 0.4  2: 0.4  3: 125.3"; "" when no slot has one.
std::string ResidualsText(const std::array<double, kReferenceSlotCount>& residuals);

// ----- placing a point and confirming it -----

// What the map holds while the user places and confirms reference points.
struct ReferenceEditing {
    ReferencePoints referencePoints{};
    int activeReferenceCount = 0;
    int editedSlot = 0;  // 0..4
    int placingReferencePoint = 0;
    GeoPoint placementCursor;  // the tapped point: screen and image pixel
    GeoPoint savedPlacementCursor;
};

// A set-reference-point command for `slot` (0..4): placement starts and the
// cursor is saved so that a refused point can restore it. Stopping the
// follow timer and the menu bar are the caller's.
void EnterPlacementMode(ReferenceEditing& editing, int slot);

// A tap in the map picture during placement.
void PlaceCursor(ReferenceEditing& editing, PointF screen, PointF image);

struct ReferenceConfirmation {
    bool saved = false;             // false: show kStrSaveReferenceFailed
    std::string keptAs;             // an unreadable file was kept under this name
    bool calibrated = false;        // true: reset the view, empty the live map
                                    // trail, reload shown tracks
    double scaleBarDistance = 0.0;  // when calibrated: kilometres of the bar
};

// The dialog's OK, in order: the fields and the tapped pixel into the edited
// slot, the file written, the calibration computed; when it calibrates, the
// extent computed and the cursor moved to the map's centre, else the cursor
// restored. `calibration` is replaced either way (its flag says which),
// `extent` only on success.
ReferenceConfirmation ConfirmReferencePoint(ReferenceEditing& editing,
                                            const ReferenceDialogFields& fields,
                                            const std::string& referenceFile, bool imageLoaded,
                                            ImageSize image, double displayedWidth,
                                            int scaleBarPixels, MapCalibration& calibration,
                                            MapExtent& extent);

}  // namespace satwalk::map
