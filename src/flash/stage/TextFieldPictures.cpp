#include "base/TextCodes.h"
#include "flash/stage/Clip.h"
#include "flash/stage/Stage.h"
#include "flash/stage/TextField.h"

#include <algorithm>
#include <utility>

// The pictures among a field's letters: clips that the field holds, placed where the layout leaves room.
namespace flash::stage
{

namespace
{

/// The letters move once it is known how large a picture is.
class Arrival final : public LoadListener
{
public:
    explicit Arrival(std::weak_ptr<TextField> field) : m_field(std::move(field)) {}
    void completed(Clip&) override { tell(); }
    void initialized(Clip&) override { tell(); }

private:
    void tell()
    {
        const std::shared_ptr<TextField> field = m_field.lock();
        if (field && !field->isRemoved()) field->pictureArrived();
    }
    std::weak_ptr<TextField> m_field;
};

} // namespace

void TextField::renewPictures()
{
    const std::vector<TextPicture>& wanted = m_content.pictures();
    if (wanted == m_pictures) return;
    // Before it is on its list it shows nothing, and the newer scripts keep their own lists.
    if (isRemoved() || !parent() || m_stage.script().keepsClips()) return;
    const NodePtr self = shared_from_this();
    std::vector<std::pair<TextPicture, NodePtr>> fresh;
    const std::vector<TextPicture> known = std::exchange(m_pictures, {});
    std::vector<NodePtr> nodes = std::exchange(m_pictureNodes, {});
    for (const TextPicture& picture : std::vector(wanted)) {
        std::size_t i = 0;
        const auto isSame = [&](TextPicture other) {
            other.index = picture.index;
            return other == picture;
        };
        while (i < known.size() && !(nodes[i] && isSame(known[i]))) ++i;
        const bool stays = i < known.size();
        NodePtr node = stays ? std::exchange(nodes[i], nullptr) : makePicture(picture);
        if (!node) continue;
        m_pictures.push_back(picture);
        m_pictureNodes.push_back(node);
        if (!stays) fresh.emplace_back(picture, node);
    }
    for (const NodePtr& gone : nodes) {
        if (!gone) continue;
        m_stage.view().noteRemoved(*gone, gone->m_drawnBounds);
        m_stage.displayList().queueUnload(*gone);
        m_stage.displayList().retire(*gone);
    }
    invalidate();
    // Last, because what begins runs scripts, which may give the field another text or take it away.
    for (const auto& [picture, node] : fresh)
        if (std::ranges::find(m_pictureNodes, node) != m_pictureNodes.end()) startPicture(picture, *node);
}

// An instance of the library's, or a clip that is still empty, on no list yet.
NodePtr TextField::makePicture(const TextPicture& picture)
{
    DisplayList& list = m_stage.displayList();
    if (!list.hasRoomIn(*this)) return nullptr;
    const auto exported = m_stage.linkage().exportedCharacter(m_movie, base::utf8FromUtf16(picture.source));
    NodePtr node = exported ? list.makeNode(m_movie, *exported) : nullptr;
    if (node && DisplayList::wouldContainItself(*node, *this)) return nullptr;
    if (!asClip(node.get())) {
        auto empty = std::make_shared<Clip>(m_stage, m_movie, list.emptyTimeline());
        empty->showContent(Clip::Content::Made);
        node = std::move(empty);
    }
    node->m_parent = this;
    node->m_nesting = m_nesting + 1;
    node->m_depth = kTimelineDepth;
    return node;
}

void TextField::startPicture(const TextPicture& picture, Node& node)
{
    const std::string source = base::utf8FromUtf16(picture.source);
    if (!picture.id.empty()) node.setName(base::utf8FromUtf16(picture.id));
    m_stage.displayList().begin(node);
    auto& clip = static_cast<Clip&>(node);
    if (clip.content() != Clip::Content::Made) return;
    if (const auto exported = m_stage.linkage().exportedCharacter(m_movie, source)) {
        clip.attach(m_movie, *exported, kTimelineDepth, {});
        return;
    }
    LoadRequest request;
    request.url = source;
    const Clip* around = parentClip();
    request.baseUrl = around ? around->url() : m_stage.url();
    m_stage.loads().intoClip(
        clip, std::move(request),
        std::make_shared<Arrival>(std::static_pointer_cast<TextField>(shared_from_this())));
}

/// @returns its extent in its own space, and how large that is to be shown
TextField::PictureSize TextField::sizeOf(const TextPicture& picture, Node& node)
{
    const swf::Rect own = node.bounds();
    return {own, picture.width.value_or(own.width()), picture.height.value_or(own.height())};
}

void TextField::placePictures()
{
    if (m_pictureNodes.empty()) return;
    const std::vector<swf::Point>& floats = layout().floats();
    const swf::Point origin = textOrigin();
    for (std::size_t i = 0; i < m_pictures.size() && i < floats.size(); ++i) {
        const PictureSize size = sizeOf(m_pictures[i], *m_pictureNodes[i]);
        const double scaleX = size.own.width() > 0 ? size.width / size.own.width() : 1;
        const double scaleY = size.own.height() > 0 ? size.height / size.own.height() : 1;
        const swf::Matrix matrix{
            scaleX,
            0,
            0,
            scaleY,
            origin.x + floats[i].x + m_pictures[i].horizontalSpace - scaleX * size.own.xMin,
            origin.y + floats[i].y + m_pictures[i].verticalSpace - scaleY * size.own.yMin};
        if (m_pictureNodes[i]->matrix() != matrix) m_pictureNodes[i]->setMatrix(matrix);
    }
}

std::vector<render::TextFloat> TextField::floats()
{
    std::vector<render::TextFloat> floats;
    for (std::size_t i = 0; i < m_pictures.size(); ++i) {
        const TextPicture& picture = m_pictures[i];
        const PictureSize size = sizeOf(picture, *m_pictureNodes[i]);
        floats.push_back({picture.index, size.width + 2 * picture.horizontalSpace,
                          size.height + 2 * picture.verticalSpace, picture.onRight});
    }
    return floats;
}

void TextField::leave()
{
    m_pictures.clear();
    m_pictureNodes.clear();
}

} // namespace flash::stage
