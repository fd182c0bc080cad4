#pragma once

#include <QDBusVariant>
#include <QObject>

namespace platform
{

/// What the desktop's settings ask of every program for those who see less well: by the portal's settings
/// (org.freedesktop.appearance, and GNOME's own where there is no other). Without a bus nothing is asked for.
class Appearance : public QObject
{
    Q_OBJECT
public:
    explicit Appearance(QObject* parent = nullptr);
    [[nodiscard]] bool wantsHighContrast() const { return m_highContrast; }
    /// How much larger than usual texts are to be, where the window system does not see to it itself.
    [[nodiscard]] double textScale() const { return m_textScale; }

signals:
    void changed();

private slots:
    // Called by the bus.
    void settingChanged(const QString& group, const QString& key, const QDBusVariant& value);

private:
    void ask(const QString& group, const QString& key);
    void take(const QString& group, const QString& key, const QVariant& value);

    bool m_highContrast = false;
    double m_textScale = 1;
};

} // namespace platform
