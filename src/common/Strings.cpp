#include "Strings.h"

#include <algorithm>
#include <iterator>

namespace satwalk::common {

namespace {

struct Entry {
    int id;
    const char* text;
};

// Sorted by id.
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
    {40104, "导入 %s 失败！没有足够内存空间！"},
    {40105, "无法打开 %s，记录已被打开！"},
    {40108, "停止 GPS\t[0]"},
    {40109, "启动 GPS\t[0]"},
    {40111, "激活参照点"},
    {40118, "打开文件"},
    {40119, "北纬"},
    {40120, "南纬"},
    {40121, "东经"},
    {40122, "西经"},
    {40192, "自动开启/关闭蓝牙失败！"},
    {40199, "插入当前GPS座标"},
    {40200, "向上"},
    {40208, "Satwalk"},
    // Texts of the additions, numbered after the handheld's own.
    {41701, "NMEA 转发"},
    {41702, "NMEA 转发无法在 %s 上监听，GPS接收机照常运行。"},
    {41703, "本机 gpsd"},
};

static_assert(std::is_sorted(std::begin(kStrings), std::end(kStrings),
                             [](const Entry& a, const Entry& b) { return a.id < b.id; }));

}  // namespace

const char* LoadString(int id) {
    const auto* it = std::lower_bound(std::begin(kStrings), std::end(kStrings), id,
                                      [](const Entry& e, int key) { return e.id < key; });
    if (it == std::end(kStrings) || it->id != id)
        return "";
    return it->text;
}

const char* OtherTalkersHint() {
    return "GPS接收机发送的是其他卫星系统的数据 (GN、GL、GA、GB、BD)，没有GPS (GP) 定位数据，"
           "因此无法定位。\n\n请在“选项”中开启“接收所有卫星系统” (或使用启动参数 --all-talkers)。";
}

std::string FormatString(const char* format, const std::string& argument) {
    std::string out = format;
    const std::size_t at = out.find("%s");
    if (at != std::string::npos)
        out.replace(at, 2, argument);
    return out;
}

}  // namespace satwalk::common
