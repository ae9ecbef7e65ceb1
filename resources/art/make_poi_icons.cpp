// Draws the POI icon strip and writes it as a PNG:
//   make_poi_icons OUTPUT_FOLDER        (writes poi-icons.png)
// 31 cells of 16 × 16 side by side, 4 bits per pixel (a 16-colour palette):
// cell i is the icon of category i, cell 0 that of groups without one. Each
// icon is a pictogram in white or dark ink on a coloured tile; shapes are
// drawn without anti-aliasing so that they stay crisp at 16 pixels.
#include <zlib.h>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QPolygon>

#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace {

// The palette: the 16 colours every icon is drawn with.
const QColor kWhite(255, 255, 255), kBlack(20, 20, 20), kGrey(120, 124, 130);
const QColor kBlue(30, 100, 200), kSky(120, 190, 240), kRed(210, 30, 30);
const QColor kGreen(40, 140, 60), kDarkGreen(20, 90, 40), kYellow(250, 210, 40);
const QColor kOrange(240, 140, 30), kBrown(130, 80, 40), kPurple(120, 60, 160);
const QColor kSand(235, 215, 160), kNavy(20, 40, 110), kOlive(100, 110, 50);
const QColor kLight(215, 220, 225);
const QColor kPalette[16] = {kWhite,  kBlack,  kGrey,  kBlue,   kSky,  kRed,  kGreen, kDarkGreen,
                             kYellow, kOrange, kBrown, kPurple, kSand, kNavy, kOlive, kLight};

using Draw = std::function<void(QPainter&)>;

void Tile(QPainter& p, const QColor& c) {
    p.setPen(Qt::NoPen);
    p.setBrush(c);
    p.drawRect(1, 1, 14, 14);
    p.setPen(kBlack);
    p.setBrush(Qt::NoBrush);
    p.drawRect(0, 0, 15, 15);
}

void Fill(QPainter& p, const QColor& c) {
    p.setPen(Qt::NoPen);
    p.setBrush(c);
}

