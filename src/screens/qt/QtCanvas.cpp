#include "QtCanvas.h"

#include <QFile>
#include <QFontDatabase>
#include <QFontMetrics>
#include <QPolygon>
#include <QPolygonF>
#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

namespace satwalk::screens {

namespace {

QColor ToQ(Colour c) {
    return QColor(c.r, c.g, c.b);
}
QRect ToQ(Rect r) {
    return QRect(r.left, r.top, r.Width(), r.Height());
}

// Fonts are asked for by their cell height (ascent + descent, as a device
// context's font height); Qt sizes fonts by the em. The face's ratio of the
// two is measured once.
struct FontCache {
    QString family;
    double cellPerPixel = 1.0;
    std::map<std::pair<int, int>, QFont> fonts;
    std::map<std::pair<int, int>, QFontMetrics> metrics;

    FontCache() {
        family = ScreenFontFamily();
        QFont probe(family);
        probe.setPixelSize(100);
        const QFontMetricsF fm(probe);
        if (fm.height() > 0)
            cellPerPixel = fm.height() / 100.0;
    }

    const QFont& Get(Font f) {
        const auto key = std::make_pair(f.height, f.weight);
        auto it = fonts.find(key);
        if (it != fonts.end())
            return it->second;
        QFont q(family);
        q.setPixelSize(std::max(1, static_cast<int>(f.height / cellPerPixel + 0.5)));
        q.setWeight(f.weight >= 600 ? QFont::Bold : QFont::Normal);
        q.setHintingPreference(QFont::PreferFullHinting);
        metrics.emplace(key, QFontMetrics(q));
        return fonts.emplace(key, q).first->second;
    }
    const QFontMetrics& Metrics(Font f) {
        Get(f);
        return metrics.at(std::make_pair(f.height, f.weight));
    }
};

FontCache& Fonts() {
    static FontCache cache;
    return cache;
}

}  // namespace

QString ScreenFontFamily() {
    static const QString family = [] {
        const QStringList have = QFontDatabase::families();
        for (const char* name : {"Noto Sans CJK SC", "Noto Sans SC", "WenQuanYi Micro Hei",
                                 "Source Han Sans SC", "Noto Serif CJK SC"}) {
            if (have.contains(QString::fromLatin1(name)))
                return QString::fromLatin1(name);
        }
        return QFontDatabase::systemFont(QFontDatabase::GeneralFont).family();
    }();
    return family;
}

// ---- bitmaps --------------------------------------------------------------

bool ScreenBitmaps::Load(bool hi, const QString& folder, BitmapId* failedId) {
    for (int i = 0; i < kBuiltInBitmapCount; ++i) {
        const BitmapId id{i};
        const QString name = QString::fromStdString(BitmapFileName(id, hi)) + ".png";
        QImage image(":/satwalk/bitmaps/" + name);
        if (image.isNull() && !folder.isEmpty())
            image = QImage(folder + "/" + name);
        const Size want = BitmapSize(id, hi);
        if (image.isNull() || image.width() != want.width || image.height() != want.height) {
            if (failedId)
                *failedId = id;
            return false;
        }
        Set(id, std::move(image));
    }
    return true;
}

const QImage& ScreenBitmaps::Image(BitmapId id) const {
    static const QImage kNone;
    if (id.value < 0 || id.value >= static_cast<int>(entries_.size()))
        return kNone;
    return entries_[static_cast<std::size_t>(id.value)].image;
}

void ScreenBitmaps::Set(BitmapId id, QImage image) {
    if (id.value < 0)
        return;
    if (id.value >= static_cast<int>(entries_.size()))
        entries_.resize(static_cast<std::size_t>(id.value) + 1);
    Entry& e = entries_[static_cast<std::size_t>(id.value)];
    e.image = image.convertToFormat(QImage::Format_RGB32);
    e.keyed = QImage();
}

BitmapId ScreenBitmaps::Add(QImage image) {
    const BitmapId id{static_cast<int>(entries_.size())};
    Set(id, std::move(image));
    return id;
}

const QImage& ScreenBitmaps::Keyed(BitmapId id, Colour key) const {
    if (id.value < 0 || id.value >= static_cast<int>(entries_.size()))
        return Image(id);
    Entry& e = entries_[static_cast<std::size_t>(id.value)];
    if (e.keyed.isNull() || !(e.keyedWith == key)) {
        QImage out = e.image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
        const QRgb k = qRgb(key.r, key.g, key.b);
        for (int y = 0; y < out.height(); ++y) {
            auto* line = reinterpret_cast<QRgb*>(out.scanLine(y));
            for (int x = 0; x < out.width(); ++x)
                if ((line[x] | 0xFF000000u) == k)
                    line[x] = 0;
        }
        e.keyed = std::move(out);
        e.keyedWith = key;
    }
    return e.keyed;
}

// ---- canvas ------------------------------------------------------------------

QSize LogicalImageSize(const QImage& image) {
    const QSizeF size = image.deviceIndependentSize();
    return QSize(static_cast<int>(size.width()), static_cast<int>(size.height()));
}

QtCanvas::QtCanvas(QImage& target, const ScreenBitmaps& bitmaps)
    : target_(target), bitmaps_(bitmaps), painter_(&target) {
    painter_.setClipRect(QRect(QPoint(0, 0), LogicalImageSize(target)));
    const qreal ratio = target.devicePixelRatio();
    smoothBitmaps_ = ratio != std::floor(ratio);
}

QtCanvas::~QtCanvas() {
    painter_.end();
}

namespace {

// The one picture kept (the world map's land at its scale), in device pixels
// of the canvas it was made for.
struct KeptPicture {
    std::uint64_t key = 0;
    qreal ratio = 0;
    QRect area;  // device pixels of the picture's own coordinates
    QImage image;
};

// A quarter of a view more on every side is kept, up to this much memory:
// a pan copies for a while, and a new scale costs little more to paint.
constexpr qint64 kMaxKeptPictureBytes = qint64{128} << 20;  // a 4K screen: 75 MB

}  // namespace

bool QtCanvas::DrawKeptPicture(std::uint64_t key, Rect view, PointF shift,
                               const PicturePainter& paint) {
    const qreal ratio = target_.devicePixelRatio();
    if (ratio <= 1.0 || ratio != std::floor(ratio) || view.Width() <= 0 || view.Height() <= 0)
        return false;
    // The shift on device pixels; a picture too far out for them is drawn
    // as ever.
    const double sx = std::round(shift.x * ratio), sy = std::round(shift.y * ratio);
    if (!(std::fabs(sx) < 1e9 && std::fabs(sy) < 1e9))
        return false;
    const int r = static_cast<int>(ratio);
    const QRect need(view.left * r - static_cast<int>(sx), view.top * r - static_cast<int>(sy),
                     view.Width() * r, view.Height() * r);
    thread_local KeptPicture kept;
    if (kept.key != key || kept.ratio != ratio || !kept.area.contains(need)) {
        const QRect area = need.adjusted(-need.width() / 4, -need.height() / 4, need.width() / 4,
                                         need.height() / 4);
        // Kept without a margin, every pan would paint it anew: drawn as ever.
        if (qint64{area.width()} * area.height() * 4 > kMaxKeptPictureBytes)
            return false;
        QImage image(area.size(), QImage::Format_RGB32);
        if (image.isNull())
            return false;
        image.setDevicePixelRatio(ratio);
        {
            QtCanvas picture(image, bitmaps_);
            picture.painter_.setClipping(false);
            picture.painter_.translate(-area.left() / ratio, -area.top() / ratio);
            // The area in the picture's own pixels, rounded outward.
            const Rect logical{static_cast<int>(std::floor(area.left() / ratio)),
                               static_cast<int>(std::floor(area.top() / ratio)),
                               static_cast<int>(std::ceil((area.right() + 1) / ratio)),
                               static_cast<int>(std::ceil((area.bottom() + 1) / ratio))};
            paint(picture, PointF{sx / ratio, sy / ratio}, logical);
        }
        kept = KeptPicture{key, ratio, area, std::move(image)};
    }
    const QRect from = need.translated(-kept.area.topLeft());
    painter_.drawImage(QRectF(view.left, view.top, view.Width(), view.Height()), kept.image,
                       QRectF(from));
    return true;
}

Rect QtCanvas::Bounds() const {
    const QSize size = LogicalImageSize(target_);
    return Rect{0, 0, size.width(), size.height()};
}

void QtCanvas::ApplyPen(Pen pen) {
    if (pen.null || pen.width <= 0) {
        painter_.setPen(Qt::NoPen);
    } else {
        painter_.setPen(
            QPen(ToQ(pen.colour), pen.width, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
    }
}

void QtCanvas::ApplyBrush(Brush brush) {
    if (brush.null) {
        painter_.setBrush(Qt::NoBrush);
    } else {
        painter_.setBrush(ToQ(brush.colour));
    }
}

void QtCanvas::FillRect(Rect rect, Colour colour) {
    painter_.fillRect(ToQ(rect), ToQ(colour));
}

void QtCanvas::Line(Point from, Point to, Pen pen) {
    Line(PointF{double(from.x), double(from.y)}, to, pen);
}

void QtCanvas::Line(PointF from, Point to, Pen pen) {
    if (pen.null || pen.width <= 0)
        return;
    ApplyPen(pen);
    const bool straight = from.x == to.x || from.y == to.y;
    painter_.setRenderHint(QPainter::Antialiasing, !straight);
    // Pixel centres, so that odd-width straight lines stay crisp.
    const double o = (pen.width % 2) ? 0.5 : 0.0;
    painter_.drawLine(QPointF(from.x + o, from.y + o), QPointF(to.x + o, to.y + o));
}

void QtCanvas::Ellipse(Rect box, Pen pen, Brush brush) {
    if (box.Width() <= 0 || box.Height() <= 0)
        return;
    ApplyBrush(brush);
    painter_.setRenderHint(QPainter::Antialiasing, true);
    const bool outlined = !(pen.null || pen.width <= 0);
    // A disc outlined in its own colour is one filled disc. On a canvas with
    // more device pixels than its own, stroking the outline would cost most
    // of the disc's time; at a pixel to a pixel it is drawn as ever.
    if (outlined && !brush.null && brush.colour == pen.colour &&
        target_.devicePixelRatio() != 1.0) {
        painter_.setPen(Qt::NoPen);
        painter_.drawEllipse(QRectF(box.left, box.top, box.Width(), box.Height()));
        return;
    }
    ApplyPen(pen);
    const double inset = outlined ? pen.width / 2.0 : 0.0;
    painter_.drawEllipse(QRectF(box.left + inset, box.top + inset, box.Width() - 2 * inset,
                                box.Height() - 2 * inset));
}

void QtCanvas::Rectangle(Rect box, Pen pen, Brush brush) {
    if (box.Width() <= 0 || box.Height() <= 0)
        return;
    painter_.setRenderHint(QPainter::Antialiasing, false);
    if (!brush.null)
        painter_.fillRect(ToQ(box), ToQ(brush.colour));
    if (!(pen.null || pen.width <= 0)) {
        ApplyPen(pen);
        painter_.setBrush(Qt::NoBrush);
        painter_.drawRect(QRectF(box.left + 0.5, box.top + 0.5, box.Width() - 1, box.Height() - 1));
    }
}

void QtCanvas::Polygon(std::span<const Point> points, Pen pen, Brush brush) {
    if (points.empty())
        return;
    QPolygon poly;
    poly.reserve(static_cast<int>(points.size()));
    for (const Point& p : points) poly << QPoint(p.x, p.y);
    ApplyPen(pen);
    ApplyBrush(brush);
    painter_.setRenderHint(QPainter::Antialiasing, true);
    painter_.drawPolygon(poly);
}

void QtCanvas::PolygonF(std::span<const PointF> points, Pen pen, Brush brush) {
    // At a whole pixel to a pixel the rounded outline is the one drawn.
    if (target_.devicePixelRatio() == 1.0) {
        Canvas::PolygonF(points, pen, brush);
        return;
    }
    if (points.size() < 3)
        return;
    QPolygonF poly;
    poly.reserve(static_cast<qsizetype>(points.size()));
    for (const PointF& p : points) poly << QPointF(p.x, p.y);
    ApplyPen(pen);
    ApplyBrush(brush);
    painter_.setRenderHint(QPainter::Antialiasing, true);
    painter_.drawPolygon(poly);
}

void QtCanvas::Polyline(std::span<const Point> points, Pen pen) {
    if (points.size() < 2 || pen.null || pen.width <= 0)
        return;
    QPolygon poly;
    poly.reserve(static_cast<int>(points.size()));
    for (const Point& p : points) poly << QPoint(p.x, p.y);
    ApplyPen(pen);
    painter_.setRenderHint(QPainter::Antialiasing, true);
    painter_.drawPolyline(poly);
}

void QtCanvas::SelectFont(Font font) {
    font_ = font;
    painter_.setFont(Fonts().Get(font));
}

Size QtCanvas::MeasureText(std::string_view text) {
    const QFontMetrics& fm = Fonts().Metrics(font_);
    const QString s = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    return Size{fm.horizontalAdvance(s), fm.height()};
}

void QtCanvas::DrawText(std::string_view text, Rect box, unsigned flags, Colour colour) {
    int align = 0;
    align |= (flags & kTextCenter)  ? Qt::AlignHCenter
             : (flags & kTextRight) ? Qt::AlignRight
                                    : Qt::AlignLeft;
    align |= (flags & kTextVCenter)  ? Qt::AlignVCenter
             : (flags & kTextBottom) ? Qt::AlignBottom
                                     : Qt::AlignTop;
    painter_.setPen(ToQ(colour));
    painter_.setRenderHint(QPainter::TextAntialiasing, true);
    painter_.drawText(ToQ(box), align | Qt::TextDontClip | Qt::TextSingleLine,
                      QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
}

void QtCanvas::Blit(const Bitmap& bitmap, Rect src, Point dst) {
    painter_.setRenderHint(QPainter::SmoothPixmapTransform, smoothBitmaps_);
    painter_.drawImage(QPoint(dst.x, dst.y), bitmaps_.Image(bitmap.id), ToQ(src));
}

void QtCanvas::StretchBlit(const Bitmap& bitmap, Rect src, Rect dst) {
    painter_.setRenderHint(QPainter::SmoothPixmapTransform, true);
    painter_.drawImage(ToQ(dst), bitmaps_.Image(bitmap.id), ToQ(src));
}

void QtCanvas::TransparentBlit(const Bitmap& bitmap, Rect src, Point dst, Colour key) {
    painter_.setRenderHint(QPainter::SmoothPixmapTransform, smoothBitmaps_);
    painter_.drawImage(QPoint(dst.x, dst.y), bitmaps_.Keyed(bitmap.id, key), ToQ(src));
}

void QtCanvas::PixelBlock(Point dst, Size size, const std::uint32_t* pixels, int stride) {
    if (size.width <= 0 || size.height <= 0 || pixels == nullptr)
        return;
    const QImage block(reinterpret_cast<const uchar*>(pixels), size.width, size.height, stride * 4,
                       QImage::Format_RGB32);
    painter_.setRenderHint(QPainter::SmoothPixmapTransform, smoothBitmaps_);
    painter_.drawImage(QPoint(dst.x, dst.y), block);
}

}  // namespace satwalk::screens

namespace satwalk::screens {

void PrepareScreenContext(ScreenContext& ctx, int width, int height, int dpi,
                          const ScreenBitmaps& bitmaps) {
    ctx.dpi = dpi;
    ctx.baseTextHeight = BaseTextHeightForDpi(dpi);
    AssignBitmapHandles(ctx);
    QImage scratch(1, 1, QImage::Format_RGB32);
    QtCanvas measure(scratch, bitmaps);
    UpdateScreenLayout(measure, ctx, Rect{0, 0, width, height});
}

void RenderCurrentScreen(QImage& image, ScreenContext& ctx, const gps::GpsState& gps,
                         const ScreenBitmaps& bitmaps) {
    const int w = std::max(ctx.frame.Width(), 1), h = std::max(ctx.frame.Height(), 1);
    if (LogicalImageSize(image) != QSize(w, h) || image.format() != QImage::Format_RGB32) {
        // A picture drawn larger keeps its ratio of device pixels.
        const qreal ratio = image.isNull() ? 1.0 : image.devicePixelRatio();
        image = QImage(static_cast<int>(std::ceil(w * ratio)),
                       static_cast<int>(std::ceil(h * ratio)), QImage::Format_RGB32);
        image.setDevicePixelRatio(ratio);
    }
    QtCanvas canvas(image, bitmaps);
    PaintCurrentScreen(canvas, ctx, gps);
}

}  // namespace satwalk::screens
