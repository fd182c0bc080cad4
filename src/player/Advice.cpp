#include "player/Advice.h"

#include "core/Texts.h"
#include "media/Texts.h"
#include "player/Texts.h"

#include <QDir>

namespace player
{
namespace
{

struct AdviceInfo {
    core::Text reason, advice;
};
// clang-format off
constexpr AdviceInfo kAdvice[] = {
    {core::texts::kFileNotFound,      texts::kAdviceLookFor},
    {core::texts::kPathNotFound,      texts::kAdviceLookFor},
    {core::texts::kPermissionDenied,  texts::kAdviceRights},
    {core::texts::kReadOnly,          texts::kAdviceReadOnly},
    {core::texts::kDiskFull,          texts::kAdviceRoom},
    {core::texts::kNameTooLong,       texts::kAdviceShorten},
    {core::texts::kDeviceError,       texts::kAdviceDevice},
    {core::texts::kDamaged,           texts::kAdviceOtherCopy},
    {media::texts::kHeaderDamaged,    texts::kAdviceOtherCopy},
    {media::texts::kDecompressFailed, texts::kAdviceOtherCopy},
    {media::texts::kFileTooShort,     texts::kAdviceOtherCopy},
    {texts::kMovieDamaged,            texts::kAdviceOtherCopy},
    {media::texts::kUnknownFormat,    texts::kAdviceFormats},
    {media::texts::kNoMedia,          texts::kAdviceNoMedia},
    {texts::kNoMemory,                texts::kAdviceMemory},
};
// clang-format on

} // namespace

QString adviceOn(const QString& reason)
{
    for (const AdviceInfo& known : kAdvice)
        if (reason == QString(known.reason)) return known.advice;
    return {};
}

QString failureText(const QString& path, const QString& reason)
{
    QStringList lines{QDir::toNativeSeparators(path), reason, adviceOn(reason)};
    lines.removeAll(QString());
    return lines.join('\n');
}

} // namespace player
