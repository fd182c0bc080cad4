#include "core/Language.h"

#include "core/Look.h"
#include "core/Texts.h"

#include <QCoreApplication>
#include <QLocale>

namespace core
{

bool Language::choose(const QString& code, const QString& folder)
{
    if (code == m_code) return false;
    QCoreApplication::removeTranslator(&m_texts);
    const bool isThere = code != kRussian && m_texts.load("zorvex_" + code, folder);
    if (isThere) QCoreApplication::installTranslator(&m_texts);
    const QString before = std::exchange(m_code, isThere ? code : QString(kRussian));
    if (m_code == before) return false;
    QLocale::setDefault(QLocale(m_code));
    look::translateToolkit(m_code);
    return true;
}

bool Language::chooseFor(const QString& setting, const QString& folder)
{
    const QString wanted = qEnvironmentVariable(kVariable);
    return choose(wanted.isEmpty() ? setting : wanted.left(2).toLower(), folder);
}

QString languageCode() { return texts::kLanguageCode; }

} // namespace core
