// Draws every screen bitmap of both pixel sets and writes them as PNG files:
//   make_bitmaps WORLD_LAND_TXT OUTPUT_FOLDER
// Shapes are drawn anti-aliased on a transparent image, then flattened onto
// the bitmap's transparent key colour: nearly clear pixels become the key,
// the rest are blended over white (the screens' background), so the edges
// look smooth where the key is cut away.
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
#include <vector>

namespace {

const QColor kKey(214, 233, 250);
const QColor kMagenta(255, 0, 255);
const QColor kInk(34, 89, 172);        // dark blue of the arrows
const QColor kInkLight(96, 132, 206);  // light blue of the arrows
const QColor kOutline(118, 148, 196);
const QColor kFaint(176, 198, 228);
const QColor kGreen(60, 160, 70);
const QColor kRed(220, 40, 40);
const QColor kGrey(128, 132, 140);

QImage Blank(int w, int h) {
    QImage img(w, h, QImage::Format_ARGB32);
    img.fill(Qt::transparent);
    return img;
}

// Transparent pixels to `key`, partly covered ones blended over white.
QImage Flatten(const QImage& src, const QColor& key) {
    QImage out(src.size(), QImage::Format_RGB32);
    const QRgb k = key.rgb();
    for (int y = 0; y < src.height(); ++y) {
        for (int x = 0; x < src.width(); ++x) {
            const QRgb p = src.pixel(x, y);
            const int a = qAlpha(p);
            QRgb o;
            if (a < 60) {
                o = k;
            } else {
                const auto mix = [a](int c) { return (c * a + 255 * (255 - a)) / 255; };
                o = qRgb(mix(qRed(p)), mix(qGreen(p)), mix(qBlue(p)));
                if ((o | 0xFF000000u) == (k | 0xFF000000u))
                    o = qRgb(qRed(o), qGreen(o), qBlue(o) - 1);
            }
            out.setPixel(x, y, o);
        }
    }
    return out;
}

void Begin(QPainter& p) {
    p.setRenderHint(QPainter::Antialiasing, true);
    p.setRenderHint(QPainter::TextAntialiasing, true);
}

QFont UiFont(double px, bool bold) {
    QFont f(QStringLiteral("Noto Sans CJK SC"));
    f.setPixelSize(std::max(1, static_cast<int>(std::lround(px))));
    f.setBold(bold);
    f.setHintingPreference(QFont::PreferFullHinting);
    return f;
}

// ---- icons --------------------------------------------------------------

// A small satellite: body with two solar panels, tilted.
void DrawSatellite(QPainter& p, QPointF c, double s, const QColor& body, const QColor& panel) {
    p.save();
    p.translate(c);
    p.rotate(-35);
    p.setPen(Qt::NoPen);
    p.setBrush(panel);
    p.drawRect(QRectF(-s * 0.95, -s * 0.2, s * 0.58, s * 0.4));
    p.drawRect(QRectF(s * 0.37, -s * 0.2, s * 0.58, s * 0.4));
    p.setPen(QPen(body, std::max(1.0, s * 0.07)));
    p.drawLine(QPointF(-s * 0.4, 0), QPointF(s * 0.4, 0));
    p.setPen(Qt::NoPen);
    p.setBrush(body);
    p.drawRoundedRect(QRectF(-s * 0.22, -s * 0.3, s * 0.44, s * 0.6), s * 0.08, s * 0.08);
    p.restore();
}

// Land outlines, read once by main().
std::vector<std::vector<QPointF>> gLand;

// A globe in orthographic view centred on 20°E 25°N, with the real
// coastlines; points on the far side are pushed onto the rim.
void DrawGlobe(QPainter& p, QPointF c, double r) {
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(120, 180, 235));
    p.drawEllipse(c, r, r);
    const double lon0 = 20.0 * M_PI / 180, lat0 = 25.0 * M_PI / 180;
    QPainterPath land;
    land.setFillRule(Qt::WindingFill);
    for (const auto& ring : gLand) {
        QPolygonF poly;
        bool anyVisible = false;
        for (const QPointF& ll : ring) {
            const double lon = ll.x() * M_PI / 180, lat = ll.y() * M_PI / 180;
            const double x = std::cos(lat) * std::sin(lon - lon0);
            const double y = std::cos(lat0) * std::sin(lat) -
                             std::sin(lat0) * std::cos(lat) * std::cos(lon - lon0);
            const double z = std::sin(lat0) * std::sin(lat) +
                             std::cos(lat0) * std::cos(lat) * std::cos(lon - lon0);
            double px = x, py = y;
            if (z < 0) {
                const double n = std::hypot(x, y);
                if (n > 0) {
                    px = x / n;
                    py = y / n;
                }
            } else {
                anyVisible = true;
            }
            poly << c + QPointF(px * r, -py * r);
        }
        if (anyVisible) {
            land.addPolygon(poly);
            land.closeSubpath();
        }
    }
    p.save();
    QPainterPath disc;
    disc.addEllipse(c, r, r);
    p.setClipPath(disc);
    p.setBrush(QColor(88, 160, 80));
    p.drawPath(land);
    p.restore();
    p.setBrush(Qt::NoBrush);
    p.setPen(QPen(QColor(255, 255, 255, 110), std::max(0.6, r * 0.04)));
    p.drawEllipse(c, r * 0.5, r);
    p.drawLine(c + QPointF(-r, 0), c + QPointF(r, 0));
    p.setPen(QPen(kInk, std::max(1.0, r * 0.08)));
    p.drawEllipse(c, r, r);
}

