#pragma once

#include "flash/stage/Node.h"

#include <memory>
#include <unordered_map>

namespace flash::stage
{

class Damage;

/// Whether lines of a node leave the bounds that it states: stretched unevenly they keep one width all
/// around.
[[nodiscard]] bool leavesItsBounds(Node& node, const swf::Matrix& toDevice, double scale);

/// What a scroll rectangle does to what it shows.
[[nodiscard]] swf::Matrix scrolledBy(const swf::Rect& rect);

/// What a node is drawn as.
enum class DrawnAs : std::uint8_t {
    Picture,
    Mask ///< neither hidden nor cut by what it is shown through as a picture
};

/// The device pixels that a node with all it contains may cover. More than its reach: what its parts' filters
/// add lies around them, and lines that do not scale may leave the bounds that a file states.
/// @param scale device pixels to one pixel of the stage
render::IntRect seenBounds(Node& node, const swf::Matrix& toDevice, double scale,
                           DrawnAs as = DrawnAs::Picture);
/// The same of a node where it stands, as what it is drawn there.
/// @param view stage twips to device pixels
render::IntRect seenOnStage(Node& node, const swf::Matrix& view, double scale);

/// What a picture of the node, before filters of its own, holds: its reach, and what filters of its parts add
/// around them. Lines that leave the stated bounds are cut by it.
render::IntRect pictureBounds(Node& node, const swf::Matrix& toDevice, double scale);

/// Where a change within `bounds` (device pixels) of a node shows: the filters of what contains it carry it
/// further.
render::IntRect grownByFiltersAround(const Node& node, const render::IntRect& bounds, double scale);

/// Whether a node is drawn as a picture of its own first.
[[nodiscard]] bool isLayered(const Node& node);

/// Whether it is drawn as such a picture for sure: filters do not count where a mask leaves nothing of it.
[[nodiscard]] bool isCut(const Node& node);

/// Whether how a node looks as a whole follows from all it contains: as a picture of its own it lies on whole
/// pixels and is cut where its content ends, a grid scales by it, a ground covers all of it.
[[nodiscard]] bool followsContent(const Node& node);

/// Whether a change of the node can show: neither it nor anything around it is hidden. What belongs to a mask
/// counts, hidden or not.
[[nodiscard]] bool canShow(const Node& node);

/// What a clip layer clips, or clipped, is drawn again: its siblings above it.
/// @param lastDepth up to which, at most
void invalidateClipped(const Node& layer, int lastDepth);

/// Of each node that follows its content or has a mask, how it was drawn last.
class DrawnPictures
{
public:
    /// @param seen device pixels
    /// @param view stage twips to device pixels
    void note(Node& node, const render::IntRect& seen, const swf::Matrix& view);
    /// Adds those that look different as a whole because of what has changed around or in them.
    void collect(Damage& damage, const swf::Matrix& view, double scale);
    void clear() { m_notes.clear(); }
    [[nodiscard]] bool isEmpty() const { return m_notes.empty(); }

private:
    struct Note {
        std::weak_ptr<Node> node; // its memory stays while it is listed, so that no other takes its place
        swf::Rect reach;
        render::IntRect seen;
        bool maskMisses = false;
        swf::Matrix maskPlace; ///< to the stage; unless there is none
        swf::Rect maskReach;
    };
    std::unordered_map<const Node*, Note> m_notes;
};

/// Whether a node's mask leaves nothing of it; its filters do not count then.
[[nodiscard]] bool maskMisses(Node& node, const render::IntRect& content, const swf::Matrix& view);

} // namespace flash::stage
