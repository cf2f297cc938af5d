#pragma once

#include "authoring/canvas_font.h"

#include <QDialog>

#include <array>
#include <optional>

class QCheckBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace varnholt {

class HintLabel;
class ListBox;
class MessageBoxes;

/// Asks for a line of text and how it is to look. Every choice goes at once into the canvas's
/// font, which keeps it whether a text is added or not.
///
/// The style boxes start unticked while the canvas keeps the style it had: the sample shows
/// what a text would really look like.
class frmPictureText : public QDialog
{
    Q_OBJECT

public:
    frmPictureText(CanvasFont& font, MessageBoxes& messages, QWidget* parent = nullptr);

    /// The text to add, trimmed; none when the dialog was left without one.
    [[nodiscard]] const std::optional<QString>& textToAdd() const { return textToAdd_; }

private:
    void buildControls();
    QGroupBox* buildFaces();
    QGroupBox* buildStyles();
    void Form_Load();
    void optFont_Click(const QString& face);
    void lstFontSize_Click();
    void cmdAddText_Click();
    void showSample();

    CanvasFont& font_;
    MessageBoxes& messages_;
    std::optional<QString> textToAdd_;

    QLineEdit* txtText_ = nullptr;
    QRadioButton* optMSSansSerif_ = nullptr;
    ListBox* lstFontSize_ = nullptr;
    QLabel* lblSample_ = nullptr;
    HintLabel* lblStyleHint_ = nullptr;

    struct Style
    {
        QCheckBox* box;
        QString name;
        bool CanvasFont::*on;
    };
    std::array<Style, 3> styles_{};
};

} // namespace varnholt
