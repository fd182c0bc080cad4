#include "PlayerWindow.h"
#include "export/ExportDialog.h"
#include "export/ProgressDialog.h"
#include "export/RecordDialog.h"
#include "flash/FlashControl.h"
#include "player/ScreenNote.h"

#include <QClipboard>
#include <QComboBox>
#include <QFileDialog>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QtTest>

namespace player
{
namespace
{

/// The way of a user from the menu to the file.
class FilmExport : public PlayerWindow
{
protected:
    FilmExport()
    {
        qputenv("ZORVEX_EXPORT_PROGRAM", ZORVEX_PROGRAM_DIR "/zorvex-export");
        film = compile("film", R"(<movie version="6" width="120" height="80" rate="10" background="#104080">
  <shape id="dot"><rect x="0" y="0" width="20" height="20" fill="#FFFFFF"/></shape>
  <frame><place id="dot" depth="1"/></frame><frame duration="9"><move depth="1" x="100" over="9"/></frame></movie>)");
        player.Form_Load();
        player.LoadFlash(film, {});
    }
    ~FilmExport() override { qunsetenv("ZORVEX_EXPORT_PROGRAM"); }

    template <class Dialog>
    static Dialog* shown()
    {
        for (QWidget* window : QApplication::topLevelWidgets())
            if (auto* dialog = qobject_cast<Dialog*>(window); dialog && dialog->isVisible()) return dialog;
        return nullptr;
    }
    static void chooseFile(const QString& file)
    {
        auto* files = shown<QFileDialog>();
        if (files == nullptr) return;
        files->setOption(QFileDialog::DontConfirmOverwrite);
        files->findChild<QLineEdit*>("fileNameEdit")->setText(file);
        static_cast<QDialog*>(files)->accept();
    }
    /// What the user does in the dialogs, as each of them shows.
    template <class Choose>
    void saveVideo(const QString& file, Choose&& choose)
    {
        QTimer answering;
        bool hasChosen = false;
        QObject::connect(&answering, &QTimer::timeout, &player, [&] {
            if (auto* dialog = shown<exporter::ExportDialog>(); dialog != nullptr && !hasChosen) {
                hasChosen = true;
                choose(*dialog);
                dialog->findChild<QPushButton*>("cbOk")->click();
            } else {
                chooseFile(file);
            }
        });
        answering.start(20);
        player.SaveVideo();
    }
    static void select(exporter::ExportDialog& dialog, const char* list, const QString& start)
    {
        auto* box = dialog.findChild<QComboBox*>(list);
        const int found = box->findText(start, Qt::MatchStartsWith);
        ASSERT_GE(found, 0) << start.toStdString();
        box->setCurrentIndex(found);
    }
    /// The word that lies over the window.
    QString noted()
    {
        const auto* note = player.findChild<ScreenNote*>();
        return note == nullptr ? QString() : note->text();
    }
    bool waitForFilm()
    {
        return waitFor([] { return shown<exporter::ProgressDialog>() == nullptr; });
    }

