#include "authoring/PictureCanvas.h"
#include "authoring/frmAddNewQuestion.h"
#include "authoring/frmPictureText.h"
#include "library/Library.h"
#include "store/catalogue.h"
#include "support/gui.h"
#include "support/test_services.h"
#include "toolkit/ComboBox.h"
#include "toolkit/ListBox.h"
#include "toolkit/clipboard_probe.h"

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QScrollBar>
#include <QTimer>

#include <gtest/gtest.h>

namespace varnholt::test {

using namespace Qt::Literals::StringLiterals;

namespace {

const QString saveError = u"Save Error"_s;
const QSize captureSize = questionPage + QSize(200, 200);

class Authoring : public testing::Test, protected TestWorld
{
protected:
    Authoring()
    {
        maths = library.addAssessment(u"Maths"_s);
        algebra = library.addTopic(maths, u"Algebra"_s);
        library.addTopic(maths, u"Bare"_s);
        geometry = library.addTopic(maths, u"Geometry"_s);
        library.addSubTopic(maths, algebra, u"Linear"_s);
        quadratic = library.addSubTopic(maths, algebra, u"Quadratic"_s);
        library.addSubTopic(maths, geometry, u"Circles"_s);
        owner.open();
        state.CurrentAssessmentNum = maths;
        LoadCurrentAssessment(state, owner.connection());
        clipboard.picture = testPicture(captureSize, 5);
    }

    void open(const FilingPreselection& preselection = {})
    {
        window = std::make_unique<frmAddNewQuestion>(
            services, state, owner, preselection, nullptr,
            [this](QWidget*, frmNewInfo::Mode mode, std::optional<NamedTopic> chosen) {
                return newInfo(mode, std::move(chosen));
            });
        present(*window);
        // A canvas pixel for each of the widget's.
        key(Qt::Key_1, Qt::ControlModifier);
    }
    void openWithPicture()
    {
        open();
        click(window.get(), "cmdPaste");
    }

    QWidget* part(const char* name) { return control<QWidget>(window.get(), name); }
    QWidget* canvas() { return part("picQuestion"); }
    ComboBox* combo(const char* name) { return control<ComboBox>(window.get(), name); }
    QString filing()
    {
        return combo("cboTopics")->currentText() + u'/' + combo("cboSubtopics")->currentText();
    }
    QString hint() { return control<QLabel>(window.get(), "lblSaveHint")->text(); }
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
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(canvas(), key, modifiers);
    }
    QRect selection() { return window->canvas().state().selection(); }
    QImage picture() { return window->canvas().image(); }
    bool hasPicture() { return window->canvas().state().hasPicture; }
    void expectQuestion(bool yes)
    {
        messages.expectYesNo(u"Save?"_s, u"Are you sure you want to save this  question?"_s, yes,
                             MessageBoxes::Answer::Yes);
    }
    int questions() { return library.value(u"SELECT count(*) FROM Questions"_s).toInt(); }

    std::int32_t maths, algebra, geometry, quadratic;
    Library owner{library.folder(), clock};
    std::function<std::optional<NewInfo>(frmNewInfo::Mode, std::optional<NamedTopic>)> newInfo;
    std::unique_ptr<frmAddNewQuestion> window;
};

} // namespace

