#include "toolkit/desktop_services.h"

#include "toolkit/HintLabel.h"
#include "toolkit/controls.h"

#include <QApplication>
#include <QDateTime>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QSettings>
#include <QStandardPaths>
#include <QVBoxLayout>

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
    QDialog dialog(QApplication::activeWindow());
    dialog.setWindowTitle(title);
    auto* lblPrompt = makeLabel("lblPrompt", prompt);
    auto* txtAnswer = named(new QLineEdit(defaultText), "txtAnswer", prompt);
    txtAnswer->selectAll();
    auto* lblHint = new HintLabel("lblHint", txtAnswer, HintLabel::Place::Kept);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);

    auto* column = new QVBoxLayout(&dialog);
    column->addWidget(lblPrompt);
    column->addWidget(txtAnswer);
    column->addWidget(lblHint);
    column->addWidget(buttons);
    // Not before it has its place: on its own it would show as a window.
    lblHint->watchForApostrophes(txtAnswer);
    txtAnswer->setMinimumWidth(dialog.fontMetrics().averageCharWidth() * 66);
    return dialog.exec() == QDialog::Accepted ? txtAnswer->text() : QString();
}

std::optional<QString> DesktopFileDialogs::saveFile(const QString& filter,
                                                    const QString& initialName)
{
    // Not by one path of both: where there is a folder of that name it would be opened instead.
    QFileDialog dialog(QApplication::activeWindow(), QString(), lastFolder(), filter);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.selectFile(initialName);
    if (dialog.exec() != QDialog::Accepted) {
        return std::nullopt;
    }
    return chosen(dialog.selectedFiles().value(0));
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
