#pragma once

#include <QDialog>
#include <QImage>

#include <cstdint>
#include <optional>

namespace varnholt {

class CanvasPanel;
class Library;
struct Services;

/// The canvas on a picture that is there already; its page is as large as the picture. Modal.
class frmEditPicture : public QDialog
{
    Q_OBJECT

public:
    frmEditPicture(Services& services, const QImage& picture, QWidget* parent = nullptr);
    ~frmEditPicture() override;

    /// The picture as it was saved; none when the window was left without a change.
    [[nodiscard]] const std::optional<QImage>& edited() const { return edited_; }

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void cmdSave_Click();

    CanvasPanel* panel_ = nullptr;
    std::optional<QImage> edited_;
};

/// Lets the picture of a question be edited, and puts what is saved in its place. Tells in a box
/// what went wrong.
void EditQuestionPicture(Services& services, Library& library, std::int32_t solIndex,
                         QWidget* parent);

} // namespace varnholt
