#include "ui/AboutScreen.h"

#include "QtPrint.h"
#include "base/Files.h"
#include "core/Application.h"
#include "flash/FlashControl.h"
#include "media/MovieBytes.h"

#include <QLabel>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

namespace ui
{
namespace
{

TEST(AboutScreen, ShowsThePageAtThePlayersQuality)
{
    const QTemporaryDir folder;
    const QString page = folder.filePath("about.swf");
    ASSERT_TRUE(base::replaceFile(core::filePath(page), media::plainMovie()));
    frmAbout about(nullptr, page + "?about=Zorvex 1.2.435%20&noanim=True", 0);
    auto* control = about.findChild<flash::FlashControl*>("SWF");
    ASSERT_NE(control, nullptr);
    EXPECT_EQ(control->Quality(), 0);
    EXPECT_EQ(control->GetVariable("noanim"), "True");
    EXPECT_EQ(about.size(), control->movieSize());
    EXPECT_EQ(about.findChild<QPushButton*>(), nullptr);
    about.show();
    QTest::keyClick(control, Qt::Key_Escape);
    EXPECT_FALSE(about.isVisible());
}

TEST(AboutScreen, TellsTheSameWithoutThePage)
{
    frmAbout about(nullptr, "/absent/about.swf?about=x", 1);
    about.show();
    EXPECT_FALSE(about.findChild<flash::FlashControl*>("SWF")->isVisible());
    QString shown;
    for (const QLabel* label : about.findChildren<QLabel*>()) shown += label->text();
    EXPECT_TRUE(shown.contains("Zorvex 1.2.435")) << shown.toStdString();
    EXPECT_TRUE(shown.contains("Macromedia"));
    about.findChild<QPushButton*>()->click();
    EXPECT_FALSE(about.isVisible());
}

} // namespace
} // namespace ui
