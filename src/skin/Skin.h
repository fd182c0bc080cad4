#pragma once

#include "skin/Bridge.h"
#include "skin/Controls.h"
#include "skin/Description.h"
#include "skin/Words.h"

#include <QObject>
#include <QPointer>

#include <vector>

// skin/: the window as a skin draws it: description, live elements, their script, the window's shape. Knows
// the player only as a SkinHost and as the object that scripts call "Player".

namespace skin
{

/// One object of a skin.
struct SkinObject {
    QString name;
    QPointer<SkinControl> object; ///< null in record 0 and in the record of an element that failed
    int viewIndex = 0;            ///< a view's is its own
    Kind kind = Kind::View;
    Expression left, top, width, height;
    QString onClick, onDblClick, onDrag;
    QString onResize, onInfoUpdate, onMediaChange;
    std::optional<ElementPointer> pointer; ///< of elements

    [[nodiscard]] SkinPicture* picture() const { return qobject_cast<SkinPicture*>(object.data()); }
    [[nodiscard]] bool hasImage(ImageState state) const
    {
        return picture() != nullptr && picture()->hasImage(state);
    }
};

/// The skin that is loaded: builds the elements of a description, lays them out and runs what happens to
/// them.
class Skin : public QObject
{
    Q_OBJECT
public:
    /// Both outlive the skin.
    Skin(SkinHost& host, script::Host* scriptHost);
    ~Skin() override;

    [[nodiscard]] Bridge& bridge() { return m_bridge; }
    [[nodiscard]] const Words& words() const { return m_words; }

    /// Builds a skin, runs its onLoad and shows its first view.
    /// @param path of skin.xml, in any case
    /// @returns false when the file is missing or not well-formed; nothing is built then
    bool LoadSkin(const QString& path);
    /// Destroys every object and forgets the script. Harmless when there is none.
    void UnloadSkin();
    /// The layout pass: every expression of the current view is evaluated and every element moved.
    void UpdateSkin();
    /// Shows a view. @returns false, and changes nothing but the journal, when there is none of that name
    bool SetSkinView(const QString& name);

    void runInfoUpdate();
    void runMediaChange();
    /// Shows the disabled images while the program is not the active one.
    void setActive(bool active);

    [[nodiscard]] bool isLoaded() const { return m_objects.size() > 1; }
    /// Whether a view is shown: without one there is nothing that the player could be used by.
    [[nodiscard]] bool isShown() const;
    /// Whether building or layout is going on; a skin may not be replaced meanwhile.
    [[nodiscard]] bool isBusy() const { return m_busy > 0; }
    /// Record 0 is always there and empty.
    [[nodiscard]] const std::vector<SkinObject>& objects() const { return m_objects; }
    [[nodiscard]] int currentView() const { return m_currentView; }
    [[nodiscard]] std::vector<MaskPlace> masks() const;
    /// The member of a control array, "PIC" or "LBL"; null when there is none.
    [[nodiscard]] QObject* control(const QString& array, int index) const;

    [[nodiscard]] int GetAbsLeft(const QWidget& control) const { return control.x(); }
    [[nodiscard]] int GetAbsTop(const QWidget& control) const;

signals:
    /// The user has pressed on one of its elements.
    void userActed();

private:
    struct Mask {
        QRegion holes;
        QPointer<SkinPicture> panel;
    };
    enum class Step { Branch, Element };
    /// Marks that the skin may not be replaced as long as it lives.
    class Busy
    {
    public:
        explicit Busy(Skin& skin) : m_skin(skin) { ++m_skin.m_busy; }
        ~Busy() { --m_skin.m_busy; }
        Busy(const Busy&) = delete;
        Busy& operator=(const Busy&) = delete;

    private:
        Skin& m_skin;
    };

    /// Of the scripts and words that skins share.
    [[nodiscard]] QString sharedFolder() const;
    void ParseSkinNode(const base::xml::Element& node);
    void ParseSkinChildren(const base::xml::Element& node);
    void beginTheme(const base::xml::Element& node);
    void CreateSkinView(const base::xml::Element& node);
    void CreateSkinObject(const base::xml::Element& node, Kind kind);
    void buildObject(SkinObject& record, const base::xml::Element& node, Kind kind);
    /// @returns a null image, with the reason in the journal, when there is none
    QImage imageOf(const QString& name) const;
    void loadImages(SkinPicture& picture, Kind kind, const QString& name);
    void setUpLabel(SkinLabel& label, const ElementAttributes& attributes);
    void cutToMask(SkinPicture& picture, const ElementAttributes& attributes);
    void introduce(SkinControl& control, const QString& name);
    void connectElement(SkinControl& control);
    /// Runs a step of a branch; what fails is written down with the element's source.
    void step(const base::xml::Element& node, Step kind, const std::function<void()>& action);
    void placeMovie(QWidget& view);
    void layOut();
    double position(Expression& expression);
    SkinObject* recordOf(const SkinControl& control);
    void react(SkinControl& control, const ElementPointer::Reaction& reaction, QPoint position);

    SkinHost& m_host;
    Bridge m_bridge;
    Words m_words;
    QString m_folder; ///< the skin's, with its closing separator
    std::vector<SkinObject> m_objects{1};
    std::vector<Mask> m_masks;
    std::vector<QPointer<SkinControl>> m_controls; ///< all that were made, those of failed elements included
    QWidget* m_container = nullptr;                ///< what the next element is placed in, while building
    int m_buildingView = 0;
    int m_currentView = 0;
    int m_pictures = 0;
    int m_labels = 0;
    QRect m_movieFilled;              ///< where the movie was put when no script had said where it lies
    mutable qint64 m_imagePixels = 0; ///< of the pictures that were read
    int m_nested = 0;                 ///< how deep the builder stands in the description
    int m_busy = 0;
    bool m_layoutWanted = false;
    bool m_inLayout = false;
    bool m_active = true;
    bool m_isNoted = false; ///< the mistake that is on its way up is in the list already
};

} // namespace skin
