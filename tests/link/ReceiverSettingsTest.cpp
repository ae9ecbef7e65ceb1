// The receiver settings dialog's rules and the search's result handling,
// with the radio and the inquiry faked.
#include <gtest/gtest.h>

#include <tuple>

#include "BluetoothSearch.h"
#include "ReceiverSettingsModel.h"

namespace satwalk::link {
namespace {

std::string Repeat(const std::string& piece, int times) {
    std::string s;
    for (int i = 0; i < times; ++i) s += piece;
    return s;
}

std::vector<InquiryAnswer> Named(int count) {
    std::vector<InquiryAnswer> a;
    char address[18];
    for (int i = 0; i < count; ++i) {
        std::snprintf(address, sizeof address, "00:11:22:33:44:%02X", unsigned(i) & 0xFFu);
        a.push_back({true, "GPS " + std::to_string(i), address});
    }
    return a;
}

TEST(BluetoothInquiryTest, AnswersBecomeRowsByTheInquiryRules) {
    std::vector<InquiryAnswer> nameless = Named(3);
    nameless[1].hasName = false;
    std::vector<InquiryAnswer> badAddress = Named(3);
    badAddress[1].address = "00:11:22:33:44";
    std::vector<InquiryAnswer> repeated = Named(2);
    repeated.push_back(repeated[0]);
    const std::tuple<const char*, std::vector<InquiryAnswer>, int, const char*, std::size_t>
        cases[] = {{"none", {}, kInquiryOk, "", 0},
                   {"sixteen reach the maximum", Named(16), kInquiryFailed, "", 16},
                   {"seventeen stop at the maximum", Named(17), kInquiryFailed, "", 16},
                   {"a nameless answer ends with nothing", nameless, kInquiryOk, "", 0},
                   {"an answer without an address", badAddress, kInquiryFailed, "0x08200a04", 0},
                   {"a repeated address counts once", repeated, kInquiryOk, "", 2}};
    for (const auto& [what, answers, result, code, rows] : cases) {
        const InquiryResult r = FinishInquiry(answers, kMaxDevices);
        EXPECT_EQ(std::tuple(r.result, r.errorCode, r.devices.size()),
                  std::tuple(result, std::string(code), rows))
            << what;
    }
}

TEST(BluetoothInquiryTest, NamesAreCleanedAndCutToTheRow) {
    const std::string cjk = "接";                  // 3 bytes, 1 unit
    const std::string emoji = "\xF0\x9F\x9B\xB0";  // 4 bytes, 2 units
    const std::pair<std::string, std::string> cases[] = {
        {"Holux GR-231", "Holux GR-231"},
        {"bad\xFF\xFEname", "bad\xEF\xBF\xBD\xEF\xBF\xBDname"},
        {"cut\xE6\x8E", "cut\xEF\xBF\xBD\xEF\xBF\xBD"},
        {"overlong\xC0\xAF", "overlong\xEF\xBF\xBD\xEF\xBF\xBD"},
        {std::string(300, 'n'), std::string(255, 'n')},
        {Repeat(cjk, 300), Repeat(cjk, 255)},  // counted in UTF-16 units, not bytes
        {std::string(254, 'n') + emoji, std::string(254, 'n')},
        {std::string("a\0b", 3), "a"}};
    for (const auto& [raw, clean] : cases)
        EXPECT_EQ(CleanDeviceName(raw), clean) << raw.substr(0, 20);
}

// ---- the dialog ----

const BluetoothDevice kChosen{"Chosen GPS", 0x00AABBCCDDEE};
const BluetoothDevice kOther{"Other GPS", 0x001122334455};

std::vector<PortSlot> Slots() {
    std::vector<PortSlot> s(10);
    s[5].device = "/dev/ttyACM0";
    s[9] = {true, ""};
    s[8] = {true, "/dev/ttyACM3"};
    return s;
}

ReceiverSettings Settings(bool bluetooth) {
    ReceiverSettings s;
    s.bluetoothReceiver = bluetooth;
    s.comPort = 5;
    s.baudIndex = 1;
    s.chosen = kChosen;
    s.table = {kOther, kChosen};
    return s;
}

TEST(ReceiverSettingsDialogTest, OkAndCancel) {
    const std::tuple<const char*, bool, std::vector<BluetoothDevice>, int, BluetoothDevice,
                     std::string>
        cases[] = {
            {"bluetooth, a row chosen", true, {kOther, kChosen}, 0, kOther, ""},
            {"bluetooth, no devices clears the choice", true, {}, -1, BluetoothDevice{}, ""},
            {"manual keeps the device, names the port", false, {kOther}, 0, kChosen, "COM7:"}};
    for (const auto& [what, bluetooth, table, deviceRow, chosen, portName] : cases) {
        ReceiverSettings s = Settings(bluetooth);
        s.table = table;
        ReceiverSettingsDialog d = OpenReceiverSettings(s, Slots());
        SelectPort(d, 7);
        SelectPort(d, 10);  // "自动" is not a port: 7 stays
        d.bauds.selection = 4;
        if (deviceRow >= 0)
            d.devices.selection = deviceRow;
        AcceptReceiverSettings(d, s);
        EXPECT_TRUE(d.ended && d.endResult == 1) << what;
        EXPECT_EQ(s.chosen, chosen) << what;
        EXPECT_EQ(std::tuple(s.comPort, s.baudIndex, s.linkBaud), std::tuple(7u, 4u, 38400u))
            << what;
        EXPECT_EQ(s.linkPortName, portName) << what;
    }

    ReceiverSettings s = Settings(true);
    ReceiverSettingsDialog d = OpenReceiverSettings(s, Slots());
    SelectPort(d, 2);
    CancelReceiverSettings(d, s);
    EXPECT_EQ(s.table, std::vector<BluetoothDevice>{kChosen});
    EXPECT_EQ(std::tuple(s.comPort, d.endResult), std::tuple(5u, 0));
}

TEST(ReceiverSettingsDialogTest, SearchButtonBecomesRetryAndFailsToStartWithItsCode) {
    ReceiverSettings s = Settings(true);
    ReceiverSettingsDialog d = OpenReceiverSettings(s, Slots());
    std::vector<DialogMessage> messages;
    ASSERT_TRUE(BeginSearch(d, true, messages));
    EXPECT_FALSE(d.search.enabled);
    EXPECT_FALSE(BeginSearch(d, true, messages)) << "a second search while one runs";
    bool radio = false;
    SearchStarted(d, s);
    ApplySearchOutcome(d, s, SearchOutcome{}, radio);
    EXPECT_TRUE(d.search.enabled);

    EXPECT_FALSE(BeginSearch(d, false, messages));
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].text,
              "Search Bluetooth GPS Receiver failed:0x08200a26\n\nPlease try again!");
    EXPECT_TRUE(d.ended);

