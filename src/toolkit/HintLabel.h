#pragma once

#include <QLabel>

class QLineEdit;

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

private:
    QWidget* field_;
};

/// What to say about a text that cannot stand in a statement; empty when it can.
[[nodiscard]] QString ApostropheHint(const QString& text);

} // namespace varnholt
