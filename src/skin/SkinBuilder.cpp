#include "base/Failure.h"
#include "base/Files.h"
#include "core/Application.h"
#include "core/Look.h"
#include "core/RunTimeErrors.h"
#include "skin/Skin.h"
#include "skin/SkinFiles.h"
#include "skin/Texts.h"

#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>

#include <cmath>
#include <utility>

// How a description becomes live objects. The order of the steps is what scripts and expressions rely on: an
// expression sees the objects that were built before its own.

namespace skin
{
namespace
{

constexpr std::uint64_t kMaxDescriptionBytes = 16ULL << 20;
constexpr std::size_t kMaxObjects = 5'000;
constexpr int kMaxNested = 64; ///< elements, one inside another
/// Of all its pictures together; a screen has some eight million.
constexpr qint64 kMaxImagePixels = 128'000'000;
constexpr std::size_t kMaxSourceBytes = 4000; ///< of an element, in the journal
constexpr qint64 kMaxMaskPixels = 64'000'000;
constexpr int kNoPicture = 481;
constexpr int kTypeMismatch = 13;
/// Where the scripts that skins share lie, from a skin's folder.
constexpr const char* kSharedScripts = "../../scripts";

/// What lies outside of every widget: an empty region would mean no mask at all.
const QRegion kNothing(-1, -1, 1, 1);

void setMaskOf(QWidget& widget, const QRegion& region)
{
    widget.setMask(region.isEmpty() ? kNothing : region);
}

bool isName(const base::xml::Element& element, const char* name)
{
    return QString::fromStdString(element.name()).compare(QLatin1String(name), Qt::CaseInsensitive) == 0;
}

} // namespace

bool Skin::LoadSkin(const QString& path)
{
    m_host.log(" :: Load Skin (" + core::HtmlEscape(path) + ")");
    const QFileInfo file(path);
    m_folder = file.absolutePath() + '/';
    const QString found = findFile(m_folder, file.fileName());
    if (found.isEmpty()) return false;
    const auto bytes = base::readFile(core::filePath(found), kMaxDescriptionBytes);
    if (!bytes) return false;
    const auto document = base::xml::Document::parse(*bytes);
    if (!document) {
        m_host.noteMistake("skin.xml", 0, QString::fromStdString(document.error().what));
        m_host.log(core::HtmlEscape(QString::fromStdString(document.error().what)));
        return false;
    }

    const Busy busy(*this);
    m_imagePixels = 0;
    m_words.load(core::languageCode(), {m_folder, sharedFolder()});
    m_bridge.beginPass();
    const base::xml::Element root = document->root();
    m_container = &m_host.clientArea();
    m_buildingView = 0;
    if (isName(root, "THEME"))
        ParseSkinNode(root);
    else
        step(root, Step::Branch,
             [] { throw base::Failure(kTypeMismatch, "Skin", texts::kNoTheme.toStdString()); });

    m_bridge.RunScript("onLoad");
    runMediaChange();
    m_currentView = 1;
    SetSkinView(m_host.isFullScreen() ? "viewFullScreen" : "viewNormal");
    if (m_bridge.endPass()) m_host.skinOverran();
    return true;
}

void Skin::step(const base::xml::Element& node, Step kind, const std::function<void()>& action)
{
    try {
        action();
    } catch (const base::Failure& failure) {
        if (!std::exchange(m_isNoted, false))
            m_host.noteMistake("skin.xml", node.line(), QString::fromStdString(failure.description()));
        const bool developer = kind == Step::Element && m_host.isDeveloperMode();
        const QString source = QString::fromStdString(node.source(kMaxSourceBytes));
        m_host.logError(failure, developer ? texts::kObjectPlace : texts::kBranchPlace,
                        QString(developer ? texts::kObjectDetail : texts::kBranchDetail) +
                            ("\r\n\r\n" + source));
    }
}

void Skin::ParseSkinNode(const base::xml::Element& node)
{
    // A skin that is put away anyway is not built to its end.
    if (m_bridge.hasOverrun()) return;
    if (isName(node, "THEME")) {
        beginTheme(node);
        ParseSkinChildren(node);
    } else if (isName(node, "VIEW")) {
        step(node, Step::Branch, [&] { CreateSkinView(node); });
        ParseSkinChildren(node);
        m_container = &m_host.clientArea();
    } else if (isName(node, "SUBVIEW")) {
        step(node, Step::Element, [&] { CreateSkinObject(node, Kind::Panel); });
        ParseSkinChildren(node);
        if (m_container != &m_host.clientArea()) m_container = m_container->parentWidget();
    } else if (isName(node, "BUTTON")) {
        step(node, Step::Element, [&] { CreateSkinObject(node, Kind::Button); });
    } else if (isName(node, "LABEL")) {
        step(node, Step::Element, [&] { CreateSkinObject(node, Kind::Label); });
    }
}

void Skin::ParseSkinChildren(const base::xml::Element& node)
{
    if (m_nested == kMaxNested)
        return step(node, Step::Branch,
                    [] { throw base::Failure(kTypeMismatch, "Skin", texts::kTooDeep.toStdString()); });
    ++m_nested;
    for (const base::xml::Element& child : node.children()) ParseSkinNode(child);
    --m_nested;
}

QString Skin::sharedFolder() const { return QDir::cleanPath(m_folder + kSharedScripts) + '/'; }

void Skin::beginTheme(const base::xml::Element& node)
{
    const auto theme = ThemeAttributes::read(node);
    step(node, Step::Branch, [&] {
        if (const auto error = m_bridge.begin(theme.scriptLanguage))
            throw base::Failure(kTypeMismatch, "Skin", error->toStdString());
    });
    step(node, Step::Branch, [&] {
        m_host.setMinimumWindowSize({toWhole(theme.minWidth), toWhole(theme.minHeight)});
    });
    m_bridge.setFiles(theme.scriptFile, theme.scriptLibrary);
    const auto addScript = [&](const QString& name, Bridge::Source source, const QStringList& folders) {
        if (name.isEmpty()) return;
        QString path;
        for (const QString& folder : folders)
            if (path.isEmpty()) path = findFile(folder, name);
        if (path.isEmpty())
            throw base::Failure(core::kFileNotFound, "Skin", (texts::kNoScriptFile + name).toStdString());
        if (const auto error = m_bridge.addCode(ReadTextFile(path), source)) {
            m_isNoted = true; // with the line of the script, which says more than that of the description
            throw base::Failure(kTypeMismatch, "Skin", (name + ": " + *error).toStdString());
        }
    };
    // The skin's own copy comes before the program's.
    const QString shared = sharedFolder();
    step(node, Step::Branch, [&] {
        addScript(theme.scriptLibrary, Bridge::Source::Library, {m_folder, shared});
    });
    step(node, Step::Branch, [&] { addScript(theme.scriptFile, Bridge::Source::Skin, {m_folder}); });
    m_container = &m_host.clientArea();
}

void Skin::introduce(SkinControl& control, const QString& name)
{
    m_controls.emplace_back(&control);
    control.setObjectName(name);
    m_bridge.addObject(name, &control);
    control.setTag(QString::number(m_objects.size() - 1));
    if (m_host.isDeveloperMode()) control.setToolTip(QString("%1 (%2)").arg(name).arg(control.Index()));
}

void Skin::CreateSkinView(const base::xml::Element& node)
{
    if (m_objects.size() > kMaxObjects)
        throw base::Failure(kTypeMismatch, "Skin", texts::kTooMany.toStdString());
    const auto attributes = ViewAttributes::read(node);
    SkinObject& record = m_objects.emplace_back();
    auto* view = new SkinPicture("PIC", ++m_pictures, &m_host.clientArea(), &m_host.window());
    view->setGround(QColor(core::look::kInk));
    m_container = view;
    introduce(*view, attributes.name);
    record.name = attributes.name;
    record.object = view;
    record.kind = Kind::View;
    record.viewIndex = m_buildingView = static_cast<int>(m_objects.size() - 1);
    record.onResize = attributes.onResize;
    record.onInfoUpdate = attributes.onInfoUpdate;
    record.onMediaChange = attributes.onMediaChange;
}

void Skin::CreateSkinObject(const base::xml::Element& node, Kind kind)
{
    if (m_objects.size() > kMaxObjects)
        throw base::Failure(kTypeMismatch, "Skin", texts::kTooMany.toStdString());
    m_objects.emplace_back();
    // Stored when all has gone well: an element that fails on the way leaves its record empty.
    SkinObject record;
    buildObject(record, node, kind);
    m_objects.back() = std::move(record);
}

void Skin::buildObject(SkinObject& record, const base::xml::Element& node, Kind kind)
{
    const QString viewName = m_objects[static_cast<std::size_t>(m_buildingView)].name;
    const bool fullScreen = viewName.compare("viewFullScreen", Qt::CaseInsensitive) == 0;
    const auto attributes = ElementAttributes::read(node, kind, fullScreen);
    record.name = attributes.name;
    record.viewIndex = m_buildingView;
    record.kind = kind;

    QWidget& window = m_host.window();
    SkinPicture* picture = nullptr;
    SkinLabel* label = nullptr;
    if (kind == Kind::Label)
        label = new SkinLabel("LBL", ++m_labels, m_container, &window);
    else
        picture = new SkinPicture("PIC", ++m_pictures, m_container, &window);
    SkinControl& control = label != nullptr ? static_cast<SkinControl&>(*label) : *picture;
    if (kind == Kind::Panel) m_container = picture;
    introduce(control, attributes.name);
    record.object = &control;
    record.left = Expression(attributes.left);
    record.top = Expression(attributes.top);
    record.width = Expression(attributes.width);
    record.height = Expression(attributes.height);
    control.setShown(toBoolean(attributes.visible));

    if (picture != nullptr && attributes.image != kAbsent) loadImages(*picture, kind, attributes.image);
    record.onDrag = attributes.onDrag;
    record.onClick = attributes.onClick;
    record.onDblClick = attributes.onDblClick;

    const auto evaluated = [this](const QString& expression) {
        const auto value = m_bridge.EvalScript(expression);
        if (!value)
            throw base::Failure(kTypeMismatch, "Skin", (texts::kTypeMismatch + expression).toStdString());
        return *value;
    };
    control.setLeft(evaluated(attributes.left));
    control.setTop(evaluated(attributes.top));
    control.setWidth(evaluated(attributes.width));
    control.setHeight(evaluated(attributes.height));
    if (label != nullptr) {
        setUpLabel(*label, attributes);
        if (!attributes.hasHeight) {
            const auto height = static_cast<int>(std::nearbyint(label->FontSize() * 2));
            record.height = Expression(QString::number(height));
            label->setHeight(height);
        }
    }
    // What is only drawn is nothing to be told of.
    if (label != nullptr)
        label->setPart(SkinControl::Part::Text);
    else if (!attributes.onClick.isEmpty())
        picture->setPart(SkinControl::Part::Button);
    else if (attributes.toolTip != kAbsent)
        picture->setPart(SkinControl::Part::Slider);
    control.ZOrder(0);
    if (picture != nullptr && attributes.toolTip != kAbsent)
        picture->setToolTip(m_words.translated(attributes.toolTip));
    if (picture != nullptr) cutToMask(*picture, attributes);
    record.pointer.emplace(ElementPointer::Element{
        record.hasImage(ImageState::Down), record.hasImage(ImageState::Over), !attributes.onClick.isEmpty()});
    connectElement(control);
}

QImage Skin::imageOf(const QString& name) const
{
    auto image = loadImage(m_folder, name, kMaxImagePixels - m_imagePixels);
    if (image) {
        m_imagePixels += qint64{image->width()} * image->height();
        return *std::move(image);
    }
    if (image.error().code != base::ErrorCode::NotFound) // a state may have no image
        m_host.log(core::HtmlEscape(QString::fromStdString(image.error().what)));
    return {};
}

void Skin::loadImages(SkinPicture& picture, Kind kind, const QString& name)
{
    const bool fine = qApp->devicePixelRatio() > 1;
    const QFileInfo file(name);
    const QString fineName = name.chopped(file.suffix().size() + 1) + "@2x." + file.suffix();
    const auto loadFine = [&](ImageState state, const QString& folder) {
        if (!fine) return;
        if (QImage twice = imageOf(folder + fineName); !twice.isNull())
            picture.setFineImage(state, std::move(twice));
    };
    const auto later = [&](ImageState state, const QString& folder) {
        if (findFile(m_folder, folder + name).isEmpty()) return;
        picture.setPendingImage(state, [this, full = folder + name] { return imageOf(full); });
        loadFine(state, folder);
    };
    const QString normal = kind == Kind::Button ? "up/" : "base/";
    picture.setImage(ImageState::Normal, imageOf(normal + name));
    loadFine(ImageState::Normal, normal);
    later(ImageState::Disabled, "disabled/");
    if (kind != Kind::Button) return;
    later(ImageState::Down, "down/");
    later(ImageState::Over, "over/");
}

void Skin::setUpLabel(SkinLabel& label, const ElementAttributes& attributes)
{
    label.setAlignment(toWhole(attributes.alignment));
    label.setAutoSize(toBoolean(attributes.autoSize));
    label.setFontBold(toBoolean(attributes.fontBold));
    label.setFontItalic(toBoolean(attributes.fontItalic));
    bool isNumber = false;
    const double points = QString(attributes.fontSize).replace(',', '.').toDouble(&isNumber);
    if (!isNumber)
        throw base::Failure(kTypeMismatch, "Skin",
                            (texts::kTypeMismatch + attributes.fontSize).toStdString());
    label.setFontSize(points);
    label.setForeColor(static_cast<int>(ParseColor(attributes.foreColor)));
    label.setCaption(m_words.translated(attributes.caption));
}

void Skin::cutToMask(SkinPicture& picture, const ElementAttributes& attributes)
{
    const bool shapesWindow = attributes.windowMask != kAbsent;
    const QString& mask = shapesWindow ? attributes.windowMask : attributes.maskColor;
    if (mask == kAbsent) return;
    const SkinColour key = ParseColor(mask);
    if (qint64{picture.width()} * picture.height() > kMaxMaskPixels)
        throw base::Failure(kNoPicture, "Skin", texts::kMaskTooLarge.toStdString());
    const QImage shown = picture.picture();
    picture.setMasked(key);
    if (shapesWindow) m_masks.push_back({GetHoleRegion(shown, key), &picture});
    setMaskOf(picture, GetSolidRegion(shown, key));
}

} // namespace skin