void Ink(QPainter& p, const QColor& c, int width = 1) {
    p.setPen(QPen(c, width, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    p.setBrush(Qt::NoBrush);
}

// A glyph from rows of '#' (5 wide), for the letters the icons need.
void Glyph(QPainter& p, int x, int y, const std::vector<const char*>& rows, const QColor& c,
           int scale = 1) {
    Fill(p, c);
    for (int r = 0; r < static_cast<int>(rows.size()); ++r)
        for (int k = 0; rows[r][k] != '\0'; ++k)
            if (rows[r][k] == '#')
                p.drawRect(x + k * scale, y + r * scale, scale, scale);
}

void Tree(QPainter& p, int x, const QColor& c) {  // a fir, 7 wide
    Fill(p, c);
    p.drawPolygon(QPolygon({QPoint(x + 3, 3), QPoint(x, 8), QPoint(x + 6, 8)}));
    p.drawPolygon(QPolygon({QPoint(x + 3, 5), QPoint(x, 11), QPoint(x + 6, 11)}));
    Fill(p, kBrown);
    p.drawRect(x + 2, 11, 3, 2);
}

void Tower(QPainter& p, int top) {
    Fill(p, kWhite);
    p.drawPolygon(QPolygon({QPoint(7, top), QPoint(8, top), QPoint(11, 13), QPoint(4, 13)}));
    Fill(p, kRed);
    p.drawRect(7, top - 2, 2, 2);
    Ink(p, kGrey);
    for (int y = top + 3; y < 13; y += 3) p.drawLine(6, y, 9, y);
}

const std::vector<Draw>& Icons() {
    static const std::vector<Draw> icons = {
        // 0 no category: a question mark.
        [](QPainter& p) {
            Tile(p, kGrey);
            Glyph(p, 3, 2, {".###.", "#...#", "...#.", "..#..", "..#..", ".....", "..#.."}, kWhite,
                  2);
        },
        // 1 swimming area: a swimmer over waves.
        [](QPainter& p) {
            Tile(p, kBlue);
            Fill(p, kWhite);
            p.drawEllipse(9, 3, 3, 3);
            Ink(p, kWhite, 2);
            p.drawLine(3, 8, 9, 7);
            Ink(p, kWhite);
            for (int y : {10, 13})
                for (int x = 2; x < 14; x += 4) {
                    p.drawLine(x, y, x + 1, y - 1);
                    p.drawLine(x + 2, y - 1, x + 3, y);
                }
        },
        // 2 post office: an envelope.
        [](QPainter& p) {
            Tile(p, kYellow);
            Fill(p, kWhite);
            p.drawRect(2, 4, 12, 8);
            Ink(p, kBlack);
            p.drawRect(2, 4, 11, 8);
            p.drawLine(2, 4, 7, 9);
            p.drawLine(13, 4, 8, 9);
        },
        // 3 drinking water: a tap and a drop.
        [](QPainter& p) {
            Tile(p, kSky);
            Fill(p, kGrey);
            p.drawRect(2, 3, 8, 3);
            p.drawRect(8, 3, 3, 6);
            p.drawRect(5, 1, 2, 2);
            Fill(p, kBlue);
            p.drawPolygon(QPolygon({QPoint(9, 10), QPoint(7, 13), QPoint(11, 13)}));
            p.drawRect(8, 13, 3, 1);
        },
        // 4 bank: a building with columns.
        [](QPainter& p) {
            Tile(p, kNavy);
            Fill(p, kWhite);
            p.drawPolygon(QPolygon({QPoint(8, 2), QPoint(2, 6), QPoint(13, 6)}));
            for (int x = 3; x <= 11; x += 3) p.drawRect(x, 7, 2, 5);
            p.drawRect(2, 12, 12, 2);
        },
        // 5 medical facility: a red cross.
        [](QPainter& p) {
            Tile(p, kWhite);
            Fill(p, kRed);
            p.drawRect(6, 2, 4, 12);
            p.drawRect(2, 6, 12, 4);
        },
        // 6 information: an "i".
        [](QPainter& p) {
            Tile(p, kBlue);
            Fill(p, kWhite);
            p.drawRect(7, 2, 2, 2);
            p.drawRect(6, 6, 3, 1);
            p.drawRect(7, 6, 2, 7);
            p.drawRect(6, 12, 4, 1);
        },
        // 7 danger area: a warning triangle.
        [](QPainter& p) {
            Tile(p, kWhite);
            Fill(p, kRed);
            p.drawPolygon(QPolygon({QPoint(7, 1), QPoint(8, 1), QPoint(15, 14), QPoint(0, 14)}));
            Fill(p, kYellow);
            p.drawPolygon(QPolygon({QPoint(7, 5), QPoint(8, 5), QPoint(12, 12), QPoint(3, 12)}));
            Fill(p, kBlack);
            p.drawRect(7, 6, 2, 3);
            p.drawRect(7, 10, 2, 1);
        },
        // 8 parking area: a "P".
        [](QPainter& p) {
            Tile(p, kBlue);
            Glyph(p, 4, 2, {"####.", "#...#", "#...#", "####.", "#....", "#....", "#...."}, kWhite,
                  2);
        },
        // 9 tunnel: a portal in a hill.
        [](QPainter& p) {
            Tile(p, kOlive);
            Fill(p, kGrey);
            p.drawEllipse(2, 3, 12, 14);
            Fill(p, kBlack);
            p.drawEllipse(5, 6, 6, 10);
            p.drawRect(5, 11, 6, 4);
        },
        // 10 forest: two firs.
        [](QPainter& p) {
            Tile(p, kLight);
            Tree(p, 1, kDarkGreen);
            Tree(p, 8, kGreen);
        },
        // 11 bridge: an arch over water.
        [](QPainter& p) {
            Tile(p, kSky);
            Fill(p, kBrown);
            p.drawRect(1, 5, 14, 2);
            p.drawRect(2, 7, 2, 5);
            p.drawRect(12, 7, 2, 5);
            Ink(p, kBrown);
            p.drawArc(4, 7, 8, 8, 0, 180 * 16);
            Ink(p, kBlue);
            p.drawLine(1, 13, 14, 13);
        },
        // 12 car repair: a spanner.
        [](QPainter& p) {
            Tile(p, kOrange);
            Ink(p, kWhite, 2);
            p.drawLine(4, 12, 10, 6);
            Fill(p, kWhite);
            p.drawEllipse(8, 2, 6, 6);
            Fill(p, kOrange);
            p.drawRect(11, 2, 3, 3);
        },
        // 13 car: a car from the side.
        [](QPainter& p) {
            Tile(p, kLight);
            Fill(p, kRed);
            p.drawRect(1, 7, 14, 4);
            p.drawPolygon(QPolygon({QPoint(4, 7), QPoint(6, 4), QPoint(10, 4), QPoint(12, 7)}));
            Fill(p, kSky);
            p.drawRect(6, 5, 4, 2);
            Fill(p, kBlack);
            p.drawEllipse(2, 10, 4, 4);
            p.drawEllipse(10, 10, 4, 4);
        },
        // 14 cemetery: a headstone with a cross.
        [](QPainter& p) {
            Tile(p, kGreen);
            Fill(p, kLight);
            p.drawRect(4, 5, 8, 9);
            p.drawEllipse(4, 2, 8, 6);
            Fill(p, kBlack);
            p.drawRect(7, 4, 2, 7);
            p.drawRect(5, 6, 6, 2);
        },
        // 15 bar: a cocktail glass.
        [](QPainter& p) {
            Tile(p, kPurple);
            Fill(p, kWhite);
            p.drawPolygon(QPolygon({QPoint(2, 3), QPoint(13, 3), QPoint(8, 8), QPoint(7, 8)}));
            p.drawRect(7, 8, 2, 5);
            p.drawRect(4, 13, 8, 1);
            Fill(p, kRed);
            p.drawEllipse(9, 3, 3, 3);
        },
        // 16 military: a star.
        [](QPainter& p) {
            Tile(p, kOlive);
            Fill(p, kYellow);
            p.drawPolygon(
                QPolygon({QPoint(8, 1), QPoint(10, 6), QPoint(15, 6), QPoint(11, 9), QPoint(13, 14),
                          QPoint(8, 11), QPoint(3, 14), QPoint(5, 9), QPoint(1, 6), QPoint(6, 6)}));
        },
        // 17 restaurant: a fork and a knife.
        [](QPainter& p) {
            Tile(p, kOrange);
            Fill(p, kWhite);
            for (int x : {3, 5, 7}) p.drawRect(x, 2, 1, 4);
            p.drawRect(3, 6, 5, 1);
            p.drawRect(5, 6, 1, 8);
            p.drawPolygon(QPolygon({QPoint(10, 2), QPoint(12, 2), QPoint(12, 14), QPoint(11, 14),
                                    QPoint(11, 9), QPoint(10, 9)}));
        },
        // 18 church: a church with its cross.
        [](QPainter& p) {
            Tile(p, kLight);
            Fill(p, kBrown);
            p.drawRect(7, 1, 2, 5);
            p.drawRect(5, 2, 6, 2);
            p.drawPolygon(QPolygon({QPoint(8, 5), QPoint(3, 9), QPoint(13, 9)}));
            p.drawRect(4, 9, 8, 5);
            Fill(p, kYellow);
            p.drawRect(7, 11, 2, 3);
        },
        // 19 gas station: a fuel pump.
        [](QPainter& p) {
            Tile(p, kRed);
            Fill(p, kWhite);
            p.drawRect(3, 3, 6, 11);
            p.drawRect(2, 13, 8, 1);
            Fill(p, kRed);
            p.drawRect(4, 4, 4, 3);
            Ink(p, kWhite);
            p.drawLine(9, 5, 12, 7);
            p.drawLine(12, 7, 12, 11);
            p.drawLine(12, 11, 10, 11);
        },
        // 20 tall tower.
        [](QPainter& p) {
            Tile(p, kSky);
            Tower(p, 3);
        },
        // 21 airport: an aircraft.
        [](QPainter& p) {
            Tile(p, kNavy);
            Fill(p, kWhite);
            p.drawRect(7, 1, 2, 13);
            p.drawPolygon(QPolygon({QPoint(7, 5), QPoint(1, 9), QPoint(1, 10), QPoint(14, 10),
                                    QPoint(14, 9), QPoint(8, 5)}));
            p.drawRect(5, 13, 6, 1);
        },
        // 22 heliport: an "H" in a circle.
        [](QPainter& p) {
            Tile(p, kGreen);
            Fill(p, kWhite);
            p.drawEllipse(1, 1, 14, 14);
            Fill(p, kGreen);
            p.drawRect(4, 4, 2, 8);
            p.drawRect(10, 4, 2, 8);
            p.drawRect(6, 7, 4, 2);
        },
        // 23 short tower.
        [](QPainter& p) {
            Tile(p, kSky);
            Tower(p, 8);
        },
        // 24 fishing area: a fish.
        [](QPainter& p) {
            Tile(p, kBlue);
            Fill(p, kWhite);
            p.drawEllipse(2, 5, 9, 6);
            p.drawPolygon(QPolygon({QPoint(10, 8), QPoint(14, 4), QPoint(14, 12)}));
            Fill(p, kBlack);
            p.drawRect(4, 7, 1, 1);
        },
        // 25 telephone: a handset.
        [](QPainter& p) {
            Tile(p, kGreen);
            Fill(p, kWhite);
            p.drawRect(2, 3, 4, 3);
            p.drawRect(10, 3, 4, 3);
            p.drawRect(4, 4, 8, 2);
            p.drawPolygon(QPolygon({QPoint(5, 7), QPoint(11, 7), QPoint(13, 13), QPoint(3, 13)}));
            Fill(p, kGreen);
            p.drawEllipse(6, 8, 4, 4);
        },
        // 26 fast food: a burger.
        [](QPainter& p) {
            Tile(p, kYellow);
            Fill(p, kOrange);
            p.drawChord(2, 3, 12, 8, 0, 180 * 16);
            Fill(p, kGreen);
            p.drawRect(2, 8, 12, 1);
            Fill(p, kBrown);
            p.drawRect(2, 9, 12, 2);
            Fill(p, kOrange);
            p.drawRect(3, 11, 10, 2);
        },
        // 27 beach: a sunshade on sand.
        [](QPainter& p) {
            Tile(p, kSky);
            Fill(p, kSand);
            p.drawRect(1, 12, 14, 3);
            Fill(p, kRed);
            p.drawChord(2, 2, 12, 8, 0, 180 * 16);
            Fill(p, kBrown);
            p.drawRect(7, 6, 2, 7);
            Fill(p, kYellow);
            p.drawEllipse(12, 1, 3, 3);
        },
        // 28 shopping center: a trolley.
        [](QPainter& p) {
            Tile(p, kPurple);
            Ink(p, kWhite);
            p.drawLine(1, 3, 3, 3);
            p.drawLine(3, 3, 5, 10);
            p.drawLine(5, 10, 12, 10);
            Fill(p, kWhite);
            p.drawPolygon(QPolygon({QPoint(4, 5), QPoint(14, 5), QPoint(12, 9), QPoint(5, 9)}));
            p.drawRect(5, 12, 2, 2);
            p.drawRect(11, 12, 2, 2);
        },
        // 29 waypoint: a flag.
        [](QPainter& p) {
            Tile(p, kLight);
            Fill(p, kBlack);
            p.drawRect(4, 2, 1, 12);
            p.drawRect(2, 14, 5, 1);
            Fill(p, kRed);
            p.drawPolygon(QPolygon({QPoint(5, 2), QPoint(13, 5), QPoint(5, 8)}));
        },
        // 30 park: a broad tree and a bench.
        [](QPainter& p) {
            Tile(p, kLight);
            Fill(p, kGreen);
            p.drawEllipse(2, 1, 9, 8);
            Fill(p, kBrown);
            p.drawRect(6, 8, 2, 5);
            p.drawRect(9, 10, 6, 1);
            p.drawRect(9, 12, 1, 2);
            p.drawRect(14, 12, 1, 2);
            p.drawRect(9, 11, 6, 1);
        },
    };
    return icons;
}

void Put32(std::string& out, std::uint32_t v) {
    for (int shift = 24; shift >= 0; shift -= 8) out += static_cast<char>((v >> shift) & 0xFF);
}

void Chunk(std::string& png, const char* type, const std::string& data) {
    Put32(png, static_cast<std::uint32_t>(data.size()));
    const std::string body = type + data;
    png += body;
    Put32(png, static_cast<std::uint32_t>(crc32(0, reinterpret_cast<const Bytef*>(body.data()),
                                                static_cast<uInt>(body.size()))));
}

// A palette PNG of 4 bits a pixel (Qt writes palette images with 8).
bool WriteFourBitPng(const QImage& indexed, const QString& path) {
    const int w = indexed.width(), h = indexed.height();
    std::string raw;
    for (int y = 0; y < h; ++y) {
        raw += '\0';  // no filter
        const uchar* line = indexed.constScanLine(y);
        for (int x = 0; x < w; x += 2)
            raw += static_cast<char>((line[x] << 4) | (x + 1 < w ? line[x + 1] : 0));
    }
    uLongf packedSize = compressBound(static_cast<uLong>(raw.size()));
    std::string packed(packedSize, '\0');
    if (compress2(reinterpret_cast<Bytef*>(packed.data()), &packedSize,
                  reinterpret_cast<const Bytef*>(raw.data()), static_cast<uLong>(raw.size()),
                  9) != Z_OK)
        return false;
    packed.resize(packedSize);

    std::string header, palette;
    Put32(header, static_cast<std::uint32_t>(w));
    Put32(header, static_cast<std::uint32_t>(h));
    header += std::string("\x04\x03\x00\x00\x00", 5);  // depth 4, palette, no interlace
    for (const QRgb c : indexed.colorTable()) {
        palette += static_cast<char>(qRed(c));
        palette += static_cast<char>(qGreen(c));
        palette += static_cast<char>(qBlue(c));
    }
    std::string png("\x89PNG\r\n\x1a\n", 8);
    Chunk(png, "IHDR", header);
    Chunk(png, "PLTE", palette);
    Chunk(png, "IDAT", packed);
    Chunk(png, "IEND", "");
    FILE* f = std::fopen(path.toLocal8Bit().constData(), "wb");
    if (f == nullptr)
        return false;
    const bool ok = std::fwrite(png.data(), 1, png.size(), f) == png.size();
    return std::fclose(f) == 0 && ok;
}

}  // namespace

int main(int argc, char** argv) {
    QGuiApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: make_poi_icons OUTPUT_FOLDER\n");
        return 2;
    }
    const auto& icons = Icons();
    QImage strip(16 * static_cast<int>(icons.size()), 16, QImage::Format_RGB32);
    strip.fill(kWhite);
    for (std::size_t i = 0; i < icons.size(); ++i) {
        QPainter p(&strip);
        p.setRenderHint(QPainter::Antialiasing, false);
        p.translate(16 * static_cast<int>(i), 0);
        p.setClipRect(0, 0, 16, 16);
        icons[i](p);
    }
    // Every colour drawn is a palette colour, so the 16-colour image is exact.
    QList<QRgb> table;
    for (const QColor& c : kPalette) table.push_back(c.rgb());
    const QImage indexed =
        strip.convertToFormat(QImage::Format_Indexed8, table, Qt::ThresholdDither);
    const QString path = QString::fromLocal8Bit(argv[1]) + "/poi-icons.png";
    if (!WriteFourBitPng(indexed, path)) {
        std::fprintf(stderr, "make_poi_icons: cannot write %s\n", qPrintable(path));
        return 1;
    }
    return 0;
}
