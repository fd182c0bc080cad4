#include "PlayerWindow.h"

#include "base/xml/Xml.h"
#include "flash/FlashControl.h"

#include <QMenu>
#include <QMetaProperty>
#include <QRegularExpression>
#include <QTest>

// The skins that ship, and the one that the guide for authors prints, in the real window.

namespace player
{
namespace
{

using skin::Kind;
using skin::SkinControl;

constexpr int kFrames = 21;

QByteArray fileText(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QFile::ReadOnly)) << path.toStdString();
    return file.readAll();
}

class SkinInTheWindow : public PlayerWindow
{
protected:
    /// The player with a skin and a movie of 21 frames that halts on its first.
    void open(const QString& skin)
    {
        QByteArray frames = "<frame><script>stop();</script></frame>";
        for (int i = 1; i < kFrames; ++i) frames += "<frame/>";
        const QString steps = compile(
            "steps", "<movie version=\"6\" width=\"200\" height=\"150\" rate=\"10\">" + frames + "</movie>");
        QByteArray settings = fileText(path("settings.xml"));
        settings.replace("skin=\"default\"", "skin=\"" + skin.toUtf8() + "\"");
        QFile file(path("settings.xml"));
        ASSERT_TRUE(file.open(QFile::WriteOnly));
        file.write(settings);
        file.close();
        player.emplace(application, '"' + steps + '"');
        player->Form_Load();
        ASSERT_TRUE(player->skinWindow().isShown());
        QApplication::processEvents();
    }
    void TearDown() override { EXPECT_EQ(errors(), QStringList()); }

    /// What the journal holds of errors: the line that begins each and the three that follow.
    [[nodiscard]] QStringList errors() const
    {
        QStringList found;
        const QStringList lines = log();
        for (qsizetype i = 0; i < lines.size(); ++i)
            if (lines[i].contains("<FONT color=\"#000000\">")) found += lines.mid(i, 4);
        return found;
    }
    [[nodiscard]] const std::vector<skin::SkinObject>& objects() const
    {
        return player->skinWindow().skin().objects();
    }
    [[nodiscard]] SkinControl& element(const char* name) const
    {
        for (const auto& record : objects())
            if (record.name == name) return *record.object;
        throw std::runtime_error(std::string("no element ") + name);
    }
    [[nodiscard]] QString caption(const char* name) const
    {
        return dynamic_cast<skin::SkinLabel&>(element(name)).Caption();
    }
    [[nodiscard]] QRect placeOf(const QWidget& control) const
    {
        return {control.mapTo(&*player, QPoint(0, 0)), control.size()};
    }
    void click(const char* name) const
    {
        ASSERT_TRUE(element(name).isVisible()) << name;
        QTest::mouseClick(&element(name), Qt::LeftButton);
        player->UpdateInfo();
    }
    void drag(const char* name, QPoint from, QPoint to) const
    {
        QWidget& area = element(name);
        QTest::mousePress(&area, Qt::LeftButton, {}, from);
        QMouseEvent move(QEvent::MouseMove, to, area.mapToGlobal(to), Qt::NoButton, Qt::LeftButton, {});
        QApplication::sendEvent(&area, &move);
        QTest::mouseRelease(&area, Qt::LeftButton, {}, to);
    }
    void checkLayout() const;

    mutable std::optional<Player> player; // its parts are reached through it alone
};

class ShippedSkin : public SkinInTheWindow, public testing::WithParamInterface<const char*>
{
protected:
    ShippedSkin()
    {
        const QString from = ZORVEX_PROGRAM_DIR "/media/skins/" + name(), to = path("media/skins/" + name());
        for (const char* folder : {"", "/base", "/up", "/over", "/down", "/disabled"}) {
            QDir().mkpath(to + folder);
            for (const QString& file : QDir(from + folder).entryList(QDir::Files))
                QFile::copy(from + folder + '/' + file, to + folder + '/' + file);
        }
        QDir().mkpath(path("media/scripts"));
        QFile::copy(ZORVEX_PROGRAM_DIR "/media/scripts/controls.vbs", path("media/scripts/controls.vbs"));
    }
    [[nodiscard]] static QString name() { return GetParam(); }
};

