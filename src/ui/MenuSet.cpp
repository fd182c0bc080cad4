#include "ui/MenuSet.h"

#include "core/Look.h"

#include <QFileInfo>
#include <QImage>

namespace ui
{
namespace
{

/// A picture larger than this is a mistake, and would be laid out for every menu that opens.
constexpr int kMaxGround = 2048;

QIcon iconOf(const QString& file) { return QFileInfo::exists(file) ? QIcon(file) : QIcon(); }

QColor readableOn(const QImage& ground)
{
    const QColor mean = ground.scaled(1, 1, Qt::IgnoreAspectRatio, Qt::SmoothTransformation).pixelColor(0, 0);
    constexpr int kMiddle = 140; // where dark and light text are equally far from the ground
    return qGray(mean.rgb()) < kMiddle ? QColor(core::look::kIce) : QColor(core::look::kInk);
}

} // namespace

QColor MenuSet::defaultTextColour() { return core::look::kIce; }

void MenuSet::load(const QString& folder)
{
    *this = {};
    m_folder = folder;
    m_checkMark = iconOf(folder + "checkmark.png");
    const QImage ground(folder + "bg.bmp");
    if (ground.isNull() || ground.width() > kMaxGround || ground.height() > kMaxGround) return;
    m_ground = QPixmap::fromImage(ground);
    m_textColour = readableOn(ground);
}

void MenuSet::addIcon(const QString& caption, const QString& fileName)
{
    const QString key = caption.toLower();
    if (!m_iconFiles.contains(key)) m_iconFiles.insert(key, m_folder + fileName);
}

QIcon MenuSet::icon(const QString& caption) const
{
    const QString key = caption.toLower();
    const auto file = m_iconFiles.constFind(key);
    if (file == m_iconFiles.cend()) return {};
    // Read when a menu first shows them: a start that opens no menu does without.
    const auto known = m_icons.constFind(key);
    return known != m_icons.cend() ? *known : *m_icons.insert(key, iconOf(*file));
}

} // namespace ui
