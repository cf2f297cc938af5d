#include "app/SingleInstance.h"
#include "app/frmAssessment.h"
#include "info/InfoWindow.h"
#include "selection/frmMain.h"
#include "support/gui.h"
#include "support/test_services.h"
#include "toolkit/ListBox.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QProcess>
#include <QSignalSpy>

#include <gtest/gtest.h>

namespace varnholt {
namespace {

using test::control;

class Frame : public testing::Test, protected test::TestWorld
{
protected:
    void open()
    {
        frame = std::make_unique<frmAssessment>(services, state, QStringLiteral("/guide.html"));
        frame->show();
        frame->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(frame.get()));
    }

    QAction* entry(const char* name) { return control<QAction>(frame.get(), name); }
    QString lastId() { return library.value(QStringLiteral("SELECT LastID FROM History")); }

    std::unique_ptr<frmAssessment> frame;
};

TEST_F(Frame, MenuStandsInItsOrder)
{
    open();
    EXPECT_EQ(frame->windowTitle(), QStringLiteral("Varnholt"));
    QStringList names;
    QStringList captions;
    for (const QAction* action : frame->menuBar()->actions()) {
        names.append(action->objectName());
        captions.append(action->text().remove(u'&'));
    }
    EXPECT_EQ(names.join(u' ').toStdString(),
              "mnuCreate mnuManageAssessments mnuExport mnuImport mnuTutorial mnAbout");
    EXPECT_EQ(captions.join(u'|').toStdString(),
              "Create PowerPoints|Manage Assessments|Export Assessment|Import Assessment|"
              "Tutorial Videos|About");
}

TEST_F(Frame, OneChildAtATimeAndFreshEachTime)
{
    library.addGenerated(QStringLiteral("A"), 2, 1, 1);
    const auto second = library.addGenerated(QStringLiteral("B"), 3, 1, 1);
    open();
    EXPECT_EQ(frame->childWindow(), nullptr);
    entry("mnuCreate")->trigger();
    auto* list = control<ListBox>(frame.get(), "lstTopics");
    list->setAllSelected(false);
    EXPECT_TRUE(list->hasFocus());
    state.CurrentAssessmentNum = second;

    // Leaving remembers the assessment, coming back starts afresh on it.
    entry("mnAbout")->trigger();
    EXPECT_NE(qobject_cast<frmAbout*>(frame->childWindow()), nullptr);
    EXPECT_EQ(frame->findChild<frmMain*>(), nullptr);
    EXPECT_EQ(lastId(), QString::number(second));
    entry("mnuCreate")->trigger();
    EXPECT_EQ(frame->findChild<frmAbout*>(), nullptr);
    list = control<ListBox>(frame.get(), "lstTopics");
    EXPECT_EQ(list->listCount(), 3);
    EXPECT_TRUE(list->selected(0));

    entry("mnuTutorial")->trigger();
    auto* link = control<QLineEdit>(frame.get(), "txtLink");
    EXPECT_TRUE(link->isReadOnly());
    EXPECT_EQ(link->text(), QStringLiteral("/guide.html"));
    QTest::keyClick(frame.get(), Qt::Key_W, Qt::ControlModifier);
    EXPECT_EQ(frame->childWindow(), nullptr);
    EXPECT_TRUE(control<QLabel>(frame.get(), "lblEmpty")->isVisible());
}

TEST_F(Frame, ClosingRemembersTheAssessmentBeforeTheLibraryCloses)
{
    library.addGenerated(QStringLiteral("A"), 1, 1, 1);
    const auto second = library.addGenerated(QStringLiteral("B"), 1, 1, 1);
    open();
    entry("mnuCreate")->trigger();
    state.CurrentAssessmentNum = second;
    frame->close();
    EXPECT_EQ(lastId(), QString::number(second));
    // The last connection to close takes the side files with it.
    EXPECT_FALSE(QFile::exists(library.databasePath() + QStringLiteral("-wal")));
}

TEST_F(Frame, ALibraryThatCannotBeOpenedIsAnError)
{
    QFile::remove(library.databasePath());
    EXPECT_THROW(open(), DatabaseError);
    EXPECT_FALSE(QFile::exists(library.databasePath()));
}

TEST(SingleInstanceTest, TheSecondStartBringsTheFirstToTheFront)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("Varnholt.mdb"));
    SingleInstance first(path);
    QSignalSpy asked(&first, &SingleInstance::activationRequested);
    EXPECT_FALSE(first.handOver());
    first.listen();

    SingleInstance other(path + QStringLiteral(".other"));
    EXPECT_FALSE(other.handOver());
    for (int i = 1; i <= 2; ++i) {
        SingleInstance second(path);
        EXPECT_TRUE(second.handOver());
        EXPECT_TRUE(asked.wait(5000));
        EXPECT_EQ(asked.size(), i);
    }
}

} // namespace
} // namespace varnholt
