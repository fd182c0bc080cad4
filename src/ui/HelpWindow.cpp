#include "ui/HelpWindow.h"

#include "base/Files.h"
#include "core/Application.h"
#include "core/Look.h"
#include "ui/Texts.h"

#include <QDialogButtonBox>
#include <QFileInfo>
#include <QPushButton>
#include <QTextBrowser>
#include <QVBoxLayout>

namespace ui
{
namespace
{

constexpr int kMargin = 16;
constexpr QSize kSize{760, 640};
constexpr std::uint64_t kMaxPageBytes = 1U << 20U;

} // namespace

HelpWindow::HelpWindow(QWidget* parent, const QString& folder)
    : QDialog(parent), m_folder(folder), m_text(new QTextBrowser(this))
{
    setObjectName("frmHelp");
    setWindowTitle(texts::kHelp);
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    m_text->setObjectName("txtHelp");
    m_text->setAccessibleName(texts::kHelp);
    m_text->setOpenLinks(false);
    m_text->document()->setDocumentMargin(kMargin);
    m_text->document()->setDefaultStyleSheet("td, th { padding: 3px 12px 3px 0; }");
    connect(m_text, &QTextBrowser::anchorClicked, this,
            [this](const QUrl& url) { load(QFileInfo(url.path()).fileName()); });
    auto* buttons = new QDialogButtonBox(this);
    QPushButton* back = buttons->addButton(texts::kHelpContents, QDialogButtonBox::ActionRole);
    back->setObjectName("cbContents");
    back->setAutoDefault(false);
    QPushButton* close = buttons->addButton(texts::kClose, QDialogButtonBox::RejectRole);
    close->setObjectName("cbClose");
    close->setDefault(true);
    connect(back, &QPushButton::clicked, this, [this] { showPage("help"); });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    column->setSpacing(kMargin / 2);
    column->addWidget(m_text, 1);
    column->addWidget(buttons);
    resize(kSize);
    m_text->setFocus();
}

bool HelpWindow::showPage(const QString& name)
{
    return load(name + '.' + core::languageCode() + ".md") || load(name + ".ru.md");
}

bool HelpWindow::load(const QString& file)
{
    const auto bytes = base::readFile(core::filePath(m_folder + file), kMaxPageBytes);
    if (!bytes) return false;
    m_text->setMarkdown(QString::fromUtf8(reinterpret_cast<const char*>(bytes->data()),
                                          static_cast<qsizetype>(bytes->size())));
    m_text->moveCursor(QTextCursor::Start);
    return true;
}

} // namespace ui
