#include "flash/stage/Button.h"

#include "flash/guard/Guard.h"
#include "flash/stage/Clip.h"
#include "flash/stage/Stage.h"

#include <algorithm>

namespace flash::stage
{

Button::Button(Stage& stage, MoviePtr movie, const swf::Button& definition)
    : Node(stage, NodeKind::Button), m_definition(definition)
{
    m_movie = std::move(movie);
}

NodePtr Button::make(const swf::ButtonRecord& record)
{
    guard::check();
    if (!m_stage.hasRoomIn(*this)) return nullptr;
    NodePtr node = m_stage.makeNode(m_movie, record.characterId);
    if (!node || Stage::wouldContainItself(*node, *this)) return nullptr;
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
            m_stage.noteRemoved(*gone);
            m_stage.queueUnload(*gone);
            m_stage.retire(*gone);
        }
    }
    m_children.clear();
    for (const auto& [index, node] : m_byRecord) m_children.push_back(node);
    std::sort(m_children.begin(), m_children.end(),
              [](const NodePtr& a, const NodePtr& b) { return a->depth() < b->depth(); });
    for (const NodePtr& node : fresh) m_stage.begin(*node);
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
                clip->m_inert = true;
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
swf::Rect Button::hitBounds() { return boundsOfAll(hitNodes(), Extent::WithStrokes); }

bool Button::hitsShape(swf::Point stagePoint)
{
    return std::any_of(m_children.begin(), m_children.end(),
                       [&](const NodePtr& node) { return node->hitsShape(stagePoint); });
}

} // namespace flash::stage
