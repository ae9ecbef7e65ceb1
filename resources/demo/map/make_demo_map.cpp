// Draws the demo map around the demo drive and writes it with its
// reference-point file:
//   make_demo_map resources/demo/demo-drive.nmea
//                 resources/map/world-land-50m.txt resources/demo/map
// gives west-lake-demo.png and "Ref Pt_west-lake-demo.rpt" there.
//
// The picture is a plain latitude/longitude grid (a fixed number of degrees
// per pixel each way), which is exactly the model the map's calibration
// fits, so three reference points at whole pixels calibrate it with no
// residual. It shows a graticule every half minute, the land of the world
// data (all of this view is land at its scale), a rough sketch of the lake of
// our own, the drive's route drawn faintly from the log, the reference
// points, a north arrow and a scale bar.
#include <QColor>
#include <QFile>
#include <QFont>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QTextStream>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "ReferencePoints.h"
#include "WorldMap.h"

namespace {

using satwalk::map::GeoPoint;

constexpr int kWidth = 1200;
constexpr int kHeight = 900;
// The top-left corner of the image and the degrees one pixel spans. Half-
// pixel lengths would need a seventh decimal; the reference points sit on
// even rows, so every coordinate they carry prints exactly with six.
constexpr double kNorth = 30.261825;
constexpr double kWest = 120.129;
constexpr double kLatPerPixel = 0.0000345;
constexpr double kLonPerPixel = 0.00004;

QPointF ToPixel(double lat, double lon) {
    return {(lon - kWest) / kLonPerPixel, (kNorth - lat) / kLatPerPixel};
}

struct Reference {
    int x, y;
};
// Far apart in both rows and columns, pair by pair.
constexpr Reference kReferences[] = {{100, 100}, {1100, 800}, {200, 760}};

GeoPoint ReferenceAt(const Reference& r) {
    GeoPoint p;
    p.valid = 1;
    p.imageX = r.x;
    p.imageY = r.y;
    p.latitude = kNorth - r.y * kLatPerPixel;
    p.longitude = kWest + r.x * kLonPerPixel;
    return p;
}

// ddmm.mmmm with its hemisphere letter, as the log has it.
double NmeaDegrees(const QString& value, const QString& hemisphere) {
    const double v = value.toDouble();
    const double degrees = std::floor(v / 100.0) + std::fmod(v, 100.0) / 60.0;
    return hemisphere == "S" || hemisphere == "W" ? -degrees : degrees;
}

std::vector<QPointF> RouteFromLog(const QString& path) {
    std::vector<QPointF> route;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return route;
    QTextStream in(&file);
    while (!in.atEnd()) {
        const QStringList f = in.readLine().split(',');
        if (f.size() < 7 || f[0] != "$GPRMC" || f[2] != "A")
            continue;
        route.push_back(ToPixel(NmeaDegrees(f[3], f[4]), NmeaDegrees(f[5], f[6])));
    }
    return route;
}

// The lake inside the shore roads, sketched by hand from the drive's
// corners: not survey data, just enough to read the map by.
constexpr double kLake[][2] = {
    {30.2540, 120.1400}, {30.2555, 120.1440}, {30.2568, 120.1480}, {30.2575, 120.1520},
    {30.2574, 120.1560}, {30.2555, 120.1590}, {30.2510, 120.1601}, {30.2470, 120.1598},
    {30.2430, 120.1568}, {30.2395, 120.1518}, {30.2366, 120.1468}, {30.2351, 120.1420},
    {30.2356, 120.1383}, {30.2372, 120.1335}, {30.2420, 120.1312}, {30.2480, 120.1310},
    {30.2525, 120.1330},
};

QString Dms(double degrees, bool latitude) {
    const double a = std::fabs(degrees);
    const int d = static_cast<int>(a);
    const int m = static_cast<int>((a - d) * 60.0 + 1e-9);
    const int s = static_cast<int>(std::lround(((a - d) * 60.0 - m) * 60.0));
    const char hemisphere = latitude ? (degrees < 0 ? 'S' : 'N') : (degrees < 0 ? 'W' : 'E');
    return QString("%1°%2′%3″%4")
        .arg(d)
        .arg(m, 2, 10, QChar('0'))
        .arg(s, 2, 10, QChar('0'))
        .arg(hemisphere);
}

void DrawLand(QPainter& painter, const satwalk::map::WorldLand& land) {
    painter.fillRect(0, 0, kWidth, kHeight, QColor(181, 208, 232));
    const double south = kNorth - kHeight * kLatPerPixel, east = kWest + kWidth * kLonPerPixel;
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(238, 234, 218));
    for (const auto& ring : land.rings) {
        if (ring.maxLon * 0.01 < kWest || ring.minLon * 0.01 > east || ring.maxLat * 0.01 < south ||
            ring.minLat * 0.01 > kNorth)
            continue;
        QPolygonF poly;
        for (std::size_t i = 0; i < ring.lon.size(); ++i)
            poly << ToPixel(ring.lat[i] * 0.01, ring.lon[i] * 0.01);
        painter.drawPolygon(poly);
    }
}

