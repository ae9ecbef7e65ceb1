// Any bytes as a map image: the loader returns a reason or an image within
// the budget, never a crash or an allocation past it; a loaded image paints
// its visible part at a couple of zooms.
#include <QGuiApplication>
#include <QPainter>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "ImageViewport.h"
#include "MapImage.h"

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    static QGuiApplication app(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace satwalk::map;
    const QByteArray bytes =
        QByteArray::fromRawData(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    MapImage image;
    const ImageLoadError error = LoadMapImageData(bytes, image);
    if ((error == ImageLoadError::None) == image.IsNull())
        __builtin_trap();
    if (image.IsNull())
        return 0;
    const ImageSize s = image.Size();
    if (std::int64_t{s.width} * s.height * 4 > kMaxImageBytes)
        __builtin_trap();
    QImage target(64, 48, QImage::Format_RGB32);
    QPainter painter(&target);
    for (double zoom : {0.1, 3.0}) {
        const VisiblePart part = ComputeVisiblePart(
            s, s.width * zoom, s.height * zoom, {s.width * 0.5, s.height * 0.5}, {0, 0, 64, 48});
        DrawMapImage(painter, image, part);
    }
    return 0;
}
