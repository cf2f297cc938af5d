#pragma once

#include "library/library_findings.h"

#include <QWidget>

#include <optional>
#include <thread>
#include <utility>
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
/// for each finding, which can be undone. Nothing is removed.
class frmCheck : public QWidget
{
    Q_OBJECT

public:
    frmCheck(Services& services, Library& library, QWidget* parent = nullptr);
    /// Stops a look that is not finished.
    ~frmCheck() override;

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
    void cmdRemedy_Click();
    void cmdUndo_Click();

    /// Takes off the list what a restored place has put right as well.
    void forgetPlacesBack();
    void showFindings(int current);
    void showRemedy();
    [[nodiscard]] int currentRow() const;

    Services& services_;
    Library& library_;
    std::vector<Finding> findings_;
    /// The last remedy's step, and the finding that it has taken from its row.
    struct Done
    {
        std::int64_t step;
        int row;
        Finding finding;
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
    QPushButton* cmdRemedy_ = nullptr;
};

} // namespace varnholt