INSTANTIATE_TEST_SUITE_P(Skins, ShippedSkin, testing::Values("default", "lagoon"),
                         [](const auto& info) { return info.param; });

void SkinInTheWindow::checkLayout() const
{
    constexpr int kMinTarget = 24;
    struct Placed {
        const skin::SkinObject* record;
        QRect place;
    };
    std::vector<Placed> buttons, labels;
    for (const auto& record : objects()) {
        if (!record.object || !record.object->isVisible()) continue;
        const QRect place = placeOf(*record.object);
        if (record.kind == Kind::Button) {
            EXPECT_TRUE(player->rect().contains(place)) << record.name.toStdString() << " leaves the window";
            EXPECT_GE(std::min(place.width(), place.height()), kMinTarget) << record.name.toStdString();
            buttons.push_back({&record, place});
        } else if (record.kind == Kind::Label) {
            EXPECT_TRUE(player->rect().contains(place)) << record.name.toStdString() << " leaves the window";
            labels.push_back({&record, place});
        }
    }
    EXPECT_GT(buttons.size(), 5U);
    for (std::size_t i = 0; i < buttons.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j)
            EXPECT_FALSE(buttons[i].place.intersects(buttons[j].place))
                << buttons[i].record->name.toStdString() << " on " << buttons[j].record->name.toStdString();
        for (const Placed& label : labels)
            EXPECT_FALSE(label.place.intersects(buttons[i].place))
                << label.record->name.toStdString() << " runs over " << buttons[i].record->name.toStdString();
        EXPECT_FALSE(buttons[i].place.intersects(placeOf(player->skinWindow().movie())) &&
                     !player->isFullScreen())
            << buttons[i].record->name.toStdString() << " lies on the movie";
    }
}

TEST_P(ShippedSkin, HasEveryImageThatItNames)
{
    const QString folder = path("media/skins/" + name() + '/');
    const QByteArray text = fileText(folder + "skin.xml");
    const auto document = base::xml::Document::parse(base::Bytes(
        reinterpret_cast<const std::uint8_t*>(text.data()), static_cast<std::size_t>(text.size())));
    ASSERT_TRUE(document) << document.error().what;
    int images = 0;
    const std::function<void(const base::xml::Element&)> check = [&](const base::xml::Element& element) {
        if (const auto image = element.attribute("image")) {
            const QStringList states = element.name() == "BUTTON"
                                           ? QStringList{"up/", "over/", "down/", "disabled/"}
                                           : QStringList{"base/"};
            for (const QString& state : states) {
                EXPECT_FALSE(QImage(folder + state + QString::fromStdString(*image)).isNull())
                    << state.toStdString() << *image;
                ++images;
            }
        }
        for (const auto& child : element.children()) check(child);
    };
    check(document->root());
    EXPECT_GT(images, 80);
}

TEST_P(ShippedSkin, FitsWindowsOfEverySize)
{
    open(name());
    player->SetCaption(QString("Очень длинное название ролика ").repeated(20));
    const QSize least = player->minimumSize();
    for (const int width : {least.width(), 400, 440, 480, 520, 560, 600, 800, 1600}) {
        if (width < least.width()) continue;
        for (const int height : {least.height(), 900}) {
            SCOPED_TRACE(std::to_string(width) + 'x' + std::to_string(height));
            player->resize(width, height);
            QApplication::processEvents();
            checkLayout();
            EXPECT_GT(player->skinWindow().movie().height(), 100);
        }
    }
    player->FullScreen(true);
    for (const int width : {1024, 1920}) {
        SCOPED_TRACE("full screen of " + std::to_string(width));
        player->resize(width, 768);
        QApplication::processEvents();
        EXPECT_EQ(player->skinWindow().movie().size(), player->size());
        checkLayout();
    }
}

