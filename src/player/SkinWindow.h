#pragma once

#include "skin/ShapeEdge.h"
#include "skin/Skin.h"
#include "skin/WaitScreen.h"

#include <QElapsedTimer>
#include <QObject>

namespace core
{
class Application;
}
namespace flash
{
class FlashControl;
}

namespace player
{

class Console;

/// What a skin's side of the window asks of the whole. The player implements it.
class SkinWindowHost
{
public:
    virtual ~SkinWindowHost() = default;
    [[nodiscard]] virtual bool hasEnded() const = 0;
    /// What scripts see; made when it is first asked for.
    virtual Console& console() = 0;
    /// Whether the user wants effects.
    [[nodiscard]] virtual bool usesEffects() const = 0;
    virtual void setMinimumWindowSize(QSize pixels) = 0;
    virtual void ShowPopUp() = 0;
};
class Menus;
class SizingFrame;

/// A menu item as scripts know it.
class MenuItem : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("ScriptName", "Menu")
    Q_PROPERTY(QString Caption READ Caption WRITE setCaption)
    Q_PROPERTY(bool Checked READ Checked WRITE setChecked)
    Q_PROPERTY(bool Enabled READ Enabled WRITE setEnabled)
    Q_PROPERTY(bool Visible READ Visible WRITE setVisible)
    Q_PROPERTY(QString Tag READ Tag)

public:
    explicit MenuItem(QAction& action);
    [[nodiscard]] QString Caption() const;
    void setCaption(const QString& caption);
    [[nodiscard]] bool Checked() const;
    void setChecked(bool checked);
    [[nodiscard]] bool Enabled() const;
    void setEnabled(bool enabled);
    [[nodiscard]] bool Visible() const;
    void setVisible(bool visible);
    /// A skin's folder name, a recent file's path.
    [[nodiscard]] QString Tag() const;
    /// Does what choosing the item does.
    Q_INVOKABLE void Click();

private:
    QAction& m_action; // owns this
};

/// The window's side of its skin: the catalogue in the menu, switching, shape and frame, and what skins ask.
class SkinWindow : public QObject, public skin::SkinHost, public script::Host
{
    Q_OBJECT
public:
    /// All outlive this object.
    /// @param client the area that views fill
    /// @param movie  what moves from view to view; scripts know it as SWF
    /// @param control the members of SWF that are the movie's
    SkinWindow(core::Application& application, SkinWindowHost& host, QWidget& window, Menus& menus,
               QWidget& client, skin::SkinControl& movie, flash::FlashControl& control);

    [[nodiscard]] skin::Skin& skin() { return m_skin; }
    [[nodiscard]] bool isShown() const { return m_skin.isShown(); }
    [[nodiscard]] SizingFrame& sizingFrame() { return *m_sizing; }

    [[nodiscard]] const QString& selectedSkin() const { return m_selected; }
    /// Takes effect with EnumSkins.
    void selectSkin(const QString& name) { m_selected = name; }

    void EnumSkins();
    /// Builds the skin of the chosen folder; says so when that cannot be done. Without any skin installed the
    /// window stays as it is.
    void CreateSkin();
    void LoadNewSkin();
    /// The same for the user, who is told of the mistakes in the skin's files.
    void Reload();
    void mnuSkinList_Click(int index);
    void ShowWaitScreen();
    void HideWaitScreen() { m_waitScreen->HideWaitScreen(); }
    /// A statement of the skin asks for another movie or another skin, which has to wait for its end. One
    /// that does so over and over, while the user does nothing, is put away.
    void noteWish();
    void UpdateRegion(bool force) override;
    /// What lies under all that the window holds, within its shape.
    void paintGround(QPainter& painter) const;
    /// Fits the movie, or the skin, into the area's new size.
    void clientResized();

    QWidget& clientArea() override { return m_client; }
    QWidget& movie() override { return m_movie; }
    QWidget& window() override;
    [[nodiscard]] bool isFullScreen() const override;
    void setMinimumWindowSize(QSize pixels) override;
    void ShowPopUp() override;
    void activateProgram() override;
    [[nodiscard]] bool hasEnded() const override;
    void skinOverran() override;
    [[nodiscard]] bool isDeveloperMode() const override;
    void log(const QString& text) override;
    void noteMistake(const QString& file, int line, const QString& what) override;
    void logError(const base::Failure& error, const QString& place, const QString& detail) override;

    int messageBox(const std::u16string& text, int buttons, const std::u16string& title) override;
    std::optional<std::u16string> inputBox(const std::u16string& text, const std::u16string& title,
                                           const std::u16string& preset) override;

signals:
    /// A skin has come or gone: the window's own bar goes or comes.
    void shownChanged();

private:
    void tellMistakes();
    /// Takes the skin that hangs away, says so, and shows the program's own.
    void putAway();
    void setFrameless(bool frameless);
    /// @param shape in the inner area's coordinates; an empty one takes the shape away
    void setShape(const QRegion& shape);

    core::Application& m_application;
    SkinWindowHost& m_host;
    QWidget& m_window;
    Menus& m_menus;
    QWidget& m_client;
    skin::SkinControl& m_movie;
    skin::WaitScreen* m_waitScreen;
    skin::ShapeEdge* m_shapeEdge;
    SizingFrame* m_sizing;
    skin::Skin m_skin;
    QStringList m_skins;
    QString m_selected = "default";
    /// Where skins lie, the program's own first.
    [[nodiscard]] QStringList skinsPaths() const;
    QString m_folder; ///< of the chosen skin, with its closing separator
    QHash<QString, QObject*> m_items;
    bool m_frameless = false;
    QStringList m_mistakes; ///< of the skin that is loaded at the moment
    bool m_tellsMistakes = false;
    bool m_isSwitching = false;
    int m_wishes = 0; ///< of the skin's statements since the user acted, or for some time
    QElapsedTimer m_sinceWish;
    bool m_isWaitingToSwitch = false;
    bool m_isHanging = false; ///< the skin is to be put away
};

} // namespace player
