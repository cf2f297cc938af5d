#pragma once

#include <QLabel>

class QLineEdit;
class QToolButton;

namespace varnholt {

/// A line beside a field that says beforehand why what it holds will be refused. What it says
/// is also the field's accessible description. The field must share its window.
class HintLabel : public QLabel
{
    Q_OBJECT

public:
    enum class Place
    {
        /// Stays free while there is nothing to say, so that nothing jumps while typing.
        Kept,
        Given
    };

    HintLabel(const char* objectName, QWidget* field, Place place);

    /// Shows a sentence, or nothing when it is empty.
    void say(const QString& sentence);

    /// Speaks up while the field holds text that cannot stand in a statement.
    void watchForApostrophes(QLineEdit* field);
    /// Has a button beside what is said while the field holds such text, which puts the letters in
    /// that can be saved.
    void offerTypographic(QLineEdit* field);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void placeButton();

    QWidget* field_;
    QLineEdit* replaceIn_ = nullptr;
    QToolButton* cmdReplace_ = nullptr;
};

/// What to say about a text that cannot stand in a statement; empty when it can.
[[nodiscard]] QString ApostropheHint(const QString& text);

} // namespace varnholt
