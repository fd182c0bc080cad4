#include "player/PageQueue.h"

#include "QtPrint.h"
#include "player/MovieJournal.h"

#include <QApplication>
#include <QElapsedTimer>
#include <gtest/gtest.h>

#include <functional>

namespace player
{
namespace
{

class Queue : public testing::Test, public PageQueueHost
{
protected:
    bool isOccupied() const override { return occupied; }
    bool isOnScreen() const override { return onScreen; }
    bool hasEnded() const override { return ended; }
    PageOutcome carryOut(const PageRequest& request) override
    {
        const bool notes = request.effect() == PageEffect::Notes;
        EXPECT_TRUE(notes || depth == 0) << "one inside another";
        ++depth;
        done += (request.isAddress ? "url" : request.command) + ' ' + request.argument;
        if (whenDone) whenDone();
        --depth;
        return outcome;
    }
    void noteOfMovie(const QString& text) override { notes += text; }

    static PageRequest movie(const QString& command, const QString& argument = {}, quint64 act = 0)
    {
        return {command, argument, {"/movies/a.swf", false, false, act}};
    }
    static PageRequest page(const QString& command, const QString& argument = {})
    {
        return {command, argument, {"/gadgets/p.swf", true, false, 0}};
    }
    static PageRequest address(quint64 act = 0)
    {
        return {{}, "http://example.com/", {"/movies/a.swf", false, false, act}, true};
    }
    QStringList ask(const PageRequest& request, int times = 1)
    {
        done.clear();
        for (int i = 0; i < times; ++i) queue.put(request);
        settle();
        return done;
    }
    static void settle()
    {
        for (int i = 0; i < 200; ++i) QApplication::processEvents();
    }
    bool occupied = false, onScreen = true, ended = false;
    int depth = 0;
    QStringList done, notes;
    std::function<void()> whenDone;
    PageOutcome outcome = PageOutcome::Done;
    PageQueue queue{*this};
};

TEST_F(Queue, RunsNothingInsideAnything)
{
    queue.put(page("MEOWSEL", "1"));
    EXPECT_TRUE(done.isEmpty()) << "not before the one who asks is done";
    whenDone = [this] {
        if (done.size() < 50) queue.put(page("MEOWSEL", "again"));
    };
    settle();
    EXPECT_EQ(done.size(), 50);
    EXPECT_EQ(done.first(), "MEOWSEL 1");
}

TEST_F(Queue, OpensNothingForAMovieWithoutTheUsersAct)
{
    for (const char* command : {"MEOWOPEN", "MEOWHELP", "MEOWUPDATE", "MEOWSEARCH", "MEOWBROWSE",
                                "MeowNextPage", "MEOWBACKPAGE", "MEOWLASTPAGE", "MEOWFIRSTPAGE"}) {
        SCOPED_TRACE(command);
        notes.clear();
        EXPECT_TRUE(ask(movie(command), 100).isEmpty());
        EXPECT_LE(notes.size(), 2) << "each reason is written down once";
    }
    EXPECT_TRUE(ask(movie("FULLSCREEN", "true")).isEmpty());
    EXPECT_TRUE(ask(movie("fullscreen", "1")).isEmpty());
    EXPECT_TRUE(ask(movie("fullscreen", "no number")).isEmpty());
    EXPECT_EQ(ask(movie("MEOWLOG", "x"), 3).size(), 3) << "notes are thinned elsewhere";
    EXPECT_EQ(ask(page("MEOWOPEN")), QStringList{"MEOWOPEN "}) << "our own pages may";
}

TEST_F(Queue, TakesOneActForOneWish)
{
    EXPECT_EQ(ask(movie("MEOWOPEN", {}, 7), 5).size(), 1);
    EXPECT_EQ(ask(movie("MEOWHELP", {}, 7)).size(), 0) << "it is used up";
    EXPECT_EQ(ask(movie("MEOWHELP", {}, 6)).size(), 0) << "and so is an older one";
    EXPECT_EQ(ask(movie("MEOWHELP", {}, 8)).size(), 1);
    EXPECT_EQ(ask(movie("FULLSCREEN", "false", 9)).size(), 1);
    EXPECT_EQ(ask(movie("FULLSCREEN", "true", 9)).size(), 1) << "giving the screen back is no wish";
}

TEST_F(Queue, DoesNotAskAgainWhatWasRefused)
{
    outcome = PageOutcome::Declined;
    EXPECT_EQ(ask(movie("MEOWOPEN", {}, 1)).size(), 1);
    EXPECT_EQ(ask(movie("MeowOpen", {}, 2)).size(), 0);
    EXPECT_EQ(ask(address(3)).size(), 1);
    EXPECT_EQ(ask(address(4)).size(), 0);
    EXPECT_EQ(ask(movie("EXEC", "other", 5)).size(), 0) << "one way out is like another";
    EXPECT_EQ(ask(movie("MEOWHELP", {}, 6)).size(), 1);
    queue.refuse("FULLSCREEN");
    EXPECT_EQ(ask(movie("FullScreen", "true", 7)).size(), 0);
    EXPECT_EQ(ask(page("MEOWOPEN")).size(), 1);
    EXPECT_EQ(ask(page("MEOWOPEN")).size(), 1) << "in a page of ours the user clicks again";
    EXPECT_TRUE(queue.movieOpened());
    EXPECT_EQ(ask(movie("MEOWOPEN", {}, 8)).size(), 1);
    EXPECT_EQ(ask(movie("FULLSCREEN", "true", 9)).size(), 1);
}

TEST_F(Queue, LetsAMovieAskOnceOfItsOwnAccord)
{
    EXPECT_EQ(ask(address(), 50).size(), 1);
    EXPECT_EQ(ask(movie("EXEC", "x")).size(), 0);
    EXPECT_EQ(ask(address(1), 2).size(), 1);
    (void)queue.movieOpened();
    EXPECT_EQ(ask(address()).size(), 1);
}

TEST_F(Queue, AMovieThatLoadsItselfComesToAnEnd)
{
    bool anew = false;
    whenDone = [&] {
        anew = anew || queue.movieOpened();
        queue.put(movie("MEOWSEL", "/movies/a.swf"));
    };
    EXPECT_EQ(ask(movie("MEOWSEL", "/movies/a.swf")).size(), 5);
    EXPECT_FALSE(anew) << "only the user opens anew";
    whenDone = nullptr;
    EXPECT_EQ(ask(movie("MEOWSEL", "b", 1)).size(), 1) << "what the user clicks is loaded";
}

TEST_F(Queue, WaitsWhileADialogIsOpen)
{
    occupied = true;
    EXPECT_EQ(ask(movie("MEOWOPEN", {}, 1)).size(), 0);
    EXPECT_EQ(ask(movie("MEOWLOG", "x")).size(), 1);
    EXPECT_EQ(ask(movie("MEOWSEL", "b"), 1000).size(), 0);
    occupied = false;
    done.clear();
    QElapsedTimer waited;
    for (waited.start(); done.isEmpty() && waited.elapsed() < 2000;) QApplication::processEvents();
    settle();
    EXPECT_EQ(done.first(), "MEOWSEL b") << "what would have opened over the dialog is forgotten";
    EXPECT_LE(done.size(), 5);
    onScreen = false;
    EXPECT_EQ(ask(address(5)).size(), 0);
    onScreen = true;
    done.clear();
    for (waited.start(); done.isEmpty() && waited.elapsed() < 2000;) QApplication::processEvents();
    EXPECT_EQ(done.size(), 1) << "what came before the window is asked over it";
    ended = true;
    EXPECT_EQ(ask(page("MEOWSEL", "c")).size(), 0);
}

TEST(MovieJournal, KeepsUpWithNoFlood)
{
    qint64 now = 0;
    QStringList lines;
    MovieJournal journal([&](const QString& line) { lines += line; }, [&] { return now; });
    for (int i = 0; i < 10'000; ++i) journal.write(QString::number(i));
    EXPECT_EQ(lines.size(), MovieJournal::kLinesAtOnce);
    now += 1000;
    journal.write("later");
    EXPECT_EQ(lines.at(lines.size() - 2), "(9500 lines of the movie are left out)");
    EXPECT_EQ(lines.last(), "later");

    lines.clear();
    qsizetype written = 0;
    const QString longLine(100'000, 'x');
    for (int minute = 0; minute < 60; ++minute) {
        now += 60'000;
        for (int i = 0; i < 1000; ++i) journal.write(longLine);
    }
    for (const QString& line : lines) {
        EXPECT_LE(line.size(), MovieJournal::kLongestLine + 3);
        written += line.size();
    }
    EXPECT_LE(written, MovieJournal::kMaxCharacters + 2000);
    EXPECT_TRUE(lines.last().contains("filled its share"));
    journal.movieOpened();
    journal.write("another movie");
    EXPECT_EQ(lines.last(), "another movie");
}

} // namespace
} // namespace player
