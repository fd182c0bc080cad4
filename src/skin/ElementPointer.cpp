#include "skin/ElementPointer.h"

namespace skin
{

ElementPointer::Reaction ElementPointer::press(PointerButton button)
{
    if (button == PointerButton::Right) return {{}, {}, true};
    if (button != PointerButton::Left) return {};
    m_dragging = true;
    return {ifDown(ImageState::Down), drag()};
}

ElementPointer::Reaction ElementPointer::move(bool leftHeld) const
{
    if (!leftHeld || !m_dragging) return {};
    return {{}, drag()};
}

ElementPointer::Reaction ElementPointer::release(PointerButton button)
{
    if (button != PointerButton::Left) return {};
    // Set, not cleared: a release without a click leaves the element ready to drag.
    m_dragging = true;
    return {ifDown(ImageState::Normal), drag()};
}

ElementPointer::Reaction ElementPointer::click()
{
    m_dragging = false;
    return {{}, Statement::Click};
}

ElementPointer::Reaction ElementPointer::doubleClick()
{
    m_dragging = true;
    return {ifDown(ImageState::Down), Statement::DoubleClick};
}

ElementPointer::Reaction ElementPointer::enter() const
{
    return {m_element.hasOverImage ? std::optional(ImageState::Over) : std::nullopt, {}};
}

ElementPointer::Reaction ElementPointer::leave() const
{
    return {m_element.hasOverImage ? std::optional(ImageState::Normal) : std::nullopt, {}};
}

} // namespace skin
