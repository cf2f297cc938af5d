#pragma once

#include <QDialog>
#include <QString>

#include <cstdint>
#include <optional>

class QLineEdit;

namespace varnholt {

class Library;
struct Services;

/// A topic that the user has chosen already.
struct NamedTopic
{
    std::int32_t TopicID = 0;
    QString Topic;
};

/// What the dialog added, or a topic that was there and what it added to it.
struct NewInfo
{
    std::int32_t NewTopicID = 0;
    std::int32_t NewSubtopicNum = 0;
};

/// Asks for a new subtopic and, unless it is to be the subtopic only, for the new topic that it
/// belongs to, and adds them.
class frmNewInfo : public QDialog
{
    Q_OBJECT

public:
    enum class Mode
    {
        TopicAndSubtopic,
        SubtopicOnly
    };

    /// `chosenTopic` is the opener's topic, shown and used in subtopic-only mode; it may be
    /// missing, then nothing can be saved in that mode.
    frmNewInfo(Services& services, Library& library, std::int32_t assessmentNum, Mode mode,
               std::optional<NamedTopic> chosenTopic, QWidget* parent = nullptr);

    /// What was added; none unless the dialog was left by a save that succeeded.
    [[nodiscard]] const std::optional<NewInfo>& saved() const { return saved_; }

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void buildControls();
    void cmdSave_Click();

    Services& services_;
    Library& library_;
    std::int32_t assessmentNum_;
    Mode mode_;
    std::optional<NamedTopic> chosenTopic_;
    std::optional<NewInfo> saved_;
    QLineEdit* txtNewTopic_ = nullptr;
    QLineEdit* txtNewSubtopic_ = nullptr;
};

} // namespace varnholt
