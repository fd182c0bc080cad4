#include "core/ErrorReport.h"

#include "QtPrint.h"
#include "core/ErrorScreen.h"
#include "core/RunTimeErrors.h"

#include <QFile>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QToolButton>
#include <functional>
#include <gtest/gtest.h>

namespace core
{
namespace
{

struct Window : ErrorHost {
    bool updateTimerEnabled() const override { return timer; }
    void setUpdateTimerEnabled(bool enabled) override { timer = enabled; }
    QWidget* errorParent() override { return nullptr; }
    void ShowDialog(QDialog& dialog) override
    {
        timerMeanwhile = timer;
        dialog.show();
        whileShown(dialog);
    }
    void Quit(const QString& reason, bool saveOptions) override
    {
        EXPECT_TRUE(saveOptions);
        quitReason = reason;
    }
    bool timer = true;
    bool timerMeanwhile = true;
    QString quitReason;
    std::function<void(QDialog&)> whileShown = [](QDialog&) {};
};

class ErrorReport : public testing::Test
{
protected:
    ErrorReport() { application.LogFile = folder.filePath("log"); }
    [[nodiscard]] QByteArray log() const
    {
        QFile file(application.LogFile);
        return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
    }
    QTemporaryDir folder;
    Application application;
    Window window;
};

TEST_F(ErrorReport, LogsTheBlockAndRestsTheTimer)
{
    ReportError(application, window, base::Failure(61, "Media", "Full"), "Place", "x < \"y\" & z");
    EXPECT_EQ(log(), "<br>\r\n<B><FONT color=\"#000000\">61<br>\r\nPlace<br>\r\nMedia<br>\r\nFull<br>\r\n"
                     "</B><I><FONT color=\"#333333\">x &lt; &quot;y&quot; & z</FONT></I><B><br>\r\n"
                     "</FONT></B><br>\r\n");
    EXPECT_FALSE(window.timerMeanwhile);
    EXPECT_TRUE(window.timer);

    ReportError(application, window, base::Failure(kFlashNotCreated, "", ""), "Place");
    EXPECT_TRUE(window.timerMeanwhile) << "a control that cannot be created leaves the timer alone";
    EXPECT_FALSE(log().endsWith("<B><br>\r\n</FONT></B><br>\r\n"));
}

TEST_F(ErrorReport, ScreenShowsTheErrorAndUnfoldsItsDetail)
{
    bool shown = false;
    window.whileShown = [&shown](QDialog& dialog) {
        shown = true;
        EXPECT_EQ(dialog.findChild<QLabel*>("lblNumber")->text(), "Номер: 7");
        EXPECT_EQ(dialog.findChild<QLabel*>("lblPlace")->text(), "Место: Запуск");
        EXPECT_EQ(dialog.findChild<QLabel*>("lblSource")->text(), "Источник: Источник данных");
        EXPECT_EQ(dialog.findChild<QLabel*>("lblDescription")->text(), "Описание: <b>нет</b>");
        auto* box = dialog.findChild<QPlainTextEdit*>("txtExtra");
        auto* extra = dialog.findChild<QToolButton*>("cbExtra");
        EXPECT_FALSE(box->isVisible());
        const auto* caption = dialog.findChild<QLabel*>("lblExtra");
        EXPECT_GE(caption->width(), caption->sizeHint().width()) << "the buttons beside it leave it room";
        const int folded = dialog.height();
        extra->click();
        EXPECT_TRUE(box->isVisible());
        EXPECT_EQ(box->toPlainText(), "подробно");
        EXPECT_GE(dialog.height(), folded + box->height());
        EXPECT_EQ(extra->arrowType(), Qt::DownArrow);
        extra->click();
        EXPECT_EQ(dialog.height(), folded);
        EXPECT_EQ(extra->arrowType(), Qt::RightArrow);
        dialog.findChild<QPushButton*>("cbRevive")->click();
        EXPECT_FALSE(dialog.isVisible());
    };
    ReportError(application, window, base::Failure(7, "Источник данных", "<b>нет</b>"), "Запуск", "подробно");
    EXPECT_TRUE(shown);
    EXPECT_TRUE(window.quitReason.isEmpty());
}

TEST_F(ErrorReport, ExitEndsTheProgramAndNoDetailShowsNoArrow)
{
    window.whileShown = [](QDialog& dialog) {
        EXPECT_FALSE(dialog.findChild<QToolButton*>("cbExtra")->isVisible());
        EXPECT_FALSE(dialog.findChild<QLabel*>("lblExtra")->isVisible());
        dialog.findChild<QPushButton*>("cbExit")->click();
    };
    ReportError(application, window, base::Failure(7, "", ""), "");
    EXPECT_EQ(window.quitReason, "Termination On Error");
}

} // namespace
} // namespace core