void DrawFoldedMap(QPainter& p, QRectF r) {
    const double w = r.width() / 3;
    const QColor shades[3] = {QColor(236, 222, 170), QColor(214, 198, 140), QColor(236, 222, 170)};
    for (int i = 0; i < 3; ++i) {
        const double x0 = r.left() + i * w, x1 = x0 + w;
        const double dy = r.height() * 0.1;
        const double t0 = (i % 2 == 0) ? r.top() + dy : r.top();
        const double t1 = (i % 2 == 0) ? r.top() : r.top() + dy;
        QPolygonF panel;
        panel << QPointF(x0, t0) << QPointF(x1, t1) << QPointF(x1, t1 + r.height() - dy)
              << QPointF(x0, t0 + r.height() - dy);
        p.setPen(QPen(QColor(150, 130, 80), std::max(1.0, r.width() * 0.02)));
        p.setBrush(shades[i]);
        p.drawPolygon(panel);
    }
    // A road and a pin.
    p.setPen(QPen(QColor(200, 90, 60), std::max(1.0, r.width() * 0.04)));
    p.setBrush(Qt::NoBrush);
    QPainterPath road;
    road.moveTo(r.left() + r.width() * 0.08, r.bottom() - r.height() * 0.25);
    road.cubicTo(r.left() + r.width() * 0.4, r.bottom() - r.height() * 0.1,
                 r.left() + r.width() * 0.5, r.top() + r.height() * 0.5,
                 r.right() - r.width() * 0.1, r.top() + r.height() * 0.35);
    p.drawPath(road);
    const QPointF pin(r.left() + r.width() * 0.62, r.top() + r.height() * 0.42);
    const double pr = r.width() * 0.13;
    QPainterPath drop;
    drop.moveTo(pin + QPointF(0, pr * 1.6));
    drop.arcTo(QRectF(pin.x() - pr, pin.y() - pr * 1.2, 2 * pr, 2 * pr), 210, -240);
    drop.closeSubpath();
    p.setPen(QPen(QColor(140, 20, 20), std::max(0.8, pr * 0.15)));
    p.setBrush(kRed);
    p.drawPath(drop);
    p.setPen(Qt::NoPen);
    p.setBrush(Qt::white);
    p.drawEllipse(QPointF(pin.x(), pin.y() - pr * 0.2), pr * 0.4, pr * 0.4);
}

// Text lines of the information tab.
void DrawInfoIcon(QPainter& p, QRectF r) {
    DrawSatellite(p, QPointF(r.center().x(), r.top() + r.height() * 0.3), r.width() * 0.33, kInk,
                  kInkLight);
    p.setPen(QPen(kInk, std::max(1.0, r.height() * 0.06), Qt::SolidLine, Qt::RoundCap));
    for (int i = 0; i < 3; ++i) {
        const double y = r.top() + r.height() * (0.62 + 0.14 * i);
        const double len = (i == 2) ? 0.45 : 0.7;
        p.drawLine(QPointF(r.left() + r.width() * 0.15, y),
                   QPointF(r.left() + r.width() * (0.15 + len), y));
    }
}

