#include "flash/guard/Guard.h"
#include "flash/stage/Clip.h"
#include "flash/stage/Drawing.h"
#include "flash/stage/Stage.h"

#include <algorithm>
#include <utility>

namespace flash::stage
{

namespace
{

constexpr int depthOf(std::uint16_t fileDepth) { return kTimelineDepth + fileDepth; }

bool isTimelineDepth(int depth) { return depth >= kTimelineDepth && depth < 0; }

} // namespace

int Clip::totalFrames() const { return std::max(1, std::max<int>(m_timeline->statedFrameCount, 0)); }

int Clip::loadedFrames() const
{
    return std::min(totalFrames(), std::max(1, static_cast<int>(m_timeline->frames.size())));
}

int Clip::framesAtHand() const
{
    constexpr std::size_t kPieceBytes = 65536;
    const bool starting = m_movieRoot && m_frame <= 0 && m_stage.frameCounter() == 0;
    if (!starting || !m_movie || m_movie->bytes.size() <= kPieceBytes) return loadedFrames();
    const auto& frames = m_timeline->frames;
    const auto end = std::find_if(frames.begin(), frames.end(),
                                  [](const swf::Frame& frame) { return frame.endOffset > kPieceBytes; });
    return static_cast<int>(end - frames.begin());
}

std::optional<int> Clip::frameByLabel(std::string_view label) const
{
    if (const auto found = m_timeline->frameByLabel(label)) return static_cast<int>(*found);
    return {};
}

std::vector<swf::ActionBlock> Clip::frameActions(int frame) const
{
    std::vector<swf::ActionBlock> blocks;
    if (frame < 0 || static_cast<std::size_t>(frame) >= m_timeline->frames.size()) return blocks;
    for (const swf::ControlTag& tag : m_timeline->frames[static_cast<std::size_t>(frame)].tags)
        if (const auto* action = std::get_if<swf::DoAction>(&tag)) blocks.push_back(action->actions);
    return blocks;
}

void Clip::play()
{
    if (m_playing) return;
    m_playing = true;
    streamSound();
}

void Clip::stop()
{
    m_playing = false;
    stopStream();
}

void Clip::stopStream()
{
    if (m_streaming) m_stage.services().sound.stopStream(this);
    m_streaming = false;
}

void Clip::begin()
{
    if (const Clip* parent = parentClip(); parent && m_url.empty()) m_url = parent->m_url;
    if (m_stage.script().keepsClips()) return;
    if (m_inert) {
        runFrame(0, Run::ListOnly);
        return;
    }
    DisplayList& list = m_stage.displayList();
    const bool listed = !list.clips().empty() && list.clips().back().get() == this;
    if (!listed) list.enlist(std::static_pointer_cast<Clip>(shared_from_this()));
    m_stage.queue().addEvent(*this, Event::Initialize);
    m_stage.queue().addEvent(*this, Event::Construct);
    step();
}

void Clip::step()
{
    if (m_removed || m_inert || m_stage.script().keepsClips()) return;
    const bool first = !m_begun;
    // A level hears of its loading after the scripts of its first frame, which may set the handler.
    const bool loadsLate = first && !m_parent;
    if (first) {
        m_begun = true;
        if (!loadsLate) m_stage.queue().addEvent(*this, Event::Load);
    } else if (!m_unloading) {
        m_stage.queue().addEvent(*this, Event::EnterFrame);
    }
    if (m_frame >= 0 && (!m_playing || m_unloading || m_isBroken)) return;
    const int count = loadedFrames();
    const int next = m_frame + 1;
    if (next < count) {
        runFrame(next, Run::Whole);
        if (loadsLate) m_stage.queue().addEvent(*this, Event::Load);
        streamSound();
        return;
    }
    if (count <= 1) return;
    if (m_parent == nullptr && m_level == 0 && !m_stage.loop()) {
        stop();
        return;
    }
    rewindTo(0);
    streamSound();
}

void Clip::gotoFrame(int frame)
{
    frame = std::max(frame, 0);
    if (m_stage.script().keepsClips()) {
        m_stage.script().showRootFrame(frame);
        return;
    }
    if (frame >= loadedFrames()) {
        // Beyond the end: the last frame is shown, but its scripts do not run.
        const int last = loadedFrames() - 1;
        while (m_frame < last) runFrame(m_frame + 1, Run::ListOnly);
        return;
    }
    if (frame == m_frame) return;
    stopStream();
    if (frame == m_frame + 1)
        runFrame(frame, Run::Whole);
    else if (frame > m_frame)
        skipTo(frame);
    else
        rewindTo(frame);
    streamSound();
}

void Clip::noteFrame(int frame)
{
    if (frame == m_frame) return;
    if (frame != m_frame + 1) stopStream();
    m_frame = frame;
    const auto& frames = m_timeline->frames;
    if (frame < 0 || static_cast<std::size_t>(frame) >= frames.size()) return;
    for (const swf::ControlTag& tag : frames[static_cast<std::size_t>(frame)].tags) {
        if (const auto* background = std::get_if<swf::SetBackground>(&tag))
            m_stage.view().setBackground(background->color);
        else if (const auto* start = std::get_if<swf::StartSound>(&tag))
            startSound(*start);
    }
    streamSound();
}

void Clip::setTimeline(MoviePtr movie, std::shared_ptr<const swf::Timeline> timeline)
{
    m_movie = std::move(movie);
    m_timeline = std::move(timeline);
    m_frame = -1;
}

void Clip::startSound(const swf::StartSound& start)
{
    const swf::Character* character = m_movie ? m_movie->character(start.soundId) : nullptr;
    if (const auto* sound = character ? std::get_if<swf::Sound>(&character->data) : nullptr)
        m_stage.services().sound.startEvent(m_movie, start.soundId, *sound, start.info);
}

void Clip::streamSound()
{
    if (m_removed) return;
    const auto index = static_cast<std::size_t>(std::max(m_frame, 0));
    if (!m_timeline->streamHead || index >= m_timeline->frames.size() || !m_playing) return;
    const auto& tags = m_timeline->frames[index].tags;
    const bool hasBlock = std::any_of(tags.begin(), tags.end(), [](const swf::ControlTag& tag) {
        return std::holds_alternative<swf::SoundStreamBlock>(tag);
    });
    if (!hasBlock) return;
    m_streaming = true;
    m_stage.services().sound.streamFrame(this, m_movie, *m_timeline, index);
}

void Clip::runFrame(int frame, Run run)
{
    guard::check();
    m_frame = frame;
    if (static_cast<std::size_t>(frame) >= m_timeline->frames.size()) return;
    const NodePtr keep = shared_from_this();
    const std::shared_ptr<const swf::Timeline> timeline = m_timeline;
    if (m_movie && timeline.get() == &m_movie->timeline)
        m_stage.linkage().passFrame(m_movie, timeline->frames[static_cast<std::size_t>(frame)]);
    for (const swf::ControlTag& tag : timeline->frames[static_cast<std::size_t>(frame)].tags) {
        guard::check();
        if (const auto* placed = std::get_if<swf::PlaceObject>(&tag)) {
            if (!placed->move && !placed->characterId) {
                // A placement of nothing: the file is not read on, and the frame never comes.
                m_frame = std::max(frame - 1, 0);
                m_isBroken = true;
                return;
            }
            place(*placed, frame);
        } else if (const auto* removed = std::get_if<swf::RemoveObject>(&tag)) {
            if (Node* child = childAt(depthOf(removed->depth))) removeChild(*child);
        } else if (const auto* index = std::get_if<swf::SetTabIndex>(&tag)) {
            if (Node* child = childAt(depthOf(index->depth))) child->tabIndex = index->tabIndex;
        } else if (const auto* background = std::get_if<swf::SetBackground>(&tag)) {
            m_stage.view().setBackground(background->color);
        } else if (run == Run::ListOnly) {
            continue;
        } else if (const auto* action = std::get_if<swf::DoAction>(&tag)) {
            m_stage.queue().addBlock(*this, m_movie, action->actions);
        } else if (const auto* init = std::get_if<swf::DoInitAction>(&tag)) {
            m_stage.queue().addInit(*this, m_movie, *init);
        } else if (const auto* start = std::get_if<swf::StartSound>(&tag)) {
            startSound(*start);
        }
    }
}

void Clip::place(const swf::PlaceObject& tag, int frame)
{
    const int depth = depthOf(tag.depth);
    Node* existing = childAt(depth);
    if (tag.move) {
        if (!existing) return;
        if (tag.characterId)
            replace(*existing, tag);
        else
            applyPlacement(*existing, tag);
        return;
    }
    if (!tag.characterId) return;
    // Up to version 5 a clip shares its depth, and what comes to it later lies below.
    if (existing && (m_movie->header.version > 5 || existing->kind() != NodeKind::Clip)) return;
    if (!m_aside.empty() && takeBack(tag, frame)) return;
    const NodePtr node = instantiate(m_movie, *tag.characterId, depth, true);
    if (!node) return;
    node->m_placedFrame = frame;
    node->m_placedId = *tag.characterId;
    if (tag.name) node->setName(m_stage.linkage().textOf(m_movie, *tag.name));
    if (Clip* clip = asClip(node.get())) clip->m_clipActions = tag.clipActions;
    applyPlacement(*node, tag);
    m_stage.displayList().begin(*node);
}

void Clip::applyPlacement(Node& node, const swf::PlaceObject& tag)
{
    if (node.m_scriptTransformed) return;
    if (tag.matrix) node.setMatrix(*tag.matrix);
    if (tag.color) node.setColor(*tag.color);
    if (tag.ratio) node.setRatio(*tag.ratio);
    if (tag.clipDepth) node.setClipDepth(depthOf(*tag.clipDepth));
    if (tag.filters) node.setFilters(*tag.filters);
    if (tag.blend) node.setBlend(*tag.blend);
    if (tag.cacheAsBitmap) node.setCacheAsBitmap(*tag.cacheAsBitmap);
    if (tag.visible) node.setVisible(*tag.visible);
    if (tag.opaqueBackground) node.setOpaqueBackground(*tag.opaqueBackground);
}

void Clip::replace(Node& old, const swf::PlaceObject& tag)
{
    // Instances that scripts can know stay; only what is purely drawn is exchanged.
    if (!old.isExchangeable() || old.characterId() == *tag.characterId) {
        applyPlacement(old, tag);
        return;
    }
    const NodePtr keep = old.shared_from_this();
    const NodePtr fresh = m_stage.displayList().makeNode(m_movie, *tag.characterId);
    if (!fresh || !fresh->isExchangeable()) {
        applyPlacement(old, tag);
        return;
    }
    fresh->m_placedFrame = old.m_placedFrame;
    fresh->m_placedId = old.m_placedId;
    fresh->m_matrix = old.m_matrix;
    fresh->m_color = old.m_color;
    fresh->m_clipDepth = old.m_clipDepth;
    fresh->m_blend = old.m_blend;
    fresh->m_filters = old.m_filters;
    fresh->setRatio(old.m_ratio);
    const int depth = old.m_depth;
    take(old);
    m_stage.displayList().retire(old);
    insert(fresh, depth);
    applyPlacement(*fresh, tag);
}

void Clip::skipTo(int frame)
{
    // Every placement on the way is made, and what it made is removed again: scripts see the events of what
    // comes and goes in between.
    while (m_frame + 1 < frame) runFrame(m_frame + 1, Run::ListOnly);
    runFrame(frame, Run::Whole);
}

bool Clip::isPlainlyListed() const
{
    for (std::size_t i = 0; i < m_children.size(); ++i) {
        const Node& child = *m_children[i];
        if (child.clipDepth() || child.maskee() != nullptr) return false;
        if (i > 0 && m_children[i - 1]->depth() == child.depth()) return false;
    }
    return true;
}

void Clip::rewindTo(int frame)
{
    const NodePtr keep = shared_from_this();
    // The list is built anew from the first frame. What stood on it waits aside: an instance whose own
    // placement comes by again is taken back, the others go in the end. Movies do so in every frame, to stay
    // where they are: what looks as before is not drawn again.
    const bool isPlain = m_asideIsSeen = isPlainlyListed();
    std::vector<NodePtr> seen;
    for (std::size_t i = 0; i < m_children.size();) {
        const NodePtr child = m_children[i];
        if (!isTimelineDepth(child->depth())) {
            ++i;
            continue;
        }
        m_aside.push_back(child);
        if (isPlain) {
            seen.push_back(child);
            m_children.erase(m_children.begin() + static_cast<std::ptrdiff_t>(i));
        } else {
            take(*child);
        }
    }
    forgetBounds();
    for (int at = 0; at < frame; ++at) runFrame(at, Run::ListOnly);
    runFrame(frame, Run::Whole);
    const std::vector<NodePtr> gone = std::move(m_aside);
    m_aside.clear();
    if (isPlain)
        for (const NodePtr& node : gone) m_stage.view().noteRemoved(*node, node->m_drawnBounds);
    // Layers that came meanwhile, or scripts that went elsewhere.
    if (!std::exchange(m_asideIsSeen, false) || !isPlainlyListed())
        for (const NodePtr& node : seen) node->invalidate();
    for (const NodePtr& node : gone) {
        if (m_stage.displayList().queueUnload(*node)) {
            node->m_unloading = true;
            insert(node, kUnloadDepthBase - node->m_depth);
        } else {
            m_stage.displayList().retire(*node);
        }
    }
}

NodePtr Clip::takeBack(const swf::PlaceObject& tag, int frame)
{
    const int depth = depthOf(tag.depth);
    const auto found = std::find_if(m_aside.begin(), m_aside.end(), [&](const NodePtr& node) {
        return node->depth() == depth && node->m_placedFrame == frame && node->m_placedId == *tag.characterId;
    });
    if (found == m_aside.end()) return nullptr;
    const NodePtr node = *found;
    m_aside.erase(found);
    m_asideIsSeen ? list(node, depth) : insert(node, depth);
    // Whatever the placement does not state is as it was at its creation.
    swf::PlaceObject whole = tag;
    if (!whole.matrix) whole.matrix = swf::Matrix{};
    if (!whole.color) whole.color = swf::ColorTransform{};
    if (!whole.ratio) whole.ratio = 0;
    applyPlacement(*node, whole);
    return node;
}

} // namespace flash::stage
