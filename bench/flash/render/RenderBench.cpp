// Drawing a busy frame: 300 curved shapes, as our canvas and as QPainter do it. Ratios within one run are
// what counts; the goal is at most half of QPainter's time.
#include "flash/render/Canvas.h"
#include "flash/render/Filters.h"

#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QTransform>

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstring>
#include <numbers>
#include <random>
#include <utility>
#include <vector>

namespace
{

using namespace flash;
using render::Canvas;

constexpr int kShapes = 300;

enum class Style { Fills, Shared, Strokes, Gradients };

struct Scene {
    struct Item {
        std::shared_ptr<const swf::Shape> shape;
        QPainterPath outer, inner;
        double x, y; // of the centre, as a part of the stage
        swf::Rgba color;
    };
    std::vector<Item> items;
};

// A blob around the origin: curves through points at random distances. Some 60 pixels across, with a smaller
// one inside that shares no edge, or (Shared) fills the hole.
Scene makeScene(Style style)
{
    std::mt19937 random(42);
    std::uniform_real_distribution<double> part(0, 1);
    Scene scene;
    for (int i = 0; i < kShapes; ++i) {
        auto shape = std::make_shared<swf::Shape>();
        Scene::Item item;
        item.x = part(random);
        item.y = part(random);
        item.color = {static_cast<std::uint8_t>(random()), static_cast<std::uint8_t>(random()),
                      static_cast<std::uint8_t>(random()), 255};
        swf::ShapeLayer layer;
        swf::FillStyle fill;
        fill.color = item.color;
        if (style == Style::Gradients) {
            fill.kind = swf::FillStyle::Kind::RadialGradient;
            fill.gradient.stops = {{0, {255, 255, 255, 255}}, {255, item.color}};
            fill.matrix = {0.05, 0, 0, 0.05, 0, 0};
        }
        layer.fills.push_back(fill);
        fill.kind = swf::FillStyle::Kind::Solid;
        fill.color = {item.color.b, item.color.r, item.color.g, 255};
        layer.fills.push_back(fill);
        if (style == Style::Strokes) {
            swf::LineStyle line;
            line.width = 40;
            layer.lines.push_back(line);
        }
        const double radius = 400 + 400 * part(random);
        for (const bool inner : {false, true}) {
            swf::EdgeRun run;
            run.fill1 = inner && style == Style::Shared ? 2 : 1;
            run.fill0 = inner && style == Style::Shared ? 1 : 0;
            run.line = style == Style::Strokes ? 1 : 0;
            QPainterPath& path = inner ? item.inner : item.outer;
            constexpr int kCurves = 10;
            std::vector<std::pair<int, int>> points;
            for (int k = 0; k < 2 * kCurves; ++k) {
                const double angle = std::numbers::pi * k / kCurves;
                const double r = radius * (inner ? 0.4 : 1) * (0.7 + 0.6 * part(random));
                points.emplace_back(std::lround(r * std::cos(angle)), std::lround(r * std::sin(angle)));
            }
            run.startX = points[0].first;
            run.startY = points[0].second;
            path.moveTo(points[0].first, points[0].second);
            for (std::size_t k = 0; k < kCurves; ++k) {
                const auto [cx, cy] = points[2 * k + 1];
                const auto [ax, ay] = points[(2 * k + 2) % points.size()];
                run.edges.push_back({true, cx, cy, ax, ay});
                path.quadTo(cx, cy, ax, ay);
            }
            layer.runs.push_back(std::move(run));
        }
        shape->bounds = shape->edgeBounds = {-1200, 1200, -1200, 1200};
        shape->layers.push_back(std::move(layer));
        item.shape = std::move(shape);
        scene.items.push_back(std::move(item));
    }
    return scene;
}

void drawWithCanvas(benchmark::State& state, Style style,
                    render::SecondThread second = render::SecondThread::Never)
{
    const int width = static_cast<int>(state.range(0)), height = static_cast<int>(state.range(1));
    const Scene scene = makeScene(style);
    const double scale = width / 550.0 / swf::kTwipsPerPixel;
    render::Surface surface(width, height);
    render::RenderCache cache;
    cache.setSecondThread(second);
    double turn = 0;
    for (auto _ : state) {
        Canvas canvas(surface.view(), render::Quality::High, cache);
        canvas.beginFrame();
        canvas.clear({255, 255, 255, 255});
        turn += style == Style::Strokes ? 0 : 0.01;
        const double c = scale * std::cos(turn), s = scale * std::sin(turn);
        for (const Scene::Item& item : scene.items)
            canvas.drawShape(item.shape, {c, s, -s, c, item.x * width, item.y * height});
        canvas.endFrame();
        benchmark::ClobberMemory();
    }
}

void drawWithPainter(benchmark::State& state, Style style)
{
    const int width = static_cast<int>(state.range(0)), height = static_cast<int>(state.range(1));
    const Scene scene = makeScene(style);
    const double scale = width / 550.0 / swf::kTwipsPerPixel;
    QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
    double turn = 0;
    for (auto _ : state) {
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        turn += style == Style::Strokes ? 0 : 0.01;
        const double c = scale * std::cos(turn), s = scale * std::sin(turn);
        for (const Scene::Item& item : scene.items) {
            painter.setTransform(QTransform(c, s, -s, c, item.x * width, item.y * height));
            const QColor color(item.color.r, item.color.g, item.color.b);
            QPen pen(Qt::NoPen);
            if (style == Style::Strokes)
                pen = QPen(Qt::black, 40, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
            painter.setPen(pen);
            QBrush brush(color);
            if (style == Style::Gradients) {
                QRadialGradient gradient(0, 0, 819.2);
                gradient.setColorAt(0, Qt::white);
                gradient.setColorAt(1, color);
                brush = gradient;
            }
            painter.setBrush(brush);
            if (style == Style::Shared) {
                painter.drawPath(item.outer);
                painter.setBrush(QColor(item.color.b, item.color.r, item.color.g));
                painter.drawPath(item.inner);
            } else {
                QPainterPath both = item.outer;
                both.addPath(item.inner);
                painter.drawPath(both);
            }
        }
        painter.end();
        benchmark::ClobberMemory();
    }
}

#define FRAME_SIZES                                                                                          \
    Args({550, 400})->Args({1280, 960})->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()
BENCHMARK_CAPTURE(drawWithCanvas, fills, Style::Fills)->FRAME_SIZES;
BENCHMARK_CAPTURE(drawWithPainter, fills, Style::Fills)->FRAME_SIZES;
BENCHMARK_CAPTURE(drawWithCanvas, sharedEdges, Style::Shared)->FRAME_SIZES;
BENCHMARK_CAPTURE(drawWithPainter, sharedEdges, Style::Shared)->FRAME_SIZES;
BENCHMARK_CAPTURE(drawWithCanvas, strokes, Style::Strokes)->FRAME_SIZES;
BENCHMARK_CAPTURE(drawWithPainter, strokes, Style::Strokes)->FRAME_SIZES;
BENCHMARK_CAPTURE(drawWithCanvas, gradients, Style::Gradients)->FRAME_SIZES;
BENCHMARK_CAPTURE(drawWithPainter, gradients, Style::Gradients)->FRAME_SIZES;

// The same by two threads: the time that passes counts.
BENCHMARK_CAPTURE(drawWithCanvas, fillsByTwo, Style::Fills, render::SecondThread::Always)
    ->FRAME_SIZES->UseRealTime();
BENCHMARK_CAPTURE(drawWithCanvas, gradientsByTwo, Style::Gradients, render::SecondThread::Always)
    ->FRAME_SIZES->UseRealTime();

// ---- the rest of what movies show
// ---------------------------------------------------------------------------

constexpr swf::Rgba kWhite{255, 255, 255, 255};

// The least that any frame costs: every pixel written once.
void writeFrame(benchmark::State& state)
{
    const int width = static_cast<int>(state.range(0)), height = static_cast<int>(state.range(1));
    render::Surface surface(width, height);
    for (auto _ : state) {
        std::memset(surface.row(0), 0xFF, std::size_t{4} * static_cast<std::size_t>(width * height));
        benchmark::ClobberMemory();
    }
}
BENCHMARK(writeFrame)->FRAME_SIZES;

swf::Bitmap photograph()
{
    swf::Bitmap bitmap{640, 480, true, {}};
    std::mt19937 random(7);
    bitmap.pixels.resize(std::size_t{640} * 480);
    for (std::uint32_t& pixel : bitmap.pixels)
        pixel = 0xFF000000 | (static_cast<std::uint32_t>(random()) & 0xFFFFFF);
    return bitmap;
}

void turnedBitmap(benchmark::State& state, bool ours)
{
    const int width = static_cast<int>(state.range(0)), height = static_cast<int>(state.range(1));
    const swf::Bitmap bitmap = photograph();
    const QImage picture(reinterpret_cast<const uchar*>(bitmap.pixels.data()), bitmap.width, bitmap.height,
                         QImage::Format_RGB32);
    render::Surface surface(width, height);
    QImage image(reinterpret_cast<uchar*>(surface.row(0)), width, height,
                 QImage::Format_ARGB32_Premultiplied);
    render::RenderCache cache;
    // Large enough to cover the frame however it is turned.
    const double scale = std::hypot(width, height) / 480;
    double turn = 0.1;
    for (auto _ : state) {
        turn += 0.01;
        const double c = scale * std::cos(turn), s = scale * std::sin(turn);
        const double x = width / 2.0 - c * 320 + s * 240, y = height / 2.0 - s * 320 - c * 240;
        if (ours) {
            Canvas canvas(surface.view(), render::Quality::High, cache);
            canvas.clear(kWhite);
            canvas.drawBitmap(bitmap, {c, s, -s, c, x, y}, {}, render::Smoothing::On);
        } else {
            image.fill(Qt::white);
            QPainter painter(&image);
            painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
            painter.setTransform(QTransform(c, s, -s, c, x, y));
            painter.drawImage(0, 0, picture);
        }
        benchmark::ClobberMemory();
    }
}
BENCHMARK_CAPTURE(turnedBitmap, canvas, true)->FRAME_SIZES;
BENCHMARK_CAPTURE(turnedBitmap, painter, false)->FRAME_SIZES;

// Shapes of eight pixels or so, moved in every frame.
void smallSprites(benchmark::State& state, bool ours)
{
    constexpr int kSprites = 2000;
    const int width = static_cast<int>(state.range(0)), height = static_cast<int>(state.range(1));
    const Scene scene = makeScene(Style::Fills);
    const double scale = width / 550.0 / swf::kTwipsPerPixel / 8;
    render::Surface surface(width, height);
    QImage image(reinterpret_cast<uchar*>(surface.row(0)), width, height,
                 QImage::Format_ARGB32_Premultiplied);
    render::RenderCache cache;
    double time = 0;
    for (auto _ : state) {
        time += 0.3;
        const auto place = [&](int i) {
            return std::pair(std::fmod(i * 37.7 + time, width), std::fmod(i * 23.3 + time * 0.7, height));
        };
        if (ours) {
            Canvas canvas(surface.view(), render::Quality::High, cache);
            canvas.clear(kWhite);
            for (int i = 0; i < kSprites; ++i) {
                const auto [x, y] = place(i);
                canvas.drawShape(scene.items[static_cast<std::size_t>(i % 20)].shape,
                                 {scale, 0, 0, scale, x, y});
            }
        } else {
            image.fill(Qt::white);
            QPainter painter(&image);
            painter.setRenderHint(QPainter::Antialiasing);
            painter.setPen(Qt::NoPen);
            for (int i = 0; i < kSprites; ++i) {
                const auto [x, y] = place(i);
                const Scene::Item& item = scene.items[static_cast<std::size_t>(i % 20)];
                painter.setTransform(QTransform(scale, 0, 0, scale, x, y));
                painter.setBrush(QColor(item.color.r, item.color.g, item.color.b));
                painter.drawPath(item.outer);
            }
        }
        benchmark::ClobberMemory();
    }
}
BENCHMARK_CAPTURE(smallSprites, canvas, true)->FRAME_SIZES;
BENCHMARK_CAPTURE(smallSprites, painter, false)->FRAME_SIZES;

void blurredSprites(benchmark::State& state)
{
    constexpr int kSprites = 200;
    const int width = static_cast<int>(state.range(0)), height = static_cast<int>(state.range(1));
    const Scene scene = makeScene(Style::Fills);
    const double zoom = width / 550.0, scale = zoom / swf::kTwipsPerPixel / 2;
    render::Surface surface(width, height);
    render::RenderCache cache;
    const std::vector<swf::Filter> filters{swf::BlurFilter{4, 4, 1}};
    double time = 0;
    for (auto _ : state) {
        time += 0.3;
        Canvas canvas(surface.view(), render::Quality::High, cache);
        canvas.setPixelScale(zoom);
        canvas.clear(kWhite);
        for (int i = 0; i < kSprites; ++i) {
            const auto& shape = scene.items[static_cast<std::size_t>(i % 20)].shape;
            const swf::Matrix place{scale,
                                    0,
                                    0,
                                    scale,
                                    std::fmod(i * 37.7 + time, width),
                                    std::fmod(i * 23.3 + time * 0.7, height)};
            canvas.beginLayer(render::deviceBounds(shape->bounds, place), filters);
            canvas.drawShape(shape, place);
            canvas.endLayer(swf::BlendMode::Layer, {}, filters);
        }
        benchmark::ClobberMemory();
    }
}
BENCHMARK(blurredSprites)->FRAME_SIZES;

// Some 4000 letters.
void longText(benchmark::State& state)
{
    const int width = static_cast<int>(state.range(0)), height = static_cast<int>(state.range(1));
    const Scene scene = makeScene(Style::Fills);
    const double zoom = width / 550.0, scale = zoom / swf::kTwipsPerPixel / 8;
    render::Surface surface(width, height);
    render::RenderCache cache;
    std::vector<render::GlyphPlacement> glyphs;
    constexpr double kAcross = 6, kDown = 9;
    for (double y = kDown; y * zoom < height; y += kDown)
        for (double x = kAcross; x * zoom < width; x += kAcross)
            glyphs.push_back(
                {scene.items[glyphs.size() % 60].shape, {scale, 0, 0, scale, x * zoom, y * zoom}});
    for (auto _ : state) {
        Canvas canvas(surface.view(), render::Quality::High, cache);
        canvas.clear(kWhite);
        canvas.drawGlyphs(glyphs, {0, 0, 0, 255});
        benchmark::ClobberMemory();
    }
    state.counters["letters"] = static_cast<double>(glyphs.size());
}
BENCHMARK(longText)->FRAME_SIZES;

void dropShadow(benchmark::State& state)
{
    swf::DropShadowFilter filter;
    filter.blurX = filter.blurY = 8;
    filter.distance = 4;
    filter.angle = 0.785;
    filter.strength = 1;
    filter.passes = 2;
    render::Surface surface(200, 200);
    for (int y = 50; y < 150; ++y) std::fill_n(surface.row(y) + 50, 100, 0xFF3060A0);
    for (auto _ : state) {
        render::Surface copy = surface;
        render::applyFilter(filter, copy.view());
        benchmark::DoNotOptimize(copy.row(0));
    }
}
BENCHMARK(dropShadow)->Unit(benchmark::kMillisecond);

} // namespace
