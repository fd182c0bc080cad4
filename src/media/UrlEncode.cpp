#include "media/UrlEncode.h"

#include "base/TextCodes.h"

namespace media
{

QString URLEncode(const QString& text)
{
    const auto escape = [](int code) { return "%" + QString::number(code, 16).toUpper(); };
    QString encoded;
    for (const char letter : base::ansiFromUtf8(text.toStdString(), '\0')) {
        const int code = static_cast<unsigned char>(letter);
        if (code <= 64) {
            encoded += escape(code);
        } else if (code <= 127) {
            encoded += QLatin1Char(letter);
        } else if (code <= 239) {
            encoded += "%D0" + escape(code - 48);
        } else {
            encoded += "%D1" + escape(code - 112);
        }
    }
    return encoded;
}

} // namespace media
