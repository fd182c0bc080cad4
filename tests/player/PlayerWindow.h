#pragma once

#include "QtPrint.h"
#include "base/Files.h"
#include "core/StartUp.h"
#include "media/MovieBytes.h"
#include "player/Player.h"
#include "player/WelcomePanel.h"

#include <QApplication>
#include <QDir>
#include <QDropEvent>
#include <QElapsedTimer>
#include <QMimeData>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace player
{

/// The whole window, off screen, over a temporary program folder.
class PlayerWindow : public testing::Test
{
protected:
    PlayerWindow()
    {
        // A player that ended before told the event loop to end, and no dialog's would run any more.
        QTimer::singleShot(0, qApp, &QCoreApplication::quit);
        QApplication::exec();
        QDir(m_folder.path()).mkpath("cache");
        QDir(m_folder.path()).mkpath("media/gadgets");
        QFile::copy(PROJECT_SOURCE_DIR "/assets/program/settings.xml", path("settings.xml"));
        core::StartUp(application, path("Zorvex"), {});
        movie = put("intro.swf", media::plainMovie());
    }
    [[nodiscard]] QString path(const QString& name) const { return m_folder.filePath(name); }
    QString put(const QString& name, const media::ByteVector& bytes) const
    {
        EXPECT_TRUE(base::replaceFile(core::filePath(path(name)), bytes));
        return path(name);
    }
    [[nodiscard]] QStringList log() const
    {
        QFile file(application.LogFile);
        EXPECT_TRUE(file.open(QFile::ReadOnly));
        return QString::fromLatin1(file.readAll()).remove("<br>").split("\r\n");
    }
    /// @param source what swfc reads
    [[nodiscard]] QString compile(const QString& name, const QByteArray& source) const
    {
        QFile file(path(name + ".xml"));
        EXPECT_TRUE(file.open(QFile::WriteOnly));
        file.write(source);
        file.close();
        QProcess swfc;
        swfc.setProcessChannelMode(QProcess::ForwardedChannels);
        swfc.start(ZORVEX_TOOLS_DIR "/swfc", {file.fileName(), "-o", path(name + ".swf")});
        EXPECT_TRUE(swfc.waitForFinished() && swfc.exitCode() == 0);
        return path(name + ".swf");
    }
    /// Lets the window live until `question` is answered by yes. @returns the last answer
    template <class Question>
    static bool waitFor(Question&& question)
    {
        constexpr int kPatienceMs = 10'000;
        QElapsedTimer waited;
        waited.start();
        while (!question() && waited.elapsed() < kPatienceMs)
            QApplication::processEvents(QEventLoop::AllEvents, 20);
        return question();
    }
    static WelcomePanel& welcome(Player& player) { return *player.findChild<WelcomePanel*>(); }
    /// The panel is made when it is first needed.
    static bool showsPanel(Player& player)
    {
        const auto* panel = player.findChild<WelcomePanel*>();
        return panel != nullptr && panel->isVisible();
    }
    static void drop(Player& player, const QString& path)
    {
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(path), QUrl::fromLocalFile("/second")});
        QDragEnterEvent enter({9, 9}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&player, &enter);
        EXPECT_TRUE(enter.isAccepted());
        QDropEvent event({9, 9}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&player, &event);
        QApplication::processEvents();
    }
    QTemporaryDir m_folder;
    core::Application application;
    QString movie;
};

/// With skins in its folder.
class SkinnedWindow : public PlayerWindow
{
protected:
    void putSkin(const QString& name, const QByteArray& xml, const QByteArray& script = {})
    {
        const QString skin = path("media/skins/" + name + '/');
        QDir().mkpath(skin);
        for (const auto& [file, bytes] :
             {std::pair(QString("skin.xml"), xml), std::pair(QString("s.vbs"), script)}) {
            QFile out(skin + file);
            ASSERT_TRUE(out.open(QFile::WriteOnly));
            out.write(bytes);
        }
    }
    static QByteArray skinOf(const QByteArray& elements)
    {
        return "<THEME scriptFile='s.vbs' minWidth='200' minHeight='100'><VIEW name='viewNormal'>" +
               elements + "</VIEW><VIEW name='viewFullScreen'/></THEME>";
    }
    static constexpr const char* kScript = "Sub onLoad : End Sub";
};

} // namespace player
