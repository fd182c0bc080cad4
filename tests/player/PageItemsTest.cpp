#include "player/PageItems.h"

#include "PlayerWindow.h"
#include "flash/FlashControl.h"

#include <QAccessible>

namespace player
{
namespace
{

/// A page of ours with one button, drawn by hand, that tells itself.
constexpr const char* kPage = R"(<movie version="7" width="100" height="80" rate="10"><frame><script><![CDATA[
  var plate = createEmptyMovieClip("plate", 1);
  plate.beginFill(0xFF0000);
  plate.moveTo(10, 20); plate.lineTo(50, 20); plate.lineTo(50, 40); plate.lineTo(10, 40);
  plate.endFill();
  plate.onRelease = function() { pressed = "yes"; };
  fscommand("MeowItems", "button\t10\t20\t40\t20\tОткрыть\n" + "disabled\t60\t20\t30\t20\tВперёд\n" +
      "text\t0\t60\t100\t20\tГотово\n" + "button\tbroken");
  fscommand("MeowFocus", "0");
]]></script></frame></movie>)";

TEST_F(PlayerWindow, TellsWhatAPageShowsToWhoDoesNotSeeIt)
{
    QFile::copy(compile("page", kPage), path("media/gadgets/welcome.swf"));
    Player player(application, {});
    player.Form_Load();
    player.show();
    PageItems& page = player.movieScreen().pageItems();
    ASSERT_EQ(page.items().size(), 3U) << "what is no item is left out";

    QAccessibleInterface* movie = QAccessible::queryAccessibleInterface(&player.control());
    ASSERT_NE(movie, nullptr);
    EXPECT_EQ(movie->role(), QAccessible::Document);
    ASSERT_EQ(movie->childCount(), 3);
    QAccessibleInterface* open = movie->child(0);
    EXPECT_EQ(open->role(), QAccessible::Button);
    EXPECT_EQ(open->text(QAccessible::Name), "Открыть");
    EXPECT_EQ(open->parent(), movie);
    EXPECT_EQ(movie->indexOfChild(open), 0);
    EXPECT_EQ(page.focused(), 0);
    EXPECT_TRUE(movie->child(1)->state().disabled);
    EXPECT_TRUE(movie->child(1)->actionInterface()->actionNames().isEmpty());
    EXPECT_EQ(movie->child(2)->role(), QAccessible::StaticText);

    // Shown as large as it fits, in the middle.
    player.control().resize(400, 160);
    EXPECT_EQ(page.boxOf(0), QRect(100 + 20, 40, 80, 40));
    const QPoint inside = player.control().mapToGlobal(QPoint(130, 50));
    EXPECT_EQ(movie->childAt(inside.x(), inside.y()), open);

    open->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(waitFor([&] { return player.control().GetVariable("pressed") == "yes"; }));

    // What has gone is not told any more; a movie of the user's is not listened to.
    const QString stranger = compile("stranger", kPage);
    player.LoadFlash(stranger, {});
    EXPECT_TRUE(page.items().empty());
    EXPECT_EQ(movie->childCount(), 0);
    EXPECT_EQ(movie->role(), QAccessible::Animation);
    EXPECT_EQ(movie->text(QAccessible::Name), "stranger");
}

} // namespace
} // namespace player
