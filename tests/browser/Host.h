#pragma once

#include "browser/BrowserHost.h"
#include "core/Application.h"
#include "media/CacheName.h"
#include "media/UrlEncode.h"

#include <QDialog>
#include <QDir>
#include <QFile>
#include <QStringList>
#include <QTemporaryDir>
#include <functional>
#include <gtest/gtest.h>

namespace browser
{

/// Keeps what the browser asks of the main window.
struct TestHost : NoBrowserHost {
    void SetStatus(const QString& text) override { statuses += text; }
    void LoadFlash(const QString& path, const QString& title) override
    {
        address = path;
        caption = title;
    }
    void ShowDialog(QDialog& dialog) override
    {
        dialog.show();
        whileShown(dialog);
    }
    [[nodiscard]] QString noAnimation() const override { return animation; }
    [[nodiscard]] bool hqShots() const override { return smooth; }
    [[nodiscard]] bool hasEnded() const override { return ended; }
    [[nodiscard]] QString GetTime(int frames) const override { return "time of " + QString::number(frames); }

    QStringList statuses;
    QString address, caption, animation = "False";
    bool smooth = true, ended = false;
    std::function<void(QDialog&)> whileShown = [](QDialog&) {};
};

/// A program folder of its own, with an empty cache.
class BrowserTest : public testing::Test
{
protected:
    BrowserTest()
    {
        application.AppPath = path("");
        application.CachePath = path("cache/");
        application.GadgetsPath = path("media/gadgets/");
        application.LogFile = path("log");
        folder("cache");
    }
    [[nodiscard]] QString path(const QString& name) const { return m_folder.path() + "/" + name; }
    void folder(const QString& name) const { EXPECT_TRUE(QDir().mkpath(path(name))); }
    void write(const QString& name, const QByteArray& content) const
    {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QFile::WriteOnly)) << name.toStdString();
        file.write(content);
    }
    [[nodiscard]] QByteArray journal() const
    {
        QFile file(application.LogFile);
        return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
    }

private:
    QTemporaryDir m_folder;

protected:
    core::Application application;
    TestHost host;
};

} // namespace browser
