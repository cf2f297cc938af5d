#pragma once

#include <QComboBox>

#include <cstdint>

namespace varnholt {

/// A drop-down list of texts, each with an integer. `Click` fires when the user chooses an
/// entry (also the one that is current already) and when the program makes one current with
/// `setListIndex`. Filling and clearing fire nothing. The wheel chooses only while the list has
/// the focus. Neither the control nor its open list grows with a long text, but the list of a
/// narrow control has room for some forty letters: what does not fit is shortened in the middle
/// and shown whole as tooltip.
class ComboBox : public QComboBox
{
    Q_OBJECT

public:
    explicit ComboBox(QWidget* parent = nullptr);

    /// Appends an entry; no entry becomes current by that.
    void addEntry(const QString& text, std::int32_t itemData);

    [[nodiscard]] int listCount() const { return count(); }
    /// The current entry, or -1.
    [[nodiscard]] int listIndex() const { return currentIndex(); }
    /// Makes an entry current and fires `Click`.
    void setListIndex(int index);
    /// Shows an entry without the reaction.
    void showEntry(int index);
    /// Throws `std::out_of_range` for an index without an entry, -1 among them.
    [[nodiscard]] std::int32_t entryData(int index) const;

    void showPopup() override;

Q_SIGNALS:
    void Click();

protected:
    void initStyleOption(QStyleOptionComboBox* option) const override;
    bool event(QEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
};

} // namespace varnholt
