#include "flash/stage/View.h"

#include "flash/render/Bounds.h"
#include "flash/render/Canvas.h"
#include "flash/render/RenderCache.h"
#include "flash/stage/Damage.h"
#include "flash/stage/Ground.h"
#include "flash/stage/Renderer.h"
#include "flash/stage/SeenBounds.h"
#include "flash/stage/ShownBitmaps.h"
#include "flash/stage/Stage.h"
#include "flash/swf/Space.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace flash::stage
{

View::View(Stage& stage)
    : m_stage(stage), m_renderCache(std::make_unique<render::RenderCache>()),
      m_damage(std::make_unique<Damage>()), m_drawnPictures(std::make_unique<DrawnPictures>())
{
    m_damage->setArea(area());
}

View::~View() = default;

void View::setSize(int width, int height)
{
    if (width == m_width && height == m_height) return;
    m_width = width;
    m_height = height;
    invalidateAll();
    if (m_stage.movie() && m_scaleMode == ScaleMode::NoScale) {
        m_stage.script().broadcastResize();
        m_stage.queue().run();
    }
}

void View::setDeviceScale(double scale)
{
    if (!(scale > 0) || scale == m_deviceScale) return;
    m_deviceScale = scale;
    invalidateAll();
}

void View::setScaleMode(ScaleMode mode)
{
    if (mode == m_scaleMode) return;
    const double width = stageWidth(), height = stageHeight();
    m_scaleMode = mode;
    invalidateAll();
    if (stageWidth() != width || stageHeight() != height) m_stage.script().broadcastResize();
}

void View::setAlign(unsigned align)
{
    m_align = align;
    invalidateAll();
}

void View::setQuality(Quality quality)
{
    if (quality == m_quality) return;
    m_quality = quality;
    invalidateAll();
}

void View::setBackground(swf::Rgba color)
{
    if (m_hostBackground) return;
    // The first one holds: a movie cannot change its colour later.
    if (m_movieBackground) return;
    m_movieBackground = true;
    if (color == m_background) return;
    m_background = color;
    invalidateAll();
}

void View::setHostBackground(swf::Rgba color)
{
    m_hostBackground = true;
    m_background = color;
    invalidateAll();
}

swf::Matrix View::Backdrop::place() const
{
    return {swf::kTwipsPerPixel, 0, 0, swf::kTwipsPerPixel, x * swf::kTwipsPerPixel, y * swf::kTwipsPerPixel};
}

swf::Rect View::Backdrop::reach() const
{
    if (!picture) return {};
    const auto twips = [](double pixels) { return static_cast<int>(pixels * swf::kTwipsPerPixel); };
    return {twips(x), twips(x + picture->width), twips(y), twips(y + picture->height)};
}

void View::setBackdrop(std::size_t index, std::shared_ptr<const swf::Bitmap> picture, double x, double y)
{
    if (m_backdrops.size() <= index) m_backdrops.resize(index + 1);
    Backdrop& backdrop = m_backdrops[index];
    const swf::Matrix view = matrix();
    m_damage->add(render::deviceBounds(backdrop.reach(), view));
    backdrop = {std::move(picture), x, y};
    m_damage->add(render::deviceBounds(backdrop.reach(), view));
}

void View::setFullScreen(bool on)
{
    if (on == m_fullScreen) return;
    const double width = stageWidth(), height = stageHeight();
    m_fullScreen = on;
    if (stageWidth() != width || stageHeight() != height) m_stage.script().broadcastResize();
    m_stage.script().broadcastFullScreen(on);
    m_stage.queue().run();
}

void View::setScreenSize(int width, int height)
{
    m_screenWidth = width;
    m_screenHeight = height;
}

void View::setShowsMenu(bool full)
{
    m_showsMenu = full;
    m_stage.services().host.showMenu(full);
}

void View::adopt(const swf::Movie& movie)
{
    m_movieBackground = m_hostBackground = false;
    m_backdrops.clear();
    m_background = movie.hasBackground ? movie.background : swf::Rgba{255, 255, 255, 255};
    invalidateAll();
}

namespace
{
double frameWidth(const MoviePtr& movie)
{
    return movie ? std::max(1, movie->header.frameSize.width()) / 20.0 : 550;
}
double frameHeight(const MoviePtr& movie)
{
    return movie ? std::max(1, movie->header.frameSize.height()) / 20.0 : 400;
}
} // namespace

double View::stageWidth() const
{
    if (m_scaleMode == ScaleMode::NoScale) {
        if (m_fullScreen && m_screenWidth > 0) return m_screenWidth;
        if (m_width > 0) return std::round(m_width / m_deviceScale);
    }
    return frameWidth(m_stage.movie());
}

double View::stageHeight() const
{
    if (m_scaleMode == ScaleMode::NoScale) {
        if (m_fullScreen && m_screenHeight > 0) return m_screenHeight;
        if (m_height > 0) return std::round(m_height / m_deviceScale);
    }
    return frameHeight(m_stage.movie());
}

swf::Matrix View::matrix() const
{
    const double width = frameWidth(m_stage.movie()), height = frameHeight(m_stage.movie());
    const double viewWidth = m_width > 0 ? m_width : width;
    const double viewHeight = m_height > 0 ? m_height : height;
    double scaleX = viewWidth / width, scaleY = viewHeight / height;
    switch (m_scaleMode) {
    case ScaleMode::ShowAll: scaleX = scaleY = std::min(scaleX, scaleY); break;
    case ScaleMode::NoBorder: scaleX = scaleY = std::max(scaleX, scaleY); break;
    case ScaleMode::ExactFit: break;
    case ScaleMode::NoScale: scaleX = scaleY = m_deviceScale; break;
    }
    const double roomX = viewWidth - width * scaleX, roomY = viewHeight - height * scaleY;
    double left = roomX / 2, top = roomY / 2;
    if (m_align & kAlignLeft)
        left = 0;
    else if (m_align & kAlignRight)
        left = roomX;
    if (m_align & kAlignTop)
        top = 0;
    else if (m_align & kAlignBottom)
        top = roomY;
    // Half pixels would blur every upright edge.
    left = std::floor(left);
    top = std::floor(top);
    const double originX = m_stage.movie() ? m_stage.movie()->header.frameSize.xMin : 0;
    const double originY = m_stage.movie() ? m_stage.movie()->header.frameSize.yMin : 0;
    return {scaleX / swf::kTwipsPerPixel,
            0,
            0,
            scaleY / swf::kTwipsPerPixel,
            left - originX * scaleX / swf::kTwipsPerPixel,
            top - originY * scaleY / swf::kTwipsPerPixel};
}

swf::Perspective View::defaultPerspective() const
{
    swf::Perspective perspective;
    const double width = frameWidth(m_stage.movie()), height = frameHeight(m_stage.movie());
    perspective.focalLength = width / 2 / std::tan(perspective.fieldOfView * std::numbers::pi / 360);
    perspective.centerX = width / 2;
    perspective.centerY = height / 2;
    return perspective;
}

render::IntRect View::area() const
{
    const int width = m_width > 0 ? m_width : static_cast<int>(std::ceil(frameWidth(m_stage.movie())));
    const int height = m_height > 0 ? m_height : static_cast<int>(std::ceil(frameHeight(m_stage.movie())));
    return {0, 0, width, height};
}

void View::invalidateAll()
{
    m_damage->setArea(area());
    m_damage->add(area());
}

namespace
{

/// Of a matrix that leads from twips.
double pixelScale(const swf::Matrix& view)
{
    return std::sqrt(std::abs(view.a * view.d)) * swf::kTwipsPerPixel;
}

} // namespace

void View::noteRemoved(const Node& node, const render::IntRect& drawnBounds)
{
    if (drawnBounds.isEmpty()) return;
    m_damage->add(m_hasOutgrowth ? grownByFiltersAround(node, drawnBounds, pixelScale(matrix()))
                                 : drawnBounds);
}

void View::noteDrawnOn(const swf::Bitmap& picture)
{
    // Most often it is the one of before: pictures are drawn on pixel by pixel.
    if (!m_drawnOn.empty() && m_drawnOn.back() == &picture) return;
    constexpr std::size_t kMany = 32;
    if (m_drawnOn.size() == kMany) {
        invalidateAll();
        m_drawnOn.clear();
    }
    if (std::ranges::find(m_drawnOn, &picture) == m_drawnOn.end()) m_drawnOn.push_back(&picture);
}

std::span<const render::IntRect> View::dirtyBoxes()
{
    collectDirty();
    return m_damage->boxes();
}

void View::collectDirty()
{
    m_stage.displayList().syncTextFields();
    if (Node* focus = m_stage.focus().node()) focus->tick(m_stage.nowMs());
    const swf::Matrix view = matrix();
    const double scale = pixelScale(view);
    collectFocusFrame(view);
    if (!m_drawnOn.empty() && !m_damage->contains(area())) invalidateShowing(m_stage, m_drawnOn);
    m_drawnOn.clear();
    std::erase_if(m_changedNodes, [](const std::weak_ptr<Node>& entry) {
        const NodePtr node = entry.lock();
        return !node || node->cameBack();
    });
    // What is hidden may go unnoticed, and the content it was part of have other bounds since.
    if (m_changedNodes.empty() && m_damage->isEmpty() && m_drawnPictures->isEmpty()) return;
    // A further box is walked over by all that might show in it.
    constexpr long long kBoxPixels = 4096, kPixelsPerInstance = 32;
    m_damage->setBoxCost(kBoxPixels +
                         kPixelsPerInstance * static_cast<long long>(m_stage.displayList().instances()));
    // What has left the plane is seen anywhere.
    if (hasSpaces() && !m_changedNodes.empty()) invalidateAll();
    const std::vector<std::weak_ptr<Node>> changed = std::move(m_changedNodes);
    m_changedNodes.clear();
    for (const std::weak_ptr<Node>& entry : changed) {
        const NodePtr node = entry.lock();
        if (!node) continue;
        noteRemoved(*node, node->takeChange());
        if (node->isRemoved() || !canShow(*node)) continue;
        m_damage->add(grownByFiltersAround(*node, seenOnStage(*node, view, scale), scale));
    }
    m_drawnPictures->collect(*m_damage, view, scale);
    m_damage->settle();
}

void View::collectFocusFrame(const swf::Matrix& view)
{
    const auto frame = m_stage.focus().frame(view);
    if (frame == m_focusFrame) return;
    for (const auto& corners : {m_focusFrame, frame}) {
        if (!corners) continue;
        const auto [min, max] = *corners;
        m_damage->add(render::boundsOf({}, min.x, min.y, max.x, max.y));
    }
    m_focusFrame = frame;
}

namespace
{

/// The part of a box of device pixels that lies within the movie's frame; empty when there is little of it.
render::IntRect insideFrame(const MoviePtr& movie, const swf::Matrix& view, const render::IntRect& box)
{
    if (!movie) return {};
    const swf::Rect& frame = movie->header.frameSize;
    const swf::Point min = view.map(frame.xMin, frame.yMin), max = view.map(frame.xMax, frame.yMax);
    constexpr double kHair = 1e-6;
    const auto ceiled = [](double v) { return static_cast<int>(std::ceil(v - kHair)); };
    const auto floored = [](double v) { return static_cast<int>(std::floor(v + kHair)); };
    const render::IntRect inner =
        render::intersect(box, {ceiled(min.x), ceiled(min.y), floored(max.x), floored(max.y)});
    constexpr int kFewestPixels = 16384;
    const auto pixels = static_cast<long long>(inner.width()) * inner.height();
    const auto all = static_cast<long long>(box.width()) * box.height();
    return pixels >= kFewestPixels && 2 * pixels >= all ? inner : render::IntRect{};
}

} // namespace

void View::drawBackdrops(render::Canvas& canvas, const swf::Matrix& view) const
{
    for (const Backdrop& backdrop : m_backdrops) {
        if (backdrop.picture)
            canvas.drawBitmap(*backdrop.picture, view * backdrop.place(), {}, render::Smoothing::On);
    }
}

void View::render(render::Canvas& canvas, std::span<const render::IntRect> boxes)
{
    // What is to be drawn may be what is about to be forgotten.
    const std::vector<render::IntRect> wanted(boxes.begin(), boxes.end());
    collectDirty();
    m_damage->clear();
    const swf::Matrix view = matrix();
    canvas.setPixelScale(pixelScale(view));
    for (const render::IntRect& box : wanted) {
        if (const Node* ground = groundOf(m_stage, view, box)) {
            drawBox(canvas, view, box, ground);
            continue;
        }
        // Grounds are made for the movie's frame: what is beside it would keep them from hiding what is
        // below.
        const render::IntRect inner = insideFrame(m_stage.movie(), view, box);
        const Node* const ground = inner == box || inner.isEmpty() ? nullptr : groundOf(m_stage, view, inner);
        if (ground == nullptr) {
            drawBox(canvas, view, box, nullptr);
            continue;
        }
        drawBox(canvas, view, inner, ground);
        for (const render::IntRect& beside :
             {render::IntRect{box.left, box.top, box.right, inner.top},
              render::IntRect{box.left, inner.bottom, box.right, box.bottom},
              render::IntRect{box.left, inner.top, inner.left, inner.bottom},
              render::IntRect{inner.right, inner.top, box.right, inner.bottom}})
            if (!beside.isEmpty()) drawBox(canvas, view, beside, nullptr);
    }
}

/// @param ground nothing below it shows in the box; null: all that is there may
void View::drawBox(render::Canvas& canvas, const swf::Matrix& view, const render::IntRect& box,
                   const Node* ground)
{
    canvas.setClip(box);
    if (ground != nullptr) {
        canvas.clearUnseen(m_background);
    } else {
        canvas.clear(m_background);
        drawBackdrops(canvas, view);
    }
    Renderer renderer(canvas, view);
    renderer.beginAt(ground);
    for (const auto& [number, root] : m_stage.displayList().levels()) renderer.drawNode(*root, view, {});
    m_stage.focus().draw(canvas, view);
}

void View::forgetNodes()
{
    m_changedNodes.clear();
    m_drawnOn.clear();
    m_drawnPictures->clear();
    m_focusFrame.reset();
    m_hasOutgrowth = false;
}

void View::forgetGoneNodes()
{
    constexpr std::size_t kFew = 256;
    if (m_changedNodes.size() < 2 * m_changedKept + kFew) return;
    std::erase_if(m_changedNodes, [](const std::weak_ptr<Node>& entry) {
        const NodePtr node = entry.lock();
        return !node || node->isRemoved(); // its place was noted as dirty when it went
    });
    m_changedKept = m_changedNodes.size();
}

} // namespace flash::stage