void TileFrame(QPainter& p, QRectF tile) {
    const double w = std::max(1.0, tile.width() / 30.0);
    p.setPen(QPen(kOutline, w));
    p.setBrush(Qt::NoBrush);
    const double rad = tile.width() * 0.14;
    p.drawRoundedRect(tile.adjusted(w / 2, w / 2, -w / 2, -w / 2), rad, rad);
}

void CompassTile(QPainter& p, QPointF centre, double ringR, double fontPx) {
    p.setPen(QPen(kFaint, std::max(1.0, ringR / 14)));
    p.setBrush(Qt::NoBrush);
    p.drawEllipse(centre, ringR, ringR);
    for (int k = 0; k < 8; ++k) {
        const double a = k * M_PI / 4;
        const double r0 = (k % 2 == 0) ? ringR * 0.78 : ringR * 0.87;
        p.setPen(QPen(k == 0 ? kRed : kOutline, std::max(1.0, ringR / 14)));
        p.drawLine(centre + QPointF(std::sin(a) * r0, -std::cos(a) * r0),
                   centre + QPointF(std::sin(a) * ringR, -std::cos(a) * ringR));
    }
    (void)fontPx;
}

void SpeedTile(QPainter& p, QPointF centre, double r) {
    p.setPen(QPen(kFaint, std::max(1.0, r / 10), Qt::SolidLine, Qt::RoundCap));
    p.setBrush(Qt::NoBrush);
    // 240-degree arc, open at the bottom.
    p.drawArc(QRectF(centre.x() - r, centre.y() - r, 2 * r, 2 * r), -30 * 16, 240 * 16);
    p.setPen(QPen(QColor(240, 150, 150), std::max(1.0, r / 10), Qt::SolidLine, Qt::RoundCap));
    p.drawArc(QRectF(centre.x() - r, centre.y() - r, 2 * r, 2 * r), -30 * 16, 50 * 16);
}

void SkyTile(QPainter& p, QPointF centre, double r) {
    p.setPen(QPen(kOutline, std::max(1.0, r / 18)));
    p.setBrush(Qt::NoBrush);
    p.drawEllipse(centre, r, r);
    p.setPen(QPen(kFaint, std::max(1.0, r / 22)));
    p.drawEllipse(centre, r * 0.5, r * 0.5);
    p.drawLine(centre + QPointF(-r, 0), centre + QPointF(r, 0));
    p.drawLine(centre + QPointF(0, -r), centre + QPointF(0, r));
}

// One tab tile by its index in the strip order; `live` is the centre of
// the instrument the frame draws over it and `liveR` its radius.
void DrawTab(QPainter& p, int index, QRectF tile, QPointF live, double liveR) {
    TileFrame(p, tile);
    const QRectF inner = tile.adjusted(tile.width() * 0.14, tile.height() * 0.14,
                                       -tile.width() * 0.14, -tile.height() * 0.14);
    switch (index) {
        case 0:
            DrawInfoIcon(p, inner);
            break;
        case 1:
            DrawGlobe(p, inner.center(), inner.width() * 0.5);
            break;
        case 2:
            DrawFoldedMap(p, inner.adjusted(0, inner.height() * 0.08, 0, -inner.height() * 0.08));
            break;
        case 3:
            CompassTile(p, live, liveR, 0);
            break;
        case 4:
            SpeedTile(p, tile.center(), tile.width() * 0.38);
            break;
        case 5:
            SkyTile(p, live, liveR);
            break;
        default:
            break;
    }
}

void DrawAlarmCellArt(QPainter& p, QRectF cell, int value, bool horizontalRow) {
    const QRectF r = cell.adjusted(1.5, 1.5, -1.5, -1.5);
    p.setPen(QPen(kOutline, std::max(1.0, cell.height() / 30.0)));
    p.setBrush(Qt::NoBrush);
    const double rad = std::min(r.width(), r.height()) * 0.2;
    p.drawRoundedRect(r, rad, rad);
    p.setPen(QColor(150, 60, 60));
    const double px = horizontalRow ? cell.height() * 0.42 : cell.width() * 0.36;
    p.setFont(UiFont(px, true));
    p.drawText(cell, Qt::AlignCenter, QString::number(value));
}

