#pragma once

#include "authoring/filing.h"
#include "manage/filing_preselection.h"
#include "many/PendingPictures.h"
#include "pictures/ThumbnailLoader.h"

#include <QTimer>
#include <QWidget>

#include <functional>
#include <optional>

class QCheckBox;
class QFileSystemWatcher;
class QLabel;
class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QMimeData;
class QPushButton;
class QShortcut;

namespace varnholt {

class ComboBox;
class HintLabel;
class PictureView;
struct ProgramState;
struct Services;

/// Files and folders among what is dragged or copied that may be pictures or PDF files, or hold
/// some.
[[nodiscard]] QStringList PictureFilesIn(const QMimeData& data);

/// Many pictures at once: a strip of those that wait, one of them large, and where it is to be
/// filed with what answer. Topic and subtopic stay for the next; a question costs its answer and
/// Enter. Pictures come by drop, by pasting, and as screenshots while they are made. Those that are
/// not saved wait for the next time.
class frmAddMany : public QWidget
{
    Q_OBJECT

public:
    frmAddMany(Services& services, ProgramState& state, Library& library,
               const FilingPreselection& preselection, QWidget* parent = nullptr);
    ~frmAddMany() override;

    /// Takes pictures in, also those in folders. What cannot be taken is told beside the strip.
    void addFiles(const QStringList& paths);
    /// Where the last question was filed; nothing before the first.
    [[nodiscard]] const std::optional<FilingPreselection>& lastFiling() const
    {
        return lastFiling_;
    }

Q_SIGNALS:
    /// A question was saved.
    void saved(const varnholt::FilingPreselection& filing);

protected:
    void focusInEvent(QFocusEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void buildControls();
    QLayout* buildFiling();
    QLayout* buildButtons();
    void connectControls();
    void Form_Load(const FilingPreselection& preselection);

    void cboTopics_Click();
    void lstPictures_Click();
    void cmdSaveNext_Click();
    void cmdSaveAll_Click();
    void cmdTakeOut_Click();
    void cmdPutBack_Click();
    void cmdEditPicture_Click();
    void cmdPaste_Click();
    void cmdAddFiles_Click();
    void cmdFromPdf_Click();
    void chkCatch_Click(bool on);

    [[nodiscard]] Margins margins() const;
    [[nodiscard]] int quality() const;
    void txtAnswer_Change(const QString& answer);
    /// Writes down what has been typed last.
    void keepTyped();
    void addRow(int number);
    void addImage(const QImage& picture);
    /// Takes files in that are pictures, on another thread.
    void addPictureFiles(const QStringList& files);
    /// Lets frames be drawn in PDF files, one after the other until the user stops.
    void addPdfs(const QStringList& files);
    void takeNewScreenshots();
    /// Runs work and tells its failure; false when it failed.
    bool attempt(const std::function<void()>& work);
    [[nodiscard]] int current() const;
    [[nodiscard]] QString answerOf(int row) const;
    [[nodiscard]] Filing filing() const;
    /// Why nothing can be saved here now, whatever the answer; empty when it can.
    [[nodiscard]] QString obstacle() const;
    void saveRow(int row);
    void loadThumbnail(int number);
    void showState();

    Services& services_;
    ProgramState& state_;
    Library& library_;
    PendingPictures pending_;
    ThumbnailLoader thumbnails_;
    std::vector<FilingChoice> topicChoices_;
    std::vector<FilingChoice> subtopicChoices_;
    std::optional<FilingPreselection> lastFiling_;
    int savedCount_ = 0;
    /// What was taken out last, and its answer.
    std::optional<std::pair<int, QString>> takenOut_;
    /// Runs from a letter until it is written down, for this picture.
    QTimer typed_;
    int typedFor_ = 0;
    QStringList knownScreenshots_;
    QFileSystemWatcher* screenshots_ = nullptr;

    QListWidget* lstPictures_ = nullptr;
    QLabel* lblNone_ = nullptr;
    PictureView* imgPicture_ = nullptr;
    QCheckBox* chkTrim_ = nullptr;
    QCheckBox* chkFine_ = nullptr;
    QCheckBox* chkCatch_ = nullptr;
    QPushButton* cmdAddFiles_ = nullptr;
    QPushButton* cmdFromPdf_ = nullptr;
    QPushButton* cmdPaste_ = nullptr;
    ComboBox* cboTopics_ = nullptr;
    ComboBox* cboSubtopics_ = nullptr;
    QLineEdit* txtAnswer_ = nullptr;
    HintLabel* lblAnswerHint_ = nullptr;
    HintLabel* lblHint_ = nullptr;
    QLabel* lblState_ = nullptr;
    QPushButton* cmdSaveNext_ = nullptr;
    QPushButton* cmdSaveAll_ = nullptr;
    QPushButton* cmdTakeOut_ = nullptr;
    QPushButton* cmdPutBack_ = nullptr;
    QPushButton* cmdEditPicture_ = nullptr;
};

} // namespace varnholt
