#include "app/SingleInstance.h"
#include "app/frmAssessment.h"
#include "app/library_wait.h"
#include "backups/backup_words.h"
#include "info/InfoWindow.h"
#include "selection/frmMain.h"
#include "support/gui.h"
#include "support/test_files.h"
#include "support/test_services.h"
#include "toolkit/ListBox.h"

#include <QAction>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QSignalSpy>
#include <QTimer>

#include <gtest/gtest.h>

namespace varnholt {
namespace {

using namespace Qt::StringLiterals;
using test::control;

constexpr int patienceMs = 60'000;
/// An index that leads elsewhere: rows disappear without an error.
const QString damage =
    u"PRAGMA writable_schema = ON; UPDATE sqlite_schema SET rootpage = (SELECT rootpage FROM "
    "sqlite_schema WHERE name = 'SubTopicsByAssessment') WHERE name = 'TopicsByAssessment'"_s;

class Frame : public testing::Test, protected test::TestWorld
{
protected:
    void open()
    {
        library.addGenerated(u"A"_s, 2, 1, 1);
        second = library.addGenerated(u"B"_s, 3, 1, 1);
        frame = std::make_unique<frmAssessment>(services, state, u"/guide.html"_s);
        test::present(*frame);
    }

    void choose(const char* entry) { control<QAction>(frame.get(), entry)->trigger(); }
    QString lastId() { return library.value(u"SELECT LastID FROM History"_s); }

