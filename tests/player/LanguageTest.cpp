#include "PlayerWindow.h"
#include "player/KeysDialog.h"
#include "settings/OptionsDialog.h"
#include "skin/Controls.h"
#include "ui/HelpWindow.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QRegularExpression>
#include <QTextBrowser>
#include <QTreeWidget>

namespace player
{
namespace
{

/// The window in English, with the skin and the help that ship.
class English : public SkinnedWindow
{
protected:
    English()
    {
        QDir().mkpath(path("media/skins"));
        for (const char* folder : {"media/languages", "media/scripts", "media/skins/default", "media/help"})
            QFile::link(QString(ZORVEX_PROGRAM_DIR "/") + folder, path(folder));
    }
    ~English() override { application.language.choose(core::Language::kRussian, {}); }

    /// Every text of the widgets below one, with what it belongs to.
    static QStringList textsOf(QWidget& root)
    {
        QStringList texts;
        const auto add = [&texts](const QObject& owner, const QString& text) {
            if (!text.isEmpty()) texts += owner.objectName() + ": " + text;
        };
        QList<QWidget*> widgets{&root};
        for (QWidget* child : root.findChildren<QWidget*>()) widgets += child;
        for (QWidget* widget : widgets) {
            add(*widget, widget->toolTip());
            add(*widget, widget->accessibleName());
            add(*widget, widget->windowTitle());
            if (const auto* label = qobject_cast<const QLabel*>(widget)) add(*widget, label->text());
            if (const auto* button = qobject_cast<const QAbstractButton*>(widget))
                add(*widget, button->text());
            if (const auto* line = qobject_cast<const QLineEdit*>(widget))
                add(*widget, line->placeholderText());
            if (const auto* page = qobject_cast<const QTextBrowser*>(widget))
                add(*widget, page->toPlainText());
            if (const auto* skinned = qobject_cast<const skin::SkinControl*>(widget))
                add(*widget, skinned->property("Caption").toString());
            if (const auto* list = qobject_cast<const QComboBox*>(widget))
                for (int i = 0; i < list->count(); ++i) add(*widget, list->itemText(i));
            if (auto* tree = qobject_cast<QTreeWidget*>(widget))
                for (QTreeWidgetItemIterator row(tree); *row; ++row)
                    for (int column = 0; column < tree->columnCount(); ++column)
                        add(*widget, (*row)->text(column));
        }
        for (const QAction* action : root.findChildren<QAction*>()) add(*action, action->text());
        return texts;
    }
    static QStringList russianOf(QWidget& root)
    {
        static const QRegularExpression cyrillic("[А-Яа-яЁё]");
        QStringList texts = textsOf(root).filter(cyrillic);
        // These two every user has to find, and the design-time captions stand for lists.
        texts.removeIf([](const QString& text) {
            return text.endsWith("Язык (Language):") || text.endsWith("Русский");
        });
        return texts;
    }
};

TEST_F(English, LeavesNoRussianInAWindow)
{
    ASSERT_TRUE(application.language.choose("en", application.LanguagesPath));
    Player player(application, core::commandLine({movie}));
    player.Form_Load();
    EXPECT_EQ(player.menus().item("MenuFile").text(), "File");
    player.ShowConsole();
    EXPECT_EQ(russianOf(player), QStringList());
    EXPECT_TRUE(textsOf(player).contains("btnOpen: Open...")) << "the skin's own words";

    settings::Options options;
    settings::frmOptions dialog(&player, options);
    EXPECT_EQ(russianOf(dialog), QStringList());
    frmKeys keys(&player, player.menus());
    EXPECT_EQ(russianOf(keys), QStringList());
    ui::HelpWindow help(&player, path("media/help/"));
    EXPECT_TRUE(help.showPage("help"));
    EXPECT_EQ(russianOf(help), QStringList());

    player.LoadFlash(path("absent.swf"), {});
    EXPECT_TRUE(waitFor([&] { return showsPanel(player); }));
    EXPECT_EQ(russianOf(player), QStringList());
    EXPECT_TRUE(welcome(player).message().startsWith("“absent.swf”") ||
                welcome(player).message().contains("File not found"));
    EXPECT_FALSE(QMessageBox(QMessageBox::Question, {}, {}, QMessageBox::Yes)
                     .button(QMessageBox::Yes)
                     ->text()
                     .contains(QRegularExpression("[А-Яа-я]")))
        << "the toolkit's own buttons";
}

TEST_F(English, IsWhatScreenReadersAreTold)
{
    ASSERT_TRUE(application.language.choose("en", application.LanguagesPath));
    Player player(application, core::commandLine({movie}));
    player.Form_Load();
    player.show();
    int buttons = 0, sliders = 0;
    for (auto* control : player.findChildren<skin::SkinControl*>()) {
        QAccessibleInterface* told = QAccessible::queryAccessibleInterface(control);
        ASSERT_NE(told, nullptr);
        const std::string name = told->text(QAccessible::Name).toStdString();
        if (told->role() == QAccessible::Button) {
            ++buttons;
            EXPECT_FALSE(name.empty()) << control->objectName().toStdString();
        }
        if (told->role() == QAccessible::Slider && name == "Volume") ++sliders;
    }
    EXPECT_GT(buttons, 20);
    EXPECT_GT(sliders, 0);
    auto* const loop = player.findChild<skin::SkinControl*>("btnLoop");
    QAccessibleInterface* told = QAccessible::queryAccessibleInterface(loop);
    const bool before = player.menus().isChecked("mnuLoop");
    ASSERT_NE(told->actionInterface(), nullptr);
    told->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_NE(player.menus().isChecked("mnuLoop"), before);
}

TEST_F(English, IsChosenAndLeftWhileTheWindowIsOpen)
{
    Player player(application, core::commandLine({movie}));
    player.Form_Load();
    ASSERT_EQ(player.menus().item("mnuOpt").text(), "Параметры...");
    player.settings().options().language = "en";
    player.optionsChanged();
    EXPECT_EQ(player.menus().item("mnuOpt").text(), "Options...");
    EXPECT_TRUE(waitFor([&] {
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); // the former skin's controls
        return russianOf(player).isEmpty();
    })) << russianOf(player).join('\n').toStdString();
    player.settings().options().language = "ru";
    player.optionsChanged();
    EXPECT_EQ(player.menus().item("mnuOpt").text(), "Параметры...");
    EXPECT_EQ(player.menus().item("mnuPlay").text().isEmpty(), false);
}

TEST_F(English, ComesFromAnotherWindowThatHasChosenIt)
{
    Player player(application, core::commandLine({movie}));
    player.Form_Load();
    settings::Options other;
    QStringList recent;
    settings::SettingsFile theirs(application);
    ASSERT_TRUE(theirs.load(other, recent));
    other.language = "en";
    ASSERT_TRUE(theirs.save(other, recent));
    EXPECT_TRUE(waitFor([&] { return player.menus().item("mnuOpt").text() == "Options..."; }));
}

TEST_F(English, IsNotThereForALanguageWithoutACatalogue)
{
    EXPECT_FALSE(application.language.choose("xx", application.LanguagesPath));
    EXPECT_EQ(core::languageCode(), "ru");
}

} // namespace
} // namespace player
