#include "app/frmAssessment.h"
#include "support/gui.h"
#include "support/test_services.h"
#include "toolkit/ListBox.h"
#include "toolkit/desktop_services.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>

namespace varnholt::test {
namespace {

using namespace Qt::Literals::StringLiterals;

/// What an assistive program is told of a window, and what is wrong with it.
class Accessibility : public testing::Test, protected TestWorld
{
protected:
    void look(QAccessibleInterface* item, const QString& path)
    {
        const QAccessible::State is = item->state();
        if (is.invisible) {
            return;
        }
        const QString name = item->text(QAccessible::Name);
        const QString place =
            u"%1 > %2"_s.arg(path, item->object() ? item->object()->objectName() : QString());
        if (is.focusable && name.isEmpty()) {
            ADD_FAILURE() << "no name: " << place.toStdString();
        }
        // "Yes" alone says nothing to who cannot see the frame it stands in.
        if (name == u"Yes" || name == u"No") {
            ADD_FAILURE() << "an option without its question: " << place.toStdString();
        }
        if (item->role() == QAccessible::Graphic && name.isEmpty()) {
            ADD_FAILURE() << "a picture of what? " << place.toStdString();
        }
        if (name.contains(u'&')) {
            ADD_FAILURE() << "a mnemonic's mark: " << name.toStdString();
        }
        const auto* label = qobject_cast<QLabel*>(item->object());
        if (label && label->text().isEmpty() && !name.isEmpty()) {
            ADD_FAILURE() << "an empty label is called: " << name.toStdString() << " in "
                          << place.toStdString();
        }
        for (int i = 0; i < item->childCount(); ++i) {
            if (QAccessibleInterface* child = item->child(i)) {
                look(child, place);
            }
        }
    }
    void look(QWidget* window)
    {
        QAccessibleInterface* item = QAccessible::queryAccessibleInterface(window);
        EXPECT_EQ(item->role() == QAccessible::Dialog || item->role() == QAccessible::AlertMessage,
                  qobject_cast<QDialog*>(window) != nullptr)
            << item->role();
        look(item, QString());
    }

    /// Does something that opens a dialog, looks at that and leaves it again.
    void lookAtDialog(QWidget* owner, const char* button,
                      const std::function<void(QWidget*)>& inside = {})
    {
        bool looked = false;
        const auto watch = [&](auto&& self) -> void {
            QTimer::singleShot(5, owner, [&, self] {
                QWidget* modal = QApplication::activeModalWidget();
                if (!modal || modal == owner || !modal->isVisible()) {
                    return self(self);
                }
                look(modal);
                looked = true;
                if (inside) {
                    inside(modal);
                }
                static_cast<QDialog*>(modal)->reject();
            });
        };
        watch(watch);
        control<QAbstractButton>(owner, button)->click();
        EXPECT_TRUE(looked) << button;
    }
};

TEST_F(Accessibility, EveryWindowCanBeHeard)
{
    DesktopMessageBoxes boxes;
    services.messageBoxes = &boxes;
    library.addGenerated(u"Physics"_s, 2, 2, 3);
    for (int i = 1; i <= 12; ++i) {
        testPicture({40, 30}, i).save(library.folder() + u"/Files/%1.jpg"_s.arg(i));
    }
    clipboard.picture = testPicture({400, 300}, 5);
    frmAssessment frame(services, state, u"/guide.html"_s);
    frame.show();
    for (const char* entry : {"mnuCreate", "mnuExport", "mnuImport", "mnuTutorial", "mnAbout",
                              "mnuManageAssessments"}) {
        control<QAction>(&frame, entry)->trigger();
        look(&frame);
    }
    control<ListBox>(&frame, "lstTopics")->setListIndex(0);
    control<ListBox>(&frame, "lstSubtopics")->setListIndex(0);
    look(&frame);
    lookAtDialog(&frame, "cmdNewTopic");
    lookAtDialog(&frame, "cmdDeleteTopic");
    lookAtDialog(&frame, "cmdEditQuestion");
    lookAtDialog(&frame, "cmdAddNewQuestion", [this](QWidget* authoring) {
        lookAtDialog(authoring, "cmdNewTopic");
        click(authoring, "cmdPaste");
        QWidget* canvas = control<QWidget>(authoring, "picQuestion");
        QTest::mousePress(canvas, Qt::LeftButton, {}, {20, 20});
        QTest::mouseMove(canvas, {200, 120});
        QTest::mouseRelease(canvas, Qt::LeftButton, {}, {200, 120});
        look(authoring);
        lookAtDialog(authoring, "cmdText");
    });
    control<QAction>(&frame, "mnuCreate")->trigger();
    click(&frame, "cmdCreate");
    auto* review = control<QWidget>(&frame, "frmSelect");
    look(review);
    auto* topics = QAccessible::queryAccessibleInterface(control<QWidget>(&frame, "lstTopics"));
    EXPECT_EQ(topics->child(0)->role(), QAccessible::CheckBox);
}

} // namespace
} // namespace varnholt::test