    std::unique_ptr<frmAssessment> frame;
    std::int32_t second = 0;
};

TEST_F(Frame, OneChildAtATimeAndFreshEachTime)
{
    open();
    EXPECT_EQ(frame->windowTitle(), u"Varnholt");
    QStringList entries;
    for (const QAction* action : frame->menuBar()->actions()) {
        entries.append(action->objectName() + u' ' + action->text().remove(u'&'));
    }
    EXPECT_EQ(entries.join(u'|').toStdString(),
              "mnuCreate Create PowerPoints|mnuManageAssessments Manage Assessments|"
              "mnuExport Export Assessment|mnuImport Import Assessment|"
              "mnuTutorial Tutorial Videos|mnAbout About|mnuMore More");
    EXPECT_EQ(frame->childWindow(), nullptr);
    choose("mnuCreate");
    auto* list = control<ListBox>(frame.get(), "lstTopics");
    list->setAllSelected(false);
    EXPECT_TRUE(list->hasFocus());
    state.CurrentAssessmentNum = second;

    // Leaving remembers the assessment, coming back starts afresh on it.
    choose("mnAbout");
    EXPECT_NE(qobject_cast<frmAbout*>(frame->childWindow()), nullptr);
    EXPECT_EQ(frame->findChild<frmMain*>(), nullptr);
    EXPECT_EQ(lastId(), QString::number(second));
    choose("mnuCreate");
    EXPECT_EQ(frame->findChild<frmAbout*>(), nullptr);
    list = control<ListBox>(frame.get(), "lstTopics");
    EXPECT_EQ(list->listCount(), 3);
    EXPECT_TRUE(list->selected(0));

    choose("mnuTutorial");
    auto* link = control<QLineEdit>(frame.get(), "txtLink");
    EXPECT_TRUE(link->isReadOnly());
    EXPECT_EQ(link->text(), QDir::toNativeSeparators(u"/guide.html"_s));
    QTest::keyClick(frame.get(), Qt::Key_W, Qt::ControlModifier);
    EXPECT_EQ(frame->childWindow(), nullptr);
    EXPECT_TRUE(control<QLabel>(frame.get(), "lblEmpty")->isVisible());
    QTest::keyClick(frame.get(), Qt::Key_F10);
    ASSERT_NE(QApplication::activePopupWidget(), nullptr);
    QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_T);
    EXPECT_EQ(frame->childWindow()->objectName(), u"frmTrash");
    choose("mnuCheck");
    EXPECT_EQ(frame->childWindow()->objectName(), u"frmCheck");
    choose("mnAbout");
    test::click(frame.get(), "cmdCloseChild");
    EXPECT_TRUE(QTest::qWaitFor([&] { return !frame->childWindow(); }, patienceMs));
    EXPECT_FALSE(control<QWidget>(frame.get(), "childBar")->isVisible());
}

TEST_F(Frame, ClosingRemembersTheAssessmentBeforeTheLibraryCloses)
{
    open();
    choose("mnuCreate");
    state.CurrentAssessmentNum = second;
    frame->setGeometry(30, 40, 620, 470);
    frame->close();
    EXPECT_EQ(lastId(), QString::number(second));
    // The last connection to close takes the side files with it.
    EXPECT_FALSE(QFile::exists(library.databasePath() + u"-wal"_s));
    frame.reset();
    frame = std::make_unique<frmAssessment>(services, state, QString());
    EXPECT_EQ(frame->geometry(), QRect(30, 40, 620, 470));
}

TEST_F(Frame, TidiesUpAfterAKilledProgramAndTellsOfDamage)
{
    open();
    const QDir folder(library.folder());
    const QStringList before{u"1.jpg"_s,           u"1.jpg.bak"_s, u"2.JPG.bak2"_s, u"2.jpg"_s,
                             u"2.jpg.backup"_s,    u"3.jpg.bak"_s, u"9.jpg.part"_s, u"90.JPG.bak"_s,
                             u".new-12345.part"_s, u"new-1.part"_s};
    for (const QString& name : before) {
        test::writeFile(folder.filePath(u"Files/"_s + name),
                        name.left(1).toUtf8() + (name == u"2.JPG.bak2" ? "old" : ""));
    }
    library.sql(damage);
    bool told = false;
    messages.beforeAnswer = [&told] { told = true; };
    messages.expectInform(
        u"Database Error"_s,
        u"The question library is damaged, so questions may be missing or wrong:\n%1\n\nKeep a "
        u"copy of this file before you change anything, and put an undamaged copy from earlier in "
        "its place if you have one."_s.arg(QDir::toNativeSeparators(library.databasePath())));
    frame->checkLibrary(true);
    EXPECT_TRUE(QTest::qWaitFor([&told] { return told; }, patienceMs));
    EXPECT_EQ(QDir(folder.filePath(u"Files"_s))
                  .entryList(QDir::Files | QDir::Hidden, QDir::Name)
                  .join(u' ')
                  .toStdString(),
              "1.jpg 2.JPG.bak2 2.jpg 2.jpg.backup 3.jpg.bak 90.JPG new-1.part");
}

TEST_F(Frame, OnlyReadsADamagedLibraryUntilABackupIsRestored)
{
    open();
    choose("mnuBackups");
    test::click(frame.get(), "cmdBackUpNow");
    choose("mnuManageAssessments");
    const QStringList rows = library.sql(u"SELECT * FROM Topics NOT INDEXED"_s);
    library.sql(damage);
    const QString path = QDir::toNativeSeparators(library.databasePath());
    const std::int64_t now = clock.now / 1000;
    messages.expectYesNo(
        u"Database Error"_s,
        u"The question library is damaged, so questions may be missing or wrong:\n%1\n\nThe newest "
        "good backup (%2) holds 5 questions. The library can only be read until a backup is "
        "restored, so that nothing gets worse. Do you want to choose the backup now?"_s.arg(
            path, BackupWords::when(now, now)),
        true, MessageBoxes::Answer::Yes);
    frame->checkLibrary(true);
    const auto isShown = [&] { return frame->childWindow()->objectName() == u"frmBackups"; };
    ASSERT_TRUE(QTest::qWaitFor(isShown, patienceMs));
    EXPECT_TRUE(control<QLabel>(frame.get(), "lblDamaged")->isVisible());
    EXPECT_FALSE(control<QWidget>(frame.get(), "cmdBackUpNow")->isEnabled());
    messages.expectYesNo(u"Restore?"_s,
                         u"The damaged library is replaced by the backup: %1. Newer questions that "
                         u"can still be read "
                         "go to the trash. The damaged file is kept beside the library."_s.arg(
                             BackupWords::when(now, now)),
                         true, MessageBoxes::Answer::Yes);
    test::click(frame.get(), "cmdRestore");
    EXPECT_EQ(frame->findChild<QLabel*>(u"lblDamaged"_s), nullptr);
    EXPECT_TRUE(control<QWidget>(frame.get(), "cmdBackUpNow")->isEnabled());
    EXPECT_EQ(library.value(u"PRAGMA integrity_check"_s), u"ok");
    EXPECT_EQ(library.sql(u"SELECT * FROM Topics NOT INDEXED"_s), rows);
    EXPECT_TRUE(QFile::exists(library.databasePath() + u".damaged"_s));
}

TEST(LibraryWait, EndsWhenTheLibraryIsFreeOrTheUserHasEnough)
{
    for (const bool patient : {true, false}) {
        int tries = 0;
        const auto open = [&] {
            if (++tries < 3) {
                throw LibraryBusy(u"locked"_s);
            }
        };
        if (!patient) {
            QTimer::singleShot(0, [] {
                auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
                ASSERT_NE(box, nullptr);
                EXPECT_EQ(box->text(), u"locked");
                QTest::keyClick(box, Qt::Key_Escape);
            });
        }
        EXPECT_EQ(OpenWhenFree(open), patient);
        EXPECT_EQ(tries, patient ? 3 : 1);
    }
    EXPECT_THROW((void)OpenWhenFree([] { throw DatabaseError(u"damaged"_s); }), DatabaseError);
}

TEST(SingleInstanceTest, TheSecondStartBringsTheFirstToTheFront)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"Varnholt.mdb"_s);
    const QByteArray user = qgetenv("USER");
    SingleInstance first(path);
    QSignalSpy asked(&first, &SingleInstance::activationRequested);
    using Start = SingleInstance::Start;
    EXPECT_EQ(first.start(), Start::First);
    first.listen();
    EXPECT_EQ(SingleInstance(path + u".other"_s).start(), Start::First);
    for (int i = 1; i <= 2; ++i) {
        EXPECT_EQ(SingleInstance(path).start(), Start::HandedOver);
        EXPECT_TRUE(asked.wait(patienceMs));
        EXPECT_EQ(asked.size(), i);
    }
    // Another user, wherever the temporary files are.
    qputenv("USER", "anna");
    SingleInstance other(path);
    qputenv("TMPDIR", folder.path().toUtf8());
    EXPECT_EQ(other.start(), Start::ReadOnly);
    qputenv("USER", user);
    qunsetenv("TMPDIR");
    ASSERT_TRUE(other.holder());
    EXPECT_EQ(other.holder()->machine, QSysInfo::machineHostName());
}

} // namespace
} // namespace varnholt
