#include "flash/avm2/bindings/Player.h"
#include "flash/guard/Guard.h"
#include "flash/stage/Graphics.h"

#include <algorithm>

// What timelines place and take off, and what is told of it.
namespace flash::avm2
{

namespace
{

void note(std::map<int, Placed>& placed, const swf::ControlTag& tag, int frame)
{
    if (const auto* remove = std::get_if<swf::RemoveObject>(&tag)) placed.erase(remove->depth);
    const auto* place = std::get_if<swf::PlaceObject>(&tag);
    if (place == nullptr) return;
    if (!place->move) {
        if (!place->characterId || placed.contains(place->depth)) return;
        placed[place->depth].frame = frame;
    }
    const auto found = placed.find(place->depth);
    if (found == placed.end()) return;
    Placed& entry = found->second;
    entry.revision = frame;
    if (place->characterId) entry.characterId = *place->characterId;
    if (place->matrix) entry.matrix = place->matrix;
    if (place->name) entry.name = place->name;
    if (place->color) entry.color = place->color;
    if (place->visible) entry.visible = place->visible;
    if (place->ratio) entry.ratio = place->ratio;
    if (place->clipDepth) entry.clipDepth = place->clipDepth;
    if (place->filters) entry.filters = place->filters;
    if (place->blend) entry.blend = place->blend;
    if (place->cacheAsBitmap) entry.cacheAsBitmap = place->cacheAsBitmap;
    if (place->opaqueBackground) entry.opaqueBackground = place->opaqueBackground;
}

} // namespace

void Player::showCharacter(DisplayObject& object, const stage::MoviePtr& movie, std::uint16_t characterId)
{
    object.movie = movie;
    object.characterId = characterId;
    const swf::Character* character = movie->character(characterId);
    if (character == nullptr) return;
    const auto* sprite = std::get_if<swf::Sprite>(&character->data);
    if (sprite == nullptr || object.frame != 0) return;
    object.timeline = sprite->timeline;
    showFrame(object, 1);
}

DisplayObject* Player::makeCharacter(const stage::MoviePtr& movie, std::uint16_t characterId)
{
    ClassObject* cls = classOf(movie, characterId);
    if (cls == nullptr) return nullptr;
    auto* made = as<DisplayObject>(Value(m_vm->instantiate(cls)));
    if (made == nullptr) return nullptr;
    if (made->node().characterId() != characterId || made->node().movie() != movie) {
        const swf::Character* character = movie->character(characterId);
        if (!std::holds_alternative<swf::Button>(character->data)) {
            stage::NodePtr node = m_stage->displayList().makeNode(movie, characterId);
            if (node == nullptr) return nullptr;
            made->setNode(std::move(node));
        }
    }
    return made;
}

void Player::showFrame(DisplayObject& clip, int frame)
{
    if (clip.timeline == nullptr) return;
    frame = std::clamp(frame, 1, clip.lastFrame());
    if (frame == clip.frame) return;
    if (LoadedMovie* own = clip.isRoot ? loaded(clip.movie) : nullptr) {
        for (int i = clip.frame; i < frame; ++i) loadScripts(*own, static_cast<std::size_t>(i));
    }
    const bool isBack = frame < clip.frame;
    const int before = isBack ? 0 : clip.frame;
    if (isBack) clip.placed.clear();
    const auto& frames = clip.timeline->frames;
    for (int i = before; i < frame && i < static_cast<int>(frames.size()); ++i) {
        for (const swf::ControlTag& tag : frames[static_cast<std::size_t>(i)].tags)
            note(clip.placed, tag, i + 1);
    }
    const int generation = ++clip.generation;
    if (isBack) clip.frame = frame;
    removeGone(clip, isBack);
    if (clip.generation != generation) return; // a script that was told of it went elsewhere
    clip.frame = frame;
    clip.hasPendingScript = true;
    if (clip.clip() != nullptr) clip.clip()->noteFrame(frame - 1);
    placeNew(clip, before);
}

/// Back in time nothing takes another character's look: it is made anew.
void Player::removeGone(DisplayObject& clip, bool isBack)
{
    RootedList<DisplayObject*> children(m_vm->heap(), clip.children.begin(), clip.children.end());
    for (std::size_t i = 0; i < children.size(); ++i) {
        DisplayObject& child = *children[i];
        if (child.depth == 0 || child.parent != &clip) continue;
        const auto found = clip.placed.find(child.depth);
        const bool isSame = found != clip.placed.end() && found->second.frame == child.placedFrame &&
                            (!isBack || found->second.characterId == child.characterId);
        if (!isSame) removeChild(clip, child, By::Timeline);
    }
}

void Player::apply(DisplayObject& child, const Placed& entry)
{
    stage::Node& node = child.node();
    child.placedRevision = entry.revision;
    if (!child.isTransformed) {
        node.setMatrix(entry.matrix.value_or(swf::Matrix{}));
        node.setColor(entry.color.value_or(swf::ColorTransform{}));
    }
    node.setRatio(entry.ratio.value_or(0));
    if (entry.clipDepth)
        node.setClipDepth(stage::kTimelineDepth + *entry.clipDepth);
    else
        node.setClipDepth({});
    // Back where the timeline had none, its own go; those of scripts stay.
    if (entry.filters || child.filterValues.empty()) {
        node.setFilters(entry.filters.value_or(std::vector<swf::Filter>{}));
        child.filterValues.clear();
    }
    if (entry.blend) node.setBlend(*entry.blend);
    if (entry.cacheAsBitmap) node.setCacheAsBitmap(*entry.cacheAsBitmap);
    if (entry.visible) node.setVisible(*entry.visible);
    if (entry.opaqueBackground) node.setOpaqueBackground(entry.opaqueBackground);
}

/// Only what is purely drawn takes another character's look.
void Player::replaceCharacter(DisplayObject& child, std::uint16_t characterId)
{
    child.characterId = characterId;
    if (!child.node().isExchangeable()) return;
    stage::NodePtr node = m_stage->displayList().makeNode(child.parent->movie, characterId);
    if (node == nullptr || !node->isExchangeable()) return;
    child.setNode(std::move(node));
}

void Player::placeNew(DisplayObject& clip, int after)
{
    std::map<int, DisplayObject*> there;
    RootedList<DisplayObject*> kept(m_vm->heap(), clip.children.begin(), clip.children.end());
    for (std::size_t i = 0; i < kept.size(); ++i) {
        if (kept[i]->depth > 0) there.emplace(kept[i]->depth, kept[i]);
    }
    for (const auto& [depth, entry] : clip.placed) {
        if (const auto found = there.find(depth); found != there.end()) {
            DisplayObject& child = *found->second;
            if (child.characterId != entry.characterId) replaceCharacter(child, entry.characterId);
            if (child.placedRevision != entry.revision) apply(child, entry);
            continue;
        }
        // What a script has taken off is not placed again, unless the timeline does so.
        if (entry.frame <= after) continue;
        if (!m_stage->displayList().hasRoomIn(clip.node())) return;
        DisplayObject* child = makeCharacter(clip.movie, entry.characterId);
        if (child == nullptr) continue;
        child->characterId = entry.characterId;
        child->movie = clip.movie;
        if (wouldContainItself(*child, clip)) continue;
        child->depth = depth;
        child->placedFrame = entry.frame;
        child->name = Value(m_vm->string(entry.name ? fromUtf8(*entry.name) : nextInstanceName()));
        kept.push_back(child);
        // Before what the timeline has at the next depth above.
        std::size_t index = clip.children.size();
        int nearest = 0x10000;
        for (std::size_t i = 0; i < clip.children.size(); ++i) {
            const int other = clip.children[i]->depth;
            if (other <= depth || other >= nearest) continue;
            nearest = other;
            index = i;
        }
        clip.insertChild(*child, index);
        apply(*child, entry);
        showCharacter(*child, clip.movie, entry.characterId);
    }
}

/// Only what is there whole is seen under its name.
void Player::nameInParent(DisplayObject& parent, DisplayObject& child)
{
    if (!child.name.isString() || child.depth == 0) return;
    m_vm->guarded([&] {
        const Multiname name = m_vm->publicName(m_vm->names().intern(m_vm->toString(child.name)));
        if (parent.traits()->find(name) != nullptr || parent.isDynamic())
            m_vm->set(Value(&parent), name, Value(&child));
    });
}

void Player::constructChildren(DisplayObject& parent)
{
    RootedList<DisplayObject*> children(m_vm->heap(), parent.children.begin(), parent.children.end());
    const bool wasBuilding = std::exchange(parent.isBuilding, true);
    const struct Leave {
        DisplayObject& parent;
        bool before;
        ~Leave() { parent.isBuilding = before; }
    } leave{parent, wasBuilding};
    for (std::size_t i = 0; i < children.size(); ++i) {
        DisplayObject& child = *children[i];
        if (child.isConstructed || child.isConstructing || child.parent != &parent) continue;
        construct(child);
        if (child.parent != &parent) continue;
        nameInParent(parent, child);
        announce(child, "added", Within::Untold);
    }
}

void Player::construct(DisplayObject& child)
{
    child.isConstructing = true;
    const swf::Character* character = child.movie ? child.movie->character(child.characterId) : nullptr;
    if (character != nullptr && std::holds_alternative<swf::Button>(character->data)) {
        if (child.parent != nullptr) nameInParent(*child.parent, child);
        m_vm->guarded([&] { makeButtonStates(child); });
    }
    ClassObject* cls = child.traits()->cls;
    if (cls != nullptr && cls->constructor != nullptr)
        m_vm->guarded([&] { m_vm->invoke(*cls->constructor, Value(&child), {}); });
    child.isConstructed = true;
    child.isConstructing = false;
}

bool Player::wouldContainItself(const DisplayObject& child, const DisplayObject& parent)
{
    for (const DisplayObject* at = &parent; at != nullptr; at = at->parent) {
        if (child.characterId == 0 || at->characterId != child.characterId || at->movie != child.movie)
            continue;
        guard::refuse(guard::Bound::SelfContained, "Character " + std::to_string(child.characterId) +
                                                       " contains itself; the inner one is left out");
        return true;
    }
    return false;
}

/// What is in it hears of the stage, unless it has by now.
void Player::announce(DisplayObject& child, std::string_view type, Within within)
{
    m_vm->guarded([&] { fire(*m_vm, child, type, true); });
    if (!isOnStage(child)) return;
    const std::string_view ofStage = type == "added" ? "addedToStage" : "removedFromStage";
    RootedList<DisplayObject*> pending(m_vm->heap());
    pending.push_back(&child);
    while (!pending->empty()) {
        DisplayObject* at = pending[pending.size() - 1];
        pending->pop_back();
        if (!at->isConstructed) continue;
        if (isOnStage(*at)) m_vm->guarded([&] { fire(*m_vm, *at, ofStage); });
        if (within == Within::Untold) return;
        for (std::size_t i = at->children.size(); i-- > 0;) pending.push_back(at->children[i]);
    }
}

void Player::insert(DisplayObject& parent, DisplayObject& child, std::size_t index)
{
    if (child.parent == &parent) {
        child.depth = 0;
        parent.moveChild(child, index);
        return;
    }
    if (child.parent != nullptr) removeChild(*child.parent, child);
    if (child.parent != nullptr) return; // a script that was told of it has put it elsewhere
    child.depth = 0;
    parent.insertChild(child, index);
    announce(child, "added");
}

void Player::removeChild(DisplayObject& parent, DisplayObject& child, By by)
{
    if (child.isConstructed) announce(child, "removed");
    if (child.parent != &parent) return;
    // What a script takes off stays where the timeline has named it.
    if (by == By::Timeline && child.depth > 0 && child.name.isString()) {
        m_vm->guarded([&] {
            const Multiname name = m_vm->publicName(m_vm->names().intern(m_vm->toString(child.name)));
            if (m_vm->hasOwn(Value(&parent), name) && m_vm->get(Value(&parent), name).isObject())
                m_vm->set(Value(&parent), name, Value::null());
        });
        if (child.parent != &parent) return;
    }
    parent.eraseChild(child);
    noteOffStage(child);
}

} // namespace flash::avm2
