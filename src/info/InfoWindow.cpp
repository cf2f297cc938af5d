#include "info/InfoWindow.h"

#include "info/diagnostics.h"
#include "toolkit/HintLabel.h"
#include "toolkit/controls.h"
#include "toolkit/desktop_services.h"

#include <QClipboard>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QGuiApplication>
#include <QLineEdit>
#include <QVBoxLayout>

namespace varnholt {

InfoWindow::InfoWindow(const QString& title, const QString& text, const QString& linkCaption,
                       const QString& link, const QString& target, QWidget* parent)
    : QWidget(parent)
{
    setWindowTitle(title);

    auto* lblTitle = makeLabel("lblTitle", title);
    QFont large = lblTitle->font();
    large.setPointSizeF(large.pointSizeF() * 1.5);
    large.setBold(true);
    lblTitle->setFont(large);

    auto* lblText = makeLabel("lblText", text);
    lblText->setWordWrap(true);
    lblText->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);

    auto* lblLink = makeLabel("lblLink", linkCaption);
    auto* txtLink = named(new QLineEdit(link), "txtLink", linkCaption.chopped(1).remove(u'&'));
    txtLink->setReadOnly(true);
    lblLink->setBuddy(txtLink);
    auto* cmdOpen = makeButton("cmdOpen", tr("&Open"));
    cmdOpen->setEnabled(QFileInfo::exists(target));
    auto* lblOpenHint = new HintLabel("lblOpenHint", txtLink, HintLabel::Place::Given);
    connect(cmdOpen, &QPushButton::clicked, this, [target, txtLink, lblOpenHint] {
        if (OpenWithDesktop(target)) {
            lblOpenHint->say({});
            return;
        }
        lblOpenHint->say(tr("This computer has no program that opens it by itself. The address "
                            "above is marked: copy it with Ctrl+C and open it by hand."));
        txtLink->setFocus();
        txtLink->selectAll();
    });

    auto* grid = new QGridLayout(this);
    const int space = fontMetrics().height();
    grid->setContentsMargins(2 * space, 2 * space, 2 * space, 2 * space);
    grid->setVerticalSpacing(space);
    grid->addWidget(lblTitle, 0, 0, 1, 3);
    grid->addWidget(lblText, 1, 0, 1, 3);
    grid->addWidget(lblLink, 2, 0);
    grid->addWidget(txtLink, 2, 1);
    grid->addWidget(cmdOpen, 2, 2);
    grid->addWidget(lblOpenHint, 3, 0, 1, 3);
    below_ = new QVBoxLayout;
    grid->addLayout(below_, 4, 0, 1, 3);
    grid->setRowStretch(5, 1);
    grid->setColumnStretch(1, 1);
    setFocusProxy(txtLink);
}

void InfoWindow::add(QWidget* control)
{
    below_->addWidget(control);
}

frmAbout::frmAbout(const QString& programFolder, QWidget* parent)
    : InfoWindow(tr("About"),
                 tr("Varnholt %1\n\nKeeps libraries of test questions and turns a draw of "
                    "them into a slide presentation with an answer key.\n\nFree software "
                    "under the MIT licence. It is built on Qt, SQLite and libzip.")
                     .arg(QCoreApplication::applicationVersion()),
                 tr("Your questions are &kept in:"), QDir::toNativeSeparators(programFolder),
                 programFolder, parent)
{
    setObjectName(QStringLiteral("frmAbout"));
    auto* cmdCopyDiagnostics = makeButton("cmdCopyDiagnostics", tr("Copy &Diagnostics"));
    auto* lblCopied = new HintLabel("lblCopied", cmdCopyDiagnostics, HintLabel::Place::Given);
    connect(cmdCopyDiagnostics, &QPushButton::clicked, this, [programFolder, lblCopied] {
        QGuiApplication::clipboard()->setText(Diagnostics(programFolder));
        lblCopied->say(tr("Copied. Paste it into a message to the person who helps you. It tells "
                          "of this computer and of what the program did, and nothing of your "
                          "questions."));
    });
    cmdCopyDiagnostics->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    add(cmdCopyDiagnostics);
    add(lblCopied);
}

frmTutorial::frmTutorial(const QString& guidePath, QWidget* parent)
    : InfoWindow(
          tr("Tutorial Videos"),
          tr("There are no videos yet; the user guide shows every step with pictures.\n\n"
             "To make slides: open \"Create PowerPoints\", choose an assessment, tick the topics "
             "and subtopics you want, type how many questions you need and press \"Create "
             "PowerPoint\". The slides open in your presentation program, where you save them."),
          tr("The user &guide:"),
          guidePath.isEmpty() ? tr("The folder \"guide\" is missing beside the program.")
                              : QDir::toNativeSeparators(guidePath),
          guidePath, parent)
{
    setObjectName(QStringLiteral("frmTutorial"));
}

} // namespace varnholt
