#include "player/SaveAs.h"

#include "PlayerWindow.h"

#include <QFileDialog>
#include <QMessageBox>

namespace player
{
namespace
{

class SaveAs : public PlayerWindow
{
protected:
    /// Loads a file and saves it through the dialog. @returns the title and text of the message shown, if any
    QStringList save(const QString& file, const QString& target, const QString& filter)
    {
        player.LoadFlash(file, {});
        return saveLoaded(target, filter);
    }
    QStringList saveLoaded(const QString& target, const QString& filter)
    {
        QStringList said;
        QTimer::singleShot(0, &player, [&] {
            auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            EXPECT_EQ(dialog->windowTitle(), "Сохранить как...");
            EXPECT_EQ(dialog->nameFilters(), QStringList{filter});
            EXPECT_FALSE(player.updateTimerEnabled());
            EXPECT_EQ(player.StatusText(), "Сохранение файла...");
            dialog->setOption(QFileDialog::DontConfirmOverwrite);
            dialog->selectFile(target);
            QTimer::singleShot(0, &player, [&said] {
                if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
                    said = {box->windowTitle(), box->text(), box->informativeText()};
                    box->accept();
                }
            });
            static_cast<QDialog*>(dialog)->accept();
        });
        player.SaveMediaAs();
        EXPECT_TRUE(player.updateTimerEnabled());
        EXPECT_TRUE(log().contains(" :: Open Save As Dialog"));
        return said;
    }
    [[nodiscard]] media::ByteVector read(const QString& file) const
    {
        return base::readFile(core::filePath(file), 1 << 20).value_or(media::ByteVector{});
    }
    Player player{application, {}};
};

constexpr const char* kPlain = "Сохранение без изменений (*.swf)";
constexpr const char* kCompressed = "Сохранение со снятием сжатия (*.swf)";
constexpr const char* kProjector = "Сохранение медиа из проектора (*.swf)";

TEST_F(SaveAs, SavesEveryKindOfMovieAsAPlainOne)
{
    player.Form_Load();
    struct Case {
        const char* name;
        media::ByteVector bytes;
        const char* filter;
    };
    const Case kCases[] = {{"plain.swf", media::plainMovie(), kPlain},
                           {"compressed.swf", media::compressedMovie(), kCompressed},
                           {"projector.exe", media::projector(media::plainMovie()), kProjector}};
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        const QString source = put(c.name, c.bytes);
        const QString target = path("saved.swf");
        QFile::remove(target);
        EXPECT_EQ(save(source, target, c.filter), QStringList());
        media::ByteVector expected = media::plainMovie();
        expected[3] = read(target).at(3); // the version stays the movie's
        EXPECT_EQ(read(target), expected);
        EXPECT_EQ(read(source), c.bytes) << "what was loaded is not touched";
        EXPECT_EQ(player.mediaInfo().OriginalPath, source);
    }
}

TEST_F(SaveAs, ReplacesItselfAndWhatALinkLeadsTo)
{
    player.Form_Load();
    const QString plain = put("plain.swf", media::plainMovie());
    EXPECT_EQ(save(plain, plain, kPlain), QStringList());
    EXPECT_EQ(read(plain), media::plainMovie());
    const QString packed = put("packed.swf", media::compressedMovie());
    EXPECT_EQ(save(packed, packed, kCompressed), QStringList());
    EXPECT_EQ(read(packed)[0], 'F');

    const QString other = put("other.swf", {1, 2, 3});
    ASSERT_TRUE(QFile::link(other, path("link.swf")));
    EXPECT_EQ(save(plain, path("link.swf"), kPlain), QStringList());
    EXPECT_EQ(read(other), media::plainMovie());
    EXPECT_TRUE(QFileInfo(path("link.swf")).isSymLink());
}

TEST_F(SaveAs, SaysWhatCannotBeDoneAndLeavesTheTarget)
{
    player.Form_Load();
    const QString source = put("movie.swf", media::compressedMovie());
    const QString target = put("target.swf", {1, 2, 3});
    player.LoadFlash(source, {});
    put("movie.swf", media::withHeader("CWS", 6, 1000, media::movieBody())); // damaged meanwhile
    EXPECT_EQ(saveLoaded(target, kCompressed),
              (QStringList{"Сохранение медиа", "Сохранение с заданными условиями не поддерживается",
                           "Фильтр: " + QString(kCompressed) + "\r\nФайл: " + source +
                               "\r\nСжатие: True\r\nПроектор: False"}));
    EXPECT_EQ(read(target), (media::ByteVector{1, 2, 3}));

    put("movie.swf", media::compressedMovie());
    const QString nowhere = path("absent folder/saved.swf");
    const SaveResult result = saveMovie(player.mediaInfo(), nowhere);
    EXPECT_EQ(result.outcome, SaveOutcome::CannotWrite);
    EXPECT_FALSE(result.what.empty());
}

} // namespace
} // namespace player
