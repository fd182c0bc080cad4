#pragma once

#include "skin/ElementPointer.h"
#include "skin/Region.h"

#include <QImage>
#include <QWidget>

#include <array>
#include <functional>

namespace skin
{

/// What the elements of a skin have in common: the property names that its scripts know, in pixels and
/// relative to the container. Painting and forwarding of events, nothing else: what happens is decided by
/// whoever listens.
class SkinControl : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QString Name READ Name)
    Q_PROPERTY(int Index READ Index)
    Q_PROPERTY(QString Tag MEMBER m_tag)
    Q_PROPERTY(double Left READ Left WRITE setLeft)
    Q_PROPERTY(double Top READ Top WRITE setTop)
    Q_PROPERTY(double Width READ Width WRITE setWidth)
    Q_PROPERTY(double Height READ Height WRITE setHeight)
    Q_PROPERTY(bool Visible READ Visible WRITE setShown)
    Q_PROPERTY(bool Enabled READ Enabled WRITE setUsable)
    Q_PROPERTY(QString ToolTipText READ toolTip WRITE setToolTip)
    Q_PROPERTY(double Value READ Value WRITE setValue)
    Q_PROPERTY(QObject* Parent READ Parent)
    Q_PROPERTY(QObject* Container READ Container WRITE setContainer)

public:
    /// Positions and sizes beyond this are cut off there: no window system takes more.
    static constexpr int kMaxDistance = 16384;

    /// @param name the control array's, "PIC" or "LBL"
    /// @param window what scripts see as Parent
    SkinControl(const QString& name, int index, QWidget* container, QWidget* window);

    [[nodiscard]] QString Name() const { return m_name; }
    [[nodiscard]] int Index() const { return m_index; }
    [[nodiscard]] QString Tag() const { return m_tag; }
    void setTag(const QString& tag) { m_tag = tag; }
    [[nodiscard]] double Left() const { return x(); }
    [[nodiscard]] double Top() const { return y(); }
    [[nodiscard]] double Width() const { return width(); }
    [[nodiscard]] double Height() const { return height(); }
    void setLeft(double value) { move(whole(value), y()); }
    void setTop(double value) { move(x(), whole(value)); }
    void setWidth(double value) { place({x(), y(), extent(value), height()}); }
    void setHeight(double value) { place({x(), y(), width(), extent(value)}); }
    [[nodiscard]] bool Visible() const { return !isHidden(); }
    void setShown(bool shown) { setVisible(shown); }
    [[nodiscard]] bool Enabled() const { return m_usable; }
    void setUsable(bool usable);
    [[nodiscard]] QObject* Parent() const { return m_window; }
    [[nodiscard]] QObject* Container() const
    {
        return parentWidget() == m_client ? m_window : parentWidget();
    }
    void setContainer(QObject* container);
    /// What a slider stands for at the moment, in percent: for who cannot see where its knob is. Below 0
    /// where no script has said so.
    [[nodiscard]] double Value() const { return m_value; }
    void setValue(double percent);

    Q_INVOKABLE void Move(double left);
    Q_INVOKABLE void Move(double left, double top);
    Q_INVOKABLE void Move(double left, double top, double width);
    Q_INVOKABLE void Move(double left, double top, double width, double height);
    /// @param position 0: to the front of its container; 1: to the back
    Q_INVOKABLE void ZOrder(int position = 0) { position == 0 ? raise() : lower(); }
    Q_INVOKABLE void Refresh() { update(); }
    Q_INVOKABLE void SetFocus() { setFocus(); }

    /// The press of the right button opens a menu, so that the request for one that follows is answered.
    void setOpensMenu() { m_opensMenu = true; }
    /// Takes the control out of use while the program is not the active one. A press then is what makes it
    /// active, and is not lost.
    void setResting(bool resting);
    /// Rounds halves to even and cuts off what no window system takes.
    static int whole(double value);
    static int extent(double value) { return std::max(0, whole(value)); }

    /// What a screen reader is to take it for; nothing to be told of by itself.
    enum class Part { None, Button, Text, Slider };
    void setPart(Part part) { m_part = part; }
    [[nodiscard]] Part part() const { return m_part; }
    /// Does what a click does, for who has no pointer.
    void click() { emit clicked(); }
    /// Drags until the script says that it stands for the value, or for the nearest that can be had.
    void dragTo(double percent);

signals:
    void pressed(skin::PointerButton button, QPoint position);
    void moved(bool leftHeld, QPoint position);
    void released(skin::PointerButton button, QPoint position);
    void clicked();
    void doubleClicked();
    void entered();
    void left();
    void pressedWhileResting();

protected:
    virtual void place(const QRect& where) { setGeometry(where); }
    /// A script has taken it out of use or back.
    virtual void usableChanged() {}
    [[nodiscard]] bool isResting() const { return m_resting; }
    bool event(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    const QString m_name;
    const int m_index;
    QString m_tag;
    QWidget* m_window; ///< outlives its children
    QWidget* m_client; ///< the widget of the window that views lie on
    double m_value = -1;
    Part m_part = Part::None;
    bool m_usable = true;
    bool m_resting = false;
    bool m_opensMenu = false;
    bool m_clickFollows = false; ///< the press was a first one, and the release may make it a click
};

