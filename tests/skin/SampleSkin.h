#pragma once

#include <QDir>
#include <QFile>
#include <QPainter>

namespace skin
{

/// Writes a skin of a real one's size: a title bar and a control bar of panels, sixteen buttons of four
/// states, five labels, a full-screen view and a script that touches them. For tests and benchmarks that need
/// the weight of one and must not follow every change of a skin that ships.
/// @param folder with its closing separator
inline void writeSampleSkin(const QString& folder, const QColor& colour = QColor(0x22, 0x33, 0x49))
{
    const auto image = [&](const QString& name, QSize size, const QColor& ground) {
        QDir().mkpath(QFileInfo(folder + name).path());
        QImage picture(size, QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setBrush(ground);
        painter.drawRoundedRect(picture.rect(), 6, 6);
        painter.end();
        picture.save(folder + name);
    };
    const auto write = [&](const char* name, const QByteArray& bytes) {
        QDir().mkpath(folder);
        QFile file(folder + name);
        if (file.open(QFile::WriteOnly)) file.write(bytes);
    };
    constexpr int kButtons = 16;
    image("base/title.png", {550, 28}, colour);
    image("base/bar.png", {550, 40}, colour.darker());
    QByteArray buttons;
    for (int i = 0; i < kButtons; ++i) {
        const QByteArray number = QByteArray::number(i);
        int lightness = 90;
        for (const char* state : {"up/", "over/", "down/", "disabled/"})
            image(state + ("b" + number) + ".png", {28, 28}, colour.lighter(lightness += 15));
        buttons += "<BUTTON name='button" + number + "' image='b" + number + ".png' left='8 + 32 * " +
                   number + "' top='(bar.Height - 28) / 2' width='28' height='28' toolTip='Кнопка " + number +
                   "' onClick='PlayPauseMedia'/>";
    }
    write("skin.xml",
          "<?xml version='1.0' encoding='utf-8'?>"
          "<THEME scriptFile='skin.vbs' minWidth='320' minHeight='200'>"
          "<VIEW name='viewNormal' onResize='LayOut' onInfoUpdate='ShowInfo' onMediaChange='ShowInfo'>"
          "<SUBVIEW name='title' image='title.png' width='Player.ScaleWidth' height='28'>"
          "<LABEL name='caption' left='32' top='6' width='title.Width - 100' fontSize='9'/></SUBVIEW>"
          "<SUBVIEW name='bar' image='bar.png' top='Player.ScaleHeight - 40' width='Player.ScaleWidth' "
          "height='40'>" +
              buttons +
              "<LABEL name='time' left='bar.Width - 90' top='12' width='80' alignment='1'/>"
              "<LABEL name='state' left='bar.Width - 200' top='12' width='100'/></SUBVIEW></VIEW>"
              "<VIEW name='viewFullScreen' onResize='Fill'><LABEL name='hint' width='200'/></VIEW></THEME>");
    write("skin.vbs", "Dim shown\r\n"
                      "Sub onLoad\r\n  Set shown = CreateObject(\"Scripting.Dictionary\")\r\n"
                      "  Set shown(\"bar\") = bar : Set shown(\"self\") = shown\r\nEnd Sub\r\n"
                      "Sub LayOut\r\n  SWF.Move 0, 28, ScaleWidth, ScaleHeight - 68\r\nEnd Sub\r\n"
                      "Sub Fill\r\n  SWF.Move 0, 0, ScaleWidth, ScaleHeight\r\nEnd Sub\r\n"
                      "Sub ShowInfo\r\n  caption.Caption = MediaTitle\r\n  time.Caption = InfoText\r\n"
                      "  state.Caption = StatusText\r\nEnd Sub\r\n");
}

} // namespace skin
