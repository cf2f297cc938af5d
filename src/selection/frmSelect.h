#pragma once

#include "pictures/picture_loader.h"
#include "selection/build_run.h"
#include "selection/review.h"

#include <QWidget>

class QLabel;

namespace varnholt {

class PictureView;
struct ProgramState;
struct Services;

/// The review window: shows the drawn questions one at a time to be included or excluded, and
/// builds the slides of those included. A window of its own, not modal; it deletes itself
/// when it closes.
class frmSelect : public QWidget
{
    Q_OBJECT

public:
    /// `parent` is the window it stays above.
    frmSelect(Services& services, ProgramState& state, const SlideOptions& options,
              QWidget* parent);

    /// Shows the first question; closes at once when its picture is missing.
    void Form_Load();

Q_SIGNALS:
    /// The window has closed, on whatever path. Comes once.
    void unloaded();

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void buildControls();
    void cmdInclude_Click();
    void cmdExclude_Click();
    void cmdCreate_Click();
    void ShowReviewQuestion();
    void goOn(Review::Next next);
    void showCounts();
    void build();

    Services& services_;
    ProgramState& state_;
    SlideOptions options_;
    Review review_;
    PictureLoader pictures_;
    bool unloaded_ = false;

    PictureView* imgQuestion_ = nullptr;
    QLabel* lblTopicDescription_ = nullptr;
    QLabel* lblAnswer_ = nullptr;
    QLabel* lblCount1_ = nullptr;
    QLabel* lblCount2_ = nullptr;
};

} // namespace varnholt
