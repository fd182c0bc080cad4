#include "flash/render/Canvas.h"
#include "flash/render/Filters.h"
#include "flash/stage/Button.h"
#include "flash/stage/Renderer.h"
#include "flash/stage/Stage.h"
#include "flash/stage/TextField.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace flash::stage
{

void Stage::setViewSize(int width, int height)
{
    if (width == m_viewWidth && height == m_viewHeight) return;
    m_viewWidth = width;
    m_viewHeight = height;
    invalidateAll();
    if (m_movie && m_scaleMode == ScaleMode::NoScale) {
        m_script->broadcastResize();
        runQueue();
    }
}

void Stage::setDeviceScale(double scale)
{
    if (!(scale > 0) || scale == m_deviceScale) return;
    m_deviceScale = scale;
    invalidateAll();
}

void Stage::setScaleMode(ScaleMode mode)
{
    if (mode == m_scaleMode) return;
    const double width = stageWidth(), height = stageHeight();
    m_scaleMode = mode;
    invalidateAll();
    if (stageWidth() != width || stageHeight() != height) m_script->broadcastResize();
}

void Stage::setAlign(unsigned align)
{
    m_align = align;
    invalidateAll();
}

void Stage::setQuality(Quality quality)
{
    if (quality == m_quality) return;
    m_quality = quality;
    invalidateAll();
}

void Stage::setBackground(swf::Rgba color)
{
    if (m_hostBackground) return;
    // The first one holds: a movie cannot change its colour later.
    if (m_movieBackground) return;
    m_movieBackground = true;
    if (color == m_background) return;
    m_background = color;
    invalidateAll();
}

void Stage::setHostBackground(swf::Rgba color)
{
    m_hostBackground = true;
    m_background = color;
    invalidateAll();
}

void Stage::setFullScreen(bool on)
{
    if (on == m_fullScreen) return;
    m_fullScreen = on;
    m_script->broadcastFullScreen(on);
    runQueue();
}

void Stage::setMouseVisible(bool visible)
{
    m_mouseVisible = visible;
    m_services.host.cursorVisible(visible);
    updateCursor();
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

double Stage::stageWidth() const
{
    if (m_scaleMode == ScaleMode::NoScale && m_viewWidth > 0) return std::round(m_viewWidth / m_deviceScale);
    return frameWidth(m_movie);
}

double Stage::stageHeight() const
{
    if (m_scaleMode == ScaleMode::NoScale && m_viewHeight > 0)
        return std::round(m_viewHeight / m_deviceScale);
    return frameHeight(m_movie);
}

swf::Matrix Stage::viewMatrix() const
{
    const double width = frameWidth(m_movie), height = frameHeight(m_movie);
    const double viewWidth = m_viewWidth > 0 ? m_viewWidth : width;
    const double viewHeight = m_viewHeight > 0 ? m_viewHeight : height;
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
    const double originX = m_movie ? m_movie->header.frameSize.xMin : 0;
    const double originY = m_movie ? m_movie->header.frameSize.yMin : 0;
    return {scaleX / swf::kTwipsPerPixel,
            0,
            0,
            scaleY / swf::kTwipsPerPixel,
            left - originX * scaleX / swf::kTwipsPerPixel,
            top - originY * scaleY / swf::kTwipsPerPixel};
}

void Stage::invalidateAll()
{
    const int width = m_viewWidth > 0 ? m_viewWidth : static_cast<int>(std::ceil(frameWidth(m_movie)));
    const int height = m_viewHeight > 0 ? m_viewHeight : static_cast<int>(std::ceil(frameHeight(m_movie)));
    m_dirty = {0, 0, width, height};
}

render::IntRect Stage::dirtyRect()
{
    collectDirty();
    return m_dirty;
}

void Stage::collectDirty()
{
    syncTextFields();
    if (m_focus && m_focus->kind() == NodeKind::TextField) static_cast<TextField&>(*m_focus).tick(m_nowMs);
    const swf::Matrix view = viewMatrix();
    const double scale = view.a * swf::kTwipsPerPixel;
    const std::vector<std::weak_ptr<Node>> changed = std::move(m_changedNodes);
    m_changedNodes.clear();
    for (const std::weak_ptr<Node>& entry : changed) {
        const NodePtr node = entry.lock();
        if (!node) continue;
        node->m_changed = false;
        addDirty(node->m_drawnBounds);
        if (node->isRemoved()) continue;
        // What lies under a mask that masks no more shows up whole; the mask itself is drawn from now on.
        node->m_drawnBounds = {};
        render::IntRect bounds = render::deviceBounds(node->reach(), view * node->toStage());
        for (const Node* at = node.get(); at; at = at->parent())
            if (!at->filters().empty())
                bounds = render::grown(bounds, render::filterGrowth(at->filters(), scale));
        addDirty(bounds);
    }
    const int width = m_viewWidth > 0 ? m_viewWidth : static_cast<int>(std::ceil(frameWidth(m_movie)));
    const int height = m_viewHeight > 0 ? m_viewHeight : static_cast<int>(std::ceil(frameHeight(m_movie)));
    m_dirty = render::intersect(m_dirty, {0, 0, width, height});
}

void Stage::render(render::Canvas& canvas, const render::IntRect& clip)
{
    collectDirty();
    m_dirty = {};
    const swf::Matrix view = viewMatrix();
    canvas.setClip(clip);
    canvas.setPixelScale(std::sqrt(std::abs(view.a * view.d)) * swf::kTwipsPerPixel);
    canvas.clear(m_background);
    Renderer renderer(canvas, view);
    for (const auto& [number, root] : m_levels) renderer.drawNode(*root, view, {});
    drawFocus(canvas, view);
}

// Three pixels wide and within the bounds of what has the focus, above everything; around what takes the
// pointer of a button. Fields show theirs by the caret.
void Stage::drawFocus(render::Canvas& canvas, const swf::Matrix& view)
{
    if (!isFocusFramed() || !m_focus || m_focus->isRemoved() || m_focus->kind() == NodeKind::TextField)
        return;
    for (const Node* root = m_focus.get(); root->parent(); root = root->parent())
        if (!root->isVisible()) return;
    const swf::Rect own =
        m_focus->kind() == NodeKind::Button ? static_cast<Button&>(*m_focus).hitBounds() : m_focus->bounds();
    if (own.isEmpty()) return;
    // Not rounded to twips: a turned clip's corners lie anywhere.
    const swf::Matrix toDevice = view * m_focus->toStage();
    const std::array corners{toDevice.map(own.xMin, own.yMin), toDevice.map(own.xMax, own.yMin),
                             toDevice.map(own.xMin, own.yMax), toDevice.map(own.xMax, own.yMax)};
    const auto [left, right] = std::ranges::minmax(corners, {}, &swf::Point::x);
    const auto [top, bottom] = std::ranges::minmax(corners, {}, &swf::Point::y);
    // On a stage that is shown larger or smaller it keeps its width.
    canvas.strokeInside({left.x, top.y}, {right.x, bottom.y}, 3 * m_deviceScale, {255, 255, 0, 255});
}

} // namespace flash::stage