TEST_F(Authoring, OffersTopicsWithSubtopicsStartsWhereTheManagerStoodAndTakesNewOnes)
{
    open();
    EXPECT_EQ(combo("cboTopics")->count(), 2);
    EXPECT_EQ(filing(), u"Algebra/Linear"_s);
    open({algebra, quadratic});
    EXPECT_EQ(filing(), u"Algebra/Quadratic"_s);
    combo("cboTopics")->setListIndex(1);
    EXPECT_EQ(filing(), u"Geometry/Circles"_s);
    // What is not offered gives the first.
    open({algebra + 1, 4711});
    EXPECT_EQ(filing(), u"Algebra/Linear"_s);

    // What the dialog for new ones saved is chosen.
    open({geometry, std::nullopt});
    newInfo = [&](frmNewInfo::Mode mode, std::optional<NamedTopic> chosen) {
        EXPECT_EQ(mode, frmNewInfo::Mode::SubtopicOnly);
        EXPECT_EQ(chosen->TopicID, geometry);
        EXPECT_EQ(chosen->Topic, u"Geometry"_s);
        return std::optional<NewInfo>();
    };
    click(window.get(), "cmdNewSubtopic");
    EXPECT_FALSE(window->structureChanged());
    newInfo = [&](frmNewInfo::Mode, std::optional<NamedTopic>) {
        library.addSubTopic(maths, geometry, u"Angles"_s);
        return NewInfo{geometry, library.addSubTopic(maths, geometry, u"Lines"_s)};
    };
    click(window.get(), "cmdNewSubtopic");
    EXPECT_EQ(filing(), u"Geometry/Lines"_s);
    EXPECT_TRUE(window->structureChanged());
    newInfo = [&](frmNewInfo::Mode mode, std::optional<NamedTopic> chosen) {
        EXPECT_FALSE(mode == frmNewInfo::Mode::SubtopicOnly || chosen);
        const std::int32_t topic = library.addTopic(maths, u"Chance"_s);
        library.addSubTopic(maths, topic, u"Cards"_s);
        return NewInfo{topic, library.addSubTopic(maths, topic, u"Dice"_s)};
    };
    click(window.get(), "cmdNewTopic");
    EXPECT_EQ(filing(), u"Chance/Dice"_s);
}

TEST_F(Authoring, SavesInItsOrderAndSaysBeforehandWhatIsMissing)
{
    open();
    EXPECT_EQ(hint(), u"Still needed before saving: a picture and an answer."_s);
    messages.beforeAnswer = [&] {
        EXPECT_FALSE(window->canvas().state().SelectionShown || window->canvas().isDragging());
        EXPECT_FALSE(part("fraPictureControls")->isVisible());
    };
    // In the middle of a drag.
    QTest::mousePress(canvas(), Qt::LeftButton, {}, {20, 20});
    QTest::mouseMove(canvas(), {200, 90});
    messages.expectInform(saveError, u"Cannot save because Answer is a required field."_s);
    key(Qt::Key_S, Qt::ControlModifier);
    QTest::mouseRelease(canvas(), Qt::LeftButton);
    answer(u"  "_s);
    messages.expectInform(saveError, u"Cannot save because the picture of the question is "
                                     "missing.  Please paste a picture before saving."_s);
    click(window.get(), "cmdSave");
    click(window.get(), "cmdPaste");
    EXPECT_TRUE(hint().startsWith(u"Only the upper left 1272 by 624 pixels"_s));
    drag({20, 20}, {90, 80});
    expectQuestion(false);
    click(window.get(), "cmdSave");
    EXPECT_EQ(questions(), 0);

    expectQuestion(true);
    messages.expectInform(u"Question Saved"_s, u"The question was saved successfully."_s);
    click(window.get(), "cmdSave");
    EXPECT_TRUE(window->questionSaved());
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(library.value(u"SELECT TopicID, SubTopicNum, Answer FROM Questions"_s),
              u"%1|1|"_s.arg(algebra));
    EXPECT_EQ(QImage(library.picturePath(1)).size(), questionPage);
    EXPECT_EQ(window->lastFiling().TopicID, algebra);
    EXPECT_EQ(window->lastFiling().SubtopicNum, 1);
}

TEST_F(Authoring, GoesOnWithTheNextQuestionInTheSamePlace)
{
    open({algebra, quadratic});
    clipboard.picture.fill(Qt::blue);
    for (const QString& each : {u"7"_s, u"8"_s}) {
        key(Qt::Key_V, Qt::ControlModifier);
        click(window.get(), "cmdFitHint");
        EXPECT_EQ(picture().size(), questionPage);
        EXPECT_FALSE(part("cmdFitHint")->isVisible());
        answer(each);
        QTest::keyClick(part("txtAnswer"), Qt::Key_Return, Qt::ControlModifier);
        EXPECT_FALSE(hasPicture() || window->canvas().canUndo());
        EXPECT_EQ(filing(), u"Algebra/Quadratic"_s);
        EXPECT_EQ(window->focusWidget(), part("cmdPaste"));
    }
    EXPECT_EQ(control<QLabel>(window.get(), "lblSaved")->text(), u"2 saved"_s);
    EXPECT_EQ(library.sql(u"SELECT SOLIndex, Answer, SubTopicNum FROM Questions"_s),
              QStringList({u"1|7|2"_s, u"2|8|2"_s}));
    // Nothing of it is missing: it reaches from the top to the bottom, between two white edges.
    const QImage whole = QImage(library.picturePath(2)).convertToFormat(QImage::Format_RGB32);
    const int width = captureSize.scaled(questionPage, Qt::KeepAspectRatio).width();
    const int edge = (questionPage.width() - width) / 2;
    for (const int y : {20, questionPage.height() - 20}) {
        EXPECT_GT(qRed(whole.pixel(edge - 20, y)), 250);
        EXPECT_LT(qRed(whole.pixel(edge + 20, y)), 5);
        EXPECT_LT(qRed(whole.pixel(edge + width - 20, y)), 5);
    }
    // Another one that is not whole stays, and says why.
    messages.expectInform(saveError, u"Cannot save because Answer is a required field."_s);
    click(window.get(), "cmdSaveAnother");
    key(Qt::Key_Escape);
    EXPECT_TRUE(window->questionSaved() && !window->isVisible());
}

