#include "player/MistakesDialog.h"

#include "player/Texts.h"

#include <QClipboard>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDir>
#include <QGuiApplication>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace player
{

void showMistakes(QWidget& window, const QString& folder, const QStringList& mistakes)
{
    constexpr int kMargin = 16;
    constexpr QSize kSize{640, 320};
    constexpr const char* kName = "frmMistakes";
    delete window.findChild<QDialog*>(kName); // of the load before
    auto* dialog = new QDialog(&window);
    dialog->setObjectName(kName);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(texts::kMistakesTitle);
    auto* label = new QLabel(QString(texts::kMistakesIn).arg(QDir::toNativeSeparators(folder)), dialog);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    auto* list = new QPlainTextEdit(mistakes.join('\n'), dialog);
    list->setObjectName("txtMistakes");
    list->setAccessibleName(texts::kMistakesTitle);
    list->setReadOnly(true);
    list->setLineWrapMode(QPlainTextEdit::NoWrap);
    auto* buttons = new QDialogButtonBox(dialog);
    QPushButton* copy = buttons->addButton(texts::kMistakesCopy, QDialogButtonBox::ActionRole);
    copy->setObjectName("cbCopy");
    copy->setAutoDefault(false);
    QPushButton* close = buttons->addButton(texts::kKeysClose, QDialogButtonBox::RejectRole);
    close->setDefault(true);
    QObject::connect(copy, &QPushButton::clicked, dialog,
                     [mistakes] { QGuiApplication::clipboard()->setText(mistakes.join('\n')); });
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    auto* column = new QVBoxLayout(dialog);
    column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    column->setSpacing(kMargin / 2);
    column->addWidget(label);
    column->addWidget(list, 1);
    column->addWidget(buttons);
    dialog->resize(kSize);
    dialog->show();
}

} // namespace player
