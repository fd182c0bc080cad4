#pragma once

#include <QString>

#include <optional>

// settings/: settings.xml, the list of recent files and the dialog that edits options. What a setting does is
// the player's affair; nothing here knows its window.

namespace settings
{

/// What the settings file keeps, with the values that a missing element or attribute stands for.
struct Options {
    // SETTINGS/VIEW
    QString quality = "High";
    qint16 scaleMode = 2;
    QString skin = "default";  ///< a folder of the skins' folder
    QString menus = "default"; ///< a set of menu icons
    bool topMost = false;
    bool menuBar = true;
    bool repeat = false;
    QString place; ///< of the window, as it tells it itself; empty: wherever the desktop puts it
    // SETTINGS/SOUND
    quint8 volume = 100; ///< never the zero of muting, but what un-muting restores
    qint16 pan = 0;
    bool mute = false;
    // SETTINGS/GADGETS
    QString noAnimation = "False"; ///< goes to the addresses of the program's own pages as it stands
    // SETTINGS/SYSTEM
    qint32 cacheMode = 0; ///< what the end of the program removes of the cache: 0 nothing, 1 movies, 2 all
    qint32 startUp = 0;   ///< without a file to open: 0 welcome page, 1 media browser, 2 most recent file
    qint32 timeMode = 0;
    bool sfx = true;
    bool hqShots = true;
    bool associate = false;
    bool secondThread = true;       ///< draws heavy scenes where there is a second core
    QString codepage = "automatic"; ///< of movies before version 6: "automatic" or the name of an 8-bit code
    QString language = "ru";        ///< of the interface: its two-letter code
    // SETTINGS/EXPORT
    QString exportChoice; ///< what was chosen for the last film, in the words of zorvex-export
    // SETTINGS/FILES
    QString search; ///< the media browser's folder; when missing, the program's
    qint32 lastPage = 0;
    QString order = "name"; ///< of the media browser's items: name, date or size
};

/// "True" and "False" in any case, or a number. @returns nothing for another text
std::optional<bool> toBoolean(const QString& text);

} // namespace settings
