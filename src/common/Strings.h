// The string table: interface texts by their resource ids, in UTF-8.
#pragma once

#include <functional>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

namespace satwalk::common {

// The text of string `id` in the language of this run (UTF-8), or an empty
// string when the table has no such id. The pointer stays valid for the run.
const char* LoadString(int id);

// One entry of the table: its id and its Simplified Chinese text, the source
// every translation is made from.
struct StringEntry {
    int id;
    const char* text;
};
// Every entry, sorted by id: for the translation tooling and its tests.
std::span<const StringEntry> StringTable();

// Gives the table another language for the rest of the run: `translate` is
// asked once for every entry and returns its text in that language, or an
// empty string to keep the table's own. Start-up calls it once, before any
// other thread reads a text, so LoadString stays a plain lookup without a
// lock; an empty function gives the table back its own texts.
using TextTranslator = std::function<std::string(const StringEntry& entry)>;
void InstallTranslation(const TextTranslator& translate);

// Fills the one "%s" of a table string (or of any format) with `argument`.
std::string FormatString(const char* format, const std::string& argument);
// Fills the "%s" of a format in order; text of an argument is never read as
// a format itself.
std::string FormatStrings(const char* format, std::initializer_list<std::string_view> arguments);

inline constexpr int kStrCancel = 40004;
inline constexpr int kStrOk = 40005;
inline constexpr int kStrAltitude = 40081;
inline constexpr int kStrSpeed = 40082;
inline constexpr int kStrCourse = 40083;
inline constexpr int kStrSatellites = 40084;
inline constexpr int kStrAlarm = 40088;
inline constexpr int kStrOff = 40089;
inline constexpr int kStrSetTwoReferencePoints = 40090;
inline constexpr int kStrOutsideMap = 40091;
inline constexpr int kStrPlacementCancel = 40071;
inline constexpr int kStrPlacementOk = 40073;
inline constexpr int kStrUp = 40200;

// Said once when the receiver speaks only other satellite systems' talkers
// while the all-talkers setting is off: names the setting.
inline constexpr int kStrOtherTalkersHint = 41704;
const char* OtherTalkersHint();

inline constexpr int kStrCaption = 40208;
inline constexpr int kStrConfigureReceiverFirst = 40092;
inline constexpr int kStrBluetoothPortFailed = 40093;
inline constexpr int kStrCannotConnect = 40094;
inline constexpr int kStrStartLinkFailed = 40095;
inline constexpr int kStrConnectionLost = 40096;
inline constexpr int kStrDataTimeout = 40097;
inline constexpr int kStrConfirmExit = 40098;
inline constexpr int kStrLogBeingWritten = 40105;
inline constexpr int kStrOpenFile = 40118;
inline constexpr int kStrRadioSwitchFailed = 40192;
inline constexpr int kStrStopGps = 40108;
inline constexpr int kStrStartGps = 40109;
inline constexpr int kStrMenu = 40077;
inline constexpr int kStrView = 40078;

// Track files and their statistics.
inline constexpr int kStrTrackInfo = 40301;      // "轨迹信息", the dialog and its menu entry
inline constexpr int kStrNotATrackFile = 40302;  // "%s" takes the file's name
inline constexpr int kStrTrackFileCut = 40303;   // "%s" takes the file's name
inline constexpr int kStrSaveGpxTrack = 40304;   // the option
inline constexpr int kStrStatDistance = 40310;
inline constexpr int kStrStatDuration = 40311;
inline constexpr int kStrStatMovingTime = 40312;
inline constexpr int kStrStatAverageSpeed = 40313;
inline constexpr int kStrStatMaxSpeed = 40314;
inline constexpr int kStrStatGain = 40315;
inline constexpr int kStrStatLoss = 40316;
inline constexpr int kStrStatMinElevation = 40317;
inline constexpr int kStrStatMaxElevation = 40318;
inline constexpr int kStrStatPoints = 40319;
inline constexpr int kStrElevationProfile = 40320;
inline constexpr int kStrSpeedProfile = 40321;
inline constexpr int kStrNoTrackData = 40322;
inline constexpr int kStrLiveTrack = 40323;

// The program's own texts: menu entries, and messages the handheld wrote
// as literals. Kept with the rest so that every text has one place.
inline constexpr int kStrMenuGpsInfo = 41001;
inline constexpr int kStrMenuSatellites = 41002;
inline constexpr int kStrMenuSkyPlot = 41003;
inline constexpr int kStrMenuSatelliteData = 41004;
inline constexpr int kStrMenuMap = 41005;
inline constexpr int kStrMenuCompass = 41006;
inline constexpr int kStrMenuSpeedometer = 41007;
inline constexpr int kStrMenuWorldMap = 41008;
inline constexpr int kStrMenuShowMap = 41009;
inline constexpr int kStrMenuShowReferencePoints = 41010;
inline constexpr int kStrMenuShowTrack = 41011;
inline constexpr int kStrMenuShowPoi = 41012;
inline constexpr int kStrMenuGpsSettings = 41013;
inline constexpr int kStrMenuPoi = 41014;
inline constexpr int kStrMenuTrack = 41015;
inline constexpr int kStrMenuSpeedAlarm = 41016;
inline constexpr int kStrMenuUnits = 41017;
inline constexpr int kStrMenuMetric = 41018;
inline constexpr int kStrMenuImperial = 41019;
inline constexpr int kStrMenuNautical = 41020;
inline constexpr int kStrMenuOptions = 41021;
inline constexpr int kStrMenuHelp = 41022;
inline constexpr int kStrMenuUserManual = 41023;
inline constexpr int kStrMenuAbout = 41024;
inline constexpr int kStrMenuExit = 41025;
inline constexpr int kStrMenuLoadMap = 41026;
inline constexpr int kStrMenuRecentMaps = 41027;
inline constexpr int kStrMenuEmpty = 41028;
inline constexpr int kStrMenuSetReferencePoint = 41029;  // "%s": 1..5
inline constexpr int kStrMenuImportPoi = 41030;
inline constexpr int kStrMenuDeleteAllPoi = 41031;
inline constexpr int kStrMenuTrackInterval = 41032;  // "%s": 10, 20, 30, 60
inline constexpr int kStrMenuSaveTrack = 41033;
inline constexpr int kStrMenuViewTrack = 41034;
inline constexpr int kStrMenuCloseTrack = 41035;
inline constexpr int kStrMenuLoadedMapKey = 41036;  // "%s": the map's file name
inline constexpr int kStrMenuCloseMap = 41037;
inline constexpr int kStrAboutText = 41101;         // "%s": the version
inline constexpr int kStrClockTimerFailed = 41103;  // "%s": the error code
inline constexpr int kStrAlarmSoundFailed = 41104;
// A file past its reader's budget: the file's name and how much was shown.
inline constexpr int kStrTrackLogTooLarge = 41601;
inline constexpr int kStrPoiFileTooLarge = 41602;
// A recording that could not be written, with the reason below, in the
// window's title and the state's status until a write succeeds again.
inline constexpr int kStrTrackRecordingFailed = 41603;
inline constexpr int kStrNmeaRecordingFailed = 41604;
inline constexpr int kStrReasonDiskFull = 41605;
inline constexpr int kStrReasonFolderMissing = 41606;
inline constexpr int kStrReasonNotPermitted = 41607;
inline constexpr int kStrReasonWriteError = 41608;
// The settings could not be saved at exit: the file and the reason.
inline constexpr int kStrSaveOptionsFailed = 41609;
// A reference-point file that is there but cannot be read: its name.
inline constexpr int kStrReferenceFileUnreadable = 41610;
// The unreadable file was kept under the second name before a new one was
// written.
inline constexpr int kStrReferenceFileKept = 41611;

// The reason text (one of the four above) for an errno of a failed write.
const char* WriteFailureReason(int error);
// The NMEA relay: its option, said once when it cannot listen (%s: the
// address and the system's reason); the receiver settings' entry of a gpsd
// found on this machine.
inline constexpr int kStrRelayOption = 41701;
inline constexpr int kStrRelayCannotListen = 41702;
inline constexpr int kStrLocalGpsd = 41703;
// "界面缩放" in the options and its first choice, "自动" (the others are
// percentages).
inline constexpr int kStrUiScaleOption = 42001;
inline constexpr int kStrUiScaleAuto = 42002;

// Dialog texts.
inline constexpr int kStrSearch = 40060;  // the receiver settings' left soft key
inline constexpr int kStrSearchCancel = 40061;
inline constexpr int kStrSearchFailed = 40101;  // "%s": the code
inline constexpr int kStrRadioOff = 40102;
inline constexpr int kStrNoReceiver = 40103;
inline constexpr int kStrRetry = 40112;
inline constexpr int kStrPortAvailable = 40113;
inline constexpr int kStrPortAutomatic = 40114;
inline constexpr int kStrSystemSettings = 40115;
inline constexpr int kStrGpsSettings = 43001;  // the receiver settings' caption
inline constexpr int kStrDeviceLabel = 43002;
inline constexpr int kStrPortLabel = 43003;
inline constexpr int kStrBaudLabel = 43004;
inline constexpr int kStrAutoSearch = 43005;
inline constexpr int kStrSearchStartFailed = 43006;  // "%s": the code
inline constexpr int kStrGeneralHeading = 43011;
inline constexpr int kStrAutoBluetooth = 43012;
inline constexpr int kStrKeepAwake = 43013;
inline constexpr int kStrRecordNmea = 43014;
inline constexpr int kStrStorageLabel = 43015;
inline constexpr int kStrAllTalkers = 43016;
inline constexpr int kStrLanguageLabel = 43017;
inline constexpr int kStrLanguageAutomatic = 43018;
inline constexpr int kStrLanguageNextStart = 43019;
inline constexpr int kStrSatelliteData = 43030;  // the table's title
inline constexpr int kStrElevationHeader = 43031;
inline constexpr int kStrAzimuthHeader = 43032;
inline constexpr int kStrLatitude = 43040;
inline constexpr int kStrLongitude = 43041;
inline constexpr int kStrNorthSouth = 43042;
inline constexpr int kStrEastWest = 43043;
inline constexpr int kStrDegreesLabel = 43044;
inline constexpr int kStrMinutesLabel = 43045;
inline constexpr int kStrSecondsLabel = 43046;
inline constexpr int kStrFilterMaps = 43050;
inline constexpr int kStrFilterTracks = 43051;
inline constexpr int kStrFilterPoi = 43052;
inline constexpr int kStrReadingTrack = 43060;
// The press-and-hold menu on the map: "%s" is 1..5.
inline constexpr int kStrHoldSetReferencePoint = 43070;
// The reference points' residuals in the reference-point dialog, before
// the numbers.
inline constexpr int kStrResiduals = 43090;
// The user manual: what it says when it cannot be shown ("%s": the file,
// or the folder it was looked for in), its table of contents and soft key.
inline constexpr int kStrManualMissing = 43300;
inline constexpr int kStrManualUnreadable = 43301;
inline constexpr int kStrManualTooLarge = 43302;
inline constexpr int kStrManualContents = 43303;
inline constexpr int kStrManualClose = 43304;
// Building a huge map's tile cache: its progress ("%s": the file), the
// cancel button, the cancelling, and a disk too full for it.
inline constexpr int kStrBuildingMapCache = 43310;
inline constexpr int kStrBuildCancel = 43311;
inline constexpr int kStrBuildCancelling = 43312;
inline constexpr int kStrNoDiskSpaceForMap = 43320;
// A georeference beside the image that cannot be used (%s: the file and
// why, in the words of the file's format).
inline constexpr int kStrGeoreferenceRefused = 43321;
// The fix's kind on the GPS information screen.
inline constexpr int kStrFix3d = 43080;
inline constexpr int kStrFix2d = 43081;
inline constexpr int kStrNoFix = 43082;
// Failures the handheld reported in English; they stay English in the
// Chinese interface.
inline constexpr int kStrOpenPoiFileFailed = 43101;
inline constexpr int kStrLoadPoiIconsFailed = 43102;
inline constexpr int kStrReadImageFailed = 43103;
inline constexpr int kStrSaveReferenceFailed = 43104;
inline constexpr int kStrTrackTimerFailed = 43105;         // "%s": the code
inline constexpr int kStrTrackTimerFailedOnStart = 43106;  // "%s": the link's code
inline constexpr int kStrFollowTimerFailed = 43107;
inline constexpr int kStrOpenTrackLogFailed = 43108;
inline constexpr int kStrInitializationFailed = 43109;  // "%s": the code
inline constexpr int kStrCriticalError = 43110;         // "%s": the code
// The command line's help.
inline constexpr int kStrUsage = 43201;

// The degree sign (character 176) as UTF-8, drawn after angles.
inline constexpr const char* kDegreeSign = "\xC2\xB0";

}  // namespace satwalk::common
