#pragma once

#include "base/xml/Xml.h"
#include "core/Application.h"
#include "settings/Options.h"

#include <QStringList>

namespace settings
{

/// @returns the code of the language that the settings hold; to be had before they are read, and quietly
QString chosenLanguage(const core::Application& application);

/// settings.xml. The file is a template that is updated in place: saving changes the texts of attributes and
/// elements that are there and creates none, so that whatever else it holds survives.
class SettingsFile
{
public:
    /// The elements that hold recent files; the list itself is one shorter.
    static constexpr int kRecentSlots = 6;

    explicit SettingsFile(core::Application& application) : m_application(application) {}

    /// Reads the user's file; where there is none but the program was installed with one elsewhere, that one.
    /// @param options values that cannot be read as what they should be leave theirs; missing ones become the
    ///                defaults
    /// @param recent  the stored paths in document order (newest first), those without a file left out
    /// @returns false when there is no usable file: nothing is changed, the journal says why, and a damaged
    ///          file is kept aside as settings.xml.bad. The next save then fills the program's own template.
    bool load(Options& options, QStringList& recent);

    /// What another window of the program has saved since the load stays, unless this one has changed it too;
    /// recent files of both are kept, this one's first.
    /// @param ownRecent newest first. A path whose file is gone leaves its element as it is.
    /// @returns false when the file could not be written; the old one is then untouched and the journal says
    ///          why.
    bool save(const Options& own, const QStringList& ownRecent);
    /// Takes over what another window has saved meanwhile: the options of the options window, which are the
    /// same for all windows, and its recent files. What this window has changed itself stays.
    /// @returns whether anything is another now
    bool refresh(Options& options, QStringList& recent);
    /// Whether the last save failed for want of room.
    [[nodiscard]] bool isDiskFull() const { return m_isDiskFull; }

    /// What save() would write. @returns nothing when there is nothing to write over
    std::optional<std::string> compose(const Options& options, const QStringList& recent);
    [[nodiscard]] QString path() const;

private:
    void log(const QString& text);
    void keepAside();
    [[nodiscard]] std::optional<base::xml::Document> documentOnDisk() const;
    void takeOver(Options& options, QStringList& recent) const;
    void takeOverRecent(QStringList& recent) const;

    core::Application& m_application;
    /// Kept from load to the end of the run. Empty when the file could not even be read: it may be good, and
    /// is not replaced then.
    std::optional<base::xml::Document> m_document;
    bool m_isDiskFull = false;
    /// What this window had at its load or last save: what differs from it, this window has changed.
    Options m_before;
    QStringList m_recentBefore;
    QStringList m_recentOnDisk; ///< as texts of the file
};

} // namespace settings
