#include "settings/OptionsDialog.h"

#include "settings/Texts.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <thread>
#include <vector>

namespace settings
{
namespace
{

constexpr int kMargin = 16;
constexpr int kControlHeight = 28;
constexpr int kBoxHeight = 24;
constexpr int kRowHeight = 24; // of an open list
constexpr int kMinWidth = 328; // of what stands between the margins

/// A list of which an entry is chosen on purpose only: a wheel that scrolls past must not change an option.
class List : public QComboBox
{
public:
    using QComboBox::QComboBox;

protected:
    void wheelEvent(QWheelEvent* event) override { event->ignore(); }
};

void addHeading(QVBoxLayout& column, const char* name, const QString& text)
{
    auto* label = new QLabel(text, column.parentWidget());
    label->setObjectName(name);
    QFont font = label->font();
    font.setBold(true);
    label->setFont(font);
    column.addWidget(label);
}

} // namespace

frmOptions::frmOptions(QWidget* parent, Options& options) : QDialog(parent), m_options(options)
{
    setObjectName("frmOptions");
    setWindowTitle(texts::kCaption);
    setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint |
                   Qt::MSWindowsFixedSizeDialogHint);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    column->setSpacing(4);

    m_startUp = addList(*column, "lblStartUp", texts::kStartUp, "cmbStartUp", texts::kStartUpTip,
                        texts::kStartUpItems, options.startUp);
    column->addSpacing(8);
    m_cache = addList(*column, "lblQuit", texts::kQuit, "cmbCache", texts::kCacheTip, texts::kCacheItems,
                      options.cacheMode);
    column->addSpacing(8);
    std::vector<core::Text> codes;
    int chosenCode = -1;
    for (const texts::Codepage& code : texts::kCodepages) {
        if (options.codepage.compare(code.name, Qt::CaseInsensitive) == 0)
            chosenCode = static_cast<int>(codes.size());
        codes.push_back(code.caption);
    }
    m_codepage = addList(*column, "lblCodepage", texts::kCodepage, "cmbCodepage", texts::kCodepageTip, codes,
                         chosenCode);
    column->addSpacing(8);
    std::vector<core::Text> languages;
    int chosenLanguage = -1;
    for (const texts::InterfaceLanguage& language : texts::kLanguages) {
        if (options.language == language.code) chosenLanguage = static_cast<int>(languages.size());
        languages.emplace_back(language.name);
    }
    m_language = addList(*column, "lblLanguage", texts::kLanguage, "cmbLanguage", texts::kLanguageTip,
                         languages, chosenLanguage);
    column->addSpacing(12);
    addHeading(*column, "lblPerfomance", texts::kPerformance); // spelled so on purpose
    m_animation = addBox(*column, "chkAnimation", texts::kAnimation, texts::kAnimationTip,
                         !toBoolean(options.noAnimation).value_or(false));
    m_specialEffects =
        addBox(*column, "chkSFX", texts::kSpecialEffects, texts::kSpecialEffectsTip, options.sfx);
    m_hqShots = addBox(*column, "chkHQShots", texts::kHqShots, texts::kHqShotsTip, options.hqShots);
    const bool hasSecondCore = std::thread::hardware_concurrency() > 1;
    m_secondThread = addBox(*column, "chkSecondThread", texts::kSecondThread, texts::kSecondThreadTip,
                            options.secondThread && hasSecondCore);
    m_secondThread->setEnabled(hasSecondCore);
    column->addSpacing(12);
    addHeading(*column, "lblAssoc", texts::kAssociation);
    m_associate = addBox(*column, "chkAssoc", texts::kMakeDefault, texts::kAssociationTip, options.associate);

    column->addSpacing(12);
    column->addStretch(1);
    auto* etched = new QVBoxLayout;
    etched->setSpacing(0);
    for (const auto& [name, colour] :
         {std::pair("lnDark", qRgb(0xC3, 0xCC, 0xDA)), std::pair("lnLite", qRgb(0xFF, 0xFF, 0xFF))}) {
        auto* line = new QFrame(this);
        line->setObjectName(name);
        line->setFixedHeight(1);
        line->setAutoFillBackground(true);
        line->setPalette(QColor(colour));
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

QComboBox* frmOptions::addList(QVBoxLayout& column, const char* labelName, core::Text label, const char* name,
                               core::Text tip, std::span<const core::Text> items, int chosen)
{
    auto* text = new QLabel(label, this);
    text->setObjectName(labelName);
    auto* list = new List(this);
    list->setObjectName(name);
    list->setToolTip(tip);
    list->setAccessibleName(label);
    list->setFixedHeight(kControlHeight);
    list->setMinimumWidth(kMinWidth);
    for (const core::Text& item : items) {
        list->addItem(item);
        list->setItemData(list->count() - 1, QSize(0, kRowHeight), Qt::SizeHintRole);
    }
    // A number that no entry stands for shows none, and is kept until one is chosen.
    list->setCurrentIndex(chosen >= 0 && chosen < list->count() ? chosen : -1);
    column.addWidget(text);
    column.addWidget(list);
    return list;
}

QCheckBox* frmOptions::addBox(QVBoxLayout& column, const char* name, core::Text caption, core::Text tip,
                              bool checked)
{
    auto* box = new QCheckBox(caption, this);
    box->setObjectName(name);
    box->setToolTip(tip);
    box->setChecked(checked);
    box->setFixedHeight(kBoxHeight);
    column.addWidget(box);
    return box;
}

void frmOptions::cbOk_Click()
{
    m_options.noAnimation = m_animation->isChecked() ? "False" : "True";
    m_options.sfx = m_specialEffects->isChecked();
    m_options.hqShots = m_hqShots->isChecked();
    m_options.associate = m_associate->isChecked();
    if (m_secondThread->isEnabled()) m_options.secondThread = m_secondThread->isChecked();
    if (m_cache->currentIndex() >= 0) m_options.cacheMode = m_cache->currentIndex();
    if (m_startUp->currentIndex() >= 0) m_options.startUp = m_startUp->currentIndex();
    if (m_codepage->currentIndex() >= 0)
        m_options.codepage = texts::kCodepages[m_codepage->currentIndex()].name;
    if (m_language->currentIndex() >= 0)
        m_options.language = texts::kLanguages[m_language->currentIndex()].code;
    accept();
}

} // namespace settings
