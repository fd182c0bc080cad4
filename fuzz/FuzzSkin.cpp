#include "base/Failure.h"
#include "skin/Skin.h"

#include <QApplication>
#include <QFile>
#include <QTemporaryDir>

#include <cstdint>

// A skin's description from bytes: the builder, its expressions, the layout, a view's statements, unloading.

namespace
{

class Window : public QWidget
{
public:
    QWidget* client = new QWidget(this);
};

class Host : public skin::SkinHost
{
public:
    Host() : frame(new skin::SkinControl("SWF", 0, form.client, &form)) { form.client->resize(200, 100); }
    QWidget& window() override { return form; }
    QWidget& clientArea() override { return *form.client; }
    QWidget& movie() override { return *frame; }
    [[nodiscard]] bool isFullScreen() const override { return false; }
    void setMinimumWindowSize(QSize) override {}
    void UpdateRegion(bool) override {}
    void ShowPopUp() override {}
    void activateProgram() override {}
    [[nodiscard]] bool hasEnded() const override { return false; }
    void skinOverran() override {}
    [[nodiscard]] bool isDeveloperMode() const override { return false; }
    void log(const QString&) override {}
    void logError(const base::Failure&, const QString&, const QString&) override {}
    void noteMistake(const QString&, int, const QString&) override {}

    Window form;
    skin::SkinControl* frame;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const bool offscreen = qputenv("QT_QPA_PLATFORM", "offscreen");
    static int argc = 0;
    static const QApplication application(argc, nullptr);
    static const QTemporaryDir folder("/dev/shm/skin");
    const QString path = folder.filePath("skin.xml");
    {
        QFile file(path);
        if (!offscreen || !file.open(QFile::WriteOnly)) return 0;
        file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size));
    }
    Host host;
    skin::Skin skin(host, nullptr);
    if (skin.LoadSkin(path)) {
        host.form.client->resize(90, 300);
        skin.UpdateSkin();
        skin.SetSkinView("viewFullScreen");
        skin.runInfoUpdate();
        skin.setActive(false);
        if (host.form.client->grab().isNull()) return 0;
    }
    skin.UnloadSkin();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return 0;
}