// ---- the bitmaps ------------------------------------------------------------

QImage StatusIcons(int s) {
    QImage img = Blank(9 * s, s);
    QPainter p(&img);
    Begin(p);
    const auto frame = [s](int k) { return QRectF(k * s, 0, s, s); };
    // 0 receiver up, 1 receiver down.
    for (int k = 0; k < 2; ++k) {
        const QRectF f = frame(k);
        const QColor body = k == 0 ? QColor(30, 130, 60) : kGrey;
        const QColor panel = k == 0 ? QColor(70, 190, 90) : QColor(180, 184, 190);
        DrawSatellite(p, f.center(), s * 0.56, body, panel);
        if (k == 1) {
            p.setPen(QPen(kRed, std::max(1.5, s / 9.0), Qt::SolidLine, Qt::RoundCap));
            p.drawLine(f.topLeft() + QPointF(s * 0.18, s * 0.18),
                       f.bottomRight() - QPointF(s * 0.18, s * 0.18));
        }
    }
    // 2 recording on, 3 recording off.
    for (int k = 2; k < 4; ++k) {
        const QRectF f = frame(k);
        const double r = s * 0.36;
        p.setPen(QPen(k == 2 ? QColor(150, 20, 20) : kGrey, std::max(1.0, s / 14.0)));
        p.setBrush(k == 2 ? kRed : QColor(235, 235, 238));
        p.drawEllipse(f.center(), r, r);
        p.setPen(Qt::NoPen);
        p.setBrush(k == 2 ? QColor(255, 255, 255) : kGrey);
        p.drawEllipse(f.center(), r * 0.35, r * 0.35);
    }
    // 4 alarm on, 5 alarm off (bells), 6 track on, 7 track off, 8 empty.
    for (int k = 4; k < 6; ++k) {
        const QRectF f = frame(k);
        const QPointF c = f.center();
        QPainterPath bell;
        bell.moveTo(c + QPointF(-s * 0.3, s * 0.2));
        bell.cubicTo(c + QPointF(-s * 0.2, s * 0.05), c + QPointF(-s * 0.3, -s * 0.35),
                     c + QPointF(0, -s * 0.35));
        bell.cubicTo(c + QPointF(s * 0.3, -s * 0.35), c + QPointF(s * 0.2, s * 0.05),
                     c + QPointF(s * 0.3, s * 0.2));
        bell.closeSubpath();
        p.setPen(QPen(k == 4 ? QColor(160, 110, 0) : kGrey, std::max(1.0, s / 16.0)));
        p.setBrush(k == 4 ? QColor(250, 190, 40) : QColor(220, 222, 226));
        p.drawPath(bell);
        p.drawEllipse(c + QPointF(0, s * 0.28), s * 0.07, s * 0.07);
        if (k == 5) {
            p.setPen(QPen(kRed, std::max(1.5, s / 9.0), Qt::SolidLine, Qt::RoundCap));
            p.drawLine(f.topLeft() + QPointF(s * 0.18, s * 0.18),
                       f.bottomRight() - QPointF(s * 0.18, s * 0.18));
        }
    }
    for (int k = 6; k < 8; ++k) {
        const QRectF f = frame(k);
        p.setPen(QPen(k == 6 ? kInk : kGrey, std::max(1.0, s / 12.0), Qt::DashLine, Qt::RoundCap));
        p.setBrush(Qt::NoBrush);
        QPainterPath trail;
        trail.moveTo(f.left() + s * 0.15, f.bottom() - s * 0.2);
        trail.cubicTo(f.left() + s * 0.5, f.bottom() - s * 0.1, f.left() + s * 0.3,
                      f.top() + s * 0.3, f.right() - s * 0.2, f.top() + s * 0.25);
        p.drawPath(trail);
        p.setPen(Qt::NoPen);
        p.setBrush(k == 6 ? kRed : kGrey);
        p.drawEllipse(QPointF(f.right() - s * 0.2, f.top() + s * 0.25), s * 0.1, s * 0.1);
    }
    p.end();
    return Flatten(img, kMagenta);
}

