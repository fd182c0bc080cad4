#include "core/Files.h"
#include "core/RunTimeErrors.h"
#include "core/Version.h"
#include "media/Compress.h"
#include "media/FileStart.h"
#include "media/MediaFiles.h"
#include "media/Projector.h"
#include "media/Texts.h"

namespace media
{
namespace
{

/// Each projector in a projector takes a turn of the identification loop; nobody nests them deeper than this.
constexpr int kMaxLayers = 16;
constexpr int kFirstCompressedVersion = 6;

struct SplitPath {
    QString file;
    QString query; ///< with its "?"
};

/// A page's parameters stand behind the last "?". A file whose own name holds one is a file first.
SplitPath splitQuery(const QString& path)
{
    const qsizetype mark = path.lastIndexOf('?');
    if (mark < 0 || core::fileExists(path)) return {path, {}};
    return {path.left(mark), path.mid(mark)};
}

base::Result<FrameHeader> readFrameHeaderOf(const QString& path)
{
    FileStart file = TRY_RESULT(FileStart::open(core::filePath(path)));
    CHECK_RESULT(file.skip(kFileHeaderBytes));
    return readFrameHeader(TRY_RESULT(file.bytes(kLongestHeaderBodyBytes)));
}

base::Result<FrameHeader> readCompressedFrameHeaderOf(const QString& path)
{
    return readFrameHeader(TRY_RESULT(decompressStart(core::filePath(path), kLongestHeaderBodyBytes)));
}

/// Whether a header copy leaves out something of what stands in the movie.
bool isHeaderCopyTooShort(const QString& path)
{
    auto file = FileStart::open(core::filePath(path));
    if (!file || !file->skip(kFileHeaderBytes)) return false;
    const auto body = file->bytes(1);
    return body && needsLongHeader(*body);
}

base::Result<FileHeader> readFileHeaderOf(const QString& path)
{
    FileStart file = TRY_RESULT(FileStart::open(core::filePath(path)));
    return readFileHeader(TRY_RESULT(file.bytes(kFileHeaderBytes)));
}

} // namespace

MediaFiles::MediaFiles(core::Application& application, MediaHost& host)
    : m_application(application), m_host(host)
{
}

void MediaFiles::note(const base::Error& error)
{
    m_application.LogEvent(QString::fromStdString(error.what));
    m_errorDescription = core::describe(error);
}

void MediaFiles::LoadFlash(const QString& path, const QString& caption)
{
    try {
        tryLoad(path, caption);
    } catch (const base::Failure& failure) {
        if (!m_application.RunningCompiled) throw;
        if (failure.number() == core::kFlashNotCreated) {
            m_host.ReportError(failure, texts::kPlaceCreateFlash, {});
            return;
        }
        m_errorDescription = QString::fromStdString(failure.description());
        failLoad(splitQuery(path).file);
    }
}

void MediaFiles::tryLoad(const QString& path, QString caption)
{
    m_application.LogEvent({});
    // No line break: the next entry goes on in the same line of the page.
    m_application.LogEvent(" :: LoadFlash (", core::LineBreak::None);
    if (path.isEmpty()) {
        m_host.CloseMedia({});
        return;
    }
    SplitPath split = splitQuery(path);
    if (caption.isEmpty()) caption = split.file;
    m_application.LogEvent((m_application.RunningCompiled ? split.file : path) + ")... ");
    m_host.setUpdateTimerEnabled(false);
    m_errorDescription.clear();

    if (const auto why = core::whyNoFile(split.file)) {
        m_errorDescription = QString::fromStdString(core::runTimeError(*why, "").description());
        m_host.SetStatus(m_errorDescription);
        m_application.LogEvent("Not found");
        return failLoad(split.file);
    }
    if (core::fileSize(split.file) < static_cast<qint64>(kFileHeaderBytes)) {
        m_application.LogEvent("File is too short!");
        m_errorDescription = texts::kFileTooShort;
        return failLoad(split.file);
    }
    m_host.SetStatus(texts::kOpening);
    QString movie = split.file;
    const QString refusal = GetFlashInfo(movie);
    if (!refusal.isEmpty()) {
        m_host.SetStatus(refusal);
        m_errorDescription = refusal;
        return failLoad(split.file);
    }

    m_host.SetStatus(texts::kLoading);
    if (!m_host.isFullScreen()) m_host.ZoomFlash(100, 2);
    m_host.LoadMovie(0, m_info.MoviePath + split.query);
    m_host.setBackground(m_info.ground());

    m_host.setMediaInfoEnabled(true);
    m_host.reapplySound();
    m_host.SetCaption(QString(core::kProductName) + " - " + caption);
    m_host.SetStatus(texts::kReady);
    m_host.setUpdateTimerEnabled(true);

    m_host.setCompressCaption(m_info.Compressed ? texts::kMenuDecompress : texts::kMenuCompress);
    m_host.setMediaTitle(caption);
    m_host.AddRecent(m_info.OriginalPath);
    m_host.onMediaChange();
}

void MediaFiles::failLoad(const QString& file)
{
    m_application.LogEvent("Failed to load, since " + m_errorDescription);
    const bool isPage =
        !m_application.GadgetsPath.isEmpty() && file.contains(m_application.GadgetsPath, Qt::CaseInsensitive);
    if (isPage) return;
    m_host.setFailedFile(file);
    m_host.CloseMedia(m_errorDescription);
}

QString MediaFiles::GetFlashInfo(QString& path)
{
    MediaInfo info;
    info.OriginalPath = path;
    info.FileSize = core::fileSize(path);

    FileHeader header;
    for (int layer = 0;; ++layer) {
        const auto read = readFileHeaderOf(path);
        if (!read) {
            note(read.error());
            return m_errorDescription;
        }
        header = *read;
        if (header.is("FWS")) {
            m_application.LogEvent("Ordinary File");
            info.Compressed = false;
            break;
        }
        if (header.is("CWS") || header.is("ZWS")) {
            m_application.LogEvent("Compressed File");
            info.Compressed = true;
            break;
        }
        if (!isExecutable(header) || layer == kMaxLayers) {
            m_application.LogEvent("Unknown signature (" +
                                   QString::fromLatin1(header.signature.data(), header.signature.size()) +
                                   ")");
            return texts::kUnknownFormat;
        }
        m_application.LogEvent("Executable");
        m_errorDescription.clear();
        const QString extracted = ExtractEXE(path, ExtractTo::Cache);
        // A failure must not pass for success because nobody gave it a text.
        if (extracted.isEmpty()) return m_errorDescription.isEmpty() ? texts::kNoMedia : m_errorDescription;
        path = extracted;
        m_application.LogEvent("File path changed to: " + path);
        info.Converted = true;
    }

    info.Signature = QString::fromLatin1(header.signature.data(), header.signature.size());
    info.Version = header.version;
    // A "CWS" file of an older version goes to the control as it is.
    if (header.version < kFirstCompressedVersion) info.Compressed = false;
    info.FileLength = header.fileLength;
    info.MoviePath = path;
    info.HeaderPath = info.Compressed ? DecompressFlash(info, Extent::HeaderOnly) : path;
    // A cache that takes no copy of the header keeps no movie from playing.
    const bool hasCopy = !info.HeaderPath.isEmpty();
    const bool isLong = info.Compressed && hasCopy && isHeaderCopyTooShort(info.HeaderPath);
    const auto frame =
        hasCopy && !isLong ? readFrameHeaderOf(info.HeaderPath) : readCompressedFrameHeaderOf(path);
    if (!hasCopy && !frame) return texts::kDecompressFailed;
    if (!hasCopy) m_errorDescription.clear();

    m_application.LogEvent(" ... ");
    if (!frame) {
        note(frame.error());
        return frame.error().code == base::ErrorCode::Truncated ? texts::kHeaderDamaged : m_errorDescription;
    }
    info.Width = frame->width;
    info.Height = frame->height;
    info.FrameRate = static_cast<float>(frame->frameRate);
    info.FrameCount = frame->frameCount;
    info.BgColor = QString::fromStdString(frame->background);
    info.HasBgColor = frame->hasBackground;

    m_info = info;
    m_application.LogEvent("Ok");
    return {};
}

} // namespace media
