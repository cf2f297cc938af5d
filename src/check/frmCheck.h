#pragma once

#include "library/library_findings.h"

#include <QWidget>

#include <atomic>
#include <functional>
#include <optional>
#include <thread>
#include <vector>

class QLabel;
class QProgressBar;
class QPushButton;
class QTreeWidget;

namespace varnholt {

class HintLabel;
class Library;
struct Services;

/// Looks through the whole library on a thread of its own, lists what is wrong and offers a remedy
/// for each finding or for many at once, which can be undone. Nothing is removed.
class frmCheck : public QWidget
{
    Q_OBJECT

public:
    /// `mayBegin` is asked before the first remedy that changes the library; not when it is empty.
    frmCheck(Services& services, Library& library, std::function<bool()> mayBegin = {},
             QWidget* parent = nullptr);
    /// Stops a look that is not finished.
    ~frmCheck() override;

Q_SIGNALS:
    /// A row is to be shown where it is looked after.
    void showWanted(varnholt::Item item);
    /// A backup is to take the place of a damaged library.
    void backupsWanted();

protected:
    void focusInEvent(QFocusEvent* event) override;

private:
    void buildControls();
    void start();
    void run();
    void showProgress(int done, int all);
    /// `failure` says why the look came to no end; empty when it did.
    void finish(std::vector<Finding> findings, const QString& failure);

    void cmdCheckAgain_Click();
    void cmdShow_Click();
    void cmdRemedy_Click();
    void cmdUndo_Click();

    /// Applies a remedy that changes the library; false when the user does not want to.
    bool apply(Remedy remedy, const std::vector<int>& rows);
    void openFolder(FindingKind kind);
    /// Takes off the list what a restored place has put right as well.
    void forgetPlacesBack();
    void showFindings(int current);
    void showRemedy();
    [[nodiscard]] int currentRow() const;
    [[nodiscard]] Remedy currentRemedy() const;
    /// The selected rows with the remedy of the current one.
    [[nodiscard]] std::vector<int> chosenRows() const;

    Services& services_;
    Library& library_;
    /// Empty once it has been asked.
    std::function<bool()> mayBegin_;
    std::vector<Finding> findings_;
    /// The last remedy's step, and the findings before it.
    struct Done
    {
        std::int64_t step;
        int row;
        std::vector<Finding> findings;
        std::vector<Item> placesBack;
    };
    std::optional<Done> done_;
    bool running_ = false;
    std::atomic<bool> stop_ = false;
    std::thread thread_;

    QLabel* lblState_ = nullptr;
    QProgressBar* prgCheck_ = nullptr;
    /// "Cancel" while it runs.
    QPushButton* cmdCheckAgain_ = nullptr;
    QTreeWidget* lstFindings_ = nullptr;
    HintLabel* lblNote_ = nullptr;
    QPushButton* cmdUndo_ = nullptr;
    QPushButton* cmdShow_ = nullptr;
    QPushButton* cmdRemedy_ = nullptr;
};

} // namespace varnholt