QImage SmallSymbol(int w, int h) {
    QImage img = Blank(w, h);
    QPainter p(&img);
    Begin(p);
    DrawSatellite(p, QPointF(w / 2.0, h / 2.0), h * 0.62, kInk, kInkLight);
    p.end();
    return Flatten(img, kMagenta);
}

QImage SquareSymbol(int s) {
    QImage img = Blank(s, s);
    QPainter p(&img);
    Begin(p);
    const QPointF c(s / 2.0, s / 2.0);
    p.setPen(QPen(kInk, std::max(1.0, s / 14.0)));
    p.setBrush(Qt::NoBrush);
    p.drawEllipse(c, s * 0.32, s * 0.32);
    p.drawLine(QPointF(c.x(), s * 0.05), QPointF(c.x(), s * 0.3));
    p.drawLine(QPointF(c.x(), s * 0.7), QPointF(c.x(), s * 0.95));
    p.drawLine(QPointF(s * 0.05, c.y()), QPointF(s * 0.3, c.y()));
    p.drawLine(QPointF(s * 0.7, c.y()), QPointF(s * 0.95, c.y()));
    p.setPen(Qt::NoPen);
    p.setBrush(kRed);
    p.drawEllipse(c, s * 0.1, s * 0.1);
    p.end();
    return Flatten(img, kMagenta);
}

std::vector<std::vector<QPointF>> ReadLand(const QString& path) {
    std::vector<std::vector<QPointF>> rings;
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly | QIODevice::Text))
        return rings;
    QTextStream in(&f);
    while (!in.atEnd()) {
        const QString line = in.readLine();
        if (line.startsWith('#') || line.isEmpty())
            continue;
        std::vector<QPointF> ring;
        for (const QString& cell : line.split(' ', Qt::SkipEmptyParts)) {
            const auto parts = cell.split(',');
            if (parts.size() == 2)
                ring.emplace_back(parts[0].toDouble(), parts[1].toDouble());
        }
        rings.push_back(std::move(ring));
    }
    return rings;
}

