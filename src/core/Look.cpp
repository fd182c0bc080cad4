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

void initialiseVisualStyle()
{
    QApplication::setStyle(QStyleFactory::create("Fusion"));

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
    QApplication::setPalette(palette);

    QFont font = QApplication::font();
    font.setFamilies({"Tahoma", "Verdana", "DejaVu Sans"});
    font.setPointSize(9);
    QApplication::setFont(font);

    // The program speaks Russian whatever the system does; dates and the toolkit's buttons must not differ.
    QLocale::setDefault(QLocale(QLocale::Russian));
    auto* translator = new QTranslator(qApp);
    if (translator->load("qtbase_ru", QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QApplication::installTranslator(translator);
}

} // namespace core::look
