#pragma once

#include "show/Show.h"
#include "show/ShowPictures.h"

#include <QEventLoop>
#include <QTimer>
#include <QWidget>

class QLabel;
class QPushButton;

namespace varnholt {

class FittedLabel;
class KeepAwake;
class ShowDesktop;
class ShowMemory;
class ShowView;
struct Services;

/// Shows a test in class: the pupils' window on the second screen and this one, the teacher's, with
/// the answer, what comes next and the buttons, on the first. With one screen the pupils' window
/// stands alone, takes all keys and says what they wait for. Where a screen goes in the middle of a
/// show this window takes over, and when it comes back the pupils' window returns to it.
class frmShow : public QWidget
{
    Q_OBJECT

public:
    /// The window opens over `parent`. `memory` and `desktop` outlive it.
    frmShow(Services& services, ShowTest test, const ShowWishes& wishes, ShowMemory& memory,
            ShowDesktop& desktop, QWidget* parent);
    ~frmShow() override;

    /// Shows the test, and returns when the show has ended. Meanwhile the other windows of the
    /// program take no input.
    void exec();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    /// Keys, closing and the pointer of the pupils' window.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildControls();
    void connectControls();
    QPushButton* makeKeyButton(const char* objectName, const QString& caption, const QString& help,
                               const QString& key, void (frmShow::*handler)());
    void cmdBack_Click();
    void cmdNext_Click();
    void cmdAnswer_Click();
    void cmdSwap_Click();
    void cmdEnd_Click();
    void cmdClock_Click();
    void cmdLess_Click();
    void cmdMore_Click();
    void cmdBlack_Click();
    void cmdWhite_Click();
    void cmdFew_Click();
    void cmdHalf_Click();
    void cmdMost_Click();
    void cmdScreens_Click();

    void press(QKeyEvent* event);
    void placeWindows();
    /// Shows where the show stands: to the pupils at once, and to the teacher, and to the library,
    /// after that.
    void refresh();
    void showTeacher();
    void showButtons();
    [[nodiscard]] QString note(PictureFault pictureFault) const;
    [[nodiscard]] static QString faultWords(PictureFault fault);
    void restPointer();

    Services& services_;
    ShowMemory& memory_;
    ShowDesktop& desktop_;
    Show show_;
    ShowPictures pictures_;
    QEventLoop loop_;
    QTimer ticks_;
    /// For what need not come before the pupils' picture.
    QTimer later_;
    QTimer pointerRests_;
    /// The screen of the pupils' window the last time; empty for none.
    QString pupilsScreen_;
    /// With a single screen this window is on it, not the pupils'.
    bool takenOver_ = false;

    ShowView* pupils_ = nullptr;
    ShowView* viewNow_ = nullptr;
    ShowView* viewNext_ = nullptr;
    QLabel* lblCount_ = nullptr;
    QLabel* lblTopic_ = nullptr;
    QLabel* lblShown_ = nullptr;
    QLabel* lblNext_ = nullptr;
    QLabel* lblNote_ = nullptr;
    FittedLabel* lblAnswer_ = nullptr;
    FittedLabel* lblClock_ = nullptr;
    QPushButton* cmdBack_ = nullptr;
    QPushButton* cmdNext_ = nullptr;
    QPushButton* cmdAnswer_ = nullptr;
    QPushButton* cmdSwap_ = nullptr;
    QPushButton* cmdClock_ = nullptr;
    QPushButton* cmdLess_ = nullptr;
    QPushButton* cmdBlack_ = nullptr;
    QPushButton* cmdWhite_ = nullptr;
    QPushButton* cmdScreens_ = nullptr;
    std::vector<QPushButton*> outcomes_;
};

} // namespace varnholt
