#include "library/Library.h"
#include "support/gui.h"
#include "support/test_services.h"
#include "trash/TrashModel.h"
#include "trash/frmTrash.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableView>

#include <gtest/gtest.h>

namespace varnholt::test {
namespace {

using namespace Qt::StringLiterals;

constexpr int patienceMs = 60'000;

class TrashWindow : public testing::Test, protected TestWorld
{
protected:
    TrashWindow()
        : owner(library.folder(), clock)
    {
        library.addGenerated(u"Maths"_s, 1, 2, 2, true);
        owner.open();
    }

    void open()
    {
        window = std::make_unique<frmTrash>(services, owner);
        present(*window);
        window->setFocus();
        table = control<QTableView>(window.get(), "tblTrash");
    }
    std::string rows() const
    {
        QStringList lines;
        for (int row = 0; row < table->model()->rowCount(); ++row) {
            QStringList cells;
            for (int column = 0; column < TrashModel::Columns; ++column) {
                cells.append(table->model()->index(row, column).data().toString());
            }
            lines.append(cells.mid(0, 2).join(u" / "_s) +
                         (cells[2] == u"earlier" ? u" / earlier"_s : QString()));
        }
        return lines.join(u'\n').toStdString();
    }
    std::string note() const
    {
        return control<QLabel>(window.get(), "lblNote")->text().toStdString();
    }
    QString available()
    {
        return library
            .sql(u"SELECT Available FROM Assessments; SELECT Available FROM SubTopics NOT INDEXED;"
                 "SELECT Available FROM Questions NOT INDEXED"_s)
            .join(QString());
    }

    Library owner;
    std::unique_ptr<frmTrash> window;
    QTableView* table = nullptr;
};

TEST_F(TrashWindow, BringsBackAndTakesItBackByTheKeyboard)
{
    library.sql(u"UPDATE Questions SET Available = 0 WHERE SOLIndex IN (2, 4)"_s);
    owner.deleteQuestion(1);
    clock.now += 60'000;
    owner.deleteSubtopic(1);
    open();
    EXPECT_EQ(rows(), "Subtopic Subtopic 1.1 / Maths > Topic 1\n"
                      "Question with the answer A1 / Maths > Topic 1 > Subtopic 1.1\n"
                      "Question with the answer A4 / Maths > Topic 1 > Subtopic 1.2 / earlier\n"
                      "Question with the answer A2 / Maths > Topic 1 > Subtopic 1.1 / earlier");
    ASSERT_TRUE(table->hasFocus());
    const auto picture = [this] {
        const auto shown = table->model()->index(1, 0).data(Qt::DecorationRole).value<QPixmap>();
        return shown.toImage().pixelColor(shown.width() / 2, shown.height() / 2).alpha() == 255;
    };
    QSignalSpy repainted(table->model(), &QAbstractItemModel::dataChanged);
    EXPECT_TRUE(QTest::qWaitFor(picture, patienceMs));
    EXPECT_FALSE(repainted.isEmpty());

    // Stays where it is on No; comes back with its subtopic on Yes.
    QTest::keyClick(table, Qt::Key_Down);
    for (const bool yes : {false, true}) {
        messages.expectYesNo(u"Restore?"_s, u"Also brings back: Subtopic 1.1"_s, yes,
                             MessageBoxes::Answer::Yes);
        EXPECT_EQ(available(), u"1010010"_s);
        QTest::keyClick(table, Qt::Key_Return);
    }
    EXPECT_EQ(available(), u"1111010"_s);
    EXPECT_EQ(note(), "Question with the answer A1 and 1 more are back.");
    EXPECT_EQ(table->model()->rowCount(), 2);
    QTest::keyClick(table, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(available(), u"1010010"_s);
    EXPECT_EQ(table->model()->rowCount(), 4);
    QTest::keyClick(table, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(available(), u"1010010"_s) << "what was deleted elsewhere is not undone here";

    auto* filter = control<QLineEdit>(window.get(), "txtFilter");
    filter->setFocus();
    QTest::keyClicks(filter, u"a4 maths"_s);
    QTest::keyClick(filter, Qt::Key_Return);
    EXPECT_EQ(table->model()->rowCount(), 1);
    EXPECT_EQ(control<QLabel>(window.get(), "lblCount")->text().toStdString(), "1 of 4 deleted");
    QTest::keyClick(table, Qt::Key_Return);
    EXPECT_EQ(available(), u"1010011"_s);
    EXPECT_FALSE(table->isVisible());
    EXPECT_EQ(note(), "Question with the answer A4 is back.");
    owner.deleteQuestion(3);
    click(window.get(), "cmdUndo");
    EXPECT_EQ(available(), u"1010001"_s) << "nor what has been done since";

    filter->clear();
    QTest::keyClick(filter, Qt::Key_Return);
    table->selectAll();
    QTest::keyClick(table, Qt::Key_Return);
    EXPECT_FALSE(table->isVisible());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(available(), u"1010001"_s) << "of an empty trash, too";
    EXPECT_TRUE(table->hasFocus() && table->selectionModel()->hasSelection());
}

TEST_F(TrashWindow, RestoresManyInOneStepUnderNewNamesButNotWithoutAPlace)
{
    owner.deleteQuestion(1);
    owner.deleteQuestion(2);
    library.sql(u"UPDATE Questions SET SubTopicNum = 77 WHERE SOLIndex = 2"_s);
    owner.deleteAssessment(1);
    owner.addAssessment(u"Maths"_s);
    open();
    EXPECT_EQ(table->model()->rowCount(), 5);
    table->selectAll();
    messages.expectInform(u"Restore"_s,
                          u"Question with the answer A2 cannot be brought back. The library no "
                          "longer has the place where it was, so that nobody would see it."_s);
    for (const QString& name : {u"Maths"_s, u"Old Maths"_s}) {
        messages.expectInput(
            u"Name Taken"_s,
            u"Another assessment is called Maths now. Name for the one that comes back:"_s, name,
            u"Maths"_s);
    }
    click(window.get(), "cmdRestore");
    EXPECT_EQ(library.value(u"SELECT AssessmentName FROM Assessments WHERE AssessmentNum = 1"_s),
              u"Old Maths"_s);
    EXPECT_EQ(available(), u"11111011"_s);
    click(window.get(), "cmdUndo");
    EXPECT_EQ(available(), u"01110011"_s);
}

TEST_F(TrashWindow, OfALibraryForReadingShowsAndSaysWhyNothingCanComeBack)
{
    owner.deleteQuestion(1);
    owner.open(Connection::Access::ReadOnly);
    open();
    EXPECT_EQ(table->model()->rowCount(), 1);
    const auto* button = control<QPushButton>(window.get(), "cmdRestore");
    EXPECT_FALSE(button->isEnabled());
    EXPECT_EQ(button->toolTip(), owner.features().reason);
    QTest::keyClick(table, Qt::Key_Return);
    EXPECT_EQ(available(), u"1110111"_s);
}

} // namespace
} // namespace varnholt::test
