#include "StateJson.h"

#include "GpsJson.h"
#include "Json.h"

namespace satwalk::shell {

std::string BuildStateJson(const Shell& shell, const StateExtras& extras) {
    const ProgramSettings& s = shell.settings();
    const LinkControl& link = shell.link();
    std::string out = "{";
    common::JsonMembers m(out);
    m.Int("currentScreen", shell.currentScreen);
    m.Bool("linkRunning", link.Running());
    m.Bool("fixValid", link.FixValid());
    m.Int("units", s.units);
    m.Bool("speedAlarmOn", s.speedAlarmOn != 0);
    m.Int("speedAlarmLimit", s.speedAlarmLimit);
    m.Bool("alarmPlaying", shell.alarm().playing());
    m.Bool("alarmShowing", shell.SpeedAlarmShowing());
    m.Bool("alarmFlashPhase", shell.alarmFlashPhase);
    m.Bool("alarmSoundFailed", shell.alarm().soundFailed());
    m.Text("status", shell.status);
    m.Int("trackIntervalMs", s.trackIntervalMs);
    m.Bool("trackLogOn", s.trackLogOn != 0);
    m.Bool("recordNmea", s.recordNmea != 0);
    m.Bool("showMap", s.showMap != 0);
    m.Bool("showTrack", s.showTrack != 0);
    m.Bool("showReferencePoints", s.showReferencePoints != 0);
    m.Bool("showPoi", s.showPoi != 0);
    m.Bool("backlightAlwaysOn", s.backlightAlwaysOn != 0);
    m.Bool("bluetoothReceiver", s.bluetoothReceiver != 0);
    m.Int("comPort", s.comPort);
    m.Bool("fixTimeKnown", shell.fixTimeKnown);
    m.Text("storageRoot", extras.storageRoot);
    m.Text("optionsPath", extras.optionsPath);
    m.Int("raiseRequests", extras.raiseRequests);
    shell.features().WriteStateSections(m);
    m.Name("gps") += '{';
    gps::AppendGpsJsonMembers(out, shell.fix(), shell.fixValues(), shell.fixTimeKnown);
    out += '}';
    m.Name("messages") += '[';
    for (std::size_t i = 0; i < extras.messages.size(); ++i) {
        if (i > 0)
            out += ',';
        out += "{\"text\":";
        common::AppendJsonString(out, extras.messages[i].text);
        out += ",\"icon\":";
        common::AppendJsonString(out, MessageIconName(extras.messages[i].icon));
        out += '}';
    }
    out += "]}";
    return out;
}

}  // namespace satwalk::shell
