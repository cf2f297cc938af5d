#include "store/errors.h"
#include "toolkit/ComboBox.h"
#include "toolkit/HeldKeys.h"
#include "toolkit/LineEdit.h"
#include "toolkit/ListBox.h"
#include "toolkit/LongWork.h"
#include "toolkit/desktop_services.h"

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QLabel>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>
#include <QShortcut>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QWheelEvent>

#include <gtest/gtest.h>

#include <tuple>
#include <vector>

namespace varnholt {
namespace {

using namespace Qt::Literals::StringLiterals;

class ListBoxTest : public testing::Test
{
protected:
    void show(ListBox::Mode mode)
    {
        list = std::make_unique<ListBox>(mode);
        list->setRows({{u"one"_s, 11}, {u"two"_s, 22}, {u"three"_s, 33}});
        list->resize(300, 200);
        list->show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(list.get()));
    }
    [[nodiscard]] QRect rect(int row) const
    {
        return list->visualRect(list->model()->index(row, 0));
    }
    [[nodiscard]] QPoint text(int row) const { return rect(row).center(); }
    [[nodiscard]] QPoint box(int row) const { return {rect(row).left() + 8, text(row).y()}; }

    /// An action and the row it is for; what it leaves: how often `Click` fired, the current row,
    /// a mark per row.
    using Step = std::tuple<const char*, int, int, const char*>;
    void perform(const QString& what)
    {
        const QString action = what.section(u' ', 0, 0);
        const int row = what.section(u' ', 1).toInt();
        if (action == u"text" || action == u"box" || action == u"right" || action == u"below") {
            QTest::mouseClick(list->viewport(),
                              action == u"right" ? Qt::RightButton : Qt::LeftButton, {},
                              action == u"below" ? QPoint(150, 190)
                              : action == u"box" ? box(row)
                                                 : text(row));
        } else if (action == u"twice") {
            QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, box(row));
        } else if (action == u"index") {
            list->setListIndex(row);
        } else if (action == u"select" || action == u"unselect") {
            list->setSelected(row, action == u"select");
        } else if (action == u"all" || action == u"none") {
            list->setAllSelected(action == u"all", row);
        } else if (action == u"toggle") {
            QAccessibleInterface* rows = QAccessible::queryAccessibleInterface(list.get());
            ASSERT_NE(rows->child(row), nullptr);
            EXPECT_EQ(rows->child(row)->text(QAccessible::Name), list->itemText(row));
            rows->child(row)->actionInterface()->doAction(
                QAccessibleActionInterface::toggleAction());
        } else if (action == u"rename") {
            list->setItemTexts({u"a"_s, u"b"_s, u"c"_s});
        } else if (action == u"clear") {
            list->clear();
        } else if (!action.isEmpty()) {
            QTest::keyClick(list.get(), action == u"Down" ? Qt::Key_Down : Qt::Key_Space);
        }
    }
    void expectAfter(const std::vector<Step>& steps)
    {
        for (const auto& [what, clicks, current, marks] : steps) {
            SCOPED_TRACE(what);
            const QSignalSpy spy(list.get(), &ListBox::Click);
            perform(QLatin1String(what));
            QByteArray found;
            for (int row = 0; row < list->listCount(); ++row) {
                found += list->selected(row) ? 'x' : '-';
            }
            EXPECT_EQ(spy.size(), clicks);
            EXPECT_EQ(list->listIndex(), current);
            EXPECT_EQ(found.toStdString(), marks);
        }
    }

    std::unique_ptr<ListBox> list;
};

TEST_F(ListBoxTest, SingleSelectionIsTheCurrentRow)
{
    show(ListBox::Mode::Single);
    expectAfter({{"", 0, -1, "---"},
                 {"index 2", 1, 2, "--x"},
                 {"index 2", 1, 2, "--x"},
                 {"text 0", 1, 0, "x--"},
                 {"Down", 1, 1, "-x-"},
                 {"below", 0, 1, "-x-"},
                 {"right 2", 0, 1, "-x-"},
                 {"select 0", 1, 0, "x--"}});
    // The chosen row stays marked whatever modifier is held down.
    QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::ControlModifier, text(0));
    QTest::keyClick(list.get(), Qt::Key_Space, Qt::ControlModifier);
    EXPECT_TRUE(list->selectionModel()->isSelected(list->currentIndex()));
    expectAfter({{"unselect 0", 1, -1, "---"}});
}

