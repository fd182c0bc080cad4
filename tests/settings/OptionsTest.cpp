#include "QtPrint.h"
#include "settings/OptionsDialog.h"
#include "settings/RecentList.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFontMetrics>
#include <QPushButton>
#include <QTest>
#include <QWheelEvent>
#include <gtest/gtest.h>

#include <thread>

namespace settings
{
namespace
{

TEST(RecentList, KeepsFiveNewestFirst)
{
    const QString gadgets = "/Program/media/gadgets/";
    RecentList list(gadgets);
    for (const char* name : {"a", "b", "c", "d", "e", "f"}) list.AddRecent(name);
    EXPECT_EQ(list.paths(), (QStringList{"f", "e", "d", "c", "b"}));
    list.AddRecent("C");
    EXPECT_EQ(list.paths(), (QStringList{"C", "f", "e", "d", "b"})) << "the newer spelling, on top";
    list.AddRecent("/program/MEDIA/gadgets/welcome.swf?x=1");
    EXPECT_EQ(list.paths().first(), "C") << "the program's own pages never enter";
    list.AddRecent("Ё");
    EXPECT_EQ(list.FindRecent("ё"), 0);
    EXPECT_EQ(list.FindRecent("a"), -1);
}

TEST(CompactPath, FitsWithFolderEllipsisAndName)
{
    const QFontMetrics metrics(QApplication::font());
    const QString path = "/home/someone/Мои ролики/и ещё глубже/кино.swf";
    const QString windows = QString("C:") + QString(path).replace('/', '\\');
    for (const QString& full : {path, windows})
        for (int width = 130; width < 420; width += 7) {
            const QString compact = CompactPath(full, width, metrics);
            SCOPED_TRACE(compact.toStdString());
            if (metrics.horizontalAdvance(full) <= width) {
                EXPECT_EQ(compact, full);
                continue;
            }
            EXPECT_LE(metrics.horizontalAdvance(compact), width);
            EXPECT_TRUE(compact.endsWith("кино.swf"));
            EXPECT_TRUE(full.startsWith(compact.left(compact.indexOf("..."))));
            EXPECT_GT(metrics.horizontalAdvance(compact) + 2 * metrics.maxWidth(), width)
                << "no room is wasted";
        }
    const QString longName = "/a/" + QString(200, 'w') + ".swf";
    const QString compact = CompactPath(longName, 150, metrics);
    EXPECT_LE(metrics.horizontalAdvance(compact), 150);
    EXPECT_TRUE(compact.startsWith(".../w") && compact.endsWith("w...")) << compact.toStdString();
}

class OptionsWindow : public testing::Test
{
protected:
    void open()
    {
        dialog = std::make_unique<frmOptions>(nullptr, options);
        dialog->show();
    }
    template <class T>
    T& find(const char* name)
    {
        return *dialog->findChild<T*>(name);
    }
    void click(const char* name)
    {
        auto& widget = find<QAbstractButton>(name);
        QTest::mouseClick(&widget, Qt::LeftButton, {}, {12, widget.height() / 2});
    }
    Options options;
    std::unique_ptr<frmOptions> dialog;
};

TEST_F(OptionsWindow, ShowsWhatIsSetAndStoresWhatIsChosen)
{
    options.noAnimation = "1";
    options.startUp = 2;
    options.cacheMode = 1;
    options.sfx = false;
    open();
    EXPECT_FALSE(find<QCheckBox>("chkAnimation").isChecked());
    EXPECT_FALSE(find<QCheckBox>("chkSFX").isChecked());
    EXPECT_TRUE(find<QCheckBox>("chkHQShots").isChecked());
    EXPECT_FALSE(find<QCheckBox>("chkAssoc").isChecked());
    EXPECT_EQ(find<QComboBox>("cmbStartUp").currentText(), "Открыть последний файл!");
    EXPECT_EQ(find<QComboBox>("cmbCache").currentText(), "Оставлять эскизы");

    for (const char* box : {"chkAnimation", "chkSFX", "chkHQShots", "chkAssoc"}) click(box);
    const bool hasSecondCore = std::thread::hardware_concurrency() > 1;
    EXPECT_EQ(find<QCheckBox>("chkSecondThread").isChecked(), hasSecondCore);
    EXPECT_EQ(find<QCheckBox>("chkSecondThread").isEnabled(), hasSecondCore);
    click("chkSecondThread");
    QTest::keyClick(&find<QComboBox>("cmbStartUp"), Qt::Key_Up);
    QTest::keyClick(&find<QComboBox>("cmbCache"), Qt::Key_Down);
    EXPECT_EQ(find<QComboBox>("cmbCodepage").currentText(), "Автоматически");
    QTest::keyClick(&find<QComboBox>("cmbCodepage"), Qt::Key_Down);
    EXPECT_EQ(options.startUp, 2) << "nothing is stored before it is accepted";
    click("cbOk");
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
    EXPECT_EQ(options.noAnimation, "False");
    EXPECT_TRUE(options.sfx);
    EXPECT_FALSE(options.hqShots);
    EXPECT_EQ(options.secondThread, !hasSecondCore) << "where it cannot be chosen it is kept";
    EXPECT_TRUE(options.associate);
    EXPECT_EQ(options.startUp, 1);
    EXPECT_EQ(options.cacheMode, 2);
    EXPECT_EQ(options.codepage, "windows-1251");
}

TEST_F(OptionsWindow, CancelAndEscapeChangeNothing)
{
    for (const bool byKey : {false, true}) {
        open();
        click("chkSFX");
        click("chkAnimation");
        byKey ? QTest::keyClick(dialog.get(), Qt::Key_Escape) : click("cbCancel");
        EXPECT_FALSE(dialog->isVisible());
        EXPECT_EQ(dialog->result(), QDialog::Rejected);
        EXPECT_TRUE(options.sfx);
        EXPECT_EQ(options.noAnimation, "False");
    }
}

TEST_F(OptionsWindow, KeepsNumbersThatNoEntryStandsFor)
{
    options.startUp = -1;
    options.cacheMode = 3;
    options.codepage = "ebcdic";
    options.noAnimation = "perhaps";
    open();
    EXPECT_EQ(find<QComboBox>("cmbCache").currentIndex(), -1);
    EXPECT_TRUE(find<QCheckBox>("chkAnimation").isChecked()) << "only what means True unchecks it";
    click("cbOk");
    EXPECT_EQ(options.startUp, -1);
    EXPECT_EQ(options.cacheMode, 3);
    EXPECT_EQ(options.codepage, "ebcdic");
    EXPECT_EQ(options.noAnimation, "False");
}

TEST_F(OptionsWindow, IsWorkedByKeysAlone)
{
    open();
    dialog->activateWindow();
    QStringList visited,
        expected{"cmbStartUp", "cmbCache",        "cmbCodepage", "cmbLanguage", "chkAnimation", "chkSFX",
                 "chkHQShots", "chkSecondThread", "chkAssoc",    "cbOk",        "cbCancel"};
    if (!find<QCheckBox>("chkSecondThread").isEnabled()) expected.removeOne("chkSecondThread");
    for (qsizetype i = 0; i < expected.size(); ++i) {
        ASSERT_NE(dialog->focusWidget(), nullptr);
        visited += dialog->focusWidget()->objectName();
        QTest::keyClick(dialog->focusWidget(), Qt::Key_Tab);
    }
    EXPECT_EQ(visited, expected);
    find<QCheckBox>("chkHQShots").setFocus();
    QTest::keyClick(dialog->focusWidget(), Qt::Key_Space);
    QTest::keyClick(dialog.get(), Qt::Key_Return);
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
    EXPECT_FALSE(options.hqShots);
}

TEST_F(OptionsWindow, SaysOfEveryControlWhatItIsFor)
{
    open();
    for (const char* name : {"cmbStartUp", "cmbCache", "cmbCodepage", "chkAnimation", "chkSFX", "chkHQShots",
                             "chkSecondThread", "chkAssoc"})
        EXPECT_GT(find<QWidget>(name).toolTip().size(), 20) << name;
    EXPECT_EQ(find<QComboBox>("cmbStartUp").accessibleName(), "При запуске по умолчанию:");
    // A list must not change because the pointer stood over it while the user scrolled.
    auto& list = find<QComboBox>("cmbCache");
    QWheelEvent wheel({9, 9}, list.mapToGlobal(QPointF(9, 9)), {}, {0, -120}, Qt::NoButton, {},
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&list, &wheel);
    EXPECT_EQ(list.currentIndex(), 0);
}

} // namespace
} // namespace settings
