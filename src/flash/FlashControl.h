#pragma once

#include <QList>
#include <QStringList>
#include <QWidget>

#include <functional>
#include <memory>
#include <optional>

namespace flash
{

/// The widget a host embeds: plays one movie, with further movies loaded into layers above it. Members in
/// PascalCase carry the names, numbering and defaults that hosts and their scripts know. Driven by the real
/// clock; costs nothing while nothing on the stage can change. Opens nothing by itself: addresses and
/// commands that leave the movie go out as signals.
class FlashControl : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(bool Playing READ Playing WRITE setPlaying)
    Q_PROPERTY(bool Loop READ Loop WRITE setLoop)
    Q_PROPERTY(int Quality READ Quality WRITE setQuality)
    Q_PROPERTY(QString Quality2 READ Quality2 WRITE setQuality2)
    Q_PROPERTY(int ScaleMode READ ScaleMode WRITE setScaleMode)
    Q_PROPERTY(QString BGColor READ BGColor WRITE setBGColor)
    Q_PROPERTY(int FrameNum READ FrameNum WRITE GotoFrame)
    Q_PROPERTY(int TotalFrames READ TotalFrames)
    Q_PROPERTY(int ReadyState READ ReadyState)
    Q_PROPERTY(int FlashVersion READ FlashVersion)
    Q_PROPERTY(QString Movie READ Movie WRITE setMovie)

public:
    explicit FlashControl(QWidget* parent = nullptr);
    ~FlashControl() override;
    FlashControl(const FlashControl&) = delete;
    FlashControl& operator=(const FlashControl&) = delete;

    /// Layer 0 replaces the movie; any other layer loads over it and leaves it playing. The movie on layer 0
    /// is shown on its first frame when the call returns.
    /// @param url a path or file: address, maybe with a query after its last "?", whose variables are set on
    ///            the layer's root before its first frame; an empty one unloads the layer.
    /// @returns whether a movie was loaded (or unloaded); why not is in errorText(). A layer whose movie
    ///          cannot be read keeps what it held.
    Q_INVOKABLE bool LoadMovie(int layer, const QString& url);
    Q_INVOKABLE void Play();
    /// Halts on the current frame.
    Q_INVOKABLE void Stop();
    /// One frame back and halts; from the first frame to the last.
    Q_INVOKABLE void Back();
    /// One frame on and halts; from the last frame to the first.
    Q_INVOKABLE void Forward();
    /// To the first frame and halts.
    Q_INVOKABLE void Rewind();
    /// @param frame counted from 0; out of range goes to the nearest frame. Halts there.
    Q_INVOKABLE void GotoFrame(int frame);
    Q_INVOKABLE void SetVariable(const QString& name, const QString& value);
    /// @returns the variable as text; empty when there is none.
    Q_INVOKABLE QString GetVariable(const QString& name) const;

