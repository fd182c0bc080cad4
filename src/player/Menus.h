#pragma once

#include <QAction>
#include <QMenuBar>
#include <QObject>

#include <functional>
#include <map>
#include <memory>

namespace player
{

/// The whole menu tree, built from one table. Items are known by their names; an item of an array carries its
/// index behind its name ("mnuQLvl4"). Check marks are the state itself: other parts read and set them here.
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

    [[nodiscard]] QMenuBar& bar() const { return *m_bar; }
    [[nodiscard]] QMenu& popUp() const { return *m_popUp; }

private:
    void build();

    QMenuBar* m_bar;
    QMenu* m_popUp;
    std::map<QString, QAction*> m_items;
};

} // namespace player
