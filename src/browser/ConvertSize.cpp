#include "browser/ConvertSize.h"

#include "browser/Texts.h"

#include <QLocale>

#include <cmath>

namespace browser
{

QString roundedText(double number, int decimals)
{
    const double factor = std::pow(10.0, decimals);
    const double rounded = std::nearbyint(number * factor) / factor;
    QLocale locale;
    locale.setNumberOptions(QLocale::OmitGroupSeparator);
    return locale.toString(rounded, 'f', QLocale::FloatingPointShortest);
}

QString ConvertSize(double bytes)
{
    constexpr double kKilobyte = 1024, kMegabyte = kKilobyte * kKilobyte;
    if (bytes <= kKilobyte * 1.5) return roundedText(bytes, 0) + texts::kBytes;
    if (bytes < kMegabyte * 1.5) return roundedText(bytes / kKilobyte, 2) + texts::kKilobytes;
    return roundedText(bytes / kMegabyte, 2) + texts::kMegabytes;
}

} // namespace browser