    QString film;
    Player player{application, {}};
};

TEST_F(FilmExport, WritesTheFilmThatWasAskedFor)
{
    saveVideo(path("out.png"), [&](exporter::ExportDialog& dialog) {
        select(dialog, "cmbFormat", "PNG");
        select(dialog, "cmbSize", "Вдвое больше (240 x 160)");
    });
    ASSERT_TRUE(waitForFilm());
    EXPECT_EQ(noted(), "Видео сохранено: out.png");
    const QStringList pictures = QDir(path("out")).entryList(QDir::Files);
    EXPECT_EQ(pictures.size(), 10);
    const QImage last(path("out/" + pictures.value(9)));
    EXPECT_EQ(last.size(), QSize(240, 160));
    EXPECT_EQ(last.pixelColor(230, 20), QColor(Qt::white));
    EXPECT_EQ(last.pixelColor(20, 120), QColor(0x10, 0x40, 0x80));

    // The next time, also after a restart, the dialog begins with this choice.
    EXPECT_TRUE(player.SaveOpts());
    QFile settings(path("settings.xml"));
    ASSERT_TRUE(settings.open(QIODevice::ReadOnly));
    EXPECT_TRUE(settings.readAll().contains("choice=\"o.png --scale 2 --quality good\""));
    saveVideo(path("again.png"), [&](exporter::ExportDialog& dialog) {
        EXPECT_EQ(dialog.findChild<QComboBox*>("cmbFormat")->currentText(), "PNG");
        EXPECT_TRUE(dialog.findChild<QComboBox*>("cmbSize")->currentText().startsWith("Вдвое"));
    });
    ASSERT_TRUE(waitForFilm());
    EXPECT_TRUE(QFile::exists(path("again/000010.png")));
}

TEST_F(FilmExport, CancelsAtOnceAndLeavesNothing)
{
    put("long.mp4", {1, 2, 3});
    saveVideo(path("long.mp4"), [&](exporter::ExportDialog& dialog) {
        select(dialog, "cmbRange", "Заданный");
        dialog.findChild<QLineEdit*>("txtTo")->setText("60:00");
        select(dialog, "cmbSize", "1920");
    });
    auto* progress = shown<exporter::ProgressDialog>();
    ASSERT_NE(progress, nullptr);
    // The player goes on meanwhile: the window lives.
    ASSERT_TRUE(waitFor([&] { return progress->findChild<QLabel*>("lblCount")->text().startsWith("Кадр"); }));
    QElapsedTimer took;
    took.start();
    progress->findChild<QPushButton*>("cbCancel")->click();
    ASSERT_TRUE(waitForFilm());
    EXPECT_LT(took.elapsed(), 2000);
    EXPECT_EQ(QDir(path("")).entryList({"long*"}), QStringList{"long.mp4"});
    EXPECT_EQ(QFileInfo(path("long.mp4")).size(), 3);
    EXPECT_EQ(noted(), QString());
}

TEST_F(FilmExport, SaysWhatWentWrong)
{
    QString said;
    QTimer reading;
    QObject::connect(&reading, &QTimer::timeout, &player, [&] {
        if (auto* box = shown<QMessageBox>()) {
            said = box->text();
            box->accept();
        }
    });
    reading.start(20);
    QFile::copy(film, path("gone.swf"));
    player.LoadFlash(path("gone.swf"), {});
    saveVideo(path("gone.mp4"), [&](exporter::ExportDialog&) { QFile::remove(path("gone.swf")); });
    ASSERT_TRUE(waitFor([&] { return !said.isEmpty(); }));
    EXPECT_EQ(said, "Ролик не удалось проиграть.");
    EXPECT_FALSE(QFile::exists(path("gone.mp4")));

    said.clear();
    player.LoadFlash(film, {});
    qputenv("ZORVEX_EXPORT_PROGRAM", "/nowhere/zorvex-export");
    player.SaveVideo();
    EXPECT_TRUE(said.contains("zorvex-export")) << said.toStdString();
}

TEST_F(FilmExport, ARangeThatIsNoneCannotBeSaved)
{
    const exporter::MovieFacts facts{film, {120, 80}, 10, 10};
    exporter::ExportDialog dialog(
        nullptr, facts, {{exporter::Format::Mp4, {}}, {exporter::Format::WebM, "libvpx-vp9"}}, "o.webm");
    const auto* save = dialog.findChild<QPushButton*>("cbOk");
    // What the machine cannot write is shown and not taken, whatever was chosen once.
    EXPECT_EQ(dialog.findChild<QComboBox*>("cmbFormat")->currentText(), "MP4 (H.264, AAC)");
    EXPECT_TRUE(save->isEnabled());
    select(dialog, "cmbRange", "Заданный");
    EXPECT_TRUE(save->isEnabled()); // the whole timeline
    for (const auto& [from, to, isRange] : {std::tuple("0.5", "0,75", true),
                                            {"8f", "8f", true},
                                            {"9f", "8f", false},
                                            {"2", "1", false},
                                            {"x", "1", false}}) {
        dialog.findChild<QLineEdit*>("txtFrom")->setText(from);
        dialog.findChild<QLineEdit*>("txtTo")->setText(to);
        EXPECT_EQ(save->isEnabled(), isRange) << from << " " << to;
        EXPECT_EQ(dialog.findChild<QLabel*>("lblFault")->text().isEmpty(), isRange);
    }
}

TEST_F(FilmExport, WhatTheUserDoesIsRepeated)
{
    const QString game = compile(
        "game", R"(<movie version="6" width="100" height="100" rate="20" background="#000000"><frame><script>
  stop();
  onMouseDown = function () { beginFill(0xFFFFFF); lineTo(100, 0); lineTo(100, 100); lineTo(0, 100); endFill(); };
</script></frame></movie>)");
    exporter::RecordDialog recording(nullptr, {game, {100, 100}, 20, 1});
    recording.show();
    auto* control = recording.findChild<flash::FlashControl*>();
    ASSERT_TRUE(
        waitFor([&] { return recording.findChild<QLabel*>("lblClock")->text().startsWith("Записано 0.4"); }));
    QTest::mouseClick(control, Qt::LeftButton, Qt::NoModifier, QPoint(30, 40));
    recording.findChild<QPushButton*>("cbOk")->click();
    const auto events = QJsonDocument::fromJson(recording.events()).array();
    int waits = 0, downAfter = -1;
    for (const QJsonValue& event : events) {
        if (event["type"] == "Wait") ++waits;
        if (event["type"] == "MouseDown") {
            downAfter = waits;
            EXPECT_EQ(event["pos"], QJsonArray({30, 40}));
        }
    }
    // In the frame of that moment: 20 a second.
    EXPECT_GE(downAfter, 7);
    EXPECT_LE(downAfter, 16);
    EXPECT_GT(recording.seconds(), 0.3);
}

TEST_F(FilmExport, AFrameIsSavedOrCopiedAsItIsSeen)
{
    player.resize(400, 300);
    player.show();
    ASSERT_TRUE(waitFor([&] {
        return player.control().grab().toImage().pixelColor(
                   player.control().width() - 3, player.control().height() - 3) == QColor(0x10, 0x40, 0x80);
    }));
    QApplication::clipboard()->clear();
    player.CopyFrame();
    EXPECT_EQ(QApplication::clipboard()->image().size(), player.control().grab().toImage().size());
    QTimer answering;
    QObject::connect(&answering, &QTimer::timeout, &player, [&] { chooseFile(path("frame.png")); });
    answering.start(20);
    player.SaveFrame();
    EXPECT_EQ(QImage(path("frame.png")).size(), player.control().grab().toImage().size());
}

} // namespace
} // namespace player
