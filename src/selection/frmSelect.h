#pragma once

#include "presentation/slide_builder.h"
#include "selection/review.h"

#include <QDialog>

#include <functional>

class QLabel;

namespace varnholt {

class PictureView;
struct ProgramState;
struct Services;

/// The review window: shows the drawn questions one at a time to be included or excluded, and has
/// the slides of those included built. A question is judged only after its picture was on the
/// screen. A window of its own, not modal; it deletes itself when it closes. Closing it other
/// than by its buttons asks first when questions have been included.
class frmSelect : public QDialog
{
    Q_OBJECT

public:
    /// Builds the marked questions of a draw with its progress over `window`.
    using Build = std::function<BuildOutcome(QWidget* window, const Draw& draw)>;
    /// `parent` is the window it stays above.
    frmSelect(Services& services, const ProgramState& state, Draw draw, Build build,
              QWidget* parent);

    /// What is reviewed, as it has been judged so far.
    [[nodiscard]] const Draw& draw() const { return review_.draw(); }

    /// Shows the first question; closes at once when its picture is missing.
    void Form_Load();
    /// Closes it without a question.
    void abandon();

Q_SIGNALS:
    /// The window has closed, on whatever path. Comes once.
    void unloaded();

protected:
    void closeEvent(QCloseEvent* event) override;
    /// Esc closes the window.
    void reject() override;
    /// Notices when the picture is painted.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildControls();
    void cmdInclude_Click();
    void cmdExclude_Click();
    void cmdCreate_Click();
    void ShowReviewQuestion();
    void goOn(Review::Next next);
    void showCounts();
    /// True when there are no slides, so that the review goes on.
    bool build();
    [[nodiscard]] bool mayLeave();

    Services& services_;
    const ProgramState& state_;
    Build build_;
    Review review_;
    /// The picture on show has been on the screen.
    bool seen_ = false;
    /// What was included needs no more care: it is being built or was given up.
    bool settled_ = false;
    bool unloaded_ = false;

    PictureView* imgQuestion_ = nullptr;
    QLabel* lblTopicDescription_ = nullptr;
    QLabel* lblAnswer_ = nullptr;
    QLabel* lblCount1_ = nullptr;
    QLabel* lblCount2_ = nullptr;
};

} // namespace varnholt
