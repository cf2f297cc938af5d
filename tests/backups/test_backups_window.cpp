#include "backups/LibraryBackups.h"
#include "backups/backup_words.h"
#include "backups/frmBackups.h"
#include "library/Library.h"
#include "support/gui.h"
#include "support/test_services.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QThread>
#include <QTimer>
#include <QTreeWidget>

#include <gtest/gtest.h>

namespace varnholt::test {
namespace {

using namespace Qt::StringLiterals;

constexpr std::int64_t hourMs = 3'600'000;

class BackupsWindow : public testing::Test, protected TestWorld
{
protected:
    BackupsWindow()
    {
        library.addGenerated(u"Maths"_s, 2, 2, 2, true);
        owner.open();
        EXPECT_EQ(backups.begin(), QString());
    }
    void open()
    {
        window = std::make_unique<frmBackups>(services, backups);
        present(*window);
        window->setFocus();
        list = control<QTreeWidget>(window.get(), "lstBackups");
    }
    /// In the list, also after a progress bar has taken the window's place.
    void press(Qt::Key key)
    {
        present(*window);
        QTest::keyClick(list, key);
    }
    std::string rows() const
    {
        QStringList lines;
        for (int row = 0; row < list->topLevelItemCount(); ++row) {
            QStringList cells;
            for (const int column : {1, 2, 4}) {
                cells.append(list->topLevelItem(row)->text(column));
            }
            lines.append(cells.join(u'/'));
        }
        return lines.join(u' ').toStdString();
    }
    std::string text(const char* label) const
    {
        return control<QLabel>(window.get(), label)->text().toStdString();
    }
    bool enabled(const char* button) const
    {
        return control<QPushButton>(window.get(), button)->isEnabled();
    }
    QString questions() { return library.sql(u"SELECT * FROM Questions"_s).join(u'\n'); }
    void expectRestore(std::int64_t made, const QString& does, bool answer)
    {
        messages.expectYesNo(
            u"Restore?"_s,
            u"When you restore the backup \"%1\":\n\n%2\n\nToday's library is backed up first, so "
            "that you can come back to it."_s.arg(BackupWords::when(made, backups.now()), does),
            answer, MessageBoxes::Answer::Yes);
    }
    void closeProgram() { backups.makeAtClose(nullptr); }
    std::size_t count() { return backups.store().list().size(); }

