#pragma once

#include <QColor>
#include <QHash>
#include <QIcon>
#include <QPixmap>

namespace ui
{

/// The pictures that menus are drawn with, from one folder: icons, the check mark and the ground behind the
/// items. All may be missing; menus are then drawn without them.
class MenuSet
{
public:
    /// Forgets all pictures and takes check mark and ground from a folder.
    /// @param folder with its closing separator
    void load(const QString& folder);
    [[nodiscard]] const QString& folder() const { return m_folder; }

    /// Gives every item of this caption an icon, wherever it stands. A caption that has one keeps it;
    /// captions are compared without regard to case.
    void addIcon(const QString& caption, const QString& fileName);
    /// @returns null for a caption without an icon, and for one whose file cannot be read
    [[nodiscard]] QIcon icon(const QString& caption) const;

    [[nodiscard]] const QIcon& checkMark() const { return m_checkMark; }
    [[nodiscard]] bool hasGround() const { return !m_ground.isNull(); }
    /// Laid as tiles from a menu's upper left corner.
    [[nodiscard]] const QPixmap& ground() const { return m_ground; }
    /// The colour that texts can be read in on the ground.
    [[nodiscard]] const QColor& textColour() const { return m_textColour; }

private:
    QString m_folder;
    QHash<QString, QString> m_iconFiles;   ///< paths by caption in lower case
    mutable QHash<QString, QIcon> m_icons; ///< those that were asked for, likewise
    QIcon m_checkMark;
    QPixmap m_ground;
    QColor m_textColour = defaultTextColour();
    static QColor defaultTextColour();
};

} // namespace ui
