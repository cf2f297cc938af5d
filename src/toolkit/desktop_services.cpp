#include "toolkit/desktop_services.h"

#include <QApplication>
#include <QDateTime>
#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>
#include <QSettings>
#include <QStandardPaths>

namespace varnholt {

namespace {

/// A message during long work is not busy: it waits for the user.
class PlainPointer
{
public:
    PlainPointer()
    {
        if (set_) {
            QApplication::setOverrideCursor(Qt::ArrowCursor);
        }
    }
    PlainPointer(const PlainPointer&) = delete;
    PlainPointer& operator=(const PlainPointer&) = delete;
    ~PlainPointer()
    {
        if (set_) {
            QApplication::restoreOverrideCursor();
        }
    }

private:
    bool set_ = QApplication::overrideCursor() != nullptr;
};

void prepare(QMessageBox& box, const QString& title, const QString& text)
{
    box.setWindowTitle(title);
    // Names and answers are shown as typed, never read as markup.
    box.setTextFormat(Qt::PlainText);
    box.setText(text);
}

QString lastFolder()
{
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return QSettings().value(QStringLiteral("lastFolder"), documents).toString();
}

std::optional<QString> chosen(const QString& path)
{
    if (path.isEmpty()) {
        return std::nullopt;
    }
    QSettings().setValue(QStringLiteral("lastFolder"), QFileInfo(path).absolutePath());
    return path;
}

} // namespace

void DesktopMessageBoxes::inform(const QString& title, const QString& text)
{
    const PlainPointer pointer;
    QMessageBox box(QApplication::activeWindow());
    prepare(box, title, text);
    box.setStandardButtons(QMessageBox::Ok);
    box.exec();
}

bool DesktopMessageBoxes::yesNo(const QString& title, const QString& text)
{
    const PlainPointer pointer;
    QMessageBox box(QApplication::activeWindow());
    prepare(box, title, text);
    box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
    // A stray Enter must not delete anything.
    box.setDefaultButton(QMessageBox::No);
    box.setEscapeButton(QMessageBox::No);
    return box.exec() == QMessageBox::Yes;
}

QString DesktopMessageBoxes::inputText(const QString& title, const QString& prompt,
                                       const QString& defaultText)
{
    const PlainPointer pointer;
    QInputDialog dialog(QApplication::activeWindow());
    dialog.setWindowTitle(title);
    dialog.setLabelText(prompt);
    dialog.setTextValue(defaultText);
    return dialog.exec() == QDialog::Accepted ? dialog.textValue() : QString();
}

std::optional<QString> DesktopFileDialogs::saveFile(const QString& filter,
                                                    const QString& initialName)
{
    return chosen(QFileDialog::getSaveFileName(QApplication::activeWindow(), QString(),
                                               QDir(lastFolder()).filePath(initialName), filter));
}

std::optional<QString> DesktopFileDialogs::openFile(const QString& filter)
{
    return chosen(QFileDialog::getOpenFileName(QApplication::activeWindow(), QString(),
                                               lastFolder(), filter));
}

std::int64_t SystemClock::millisecondsSinceEpoch() const
{
    return QDateTime::currentMSecsSinceEpoch();
}

} // namespace varnholt
