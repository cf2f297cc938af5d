#include "toolkit/desktop_services.h"

#include "desktop/desktop_programs.h"
#include "log/ProgramLog.h"
#include "toolkit/HintLabel.h"
#include "toolkit/LineEdit.h"
#include "toolkit/controls.h"
#include "toolkit/short_text.h"

#include <QApplication>
#include <QDateTime>
#include <QDesktopServices>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QGridLayout>
#include <QLabel>
#include <QMessageBox>
#include <QMimeDatabase>
#include <QSettings>
#include <QStandardPaths>
#include <QUrl>
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

/// A box as large as a very long name might have its buttons outside the screen.
constexpr qsizetype longestMessage = 1200;

void prepare(QMessageBox& box, const QString& title, const QString& text)
{
    box.setWindowTitle(title);
    // Names and answers are shown as typed, never read as markup.
    box.setTextFormat(Qt::PlainText);
    box.setText(Wrappable(text, longestMessage));
    if (text.size() > longestMessage) {
        box.setDetailedText(text);
    }
    // The box measures its text only: room for the title and the frame's buttons beside it.
    const QFontMetrics metrics(QApplication::font("QMdiSubWindowTitleBar"));
    const int width = metrics.horizontalAdvance(title) + 10 * metrics.height();
    if (auto* grid = qobject_cast<QGridLayout*>(box.layout())) {
        grid->addItem(new QSpacerItem(width, 0), grid->rowCount(), 0, 1, grid->columnCount());
    }
}

/// The folder used last, or the nearest to it that is still there.
QString lastFolder()
{
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    const QString last = QSettings().value(QStringLiteral("lastFolder"), documents).toString();
    for (const QString& folder : {last, QFileInfo(last).path(), documents}) {
        if (!folder.isEmpty() && QFileInfo(folder).isDir()) {
            return folder;
        }
    }
    return QDir::homePath();
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
    explain(title, text, QString());
}

void DesktopMessageBoxes::explain(const QString& title, const QString& text,
                                  const QString& explanation)
{
    // Not the text, which may name what the library holds.
    qCInfo(logProgram, "Told the user: %s.", qUtf8Printable(title));
    const PlainPointer pointer;
    QMessageBox box(QApplication::activeWindow());
    // First, because it lays the box out anew.
    box.setInformativeText(Wrappable(explanation, longestMessage));
    if (auto* label = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_informativelabel"))) {
        label->setTextFormat(Qt::PlainText);
    }
    prepare(box, title, text);
    box.setStandardButtons(QMessageBox::Ok);
    box.exec();
}

bool DesktopMessageBoxes::yesNo(const QString& title, const QString& text, Answer preselected)
{
    const PlainPointer pointer;
    QMessageBox box(QApplication::activeWindow());
    prepare(box, title, text);
    box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
    box.setDefaultButton(preselected == Answer::Yes ? QMessageBox::Yes : QMessageBox::No);
    box.setEscapeButton(QMessageBox::No);
    return box.exec() == QMessageBox::Yes;
}

QString DesktopMessageBoxes::inputText(const QString& title, const QString& prompt,
                                       const QString& defaultText)
{
    const PlainPointer pointer;
    QDialog dialog(QApplication::activeWindow());
    dialog.setWindowTitle(title);
    auto* lblPrompt = makeLabel("lblPrompt", Wrappable(prompt, longestMessage));
    lblPrompt->setWordWrap(true);
    auto* txtAnswer = named(new LineEdit(defaultText), "txtAnswer", prompt);
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

QStringList DesktopFileDialogs::openFiles(const QString& filter)
{
    const QStringList files = QFileDialog::getOpenFileNames(QApplication::activeWindow(), QString(),
                                                            lastFolder(), filter);
    // Remembers the folder.
    (void)chosen(files.value(0));
    return files;
}

std::optional<QString> DesktopFileDialogs::openFolder(const QString& title,
                                                      const QString& initialFolder)
{
    const QString folder = QFileDialog::getExistingDirectory(
        QApplication::activeWindow(), title,
        QFileInfo(initialFolder).isDir() ? initialFolder : QDir::homePath());
    return folder.isEmpty() ? std::nullopt : std::optional(folder);
}

bool OpenWithDesktop(const QString& path)
{
    // A browser that is set opens anything.
    return (qEnvironmentVariableIsSet("BROWSER") ||
            ProgramIsRegistered(QMimeDatabase().mimeTypeForFile(path).name())) &&
           QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

std::int64_t SystemClock::millisecondsSinceEpoch() const
{
    return QDateTime::currentMSecsSinceEpoch();
}

} // namespace varnholt
