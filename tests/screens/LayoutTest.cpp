// Every screen at window sizes far from the handheld's, in both pixel sets:
// nothing drawn leaves its area (the screen's own drawing stays in the
// content rectangle, the tool strip's in the frame), no text is wider than
// its box, no two text boxes overlap, no text lies on a filled shape and no
// line runs through a text.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "TestSupport.h"

namespace satwalk::screens {
namespace {

using K = CanvasCall::Kind;

bool Inside(Rect in, Rect out) {
    return in.left >= out.left && in.top >= out.top && in.right <= out.right &&
           in.bottom <= out.bottom;
}

bool Overlap(Rect a, Rect b) {
    return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

// The pixels a call can touch; empty for calls that draw nothing.
Rect Extent(const CanvasCall& c) {
    switch (c.kind) {
        case K::Line: {
            const int h = c.pen.width / 2;
            return Rect{std::min(c.from.x, c.to.x) - h, std::min(c.from.y, c.to.y) - h,
                        std::max(c.from.x, c.to.x) + h + 1, std::max(c.from.y, c.to.y) + h + 1};
        }
        case K::Polygon:
        case K::Polyline: {
            Rect r{c.points[0].x, c.points[0].y, c.points[0].x, c.points[0].y};
            for (Point p : c.points)
                r = Rect{std::min(r.left, p.x), std::min(r.top, p.y), std::max(r.right, p.x + 1),
                         std::max(r.bottom, p.y + 1)};
            return r;
        }
        case K::Blit:
        case K::TransparentBlit:
            return Rect{c.to.x, c.to.y, c.to.x + c.rect.Width(), c.to.y + c.rect.Height()};
        case K::StretchBlit:
            return c.dst;
        case K::Ellipse:
        case K::Rectangle:
            return (c.pen.null && c.brush.null) ? Rect{} : c.rect;
        default:
            return c.rect;
    }
}

gps::GpsState DrivingFix() {
    gps::GpsState g;
    SET_FIELD(g.latitude, "3014.8091");
    g.northSouth = 'N';
    SET_FIELD(g.longitude, "12009.7927");
    g.eastWest = 'E';
    SET_FIELD(g.speedKnots, "25.28");
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

TEST(OddWindowSizes, DrawingsStayInTheirAreasAndTextsApart) {
    constexpr std::pair<int, int> kSizes[] = {{900, 700}, {1024, 600}, {600, 900}, {800, 480}};
    constexpr auto kProportional = RecordingCanvas::Metrics::Proportional;
    gps::GpsState fix = DrivingFix();
    for (const auto& [width, height] : kSizes) {
        for (const int dpi : {192, 96}) {
            for (const int screen :
                 {kScreenGpsInfo, kScreenSkyPlot, kScreenCompass, kScreenSpeedometer}) {
                // The course turns the arrows and the compass letters.
                for (const char* course : {"47.5", "135", "290"}) {
                    ScreenContext ctx = test::MakeContext({"odd", width, height, dpi});
                    ctx.display.currentScreen = screen;
                    ctx.display.speedAlarmOn = true;
                    ctx.display.speedAlarmLimit = 120;
                    SET_FIELD(fix.course, course);
                    RecordingCanvas canvas(ctx.frame, kProportional);
                    ctx.display.fix = gps::ReadFix(fix);
                    PaintCurrentScreen(canvas, ctx, fix);
                    const std::string where = std::to_string(width) + "x" + std::to_string(height) +
                                              "@" + std::to_string(dpi) + " screen " +
                                              std::to_string(screen) + " course " + course;

                    // The tool strip starts with its bitmap; before it is the screen's own.
                    const auto& calls = canvas.Calls();
                    std::size_t frameStart = 0;
                    while (frameStart < calls.size() &&
                           !(calls[frameStart].kind == K::TransparentBlit &&
                             (calls[frameStart].bitmap == BitmapId::ToolStripPortrait ||
                              calls[frameStart].bitmap == BitmapId::ToolStripLandscape)))
                        ++frameStart;
                    ASSERT_LT(frameStart, calls.size()) << where;

                    std::vector<const CanvasCall*> texts;
                    std::vector<Rect> shapes;
                    for (std::size_t i = 0; i < calls.size(); ++i) {
                        const CanvasCall& c = calls[i];
                        const Rect e = Extent(c);
                        if (e.Width() <= 0 || e == ctx.frame)
                            continue;
                        const Rect area = i < frameStart ? ctx.screen : ctx.frame;
                        EXPECT_TRUE(Inside(e, area)) << where << ": call " << i << " \"" << c.text
                                                     << "\" " << e << " out of " << area;
                        if (c.kind == K::Polygon)
                            shapes.push_back(e);
                        if (c.kind != K::Text)
                            continue;
                        EXPECT_LE(RecordingCanvas::MeasureWith(c.font, c.text, kProportional).width,
                                  c.rect.Width() + 1)
                            << where << ": \"" << c.text << "\" wider than " << c.rect;
                        for (const CanvasCall* other : texts) {
                            EXPECT_FALSE(Overlap(other->rect, c.rect))
                                << where << ": \"" << other->text << "\" " << other->rect
                                << " overlaps \"" << c.text << "\" " << c.rect;
                        }
                        texts.push_back(&c);
                        // An axis or rule through the text must be painted over first.
                        const Rect core{c.rect.left + 2, c.rect.top + 2, c.rect.right - 2,
                                        c.rect.bottom - 2};
                        for (std::size_t j = 0; j < i; ++j) {
                            if (calls[j].kind != K::Line || !Overlap(Extent(calls[j]), core))
                                continue;
                            bool covered = false;
                            for (std::size_t k = j + 1; k < i; ++k)
                                covered = covered || (calls[k].kind == K::FillRect &&
                                                      Inside(core, calls[k].rect));
                            EXPECT_TRUE(covered)
                                << where << ": \"" << c.text << "\" crossed by call " << j;
                        }
                    }
                    for (const CanvasCall* t : texts)
                        for (const Rect shape : shapes)
                            EXPECT_FALSE(Overlap(shape, t->rect))
                                << where << ": \"" << t->text << "\" on a shape " << shape;
                }
            }
        }
    }
}

}  // namespace
}  // namespace satwalk::screens
