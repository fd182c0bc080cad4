#include "ui/AboutScreen.h"

#include "core/Application.h"
#include "core/Look.h"
#include "core/Version.h"
#include "flash/FlashControl.h"
#include "ui/Texts.h"

#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QTextDocumentFragment>
#include <QVBoxLayout>

namespace ui
{
namespace
{

constexpr QSize kWindow{440, 330};
constexpr const char* kBreak = "<BR><BR>";

QString paragraphs()
{
    return QStringList{core::kLegalCopyright, texts::kGreetings, texts::kThanks, core::kLegalTrademarks}.join(
        kBreak);
}

} // namespace

frmAbout::frmAbout(QWidget* parent, const QString& address, int quality)
    : QDialog(parent), m_SWF(new flash::FlashControl(this))
{
    setObjectName("frmAbout");
    setWindowTitle(texts::kAboutWindow);
    m_SWF->setObjectName("SWF");
    m_SWF->setQuality(quality);
    m_SWF->setAccessibleName(core::GetAppVersion());
    m_SWF->setAccessibleDescription(QTextDocumentFragment::fromHtml(paragraphs()).toPlainText());
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(m_SWF);
    if (m_SWF->LoadMovie(0, address)) {
        setFixedSize(m_SWF->movieSize().expandedTo({1, 1}).boundedTo({800, 600}));
        m_SWF->setFocus();
        // The page has the keyboard; the key that closes windows closes this one as well.
        m_SWF->installEventFilter(this);
    } else {
        showText();
    }
}

bool frmAbout::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        reject();
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

void frmAbout::showText()
{
    m_SWF->hide();
    setMinimumSize(kWindow);
    auto* column = static_cast<QVBoxLayout*>(layout());
    column->setContentsMargins(24, 20, 24, 16);
    column->setSpacing(12);
    auto* title = new QLabel(core::GetAppVersion(), this);
    QFont large = title->font();
    large.setPixelSize(22);
    title->setFont(large);
    auto* text = new QLabel(paragraphs(), this);
    text->setTextFormat(Qt::RichText);
    text->setWordWrap(true);
    text->setAlignment(Qt::AlignTop);
    auto* close = new QPushButton(texts::kClose, this);
    close->setDefault(true);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    column->addWidget(title);
    column->addWidget(text, 1);
    column->addWidget(close, 0, Qt::AlignRight);
}

} // namespace ui
