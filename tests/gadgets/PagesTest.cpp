// Each NAME.json here holds cases for the page NAME.swf:
//   "query" of all cases, and of a case: parameters, encoded as the host encodes texts
//   "plain": parameters that stand in the address as they are
//   "events" of a case: "wait FRAMES", "key CODE [times]", "move X Y", "click X Y", "press X Y", "release X
//   Y",
//                       "wheel LINES"
//   "commands": what the page sends, in order, each "NAME ARGUMENT"
//   "picture": the frame that NAME-CASE.png beside it shows; look at it before you accept it
// In all of them "{cache}" is a folder with thumbnails.

#include "Tools.h"
#include "media/MovieHeader.h"
#include "media/UrlEncode.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace
{

using namespace tools;

constexpr int kMinFrames = 20;

QString pageFile(const QString& page) { return QString(GADGETS_DIR "/") + page + ".swf"; }

/// The pictures that the browser's page is asked to show; one of them is damaged.
void makeThumbnails(const QString& folder)
{
    const struct {
        const char* name;
        QSize size;
        QColor color;
    } pictures[] = {{"#m#a.swf.jpg", {160, 120}, {0xF2, 0xA9, 0x3B}},
                    {"#m#50% a?b #1+.swf.jpg", {320, 80}, {0x7F, 0xA6, 0xE0}},
                    {"#m#Кино.exe.jpg", {60, 120}, {0xEE, 0xEE, 0xFF}},
                    {"elsewhere.jpg", {64, 64}, {0x50, 0xB0, 0x70}}};
    for (const auto& picture : pictures) {
        QImage image(picture.size, QImage::Format_RGB32);
        image.fill(picture.color);
        ASSERT_TRUE(image.save(folder + "/" + picture.name, "JPEG", 95));
    }
    QFile damaged(folder + "/#m#damaged.swf.jpg");
    ASSERT_TRUE(damaged.open(QIODevice::WriteOnly));
    damaged.write("\xFF\xD8\xFF\xE0 and no more");
}

/// @returns the events as flashrun's --input takes them, and adds the frames that they take.
QJsonArray inputOf(const QJsonArray& events, int& frames)
{
    QJsonArray input;
    const auto add = [&](const char* type, QJsonObject event) {
        event["type"] = type;
        input.append(event);
    };
    const auto wait = [&](int count) {
        for (int i = 0; i < count; ++i) add("Wait", {});
        frames += count;
    };
    for (const QJsonValue& value : events) {
        const QStringList words = value.toString().split(' ');
        const QString what = words[0];
        const QJsonArray at{words.value(1).toDouble(), words.value(2).toDouble()};
        if (what == "wait") {
            wait(words.value(1).toInt());
        } else if (what == "key") {
            for (int times = words.value(2, "1").toInt(); times > 0; --times) {
                add("KeyDown", {{"key_code", words.value(1).toInt()}});
                wait(1);
                add("KeyUp", {{"key_code", words.value(1).toInt()}});
            }
        } else if (what == "wheel") {
            add("MouseWheel", {{"lines", words.value(1).toDouble()}});
            wait(1);
        } else {
            EXPECT_TRUE(QStringList({"move", "click", "press", "release"}).contains(what))
                << what.toStdString();
            add("MouseMove", {{"pos", at}});
            if (what == "press" || what == "click") add("MouseDown", {{"pos", at}, {"btn", "Left"}});
            if (what == "release" || what == "click") add("MouseUp", {{"pos", at}, {"btn", "Left"}});
            wait(1);
        }
    }
    return input;
}

class PageCase : public testing::Test
{
public:
    PageCase(QString page, QJsonObject common, QJsonObject own)
        : m_page(std::move(page)), m_common(std::move(common)), m_case(std::move(own))
    {
    }

    void TestBody() override
    {
        ASSERT_NO_FATAL_FAILURE(makeThumbnails(m_folder.path()));
        int frames = kMinFrames;
        const QString inputFile = m_folder.filePath("input.json");
        QFile input(inputFile);
        ASSERT_TRUE(input.open(QIODevice::WriteOnly));
        input.write(QJsonDocument(inputOf(m_case["events"].toArray(), frames)).toJson());
        input.close();
        const QString movie = pageFile(m_page) + query();
        const QStringList options{"--base-dir", m_folder.path(), "--input", inputFile};

        const Outcome played =
            run(tool("flashrun"),
                QStringList{"trace", movie, "--frames", QString::number(frames), "--fscommands", "show"} +
                    options,
                m_folder.path());
        EXPECT_EQ(played.status, 0) << played.err.toStdString();
        QStringList told;
        QByteArray done = splitOff(played.out, told), expected;
        for (const QJsonValue& command : m_case["commands"].toArray())
            expected += "fscommand: " + command.toString().toUtf8() + "\n";
        EXPECT_EQ(comparable(done).toStdString(), comparable(expected).toStdString());
        for (const QJsonValue& item : m_case["told"].toArray())
            EXPECT_TRUE(told.contains(item.toString())) << item.toString().toStdString() << " is not among\n"
                                                        << told.join('\n').toStdString();
        if (m_case.contains("picture")) checkPicture(movie, options);
    }

private:
    /// What the page told of its items, as "kind name left,top", or of the item with the keyboard, is no
    /// command that does something. @returns the rest of the trace
    static QByteArray splitOff(const QByteArray& trace, QStringList& told)
    {
        QByteArray rest;
        for (const QByteArray& line : trace.split('\n')) {
            QString text = QString::fromUtf8(line);
            const bool isFirst = text.startsWith("fscommand: MEOWITEMS ");
            if (text.startsWith("fscommand: MEOWFOCUS ")) {
                told << text.remove("fscommand: ");
                continue;
            }
            if (isFirst) text.remove("fscommand: MEOWITEMS ");
            const QStringList fields = text.split('\t');
            if (fields.size() == 6)
                told << fields[0] + ' ' + fields[5] + ' ' + fields[1] + ',' + fields[2];
            else if (!isFirst && !line.isEmpty())
                rest += line + '\n';
        }
        return rest;
    }

    [[nodiscard]] QString query() const
    {
        QStringList parameters;
        for (const QJsonObject& given : {m_common, m_case}) {
            const QJsonObject encoded = given["query"].toObject(), plain = given["plain"].toObject();
            for (auto it = encoded.begin(); it != encoded.end(); ++it)
                parameters << it.key() + "=" + media::URLEncode(filledIn(it.value().toString()));
            for (auto it = plain.begin(); it != plain.end(); ++it)
                parameters << it.key() + "=" + filledIn(it.value().toString());
        }
        return "?" + parameters.join('&');
    }
    [[nodiscard]] QString filledIn(QString text) const { return text.replace("{cache}", m_folder.path()); }

    void checkPicture(const QString& movie, const QStringList& options) const
    {
        const QString picture = m_folder.filePath("picture.png");
        const Outcome drawn = run(tool("flashrun"),
                                  QStringList{"render", movie, "--frame",
                                              QString::number(m_case["picture"].toInt()), "--out", picture} +
                                      options,
                                  m_folder.path());
        ASSERT_EQ(drawn.status, 0) << drawn.err.toStdString();
        const QString expected = QString(TEST_SOURCE_DIR "/") + m_page + "-" +
                                 m_case["name"].toString().replace(' ', '-') + ".png";
        // Another edition of the font may draw a letter a little differently.
        constexpr int kTolerance = 8, kOutliers = 400;
        EXPECT_EQ(differenceOf(picture, expected, kTolerance, kOutliers), "");
    }

    QString m_page;
    QJsonObject m_common, m_case;
    QTemporaryDir m_folder;
};

/// The player takes size and background of a movie from its first bytes, without looking what they are.
TEST(Pages, TellThePlayerSizeAndBackground)
{
    const struct {
        const char* page;
        int width, height;
    } pages[] = {{"welcome", 640, 440}, {"browse", 640, 440}, {"about", 400, 320}};
    for (const auto& page : pages) {
        SCOPED_TRACE(page.page);
        const QByteArray bytes = fileBytes(pageFile(page.page));
        ASSERT_GT(bytes.size(), 26);
        EXPECT_EQ(bytes.left(3), "FWS") << "a compressed page costs a copy of its header in the cache";
        const auto* body = reinterpret_cast<const std::uint8_t*>(bytes.constData()) + 8;
        const auto header = media::readFrameHeader(base::Bytes(body, 18));
        ASSERT_TRUE(header);
        EXPECT_EQ(header->width, page.width);
        EXPECT_EQ(header->height, page.height);
        EXPECT_EQ(header->background, "16202E");
    }
}

/// The sound page over a movie that watches the sound of everything.
TEST(Pages, SoundReachesWhatPlays)
{
    QTemporaryDir folder;
    ASSERT_TRUE(QFile::copy(pageFile("sound"), folder.filePath("sound.swf")));
    QFile script(folder.filePath("listener.as"));
    ASSERT_TRUE(script.open(QIODevice::WriteOnly));
    script.write(R"(// movie: version="6" rate="50"
var all = new Sound(), step = 0;
all.setVolume(80);
all.setPan(7);
var queries = ["?volume=30&pan=-40", "?volume=0&pan=0", "?volume=250&pan=-1000", "?volume=60", "?pan=50", "",
               "?volume=abc&pan="];
onEnterFrame = function() {
  if (step % 5 == 0 && step / 5 < queries.length) loadMovieNum("sound.swf" + queries[step / 5], 6000);
  if (step % 5 == 4) trace(all.getVolume() + " " + all.getPan());
  step++;
};
)");
    script.close();
    const QString movie = folder.filePath("listener.swf");
    const Outcome compiled = run(tool("swfc"), {script.fileName(), "-o", movie}, folder.path());
    ASSERT_EQ(compiled.status, 0) << compiled.err.toStdString();
    const Outcome played = run(tool("flashrun"), {"trace", movie, "--frames", "36"}, folder.path());
    EXPECT_EQ(comparable(played.out).toStdString(), "30 -40\n0 0\n100 -100\n60 -100\n60 50\n60 50\n60 50");
}

void registerCases(const QString& page)
{
    const auto document = QJsonDocument::fromJson(fileBytes(QString(TEST_SOURCE_DIR "/") + page + ".json"));
    const QJsonObject common = document.object();
    for (const QJsonValue& value : common["cases"].toArray()) {
        const QJsonObject own = value.toObject();
        const std::string name = own["name"].toString().replace(' ', '_').replace('-', '_').toStdString();
        testing::RegisterTest(("Page_" + page.toStdString()).c_str(), name.c_str(), nullptr, nullptr,
                              __FILE__, __LINE__,
                              [=]() -> PageCase* { return new PageCase(page, common, own); });
    }
}

/// A file of cases that cannot be read would be a test that passes.
TEST(Pages, HaveCases)
{
    for (const char* page : {"welcome", "about", "browse"}) {
        QJsonParseError error;
        QJsonDocument::fromJson(fileBytes(QString(TEST_SOURCE_DIR "/") + page + ".json"), &error);
        EXPECT_EQ(error.error, QJsonParseError::NoError)
            << page << ".json at byte " << error.offset << ": " << error.errorString().toStdString();
    }
}

} // namespace

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    for (const char* page : {"welcome", "about", "browse"}) registerCases(page);
    return RUN_ALL_TESTS();
}