TEST_F(ListBoxTest, MultiSelectionIsTickedAndTextOnlyFocused)
{
    show(ListBox::Mode::Multi);
    expectAfter({{"text 1", 1, 1, "---"},
                 {"box 2", 1, 2, "--x"},
                 {"right 0", 0, 2, "--x"},
                 {"twice 2", 1, 2, "---"},
                 {"Space", 1, 2, "--x"},
                 {"select 0", 1, 2, "x-x"},
                 {"all 0", 1, 0, "xxx"},
                 {"none -1", 1, 0, "---"},
                 {"toggle 1", 1, 1, "-x-"},
                 {"index 0", 1, 0, "-x-"},
                 {"unselect 1", 1, 0, "---"},
                 {"rename", 0, 0, "---"}});
    EXPECT_EQ(list->itemText(2), u"c"_s);
    EXPECT_EQ(list->itemData(2), 33);
    expectAfter({{"clear", 0, -1, ""}, {"all 0", 0, -1, ""}});
    EXPECT_THROW((void)list->itemData(0), std::out_of_range);
}

TEST_F(ListBoxTest, OddTextsStayWholeAndShowOnOneLine)
{
    show(ListBox::Mode::Multi);
    const QString odd = u"a <b>&amp;\nb\t\u2028😀 "_s + QString(10'000, u'x') + u" (4 of 4)"_s;
    list->addItem(odd, 1);
    EXPECT_EQ(list->itemText(3), odd);
    const QString line = list->model()->index(3, 0).data().toString();
    EXPECT_TRUE(line.startsWith(u"a <b>&amp; b  😀 xxx"_s)) << line.toStdString();
    EXPECT_TRUE(line.endsWith(u"x (4 of 4)"_s)) << line.toStdString();
    EXPECT_LT(line.size(), 1000);
    EXPECT_EQ(rect(3).height(), rect(0).height());
}

TEST(ComboBoxTest, ReactsToTheUserAndToSetListIndexOnly)
{
    ComboBox combo;
    const QSignalSpy clicks(&combo, &ComboBox::Click);
    combo.addEntry(u"one"_s, 11);
    combo.addEntry(u"two"_s, 22);
    EXPECT_EQ(combo.listIndex(), -1);
    EXPECT_THROW((void)combo.entryData(combo.listIndex()), std::out_of_range);
    combo.showEntry(0);
    EXPECT_EQ(clicks.size(), 0);
    combo.setListIndex(1);
    combo.setListIndex(1);
    EXPECT_EQ(clicks.size(), 2);
    EXPECT_EQ(combo.entryData(1), 22);
    combo.show();
    QTest::keyClick(&combo, Qt::Key_Up);
    EXPECT_EQ(combo.listIndex(), 0);
    // The wheel over a list that does not have the focus only scrolls what is around it.
    combo.clearFocus();
    QWheelEvent wheel({5, 5}, combo.mapToGlobal(QPointF(5, 5)), {}, {0, -120}, {}, {},
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&combo, &wheel);
    EXPECT_FALSE(wheel.isAccepted());
    EXPECT_EQ(combo.listIndex(), 0);
    combo.clear();
    EXPECT_EQ(clicks.size(), 3);
}

TEST(LineEditTest, LineBreaksBecomeBlanksHoweverTheyComeIn)
{
    LineEdit field(u"a\tb"_s);
    EXPECT_EQ(field.text(), u"a b"_s);
    field.setText(u"<>"_s);
    field.setCursorPosition(1);
    QApplication::clipboard()->setText(u"1\r\n2\r3\n4\u20285\u20296"_s);
    field.paste();
    QTest::keyClicks(&field, u"!"_s);
    EXPECT_EQ(field.text(), u"<1 2 3 4 5 6!>"_s);

    QFocusEvent byTab(QEvent::FocusIn, Qt::TabFocusReason);
    QApplication::sendEvent(&field, &byTab);
    EXPECT_EQ(field.selectedText().size() - field.cursorPosition(), field.text().size())
        << "all of it is chosen, and its beginning shows";
}

TEST(HeldKeysTest, AKeyActsOnceUntilItIsReleased)
{
    QWidget window;
    LineEdit field(&window);
    QPushButton button(u"&x"_s, &window);
    QObject::connect(&field, &QLineEdit::returnPressed, &button, &QPushButton::click);
    button.setAutoDefault(true);
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    const HeldKeys heldKeys;
    // Whether the windowing system tells of the repetition, and a text field has the focus; the
    // clicks of the button while the key is held for four repetitions.
    for (const auto& [what, key, flagged, inField, heldClicks] :
         {std::tuple("Space", Qt::Key_Space, false, false, 1),
          {"Return", Qt::Key_Return, false, false, 1},
          {"flagged", Qt::Key_Return, true, false, 1},
          {"Return in a field", Qt::Key_Return, false, true, 1},
          {"letter in a field", Qt::Key_A, false, true, 0}}) {
        SCOPED_TRACE(what);
        field.clear();
        (inField ? static_cast<QWidget&>(field) : button).setFocus();
        const QSignalSpy clicks(&button, &QPushButton::clicked);
        const QString typed = key == Qt::Key_A ? u"a"_s : QString();
        quint64 now = 1000;
        const auto send = [&, key = key, flagged = flagged](QEvent::Type type, bool repeat) {
            QKeyEvent event(type, key, {}, typed, flagged && repeat);
            event.setTimestamp(now);
            QApplication::sendEvent(window.focusWidget(), &event);
        };
        send(QEvent::KeyPress, false);
        for (int i = 0; i < 4; ++i) {
            now += 40;
            send(QEvent::KeyRelease, true);
            send(QEvent::KeyPress, true);
        }
        EXPECT_EQ(clicks.size(), heldClicks);
        EXPECT_EQ(field.text(), typed.repeated(5));
        now += 40;
        send(QEvent::KeyRelease, false);
        now += 40;
        send(QEvent::KeyPress, false);
        send(QEvent::KeyRelease, false);
        EXPECT_EQ(clicks.size(), 2 * heldClicks);
    }

    // A letter that has brought the focus elsewhere leaves nothing there.
    button.setFocus();
    field.clear();
    QTest::keyPress(&button, Qt::Key_X);
    field.setFocus();
    QKeyEvent held(QEvent::KeyPress, Qt::Key_X, {}, u"x"_s, true);
    QApplication::sendEvent(&field, &held);
    EXPECT_EQ(field.text(), u""_s);
}

TEST(LongWorkTest, IsBusyAtOnceTakesNoInputAndShowsABarAfterHalfASecond)
{
    QLineEdit window;
    window.show();
    auto* shortcut = new QShortcut(Qt::Key_F5, &window);
    const QSignalSpy started(shortcut, &QShortcut::activated);
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    const auto bar = [&] { return window.findChild<QProgressDialog*>(); };
    for (const bool cancelled : {false, true}) {
        using enum LongWork::Cancel;
        LongWork work(&window, u"Working"_s, cancelled ? Offered : NotOffered);
        ASSERT_NE(QApplication::overrideCursor(), nullptr);
        EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
        QTest::qWait(50);
        work.progress(1, 3);
        EXPECT_FALSE(bar()->isVisible());
        QTest::keyClicks(&window, u"typed"_s);
        QTest::keyClick(window.windowHandle(), Qt::Key_F5);
        EXPECT_TRUE(started.isEmpty());
        EXPECT_FALSE(window.close());
        QTest::qWait(600);
        EXPECT_FALSE(bar()->isVisible()) << "it would cover a message that stands now";
        work.progress(2, 3);
        EXPECT_TRUE(bar()->isVisible());
        QMessageBox message;
        QTimer::singleShot(0, &message, [&] {
            EXPECT_TRUE(work.goOn());
            EXPECT_FALSE(bar()->isVisible());
            QTest::keyClick(&message, Qt::Key_Escape);
        });
        message.exec();
        EXPECT_TRUE(work.goOn());
        EXPECT_TRUE(bar()->isVisible());
        EXPECT_EQ(bar()->value(), 1);
        EXPECT_EQ(bar()->maximum(), 3);
        auto* button = bar()->findChild<QPushButton*>();
        ASSERT_EQ(button != nullptr, cancelled);
        if (cancelled) {
            QTest::mouseClick(button, Qt::LeftButton);
            EXPECT_THROW(work.progress(3, 3), Cancelled);
        }
    }
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    QTest::keyClicks(&window, u"x"_s);
    EXPECT_EQ(window.text(), u"x"_s);
    QTest::keyClick(window.windowHandle(), Qt::Key_F5);
    EXPECT_EQ(started.size(), 1);
}

TEST(DesktopMessageBoxesTest, ShowTextAsItIsAndTakeEscapeForNo)
{
    DesktopMessageBoxes desktop;
    MessageBoxes& boxes = desktop;
    const auto escape = [] {
        QWidget* box = QApplication::activeModalWidget();
        if (auto* message = qobject_cast<QMessageBox*>(box)) {
            EXPECT_EQ(message->textFormat(), Qt::PlainText);
            EXPECT_EQ(message->text(), u"<b>&x"_s);
            EXPECT_EQ(message->defaultButton(), message->button(QMessageBox::No));
        } else {
            auto* hint = box->findChild<QLabel*>(u"lblHint"_s);
            EXPECT_FALSE(hint->isVisible());
            QTest::keyClicks(box->findChild<QLineEdit*>(), u"O'Brien"_s);
            EXPECT_TRUE(hint->isVisible());
        }
        QTest::keyClick(box, Qt::Key_Escape);
    };
    QTimer::singleShot(0, escape);
    EXPECT_FALSE(boxes.yesNo(u"Sure?"_s, u"<b>&x"_s));
    QTimer::singleShot(0,
                       [] { QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Return); });
    EXPECT_TRUE(boxes.yesNo(u"Save?"_s, u"Save it?"_s, MessageBoxes::Answer::Yes));
    QTimer::singleShot(0, escape);
    EXPECT_EQ(boxes.inputText(u"Name"_s, u"Which?"_s, u"default"_s), QString());
}

} // namespace
} // namespace varnholt
