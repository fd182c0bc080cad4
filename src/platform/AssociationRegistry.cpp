#include "platform/Association.h"

// The association where file classes stand in a registry.

#ifdef _WIN32

#include <QDir>

#include <shlobj.h>
#include <windows.h>

namespace platform
{
namespace
{

/// The user's own part of HKEY_CLASSES_ROOT: writing below the root itself needs rights that users lack.
constexpr const wchar_t* kClasses = L"Software\\Classes\\";

std::wstring wide(const QString& text) { return text.toStdWString(); }

void notifyShell() { SHChangeNotify(SHCNE_ASSOCCHANGED, SHCNF_IDLIST, nullptr, nullptr); }

} // namespace

QStringList Association::Associate() const
{
    QStringList problems;
    for (const AssociationValue& value : m_values) {
        const std::wstring key = kClasses + wide(value.key);
        const std::wstring data = wide(QDir::toNativeSeparators(value.data));
        const LSTATUS status = RegSetKeyValueW(HKEY_CURRENT_USER, key.c_str(), nullptr, REG_SZ, data.c_str(),
                                               static_cast<DWORD>((data.size() + 1) * sizeof(wchar_t)));
        if (status != ERROR_SUCCESS) problems += value.key + ": error " + QString::number(status);
    }
    notifyShell();
    return problems;
}

QStringList Association::Withdraw() const
{
    // The user's own values hide the machine's; without them those hold again.
    RegDeleteTreeW(HKEY_CURRENT_USER, (kClasses + wide(m_product)).c_str());
    RegDeleteKeyValueW(HKEY_CURRENT_USER, (kClasses + wide(m_values[Extension].key)).c_str(), nullptr);
    notifyShell();
    return {};
}

} // namespace platform

#endif
