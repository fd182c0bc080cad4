#include "PlayerWindow.h"

#include <QCursor>

namespace player
{
namespace
{

/// What the movie adds to the pop-up menu, seen at the window.
class MovieMenus : public PlayerWindow
{
protected:
    MovieMenus() : player(application, {})
    {
        withMenu =
            compile("menu", R"(<movie version="8" width="550" height="400" rate="12" background="#104080">
  <frame><script>
    var told = "";
    var m = new ContextMenu(function () { _root.told += "opened "; });
    m.hideBuiltInItems();
    var f = function (o, item) { _root.told += item.caption + " "; };
    m.customItems.push(new ContextMenuItem("Начать &amp; кончить", f), new ContextMenuItem("Grey", f, true, false));
    _root.menu = m;
  </script></frame></movie>)");
        player.Form_Load();
        player.show();
        own = captions();
    }
    /// As the pointer's right button does it.
    void openMenu()
    {
        QCursor::setPos(player.control().mapToGlobal(player.control().rect().center()));
        QApplication::processEvents();
        player.ShowPopUp();
    }
    QStringList captions()
    {
        QStringList all;
        for (const QAction* action : player.menus().popUp().actions()) {
            if (!action->isVisible()) continue;
            all += action->isSeparator() ? QString("-") : action->text();
        }
        return all;
    }
    Player player;
    QString withMenu;
    QStringList own;
};

TEST_F(MovieMenus, AreAtTheHeadWhileTheyAreOpenAndTellTheMovie)
{
    player.LoadFlash(withMenu, {});
    openMenu();
    const QStringList before = own; // the player's are all there, whatever the movie hides
    QStringList shown = captions();
    ASSERT_GT(shown.size(), 4) << shown.join('|').toStdString();
    EXPECT_EQ(shown.mid(0, 4), (QStringList{"Начать && кончить", "-", "Grey", "-"}));
    EXPECT_FALSE(player.menus().popUp().actions().at(2)->isEnabled());
    QAction* first = player.menus().popUp().actions().first();
    player.menus().popUp().close();
    first->trigger(); // as Qt does: the menu has gone by then
    EXPECT_EQ(player.control().GetVariable("told"), "opened Начать & кончить ");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(captions().contains("Grey"));
    for (const QString& caption : before) EXPECT_TRUE(captions().contains(caption)) << caption.toStdString();

    // Elsewhere than over the movie the menu is the player's alone.
    QCursor::setPos(player.frameGeometry().bottomRight() + QPoint(50, 50));
    QApplication::processEvents();
    player.ShowPopUp();
    EXPECT_FALSE(captions().contains("Grey"));
    player.menus().popUp().close();
}

TEST_F(MovieMenus, GoWithTheirMovie)
{
    const auto remains = [this] { return captions().contains("Grey"); };
    for (const bool replaced : {true, false}) {
        SCOPED_TRACE(replaced);
        player.LoadFlash(withMenu, {});
        openMenu();
        ASSERT_TRUE(remains());
        const QPointer<QAction> first = player.menus().popUp().actions().first();
        if (replaced)
            player.LoadFlash(movie, {});
        else
            player.CloseMedia({});
        EXPECT_FALSE(remains()) << "the menu is still open";
        // Somebody may have been quicker.
        if (first) first->trigger();
        player.menus().popUp().close();
        EXPECT_EQ(player.control().GetVariable("told"), "");
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_TRUE(first.isNull());
    }
    // A menu that was opened twice is chosen from by its last opening.
    player.LoadFlash(withMenu, {});
    const auto open = [this] { return player.control().openMenu(QPointF(5, 5)); };
    const auto stale = open(), fresh = open();
    ASSERT_EQ(fresh.items.size(), 2);
    player.control().chooseMenuItem(stale.id, 0);
    player.control().chooseMenuItem(fresh.id, 500);
    player.control().chooseMenuItem(fresh.id, -1);
    EXPECT_EQ(player.control().GetVariable("told"), "opened opened ");
}

} // namespace
} // namespace player