// Every statement of the description runs, in the view that it is of; what it opens is closed again.
TEST_P(ShippedSkin, RunsEachOfItsStatements)
{
    open(name());
    QTimer closer;
    QObject::connect(&closer, &QTimer::timeout, [] {
        if (QWidget* popUp = QApplication::activePopupWidget()) popUp->close();
        if (QWidget* dialog = QApplication::activeModalWidget()) dialog->close();
    });
    closer.start(20);
    int count = 0;
    for (const bool full : {false, true}) {
        player->FullScreen(full);
        const int view = player->skinWindow().skin().currentView();
        for (const auto& record : objects()) {
            if (record.viewIndex != view) continue;
            for (const QString& statement : {record.onClick, record.onDblClick, record.onDrag,
                                             record.onResize, record.onInfoUpdate, record.onMediaChange}) {
                // The program's end has its own tests; what changes the view would run the others in the
                // wrong one.
                if (statement.isEmpty() || statement.startsWith("Quit") || statement.startsWith("FullScreen"))
                    continue;
                skin::Bridge& bridge = player->skinWindow().skin().bridge();
                bridge.RunScript("X=5:Y=5");
                EXPECT_EQ(bridge.RunScript(statement), skin::Bridge::Outcome::Done)
                    << record.name.toStdString() << ": " << statement.toStdString();
                ++count;
            }
        }
    }
    EXPECT_GT(count, 40);
    waitFor([] { return QApplication::activePopupWidget() == nullptr; });
}

TEST_P(ShippedSkin, DrivesThePlayer)
{
    open(name());
    player->resize(800, 600);
    QApplication::processEvents();
    flash::FlashControl& movie = player->control();
    EXPECT_FALSE(element("btnPause").isVisible());
    click("btnPlay");
    EXPECT_TRUE(movie.Playing());
    EXPECT_FALSE(element("btnPlay").isVisible());
    click("btnPause");
    EXPECT_FALSE(movie.Playing());

    click("btnStop");
    EXPECT_EQ(movie.FrameNum(), 0);
    click("btnForward");
    // The second click of a quick pair comes as a double click.
    QTest::mouseDClick(&element("btnForward"), Qt::LeftButton);
    EXPECT_EQ(movie.FrameNum(), 2);
    click("btnBack");
    EXPECT_EQ(movie.FrameNum(), 1);

    click("btnMute");
    EXPECT_TRUE(player->Muted());
    EXPECT_FALSE(element("btnMute").isVisible());
    click("btnUnmute");
    EXPECT_FALSE(player->Muted());

    const bool loops = movie.Loop();
    click(loops ? "btnLoopOn" : "btnLoop");
    EXPECT_NE(movie.Loop(), loops);
    click(loops ? "btnLoop" : "btnLoopOn");
    EXPECT_EQ(movie.Loop(), loops);

    const int mode = player->TimeMode();
    click("infoText");
    EXPECT_EQ(player->TimeMode(), mode + 1);

    QTest::mouseDClick(&element("headTitle"), Qt::LeftButton);
    EXPECT_TRUE(player->isMaximized());
    player->UpdateInfo();
    EXPECT_TRUE(element("btnRestore").isVisible());
    click("btnRestore");
    EXPECT_FALSE(player->isMaximized());
}

TEST_P(ShippedSkin, SlidersFollowThePointer)
{
    open(name());
    player->resize(800, 600);
    QApplication::processEvents();
    SkinControl& seek = element("seekArea");
    const int middle = seek.height() / 2;
    drag("seekArea", {20, middle}, {seek.width() / 2, middle});
    EXPECT_EQ(player->control().FrameNum(), (kFrames - 1) / 2);
    EXPECT_NEAR(placeOf(element("seekKnob")).center().x(), placeOf(seek).center().x(), 1);
    drag("seekArea", {seek.width() / 2, middle}, {seek.width() + 300, middle});
    EXPECT_EQ(player->control().FrameNum(), kFrames - 1);
    drag("seekArea", {seek.width() / 2, middle}, {-300, middle});
    EXPECT_EQ(player->control().FrameNum(), 0);

    SkinControl& volume = element("volumeArea");
    click("btnMute");
    drag("volumeArea", {10, 14}, {volume.width() / 4 + 4, 14});
    EXPECT_FALSE(player->Muted()) << "who moves the volume wants to hear it";
    EXPECT_NEAR(player->Volume(), 25, 6);
    drag("volumeArea", {10, 14}, {200, 14});
    EXPECT_EQ(player->Volume(), 100);
}

