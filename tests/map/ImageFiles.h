// Image files made in memory for the map image loader's tests, benchmarks
// and fuzz seeds: real encodings of small pictures, and the same with the
// size in their header changed, as a decompression bomb declares it.
#pragma once

#include <QBuffer>
#include <QByteArray>
#include <QFile>
#include <QImage>
#include <QString>
#include <QtEndian>
#include <cstdint>

namespace satwalk::map::testing {

inline QByteArray Encode(const QImage& image, const char* format, int quality = -1) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format, quality);
    return bytes;
}

// A 1 × 1 GIF (Qt writes none): header, a two-colour table, one image.
inline QByteArray TinyGif() {
    static const unsigned char kGif[] = {'G',  'I',  'F',  '8',  '9',  'a',  0x01, 0x00, 0x01,
                                         0x00, 0x80, 0x00, 0x00, 0xFF, 0xFF, 0xFF, 0x00, 0x00,
                                         0x00, 0x2C, 0x00, 0x00, 0x00, 0x00, 0x01, 0x00, 0x01,
                                         0x00, 0x00, 0x02, 0x02, 0x44, 0x01, 0x00, 0x3B};
    return QByteArray(reinterpret_cast<const char*>(kGif), sizeof kGif);
}

inline std::uint32_t Crc32(const char* data, int size) {
    std::uint32_t crc = 0xFFFFFFFFu;
    for (int i = 0; i < size; ++i) {
        crc ^= static_cast<unsigned char>(data[i]);
        for (int k = 0; k < 8; ++k) crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1u)));
    }
    return ~crc;
}

// `file` (as Encode or TinyGif made it) with its header declaring
// width × height; the picture data stay those of the small image.
inline QByteArray WithDeclaredSize(QByteArray file, const QByteArray& format, int width,
                                   int height) {
    auto* d = reinterpret_cast<uchar*>(file.data());
    if (format == "png") {  // IHDR's width and height, then its CRC again
        qToBigEndian<std::uint32_t>(static_cast<std::uint32_t>(width), d + 16);
        qToBigEndian<std::uint32_t>(static_cast<std::uint32_t>(height), d + 20);
        qToBigEndian<std::uint32_t>(Crc32(file.constData() + 12, 17), d + 29);
    } else if (format == "bmp") {
        qToLittleEndian<std::int32_t>(width, d + 18);
        qToLittleEndian<std::int32_t>(height, d + 22);
    } else if (format == "gif") {  // the screen and the one image of TinyGif
        for (int at : {6, 24}) {
            qToLittleEndian<std::uint16_t>(static_cast<std::uint16_t>(width), d + at);
            qToLittleEndian<std::uint16_t>(static_cast<std::uint16_t>(height), d + at + 2);
        }
    } else if (format == "jpeg") {  // the start-of-frame segment
        for (int i = 2; i + 8 < file.size(); ++i) {
            if (d[i] == 0xFF && (d[i + 1] == 0xC0 || d[i + 1] == 0xC2)) {
                qToBigEndian<std::uint16_t>(static_cast<std::uint16_t>(height), d + i + 5);
                qToBigEndian<std::uint16_t>(static_cast<std::uint16_t>(width), d + i + 7);
                break;
            }
        }
    }
    return file;
}

inline bool WriteFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
           file.write(bytes) == bytes.size();
}

// A picture that does not compress to nothing: colour ramps and a pattern.
inline QImage BusyPicture(int width, int height) {
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < width; ++x)
            row[x] = qRgb(x * 255 / width, y * 255 / height, ((x ^ y) * 37 + x * y) & 0xFF);
    }
    return image;
}

}  // namespace satwalk::map::testing
