#pragma once

#include <QString>
#include <QTranslator>

namespace core
{

/// The language of the interface. Russian is the program's own and needs no catalogue; others are Qt's
/// translation files "zorvex_CODE.qm". Needs the application object; one at a time.
class Language
{
public:
    static constexpr const char* kRussian = "ru";
    /// Chosen for one run, whatever the settings say.
    static constexpr const char* kVariable = "ZORVEX_LANG";

    Language() = default;
    /// @param code   "ru", "en"; what there is no catalogue for leaves Russian
    /// @param folder of the catalogues, with its separator
    /// @returns whether the language is another now
    bool choose(const QString& code, const QString& folder);
    /// As choose(), but that the variable comes before what the settings hold.
    bool chooseFor(const QString& setting, const QString& folder);
    [[nodiscard]] QString code() const { return m_code; }

private:
    QTranslator m_texts;
    QString m_code = kRussian;
};

/// The code of the language that texts have at present: what the program's pages are told.
QString languageCode();

} // namespace core