    Library owner{library.folder(), clock};
    LibraryBackups backups{services, owner};
    std::unique_ptr<frmBackups> window;
    QTreeWidget* list = nullptr;
};

TEST_F(BackupsWindow, BacksUpAndRestoresByTheKeyboard)
{
    open();
    EXPECT_TRUE(control<QPushButton>(window.get(), "cmdBackUpNow")->hasFocus());
    EXPECT_FALSE(list->isVisible());
    EXPECT_FALSE(enabled("cmdRestore"));
    const std::int64_t made = backups.now();
    const QString before = questions();
    QTest::keyClick(control<QPushButton>(window.get(), "cmdBackUpNow"), Qt::Key_Return);
    EXPECT_EQ(rows(), "8//");
    EXPECT_EQ(text("lblNote"), "The backup is made.");

    owner.deleteQuestion(1);
    owner.deleteQuestion(2);
    owner.editQuestion(3, 1, 2, u"other"_s);
    const auto added = owner.addQuestion({1, 1, 1}, u"newer"_s, [](const QString& path) {
        testPicture({40, 30}).save(path, "JPG");
    });
    const QString changed = questions();
    clock.now += 25 * hourMs;
    open();
    EXPECT_TRUE(list->hasFocus());
    QSignalSpy told(&owner, &Library::changed);
    const QString does = u"2 questions come back.\n1 answer changes.\n1 newer question goes to the "
                         "trash."_s;
    expectRestore(made, does, false);
    press(Qt::Key_Return);
    EXPECT_EQ(questions(), changed);
    EXPECT_TRUE(told.isEmpty());
    expectRestore(made, does, true);
    press(Qt::Key_Return);
    EXPECT_EQ(questions().left(before.size()), before);
    EXPECT_EQ(library.value(u"SELECT Available FROM Questions WHERE SOLIndex = %1"_s.arg(added)),
              u"0");
    EXPECT_EQ(told.size(), 1);
    EXPECT_EQ(rows(), "7/1/ 8//") << "the state before is backed up";
    EXPECT_TRUE(list->topLevelItem(0)->text(0).startsWith(u"Today "));
    EXPECT_TRUE(list->topLevelItem(1)->text(0).startsWith(u"Yesterday "));
    EXPECT_EQ(text("lblNote").find("The library is as it was: Yesterday "), 0U);

    list->setCurrentItem(list->topLevelItem(0));
    expectRestore(backups.now(),
                  u"1 question comes back.\n1 answer changes.\n2 questions that had "
                  "been brought back go to the trash again."_s,
                  true);
    click(window.get(), "cmdRestore");
    EXPECT_EQ(questions(), changed);
}

TEST_F(BackupsWindow, FillsTheSecondPlaceAndRestoresFromThere)
{
    const QString place = library.folder() + u"-stick"_s;
    QDir().mkpath(place);
    const QString title = u"folder Also Copy Backups To|"_s;
    files.answers = {std::nullopt, library.folder() + u"/Files"_s, place};
    open();
    click(window.get(), "cmdBackUpNow");
    click(window.get(), "cmdChoose");
    messages.expectInform(u"Backups"_s, u"That folder is the question library's own. Please choose "
                                        "one on another disk or a stick."_s);
    click(window.get(), "cmdChoose");
    auto* shown = control<QLineEdit>(window.get(), "txtPlace");
    auto* stores = control<QComboBox>(window.get(), "cboStore");
    EXPECT_TRUE(shown->text().isEmpty());
    EXPECT_FALSE(stores->isVisible());
    click(window.get(), "cmdChoose");
    EXPECT_EQ(files.calls, (std::vector<QString>{title, title, title}));
    EXPECT_EQ(shown->text(), QDir::toNativeSeparators(place));
    EXPECT_EQ(text("lblCopied").find("Last copied: Today "), 0U);
    // What is beside the library is lost, the stick is not.
    const QString before = questions();
    owner.deleteQuestion(8);
    const QString id = backups.store().list().front().id;
    QFile::remove(backups.store().folder() + u'/' + id + u".mdb"_s);
    QTest::keyClick(stores, Qt::Key_Down);
    EXPECT_EQ(rows(), "8//");
    expectRestore(backups.now(), u"1 question comes back."_s, true);
    click(window.get(), "cmdRestore");
    EXPECT_EQ(questions(), before);

    // At the next close; and not when it is pulled out, which is said.
    owner.deleteQuestion(7);
    clock.now += 2 * hourMs;
    closeProgram();
    EXPECT_EQ(BackupStore::storesAt(place).at(0).list().size(), 2U);
    QDir(place).removeRecursively();
    owner.deleteQuestion(6);
    clock.now += 2 * hourMs;
    closeProgram();
    open();
    EXPECT_NE(text("lblCopied").find("The folder is not there just now"), std::string::npos);
    click(window.get(), "cmdNone");
    EXPECT_TRUE(control<QLineEdit>(window.get(), "txtPlace")->text().isEmpty());
    EXPECT_EQ(backups.secondPlace().folder, QString());
}

TEST_F(BackupsWindow, MarksWhatIsDamagedAndOffersTheNewestGoodOne)
{
    backups.make(nullptr, QString());
    clock.now += hourMs;
    owner.deleteQuestion(8);
    backups.make(nullptr, QString());
    open();
    EXPECT_EQ(rows(), "7/0/ 8//");
    list->setFocus();
    click(window.get(), "cmdCheckFiles");
    EXPECT_EQ(text("lblNote"), "Every file of this backup is as it was.");
    QFile file(backups.store().folder() + u'/' + backups.store().newestId() + u".mdb"_s);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite) && file.seek(3000) && file.write("x") == 1);
    file.close();
    click(window.get(), "cmdCheckFiles");
    EXPECT_EQ(rows(), "8// //Damaged");
    EXPECT_EQ(text("lblNote"), "1 file of this backup is damaged; the next backup puts a good one "
                               "there if the library has it.");
    press(Qt::Key_Up);
    EXPECT_TRUE(enabled("cmdRestore"));
    press(Qt::Key_Down);
    EXPECT_FALSE(enabled("cmdRestore"));
    press(Qt::Key_Return);
    EXPECT_EQ(text("lblNote"), "This backup is damaged: a part of it is missing or not as it was.");
}

