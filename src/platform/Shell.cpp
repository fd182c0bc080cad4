#include "platform/Shell.h"

#include <QDesktopServices>
#include <QFile>
#include <QFileInfo>
#include <QMimeDatabase>
#include <QRegularExpression>
#include <QUrl>

#include <algorithm>
#include <string_view>

namespace platform
{
namespace
{

// Of every system, not of this one alone: a document server, an emulator or a shared folder may hand the file
// on to another.
constexpr std::string_view kProgramExtensions[] = {
    // programs and libraries
    "exe", "com", "scr", "pif", "cpl", "dll", "ocx", "sys", "drv", "bin", "run", "elf", "so", "dylib",
    "appimage", "app", "out", "prx", "puff", "axf", "o", "ko", "xll", "wll", "efi", "class", "jar", "war",
    "jnlp", "swc", "air",
    // scripts
    "sh", "bash", "zsh", "fish", "csh", "tcsh", "ksh", "bat", "cmd", "btm", "ps1", "ps1xml", "psm1", "psd1",
    "psc1", "js", "jse", "mjs", "cjs", "vbs", "vbe", "vb", "wsf", "wsh", "wsc", "sct", "hta", "py", "pyc",
    "pyo", "pyw", "pyz", "pl", "pm", "rb", "php", "phar", "lua", "tcl", "tk", "awk", "scpt", "scptd",
    "applescript", "command", "tool", "workflow", "action", "terminal", "ahk", "au3", "gadget", "application",
    "kts", "groovy", "expect", "nix",
    // what leads on to a program or changes the system
    "desktop", "directory", "lnk", "url", "website", "webloc", "inetloc", "fileloc", "scf", "library-ms",
    "search-ms", "searchconnector-ms", "settingcontent-ms", "theme", "themepack", "inf", "reg", "msc", "chm",
    "hlp", "mht", "mhtml", "mobileconfig", "rdp", "service", "timer", "socket", "mount", "automount", "crx",
    "xpi", "pkpass", "diagcab",
    // packages and disk images
    "msi", "msp", "mst", "msu", "msix", "msixbundle", "appx", "appxbundle", "appinstaller", "deb", "udeb",
    "rpm", "apk", "xapk", "ipa", "snap", "flatpak", "flatpakref", "flatpakrepo", "pkg", "mpkg", "iso", "img",
    "ima", "dmg", "udf", "nrg", "mdf", "cue", "toast", "vhd", "vhdx", "vmdk", "ova", "ovf", "wim", "squashfs",
    // documents with programs in them
    "docm", "dotm", "xlsm", "xltm", "xlam", "xla", "pptm", "potm", "ppam", "ppsm", "sldm", "accdb", "accde",
    "mdb", "mde"};

constexpr const char* kProgramTypes[] = {"application/x-executable",
                                         "application/x-sharedlib",
                                         "application/x-desktop",
                                         "application/x-shellscript",
                                         "application/x-ms-dos-executable",
                                         "application/vnd.microsoft.portable-executable",
                                         "application/x-msdownload",
                                         "application/x-java-archive",
                                         "application/x-java",
                                         "application/java-archive",
                                         "application/javascript",
                                         "text/javascript",
                                         "application/x-python-bytecode",
                                         "text/x-python",
                                         "application/x-perl",
                                         "application/x-ruby",
                                         "application/x-php",
                                         "text/x-lua",
                                         "text/x-tcl",
                                         "application/x-csh",
                                         "application/x-awk",
                                         "text/vbscript",
                                         "application/x-bat",
                                         "application/x-ms-shortcut",
                                         "application/x-mswinurl",
                                         "application/vnd.appimage",
                                         "application/x-iso9660-appimage",
                                         "application/x-cd-image",
                                         "application/x-raw-disk-image",
                                         "application/vnd.efi.iso",
                                         "application/vnd.efi.img",
                                         "application/x-apple-diskimage",
                                         "application/x-msi",
                                         "application/vnd.debian.binary-package",
                                         "application/x-deb",
                                         "application/x-rpm",
                                         "application/vnd.android.package-archive",
                                         "application/vnd.flatpak",
                                         "application/vnd.flatpak.ref",
                                         "application/vnd.flatpak.repo",
                                         "application/vnd.snap",
                                         "application/x-object",
                                         "application/wasm"};

struct Magic {
    const char* name;
    qsizetype offset;
    QByteArray bytes;
};

const char* magicOf(const QString& path)
{
    static const Magic kMagics[] = {
        {"ELF program", 0,
         QByteArray("\x7f"
                    "ELF")},
        {"DOS or Windows program", 0, QByteArray("MZ")},
        {"DOS or Windows program", 0, QByteArray("ZM")},
        {"script", 0, QByteArray("#!")},
        {"script", 0, QByteArray("\xEF\xBB\xBF#!")},
        {"Mach-O program", 0, QByteArray("\xFE\xED\xFA\xCE")},
        {"Mach-O program", 0, QByteArray("\xFE\xED\xFA\xCF")},
        {"Mach-O program", 0, QByteArray("\xCE\xFA\xED\xFE")},
        {"Mach-O program", 0, QByteArray("\xCF\xFA\xED\xFE")},
        {"Mach-O program or Java class", 0, QByteArray("\xCA\xFE\xBA\xBE")},
        {"WebAssembly", 0, QByteArray("\0asm", 4)},
        {"Android program", 0, QByteArray("dex\n")},
        {"Windows shortcut", 0, QByteArray("L\0\0\0\x01\x14\x02\0", 8)},
        {"Debian package", 0, QByteArray("!<arch>\ndebian")},
        {"RPM package", 0, QByteArray("\xED\xAB\xEE\xDB")},
        {"squashfs image", 0, QByteArray("hsqs")},
        {"disk image", 32769, QByteArray("CD001")},
    };
    constexpr qint64 kReadBytes = 33 * 1024;
    QFile file(path);
    if (!file.open(QFile::ReadOnly)) return "cannot be read";
    const QByteArray start = file.read(kReadBytes);
    for (const Magic& magic : kMagics)
        if (start.mid(magic.offset, magic.bytes.size()) == magic.bytes) return magic.name;
    // The group's heading may stand behind comments and blank lines.
    static const QRegularExpression kEntry(R"(^\s*\[(KDE )?(Desktop Entry|InternetShortcut)\])",
                                           QRegularExpression::MultilineOption |
                                               QRegularExpression::CaseInsensitiveOption);
    constexpr qsizetype kHeadBytes = 4096;
    if (kEntry.match(QString::fromLatin1(start.first(std::min(start.size(), kHeadBytes)))).hasMatch())
        return "desktop entry";
    return nullptr;
}

/// Dots and spaces at the end of a name are no part of it on some systems.
QString extensionOf(QString name)
{
    while (!name.isEmpty() && (name.back() == '.' || name.back().isSpace())) name.chop(1);
    const qsizetype dot = name.lastIndexOf('.');
    return dot < 0 ? QString() : name.mid(dot + 1).trimmed().toLower();
}

QString whyProgram(const QFileInfo& file)
{
    constexpr auto kAnyExecute = QFileDevice::ExeOwner | QFileDevice::ExeGroup | QFileDevice::ExeOther;
    const QString extension = extensionOf(file.fileName());
    const auto isExtension = [&](std::string_view known) {
        return extension == QLatin1String(known.data(), static_cast<qsizetype>(known.size()));
    };
    if (std::ranges::any_of(kProgramExtensions, isExtension)) return "named ." + extension;
    if ((file.permissions() & kAnyExecute) != 0) return "marked as executable";
    if (const char* magic = magicOf(file.filePath())) return magic;
    const QMimeDatabase types;
    for (const auto mode : {QMimeDatabase::MatchContent, QMimeDatabase::MatchExtension}) {
        const QMimeType type = types.mimeTypeForFile(file, mode);
        for (const char* known : kProgramTypes)
            if (type.inherits(known)) return "of type " + type.name();
    }
    return {};
}

} // namespace

FileVerdict examineFile(const QString& path)
{
    FileVerdict verdict;
    if (path.startsWith(':')) return verdict; // the toolkit's own name for what is built into the program
    verdict.path = QFileInfo(path).canonicalFilePath();
    if (verdict.path.isEmpty()) return verdict;
    const QFileInfo file(verdict.path);
    if (file.isDir()) {
        verdict.kind = FileKind::Folder;
        // A bundle is a folder that runs.
        if (extensionOf(file.fileName()) == "app") {
            verdict.kind = FileKind::Program;
            verdict.reason = "named .app";
        }
        return verdict;
    }
    if (!file.isFile()) {
        verdict.kind = FileKind::Special;
        return verdict;
    }
    verdict.reason = whyProgram(file);
    verdict.kind = verdict.reason.isEmpty() ? FileKind::Document : FileKind::Program;
    return verdict;
}

bool openWithSystem(const QUrl& url) { return QDesktopServices::openUrl(url); }

} // namespace platform
