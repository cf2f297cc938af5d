#include "authoring/frmAddNewQuestion.h"
#include "authoring/frmPictureText.h"
#include "store/catalogue.h"
#include "store/connection.h"
#include "support/fakes.h"
#include "support/gui.h"
#include "support/test_library.h"
#include "toolkit/ComboBox.h"
#include "toolkit/ListBox.h"
#include "toolkit/PictureBox.h"

#include <QCheckBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QTimer>

#include <gtest/gtest.h>

/// Failures show texts, not bytes.
inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}

namespace varnholt::test {

namespace {

const QString saveError = QStringLiteral("Save Error");

class Authoring : public testing::Test
{
protected:
    Authoring()
    {
        maths = library.addAssessment(QStringLiteral("Maths"));
        algebra = library.addTopic(maths, QStringLiteral("Algebra"));
        library.addTopic(maths, QStringLiteral("Bare"));
        geometry = library.addTopic(maths, QStringLiteral("Geometry"));
        library.addSubTopic(maths, algebra, QStringLiteral("Linear"));
        quadratic = library.addSubTopic(maths, algebra, QStringLiteral("Quadratic"));
        library.addSubTopic(maths, geometry, QStringLiteral("Circles"));
        services.messageBoxes = &messages;
        services.clipboard = &clipboard;
        services.programFolder = library.folder();
        connection.open(library.databasePath());
        state.CurrentAssessmentNum = maths;
        LoadCurrentAssessment(state, connection, messages);
        clipboard.picture = testPicture({1000, 700}, 5);
    }

    void open(const FilingPreselection& preselection = {})
    {
        window = std::make_unique<frmAddNewQuestion>(
            services, state, connection, preselection, nullptr,
            [this](QWidget*, std::optional<NamedTopic> chosen) { newInfo(std::move(chosen)); });
        window->show();
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }

    QWidget* canvas() { return control<PictureBox>(window.get(), "picQuestion"); }
    QString text(const char* name) { return control<ComboBox>(window.get(), name)->currentText(); }
    QString hint() { return control<QLabel>(window.get(), "lblSaveHint")->text(); }
    bool hintShown() { return control<QLabel>(window.get(), "lblSaveHint")->isVisible(); }
    void answer(const QString& answer)
    {
        control<QLineEdit>(window.get(), "txtAnswer")->setText(answer);
    }
    void drag(QPoint from, QPoint to)
    {
        QTest::mousePress(canvas(), Qt::LeftButton, {}, from);
        QTest::mouseMove(canvas(), to);
        QTest::mouseRelease(canvas(), Qt::LeftButton, {}, to);
    }
    QRect selection()
    {
        const PictureCanvas& c = window->canvas();
        return {c.SelX1, c.SelY1, c.SelX2 - c.SelX1, c.SelY2 - c.SelY1};
    }
    int questions()
    {
        return library.value(QStringLiteral("SELECT count(*) FROM Questions")).toInt();
    }

