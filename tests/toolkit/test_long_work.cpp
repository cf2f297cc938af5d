#include "store/errors.h"
#include "toolkit/LongWork.h"

#include <QApplication>
#include <QLineEdit>
#include <QProgressDialog>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

namespace varnholt {
namespace {

class LongWorkTest : public testing::Test
{
protected:
    LongWorkTest()
    {
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
    }

    QProgressDialog* bar() { return window.findChild<QProgressDialog*>(); }

    QLineEdit window;
};

TEST_F(LongWorkTest, IsBusyAtOnceTakesNoInputAndShowsABarAfterHalfASecond)
{
    {
        LongWork work(&window, QStringLiteral("Working"), LongWork::Cancel::Offered);
        ASSERT_NE(QApplication::overrideCursor(), nullptr);
        EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
        work.progress(1, 3);
        EXPECT_FALSE(bar()->isVisible());
        QTest::keyClicks(&window, QStringLiteral("typed"));
        EXPECT_FALSE(window.close());
        QTest::qSleep(600);
        work.progress(2, 3);
        EXPECT_TRUE(bar()->isVisible());
        EXPECT_EQ(bar()->value(), 1);
        EXPECT_EQ(bar()->maximum(), 3);

        QTest::mouseClick(bar()->findChild<QPushButton*>(), Qt::LeftButton);
        EXPECT_THROW(work.progress(3, 3), Cancelled);
    }
    EXPECT_EQ(window.text(), QString());
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    QTest::keyClicks(&window, QStringLiteral("x"));
    EXPECT_EQ(window.text(), QStringLiteral("x"));
}

TEST_F(LongWorkTest, OffersNoCancelWhereThereIsNone)
{
    LongWork work(&window, QStringLiteral("Working"), LongWork::Cancel::NotOffered);
    EXPECT_EQ(bar()->findChild<QPushButton*>(), nullptr);
}

} // namespace
} // namespace varnholt
