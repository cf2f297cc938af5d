#pragma once

#include "manage/new_info.h"

#include <QDialog>

class QLineEdit;

namespace varnholt {

class Connection;
struct Services;

/// Asks for a new subtopic and, unless `state.SubtopicOnly` is set, for the new topic that it
/// belongs to. Leaves `NewInfoSaved`, `NewTopicID` and `NewSubtopicNum` for its opener.
class frmNewInfo : public QDialog
{
    Q_OBJECT

public:
    /// `chosenTopic` is the opener's topic, shown and used in subtopic-only mode; it may be
    /// missing, then nothing can be saved in that mode.
    frmNewInfo(Services& services, ProgramState& state, Connection& connection,
               std::optional<NamedTopic> chosenTopic, QWidget* parent = nullptr);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void buildControls();
    void Form_Load();
    void cmdSave_Click();

    Services& services_;
    ProgramState& state_;
    Connection& connection_;
    std::optional<NamedTopic> chosenTopic_;
    QLineEdit* txtNewTopic_ = nullptr;
    QLineEdit* txtNewSubtopic_ = nullptr;
};

} // namespace varnholt