void DrawGraticule(QPainter& painter, QFont font) {
    const double step = 0.5 / 60.0;  // half a minute
    font.setPixelSize(15);
    painter.setFont(font);
    const QColor line(120, 140, 170, 150), text(60, 70, 90);
    const double south = kNorth - kHeight * kLatPerPixel, east = kWest + kWidth * kLonPerPixel;
    for (double lat = std::ceil(south / step) * step; lat < kNorth; lat += step) {
        const double y = ToPixel(lat, kWest).y();
        painter.setPen(QPen(line, 1));
        painter.drawLine(QPointF(0, y), QPointF(kWidth, y));
        painter.setPen(text);
        painter.drawText(QPointF(6, y - 4), Dms(lat, true));
    }
    for (double lon = std::ceil(kWest / step) * step; lon < east; lon += step) {
        const double x = ToPixel(kNorth, lon).x();
        painter.setPen(QPen(line, 1));
        painter.drawLine(QPointF(x, 0), QPointF(x, kHeight));
        const QString label = Dms(lon, false);
        if (x + 4 + painter.fontMetrics().horizontalAdvance(label) > kWidth)
            continue;  // no room for the label at the right edge
        painter.setPen(text);
        painter.drawText(QPointF(x + 4, kHeight - 8), label);
    }
}

void DrawNorthArrow(QPainter& painter, QFont font) {
    const QPointF tip(1140, 40);
    QPainterPath left, right;
    left.moveTo(tip);
    left.lineTo(tip + QPointF(-16, 56));
    left.lineTo(tip + QPointF(0, 44));
    left.closeSubpath();
    right.moveTo(tip);
    right.lineTo(tip + QPointF(16, 56));
    right.lineTo(tip + QPointF(0, 44));
    right.closeSubpath();
    painter.setPen(QPen(QColor(40, 50, 70), 1.5));
    painter.setBrush(QColor(40, 50, 70));
    painter.drawPath(left);
    painter.setBrush(Qt::white);
    painter.drawPath(right);
    font.setPixelSize(22);
    font.setBold(true);
    painter.setFont(font);
    painter.drawText(QRectF(tip.x() - 20, tip.y() + 56, 40, 28), Qt::AlignCenter, "N");
}

void DrawScaleBar(QPainter& painter, QFont font) {
    // Metres per pixel across, at the map's middle latitude.
    const double midLat = kNorth - kHeight * 0.5 * kLatPerPixel;
    const double metresPerPixel =
        kLonPerPixel * 111'195.0 * std::cos(midLat * 3.141592653589793 / 180.0);
    const double length = 500.0 / metresPerPixel;
    const QPointF at(880, 840);
    painter.setPen(QPen(QColor(40, 50, 70), 3));
    painter.drawLine(at, at + QPointF(length, 0));
    painter.drawLine(at + QPointF(0, -8), at + QPointF(0, 0));
    painter.drawLine(at + QPointF(length, -8), at + QPointF(length, 0));
    font.setPixelSize(16);
    painter.setFont(font);
    painter.drawText(QRectF(at.x(), at.y() - 30, length, 20), Qt::AlignCenter, "500 m");
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    if (argc != 4) {
        std::fprintf(stderr, "usage: make_demo_map DRIVE_NMEA WORLD_LAND_TXT OUTPUT_FOLDER\n");
        return 2;
    }
    satwalk::map::WorldLand land;
    if (!satwalk::map::LoadWorldLand(argv[2], land)) {
        std::fprintf(stderr, "cannot read %s\n", argv[2]);
        return 1;
    }
    const std::vector<QPointF> route = RouteFromLog(argv[1]);
    if (route.empty()) {
        std::fprintf(stderr, "no fixes in %s\n", argv[1]);
        return 1;
    }

    QImage image(kWidth, kHeight, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QFont font("Noto Sans CJK SC");
    DrawLand(painter, land);

    QPolygonF lake;
    for (const auto& p : kLake) lake << ToPixel(p[0], p[1]);
    painter.setPen(QPen(QColor(110, 150, 190), 1.5));
    painter.setBrush(QColor(170, 205, 235));
    painter.drawPolygon(lake);

    DrawGraticule(painter, font);

    QPolygonF line;
    for (const QPointF& p : route) line << p;
    painter.setPen(QPen(QColor(200, 70, 50, 120), 4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPolyline(line);

    QFont label = font;
    label.setPixelSize(30);
    painter.setFont(label);
    painter.setPen(QColor(60, 100, 150));
    painter.drawText(lake.boundingRect(), Qt::AlignCenter, "西湖\nWest Lake");

    satwalk::map::ReferencePoints points{};
    font.setPixelSize(16);
    font.setBold(true);
    for (std::size_t i = 0; i < std::size(kReferences); ++i) {
        const Reference& r = kReferences[i];
        points[i] = ReferenceAt(r);
        painter.setPen(QPen(QColor(20, 120, 60), 2));
        painter.drawLine(QPointF(r.x - 10, r.y), QPointF(r.x + 10, r.y));
        painter.drawLine(QPointF(r.x, r.y - 10), QPointF(r.x, r.y + 10));
        painter.setFont(font);
        painter.drawText(QPointF(r.x + 6, r.y - 6), QString::number(i + 1));
    }

    font.setBold(false);
    font.setPixelSize(20);
    painter.setFont(font);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(255, 255, 255, 200));
    const QRectF title(590, 790, 220, 64);
    painter.drawRect(title);
    painter.setPen(QColor(40, 50, 70));
    painter.drawText(title, Qt::AlignCenter, "Satwalk demo map\n杭州 Hangzhou");
    DrawNorthArrow(painter, font);
    DrawScaleBar(painter, font);
    painter.end();

    const QString folder = argv[3];
    const QString imagePath = folder + "/west-lake-demo.png";
    if (!image.save(imagePath, "png")) {
        std::fprintf(stderr, "cannot write %s\n", qPrintable(imagePath));
        return 1;
    }
    const std::string rpt = (folder + "/Ref Pt_west-lake-demo.rpt").toStdString();
    if (!satwalk::map::WriteReferenceFile(rpt, points)) {
        std::fprintf(stderr, "cannot write %s\n", rpt.c_str());
        return 1;
    }
    std::printf("%s\n%s\n", qPrintable(imagePath), rpt.c_str());
    return 0;
}
