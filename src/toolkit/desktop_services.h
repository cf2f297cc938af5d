#pragma once

#include "store/SplitMix64.h"
#include "store/services.h"

namespace varnholt {

/// The real message boxes: modal to the active window, plain text, without an icon, never larger
/// than the screen however long the names in a text (the whole is under "Show Details"). The text
/// prompt warns while its text cannot be saved in the library; it takes it all the same.
class DesktopMessageBoxes : public MessageBoxes
{
public:
    void inform(const QString& title, const QString& text) override;
    void explain(const QString& title, const QString& text, const QString& explanation) override;
    bool yesNo(const QString& title, const QString& text, Answer preselected) override;
    QString inputText(const QString& title, const QString& prompt,
                      const QString& defaultText) override;
};

/// The desktop's own file choosers. They start in the folder used last.
class DesktopFileDialogs : public FileDialogs
{
public:
    std::optional<QString> saveFile(const QString& filter, const QString& initialName) override;
    std::optional<QString> openFile(const QString& filter) override;
    QStringList openFiles(const QString& filter) override;
    std::optional<QString> openFolder(const QString& title, const QString& initialFolder) override;
};

/// Opens a file or folder with the desktop's own program for it; false when it has none.
[[nodiscard]] bool OpenWithDesktop(const QString& path);

class SystemClock : public Clock
{
public:
    [[nodiscard]] std::int64_t millisecondsSinceEpoch() const override;
};

} // namespace varnholt