    /// Whether the main timeline moves; false when nothing is loaded.
    [[nodiscard]] bool Playing() const;
    void setPlaying(bool playing);
    /// Whether a movie that reaches its last frame starts over; otherwise it halts there. On by default.
    [[nodiscard]] bool Loop() const;
    void setLoop(bool loop);
    /// How fast the movie's time goes, sounds in their own pitch: 0.1 to 10; 1 by default.
    [[nodiscard]] double speed() const;
    void setSpeed(double speed);
    /// 0 Low, 1 High, 2 AutoLow, 3 AutoHigh, 4 Medium, 5 Best. Other numbers are ignored.
    [[nodiscard]] int Quality() const;
    void setQuality(int quality);
    /// "Low", "Medium", "High", "AutoLow", "AutoHigh", "Best", taken without regard to case and reported in
    /// this spelling. Another name keeps the earlier quality.
    [[nodiscard]] QString Quality2() const;
    void setQuality2(const QString& name);
    /// 0 show all, 1 no border, 2 exact fit, 3 no scale. Other numbers are ignored.
    [[nodiscard]] int ScaleMode() const;
    void setScaleMode(int mode);
    /// Six hexadecimal digits, red, green, blue; a leading "#" is accepted. Anything else is ignored. What is
    /// set here holds over the movie's own colour until another movie is loaded into layer 0.
    [[nodiscard]] QString BGColor() const;
    /// @param color "RRGGBB"; empty: the movie's own, and that of the one which is loaded next
    void setBGColor(const QString& color);
    /// Of the main timeline, from 0; -1 when nothing is loaded.
    [[nodiscard]] int FrameNum() const;
    /// 0 when nothing is loaded.
    [[nodiscard]] int TotalFrames() const;
    /// 0 loading, 1 uninitialised, 2 loaded, 3 interactive, 4 complete.
    [[nodiscard]] int ReadyState() const;
    /// The player version it stands for: major version in the upper 16 bits, release in the lower; hosts show
    /// it in hexadecimal. 0x80018 is 8.0 release 24.
    [[nodiscard]] int FlashVersion() const;
    /// What layer 0 was loaded from, as given; empty when nothing is loaded.
    [[nodiscard]] QString Movie() const;
    void setMovie(const QString& url) { LoadMovie(0, url); }
    /// While a signal comes from a movie: what layer 0 held when the movie sent it, as Movie. Another movie
    /// may have taken its place since, by an earlier command of the same script.
    [[nodiscard]] QString senderMovie() const;
    /// While a signal comes from a movie: whether everything that runs was read from the folder of the host's
    /// own pages (setSharedFolder), at the time it was loaded. One movie from elsewhere, in any layer or clip
    /// or as a picture, and none of them is a page any more.
    [[nodiscard]] bool senderIsPage() const;
    /// While a signal comes from a movie: whether movies have read files that are no movies.
    [[nodiscard]] bool senderHasRead() const;
    /// While a signal comes from a movie: the number of the click or key that the user gave the movie within
    /// the second before; 0 when there was none. What movies do among themselves is no such act.
    [[nodiscard]] quint64 senderAct() const;
    /// Whether scripts run at this moment: what is called meanwhile does nothing to the movie, and no movie
    /// is loaded. Only seen from a handler that was asked about a script, and from what it lets through.
    [[nodiscard]] bool isBusy() const;
    /// For how long they have been running; 0 while none do.
    [[nodiscard]] qint64 busyForMs() const;
    /// Whether a movie that LoadMovie() took still works on its first frame. Only one in a process of its own
    /// lets anybody see it so.
    [[nodiscard]] bool isLoading() const;
    /// Whether the last LoadMovie() of layer 0 came to nothing because no process can be started for a movie.
    [[nodiscard]] bool lacksProcess() const;
    /// Whether the movie on layer 0 plays in a process of its own.
    [[nodiscard]] bool hasOwnProcess() const;
    /// The number of that process, for the journal; 0 when there is none.
    [[nodiscard]] qint64 processId() const;

    /// Whether calls wait, up to a fifth of a second, for a movie in a process of its own that is busy; they
    /// do. Otherwise they return at once and are done in their order, isBehind() until then: for whoever
    /// drives several movies at the same time.
    void setWaits(bool waits);
    /// Whether a movie takes over the process of the one before, where that lies in the same folder, so that
    /// both may read the same, and has behaved: for whoever looks at many movies for a moment each. No by
    /// default; then each movie begins in a fresh one.
    void setKeepsProcess(bool keeps);
    /// Whether something that was called is not done yet.
    [[nodiscard]] bool isBehind() const;
    /// Whether movies get processes of their own here.
    [[nodiscard]] static bool givesOwnProcesses();
    /// Starts a process for the next movie of any control, which is there as long as the result lives or
    /// until it is used. May be called before there is an application.
    [[nodiscard]] static std::shared_ptr<void> keepProcessReady();

    /// Why the last LoadMovie failed, English, for the log.
    [[nodiscard]] QString errorText() const;
    /// The movie's own size in pixels; empty when nothing is loaded.
    [[nodiscard]] QSize movieSize() const;
    [[nodiscard]] double frameRate() const; ///< frames a second; 0 when nothing is loaded

    /// Whether keys make a difference to the movie: a script looks at them or listens to them, a button or
    /// clip waits for one, or a text field is typed in. May change with every frame.
    [[nodiscard]] bool listensToKeys() const;

    /// Over everything that the movie itself sets. 0..1; 1 by default.
    void setMasterVolume(double volume);
    [[nodiscard]] double masterVolume() const;
    /// -1 (left only) to 1 (right only); 0 by default.
    void setMasterBalance(double balance);
    void setMuted(bool muted);
    [[nodiscard]] bool isMuted() const;

