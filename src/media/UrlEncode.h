#pragma once

#include <QString>

namespace media
{

/// Encodes a text for the query of one of the program's own pages, by its windows-1251 codes: 0 to 64 become
/// an escape without leading zeros, 65 to 127 stay, Cyrillic letters become their UTF-8 escapes. The upper
/// half's punctuation (and Ё) goes through the letters' formula and does not give valid UTF-8; this is kept
/// on purpose, because the pages know it so. Characters that windows-1251 lacks are dropped.
QString URLEncode(const QString& text);

} // namespace media
