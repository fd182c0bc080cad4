#include "player/OutsideTarget.h"

#include "platform/Shell.h"

#include <QDir>
#include <QRegularExpression>
#include <QUrlQuery>

#include <algorithm>

namespace player
{
namespace
{

constexpr qsizetype kMax = 2048;

using Refusal = OutsideTarget::Refusal;

OutsideTarget refused(Refusal refusal, const QString& shown, const QString& reason)
{
    OutsideTarget target;
    target.refusal = refusal;
    target.shown = shown;
    target.reason = reason;
    return target;
}

/// Characters that break lines, hide, or turn the order of what is shown.
bool deceives(QChar character)
{
    switch (character.category()) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph: return true;
    default: return false;
    }
}

bool hasDeception(const QString& text) { return std::ranges::any_of(text, deceives); }

OutsideTarget examinePage(const QString& text)
{
    // Browsers read a backslash as a slash; read as anything else it could hide the host.
    const QUrl url(QString(text).replace('\\', '/'), QUrl::TolerantMode);
    if (!url.isValid() || url.host().isEmpty()) return refused(Refusal::Invalid, text, "no valid address");
    if (!url.userInfo().isEmpty())
        return refused(Refusal::Misleading, text, "the address hides its host behind a user name");
    OutsideTarget target;
    target.kind = OutsideTarget::Kind::Page;
    target.url = url;
    // Letters of other alphabets that look like these are spelled out.
    target.shown = QString::fromLatin1(url.toEncoded());
    return target;
}

OutsideTarget examineLetter(const QString& text)
{
    const QUrl url(text, QUrl::TolerantMode);
    if (!url.isValid() || hasDeception(url.path(QUrl::FullyDecoded)))
        return refused(Refusal::Invalid, text, "no valid address");
    const auto items = QUrlQuery(url).queryItems(QUrl::FullyDecoded);
    for (const auto& [name, value] : items)
        if (name.trimmed().startsWith("attach", Qt::CaseInsensitive) ||
            name.trimmed().startsWith("x-", Qt::CaseInsensitive))
            return refused(Refusal::Invalid, text, "the letter would carry a file along");
    OutsideTarget target;
    target.kind = OutsideTarget::Kind::Letter;
    target.url = url;
    target.shown = QString::fromLatin1(url.toEncoded());
    return target;
}

OutsideTarget examinePath(const QString& path)
{
    const platform::FileVerdict file = platform::examineFile(path);
    switch (file.kind) {
    case platform::FileKind::Missing: return refused(Refusal::Missing, path, "no such file");
    case platform::FileKind::Special: return refused(Refusal::Missing, file.path, "neither file nor folder");
    case platform::FileKind::Program:
        return refused(Refusal::Program, file.path, "a program: " + file.reason);
    case platform::FileKind::Folder:
    case platform::FileKind::Document: break;
    }
    // Links may lead to a name that misleads.
    if (hasDeception(file.path))
        return refused(Refusal::Misleading, path, "the name holds characters that mislead");
    OutsideTarget target;
    target.kind = OutsideTarget::Kind::File;
    target.url = QUrl::fromLocalFile(file.path);
    target.shown = file.path;
    return target;
}

/// "\\machine\folder" and "//machine/folder".
bool isOnOtherMachine(const QString& path)
{
    const auto isSlash = [&path](qsizetype at) { return path[at] == '/' || path[at] == '\\'; };
    return path.size() >= 2 && isSlash(0) && isSlash(1);
}

OutsideTarget examineFileAddress(const QString& text)
{
    const QUrl url(text, QUrl::TolerantMode);
    const QString host = url.host();
    if (!url.isValid()) return refused(Refusal::Invalid, text, "no valid address");
    if (!host.isEmpty() && host.compare("localhost", Qt::CaseInsensitive) != 0)
        return refused(Refusal::OtherMachine, text, "lies on another machine");
    const QString path = url.path(QUrl::FullyDecoded);
    if (hasDeception(path))
        return refused(Refusal::Misleading, text, "the name holds characters that mislead");
    if (isOnOtherMachine(path)) return refused(Refusal::OtherMachine, text, "lies on another machine");
    if (!path.startsWith('/')) return refused(Refusal::Invalid, text, "no valid address");
    return examinePath(path);
}

OutsideTarget examineBarePath(const QString& text, const QString& folder)
{
    if (isOnOtherMachine(text)) return refused(Refusal::OtherMachine, text, "lies on another machine");
    // The name as it stands comes first; then what an address would make of it. Each is examined for itself.
    QStringList readings{text};
    const QString withoutQuery = text.left(text.indexOf(QRegularExpression("[?#]")));
    readings += withoutQuery;
    readings += QUrl::fromPercentEncoding(withoutQuery.toUtf8());
    for (const QString& reading : QStringList(readings)) readings += QString(reading).replace('\\', '/');
    for (const QString& reading : readings) {
        const QString path = QDir(folder).absoluteFilePath(reading);
        if (reading.trimmed().isEmpty() || isOnOtherMachine(reading) || hasDeception(reading)) continue;
        if (QFileInfo::exists(path) || QFileInfo(path).isSymLink()) return examinePath(path);
    }
    if (text.startsWith("www.", Qt::CaseInsensitive)) return examinePage("http://" + text);
    return refused(Refusal::Missing, text, "no such file");
}

} // namespace

OutsideTarget examineTarget(const QString& text, const QString& folder)
{
    const QString address = text.trimmed();
    if (address.isEmpty()) return refused(Refusal::Invalid, address, "nothing is named");
    if (address.size() > kMax) return refused(Refusal::Invalid, address.left(80) + "...", "too long");
    if (hasDeception(address)) return refused(Refusal::Misleading, address, "holds characters that mislead");

    // A single letter is a drive of another system.
    static const QRegularExpression kScheme("^([A-Za-z][A-Za-z0-9+.-]+)\\s*:");
    const auto found = kScheme.match(address);
    if (!found.hasMatch()) return examineBarePath(address, folder);
    const QString scheme = found.captured(1).toLower();
    if (scheme == "http" || scheme == "https") return examinePage(address);
    if (scheme == "mailto") return examineLetter(address);
    if (scheme == "file") return examineFileAddress(address);
    return refused(Refusal::Invalid, address, "the scheme " + scheme + " is not opened");
}

} // namespace player
