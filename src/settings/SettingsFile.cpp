#include "settings/SettingsFile.h"

#include "base/Failure.h"
#include "base/Files.h"

#include <cmath>
#include <filesystem>
#include <limits>
#include <optional>
#include <type_traits>
#include <variant>

namespace settings
{
namespace
{

constexpr const char* kFileName = "settings.xml";
constexpr std::uint64_t kMaxBytes = 1 << 20;
constexpr std::uint8_t kTemplate[] = {
#include "Template.inc"
};

using Member = std::variant<QString Options::*, bool Options::*, quint8 Options::*, qint16 Options::*,
                            qint32 Options::*>;

struct Setting {
    const char* element;
    const char* attribute;
    Member member;
    bool isLater = false; ///< no file has it until it is set to something else than the default
};

// The order is that of reading and writing.
// clang-format off
constexpr Setting kSettings[] = {
    {"VIEW",    "quality",     &Options::quality},
    {"VIEW",    "scaleMode",   &Options::scaleMode},
    {"VIEW",    "skin",        &Options::skin},
    {"VIEW",    "menus",       &Options::menus},
    {"VIEW",    "topMost",     &Options::topMost},
    {"VIEW",    "menuBar",     &Options::menuBar},
    {"VIEW",    "repeat",      &Options::repeat},
    {"VIEW",    "place",       &Options::place},
    {"SOUND",   "volume",      &Options::volume},
    {"SOUND",   "pan",         &Options::pan},
    {"SOUND",   "mute",        &Options::mute},
    {"GADGETS", "noAnimation", &Options::noAnimation},
    {"SYSTEM",  "cacheMode",   &Options::cacheMode},
    {"SYSTEM",  "startUp",     &Options::startUp},
    {"SYSTEM",  "timeMode",    &Options::timeMode},
    {"SYSTEM",  "sfx",         &Options::sfx},
    {"SYSTEM",  "hqShots",     &Options::hqShots},
    {"SYSTEM",  "associate",   &Options::associate},
    {"SYSTEM",  "codepage",    &Options::codepage, true},
    {"SYSTEM",  "language",    &Options::language, true},
    {"SYSTEM",  "secondThread", &Options::secondThread, true},
    {"EXPORT",  "choice",      &Options::exportChoice},
    {"FILES",   "search",      &Options::search},
    {"FILES",   "lastPage",    &Options::lastPage},
    {"FILES",   "order",       &Options::order, true},
};
// clang-format on

/// Rounds with halves to even. @returns nothing for what is no number or does not fit
template <class T>
std::optional<T> toWhole(const QString& text)
{
    bool isNumber = false;
    const double number = std::nearbyint(text.trimmed().toDouble(&isNumber));
    if (!isNumber || !(number >= std::numeric_limits<T>::min() && number <= std::numeric_limits<T>::max()))
        return std::nullopt;
    return static_cast<T>(number);
}

void read(const QString& text, QString& value) { value = text; }
void read(const QString& text, bool& value) { value = toBoolean(text).value_or(value); }
template <class T>
void read(const QString& text, T& value)
{
    value = toWhole<T>(text).value_or(value);
}

QString write(const QString& value) { return value; }
QString write(bool value) { return value ? "True" : "False"; }
QString write(qint32 value) { return QString::number(value); }

std::optional<base::xml::Element> childOf(const base::xml::Document& document, const char* name)
{
    return document.root().child(name);
}

std::vector<base::xml::Element> recentElements(const base::xml::Document& document)
{
    const auto files = childOf(document, "FILES");
    if (!files) return {};
    auto elements = files->children();
    std::erase_if(elements, [](const base::xml::Element& element) { return element.name() != "RECENT"; });
    return elements;
}

/// @param given what a setting that is missing leaves
Options readOptions(const base::xml::Document& document, Options given)
{
    const Options defaults;
    for (const Setting& setting : kSettings) {
        const auto element = childOf(document, setting.element);
        const auto found = element ? element->attribute(setting.attribute) : std::nullopt;
        std::visit(
            [&](const auto member) {
                if (found)
                    read(QString::fromStdString(*found), given.*member);
                else
                    given.*member = defaults.*member;
            },
            setting.member);
    }
    return given;
}

QStringList readRecent(const base::xml::Document& document)
{
    QStringList recent;
    for (const base::xml::Element& element : recentElements(document)) {
        const QString file = QString::fromStdString(element.text());
        if (!file.isEmpty() && core::fileExists(file)) recent += file;
    }
    return recent;
}

/// As they stand, whether there are such files or not.
QStringList recentTexts(const base::xml::Document& document)
{
    QStringList texts;
    for (const base::xml::Element& element : recentElements(document))
        texts += QString::fromStdString(element.text());
    return texts;
}

} // namespace

std::optional<bool> toBoolean(const QString& text)
{
    const QString word = text.trimmed();
    if (word.compare("true", Qt::CaseInsensitive) == 0) return true;
    if (word.compare("false", Qt::CaseInsensitive) == 0) return false;
    bool isNumber = false;
    const double number = word.toDouble(&isNumber);
    if (!isNumber) return std::nullopt;
    return number != 0;
}

QString chosenLanguage(const core::Application& application)
{
    for (const QString& folder : {application.SettingsPath, application.AppPath}) {
        const auto content = base::readFile(core::filePath(folder + kFileName), kMaxBytes);
        if (!content) continue;
        const auto document = base::xml::Document::parse(*content);
        return document ? readOptions(*document, {}).language : Options().language;
    }
    return Options().language;
}

QString SettingsFile::path() const { return m_application.SettingsPath + kFileName; }

void SettingsFile::log(const QString& text)
{
    try {
        m_application.LogEvent(core::HtmlEscape(text));
    } catch (const base::Failure&) {
        // Settings are read and saved whether or not the journal can be written.
    }
}

void SettingsFile::keepAside()
{
    std::error_code error;
    std::filesystem::rename(core::filePath(path()), core::filePath(path() + ".bad"), error);
    if (!error) return log("The damaged file is kept as " + path() + ".bad");
    log("The damaged file could not be moved aside: " + QString::fromStdString(error.message()));
    m_document.reset(); // saving would lose it
}

bool SettingsFile::load(Options& options, QStringList& recent)
{
    log({});
    log(" :: Load Options");
    QString source = path();
    const QString installed = m_application.AppPath + kFileName;
    if (!core::fileExists(source) && core::fileExists(installed)) source = installed;

    m_document.reset();
    const auto content = base::readFile(core::filePath(source), kMaxBytes);
    auto document = content ? base::xml::Document::parse(*content)
                            : base::Result<base::xml::Document>(tl::make_unexpected(content.error()));
    if (document && document->root().name() != "SETTINGS")
        document = base::fail(base::ErrorCode::Malformed, "the root element is not SETTINGS");
    if (!document) {
        log("Invalid settings file");
        log(source + ": " + QString::fromStdString(document.error().what));
        const bool isDamaged = content.has_value();
        if (isDamaged || content.error().code == base::ErrorCode::NotFound)
            if (auto ours = base::xml::Document::parse(kTemplate)) m_document = std::move(*ours);
        if (isDamaged && source == path()) keepAside();
        return false;
    }
    m_document = std::move(*document);

    options = readOptions(*m_document, options);
    // An empty folder is what the template holds; it means nothing else than a missing one.
    if (options.search.isEmpty()) options.search = m_application.AppPath;

    recent = readRecent(*m_document);
    m_before = options;
    m_recentBefore = recent;
    m_recentOnDisk = recentTexts(*m_document);
    return true;
}

std::optional<std::string> SettingsFile::compose(const Options& options, const QStringList& recent)
{
    if (!m_document) return std::nullopt;
    const Options defaults;
    for (const Setting& setting : kSettings) {
        auto element = childOf(*m_document, setting.element);
        if (!element) continue;
        const auto textIn = [&](const Options& of) {
            return std::visit([&](const auto member) { return write(of.*member); }, setting.member);
        };
        const QString text = textIn(options);
        if (!element->attribute(setting.attribute) && (!setting.isLater || text == textIn(defaults)))
            continue;
        element->setAttribute(setting.attribute, text.toStdString());
    }
    auto elements = recentElements(*m_document);
    for (int slot = 0; slot < std::min<int>(kRecentSlots, static_cast<int>(elements.size())); ++slot) {
        base::xml::Element& element = elements[static_cast<std::size_t>(slot)];
        if (slot >= recent.size())
            element.setText("");
        else if (core::fileExists(recent[slot]))
            element.setText(recent[slot].toStdString());
    }
    const auto bytes = m_document->bytes();
    return std::string(bytes.begin(), bytes.end());
}

std::optional<base::xml::Document> SettingsFile::documentOnDisk() const
{
    const auto content = base::readFile(core::filePath(path()), kMaxBytes);
    if (!content) return std::nullopt;
    auto document = base::xml::Document::parse(*content);
    if (!document || document->root().name() != "SETTINGS") return std::nullopt;
    return std::move(*document);
}

void SettingsFile::takeOver(Options& options, QStringList& recent) const
{
    const Options theirs = readOptions(*m_document, m_before);
    for (const Setting& setting : kSettings)
        std::visit(
            [&](const auto member) {
                if (options.*member == m_before.*member) options.*member = theirs.*member;
            },
            setting.member);
    takeOverRecent(recent);
}

void SettingsFile::takeOverRecent(QStringList& recent) const
{
    if (recentTexts(*m_document) == m_recentOnDisk) return; // no other window has been here
    // What this window has opened stands first; all that the other one knows follows.
    QStringList merged;
    for (const QString& path : recent)
        if (!m_recentBefore.contains(path) || path == recent.first()) merged += path;
    if (!recent.isEmpty() && !m_recentBefore.isEmpty() && recent.first() == m_recentBefore.first())
        merged.removeOne(recent.first());
    merged += readRecent(*m_document);
    merged += recent;
    merged.removeDuplicates();
    recent = merged.mid(0, kRecentSlots - 1);
}

bool SettingsFile::refresh(Options& options, QStringList& recent)
{
    auto onDisk = m_document ? documentOnDisk() : std::nullopt;
    if (!onDisk) return false;
    m_document = std::move(*onDisk);
    const Options theirs = readOptions(*m_document, m_before);
    bool isAnother = false;
    for (const Setting& setting : kSettings) {
        const QByteArray element = setting.element;
        if ((element != "GADGETS" && element != "SYSTEM") || QByteArray(setting.attribute) == "timeMode")
            continue;
        std::visit(
            [&](const auto member) {
                if (theirs.*member == m_before.*member || options.*member != m_before.*member) return;
                options.*member = m_before.*member = theirs.*member;
                isAnother = true;
            },
            setting.member);
    }
    const QStringList before = recent;
    takeOverRecent(recent);
    m_recentOnDisk = recentTexts(*m_document);
    m_recentBefore = recent;
    return isAnother || recent != before;
}

bool SettingsFile::save(const Options& own, const QStringList& ownRecent)
{
    log({});
    log(" :: Save Options");
    Options options = own;
    QStringList recent = ownRecent;
    if (auto onDisk = m_document ? documentOnDisk() : std::nullopt) {
        m_document = std::move(*onDisk);
        takeOver(options, recent);
    }
    m_before = own;
    m_recentBefore = ownRecent;
    const auto content = compose(options, recent);
    if (!content) {
        log(path() + ": not saved, because it could not be read");
        return false;
    }
    const base::Bytes bytes(reinterpret_cast<const std::uint8_t*>(content->data()), content->size());
    const auto written = base::replaceFile(core::filePath(path()), bytes);
    if (!written) log(path() + ": not saved: " + QString::fromStdString(written.error().what));
    if (written) m_recentOnDisk = recentTexts(*m_document);
    m_isDiskFull = !written && base::isDiskFull(written.error());
    return written.has_value();
}

} // namespace settings
