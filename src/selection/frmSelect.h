#pragma once

#include "presentation/slide_builder.h"
#include "selection/QuestionStrip.h"
#include "selection/review.h"

#include <QDialog>

#include <functional>
#include <memory>

class QLabel;
class QProgressBar;
class QPushButton;

namespace varnholt {

class HintLabel;
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
    struct Handlers
    {
        /// Builds the marked questions of a draw with its progress over `window`.
        std::function<BuildOutcome(QWidget* window, const Draw& draw)> build;
        /// When a question was used, in words; empty for nothing to say.
        std::function<QString(const QuestionRecord& question)> uses;
        /// Remembers the marked questions of a draw unbuilt; false when that was not possible,
        /// after it was told. Empty where nothing can be remembered.
        std::function<bool(const Draw& draw)> keep;
        /// Gets ready what `build` is going to need, which is held until the window closes. Empty
        /// where there is nothing.
        std::function<std::shared_ptr<void>()> prepare;
    };
    /// `parent` is the window it stays above.
    frmSelect(Services& services, const ProgramState& state, Review review, Handlers handlers,
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
    /// The keys of the buttons where the keyboard writes another script than Latin.
    void keyPressEvent(QKeyEvent* event) override;
    /// Notices when the picture is painted.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildControls();
    void cmdInclude_Click();
    void cmdExclude_Click();
    void cmdSwap_Click();
    void cmdBack_Click();
    void cmdOverview_Click();
    void cmdKeep_Click();
    void cmdCreate_Click();
    void ShowReviewQuestion();
    void goOn(Review::Next next);
    void showCounts();
    /// True when there are no slides, so that the review goes on.
    bool build();
    [[nodiscard]] bool mayLeave();
    [[nodiscard]] QString picturePath(int position) const;
    /// The questions included so far.
    [[nodiscard]] std::vector<StripEntry> accepted() const;
    void showButtons();

    Services& services_;
    const ProgramState& state_;
    Handlers handlers_;
    Review review_;
    /// The picture on show has been on the screen.
    bool seen_ = false;
    /// What was included needs no more care: it is being built or was given up.
    bool settled_ = false;
    bool unloaded_ = false;
    std::shared_ptr<void> prepared_;

    PictureView* imgQuestion_ = nullptr;
    QLabel* lblTopicDescription_ = nullptr;
    QLabel* lblAnswer_ = nullptr;
    QLabel* lblUses_ = nullptr;
    /// Which topics cannot have their numbers any more.
    HintLabel* lblShort_ = nullptr;
    QProgressBar* barAccepted_ = nullptr;
    QPushButton* cmdSwap_ = nullptr;
    QPushButton* cmdBack_ = nullptr;
    QPushButton* cmdOverview_ = nullptr;
    QPushButton* cmdKeep_ = nullptr;
    QLabel* lblCount1_ = nullptr;
    QLabel* lblCount2_ = nullptr;
};

} // namespace varnholt
