#include "Strings.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <vector>

namespace satwalk::common {

namespace {

using Entry = StringEntry;

// Sorted by id. A new text is one line here (and its id in Strings.h); the
// translations in resources/translations follow by scripts/translations.
constexpr Entry kStrings[] = {
    {40004, "取消"},
    {40005, "确定"},
    {40060, "搜索"},
    {40061, "取消"},
    {40071, "取消"},
    {40073, "确定"},
    {40077, "菜单"},
    {40078, "视图"},
    {40081, "海拔"},
    {40082, "速度"},
    {40083, "方位角"},
    {40084, "卫星数"},
    {40088, "警报"},
    {40089, "关闭"},
    {40090, "请设置至少2个参照点！"},
    {40091, "当前位置已超出地图范围！"},
    {40092, "请首先在GPS设置中配置GPS接收机。"},
    {40093, "自动配置GPS接收机失败 (%s)\n\n请检查是否存在空闲可用COM端口。"},
    {40094, "无法连接GPS接收机 (%s)\n\n请检查GPS接收机连接设置后重试。"},
    {40095, "连接GPS接收机失败: %s\n"},
    {40096, "与GPS接收机连接断开！\n\n请检查GPS接收机状态并确定其在有效的范围内。"},
    {40097,
     "接收GPS数据超时！\n\nGPS接收机也许出现故障需要重新启动。\n\n"
     "注意: 如果程序停止响应，请关闭GPS接收机，程序将恢复正常。"},
    {40098, "您确定要退出程序？"},
    {40101, "搜索蓝牙GPS接收机失败: %s\n\n请重新再次搜索！"},
    {40102, "请先开启蓝牙！"},
    {40103, "没有找到蓝牙GPS接收机\n\n请确认蓝牙GPS接收机已开启并重新搜索！"},
    {40104, "导入 %s 失败！没有足够内存空间！"},
    {40105, "无法打开 %s，记录已被打开！"},
    {40108, "停止 GPS\t[0]"},
    {40109, "启动 GPS\t[0]"},
    {40111, "激活参照点"},
    {40112, "重试"},
    {40113, "可用"},
    {40114, "自动"},
    {40115, "系统设置"},
    {40118, "打开文件"},
    {40119, "北纬"},
    {40120, "南纬"},
    {40121, "东经"},
    {40122, "西经"},
    {40192, "自动开启/关闭蓝牙失败！"},
    {40199, "插入当前GPS座标"},
    {40200, "向上"},
    {40208, "Satwalk"},
    {40301, "轨迹信息"},
    {40302, "%s 不是可以读取的轨迹文件 (轨迹记录、GPX 或 NMEA)。"},
    {40303, "%s 不完整或已损坏，只显示了其中完整的部分。"},
    {40304, "同时保存 GPX 轨迹"},
    {40310, "距离"},
    {40311, "时长"},
    {40312, "移动时间"},
    {40313, "平均速度"},
    {40314, "最高速度"},
    {40315, "累计爬升"},
    {40316, "累计下降"},
    {40317, "最低海拔"},
    {40318, "最高海拔"},
    {40319, "点数"},
    {40320, "海拔剖面"},
    {40321, "速度剖面"},
    {40322, "没有数据"},
    {40323, "当前记录"},
    {41001, "GPS 信息\t[1]"},
    {41002, "卫星"},
    {41003, "卫星图\t[2]"},
    {41004, "卫星数据\t[3]"},
    {41005, "地图"},
    {41006, "指南针\t[6]"},
    {41007, "时速\t[7]"},
    {41008, "世界地图\t[4]"},
    {41009, "显示载入地图"},
    {41010, "显示参照点"},
    {41011, "显示轨迹"},
    {41012, "显示 POI"},
    {41013, "GPS 设置\t[*]"},
    {41014, "POI"},
    {41015, "轨迹"},
    {41016, "时速警报"},
    {41017, "单位"},
    {41018, "米制"},
    {41019, "英制"},
    {41020, "海里"},
    {41021, "选项"},
    {41022, "帮助"},
    {41023, "用户手册"},
    {41024, "关于"},
    {41025, "退出"},
    {41026, "加载地图"},
    {41027, "最近载入地图"},
    {41028, "空"},
    {41029, "设置参照点 %s"},
    {41030, "导入 POI"},
    {41031, "全部删除"},
    {41032, "间隔 %ss"},
    {41033, "保存轨迹记录"},
    {41034, "查看轨迹记录"},
    {41035, "关闭轨迹记录"},
    {41036, "%s\t[5]"},
    {41037, "关闭地图"},
    {41101, "Satwalk %s\nGPS 显示与记录 (GPS display and logging)"},
    {41103, "Create Time Timer failed: %s\n\nPress OK to continue..."},
    {41104, "警报声音无法播放，警报在屏幕上显示"},
    {41601, "轨迹记录 %s 太大：只显示了前 %s 个点。"},
    {41602, "POI 文件 %s 太大：只导入了前 %s 个 POI。"},
    {41603, "轨迹记录失败：%s"},
    {41604, "NMEA 记录失败：%s"},
    {41605, "磁盘已满"},
    {41606, "文件夹不存在"},
    {41607, "没有写入权限"},
    {41608, "写入错误"},
    {41609, "无法保存设置到 %s：%s\n\n本次更改的设置将会丢失。"},
    {41610, "无法读取参照点文件 %s，地图未校准。\n\n原文件不会被覆盖。"},
    {41611, "无法读取的参照点文件已保留为 %s。"},
    // Texts of the additions, numbered after the handheld's own.
    {41701, "NMEA 转发"},
    {41702, "NMEA 转发无法在 %s 上监听，GPS接收机照常运行。"},
    {41703, "本机 gpsd"},
    {41704,
     "GPS接收机发送的是其他卫星系统的数据 (GN、GL、GA、GB、BD)，没有GPS (GP) 定位数据，"
     "因此无法定位。\n\n请在“选项”中开启“接收所有卫星系统” (或使用启动参数 --all-talkers)。"},
    {42001, "界面缩放"},
    {42002, "自动"},
    // Texts of the dialogs.
    {43001, "GPS 设置"},
    {43002, "设备:"},
    {43003, "COM端口:"},
    {43004, "波特率:"},
    {43005, "自动搜索蓝牙GPS设备"},
    {43006, "Search Bluetooth GPS Receiver failed:%s\n\nPlease try again!"},
    {43011, "常规设置"},
    {43012, "自动开启/关闭蓝牙"},
    {43013, "保持背景灯常亮"},
    {43014, "记录 NMEA 数据"},
    {43015, "存储路径:"},
    {43016, "接收所有卫星系统"},
    {43017, "语言:"},
    {43018, "自动"},
    {43019, "新的语言在程序下次启动时生效。"},
    {43030, "卫星数据"},
    {43031, "仰角"},
    {43032, "方位角"},
    {43040, "纬度"},
    {43041, "经度"},
    {43042, "北/南:"},
    {43043, "东/西:"},
    {43044, "度:"},
    {43045, "分:"},
    {43046, "秒:"},
    {43050, "地图 [*.BMP; *.JPG; *.GIF; *.PNG]"},
    {43051, "轨迹 [*.log; *.gpx; *.nmea]"},
    {43052, "POI [*.csv; *.gpx]"},
    {43060, "正在读取轨迹记录…"},
    {43070, "Set Ref Point %s"},
    {43080, "3D GPS Fix"},
    {43081, "2D GPS Fix"},
    {43082, "GPS Fix N/A"},
    {43090, "残差（米） "},
    {43101, "Open POI File failed!"},
    {43102, "Load POI Icons failed: 0x08200a19\n\nPress OK to continue..."},
    {43103, "Read Image Information failed!"},
    {43104, "Save Reference Point Information failed!"},
    {43105, "Create Track Timer failed: %s\n\nPress OK to continue..."},
    {43106, "Create Track Timer failed:%s\n\nPress OK to continue..."},
    {43107, "Create Track Move Timer failed!"},
    {43108, "Open Track Log failed!"},
    {43109, "Initialization failed: %s\n\nThe program will now exit."},
    {43110, "Critical Error: %s\nThe program will now exit."},
    {43201,
     "usage: satwalk [OPTIONS]\n"
     "  --options PATH        the options file (default: the XDG config folder)\n"
     "  --size WxH            client size above the soft-key bar (default 480x640)\n"
     "  --dpi N               screen density (default 192; 96 selects the small set)\n"
     "  --scale auto|100|150|200|300\n"
     "                        draw the program this much larger for this run (the\n"
     "                        options' interface scale; auto fills the window)\n"
     "  --port SOURCE         a receiver that stands for the configured port: a device,\n"
     "                        gpsd://HOST[:PORT] or tcp://HOST:PORT\n"
     "  --replay [FILE]       play FILE (default: the demo drive) as the receiver\n"
     "  --replay-rate X       replay speed, epochs per second (default 1)\n"
     "  --script FILE         run a script (works with -platform offscreen)\n"
     "  --single-instance     take part in the one-copy rule in script mode too\n"
     "  --all-talkers         accept all satellite systems (GN, GL, GA, GB, BD, ... talkers)\n"
     "  --relay [HOST:]PORT   serve the receiver's NMEA to TCP clients for this run\n"
     "                        (host 127.0.0.1 unless named)\n"
     "  --language LANG       the interface's language for this run: zh_CN, en or auto\n"
     "  --list-commands       print the command ids of the menus and scripts, and exit\n"
     "  --version             print the version and exit\n"
     "  --help                print this and exit\n"},
    {43300, "找不到用户手册：%s\n\n请检查 Satwalk 的数据文件是否完整安装。"},
    {43301, "无法读取用户手册 %s。"},
    {43302, "用户手册 %s 太大，无法显示。"},
    {43303, "目录"},
    {43304, "关闭"},
    {43310, "正在建立大地图的缓存…\n%s"},
    {43311, "取消"},
    {43312, "正在取消…"},
    {43320, "磁盘空间不足，无法为 %s 建立地图缓存！"},
    {43321, "无法使用地图旁边的地理坐标（%s）。\n\n原来的地图保持不变。"},
};

static_assert(std::is_sorted(std::begin(kStrings), std::end(kStrings),
                             [](const Entry& a, const Entry& b) { return a.id < b.id; }));

// The texts of the installed language, one per entry of the table; empty
// where the table's own text stands (and all of them without a language).
std::vector<std::string>& Translated() {
    static std::vector<std::string> texts;
    return texts;
}

}  // namespace

std::span<const StringEntry> StringTable() {
    return kStrings;
}

void InstallTranslation(const TextTranslator& translate) {
    std::vector<std::string>& texts = Translated();
    texts.assign(std::size(kStrings), std::string());
    if (!translate)
        return;
    for (std::size_t i = 0; i < std::size(kStrings); ++i) texts[i] = translate(kStrings[i]);
}

const char* LoadString(int id) {
    const auto* it = std::lower_bound(std::begin(kStrings), std::end(kStrings), id,
                                      [](const Entry& e, int key) { return e.id < key; });
    if (it == std::end(kStrings) || it->id != id)
        return "";
    const std::vector<std::string>& texts = Translated();
    const auto index = static_cast<std::size_t>(it - std::begin(kStrings));
    if (index < texts.size() && !texts[index].empty())
        return texts[index].c_str();
    return it->text;
}

const char* OtherTalkersHint() {
    return LoadString(kStrOtherTalkersHint);
}

std::string FormatStrings(const char* format, std::initializer_list<std::string_view> arguments) {
    std::string out;
    const std::string_view f = format;
    std::size_t from = 0;
    for (const std::string_view argument : arguments) {
        const std::size_t at = f.find("%s", from);
        if (at == std::string_view::npos)
            break;
        out.append(f.substr(from, at - from));
        out.append(argument);
        from = at + 2;
    }
    out.append(f.substr(from));
    return out;
}

const char* WriteFailureReason(int error) {
    switch (error) {
        case ENOSPC:
        case EFBIG:
        case EDQUOT:
            return LoadString(kStrReasonDiskFull);
        case ENOENT:
        case ENOTDIR:
            return LoadString(kStrReasonFolderMissing);
        case EACCES:
        case EPERM:
        case EROFS:
            return LoadString(kStrReasonNotPermitted);
        default:
            return LoadString(kStrReasonWriteError);
    }
}

std::string FormatString(const char* format, const std::string& argument) {
    std::string out = format;
    const std::size_t at = out.find("%s");
    if (at != std::string::npos)
        out.replace(at, 2, argument);
    return out;
}

}  // namespace satwalk::common
