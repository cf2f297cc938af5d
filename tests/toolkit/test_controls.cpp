#include "toolkit/ComboBox.h"
#include "toolkit/ListBox.h"

#include <QSignalSpy>
#include <QStyle>
#include <QTest>

#include <gtest/gtest.h>

namespace varnholt {
namespace {

class ListBoxTest : public testing::TestWithParam<ListBox::Mode>
{
protected:
    ListBoxTest()
        : list(GetParam())
        , clicks(&list, &ListBox::Click)
    {
        list.setRows({{QStringLiteral("one"), 11, false},
                      {QStringLiteral("two"), 22, false},
                      {QStringLiteral("three"), 33, false}});
        list.resize(300, 200);
        list.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&list));
    }

    [[nodiscard]] QPoint textOf(int row) const
    {
        return list.visualRect(list.model()->index(row, 0)).center();
    }
    [[nodiscard]] QPoint boxOf(int row) const
    {
        const QRect rect = list.visualRect(list.model()->index(row, 0));
        return {rect.left() + list.style()->pixelMetric(QStyle::PM_IndicatorWidth) / 2,
                rect.center().y()};
    }
    void press(QPoint position)
    {
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, position);
    }
    /// Number of clicks since the last call.
    int fired()
    {
        const int count = static_cast<int>(clicks.size());
        clicks.clear();
        return count;
    }

    ListBox list;
    QSignalSpy clicks;
};

TEST_P(ListBoxTest, FillingAndRenamingFireNothingAndLeaveNoRowCurrent)
{
    EXPECT_EQ(list.listIndex(), -1);
    list.addItem(QStringLiteral("four"), 44);
    EXPECT_EQ(list.itemData(3), 44);
    EXPECT_EQ(list.listIndex(), -1);
    list.setListIndex(1);
    EXPECT_EQ(fired(), 1);
    list.setItemTexts(
        {QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c"), QStringLiteral("d")});
    EXPECT_EQ(list.itemText(3), QStringLiteral("d"));
    EXPECT_EQ(list.listIndex(), 1);
    list.clear();
    EXPECT_EQ(list.listIndex(), -1);
    EXPECT_EQ(list.listCount(), 0);
    EXPECT_EQ(fired(), 0);
    EXPECT_THROW((void)list.itemData(0), std::out_of_range);
    EXPECT_THROW((void)list.itemText(-1), std::out_of_range);
}

TEST_P(ListBoxTest, CurrentRowFiresOnceForUserAndProgramAlike)
{
    list.setListIndex(2);
    EXPECT_EQ(fired(), 1);
    list.setListIndex(2);
    EXPECT_EQ(fired(), 1);
    press(textOf(0));
    EXPECT_EQ(fired(), 1);
    EXPECT_EQ(list.listIndex(), 0);
    press(textOf(0));
    EXPECT_EQ(fired(), 1);
    QTest::keyClick(&list, Qt::Key_Down);
    EXPECT_EQ(fired(), 1);
    EXPECT_EQ(list.listIndex(), 1);
    press({150, 190}); // below the last row
    EXPECT_EQ(fired(), 0);
    QTest::mouseClick(list.viewport(), Qt::RightButton, {}, boxOf(2));
    EXPECT_FALSE(list.selected(0));
}

TEST_P(ListBoxTest, OddTextsStayWholeAndShowOnOneLine)
{
    const QString odd = QStringLiteral("a <b>&amp;\nb\t\u2028😀 ") + QString(10'000, u'x');
    list.addItem(odd, 1);
    EXPECT_EQ(list.itemText(3), odd);
    const QString line = list.model()->index(3, 0).data().toString();
    EXPECT_TRUE(line.startsWith(QStringLiteral("a <b>&amp; b  😀 xxx"))) << line.toStdString();
    EXPECT_LT(line.size(), 1000);
    EXPECT_EQ(list.visualRect(list.model()->index(3, 0)).height(),
              list.visualRect(list.model()->index(0, 0)).height());
}

INSTANTIATE_TEST_SUITE_P(Both, ListBoxTest,
                         testing::Values(ListBox::Mode::Single, ListBox::Mode::Multi));

class MultiListBox : public ListBoxTest
{};
INSTANTIATE_TEST_SUITE_P(Multi, MultiListBox, testing::Values(ListBox::Mode::Multi));

class SingleListBox : public ListBoxTest
{};
INSTANTIATE_TEST_SUITE_P(Single, SingleListBox, testing::Values(ListBox::Mode::Single));

TEST_P(SingleListBox, TheCurrentRowIsTheSelectedOne)
{
    list.setListIndex(1);
    EXPECT_TRUE(list.selected(1));
    EXPECT_FALSE(list.selected(0));
    list.setSelected(0, true);
    EXPECT_TRUE(list.selected(0));
    list.setSelected(0, false);
    EXPECT_EQ(list.listIndex(), -1);
    EXPECT_FALSE(list.selected(-1));
}

TEST_P(MultiListBox, TickingSelectsAndFocusesClickingTextOnlyFocuses)
{
    press(textOf(1));
    EXPECT_FALSE(list.selected(1));
    fired();

    press(boxOf(2));
    EXPECT_TRUE(list.selected(2));
    EXPECT_EQ(list.listIndex(), 2);
    EXPECT_EQ(fired(), 1);

    QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, boxOf(2));
    EXPECT_EQ(fired(), 1);
    EXPECT_FALSE(list.selected(2));

    QTest::keyClick(&list, Qt::Key_Space);
    EXPECT_TRUE(list.selected(2));
    EXPECT_EQ(fired(), 1);

    list.setSelected(0, true);
    EXPECT_EQ(fired(), 1);
    EXPECT_EQ(list.listIndex(), 2);
}

TEST_P(MultiListBox, ManyRowsChangeWithOneClick)
{
    list.setAllSelected(true, 0);
    EXPECT_EQ(fired(), 1);
    EXPECT_TRUE(list.selected(0) && list.selected(1) && list.selected(2));
    EXPECT_EQ(list.listIndex(), 0);
    list.setAllSelected(false);
    EXPECT_EQ(fired(), 1);
    EXPECT_FALSE(list.selected(0) || list.selected(1) || list.selected(2));
    list.clear();
    list.setAllSelected(true, 0);
    EXPECT_EQ(fired(), 0);
}

TEST(ComboBoxTest, ReactsToTheUserAndToSetListIndexOnly)
{
    ComboBox combo;
    QSignalSpy clicks(&combo, &ComboBox::Click);
    combo.addEntry(QStringLiteral("one"), 11);
    combo.addEntry(QStringLiteral("two"), 22);
    EXPECT_EQ(combo.listIndex(), -1);
    EXPECT_THROW((void)combo.entryData(combo.listIndex()), std::out_of_range);
    combo.showEntry(0);
    EXPECT_EQ(clicks.size(), 0);
    combo.setListIndex(1);
    EXPECT_EQ(clicks.size(), 1);
    combo.setListIndex(1);
    EXPECT_EQ(clicks.size(), 2);
    EXPECT_EQ(combo.entryData(1), 22);
    combo.show();
    combo.setFocus();
    QTest::keyClick(&combo, Qt::Key_Up);
    EXPECT_EQ(combo.listIndex(), 0);
    EXPECT_EQ(clicks.size(), 3);
    combo.clear();
    EXPECT_EQ(clicks.size(), 3);
}

} // namespace
} // namespace varnholt
