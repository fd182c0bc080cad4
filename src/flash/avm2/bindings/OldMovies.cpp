#include "flash/avm2/bindings/OldMovies.h"

#include "flash/avm2/bindings/Loader.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/stage/Renderer.h"

#include <algorithm>

namespace flash::avm2
{

OldMovieNode::OldMovieNode(stage::Stage& outer, std::unique_ptr<OldMovie> movie)
    : Node(outer, stage::NodeKind::Shape), m_movie(std::move(movie))
{
}

/// Does what may run the movie's scripts, which may end it.
template <class Work>
void OldMovieNode::act(Work&& work)
{
    if (m_movie == nullptr || m_isActing) return;
    m_isActing = true;
    const struct Leave {
        OldMovieNode& node;
        ~Leave()
        {
            node.m_isActing = false;
            if (node.m_ends) node.end();
        }
    } leave{*this};
    work(m_movie->stage());
    noteChanges();
}

void OldMovieNode::end()
{
    m_ends = m_isActing;
    if (m_isActing) return;
    m_movie.reset();
    contentChanged();
}

void OldMovieNode::advance(double frameRate)
{
    act([&](stage::Stage& inner) {
        inner.setFrameRate(frameRate);
        inner.advance(inner.frameMs());
    });
}

void OldMovieNode::soundEnded(stage::SoundId id)
{
    if (m_movie != nullptr) m_movie->soundEnded(id);
}

/// What the inner stage is to draw again is the outer stage's to draw.
void OldMovieNode::noteChanges()
{
    stage::Stage& inner = m_movie->stage();
    const bool changed = inner.view().notedChanges() > 0 || inner.displayList().instances() != m_instances;
    m_instances = inner.displayList().instances();
    static_cast<void>(inner.view().dirtyBoxes()); // forgets the changes
    if (changed) contentChanged();
}

swf::Point OldMovieNode::toInner(swf::Point stagePoint) const
{
    const swf::Matrix toStage = toStageAt(stagePoint);
    const swf::Point own =
        toStage.isInvertible() ? toStage.inverted().map(stagePoint) : swf::Point{-1e6, -1e6};
    return m_movie->stage().view().matrix().map(own);
}

void OldMovieNode::movePointer(swf::Point stagePoint)
{
    act([&](stage::Stage& inner) {
        const swf::Point at = toInner(stagePoint);
        inner.pointer().move(at.x, at.y);
    });
}
void OldMovieNode::pressPointer(swf::Point stagePoint, stage::MouseButton button, int clicks)
{
    act([&](stage::Stage& inner) {
        const swf::Point at = toInner(stagePoint);
        inner.pointer().press(at.x, at.y, button, clicks);
    });
}
void OldMovieNode::releasePointer(swf::Point stagePoint, stage::MouseButton button)
{
    act([&](stage::Stage& inner) {
        const swf::Point at = toInner(stagePoint);
        inner.pointer().release(at.x, at.y, button);
    });
}
void OldMovieNode::turnWheel(int lines)
{
    act([&](stage::Stage& inner) { inner.pointer().wheel(lines); });
}
void OldMovieNode::pressKey(int keyCode, char32_t charCode)
{
    act([&](stage::Stage& inner) { inner.keyboard().press(keyCode, charCode); });
}
void OldMovieNode::releaseKey(int keyCode, char32_t charCode)
{
    act([&](stage::Stage& inner) { inner.keyboard().release(keyCode, charCode); });
}

std::vector<stage::MenuItem> OldMovieNode::openMenu(swf::Point stagePoint)
{
    std::vector<stage::MenuItem> items;
    act([&](stage::Stage& inner) {
        const swf::Point at = toInner(stagePoint);
        items = inner.pointer().openMenu(at.x, at.y);
    });
    return items;
}
void OldMovieNode::chooseMenuItem(std::size_t item)
{
    act([&](stage::Stage& inner) { inner.pointer().chooseMenuItem(item); });
}

swf::Rect OldMovieNode::bounds(Extent extent)
{
    swf::Rect all;
    if (m_movie == nullptr) return all;
    for (const auto& [number, root] : m_movie->stage().displayList().levels()) {
        const swf::Rect one = root->boundsThrough(root->matrix(), extent);
        if (one.isEmpty()) continue;
        all = all.isEmpty() ? one
                            : swf::Rect{std::min(all.xMin, one.xMin), std::max(all.xMax, one.xMax),
                                        std::min(all.yMin, one.yMin), std::max(all.yMax, one.yMax)};
    }
    return all;
}

bool OldMovieNode::hitsShape(swf::Point stagePoint)
{
    const swf::Matrix toStage = toStageAt(stagePoint);
    if (m_movie == nullptr || !toStage.isInvertible()) return false;
    const swf::Point own = toStage.inverted().map(stagePoint);
    return std::ranges::any_of(m_movie->stage().displayList().levels(),
                               [&](const auto& level) { return level.second->hitsShape(own); });
}

void OldMovieNode::draw(render::Canvas& canvas, const swf::Matrix& toDevice, const swf::ColorTransform& color)
{
    if (m_movie == nullptr) return;
    stage::Renderer renderer(canvas, toDevice);
    for (const auto& [number, root] : m_movie->stage().displayList().levels())
        renderer.drawNode(*root, toDevice, color);
}

// ---- the player's part ----

bool Player::showOldMovie(DisplayObject& object, const stage::MoviePtr& movie, const std::string& url)
{
    if (!m_inputs.openOldMovie) return false;
    auto node = std::make_shared<OldMovieNode>(*m_stage, m_inputs.openOldMovie(*m_stage, movie, url));
    m_oldMovies.push_back(node);
    object.setNode(std::move(node));
    return true;
}

void Player::endOldMovie(DisplayObject& object)
{
    for (const auto& entry : m_oldMovies) {
        if (const auto node = entry.lock(); node.get() == &object.node()) return node->end();
    }
}

template <class Work>
void Player::forOldMovies(Work&& work)
{
    std::erase_if(m_oldMovies, [](const auto& entry) { return entry.expired(); });
    const auto all = m_oldMovies;
    for (const auto& entry : all) {
        if (const auto node = entry.lock()) work(*node);
    }
}

void Player::advanceOldMovies()
{
    forOldMovies([&](OldMovieNode& node) { node.advance(m_stage->frameRate()); });
}

void Player::tellOldMovies(stage::SoundId ended)
{
    forOldMovies([&](OldMovieNode& node) { node.soundEnded(ended); });
}

// An old movie hears of the mouse wherever it is; of a press, when nothing of the new one lies above it.
void Player::pointerMoved()
{
    m_input->moved();
    const swf::Point at = m_stage->pointer().position();
    forOldMovies([&](OldMovieNode& node) { node.movePointer(at); });
}

void Player::pointerPressed(stage::MouseButton button, int clicks)
{
    m_input->pressed(button, clicks);
    const swf::Point at = m_stage->pointer().position();
    const stage::Node* top = m_oldMovies.empty() ? nullptr : m_stage->pointer().topNodeAt(at);
    forOldMovies([&](OldMovieNode& node) {
        if (top == &node) node.pressPointer(at, button, clicks);
    });
}

void Player::pointerReleased(stage::MouseButton button)
{
    m_input->released(button);
    const swf::Point at = m_stage->pointer().position();
    forOldMovies([&](OldMovieNode& node) { node.releasePointer(at, button); });
}

void Player::wheelTurned(int lines)
{
    m_input->wheel(lines);
    forOldMovies([&](OldMovieNode& node) { node.turnWheel(lines); });
}

void Player::keyPressed(int keyCode, char32_t charCode)
{
    m_input->keyPressed(keyCode, charCode);
    forOldMovies([&](OldMovieNode& node) { node.pressKey(keyCode, charCode); });
}

void Player::keyReleased(int keyCode, char32_t charCode)
{
    m_input->keyReleased(keyCode, charCode);
    forOldMovies([&](OldMovieNode& node) { node.releaseKey(keyCode, charCode); });
}

} // namespace flash::avm2
