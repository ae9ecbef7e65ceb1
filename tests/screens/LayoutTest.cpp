// Every screen at window sizes far from the handheld's, in both pixel sets:
// nothing drawn leaves its area (the screen's own drawing stays in the
// content rectangle, the tool strip's in the frame), no text spills out of
// its box, no two text boxes overlap, and lines under a label are covered.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "TestSupport.h"

namespace satwalk::screens {
namespace {

using K = CanvasCall::Kind;

Rect Union(Rect a, Rect b) {
    return Rect{std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
                std::max(a.bottom, b.bottom)};
}

bool Inside(Rect inner, Rect outer) {
    return inner.left >= outer.left && inner.top >= outer.top && inner.right <= outer.right &&
           inner.bottom <= outer.bottom;
}

bool Overlap(Rect a, Rect b) {
    return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

// The pixels a call can touch; empty for calls that draw nothing.
Rect Extent(const CanvasCall& c) {
    switch (c.kind) {
        case K::FillRect:
        case K::Text:
            return c.rect;
        case K::Ellipse:
        case K::Rectangle:
            return (c.pen.null && c.brush.null) ? Rect{} : c.rect;
        case K::Line: {
            const int h = c.pen.width / 2;
            return Rect{std::min(c.from.x, c.to.x) - h, std::min(c.from.y, c.to.y) - h,
                        std::max(c.from.x, c.to.x) + h + 1, std::max(c.from.y, c.to.y) + h + 1};
        }
        case K::Polygon:
        case K::Polyline: {
            Rect r{c.points[0].x, c.points[0].y, c.points[0].x + 1, c.points[0].y + 1};
            for (Point p : c.points) r = Union(r, Rect{p.x, p.y, p.x + 1, p.y + 1});
            return r;
        }
        case K::Blit:
        case K::TransparentBlit:
            return Rect{c.to.x, c.to.y, c.to.x + c.rect.Width(), c.to.y + c.rect.Height()};
        case K::StretchBlit:
            return c.dst;
        case K::PixelBlock:
            return c.rect;
    }
    return Rect{};
}

// Index of the first call of the tool strip: everything before it is the
// screen's own drawing.
std::size_t FrameStart(const std::vector<CanvasCall>& calls) {
    for (std::size_t i = 0; i < calls.size(); ++i) {
        if (calls[i].kind == K::TransparentBlit &&
            (calls[i].bitmap == BitmapId::ToolStripPortrait ||
             calls[i].bitmap == BitmapId::ToolStripLandscape))
            return i;
    }
    return calls.size();
}

// Points along a straight line or a ring's outline, one per pixel or so.
std::vector<Point> Stroke(const CanvasCall& c) {
    std::vector<Point> out;
    if (c.kind == K::Line) {
        const int n = std::max(std::abs(c.to.x - c.from.x), std::abs(c.to.y - c.from.y)) + 1;
        for (int i = 0; i <= n; ++i) {
            out.push_back(Point{c.from.x + (c.to.x - c.from.x) * i / n,
                                c.from.y + (c.to.y - c.from.y) * i / n});
        }
    } else if (c.kind == K::Ellipse && !c.pen.null && c.pen.colour != kWhite) {
        const double cx = (c.rect.left + c.rect.right) / 2.0;
        const double cy = (c.rect.top + c.rect.bottom) / 2.0;
        const double r = c.rect.Width() / 2.0;
        const int n = std::max(8, static_cast<int>(r * 7));
        for (int i = 0; i < n; ++i) {
            const double a = 2 * 3.141592653589793 * i / n;
            out.push_back(Point{static_cast<int>(cx + r * std::cos(a)),
                                static_cast<int>(cy + r * std::sin(a))});
        }
    }
    return out;
}

bool Contains(Rect r, Point p) {
    return p.x >= r.left && p.x < r.right && p.y >= r.top && p.y < r.bottom;
}

// Whether a later call paints the point over with something opaque.
bool PaintedOver(const CanvasCall& c, Point p) {
    if (c.kind == K::FillRect)
        return Contains(c.rect, p);
    if ((c.kind == K::Rectangle || c.kind == K::Ellipse) && !c.brush.null) {
        if (!Contains(c.rect, p))
            return false;
        if (c.kind == K::Rectangle)
            return true;
        const double cx = (c.rect.left + c.rect.right) / 2.0;
        const double cy = (c.rect.top + c.rect.bottom) / 2.0;
        const double r = c.rect.Width() / 2.0 - 1;
        return (p.x - cx) * (p.x - cx) + (p.y - cy) * (p.y - cy) < r * r;
    }
    return false;
}

// The first point of an earlier line or ring that still shows inside the
// text's box (less a pixel of slack on each side) when the text is drawn.
bool LineShowsUnder(const std::vector<CanvasCall>& calls, std::size_t textIndex, Point* where) {
    const Rect box = calls[textIndex].rect;
    const Rect inner{box.left + 2, box.top + 2, box.right - 2, box.bottom - 2};
    for (std::size_t j = 0; j < textIndex; ++j) {
        for (Point p : Stroke(calls[j])) {
            if (!Contains(inner, p))
                continue;
            bool covered = false;
            for (std::size_t k = j + 1; k < textIndex && !covered; ++k)
                covered = PaintedOver(calls[k], p);
            if (!covered) {
                *where = p;
                return true;
            }
        }
    }
    return false;
}

gps::GpsState DrivingFix() {
    gps::GpsState g;
    SET_FIELD(g.latitude, "3014.8091");
    g.northSouth = 'N';
    SET_FIELD(g.longitude, "12009.7927");
    g.eastWest = 'E';
    SET_FIELD(g.speedKnots, "25.28");
    SET_FIELD(g.course, "47.5");
    SET_FIELD(g.altitude, "1234.5");
    SET_FIELD(g.hdop, "1.54");
    SET_FIELD(g.vdop, "2.39");
    SET_FIELD(g.pdop, "2.84");
    g.fixMode = '3';
    SET_FIELD(g.satellitesUsed, "4");
    SET_FIELD(g.satellitesInView, "4");
    // Far apart and away from the axes and labels.
    test::SetSatellite(g, 0, "02", "20", "40", "38");
    test::SetSatellite(g, 1, "11", "35", "150", "45");
    test::SetSatellite(g, 2, "19", "15", "220", "0");
    test::SetSatellite(g, 3, "27", "50", "320", "22");
    return g;
}

struct OddSize {
    int width, height;
};
constexpr OddSize kOddSizes[] = {{900, 700}, {1024, 600}, {600, 900}, {800, 480}};
constexpr int kDpis[] = {192, 96};
constexpr int kScreens[] = {kScreenGpsInfo, kScreenSkyPlot, kScreenCompass, kScreenSpeedometer};

TEST(OddWindowSizes, DrawingsStayInTheirAreasAndTextsApart) {
    gps::GpsState fix = DrivingFix();
    for (const OddSize size : kOddSizes) {
        for (const int dpi : kDpis) {
            for (const int screen : kScreens) {
                for (const auto& [alarmOn, course] :
                     {std::pair{false, "47.5"}, std::pair{true, "135"}, std::pair{true, "290"}}) {
                    const test::Variant v{"odd", size.width, size.height, dpi};
                    ScreenContext ctx = test::MakeContext(v);
                    ctx.currentScreen = screen;
                    ctx.speedAlarmOn = alarmOn;
                    ctx.speedAlarmLimit = 120;
                    SET_FIELD(fix.course, course);
                    RecordingCanvas canvas(ctx.frame, RecordingCanvas::Metrics::Proportional);
                    PaintCurrentScreen(canvas, ctx, fix);
                    const std::string where =
                        std::to_string(size.width) + "x" + std::to_string(size.height) + "@" +
                        std::to_string(dpi) + " screen " + std::to_string(screen);
                    const auto& calls = canvas.Calls();
                    const std::size_t frameStart = FrameStart(calls);
                    ASSERT_LT(frameStart, calls.size()) << where;

                    std::vector<const CanvasCall*> texts;
                    std::vector<Rect> shapes;  // filled polygons: arrows, needles
                    for (std::size_t i = 0; i < calls.size(); ++i) {
                        const CanvasCall& c = calls[i];
                        const Rect e = Extent(c);
                        if (e.Width() <= 0 || e == ctx.frame)
                            continue;
                        const Rect area = i < frameStart ? ctx.screen : ctx.frame;
                        EXPECT_TRUE(Inside(e, area))
                            << where << ": call " << i << " kind " << static_cast<int>(c.kind)
                            << " " << c.text << " at " << e << " outside " << area;
                        if (c.kind == K::Polygon)
                            shapes.push_back(e);
                        if (c.kind != K::Text)
                            continue;
                        const Size need = RecordingCanvas::MeasureWith(
                            c.font, c.text, RecordingCanvas::Metrics::Proportional);
                        EXPECT_LE(need.width, c.rect.Width() + 1)
                            << where << ": \"" << c.text << "\" wider than its box " << c.rect;
                        for (const CanvasCall* other : texts) {
                            EXPECT_FALSE(Overlap(other->rect, c.rect))
                                << where << ": \"" << other->text << "\" " << other->rect
                                << " overlaps \"" << c.text << "\" " << c.rect;
                        }
                        texts.push_back(&c);
                        Point crossing;
                        EXPECT_FALSE(LineShowsUnder(calls, i, &crossing))
                            << where << ": \"" << c.text << "\" " << c.rect << " crossed at "
                            << crossing;
                    }
                    for (const CanvasCall* t : texts) {
                        for (const Rect shape : shapes) {
                            EXPECT_FALSE(Overlap(shape, t->rect))
                                << where << ": \"" << t->text << "\" " << t->rect
                                << " meets a shape " << shape;
                        }
                    }
                }
            }
        }
    }
}

}  // namespace
}  // namespace satwalk::screens
