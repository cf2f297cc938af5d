#include "exchange/exchange_world.h"
#include "exchange/frmExport.h"
#include "exchange/frmImport.h"
#include "exchange/zip_maker.h"
#include "support/gui.h"
#include "toolkit/ComboBox.h"

#include <QApplication>
#include <QDir>
#include <QDragEnterEvent>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>
#include <QTimer>

namespace varnholt {
namespace {

using namespace test;

class ExchangeWindows : public testing::Test, protected ExchangeWorld
{
protected:
    void open(std::unique_ptr<ExchangeWindow> window)
    {
        form = std::move(window);
        form->resize(700, 400);
        present(*form);
        form->setFocus();
    }
    void openExport() { open(std::make_unique<frmExport>(services, state, opened)); }
    void openImport() { open(std::make_unique<frmImport>(services, opened)); }

    QLabel* label(const char* name) { return control<QLabel>(form.get(), name); }

    std::unique_ptr<ExchangeWindow> form;
};

TEST_F(ExchangeWindows, ChoosingAnAssessmentMakesItCurrent)
{
    openExport();
    EXPECT_FALSE(control<QPushButton>(form.get(), "cmdExport")->isEnabled()) << "there is nothing";
    const auto first = library.addGenerated(u"A"_s, 1, 2, 3);
    const auto second = library.addGenerated(u"B"_s, 2, 2, 3);
    library.sql(u"UPDATE Topics SET Topic = '5\" nails' WHERE AssessmentNum = 2"_s);
    openExport();
    auto* combo = control<ComboBox>(form.get(), "cboAssessment");
    EXPECT_TRUE(combo->hasFocus());
    EXPECT_EQ(state.CurrentAssessmentNum, first);
    EXPECT_EQ(state.QuestionList.upperBound(), 6);
    EXPECT_FALSE(label("lblProblems")->isVisible());
    QTest::keyClick(combo, Qt::Key_Down);
    EXPECT_EQ(state.CurrentAssessmentNum, second);
    EXPECT_EQ(state.QuestionList.upperBound(), 12);
    EXPECT_TRUE(label("lblProblems")->isVisible());

    // Half a catalogue is not exported.
    connection.close();
    for (const char* what : {"topics", "subtopics", "questions"}) {
        messages.expectInform(u"Database Error"_s,
                              u"There was an error loading the %1."_s.arg(QLatin1String(what)));
    }
    combo->setListIndex(0);
    EXPECT_FALSE(control<QPushButton>(form.get(), "cmdExport")->isEnabled());
}

TEST_F(ExchangeWindows, RunningExportRepaintsAndCannotBeStartedTwiceOrClosed)
{
    library.addGenerated(u"A"_s, 1, 1, 400, true);
    for (int key = 1; key <= 400; ++key) {
        writeFile(library.picturePath(key), QByteArray(200'000, 'x'));
    }
    openExport();
    std::vector<int> widths;
    bool busy = false;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        // What collecting the files showed before, where that takes long, is a bar of its own.
        if (label("lblBack")->isVisible() && !label("lblFace")->text().startsWith(u"Collecting")) {
            widths.push_back(label("lblFace")->width());
            // Nothing stands there until the first file is done.
            EXPECT_TRUE(widths.back() == 0 || label("lblFace")->text().endsWith(u'%'));
            busy = QApplication::overrideCursor() != nullptr;
        }
        QTest::mouseClick(control<QPushButton>(form.get(), "cmdExport"), Qt::LeftButton);
        static_cast<frmExport*>(form.get())->cmdExport_Click();
        EXPECT_FALSE(form->close());
    });
    timer.start(0);
    files.answers.emplace_back(package(u"Algebra"_s));
    expect("Export Complete", "Export was successful.");
    messages.beforeAnswer = [&] {
        EXPECT_EQ(QApplication::overrideCursor(), nullptr);
        EXPECT_EQ(label("lblFace")->text(), u"100%"_s);
        EXPECT_EQ(label("lblFace")->width(), label("lblBack")->contentsRect().width());
        EXPECT_FALSE(form->close());
    };
    QTest::keyClick(form->focusWidget(), Qt::Key_Return);
    timer.stop();

    EXPECT_TRUE(busy);
    ASSERT_GE(widths.size(), 2u);
    EXPECT_TRUE(std::is_sorted(widths.begin(), widths.end()));
    EXPECT_LT(widths.front(), widths.back());
    EXPECT_FALSE(label("lblBack")->isVisible());
    EXPECT_EQ(files.calls.size(), 1u);

    // Without ".zip" a colleague would not find it; a file of that name is not overwritten.
    const QString saved = package(u"Algebra.zip"_s);
    writeFile(saved, "another");
    for (const bool taken : {true, false}) {
        click(form.get(), "cmdAddZip");
        EXPECT_TRUE(label("lblReason")->text().contains(QDir::toNativeSeparators(saved)));
        EXPECT_EQ(control<QPushButton>(form.get(), "cmdAddZip")->isVisible(), taken);
        EXPECT_EQ(QFile::exists(saved.chopped(4)), taken);
        EXPECT_EQ(readFile(saved) == "another", taken);
        if (taken) {
            QFile::remove(saved);
        }
    }

    // A missing picture closes the window.
    messages.beforeAnswer = nullptr;
    QFile::remove(library.picturePath(400));
    expectMissingPicture();
    click(form.get(), "cmdExport");
    EXPECT_FALSE(form->isVisible());
}

TEST_F(ExchangeWindows, ImportRunsFromItsButton)
{
    writeFile(package(), makeZip({{.name = "AssessmentInfo.txt", .data = "\"P\""},
                                  {.name = "topics.txt"},
                                  {.name = "subtopics.txt"},
                                  {.name = "questions.txt"}}));
    openImport();
    EXPECT_TRUE(control<QPushButton>(form.get(), "cmdImport")->hasFocus());
    files.answers.emplace_back(package());
    expectNameQuestion(u"P"_s, u"P"_s);
    expectImported(0, 0, 0);
    messages.beforeAnswer = [&] { EXPECT_FALSE(form->close()); };
    click(form.get(), "cmdImport");
    EXPECT_EQ(files.calls.at(0), u"open Zip Files (*.zip)"_s);

    // Or by dropping the package on the window, which asks for none then.
    QMimeData dragged;
    const auto accepts = [&](const QList<QUrl>& urls) {
        dragged.setUrls(urls);
        QDragEnterEvent enter({5, 5}, Qt::CopyAction, &dragged, Qt::LeftButton, {});
        enter.ignore();
        QApplication::sendEvent(form.get(), &enter);
        return enter.isAccepted();
    };
    const QUrl url = QUrl::fromLocalFile(package());
    EXPECT_FALSE(accepts({QUrl(u"http://a/b.zip"_s)}) || accepts({url, url}) ||
                 accepts({QUrl::fromLocalFile(packages.path())}));
    EXPECT_TRUE(accepts({url}));
    expectNameQuestion(u"P"_s, u"Q"_s);
    expectImported(0, 0, 0);
    QDropEvent drop({5, 5}, Qt::CopyAction, &dragged, Qt::LeftButton, {});
    QApplication::sendEvent(form.get(), &drop);
    QCoreApplication::processEvents();
    EXPECT_EQ(files.calls.size(), 1u);
    QTest::keyClick(form->focusWidget(), Qt::Key_Escape);
    EXPECT_FALSE(form->isVisible());
}

} // namespace
} // namespace varnholt
