#include "core/Look.h"

#include <QApplication>
#include <QFont>
#include <QLibraryInfo>
#include <QLocale>
#include <QPalette>
#include <QStyleFactory>
#include <QTranslator>

namespace core::look
{

namespace
{

constexpr int kTextPoints = 9;

QPalette usualPalette()
{
    QPalette palette;
    palette.setColor(QPalette::Window, kPaper);
    palette.setColor(QPalette::WindowText, kInk);
    palette.setColor(QPalette::Base, Qt::white);
    palette.setColor(QPalette::AlternateBase, kPaper);
    palette.setColor(QPalette::Text, kInk);
    palette.setColor(QPalette::PlaceholderText, QColor(kSteel));
    palette.setColor(QPalette::Button, QColor(0xE4, 0xEA, 0xF4));
    palette.setColor(QPalette::ButtonText, kInk);
    palette.setColor(QPalette::BrightText, kRed);
    palette.setColor(QPalette::Highlight, kBlue);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, kBlue);
    palette.setColor(QPalette::LinkVisited, kSteel);
    palette.setColor(QPalette::ToolTipBase, kPaper);
    palette.setColor(QPalette::ToolTipText, kInk);
    constexpr int kDisabledAlpha = 90; // 35 %
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        QColor faded(kInk);
        faded.setAlpha(kDisabledAlpha);
        palette.setColor(QPalette::Disabled, role, faded);
    }
    return palette;
}

QPalette plainPalette()
{
    QPalette palette = usualPalette();
    for (const auto role : {QPalette::Window, QPalette::Base, QPalette::AlternateBase, QPalette::Button,
                            QPalette::ToolTipBase, QPalette::HighlightedText})
        palette.setColor(role, Qt::white);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText,
                            QPalette::PlaceholderText})
        palette.setColor(role, Qt::black);
    palette.setColor(QPalette::Highlight, Qt::black);
    for (const auto role : {QPalette::Link, QPalette::LinkVisited}) palette.setColor(role, Qt::darkBlue);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(0x59, 0x59, 0x59)); // 7 : 1
    return palette;
}

void setTextPoints(double points)
{
    QFont font = QApplication::font();
    font.setFamilies({"Tahoma", "Verdana", "DejaVu Sans"});
    font.setPointSizeF(points);
    QApplication::setFont(font);
}

} // namespace

void adapt(bool highContrast, double textScale)
{
    QApplication::setPalette(highContrast ? plainPalette() : usualPalette());
    setTextPoints(kTextPoints * textScale);
}

void initialiseVisualStyle()
{
    QApplication::setStyle(QStyleFactory::create("Fusion"));
    QApplication::setPalette(usualPalette());
    setTextPoints(kTextPoints);

    // The program speaks Russian whatever the system does; dates and the toolkit's buttons must not differ.
    QLocale::setDefault(QLocale(QLocale::Russian));
    translateToolkit("ru");
}

void translateToolkit(const QString& code)
{
    constexpr const char* kName = "toolkit's translator";
    QObject* const owner = QCoreApplication::instance();
    delete owner->findChild<QTranslator*>(kName, Qt::FindDirectChildrenOnly);
    auto* translator = new QTranslator(owner);
    translator->setObjectName(kName);
    // In the toolkit's own language there is nothing to load.
    if (translator->load("qtbase_" + code, QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(translator);
}

} // namespace core::look
