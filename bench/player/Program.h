#pragma once

#include "core/StartUp.h"
#include "flash/FlashControl.h"
#include "player/Player.h"

#include <QDir>
#include <QTemporaryDir>

#include <optional>

namespace bench
{

/// A copy of the program's data, so that journal and settings are the bench's own.
inline void copyFolder(const QString& from, const QString& to)
{
    QDir().mkpath(to);
    for (const QFileInfo& entry : QDir(from).entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot)) {
        if (entry.isDir())
            copyFolder(entry.filePath(), to + '/' + entry.fileName());
        else
            QFile::copy(entry.filePath(), to + '/' + entry.fileName());
    }
}

/// The whole player over a folder of its own, with the skins that ship and a movie.
class Program
{
public:
    Program()
    {
        copyFolder(ZORVEX_PROGRAM_DIR "/media", m_folder.filePath("media"));
        QFile::copy(ZORVEX_PROGRAM_DIR "/settings.xml", m_folder.filePath("settings.xml"));
        QDir(m_folder.path()).mkpath("cache");
        core::StartUp(m_application, m_folder.filePath("Zorvex"), {});
        m_player.emplace(m_application, '"' + m_folder.filePath("media/samples/film.swf") + '"');
        m_player->Form_Load();
        m_player->setUpdateTimerEnabled(false);
    }
    player::Player& player() { return *m_player; }

private:
    QTemporaryDir m_folder;
    core::Application m_application;
    std::optional<player::Player> m_player;
};

} // namespace bench
