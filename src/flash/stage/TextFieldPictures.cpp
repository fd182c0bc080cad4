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

// Children that something else holds on to outlive it.
TextField::~TextField()
{
    for (const NodePtr& node : m_pictureNodes)
        if (node->m_parent == this) node->m_parent = nullptr;
}

std::vector<std::size_t> TextField::pairPictures() const
{
    std::vector<std::size_t> pairs;
    std::vector<bool> isTaken(m_pictures.size());
    std::size_t first = 0; // that is not taken: mostly they stay in order, and none is looked at twice
    for (const TextPicture& picture : m_content.pictures()) {
        while (first < m_pictures.size() && isTaken[first]) ++first;
        std::size_t i = first;
        while (i < m_pictures.size() && (isTaken[i] || !m_pictures[i].isSameAs(picture))) ++i;
        if (i < m_pictures.size()) isTaken[i] = true;
        pairs.push_back(i < m_pictures.size() ? i : kNone);
    }
    return pairs;
}

void TextField::renewPictures()
{
    if (m_stage.script().keepsClips()) {
        m_stage.script().renewPictures(*this);
        return;
    }
    // Before it is on its list it shows nothing.
    if (isRemoved() || !parent()) return;
    std::vector<std::pair<TextPicture, NodePtr>> fresh;
    const std::vector<std::size_t> pairs = pairPictures();
    std::vector<NodePtr> nodes = std::exchange(m_pictureNodes, {});
    m_pictures.clear();
    const std::vector<TextPicture> wanted = m_content.pictures();
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        const bool stays = pairs[i] != kNone;
        NodePtr node = stays ? std::exchange(nodes[pairs[i]], nullptr) : makePicture(wanted[i]);
        if (!node) continue;
        m_pictures.push_back(wanted[i]);
        m_pictureNodes.push_back(node);
        if (!stays) fresh.emplace_back(wanted[i], node);
    }
    for (const NodePtr& gone : nodes) {
        if (!gone) continue;
        m_stage.view().noteRemoved(*gone, gone->m_drawnBounds);
        m_stage.displayList().queueUnload(*gone);
        m_stage.displayList().retire(*gone);
    }
    // Last, because what begins runs scripts, which may give the field another text or take it away.
    for (const auto& [picture, node] : fresh)
        if (std::ranges::find(m_pictureNodes, node) != m_pictureNodes.end()) startPicture(picture, *node);
}

// ---- for scripts that keep the clips ----------------------------------------------------------------------

Node* TextField::surplusPicture() const
{
    const std::vector<std::size_t> pairs = pairPictures();
    for (std::size_t i = 0; i < m_pictureNodes.size(); ++i)
        if (std::ranges::find(pairs, i) == pairs.end()) return m_pictureNodes[i].get();
    return nullptr;
}

void TextField::settlePictures()
{
    std::vector<TextPicture> pictures;
    std::vector<NodePtr> nodes;
    const std::vector<std::size_t> pairs = pairPictures();
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        if (pairs[i] == kNone) continue;
        pictures.push_back(m_content.pictures()[i]);
        nodes.push_back(std::exchange(m_pictureNodes[pairs[i]], nullptr));
    }
    for (std::size_t i = 0; i < m_pictureNodes.size(); ++i) {
        if (!m_pictureNodes[i]) continue;
        pictures.push_back(m_pictures[i]);
        nodes.push_back(m_pictureNodes[i]);
    }
    m_pictures = std::move(pictures);
    m_pictureNodes = std::move(nodes);
}

const TextPicture* TextField::missingPicture() const
{
    const std::vector<std::size_t> pairs = pairPictures();
    const auto found = std::ranges::find(pairs, kNone);
    return found != pairs.end() ? &m_content.pictures()[static_cast<std::size_t>(found - pairs.begin())]
                                : nullptr;
}

void TextField::showPicture(const TextPicture& picture, const NodePtr& node)
{
    const auto at = std::ranges::upper_bound(m_pictures, picture.index, {}, &TextPicture::index);
    m_pictureNodes.insert(m_pictureNodes.begin() + (at - m_pictures.begin()), node);
    m_pictures.insert(at, picture);
    node->m_parent = this;
    node->m_nesting = m_nesting + 1;
    node->m_depth = kTimelineDepth;
    node->invalidate();
    settlePictures();
    relayout();
}

void TextField::refusePicture(const TextPicture& picture)
{
    const std::vector<std::size_t> pairs = pairPictures();
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        if (pairs[i] != kNone || !m_content.pictures()[i].isSameAs(picture)) continue;
        m_content.removePicture(i);
        return;
    }
}

void TextField::dropPicture(Node& node)
{
    const auto found = std::ranges::find(m_pictureNodes, &node, &NodePtr::get);
    if (found == m_pictureNodes.end()) return;
    const NodePtr keep = *found;
    const auto place = found - m_pictureNodes.begin();
    const std::vector<std::size_t> pairs = pairPictures();
    const auto inText = std::ranges::find(pairs, static_cast<std::size_t>(place));
    if (inText != pairs.end()) m_content.removePicture(static_cast<std::size_t>(inText - pairs.begin()));
    node.noteGone();
    m_pictures.erase(m_pictures.begin() + place);
    m_pictureNodes.erase(found);
    node.m_parent = nullptr;
    relayout();
}

Node* TextField::pictureNamed(std::u16string_view id) const
{
    const auto found = std::ranges::find(m_pictures, id, &TextPicture::id);
    return !id.empty() && found != m_pictures.end()
               ? m_pictureNodes[static_cast<std::size_t>(found - m_pictures.begin())].get()
               : nullptr;
}

// ---- for those that leave them to the stage ---------------------------------------------------------------

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