TEST_F(Authoring, ShowsFramesOverThePictureAtEveryZoomAndTakesStepsBack)
{
    openWithPicture();
    const QImage first = picture();
    const auto shown = [&] {
        return canvas()->grab().toImage().convertToFormat(QImage::Format_RGB32);
    };
    EXPECT_EQ(shown(), first);
    drag({100, 60}, {400, 260});
    QImage framed = first;
    framed.invertPixels();
    for (const QPoint at : {QPoint(100, 60), {250, 60}, {400, 260}, {400, 100}, {120, 260}}) {
        EXPECT_EQ(shown().pixel(at), framed.pixel(at));
    }
    EXPECT_EQ(shown().pixel(101, 61), first.pixel(101, 61));
    // By the handles beside a side, which leave the others, and a corner; sides pass each other.
    drag({404, 160}, {450, 300});
    drag({275, 264}, {10, 290});
    EXPECT_EQ(selection(), QRect(100, 60, 350, 230));
    drag({454, 294}, {50, 30});
    EXPECT_EQ(selection(), QRect(50, 30, 50, 30));
    EXPECT_EQ(picture(), first);
    for (const Qt::Key zoom : {Qt::Key_0, Qt::Key_Minus, Qt::Key_Plus, Qt::Key_Plus}) {
        key(Qt::Key_Escape);
        key(zoom, Qt::ControlModifier);
        const QImage plain = shown();
        key(Qt::Key_Right, Qt::ControlModifier);
        EXPECT_TRUE(window->canvas().state().SelectionShown);
        EXPECT_NE(shown(), plain);
        key(Qt::Key_Escape);
        EXPECT_EQ(shown(), plain) << zoom;
    }
    // A frame round everything shows its far sides, too.
    const QImage whole = shown();
    key(Qt::Key_A, Qt::ControlModifier);
    const QImage all = shown();
    const QPoint end = canvas()->rect().bottomRight();
    const auto changes = [&](QPoint at) { return all.pixel(at) != whole.pixel(at); };
    EXPECT_TRUE(changes({end.x(), 50}) || changes({end.x() - 1, 50}));
    EXPECT_TRUE(changes({50, end.y()}) || changes({50, end.y() - 1}));
    key(Qt::Key_Escape);
    key(Qt::Key_Right, Qt::ControlModifier);
    const QRect frame = selection();
    key(Qt::Key_Down, Qt::ControlModifier | Qt::ShiftModifier);
    key(Qt::Key_Left, Qt::ControlModifier);
    EXPECT_EQ(selection(), frame.adjusted(-1, 0, -1, 1));
    EXPECT_EQ(control<QLabel>(window.get(), "lblSize")->text(),
              u"Frame: %1 × %2 pixels"_s.arg(frame.width()).arg(frame.height() + 1));
    // Held down it goes quicker.
    QKeyEvent held(QEvent::KeyPress, Qt::Key_Right, Qt::ControlModifier, {}, true);
    QApplication::sendEvent(canvas(), &held);
    EXPECT_EQ(selection(), frame.adjusted(9, 0, 9, 1));
    // Three nudges are one step, undone as one.
    for (int i = 0; i < 3; ++i) {
        key(Qt::Key_Up);
    }
    const QImage nudged = picture();
    click(window.get(), "cmdErase");
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(picture(), nudged);
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(picture(), first);
    key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(picture(), nudged);
    click(window.get(), "cmdUndo");
    click(window.get(), "cmdUndo");
    EXPECT_FALSE(hasPicture() || part("cmdUndo")->isEnabled());
    // A drag past the page scrolls it.
    click(window.get(), "cmdRedo");
    key(Qt::Key_1, Qt::ControlModifier);
    QTest::mousePress(canvas(), Qt::LeftButton, {}, {20, 20});
    QTest::mouseMove(canvas(), {100, questionPage.height() + 30});
    EXPECT_TRUE(QTest::qWaitFor([&] { return window->canvas().state().VScroll.value == 200; }));
    QTest::mouseRelease(canvas(), Qt::LeftButton);
    EXPECT_EQ(selection(), QRect(20, 20, 80, captureSize.height() - 20));
}

