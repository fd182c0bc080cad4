#include "settings/OptionsDialog.h"

#include "core/Look.h"
#include "settings/Texts.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFrame>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>
#include <QWheelEvent>

namespace settings
{
namespace
{

constexpr int kMargin = 16;
constexpr int kControlHeight = 28;
constexpr int kLeastWidth = 360;

QString dialogStyle()
{
    using namespace core::look;
    const auto name = [](QRgb colour) { return QColor(colour).name(); };
    return QString("QDialog { background: %1; } QLabel { color: %2; }"
                   "#lblPerfomance, #lblAssoc { font-weight: bold; }"
                   "QComboBox { background: white; color: %2; border: 1px solid %3; border-radius: 3px;"
                   " padding: 0 8px; }"
                   "QComboBox:hover { border-color: %4; } QComboBox:focus { border: 2px solid %5; padding: 0 "
                   "7px; }"
                   "QComboBox::drop-down { border: none; width: 24px; }"
                   "QComboBox QAbstractItemView { background: white; color: %2; border: 1px solid %3;"
                   " selection-background-color: %4; selection-color: white; outline: none; }"
                   "#cbOk { background: %4; color: white; border: 1px solid %4; border-radius: 6px;"
                   " padding: 0 16px; }"
                   "#cbCancel { background: transparent; color: %2; border: 1px solid %3; border-radius: 6px;"
                   " padding: 0 16px; }"
                   "#cbOk:hover { background: #3F67A8; } #cbCancel:hover { background: #DFE8F5; }"
                   "#cbOk:pressed { background: %3; } #cbCancel:pressed { background: #C9D8EE; }"
                   "#cbOk:focus, #cbCancel:focus { border: 2px solid %5; }"
                   "#lnDark { background: #C3CCDA; } #lnLite { background: white; }")
        .arg(name(kPaper), name(kInk), name(kSteel), name(kBlue), name(kSky));
}

/// A list whose arrow is drawn by itself: the style sheet takes the system's away.
class List : public QComboBox
{
public:
    using QComboBox::QComboBox;

protected:
    void paintEvent(QPaintEvent* event) override
    {
        QComboBox::paintEvent(event);
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(QColor(core::look::kSteel), 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        const QPointF tip(width() - 14, height() / 2.0 + 2);
        painter.drawPolyline(QPolygonF{tip - QPointF(4, 4), tip, tip + QPointF(4, -4)});
    }
    // A wheel that scrolls past must not change an option.
    void wheelEvent(QWheelEvent* event) override { event->ignore(); }
};

/// A box in the program's own colours, sharp at any scale; a style sheet could only show a picture.
class Box : public QCheckBox
{
public:
    explicit Box(const QString& caption, QWidget* parent) : QCheckBox(caption, parent)
    {
        setFixedHeight(kControlHeight - 2);
    }
    [[nodiscard]] QSize sizeHint() const override
    {
        return {kBox + kGap + fontMetrics().horizontalAdvance(text()) + 4, kControlHeight - 2};
    }

protected:
    bool hitButton(const QPoint& position) const override { return rect().contains(position); }
    void paintEvent(QPaintEvent*) override
    {
        using namespace core::look;
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QRectF box(1.5, (height() - kBox) / 2 + 0.5, kBox - 1, kBox - 1);
        if (hasFocus()) {
            painter.setPen(QPen(QColor(kSky), 2));
            painter.drawRoundedRect(box.adjusted(-1, -1, 1, 1), 4, 4);
        }
        const QColor ground = isChecked() ? QColor(kBlue) : QColor(Qt::white);
        painter.setPen(QPen(isChecked() || underMouse() ? QColor(kBlue) : QColor(kSteel), 1));
        painter.setBrush(isDown() ? QColor(kSky) : ground);
        painter.drawRoundedRect(box, 3, 3);
        if (isChecked()) {
            painter.setPen(QPen(Qt::white, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
            const QPointF at = box.topLeft();
            painter.drawPolyline(
                QPolygonF{at + QPointF(3.5, 8), at + QPointF(6.5, 11), at + QPointF(11.5, 4.5)});
        }
        painter.setPen(palette().color(QPalette::WindowText));
        painter.drawText(rect().adjusted(kBox + kGap, 0, 0, 0), Qt::AlignVCenter | Qt::AlignLeft, text());
    }

private:
    static constexpr int kBox = 16;
    static constexpr int kGap = 10;
};

void addHeading(QVBoxLayout& column, const char* name, const char* text)
{
    auto* label = new QLabel(text, column.parentWidget());
    label->setObjectName(name);
    column.addWidget(label);
}

} // namespace

frmOptions::frmOptions(QWidget* parent, Options& options) : QDialog(parent), m_options(options)
{
    setObjectName("frmOptions");
    setWindowTitle(texts::kCaption);
    setStyleSheet(dialogStyle());
    setMinimumWidth(kLeastWidth);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    column->setSpacing(4);

    m_startUp = addList(*column, "lblStartUp", texts::kStartUp, "cmbStartUp", texts::kStartUpTip,
                        texts::kStartUpItems, options.startUp);
    column->addSpacing(8);
    m_cache = addList(*column, "lblQuit", texts::kQuit, "cmbCache", texts::kCacheTip, texts::kCacheItems,
                      options.cacheMode);
    column->addSpacing(12);
    addHeading(*column, "lblPerfomance", texts::kPerformance); // spelled so on purpose
    m_animation = addBox(*column, "chkAnimation", texts::kAnimation, texts::kAnimationTip,
                         !toBoolean(options.noAnimation).value_or(false));
    m_specialEffects =
        addBox(*column, "chkSFX", texts::kSpecialEffects, texts::kSpecialEffectsTip, options.sfx);
    m_hqShots = addBox(*column, "chkHQShots", texts::kHqShots, texts::kHqShotsTip, options.hqShots);
    column->addSpacing(12);
    addHeading(*column, "lblAssoc", texts::kAssociation);
    m_associate = addBox(*column, "chkAssoc", texts::kMakeDefault, texts::kAssociationTip, options.associate);

    column->addSpacing(12);
    column->addStretch(1);
    auto* etched = new QVBoxLayout;
    etched->setSpacing(0);
    for (const char* name : {"lnDark", "lnLite"}) {
        auto* line = new QFrame(this);
        line->setObjectName(name);
        line->setFixedHeight(1);
        etched->addWidget(line);
    }
    column->addLayout(etched);
    column->addSpacing(12);

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    buttons->addStretch(1);
    auto* ok = new QPushButton(texts::kSave, this);
    ok->setObjectName("cbOk");
    ok->setDefault(true);
    auto* cancel = new QPushButton(texts::kCancel, this);
    cancel->setObjectName("cbCancel");
    cancel->setAutoDefault(false);
    for (QPushButton* button : {ok, cancel}) {
        button->setFixedHeight(kControlHeight);
        buttons->addWidget(button);
    }
    column->addLayout(buttons);
    column->setSizeConstraint(QLayout::SetFixedSize);
    connect(ok, &QPushButton::clicked, this, [this] { cbOk_Click(); });
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    m_startUp->setFocus();
}

QComboBox* frmOptions::addList(QVBoxLayout& column, const char* labelName, const char* label,
                               const char* name, const char* tip, std::span<const char* const> items,
                               int chosen)
{
    auto* text = new QLabel(label, this);
    text->setObjectName(labelName);
    auto* list = new List(this);
    list->setObjectName(name);
    list->setToolTip(tip);
    list->setAccessibleName(label);
    list->setFixedHeight(kControlHeight);
    for (const char* item : items) list->addItem(item);
    // A number that no entry stands for shows none, and is kept until one is chosen.
    list->setCurrentIndex(chosen >= 0 && chosen < list->count() ? chosen : -1);
    column.addWidget(text);
    column.addWidget(list);
    return list;
}

QCheckBox* frmOptions::addBox(QVBoxLayout& column, const char* name, const char* caption, const char* tip,
                              bool checked)
{
    auto* box = new Box(caption, this);
    box->setObjectName(name);
    box->setToolTip(tip);
    box->setChecked(checked);
    column.addWidget(box);
    return box;
}

void frmOptions::cbOk_Click()
{
    m_options.noAnimation = m_animation->isChecked() ? "False" : "True";
    m_options.sfx = m_specialEffects->isChecked();
    m_options.hqShots = m_hqShots->isChecked();
    m_options.associate = m_associate->isChecked();
    if (m_cache->currentIndex() >= 0) m_options.cacheMode = m_cache->currentIndex();
    if (m_startUp->currentIndex() >= 0) m_options.startUp = m_startUp->currentIndex();
    accept();
}

} // namespace settings
