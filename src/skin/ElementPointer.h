#pragma once

#include <optional>

namespace skin
{

enum class ImageState { Normal, Down, Over, Disabled };
enum class Statement { Click, DoubleClick, Drag };
enum class PointerButton { Left, Right, Other };

/// Mouse behaviour of one element of a skin: which image to paint, which statement to run. Dragging is not a
/// gesture of its own but the drag statement at the press, at every move and at the release of an element
/// without a click statement.
class ElementPointer
{
public:
    struct Reaction {
        std::optional<ImageState> paint;
        std::optional<Statement> run;
        bool popUp = false;
    };
    /// What of the element's record matters here.
    struct Element {
        bool hasDownImage = false; ///< never for labels
        bool hasOverImage = false;
        bool hasClick = false;
    };

    explicit ElementPointer(Element element) : m_element(element) {}

    Reaction press(PointerButton button);
    [[nodiscard]] Reaction move(bool leftHeld) const;
    Reaction release(PointerButton button);
    /// Follows a release over the element.
    Reaction click();
    /// Takes the place of the second press; a release follows, a click does not.
    Reaction doubleClick();
    [[nodiscard]] Reaction enter() const;
    [[nodiscard]] Reaction leave() const;

private:
    [[nodiscard]] std::optional<Statement> drag() const
    {
        return m_element.hasClick ? std::nullopt : std::optional(Statement::Drag);
    }
    [[nodiscard]] std::optional<ImageState> ifDown(ImageState state) const
    {
        return m_element.hasDownImage ? std::optional(state) : std::nullopt;
    }

    Element m_element;
    bool m_dragging = false;
};

} // namespace skin