    /// Stops time, sound included, without touching the movie's state: for a window that is not shown.
    void setSuspended(bool suspended);

    /// Where shared objects are kept, one folder for each movie below it. Empty, the default: nothing is
    /// kept beyond the control's life.
    void setStorageFolder(const QString& folder);

    /// The 8-bit code in which movies before version 6 are read: "automatic", the default, looks at their own
    /// texts; otherwise a name such as "windows-1251" or "shift-jis". One that is not known stands for
    /// windows-1251. Takes effect with the next movie.
    void setTextCode(const QString& name);

    /// Whether a second thread may help with frames that take long to draw, where there is a second core. Not
    /// by default. Pixels are the same.
    void setSecondThread(bool may);

    /// Movies that lie in the folder `movies`, not below it, may also read from the folder `shared`, by full
    /// paths: for pages of the host's own. None by default; takes effect with the next movie.
    void setSharedFolder(const QString& movies, const QString& shared);

    /// Asked when a script has run for longer than its limit; true ends the script. Without a handler the
    /// script is ended.
    void setScriptTimeoutHandler(std::function<bool()> handler);

    /// Asked every few milliseconds while the movie's scripts run, and whenever they have taken much memory;
    /// true ends them for good. It may let events through: nothing that acts on the movie happens meanwhile.
    void setScriptWatch(std::function<bool()> watch);

    /// Whether movies may read and write the clipboard; they may.
    void setClipboardAllowed(bool allowed);

    /// The host is about to end: whatever a movie does in this process, a script in an endless loop too,
    /// stops within some milliseconds, and none opens here any more.
    void interrupt();

    /// Moves the movie on by that much of simulated time, unheard, suspended or not.
    void advance(double ms);

    /// What the movie adds to the host's menu of the right button.
    struct Menu {
        struct Item {
            /// All but a movie's own items have the host's captions.
            enum class Kind : quint8 { Own, Cut, Copy, Paste, Clear, SelectAll, OpenLink, CopyLink };
            Kind kind = Kind::Own;
            QString caption; ///< of one line
            bool separatorBefore = false, enabled = true;
        };
        quint32 id = 0;
        QList<Item> items; ///< in their order: 15 of the movie's own at most, then those for a text
    };
    /// The user asks for a menu: the movie hears of it and says what it adds. Empty when the movie is busy.
    /// @param at of this widget; nothing: the menu of what has the focus in the movie
    [[nodiscard]] Menu openMenu(std::optional<QPointF> at);
    /// Tells the movie. Nothing happens when its menu has ended meanwhile.
    /// @param item its place in the menu
    void chooseMenuItem(quint32 menu, int item);

    [[nodiscard]] QSize sizeHint() const override;

    /// The names of Quality2 in the order of Quality.
    [[nodiscard]] static QStringList qualityNames();

signals:
    /// The movie whose menu was opened last plays no more: nothing of it can be chosen.
    void menuEnded();
    void FSCommand(const QString& command, const QString& args);
    void OnReadyStateChange(int newState);
    void OnProgress(int percentDone);
    /// A movie asks for an address outside: getURL. `post` holds the body of a POST request, else null.
    void urlRequested(const QString& url, const QString& target, const QByteArray& post);
    /// The memory came to an end in the movie's hands. It is unloaded, and nothing is left of it.
    void ranOutOfMemory();
    /// The movie went beyond what it may use, and something was not done. English, once for each kind of
    /// thing; the log has it as well.
    void limitReached(const QString& what);
    /// The process that played `movie` (as Movie) has ended. It is unloaded.
    void crashed(const QString& movie);
    /// A movie that LoadMovie() took while it still worked on its first frame cannot be played after all. It
    /// is unloaded; errorText() says why.
    void refused(const QString& movie);
    /// The process that plays the movie does not answer (true), or answers again.
    void frozen(bool isFrozen);
    /// One call of the movie's trace().
    void traced(const QString& text);
    /// Something in the movie that is damaged or not supported, English, once for each kind.
    void logged(const QString& text);

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    [[nodiscard]] QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void unload(int layer);

    class Private;
    std::unique_ptr<Private> d;
};

} // namespace flash
