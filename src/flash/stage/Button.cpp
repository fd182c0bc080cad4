#include "flash/stage/Button.h"

#include "flash/guard/Guard.h"
#include "flash/stage/Clip.h"
#include "flash/stage/Stage.h"

#include <algorithm>

namespace flash::stage
{

namespace
{

unsigned conditionOf(Event event, bool menu)
{
    using Condition = swf::ButtonAction::Condition;
    switch (event) {
    case Event::RollOver: return Condition::IdleToOverUp;
    case Event::RollOut: return Condition::OverUpToIdle;
    case Event::Press: return Condition::OverUpToOverDown;
    case Event::Release: return Condition::OverDownToOverUp;
    case Event::ReleaseOutside: return Condition::OutDownToIdle;
    case Event::DragOver: return menu ? Condition::IdleToOverDown : Condition::OutDownToOverDown;
    case Event::DragOut: return menu ? Condition::OverDownToIdle : Condition::OverDownToOutDown;
    default: return 0;
    }
}

Button::State stateAfter(Event event, bool menu)
{
    switch (event) {
    case Event::RollOver:
    case Event::Release: return Button::State::Over;
    case Event::Press:
    case Event::DragOver: return Button::State::Down;
    case Event::DragOut: return menu ? Button::State::Up : Button::State::Over;
    default: return Button::State::Up;
    }
}

/// Index into the sounds of a button; -1 when the event has none.
int cueOf(Event event)
{
    switch (event) {
    case Event::RollOut: return 0;
    case Event::RollOver: return 1;
    case Event::Press: return 2;
    case Event::Release: return 3;
    default: return -1;
    }
}

} // namespace

Button::Button(Stage& stage, MoviePtr movie, const swf::Button& definition)
    : Node(stage, NodeKind::Button), m_definition(definition)
{
    m_movie = std::move(movie);
}

NodePtr Button::make(const swf::ButtonRecord& record)
{
    guard::check();
    if (!m_stage.displayList().hasRoomIn(*this)) return nullptr;
    NodePtr node = m_stage.displayList().makeNode(m_movie, record.characterId);
    if (!node || DisplayList::wouldContainItself(*node, *this)) return nullptr;
    node->m_parent = this;
    node->m_nesting = m_nesting + 1;
    node->m_depth = kTimelineDepth + record.depth;
    node->m_matrix = record.matrix;
    node->m_color = record.color;
    node->m_filters = record.filters;
    node->m_blend = record.blend;
    return node;
}

void Button::begin()
{
    m_state = State::Down;
    setState(State::Up);
}

void Button::setState(State state)
{
    if (state == m_state) return;
    m_state = state;
    const std::uint8_t bit = state == State::Up     ? swf::ButtonRecord::Up
                             : state == State::Over ? swf::ButtonRecord::Over
                                                    : swf::ButtonRecord::Down;
    std::vector<NodePtr> fresh;
    for (std::size_t i = 0; i < m_definition.records.size(); ++i) {
        const swf::ButtonRecord& record = m_definition.records[i];
        const auto shown = m_byRecord.find(i);
        const bool wanted = (record.states & bit) != 0;
        if (wanted && shown == m_byRecord.end()) {
            if (NodePtr node = make(record)) {
                m_byRecord.emplace(i, node);
                fresh.push_back(node);
            }
        } else if (!wanted && shown != m_byRecord.end()) {
            const NodePtr gone = shown->second;
            m_byRecord.erase(shown);
            m_stage.view().noteRemoved(*gone, gone->m_drawnBounds);
            m_stage.displayList().queueUnload(*gone);
            m_stage.displayList().retire(*gone);
        }
    }
    m_children.clear();
    for (const auto& [index, node] : m_byRecord) m_children.push_back(node);
    std::sort(m_children.begin(), m_children.end(),
              [](const NodePtr& a, const NodePtr& b) { return a->depth() < b->depth(); });
    for (const NodePtr& node : fresh) m_stage.displayList().begin(*node);
    contentChanged();
}

std::span<const NodePtr> Button::hitNodes()
{
    if (!m_hitNodesMade) {
        m_hitNodesMade = true;
        for (const swf::ButtonRecord& record : m_definition.records) {
            if ((record.states & swf::ButtonRecord::Hit) == 0) continue;
            const NodePtr node = make(record);
            if (!node) continue;
            if (Clip* clip = asClip(node.get())) {
                clip->setInert();
                clip->begin();
            }
            m_hitNodes.push_back(node);
        }
    }
    return m_hitNodes;
}

bool Button::takesPointer(swf::Point stagePoint)
{
    return std::ranges::any_of(hitNodes(), [&](const NodePtr& node) { return node->hitsShape(stagePoint); });
}

namespace
{
swf::Rect boundsOfAll(std::span<const NodePtr> nodes, Node::Extent extent)
{
    swf::Rect all;
    for (const NodePtr& node : nodes)
        all = swf::unite(all, swf::mapBounds(node->matrix(), node->bounds(extent)));
    return all;
}
} // namespace

swf::Rect Button::bounds(Extent extent) { return boundsOfAll(m_children, extent); }
swf::Rect Button::pointerBounds() { return boundsOfAll(hitNodes(), Extent::WithStrokes); }

bool Button::hitsShape(swf::Point stagePoint)
{
    return std::any_of(m_children.begin(), m_children.end(),
                       [&](const NodePtr& node) { return node->hitsShape(stagePoint); });
}

void Button::answerPointer(Event event)
{
    const int cue = cueOf(event);
    if (cue >= 0) {
        const swf::Button::Cue& sound = m_definition.sounds[static_cast<std::size_t>(cue)];
        const swf::Character* character = m_movie->character(sound.soundId);
        if (const auto* data = character ? std::get_if<swf::Sound>(&character->data) : nullptr)
            m_stage.services().sound.startEvent(m_movie, sound.soundId, *data, sound.info);
    }
    setState(stateAfter(event, tracksAsMenu()));
    runPointerActions(event);
}

void Button::runPointerActions(Event event)
{
    // Inside of another button it is that one whose actions these are.
    Node* const target = parent();
    if (!target) return;
    const unsigned condition = conditionOf(event, tracksAsMenu());
    for (const swf::ButtonAction& action : m_definition.actions)
        if (action.conditions & condition) m_stage.queue().addBlock(*target, m_movie, action.actions);
}

bool Button::takeKeyPress(int keyPressCode)
{
    Node* const target = parent();
    if (!target || !isVisible() || !m_stage.script().isEnabled(*this)) return false;
    bool any = false;
    for (const swf::ButtonAction& action : m_definition.actions) {
        if (action.keyCode != keyPressCode) continue;
        m_stage.queue().addBlock(*target, m_movie, action.actions);
        any = true;
    }
    return any || std::any_of(m_children.begin(), m_children.end(),
                              [&](const NodePtr& child) { return child->takeKeyPress(keyPressCode); });
}

bool Button::listensToKeys() const
{
    return std::any_of(m_definition.actions.begin(), m_definition.actions.end(),
                       [](const swf::ButtonAction& action) { return action.keyCode != 0; }) ||
           std::any_of(m_children.begin(), m_children.end(),
                       [](const NodePtr& child) { return child->listensToKeys(); });
}

Cursor Button::cursorAt(swf::Point) { return useHandCursor ? Cursor::Hand : Cursor::Arrow; }

bool Button::isTabStop() { return m_stage.script().isEnabled(*this); }

NodePtr Button::ownPointerTarget(swf::Point stagePoint)
{
    // A button inside of it comes first; whatever else it shows is only looked at.
    for (auto child = m_children.rbegin(); child != m_children.rend(); ++child) {
        if ((*child)->kind() != NodeKind::Button) continue;
        if (NodePtr inner = (*child)->pointerTarget(stagePoint)) return inner;
    }
    return answersPointer() && takesPointer(stagePoint) ? shared_from_this() : nullptr;
}

std::vector<NodePtr> Button::held() const
{
    std::vector<NodePtr> all = m_children;
    all.insert(all.end(), m_hitNodes.begin(), m_hitNodes.end());
    return all;
}

void Button::leave()
{
    m_children.clear();
    m_byRecord.clear();
    m_hitNodes.clear();
}

} // namespace flash::stage
