#include "flash/stage/DisplayList.h"

#include "flash/guard/Guard.h"
#include "flash/stage/Button.h"
#include "flash/stage/Graphics.h"
#include "flash/stage/Stage.h"
#include "flash/stage/TextField.h"

#include <algorithm>

namespace flash::stage
{

Clip* DisplayList::level(int number) const
{
    const auto found = m_levels.find(number);
    return found == m_levels.end() ? nullptr : found->second.get();
}

void DisplayList::enlistAnew(Clip& clip)
{
    const auto self = std::static_pointer_cast<Clip>(clip.shared_from_this());
    if (std::erase(m_clips, self) > 0) enlist(self);
}

bool DisplayList::hasRoomIn(const Node& parent) const
{
    guard::check();
    if (parent.m_nesting + 1 >= guard::kDeepestNesting) {
        guard::refuse(guard::Bound::Nesting, "Clips are nested too deeply; the innermost are left out");
        return false;
    }
    if (*m_instances < guard::kMaxInstances) return true;
    guard::refuse(guard::Bound::Instances,
                  "The movie shows too many things at one time; further ones are left out");
    return false;
}

bool DisplayList::wouldContainItself(const Node& node, const Node& parent)
{
    for (const Node* above = &parent; above->m_parent; above = above->m_parent) {
        if (above->m_characterId == node.m_characterId && above->m_movie == node.m_movie &&
            above->m_kind == node.m_kind) {
            guard::refuse(guard::Bound::SelfContained, "Character " + std::to_string(node.m_characterId) +
                                                           " contains itself; the inner one is left out");
            return true;
        }
        // Scripts may put anything into anything; they come to an end by themselves.
        if (above->m_placedFrame < 0 && above->m_parent->m_kind == NodeKind::Clip) return false;
    }
    return false;
}

NodePtr DisplayList::makeNode(const MoviePtr& movie, std::uint16_t characterId)
{
    if (movie) {
        // What an imported character places is of its own movie.
        if (const auto other = movie->imports.find(characterId); other != movie->imports.end())
            return makeNode(other->second.movie, other->second.id);
    }
    const swf::Character* character = movie ? movie->character(characterId) : nullptr;
    if (!character) return nullptr;
    NodePtr node;
    if (const auto* shape = std::get_if<swf::ShapeCharacter>(&character->data)) {
        if (shape->shape) node = std::make_shared<ShapeNode>(m_stage, shape->shape);
    } else if (const auto* morph = std::get_if<swf::MorphCharacter>(&character->data)) {
        if (morph->morph) node = std::make_shared<MorphNode>(m_stage, morph->morph);
    } else if (const auto* text = std::get_if<swf::StaticText>(&character->data)) {
        node = std::make_shared<StaticTextNode>(m_stage, movie, *text);
    } else if (const auto* edit = std::get_if<swf::EditText>(&character->data)) {
        node = std::make_shared<TextField>(m_stage, movie, *edit);
    } else if (const auto* button = std::get_if<swf::Button>(&character->data)) {
        node = std::make_shared<Button>(m_stage, movie, *button);
    } else if (const auto* video = std::get_if<swf::VideoStream>(&character->data)) {
        node = std::make_shared<VideoNode>(m_stage, *video);
    } else if (const auto* bitmap = std::get_if<swf::BitmapCharacter>(&character->data)) {
        if (bitmap->bitmap) {
            auto shown = std::make_shared<BitmapNode>(m_stage, bitmap->bitmap, false);
            // What a timeline moves goes smoothly.
            shown->setSnapping(PixelSnapping::Never);
            node = shown;
        }
    } else if (const auto* sprite = std::get_if<swf::Sprite>(&character->data)) {
        auto clip =
            std::make_shared<Clip>(m_stage, movie, sprite->timeline ? sprite->timeline : emptyTimeline());
        node = clip;
    }
    if (!node) return nullptr;
    node->m_movie = movie;
    node->m_characterId = characterId;
    node->m_scalingGrid = character->scalingGrid;
    return node;
}

void DisplayList::begin(Node& node)
{
    // Only what files place is given a name; scripts may have given an empty one.
    if (node.isScriptable() && node.name().empty() && !node.isScriptTransformed())
        node.setName("instance" + std::to_string(++m_instanceCounter));
    node.begin();
}

void DisplayList::retire(Node& node)
{
    if (node.m_removed) return;
    guard::check();
    const NodePtr keep = node.shared_from_this();
    m_stage.script().nodeRemoved(node);
    for (const NodePtr& held : node.held()) retire(*held);
    node.m_removed = true;
    node.unlist();
    node.m_parent = nullptr;
    if (node.m_mask) node.setMask(nullptr);
    if (node.m_maskee) node.m_maskee->setMask(nullptr);
    node.leave();
    m_stage.focus().forget(node);
    m_stage.pointer().forget(node);
    m_stage.services().sound.ownerRemoved(&node);
}

bool DisplayList::queueUnload(Node& node)
{
    Clip* clip = asClip(&node);
    if (clip && clip->isInert()) return false;
    guard::check();
    const bool own =
        clip && (clip->hasClipEvent(Event::Unload) || m_stage.script().hasHandler(*clip, Event::Unload));
    // The innermost hear of it first. A clip that hears of it itself keeps everything until then; of another
    // one only those children stay that do.
    bool any = own;
    const std::vector<NodePtr> children(node.children().begin(), node.children().end());
    std::vector<NodePtr> deaf;
    for (const NodePtr& child : children) {
        if (queueUnload(*child))
            any = true;
        else
            deaf.push_back(child);
    }
    if (own) m_stage.queue().addEvent(*clip, Event::Unload);
    if (!any) return false;
    if (clip && !own) {
        for (const NodePtr& child : deaf) {
            clip->take(*child);
            retire(*child);
        }
    }
    if (node.parent() && !node.m_unloading) m_unloading.push_back(node.shared_from_this());
    return true;
}

void DisplayList::finishUnloading()
{
    while (!m_unloading.empty()) {
        const std::vector<NodePtr> gone = std::move(m_unloading);
        m_unloading.clear();
        for (const NodePtr& node : gone) {
            // Entries below the one that was taken off the list go with it.
            if (!node->m_unloading || node->m_removed) continue;
            if (Clip* parent = asClip(node->m_parent)) parent->take(*node);
            retire(*node);
        }
    }
}

void DisplayList::stepClips()
{
    // The newest first. Those made meanwhile have had their first frame by then.
    for (std::size_t i = m_clips.size(); i-- > 0;) {
        const std::shared_ptr<Clip> clip = m_clips[i];
        clip->step();
    }
    std::erase_if(m_clips, [](const std::shared_ptr<Clip>& clip) { return clip->isRemoved(); });
}

void DisplayList::noteBound(TextField& field)
{
    m_boundFields.push_back(std::static_pointer_cast<TextField>(field.shared_from_this()));
}

void DisplayList::syncTextFields()
{
    std::erase_if(m_boundFields, [](const std::weak_ptr<TextField>& entry) {
        const auto field = entry.lock();
        return !field || field->isRemoved();
    });
    // Reading a variable may run a getter, which may make more fields.
    for (std::size_t i = 0; i < m_boundFields.size(); ++i)
        if (const auto field = m_boundFields[i].lock()) field->syncVariable();
}

void DisplayList::clear()
{
    m_unloading.clear();
    for (const auto& [number, root] : takeLevels()) retire(*root);
    m_clips.clear();
    m_boundFields.clear();
}

} // namespace flash::stage