    ReceiverSettingsDialog first = OpenReceiverSettings(s, Slots());
    messages.clear();
    BeginSearch(first, false, messages);
    EXPECT_NE(messages.at(0).text.find("0x08200a25"), std::string::npos);
}

TEST(ReceiverSettingsDialogTest, SearchOutcomesFillTheTableOrKeepIt) {
    const std::vector<BluetoothDevice> found = {{"A", 1}, {"B", 2}};
    std::vector<BluetoothDevice> sixteen;
    for (int i = 0; i < 16; ++i) sixteen.push_back({"D" + std::to_string(i), 100u + i});
    std::vector<BluetoothDevice> sixteenKept = sixteen;
    sixteenKept[0] = kOther;  // the first row as it was

    const std::vector<std::string> old = {"Other GPS", "Chosen GPS"};
    const SearchOutcome off{false, false, {kInquiryRadioOff, "", {}}};
    const SearchOutcome noSwitch{true, false, {kInquiryRadioOff, "", {}}};
    const SearchOutcome notBegun{false, false, {kInquiryFailed, "0x08200a01", {}}};
    const SearchOutcome full{false, false, {kInquiryFailed, "", sixteen}};
    const std::string failed = "搜索蓝牙GPS接收机失败: ", again = "\n\n请重新再次搜索！";
    const std::string radioOff = "请先开启蓝牙！";
    const std::string noReceiver = "没有找到蓝牙GPS接收机\n\n请确认蓝牙GPS接收机已开启并重新搜索！";
    // Name, outcome, the messages shown, the table and the combo after it.
    using Texts = std::vector<std::string>;
    const std::tuple<const char*, SearchOutcome, Texts, std::vector<BluetoothDevice>, Texts>
        cases[] = {{"found two", {false, false, {kInquiryOk, "", found}}, {}, found, {"A", "B"}},
                   {"found none", {false, false, {kInquiryOk, "", {}}}, {noReceiver}, {}, {}},
                   {"radio off", off, {radioOff}, {}, old},
                   {"no switch", noSwitch, {"自动开启/关闭蓝牙失败！", radioOff}, {}, old},
                   {"failed to begin", notBegun, {failed + "0x08200a01" + again}, {}, old},
                   {"the maximum reached", full, {failed + again}, sixteenKept, old}};
    for (const auto& [what, outcome, texts, table, combo] : cases) {
        ReceiverSettings s = Settings(true);
        ReceiverSettingsDialog d = OpenReceiverSettings(s, Slots());
        std::vector<DialogMessage> none;
        ASSERT_TRUE(BeginSearch(d, true, none));
        SearchStarted(d, s);
        EXPECT_FALSE(d.autoSearchEnabled);
        EXPECT_EQ(s.table[0], BluetoothDevice{}) << "row 0 is cleared while searching";
        bool radio = false;
        const std::vector<DialogMessage> shown = ApplySearchOutcome(d, s, outcome, radio);
        std::vector<std::string> shownTexts;
        for (const DialogMessage& m : shown) shownTexts.push_back(m.text);
        EXPECT_EQ(shownTexts, texts) << what;
        EXPECT_EQ(s.table, table) << what;
        EXPECT_EQ(d.devices.entries, combo) << what;
        EXPECT_TRUE(d.autoSearchEnabled && d.search.enabled && !d.waitCursor) << what;
    }
}

TEST(ReceiverSettingsDialogTest, ASearchThatOutlivesItsDialogChangesNothing) {
    ReceiverSettings s = Settings(true);
    ReceiverSettingsDialog d = OpenReceiverSettings(s, Slots());
    std::vector<DialogMessage> none;
    BeginSearch(d, true, none);
    SearchStarted(d, s);
    CancelReceiverSettings(d, s);
    bool radio = false;
    SearchOutcome late{false, true, {kInquiryOk, "", {{"Late", 9}}}};
    EXPECT_TRUE(ApplySearchOutcome(d, s, late, radio).empty());
    EXPECT_EQ(s.table, std::vector<BluetoothDevice>{kChosen});
    EXPECT_TRUE(radio) << "the radio was still switched on and must go off at exit";
}

}  // namespace
}  // namespace satwalk::link
