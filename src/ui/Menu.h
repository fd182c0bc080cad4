#pragma once

#include "ui/MenuSet.h"

#include <QMenu>
#include <QMenuBar>
#include <QShortcut>

namespace ui
{

/// A menu drawn with the pictures of a menu set. Captions stay as they are given: the letters that items
/// answer to are chosen by the menu and do not stand in them.
class Menu : public QMenu
{
    Q_OBJECT
public:
    /// @param set outlives the menu
    Menu(const MenuSet& set, const QString& caption, QWidget* parent);

    [[nodiscard]] const MenuSet& menuSet() const { return m_set; }
    /// @returns position of the letter in the item's caption; -1: it has none
    [[nodiscard]] int mnemonic(const QAction& item) const;

protected:
    void actionEvent(QActionEvent* event) override;
    /// Tooltips show where they tell more than the caption, as the whole path of a recent file does.
    bool event(QEvent* event) override;
    void initStyleOption(QStyleOptionMenuItem* option, const QAction* action) const override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    [[nodiscard]] QAction* itemFor(QChar letter) const;

    const MenuSet& m_set;
    mutable QHash<const QAction*, int> m_mnemonics; ///< empty: to be chosen anew
};

/// The bar of such menus. Answers to Alt and a menu's letter, in both keyboard layouts.
class MenuBar : public QMenuBar
{
    Q_OBJECT
public:
    explicit MenuBar(QWidget* parent);
    /// To be called when all menus are there, and again when their captions have changed.
    void addShortcuts();
    /// Opens one of the bar's menus, at the window's corner while the bar is hidden.
    void openMenu(QAction& menu);

protected:
    void initStyleOption(QStyleOptionMenuItem* option, const QAction* action) const override;

private:
    QHash<const QAction*, int> m_mnemonics;
    QList<QShortcut*> m_shortcuts;
};

} // namespace ui
