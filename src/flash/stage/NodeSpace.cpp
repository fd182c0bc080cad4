#include "flash/stage/Node.h"
#include "flash/stage/Space.h"
#include "flash/stage/Stage.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

// Nodes that have left the plane of what contains them.
namespace flash::stage
{

namespace
{

constexpr double kDegree = std::numbers::pi / 180;

swf::Matrix3D scrolledBy(const Node& node)
{
    const auto& rect = node.scrollRect();
    if (!rect) return {};
    return swf::Matrix3D(
        swf::Matrix{1, 0, 0, 1, -static_cast<double>(rect->xMin), -static_cast<double>(rect->yMin)});
}

} // namespace

void SpacePlace::recompose()
{
    const double sx = std::sin(turn[0] * kDegree), cx = std::cos(turn[0] * kDegree),
                 sy = std::sin(turn[1] * kDegree), cy = std::cos(turn[1] * kDegree),
                 sz = std::sin(turn[2] * kDegree), cz = std::cos(turn[2] * kDegree);
    const double axes[3][3] = {{cy * cz, cy * sz, -sy},
                               {sx * sy * cz - cx * sz, sx * sy * sz + cx * cz, sx * cy},
                               {cx * sy * cz + sx * sz, cx * sy * sz - sx * cz, cx * cy}};
    matrix = {};
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t k = 0; k < 3; ++k) matrix.m[4 * i + k] = axes[i][k] * scale[i];
        matrix.m[12 + i] = place[i] * swf::kTwipsPerPixel;
    }
}

swf::Matrix SpacePlace::flat() const
{
    const double s = std::sin(turn[2] * kDegree), c = std::cos(turn[2] * kDegree);
    return {c * scale[0], s * scale[0], -s * scale[1], c * scale[1], matrix.m[12], matrix.m[13]};
}

Space& Node::needSpace()
{
    if (!m_space) {
        m_space = std::make_unique<Space>();
        m_space->listed = m_stage.view().spaces();
    }
    return *m_space;
}

const SpacePlace* Node::spacePlace() const
{
    return m_space && m_space->placed ? &*m_space->placed : nullptr;
}

SpacePlace Node::spacePlaceOrFlat()
{
    if (const SpacePlace* placed = spacePlace()) return *placed;
    SpacePlace result;
    result.place = {m_matrix.tx / swf::kTwipsPerPixel, m_matrix.ty / swf::kTwipsPerPixel, 0};
    result.turn = {0, 0, rotation()};
    result.scale = {scaleX() / 100, scaleY() / 100, 1};
    result.matrix = swf::Matrix3D(m_matrix);
    return result;
}

void Node::setSpacePlace(const SpacePlace& place)
{
    if (!std::ranges::all_of(place.matrix.m, [](double number) { return std::isfinite(number); })) return;
    invalidate();
    needSpace().placed = place;
    setMatrix(place.flat());
    m_scaleX = place.scale[0] * 100;
    m_scaleY = place.scale[1] * 100;
    m_rotation = place.turn[2];
    m_skew = 0;
    m_scaleCached = true;
    invalidate();
}

void Node::clearSpacePlace()
{
    if (!spacePlace()) return;
    invalidate();
    m_space->placed.reset();
    if (!m_space->perspective) m_space.reset();
    // Where it was may be far from where its matrix has it.
    m_stage.view().invalidateAll();
}

void Node::setPerspective(const std::optional<swf::Perspective>& perspective)
{
    if (!perspective && !m_space) return;
    needSpace().perspective = perspective;
    if (!perspective && !m_space->placed) m_space.reset();
    invalidate();
}

bool Node::isInSpace() const
{
    for (const Node* node = this; node; node = node->m_parent)
        if (node->spacePlace()) return true;
    return false;
}

bool Node::holdsSpace() const
{
    if (!m_stage.view().hasSpaces()) return false;
    return std::ranges::any_of(children(), [](const NodePtr& child) {
        return child->spacePlace() != nullptr || child->holdsSpace();
    });
}

swf::Matrix3D Node::matrix3D() const
{
    const SpacePlace* placed = spacePlace();
    return placed ? placed->matrix : swf::Matrix3D(m_matrix);
}

swf::Matrix3D Node::perspectiveAround() const
{
    swf::Matrix outwards; // from the parent's space to that of what has the perspective
    for (const Node* node = m_parent; node; node = node->m_parent) {
        const bool has = node->m_space && node->m_space->perspective;
        if (!has && node->m_parent) {
            outwards = node->m_matrix * outwards;
            continue;
        }
        if (!has) outwards = node->m_matrix * outwards;
        if (!outwards.isInvertible()) return {};
        const swf::Perspective perspective =
            has ? *node->m_space->perspective : m_stage.view().defaultPerspective();
        return swf::Matrix3D(outwards.inverted()) * perspective.matrix() * swf::Matrix3D(outwards);
    }
    return m_stage.view().defaultPerspective().matrix();
}

swf::Matrix3D Node::toStageInSpace() const
{
    std::vector<const Node*> chain;
    for (const Node* node = this; node; node = node->m_parent) chain.push_back(node);
    swf::Matrix3D result;
    bool isOut = false;
    for (auto step = chain.rbegin(); step != chain.rend(); ++step) {
        const Node& node = **step;
        if (node.m_parent) {
            result = result * scrolledBy(*node.m_parent);
            const Space* around = node.m_parent->m_space.get();
            if (isOut && around && around->perspective) result = result * around->perspective->matrix();
        }
        if (!isOut && node.spacePlace()) {
            result = result * node.perspectiveAround();
            isOut = true;
        }
        result = result * node.matrix3D();
    }
    return result;
}

swf::Matrix Node::toStageAt(swf::Point stagePoint) const
{
    if (!m_stage.view().hasSpaces() || !isInSpace()) return toStage();
    constexpr swf::Matrix kNowhere{0, 0, 0, 0, 0, 0};
    const auto toStage = swf::Homography::ofPlane(toStageInSpace());
    const auto back = toStage.inverted();
    if (!back) return kNowhere;
    const auto [x, y, w] = back->map(stagePoint.x, stagePoint.y);
    return w > 0 ? toStage.tangentAt(x / w, y / w) : kNowhere;
}

} // namespace flash::stage
