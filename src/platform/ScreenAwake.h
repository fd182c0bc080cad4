#pragma once

#include <QObject>
#include <QString>
#include <QTimer>

namespace platform
{

/// Keeps the screen from going dark while it is on: by the desktop's service for that, and on X11 by the
/// display itself where there is no such service.
class ScreenAwake : public QObject
{
    Q_OBJECT
public:
    explicit ScreenAwake(QObject* parent = nullptr);
    ~ScreenAwake() override;

    /// @param reason shown by desktops that list who keeps them awake
    void setAwake(bool awake, const QString& product = {}, const QString& reason = {});

private:
    void ask(const QString& product, const QString& reason);
    void release();

    bool m_isAwake = false;
    bool m_hasCookie = false;
    uint m_cookie = 0; ///< the service's receipt
    int m_asked = 0;   ///< which asking an answer belongs to
    QTimer m_poke;
};

} // namespace platform
