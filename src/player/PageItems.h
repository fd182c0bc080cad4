#pragma once

#include <QAccessible>
#include <QObject>
#include <QRectF>
#include <QString>

#include <vector>

namespace flash
{
class FlashControl;
}

namespace player
{

/// What a page of the program's own shows, for those who do not see it: pages are drawn by a movie, so they
/// tell their buttons and texts themselves, and this gives each of them its place among the accessible
/// objects of the window. A child of the control that shows the page.
class PageItems : public QObject
{
    Q_OBJECT
public:
    struct Item {
        bool isButton = false; ///< otherwise a text
        bool isEnabled = true;
        QString name;
        QRectF box; ///< pixels of the page's stage
    };

    explicit PageItems(flash::FlashControl& control);
    ~PageItems() override;

    /// Takes what a page tells: MEOWITEMS with its items, one a line, fields parted by tabs (kind "button",
    /// "disabled" or "text"; left, top, width, height; name), or MEOWFOCUS with the number of the item that
    /// has the keyboard, -1 for none.
    /// @returns false for any other command
    bool take(const QString& command, const QString& argument);
    /// Something else is shown.
    void clear();

    [[nodiscard]] const std::vector<Item>& items() const { return m_items; }
    [[nodiscard]] int focused() const { return m_focused; }
    /// Where an item is seen, in the control's own pixels.
    [[nodiscard]] QRect boxOf(int index) const;
    /// Does what a click on the item does, from the event loop.
    void press(int index);

    /// The accessible object of an item; made when it is first asked for. Null when there is no such item.
    QAccessibleInterface* interfaceOf(int index);
    [[nodiscard]] int indexOf(const QAccessibleInterface* item) const;
    [[nodiscard]] flash::FlashControl& control() const { return m_control; }

    /// From now on controls of movies tell what they show.
    static void installAccessibility();

private:
    void setItems(const QString& lines);
    void setFocused(int index);
    void forgetInterfaces();

    flash::FlashControl& m_control;
    std::vector<Item> m_items;
    std::vector<QAccessible::Id> m_ids; ///< by item; 0 where none was asked for yet
    int m_focused = -1;
};

} // namespace player
