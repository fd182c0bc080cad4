#pragma once

#include <QCoreApplication>
#include <QString>

namespace core
{

/// A text that a user sees, in the program's own Russian; it becomes the user's language when it is used. The
/// tables of texts wrap theirs in QT_TRANSLATE_NOOP("zorvex", ...), by which the catalogue finds them.
class Text
{
public:
    constexpr Text(const char* russian) : m_russian(russian) {}
    operator QString() const { return QCoreApplication::translate("zorvex", m_russian); }
    [[nodiscard]] std::string toStdString() const { return QString(*this).toStdString(); }
    [[nodiscard]] constexpr const char* source() const { return m_russian; }

private:
    const char* m_russian; // a literal
};

} // namespace core