TEST_F(Authoring, AFailedSaveShowsNoBoxAndKeepsEverything)
{
    openWithPicture();
    const auto fail = [&] {
        expectQuestion(true);
        click(window.get(), "cmdSave");
        messages.verify();
        EXPECT_TRUE(window->isVisible() && hasPicture());
        EXPECT_FALSE(window->questionSaved());
        EXPECT_EQ(questions(), 0);
    };
    answer(u"it's"_s);
    EXPECT_TRUE(part("lblAnswerHint")->isVisible());
    EXPECT_TRUE(hint().contains(u"apostrophe"_s));
    fail();
    answer(u"its"_s);
    library.sql(u"CREATE TRIGGER t BEFORE INSERT ON Questions BEGIN "
                "SELECT RAISE(ABORT, 'broken'); END"_s);
    fail();
    EXPECT_TRUE(hint().startsWith(u"The question was not saved. The question library "
                                  "refused it (broken)"_s));
    combo("cboSubtopics")->clear();
    fail();
    EXPECT_EQ(hint(), u"Still needed before saving: a subtopic."_s);
}

TEST_F(Authoring, KeysDoWhatTheButtonsDo)
{
    open();
    canvas()->setFocus();
    clipboard.picture = QImage();
    messages.expectInform(u"Paste Error"_s,
                          u"A question needs to be copied before it can be pasted."_s);
    key(Qt::Key_V, Qt::ControlModifier);
    messages.verify();
    clipboard.picture = testPicture(captureSize, 5);
    clipboard.hangs = true;
    messages.expectInform(u"Paste Error"_s, ClipboardSilentSentence());
    key(Qt::Key_V, Qt::ControlModifier);
    messages.verify();
    EXPECT_FALSE(hasPicture());
    clipboard.hangs = false;
    // With the answer in focus too, as long as there is no text to paste there.
    QTest::keyClick(part("txtAnswer"), Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(picture().size(), captureSize);
    EXPECT_EQ(control<QScrollBar>(window.get(), "HScroll")->maximum(), 200);

    drag({50, 50}, {90, 80});
    EXPECT_EQ(canvas()->cursor().shape(), Qt::SizeAllCursor);
    EXPECT_TRUE(canvas()->accessibleDescription().startsWith(
        u"Selected: 40 by 30 pixels, 50 from the left and 50 from the top."_s));
    key(Qt::Key_Right);
    key(Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_EQ(selection(), QRect(51, 40, 40, 30));
    key(Qt::Key_Delete);
    const QImage erased = picture();
    EXPECT_EQ(erased.pixel(60, 50), QRgb(0xFFFFFFFF));
    key(Qt::Key_Escape);
    EXPECT_FALSE(window->canvas().state().SelectionShown);
    key(Qt::Key_Delete);
    key(Qt::Key_Left);
    EXPECT_EQ(picture(), erased);
    key(Qt::Key_Escape);
    EXPECT_TRUE(window->isVisible()) << "there is a picture to lose";
    key(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(selection(), QRect({0, 0}, captureSize));
    EXPECT_TRUE(hint().startsWith(u"The frame is larger than the page"_s));
    click(window.get(), "cmdCrop");
    EXPECT_EQ(selection(), QRect({-100, -100}, captureSize));
    EXPECT_TRUE(hint().startsWith(u"The frame was larger than the page"_s));
    key(Qt::Key_Escape);
    answer(u"4"_s);
    EXPECT_FALSE(part("lblSaveHint")->isVisible());

    clipboard.picture = testPicture({1, 40'000});
    messages.expectInform(u"Paste Error"_s,
                          u"The copied picture is too large to work on: 1 by 40000 "
                          "pixels. Please copy a smaller part of it."_s);
    click(window.get(), "cmdPaste");
    EXPECT_EQ(picture().size(), questionPage);
    open();
    key(Qt::Key_Escape);
    EXPECT_FALSE(window->isVisible());
}

TEST_F(Authoring, TheMouseMayLeaveTheWindowOrBeCutShort)
{
    openWithPicture();
    control<QScrollBar>(window.get(), "VScroll")->setValue(150);
    EXPECT_EQ(canvas()->y(), -150);
    drag({700, 600}, {5000, -5000});
    EXPECT_EQ(selection(), QRect(700, 0, captureSize.width() - 700, 600));
    // A second button changes nothing; a lost release ends at the next move.
    QTest::mousePress(canvas(), Qt::LeftButton, {}, {10, 200});
    QTest::mousePress(canvas(), Qt::RightButton, {}, {20, 210});
    EXPECT_EQ(window->canvas().state().SelX1, 10);
    QMouseEvent move(QEvent::MouseMove, QPointF(60, 230), QPointF(60, 230), Qt::NoButton,
                     Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(canvas(), &move);
    EXPECT_FALSE(window->canvas().isDragging());
    QTest::mousePress(canvas(), Qt::LeftButton, {}, {300, 300});
    QTest::mouseMove(canvas(), {350, 350});
    EXPECT_TRUE(window->canvas().Drawing);
    window->close();
    window.reset();
    EXPECT_EQ(questions(), 0);
}

TEST_F(Authoring, TextGoesFromTheDialogToTheSelectionsCorner)
{
    openWithPicture();
    drag({100, 500}, {150, 560});
    const CanvasFont& font = window->canvas().font;
    QWidget* dialog = nullptr;
    const auto withDialog = [&](const std::function<void()>& use) {
        QTimer::singleShot(0, [&dialog, use] {
            dialog = QApplication::activeModalWidget();
            use();
        });
        click(window.get(), "cmdText");
    };
    const auto box = [&](const char* name) { return control<QCheckBox>(dialog, name); };
    withDialog([&] {
        control<QRadioButton>(dialog, "optVerdana")->click();
        control<ListBox>(dialog, "lstFontSize")->setListIndex(7);
        box("chkBold")->click();
        box("chkUnderline")->click();
        EXPECT_EQ(control<QLabel>(dialog, "lblSample")->font(), stampFont(font));
        messages.expectInform(u"Missing Text"_s, u"Please enter the text you would like to add."_s);
        control<QLineEdit>(dialog, "txtText")->setText(u"   "_s);
        click(dialog, "cmdAddText");
        click(dialog, "cmdCancel");
    });
    EXPECT_TRUE(window->canvas().state().SelectionShown);
    EXPECT_EQ(font.name + QString::number(font.size), u"Verdana24"_s);
    EXPECT_TRUE(font.bold && font.underline && !font.italic);
    const QImage before = picture();
    withDialog([&] {
        // The face and the size start afresh; the style stays with the canvas, unticked.
        EXPECT_EQ(font.name + QString::number(font.size), u"MS Sans Serif10"_s);
        EXPECT_TRUE(font.bold && font.underline && !font.italic);
        EXPECT_FALSE(box("chkBold")->isChecked() || box("chkUnderline")->isChecked());
        EXPECT_TRUE(control<QLabel>(dialog, "lblStyleHint")->isVisible());
        auto* line = control<QLineEdit>(dialog, "txtText");
        QTest::keyClicks(line, u" Part  a "_s);
        QTest::keyClick(line, Qt::Key_Tab);
        EXPECT_EQ(dialog->focusWidget()->objectName(), u"optMSSansSerif"_s);
        QTest::keyClick(line, Qt::Key_Return);
    });
    EXPECT_NE(picture(), before);
    EXPECT_EQ(picture().copy(0, 0, 1400, 500), before.copy(0, 0, 1400, 500));
    EXPECT_FALSE(window->canvas().state().SelectionShown);
}

} // namespace varnholt::test
