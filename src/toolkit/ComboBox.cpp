#include "toolkit/ComboBox.h"

#include <stdexcept>

namespace varnholt {

ComboBox::ComboBox(QWidget* parent)
    : QComboBox(parent)
{
    setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(20);
    connect(this, &QComboBox::activated, this, &ComboBox::Click);
}

void ComboBox::addEntry(const QString& text, std::int32_t itemData)
{
    // The base class makes the first entry of an empty list current.
    const int current = currentIndex();
    addItem(text, itemData);
    setCurrentIndex(current);
}

void ComboBox::setListIndex(int index)
{
    setCurrentIndex(index);
    Q_EMIT Click();
}

void ComboBox::showEntry(int index)
{
    setCurrentIndex(index);
}

std::int32_t ComboBox::entryData(int index) const
{
    if (index < 0 || index >= count()) {
        throw std::out_of_range("no entry is chosen");
    }
    return itemData(index).toInt();
}

} // namespace varnholt
