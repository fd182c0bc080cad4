// The part of a desktop's portal that the player asks: dialogs for files and the user's settings. What is
// asked is written to the standard output, a call to a line; what a dialog answers and how settings change is
// read from the standard input:
//   answer ADDRESS            the file that the next dialogs give back
//   set GROUP KEY TYPE VALUE  a setting has changed; TYPE is u (a number), d (a fraction) or b
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QMap>
#include <QSocketNotifier>
#include <QTimer>

#include <iostream>
#include <string>

namespace
{

constexpr const char* kService = "org.freedesktop.portal.Desktop";
constexpr const char* kPath = "/org/freedesktop/portal/desktop";
constexpr const char* kSettings = "org.freedesktop.portal.Settings";
constexpr const char* kFileChooser = "org.freedesktop.portal.FileChooser";

class Portal : public QDBusVirtualObject
{
public:
    QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override
    {
        const QVariantList arguments = message.arguments();
        if (message.member() == "Get") {
            constexpr uint kVersion = 3;
            return bus.send(message.createReply(QVariant::fromValue(QDBusVariant(kVersion))));
        }
        if (message.interface() == kSettings && message.member() == "Read") {
            const auto found =
                m_settings.find(arguments.value(0).toString() + ' ' + arguments.value(1).toString());
            if (found == m_settings.end())
                return bus.send(
                    message.createErrorReply("org.freedesktop.portal.Error.NotFound", "no such setting"));
            // In two envelopes, as portals do it.
            const QDBusVariant inner(*found);
            return bus.send(
                message.createReply(QVariant::fromValue(QDBusVariant(QVariant::fromValue(inner)))));
        }
        if (message.interface() == kFileChooser) {
            std::cout << message.member().toStdString() << ' ' << arguments.value(1).toString().toStdString()
                      << std::endl;
            const QString request =
                "/org/freedesktop/portal/desktop/request/" + QString::number(++m_requests);
            bus.send(message.createReply(QVariant::fromValue(QDBusObjectPath(request))));
            constexpr int kChoosingMs = 300;
            QTimer::singleShot(kChoosingMs, this, [this, bus, request] {
                QDBusMessage response =
                    QDBusMessage::createSignal(request, "org.freedesktop.portal.Request", "Response");
                response << uint(m_answer.isEmpty() ? 1 : 0) << QVariantMap{{"uris", QStringList{m_answer}}};
                bus.send(response);
            });
            return true;
        }
        return bus.send(message.createErrorReply(QDBusError::UnknownMethod, message.member()));
    }

    void obey(const QStringList& words)
    {
        if (words.value(0) == "answer") m_answer = words.value(1);
        if (words.value(0) != "set") return;
        const QString type = words.value(3), value = words.value(4);
        const QVariant setting = type == "u"   ? QVariant(value.toUInt())
                                 : type == "d" ? QVariant(value.toDouble())
                                               : QVariant(value == "true");
        m_settings[words.value(1) + ' ' + words.value(2)] = setting;
        QDBusMessage changed = QDBusMessage::createSignal(kPath, kSettings, "SettingChanged");
        changed << words.value(1) << words.value(2) << QVariant::fromValue(QDBusVariant(setting));
        QDBusConnection::sessionBus().send(changed);
    }

private:
    QMap<QString, QVariant> m_settings; ///< by "group key"
    QString m_answer;
    int m_requests = 0;
};

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    Portal portal;
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.registerVirtualObject(kPath, &portal, QDBusConnection::SubPath) ||
        !bus.registerService(kService)) {
        std::cerr << "the bus does not take a portal\n";
        return 1;
    }
    QSocketNotifier input(0, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &application, [&portal] {
        std::string line;
        if (!std::getline(std::cin, line)) return QCoreApplication::quit();
        portal.obey(QString::fromStdString(line).split(' '));
    });
    std::cout << "ready" << std::endl;
    return QCoreApplication::exec();
}
