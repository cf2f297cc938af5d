#pragma once

#include "app/library_check.h"
#include "backups/LibraryBackups.h"
#include "library/Library.h"
#include "manage/filing_preselection.h"
#include "selection/paper_draw.h"
#include "store/modMain.h"

#include <QMainWindow>
#include <QPointer>

#include <functional>
#include <optional>

class QLabel;
class QScrollArea;
class QVBoxLayout;

namespace varnholt {

struct Services;

/// The frame: carries the menu and shows one child window at a time, under a bar with its title
/// and close button. It owns the
/// library, which is open from its construction to its closing.
class frmAssessment : public QMainWindow
{
    Q_OBJECT

public:
    /// Opens the library; throws as `Library::open` when it cannot be opened. `guidePath` is
    /// the user guide's file.
    frmAssessment(Services& services, ProgramState& state, const QString& guidePath,
                  Connection::Access access = Connection::Access::Change);
    ~frmAssessment() override;

    /// The child window on show, or null.
    [[nodiscard]] QWidget* childWindow() const;

    /// Shows a sentence above the child windows, for as long as the program runs.
    void showNotice(const char* name, const QString& text);

    /// Looks for damage of the library in the background and tells of it once. `mayTidy` when no
    /// other program has the library open.
    void checkLibrary(bool mayTidy);

public Q_SLOTS:
    void mnuCreate_Click();
    void mnuManageAssessments_Click();
    void mnuExport_Click();
    void mnuImport_Click();
    void mnuTutorial_Click();
    void mnAbout_Click();
    /// Puts the test made last on paper; without one, draws one as the selection window says.
    void mnuPaper_Click();
    void mnuTrash_Click();
    void mnuTests_Click();
    void mnuResults_Click();
    void showResults(std::int32_t assessmentNum);
    void mnuBackups_Click();
    void mnuCheck_Click();
    void mnuAddMany_Click();

protected:
    void closeEvent(QCloseEvent* event) override;
    /// A package dropped anywhere on the frame is imported; pictures become questions.
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    /// Waits until no other message stands. From then on the library is only read.
    void tellDamage();

    /// Has a damaged library only read from now on, and says so.
    void onlyRead();
    void restoreDamaged();
    void showInManager(Item item);

    using Maker = std::function<QWidget*()>;

    void buildMenu();
    void buildChildBar();
    /// Closes the child on show; false when it refuses.
    bool closeChild();
    void showEmpty();
    /// Opens the window for many questions, with these pictures.
    void addMany(const QStringList& pictures);
    /// Closes the child on show and opens a fresh one.
    void openChild(const Maker& make);

    Services& services_;
    ProgramState& state_;
    QString guidePath_;
    Library library_;
    LibraryBackups backups_;
    QVBoxLayout* childArea_ = nullptr;
    /// The title of the child on show and its close button.
    QWidget* childBar_ = nullptr;
    QLabel* lblChildTitle_ = nullptr;
    /// Holds the child: on a screen that is too small for it, it scrolls.
    QScrollArea* childScroll_ = nullptr;
    QLabel* lblEmpty_ = nullptr;
    QPointer<QWidget> child_;
    /// Made last since the program started.
    std::optional<DrawnTest> lastTest_;
    /// Makes the child on show anew.
    Maker childMaker_;
    /// Where the last question since the program started was filed; nothing before the first.
    FilingPreselection lastFiling_;
    LibraryCheck check_;
};

} // namespace varnholt