TEST_F(BackupsWindow, ClosingMakesOneAnHourAfterAChangeAndGoesOnWhateverHappens)
{
    closeProgram();
    EXPECT_FALSE(QFile::exists(backups.store().folder())) << "nothing has changed";
    owner.deleteQuestion(1);
    closeProgram();
    EXPECT_EQ(count(), 1U);
    owner.deleteQuestion(2);
    closeProgram();
    EXPECT_EQ(count(), 1U);
    clock.now += hourMs + 1000;
    // The change is remembered by the library, not by the program.
    LibraryBackups(services, owner).makeAtClose(nullptr);
    EXPECT_EQ(count(), 2U);
    clock.now += 9 * hourMs;
    closeProgram();
    EXPECT_EQ(count(), 2U);
    // Before an import there is always one; where there can be none she decides.
    EXPECT_TRUE(backups.makeBefore(nullptr));
    EXPECT_EQ(count(), 3U);
    const QString pool = backups.store().folder() + u"/Pictures"_s;
    QDir(pool).removeRecursively();
    QFile blocking(pool);
    ASSERT_TRUE(blocking.open(QIODevice::WriteOnly));
    blocking.close();
    owner.deleteQuestion(3);
    clock.now += 2 * hourMs;
    QString reason;
    try {
        backups.make(nullptr, QString());
    } catch (const Error& error) {
        reason = error.message();
    }
    messages.expectInform(u"Backups"_s, u"The question library could not be backed up: %1\n\nThe "
                                        "library itself is saved. The next try is made when you "
                                        "close Varnholt again."_s.arg(reason));
    closeProgram();
    for (const bool goOn : {false, true}) {
        messages.expectYesNo(u"Backups"_s,
                             u"The question library could not be backed up first: %1\n\nDo you "
                             "want to go on without a backup?"_s.arg(reason),
                             goOn);
        EXPECT_EQ(backups.makeBefore(nullptr), goOn);
    }
    messages.verify();
    QFile::remove(pool);
    // Nor are tables brought up without one.
    std::vector<QString> scripts = PlusTables::ownScripts();
    scripts.push_back(u"CREATE TABLE PlusMore (A)"_s);
    Library newer(library.folder(), clock, scripts);
    newer.open();
    LibraryBackups ofNewer(services, newer);
    EXPECT_EQ(ofNewer.begin(), QString());
    newer.deleteQuestion(4);
    EXPECT_EQ(count(), 4U);
    newer.close();
    // A second program only reads and makes none.
    owner.open(Connection::Access::ReadOnly);
    closeProgram();
    open();
    for (const char* button : {"cmdBackUpNow", "cmdRestore", "cmdChoose", "cmdNone"}) {
        EXPECT_FALSE(enabled(button)) << button;
        EXPECT_EQ(control<QPushButton>(window.get(), button)->toolTip(), owner.features().reason);
    }
}

TEST(BackgroundWork, IsStoppedByTheUserAndHandsOnWhatItThrows)
{
    QTimer patience;
    QObject::connect(&patience, &QTimer::timeout, [] {
        if (QWidget* bar = QApplication::activeModalWidget()) {
            QTest::keyClick(bar, Qt::Key_Escape);
        }
    });
    patience.start(20);
    const auto endless = [](const WorkProgress& progress) {
        for (std::size_t i = 0;; ++i) {
            progress(i % 7, i % 2 ? 7 : 0);
            QThread::msleep(1);
        }
    };
    EXPECT_THROW(RunInBackground(nullptr, u"…"_s, LongWork::Cancel::Offered, endless), Cancelled);
    const auto failing = [](const WorkProgress&) { throw Error(u"full"_s); };
    EXPECT_THROW(RunInBackground(nullptr, {}, LongWork::Cancel::Offered, failing), Error);
}

} // namespace
} // namespace varnholt::test
