#include "StateJson.h"

#include "GpsJson.h"

namespace satwalk::shell {

namespace {

void Member(std::string& out, const char* name) {
    if (out.size() > 1)
        out += ',';
    gps::AppendJsonString(out, name);
    out += ':';
}

void Bool(std::string& out, const char* name, bool value) {
    Member(out, name);
    out += value ? "true" : "false";
}

void Int(std::string& out, const char* name, long long value) {
    Member(out, name);
    out += std::to_string(value);
}

void Text(std::string& out, const char* name, const std::string& value) {
    Member(out, name);
    gps::AppendJsonString(out, value);
}

}  // namespace

std::string BuildStateJson(const Shell& shell, const StateExtras& extras) {
    const ProgramSettings& s = shell.settings();
    const LinkControl& link = shell.link();
    std::string out = "{";
    Int(out, "currentScreen", shell.currentScreen);
    Bool(out, "satelliteDialogOpen", shell.satelliteDialogOpen);
    Bool(out, "linkRunning", link.Running());
    Bool(out, "fixValid", link.FixValid());
    Int(out, "units", s.units);
    Bool(out, "speedAlarmOn", s.speedAlarmOn != 0);
    Int(out, "speedAlarmLimit", s.speedAlarmLimit);
    Bool(out, "alarmPlaying", shell.alarm().playing());
    Bool(out, "alarmShowing", shell.SpeedAlarmShowing());
    Bool(out, "alarmFlashPhase", shell.alarmFlashPhase);
    Bool(out, "alarmSoundFailed", shell.alarm().soundFailed());
    Text(out, "status", shell.status);
    Int(out, "trackIntervalMs", s.trackIntervalMs);
    Bool(out, "trackLogOn", s.trackLogOn != 0);
    Bool(out, "recordNmea", s.recordNmea != 0);
    Bool(out, "showMap", s.showMap != 0);
    Bool(out, "showTrack", s.showTrack != 0);
    Bool(out, "showReferencePoints", s.showReferencePoints != 0);
    Bool(out, "showPoi", s.showPoi != 0);
    Bool(out, "backlightAlwaysOn", s.backlightAlwaysOn != 0);
    Bool(out, "bluetoothReceiver", s.bluetoothReceiver != 0);
    Int(out, "comPort", s.comPort);
    Bool(out, "fixTimeKnown", shell.fixTimeKnown);
    Text(out, "storageRoot", extras.storageRoot);
    Text(out, "optionsPath", extras.optionsPath);
    Int(out, "raiseRequests", extras.raiseRequests);
    Member(out, "satelliteDialogRows");
    out += '[';
    for (std::size_t i = 0; i < extras.satelliteDialogRows.size(); ++i) {
        if (i > 0)
            out += ',';
        out += '[';
        for (std::size_t c = 0; c < 4; ++c) {
            if (c > 0)
                out += ',';
            gps::AppendJsonString(out, extras.satelliteDialogRows[i][c]);
        }
        out += ']';
    }
    out += ']';
    Member(out, "gps");
    out += '{';
    gps::AppendGpsJsonMembers(out, link.Gps(), shell.fixTimeKnown);
    out += '}';
    Member(out, "messages");
    out += '[';
    for (std::size_t i = 0; i < extras.messages.size(); ++i) {
        if (i > 0)
            out += ',';
        out += "{\"text\":";
        gps::AppendJsonString(out, extras.messages[i].text);
        out += ",\"icon\":";
        gps::AppendJsonString(out, MessageIconName(extras.messages[i].icon));
        out += '}';
    }
    out += "]}";
    return out;
}

}  // namespace satwalk::shell