TEST_P(ShippedSkin, ShowsTheFullScreensBarNearTheLowerEdge)
{
    open(name());
    click("btnFull");
    ASSERT_TRUE(player->isFullScreen());
    const auto isBarShown = [&] { return element("fullExit").isVisible(); };
    const auto ticks = [&](int count) {
        for (int i = 0; i < count; ++i) player->UpdateInfo();
    };
    QCursor::setPos(player->mapToGlobal(QPoint(50, 50)));
    EXPECT_TRUE(isBarShown()) << "it is seen when the full screen begins";
    ticks(20);
    EXPECT_FALSE(isBarShown());
    QCursor::setPos(player->mapToGlobal(QPoint(50, player->height() - 20)));
    ticks(1);
    EXPECT_TRUE(isBarShown());
    click("fullExit");
    EXPECT_FALSE(player->isFullScreen());
}

TEST_P(ShippedSkin, OpensTheWholeMenu)
{
    open(name());
    click("btnMenu");
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(menu->actions().size(), player->menus().bar().actions().size());
    menu->close();
}

TEST_F(SkinInTheWindow, TheGuidesSmallestSkinWorksAsPrinted)
{
    const QString guide = QString::fromUtf8(fileText(PROJECT_SOURCE_DIR "/docs/SKINS.md"));
    const auto block = [&guide](const QString& language) {
        const QRegularExpression fence("```" + language + "\n(.*?)```",
                                       QRegularExpression::DotMatchesEverythingOption);
        return fence.match(guide).captured(1).toUtf8();
    };
    QDir().mkpath(path("media/skins/small"));
    for (const char* file : {"small/skin.xml", "small/small.vbs"}) {
        QFile out(path(QString("media/skins/") + file));
        ASSERT_TRUE(out.open(QFile::WriteOnly));
        out.write(block(out.fileName().endsWith("xml") ? "xml" : "vb"));
    }
    open("small");
    EXPECT_EQ(player->minimumSize(), QSize(240, 160));
    click("play");
    EXPECT_TRUE(player->control().Playing());
    EXPECT_EQ(caption("info"), player->StatusText());
    const QRect movie = placeOf(player->skinWindow().movie()), bar = placeOf(element("bar"));
    EXPECT_EQ(movie.bottom() + 1, bar.top()) << "the movie ends where the bar begins";
    EXPECT_EQ(bar.bottom(), player->rect().bottom());
    EXPECT_EQ(bar.width(), player->width());
}

TEST_F(SkinInTheWindow, TheGuideNamesWhatThePlayerHas)
{
    const QString guide = QString::fromUtf8(fileText(PROJECT_SOURCE_DIR "/docs/SKINS.md"));
    const QMetaObject& type = Player::staticMetaObject;
    QStringList known;
    for (int i = 0; i < type.propertyCount(); ++i) known += type.property(i).name();
    for (int i = 0; i < type.methodCount(); ++i) known += type.method(i).name();
    const QRegularExpression item("(?<=\n)- `Player` (?:reads|does)(.*?)\n(?=\n|- )",
                                  QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpression name("`([A-Z]\\w+)");
    int names = 0;
    for (const auto& list : item.globalMatch(guide))
        for (const auto& found : name.globalMatch(list.captured(1))) {
            ++names;
            EXPECT_TRUE(known.contains(found.captured(1))) << found.captured(1).toStdString();
        }
    EXPECT_GT(names, 50);
}

} // namespace
} // namespace player
