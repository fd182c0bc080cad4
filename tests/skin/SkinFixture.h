#pragma once

#include "QtPrint.h"
#include "base/Failure.h"
#include "skin/Skin.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

// A skin over a window of the tests' own, which counts what it is asked for.

namespace skin
{

/// What a skin's script knows as Player, with no player behind it.
class TestWindow : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(int ScaleWidth READ ScaleWidth)
    Q_PROPERTY(int ScaleHeight READ ScaleHeight)
    Q_PROPERTY(QString StatusText MEMBER statusText)
public:
    [[nodiscard]] int ScaleWidth() const { return client->width(); }
    [[nodiscard]] int ScaleHeight() const { return client->height(); }
    Q_INVOKABLE void MoveWindow() { ++moves; }
    Q_INVOKABLE void FullScreen(bool on) { isFull = on; } // a widget has a property that sounds like it
    Q_INVOKABLE void Report(const QVariant& value) { reports += value.toString(); }
    Q_INVOKABLE void Fail() { throw base::Failure(53, "Test", "gone"); }

    QWidget* client = new QWidget(this);
    QString statusText = "Готово";
    int moves = 0;
    bool isFull = false;
    QStringList reports;
};

class TestHost : public SkinHost
{
public:
    TestHost() : movieFrame(new SkinControl("SWF", 0, form.client, &form)) { movieFrame->show(); }
    QWidget& window() override { return form; }
    QWidget& clientArea() override { return *form.client; }
    QWidget& movie() override { return *movieFrame; }
    [[nodiscard]] bool isFullScreen() const override { return fullScreen; }
    void setMinimumWindowSize(QSize pixels) override { minimum = pixels; }
    void UpdateRegion(bool) override { ++regions; }
    void ShowPopUp() override { ++popUps; }
    void activateProgram() override { ++activations; }
    [[nodiscard]] bool hasEnded() const override { return ended; }
    void skinOverran() override { ++overruns; }
    [[nodiscard]] bool isDeveloperMode() const override { return developerMode; }
    void log(const QString& text) override { lines += text; }
    void noteMistake(const QString& file, int line, const QString& what) override
    {
        mistakes += QString("%1:%2: %3").arg(file).arg(line).arg(what);
    }
    void logError(const base::Failure& error, const QString& place, const QString& detail) override
    {
        errors += place;
        details += detail;
        descriptions += QString::fromStdString(error.description());
    }
    TestWindow form;
    SkinControl* movieFrame;
    bool fullScreen = false;
    bool developerMode = false;
    bool ended = false;
    int overruns = 0;
    QSize minimum;
    int regions = 0, popUps = 0, activations = 0;
    QStringList lines, errors, details, descriptions, mistakes;
};

class SkinTest : public testing::Test
{
protected:
    SkinTest() : skin(host, nullptr)
    {
        host.form.resize(400, 300);
        host.clientArea().resize(400, 300);
        host.form.show();
        ScriptObjects& objects = skin.bridge().objects();
        skin.bridge().setPlayerObject(objects.add(
            &host.form, nullptr,
            [this](const QString& name) -> QObject* { return name == "swf" ? host.movieFrame : nullptr; },
            "Player"));
    }
    static void write(const QString& path, const QByteArray& bytes)
    {
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        ASSERT_TRUE(file.open(QFile::WriteOnly));
        file.write(bytes);
    }
    void picture(const QString& name, const QColor& colour, QSize size = {28, 28})
    {
        const QString path = folder.filePath(name);
        QDir().mkpath(QFileInfo(path).path());
        QImage image(size, QImage::Format_RGB32);
        image.fill(colour);
        ASSERT_TRUE(image.save(path));
    }
    bool load(const QByteArray& xml, const QByteArray& script = {})
    {
        write(folder.filePath("skin.xml"), xml);
        write(folder.filePath("s.vbs"), script);
        return skin.LoadSkin(folder.filePath("skin.xml"));
    }
    bool loadTiny()
    {
        for (const char* name : {"skin.xml", "script.vbs"})
            QFile::copy(QString(TEST_SOURCE_DIR "/tiny/") + name, folder.filePath(name));
        picture("Base/BAR.bmp", Qt::darkBlue);
        picture("up/Sub/Play.bmp", Qt::green);
        picture("down/Sub/Play.bmp", Qt::red);
        picture("over/Sub/Play.bmp", Qt::yellow);
        picture("disabled/Sub/Play.bmp", Qt::gray);
        return skin.LoadSkin(folder.filePath("skin.xml"));
    }
    [[nodiscard]] const SkinObject& record(const QString& name) const
    {
        for (const SkinObject& object : skin.objects())
            if (object.name == name) return object;
        return skin.objects()[0];
    }
    double number(const QString& expression) { return skin.bridge().EvalScript(expression).value_or(-1); }

    QTemporaryDir folder;
    TestHost host;
    Skin skin;
};

} // namespace skin