    std::int32_t maths, algebra, geometry, quadratic;
    TestLibrary library;
    Connection connection;
    ProgramState state;
    ScriptedMessageBoxes messages;
    FakeClipboard clipboard;
    Services services;
    std::function<void(std::optional<NamedTopic>)> newInfo;
    std::unique_ptr<frmAddNewQuestion> window;
};

} // namespace

TEST_F(Authoring, OffersTopicsWithSubtopicsAndStartsWhereTheManagerStood)
{
    state.QuestionSaved = state.StructureChanged = true;
    open();
    EXPECT_FALSE(state.QuestionSaved || state.StructureChanged);
    EXPECT_EQ(control<ComboBox>(window.get(), "cboTopics")->count(), 2);
    EXPECT_EQ(text("cboTopics") + text("cboSubtopics"), QStringLiteral("AlgebraLinear"));
    EXPECT_FALSE(control<QWidget>(window.get(), "fraPictureControls")->isVisible());
    open({algebra, quadratic});
    EXPECT_EQ(text("cboTopics") + text("cboSubtopics"), QStringLiteral("AlgebraQuadratic"));
    control<ComboBox>(window.get(), "cboTopics")->setListIndex(1);
    EXPECT_EQ(text("cboSubtopics"), QStringLiteral("Circles"));
    // A topic that is not offered gives the first.
    open({algebra + 1, 4711});
    EXPECT_EQ(text("cboTopics") + text("cboSubtopics"), QStringLiteral("AlgebraLinear"));
}

TEST_F(Authoring, TakesOverWhatTheNewInfoDialogSaved)
{
    open({geometry, std::nullopt});
    newInfo = [&](std::optional<NamedTopic> chosen) {
        EXPECT_TRUE(state.SubtopicOnly);
        EXPECT_EQ(chosen->TopicID, geometry);
        EXPECT_EQ(chosen->Topic, QStringLiteral("Geometry"));
        state.NewInfoSaved = false;
    };
    click(window.get(), "cmdNewSubtopic");
    EXPECT_FALSE(state.StructureChanged);
    newInfo = [&](std::optional<NamedTopic>) {
        library.addSubTopic(maths, geometry, QStringLiteral("Angles"));
        state.NewSubtopicNum = library.addSubTopic(maths, geometry, QStringLiteral("Lines"));
        state.NewInfoSaved = true;
    };
    click(window.get(), "cmdNewSubtopic");
    EXPECT_EQ(text("cboTopics") + text("cboSubtopics"), QStringLiteral("GeometryLines"));
    newInfo = [&](std::optional<NamedTopic> chosen) {
        EXPECT_FALSE(state.SubtopicOnly || chosen);
        state.NewTopicID = library.addTopic(maths, QStringLiteral("Chance"));
        state.NewSubtopicNum = library.addSubTopic(maths, state.NewTopicID, QStringLiteral("Dice"));
    };
    click(window.get(), "cmdNewTopic");
    EXPECT_EQ(text("cboTopics") + text("cboSubtopics"), QStringLiteral("ChanceDice"));
    EXPECT_TRUE(state.StructureChanged);
}

TEST_F(Authoring, SavesInItsOrderAndSaysBeforehandWhatIsMissing)
{
    open();
    EXPECT_EQ(hint(), QStringLiteral("Still needed before saving: a picture and an answer."));
    messages.expectInform(saveError,
                          QStringLiteral("Cannot save because Answer is a required field."));
    click(window.get(), "cmdSave");
    answer(QStringLiteral("  "));
    messages.expectInform(saveError,
                          QStringLiteral("Cannot save because the picture of the question is "
                                         "missing.  Please paste a picture before saving."));
    click(window.get(), "cmdSave");
    click(window.get(), "cmdPaste");
    EXPECT_FALSE(hintShown());
    drag({20, 20}, {90, 80});
    const QString question = QStringLiteral("Are you sure you want to save this  question?");
    messages.expectYesNo(QStringLiteral("Save?"), question, false);
    messages.beforeAnswer = [&] {
        EXPECT_FALSE(window->canvas().SelectionShown);
        EXPECT_FALSE(control<QWidget>(window.get(), "fraPictureControls")->isVisible());
    };
    click(window.get(), "cmdSave");
    EXPECT_EQ(questions(), 0);
    EXPECT_TRUE(window->canvas().picQuestion.hasPicture());
    messages.verify();

    messages.expectYesNo(QStringLiteral("Save?"), question, true);
    messages.expectInform(QStringLiteral("Question Saved"),
                          QStringLiteral("The question was saved successfully."));
    QTest::keyClick(canvas(), Qt::Key_S, Qt::ControlModifier);
    EXPECT_TRUE(state.QuestionSaved);
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(library.value(QStringLiteral("SELECT TopicID, SubTopicNum, Answer FROM Questions")),
              QStringLiteral("%1|1|").arg(algebra));
    EXPECT_EQ(QImage(library.picturePath(1)).size(), questionPage);
}

TEST_F(Authoring, AFailedSaveShowsNoBoxAndKeepsEverything)
{
    open();
    click(window.get(), "cmdPaste");
    answer(QStringLiteral("it's"));
    EXPECT_TRUE(control<QLabel>(window.get(), "lblAnswerHint")->isVisible());
    EXPECT_TRUE(hint().contains(QStringLiteral("apostrophe")));
    const auto fail = [&] {
        messages.expectYesNo(QStringLiteral("Save?"),
                             QStringLiteral("Are you sure you want to save this  question?"), true);
        click(window.get(), "cmdSave");
        messages.verify();
        EXPECT_TRUE(window->isVisible() && window->canvas().picQuestion.hasPicture());
        EXPECT_FALSE(state.QuestionSaved);
        EXPECT_EQ(questions(), 0);
    };
    fail();
    answer(QStringLiteral("its"));
    control<ComboBox>(window.get(), "cboSubtopics")->clear();
    fail();
    EXPECT_EQ(hint(), QStringLiteral("Still needed before saving: a subtopic."));
    open();
    click(window.get(), "cmdPaste");
    answer(QStringLiteral("7"));
    library.sql(QStringLiteral("CREATE TRIGGER t BEFORE INSERT ON Questions BEGIN "
                               "SELECT RAISE(ABORT, 'broken'); END"));
    fail();
    EXPECT_TRUE(hint().startsWith(QStringLiteral("The save failed. "))) << hint().toStdString();
}

TEST_F(Authoring, KeysDoWhatTheButtonsDo)
{
    open();
    canvas()->setFocus();
    clipboard.picture = QImage();
    messages.expectInform(QStringLiteral("Paste Error"),
                          QStringLiteral("A question needs to be copied before it can be pasted."));
    QTest::keyClick(canvas(), Qt::Key_V, Qt::ControlModifier);
    messages.verify();
    clipboard.picture = testPicture({1000, 700}, 5);
    // With the answer in focus too, as long as there is no text to paste there.
    QTest::keyClick(control<QLineEdit>(window.get(), "txtAnswer"), Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(window->canvas().picQuestion.image().size(), QSize(1000, 700));
    EXPECT_EQ(control<QScrollBar>(window.get(), "HScroll")->maximum(), 200);

    drag({50, 50}, {90, 80});
    EXPECT_EQ(canvas()->cursor().shape(), Qt::SizeAllCursor);
    QTest::keyClick(canvas(), Qt::Key_Right);
    QTest::keyClick(canvas(), Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_EQ(selection(), QRect(51, 40, 40, 30));
    QTest::keyClick(canvas(), Qt::Key_Delete);
    EXPECT_EQ(window->canvas().picQuestion.picture().pixel(60, 50), QRgb(0xFFFFFFFF));
    QTest::keyClick(canvas(), Qt::Key_Escape);
    EXPECT_FALSE(window->canvas().SelectionShown);
    QTest::keyClick(canvas(), Qt::Key_Escape);
    EXPECT_TRUE(window->isVisible()) << "there is a picture to lose";
    QTest::keyClick(canvas(), Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(selection(), QRect(0, 0, 1000, 700));
    click(window.get(), "cmdCrop");
    EXPECT_EQ(selection(), QRect(-100, -100, 1000, 700));
}

TEST_F(Authoring, TheMouseMayLeaveTheWindowOrBeCutShort)
{
    open();
    click(window.get(), "cmdPaste");
    control<QScrollBar>(window.get(), "VScroll")->setValue(150);
    EXPECT_EQ(canvas()->y(), -150);
    drag({700, 600}, {5000, -5000});
    EXPECT_EQ(selection(), QRect(700, 0, 300, 600));
    const QImage shown = canvas()->grab().toImage().convertToFormat(QImage::Format_RGB32);
    EXPECT_EQ(shown, window->canvas().picQuestion.image());
    // A second button changes nothing; a lost release ends at the next move.
    QTest::mousePress(canvas(), Qt::LeftButton, {}, {10, 200});
    QTest::mousePress(canvas(), Qt::RightButton, {}, {20, 210});
    QMouseEvent move(QEvent::MouseMove, QPointF(60, 230), QPointF(60, 230), Qt::NoButton,
                     Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(canvas(), &move);
    EXPECT_FALSE(window->canvas().isDragging());
    QTest::mousePress(canvas(), Qt::LeftButton, {}, {300, 300});
    QTest::mouseMove(canvas(), {350, 350});
    EXPECT_TRUE(window->canvas().Drawing);
    window->close();
    window.reset();
    EXPECT_FALSE(state.QuestionSaved);
    EXPECT_EQ(questions(), 0);
}

TEST_F(Authoring, TextGoesFromTheDialogToTheSelectionsCorner)
{
    open();
    click(window.get(), "cmdPaste");
    drag({100, 500}, {150, 560});
    const auto withDialog = [&](const std::function<void(QWidget*)>& use) {
        QTimer::singleShot(0, [use] { use(QApplication::activeModalWidget()); });
        click(window.get(), "cmdText");
    };
    const auto choose = [&](QWidget* dialog, bool bold) {
        control<QRadioButton>(dialog, "optVerdana")->click();
        control<ListBox>(dialog, "lstFontSize")->setListIndex(7);
        control<QCheckBox>(dialog, "chkBold")->setChecked(bold);
    };
    withDialog([&](QWidget* dialog) {
        choose(dialog, true);
        EXPECT_EQ(control<QLabel>(dialog, "lblSample")->font(), stampFont(window->canvas().font));
        messages.expectInform(QStringLiteral("Missing Text"),
                              QStringLiteral("Please enter the text you would like to add."));
        control<QLineEdit>(dialog, "txtText")->setText(QStringLiteral("   "));
        click(dialog, "cmdAddText");
        click(dialog, "cmdCancel");
    });
    EXPECT_TRUE(window->canvas().SelectionShown);
    EXPECT_EQ(window->canvas().font.name, QStringLiteral("Verdana"));
    EXPECT_EQ(window->canvas().font.size, 24);
    const QImage before = window->canvas().picQuestion.picture();
    withDialog([&](QWidget* dialog) {
        // The face and the size start afresh; the style stays with the canvas, unticked.
        EXPECT_EQ(window->canvas().font.name, QStringLiteral("MS Sans Serif"));
        EXPECT_EQ(window->canvas().font.size, 10);
        EXPECT_TRUE(window->canvas().font.bold);
        EXPECT_FALSE(control<QCheckBox>(dialog, "chkBold")->isChecked());
        EXPECT_TRUE(control<QLabel>(dialog, "lblStyleHint")->isVisible());
        auto* line = control<QLineEdit>(dialog, "txtText");
        line->setText(QStringLiteral(" Part  a "));
        QTest::keyClick(line, Qt::Key_Return);
    });
    EXPECT_EQ(state.TextToAdd, QStringLiteral("Part  a"));
    EXPECT_NE(window->canvas().picQuestion.picture(), before);
    EXPECT_EQ(window->canvas().picQuestion.picture().copy(0, 0, 1000, 500),
              before.copy(0, 0, 1000, 500));
    EXPECT_FALSE(window->canvas().SelectionShown);
}

} // namespace varnholt::test
