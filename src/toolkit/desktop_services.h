#pragma once

#include "store/services.h"

#include <random>

namespace varnholt {

/// The real message boxes: modal to the active window, plain text, without an icon. The text
/// prompt warns while its text cannot be saved in the library; it takes it all the same.
class DesktopMessageBoxes : public MessageBoxes
{
public:
    void inform(const QString& title, const QString& text) override;
    bool yesNo(const QString& title, const QString& text) override;
    QString inputText(const QString& title, const QString& prompt,
                      const QString& defaultText) override;
};

/// The desktop's own file choosers. They start in the folder used last.
class DesktopFileDialogs : public FileDialogs
{
public:
    std::optional<QString> saveFile(const QString& filter, const QString& initialName) override;
    std::optional<QString> openFile(const QString& filter) override;
};

class SystemClock : public Clock
{
public:
    [[nodiscard]] std::int64_t millisecondsSinceEpoch() const override;
};

/// Mersenne Twister; 53 random bits a number.
class MersenneTwister : public RandomGenerator
{
public:
    void seed(std::uint64_t value) override { engine_.seed(value); }
    [[nodiscard]] double next() override { return static_cast<double>(engine_() >> 11) * 0x1p-53; }

private:
    std::mt19937_64 engine_;
};

} // namespace varnholt