// Longitudes −180..180 and latitudes 80..−80, linear.
QImage World(int w, int h, const std::vector<std::vector<QPointF>>& land) {
    const int ss = 4;  // drawn larger, then scaled down for smooth coasts
    QImage big(w * ss, h * ss, QImage::Format_RGB32);
    big.fill(QColor(170, 211, 240));
    QPainter p(&big);
    Begin(p);
    const auto map = [&](QPointF ll) {
        return QPointF((ll.x() + 180.0) / 360.0 * w * ss, (80.0 - ll.y()) / 160.0 * h * ss);
    };
    p.setPen(QPen(QColor(150, 192, 226), ss * 0.5));
    for (int lon = -150; lon <= 150; lon += 30)
        p.drawLine(map(QPointF(lon, 80)), map(QPointF(lon, -80)));
    for (int lat = -60; lat <= 60; lat += 30)
        p.drawLine(map(QPointF(-180, lat)), map(QPointF(180, lat)));
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    for (const auto& ring : land) {
        // A ring that crosses the 180th meridian (Chukotka, Fiji) is made
        // continuous first, then drawn once more a world to the side, so no
        // edge runs the width of the map.
        std::vector<QPointF> unwrapped;
        double shift = 0;
        double low = 0;
        double high = 0;
        for (const QPointF& ll : ring) {
            if (!unwrapped.empty()) {
                const double step = ll.x() + shift - unwrapped.back().x();
                if (step > 180)
                    shift -= 360;
                else if (step < -180)
                    shift += 360;
            }
            unwrapped.emplace_back(ll.x() + shift, ll.y());
            low =
                unwrapped.size() == 1 ? unwrapped.back().x() : std::min(low, unwrapped.back().x());
            high =
                unwrapped.size() == 1 ? unwrapped.back().x() : std::max(high, unwrapped.back().x());
        }
        for (const double world : {0.0, -360.0, 360.0}) {
            if (world < 0 && high <= 180)
                continue;
            if (world > 0 && low >= -180)
                continue;
            QPolygonF poly;
            for (const QPointF& ll : unwrapped) poly << map(QPointF(ll.x() + world, ll.y()));
            path.addPolygon(poly);
            path.closeSubpath();
        }
    }
    p.setPen(QPen(QColor(86, 130, 60), ss * 0.6));
    p.setBrush(QColor(128, 178, 96));
    p.drawPath(path);
    p.end();
    return big.scaled(w, h, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

QImage MapOverlay(int w, int h, int button, int gap) {
    QImage img = Blank(w, h);
    QPainter p(&img);
    Begin(p);
    for (int k = 0; k < 6; ++k) {
        const QRectF r(0.5, k * (button + gap) + 0.5, w - 1.0, button - 1.0);
        p.setPen(QPen(QColor(20, 50, 110), 1));
        p.setBrush(QColor(34, 89, 172, 235));
        p.drawRoundedRect(r, w * 0.2, w * 0.2);
        const QPointF c = r.center();
        const double a = w * 0.28;
        p.setPen(Qt::NoPen);
        p.setBrush(Qt::white);
        QPolygonF tri;
        switch (k) {
            case 0:
                tri << c + QPointF(0, -a) << c + QPointF(a, a * 0.6) << c + QPointF(-a, a * 0.6);
                break;
            case 1:
                tri << c + QPointF(0, a) << c + QPointF(a, -a * 0.6) << c + QPointF(-a, -a * 0.6);
                break;
            case 2:
                tri << c + QPointF(-a, 0) << c + QPointF(a * 0.6, -a) << c + QPointF(a * 0.6, a);
                break;
            case 3:
                tri << c + QPointF(a, 0) << c + QPointF(-a * 0.6, -a) << c + QPointF(-a * 0.6, a);
                break;
            default:
                break;
        }
        if (!tri.isEmpty()) {
            p.drawPolygon(tri);
        } else {
            const double t = std::max(1.5, w * 0.12);
            p.drawRect(QRectF(c.x() - a, c.y() - t / 2, 2 * a, t));
            if (k == 4)
                p.drawRect(QRectF(c.x() - t / 2, c.y() - a, t, 2 * a));
        }
    }
    p.end();
    return Flatten(img, kMagenta);
}

struct PortraitGeometry {
    int w, h, tile, tileY, pitch, tileX0, cellW, cellH, cellX0;
    QPointF arrow;
    double arrowSize;
    QPointF sky;
    double skyR;
};

QImage PortraitStrip(const PortraitGeometry& g) {
    QImage img = Blank(g.w, g.h);
    QPainter p(&img);
    Begin(p);
    for (int k = 0; k < 8; ++k)
        DrawAlarmCellArt(p, QRectF(g.cellX0 + k * g.cellW, 0, g.cellW, g.cellH), 50 + 10 * k, true);
    for (int k = 0; k < 6; ++k) {
        const QRectF tile(g.tileX0 + k * g.pitch, g.tileY, g.tile, g.tile);
        if (k == 3)
            DrawTab(p, k, tile, g.arrow, g.arrowSize * 1.22);
        else if (k == 5)
            DrawTab(p, k, tile, g.sky, g.skyR);
        else
            DrawTab(p, k, tile, tile.center(), 0);
    }
    p.end();
    return Flatten(img, kKey);
}

struct LandscapeGeometry {
    int w, h, tile, pitch;
    QPointF arrow;
    double arrowSize;
    QPointF sky;
    double skyR;
};

QImage LandscapeStrip(const LandscapeGeometry& g) {
    QImage img = Blank(g.w, g.h);
    QPainter p(&img);
    Begin(p);
    for (int k = 0; k < 6; ++k) {
        const QRectF tile(0, k * g.pitch, g.tile, g.tile);
        if (k == 3)
            DrawTab(p, k, tile, g.arrow, std::min(g.arrowSize * 1.3, g.tile / 2.0 - 1));
        else if (k == 5)
            DrawTab(p, k, tile, g.sky, g.skyR);
        else
            DrawTab(p, k, tile, tile.center(), 0);
    }
    p.end();
    return Flatten(img, kKey);
}

QImage AlarmStrip(int w, int h, int cell) {
    QImage img = Blank(w, h);
    QPainter p(&img);
    Begin(p);
    for (int k = 0; k < 8; ++k)
        DrawAlarmCellArt(p, QRectF(0, k * cell, w, cell), 50 + 10 * k, false);
    p.end();
    return Flatten(img, kKey);
}

// Position markers: current position, reference point, point of interest.
QImage Markers(int s) {
    QImage img = Blank(3 * s, s);
    QPainter p(&img);
    Begin(p);
    const double r = s * 0.4;
    QPointF c(s / 2.0, s / 2.0);
    p.setPen(QPen(Qt::white, std::max(1.0, s / 8.0)));
    p.setBrush(kRed);
    p.drawEllipse(c, r, r);
    c += QPointF(s, 0);
    p.setPen(QPen(kInk, std::max(1.0, s / 10.0)));
    p.setBrush(Qt::NoBrush);
    p.drawEllipse(c, r * 0.7, r * 0.7);
    p.drawLine(c + QPointF(-r, 0), c + QPointF(r, 0));
    p.drawLine(c + QPointF(0, -r), c + QPointF(0, r));
    c += QPointF(s, 0);
    p.setPen(QPen(QColor(120, 60, 0), std::max(1.0, s / 12.0)));
    p.setBrush(QColor(250, 170, 30));
    QPolygonF diamond;
    diamond << c + QPointF(0, -r) << c + QPointF(r, 0) << c + QPointF(0, r) << c + QPointF(-r, 0);
    p.drawPolygon(diamond);
    p.end();
    return Flatten(img, kMagenta);
}

bool Save(const QImage& img, const QString& folder, const char* name) {
    const QString path = folder + "/" + name + ".png";
    if (!img.save(path)) {
        std::fprintf(stderr, "cannot write %s\n", qPrintable(path));
        return false;
    }
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    QGuiApplication app(argc, argv);
    if (argc != 3) {
        std::fprintf(stderr, "usage: make_bitmaps WORLD_LAND_TXT OUTPUT_FOLDER\n");
        return 2;
    }
    gLand = ReadLand(QString::fromLocal8Bit(argv[1]));
    const auto& land = gLand;
    if (land.empty()) {
        std::fprintf(stderr, "no land outlines in %s\n", argv[1]);
        return 1;
    }
    const QString out = QString::fromLocal8Bit(argv[2]);
    bool ok = true;
    ok &= Save(StatusIcons(32), out, "status-icons-hi");
    ok &= Save(StatusIcons(17), out, "status-icons-lo");
    ok &= Save(SmallSymbol(44, 30), out, "symbol-small-hi");
    ok &= Save(SmallSymbol(32, 22), out, "symbol-small-lo");
    ok &= Save(World(118, 67, land), out, "world-hi");
    ok &= Save(World(91, 52, land), out, "world-lo");
    ok &= Save(SquareSymbol(32), out, "symbol-square-hi");
    ok &= Save(SquareSymbol(23), out, "symbol-square-lo");
    ok &= Save(MapOverlay(30, 200, 29, 5), out, "map-overlay-hi");
    ok &= Save(MapOverlay(16, 101, 15, 1), out, "map-overlay-lo");
    ok &= Save(PortraitStrip({480, 129, 74, 55, 79, 5, 59, 46, 5, QPointF(280, 100), 22,
                              QPointF(438, 91), 30}),
               out, "toolstrip-portrait-hi");
    ok &= Save(PortraitStrip(
                   {240, 66, 38, 27, 40, 1, 30, 23, 1, QPointF(140, 49), 12, QPointF(220, 45), 17}),
               out, "toolstrip-portrait-lo");
    ok &= Save(LandscapeStrip({52, 332, 51, 56, QPointF(26, 201), 15, QPointF(27, 305), 22}), out,
               "toolstrip-landscape-hi");
    ok &= Save(LandscapeStrip({28, 168, 27, 28, QPointF(14, 100), 8, QPointF(14, 153), 12}), out,
               "toolstrip-landscape-lo");
    ok &= Save(AlarmStrip(42, 337, 42), out, "alarm-strip-hi");
    ok &= Save(AlarmStrip(21, 169, 21), out, "alarm-strip-lo");
    ok &= Save(Markers(20), out, "markers-hi");
    ok &= Save(Markers(11), out, "markers-lo");
    return ok ? 0 : 1;
}
