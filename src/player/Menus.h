#pragma once

#include "core/Text.h"
#include "ui/Menu.h"

#include <QAction>
#include <QObject>

#include <functional>
#include <map>

namespace player
{

/// The whole menu tree, built from one table. Items are known by their names; an item of an array carries its
/// index behind its name ("mnuQLvl4"). Check marks are the state itself: other parts read and set them here.
/// An item that no command is connected to is not shown.
class Menus : public QObject
{
    Q_OBJECT
public:
    /// @param window owns bar and menus
    explicit Menus(QWidget* window);

    /// @param name one of the table's; another is a mistake of the caller's
    [[nodiscard]] QAction& item(const QString& name) const;
    [[nodiscard]] bool isChecked(const QString& name) const { return item(name).isChecked(); }
    void setChecked(const QString& name, bool checked) { item(name).setChecked(checked); }

    /// @returns null when there is no such item; names are compared without regard to case
    [[nodiscard]] QAction* find(const QString& name) const;
    /// @returns the item at the end of a menu, made when it is not there yet
    QAction& addCheck(const QString& menu, const QString& name);

    /// Names the command that an item runs. Check marks are not moved by a click: the command does it.
    void connectItem(const QString& name, std::function<void()> command);

    /// Takes the pictures of a menu set, and binds icons to the captions that the items have at this moment:
    /// every item of such a caption has the icon, and an item has it only while it bears the caption.
    /// @param folder of the set, with its closing separator; what is missing there is not drawn
    void AssignMenus(const QString& folder);
    [[nodiscard]] const ui::MenuSet& menuSet() const { return m_set; }

    /// Asked before menus open: an item that can be run by two keys shows the one that works at that moment.
    void setMovieHasKeyboard(std::function<bool()> question) { m_movieHasKeyboard = std::move(question); }
    void refreshShortcuts();

    /// The items' captions of this moment as texts that can be translated; those of files and skins are none.
    [[nodiscard]] std::map<QString, core::Text> knownCaptions() const;
    /// Gives items their captions in another language, and the menus their letters.
    void translate(const std::map<QString, core::Text>& captions);

    [[nodiscard]] QMenuBar& bar() const { return *m_bar; }
    [[nodiscard]] QMenu& popUp() const { return *m_popUp; }

private:
    void build();
    void watch(QMenu& menu);
    void showTwinsKeys();

    ui::MenuSet m_set; // before the menus, which refer to it
    ui::MenuBar* m_bar;
    ui::Menu* m_popUp;
    std::map<QString, QAction*> m_items;
    std::function<bool()> m_movieHasKeyboard = [] { return false; };
    bool m_showsPlainKeys = true;
};

} // namespace player