/// Views, panels and buttons.
class SkinPicture : public SkinControl
{
    Q_OBJECT
    Q_CLASSINFO("ScriptName", "PictureBox")
    Q_PROPERTY(int BackColor READ BackColor WRITE setBackColor)

public:
    using SkinControl::SkinControl;

    void setImage(ImageState state, QImage image);
    /// An image that is fetched when the state is first shown: most elements are never pressed.
    /// @param fetch may answer with a null image, which is a state without one; called once
    void setPendingImage(ImageState state, std::function<QImage()> fetch);
    /// Whether the state has an image, or may turn out to have one.
    [[nodiscard]] bool hasImage(ImageState state) const;
    /// The same picture at twice its size, shown where a pixel of the window is more than one of the
    /// screen's.
    void setFineImage(ImageState state, QImage image);
    [[nodiscard]] const QImage& image(ImageState state) const;
    /// A state without an image leaves what is shown.
    void showState(ImageState state);
    [[nodiscard]] ImageState shownState() const { return m_shown; }
    /// The picture as it is shown, without what lies on it.
    [[nodiscard]] QImage picture() const;

    /// Filled under the picture; without one the container shows through.
    [[nodiscard]] int BackColor() const { return m_ground.isValid() ? toSkinColour(m_ground) : 0; }
    void setBackColor(int colour);
    void setGround(const QColor& colour);
    static int toSkinColour(const QColor& colour)
    {
        return colour.red() | colour.green() << 8 | colour.blue() << 16;
    }
    /// Masked pictures are stretched without smoothing, so that no pixel mixes with the key colour. Those of
    /// twice the size lose that colour before they are, and may be smoothed.
    void setMasked(SkinColour key);

protected:
    void usableChanged() override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void drawFinely(QPainter& painter);
    void forgetStretched();

    mutable std::array<QImage, 4> m_images;
    mutable std::array<std::function<QImage()>, 4> m_pending;
    std::array<QImage, 4> m_fineImages;
    ImageState m_shown = ImageState::Normal;
    mutable QImage m_stretched; ///< the shown image at this size
    QImage m_finelyStretched;   ///< the same in pixels of the screen
    QColor m_ground;
    bool m_masked = false;
};

/// One line of text.
class SkinLabel : public SkinControl
{
    Q_OBJECT
    Q_CLASSINFO("ScriptName", "Label")
    Q_PROPERTY(QString Caption READ Caption WRITE setCaption)
    Q_PROPERTY(int ForeColor READ ForeColor WRITE setForeColor)
    Q_PROPERTY(int Alignment READ Alignment WRITE setAlignment)
    Q_PROPERTY(bool AutoSize READ AutoSize WRITE setAutoSize)
    Q_PROPERTY(QString FontName READ FontName WRITE setFontName)
    Q_PROPERTY(bool FontBold READ FontBold WRITE setFontBold)
    Q_PROPERTY(bool FontItalic READ FontItalic WRITE setFontItalic)
    Q_PROPERTY(double FontSize READ FontSize WRITE setFontSize)

public:
    SkinLabel(const QString& name, int index, QWidget* container, QWidget* window);

    [[nodiscard]] QString Caption() const { return m_caption; }
    void setCaption(const QString& caption);
    [[nodiscard]] int ForeColor() const { return static_cast<int>(m_colour); }
    void setForeColor(int colour);
    /// 0 left, 1 right, 2 centre. @throws base::Failure 380 for other numbers
    [[nodiscard]] int Alignment() const { return m_alignment; }
    void setAlignment(int alignment);
    [[nodiscard]] bool AutoSize() const { return m_autoSize; }
    void setAutoSize(bool on);
    [[nodiscard]] QString FontName() const { return font().family(); }
    void setFontName(const QString& name);
    [[nodiscard]] bool FontBold() const { return font().bold(); }
    void setFontBold(bool bold);
    [[nodiscard]] bool FontItalic() const { return font().italic(); }
    void setFontItalic(bool italic);
    /// Points of 96 to the inch, as far as whole pixels allow.
    [[nodiscard]] double FontSize() const { return font().pixelSize() * kPointsPerPixel; }
    void setFontSize(double points);

protected:
    /// A label that sizes itself takes the place, not the size.
    void place(const QRect& where) override { m_autoSize ? move(where.topLeft()) : setGeometry(where); }
    void paintEvent(QPaintEvent* event) override;

private:
    static constexpr double kPointsPerPixel = 0.75;
    void changeFont(const QFont& font);
    void fitText();

    QString m_caption;
    SkinColour m_colour = 0;
    int m_alignment = 0;
    bool m_autoSize = false;
};

} // namespace skin
