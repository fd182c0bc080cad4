#include "player/OutsideDialog.h"

#include "core/Application.h"
#include "platform/Shell.h"
#include "player/PlayerHost.h"
#include "player/SettlingBox.h"
#include "player/Texts.h"

#include <QCheckBox>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>

namespace player
{
namespace
{

/// Mark-up of its own, so that a movie's text is never taken for any; long names may break behind their
/// separators.
QString paragraph(const QString& text)
{
    constexpr qsizetype kMax = 600;
    QString shown = text.size() > kMax ? text.left(kMax / 2) + "..." + text.right(kMax / 2) : text;
    shown = shown.toHtmlEscaped();
    for (const char* separator : {"/", "?", "="}) shown.replace(separator, QString(separator) + "&#8203;");
    return "<p>" + shown + "</p>";
}

QString nameOf(const Outside::Question& question) { return QFileInfo(question.movie).fileName(); }

Outside::Answer ask(PlayerHost& host, QWidget& window, const Outside::Question& question)
{
    SettlingBox box(QMessageBox::Question, texts::kOutsideTitle,
                    paragraph(QString(texts::kOutsideAsks).arg(nameOf(question))), QMessageBox::NoButton,
                    &window);
    box.setObjectName("frmOutside");
    box.setTextFormat(Qt::RichText);
    box.setInformativeText(paragraph(question.target) +
                           (question.hasRead ? paragraph(texts::kOutsideHasRead) : QString()) +
                           paragraph(texts::kOutsideAdvice));
    const QPushButton* open = box.addButton(texts::kOutsideOpen, QMessageBox::AcceptRole);
    QPushButton* refuse = box.addButton(texts::kOutsideRefuse, QMessageBox::RejectRole);
    box.setDefaultButton(refuse);
    box.setEscapeButton(refuse);
    auto* always = new QCheckBox(texts::kOutsideAlways, &box);
    box.setCheckBox(always);
    host.ShowDialog(box);
    const bool allowed = box.clickedButton() == open && !host.hasEnded();
    if (always->isChecked()) return allowed ? Outside::Answer::AlwaysOpen : Outside::Answer::AlwaysRefuse;
    return allowed ? Outside::Answer::Open : Outside::Answer::Refuse;
}

core::Text textOf(OutsideTarget::Refusal refusal)
{
    switch (refusal) {
    case OutsideTarget::Refusal::None:
    case OutsideTarget::Refusal::Invalid: return texts::kRefusedAddress;
    case OutsideTarget::Refusal::Missing: return texts::kRefusedMissing;
    case OutsideTarget::Refusal::Program: return texts::kRefusedProgram;
    case OutsideTarget::Refusal::OtherMachine: return texts::kRefusedMachine;
    case OutsideTarget::Refusal::Misleading: return texts::kRefusedMisleading;
    }
    return "";
}

void tellRefused(PlayerHost& host, QWidget& window, const Outside::Question& question,
                 OutsideTarget::Refusal refusal)
{
    SettlingBox box(QMessageBox::Warning, texts::kOutsideTitle,
                    paragraph(QString(textOf(refusal)).arg(nameOf(question))), QMessageBox::Ok, &window);
    box.setObjectName("frmOutsideRefused");
    box.setTextFormat(Qt::RichText);
    box.setInformativeText(paragraph(question.target));
    host.ShowDialog(box);
}

} // namespace

Outside::Callbacks outsideCallbacks(PlayerHost& host, QWidget& window)
{
    return {[&host, &window](const Outside::Question& question) { return ask(host, window, question); },
            [](const QUrl& url) { return platform::openWithSystem(url); },
            [&host, &window](const Outside::Question& question, OutsideTarget::Refusal refusal) {
                tellRefused(host, window, question, refusal);
            },
            [&host](const QString& line) { host.logQuietly(core::HtmlEscape(line)); }};
}

} // namespace player
