#pragma once

#include <QString>
#include <QWidget>

class QVBoxLayout;

namespace varnholt {

/// A window with a text and a read-only link box, from which the link can be copied or
/// opened with the desktop's program for it.
class InfoWindow : public QWidget
{
    Q_OBJECT

protected:
    /// `link` is shown as it is; `target` is what opening it opens.
    InfoWindow(const QString& title, const QString& text, const QString& linkCaption,
               const QString& link, const QString& target, QWidget* parent);

    /// Puts a control below the link and what was added before.
    void add(QWidget* control);

private:
    QVBoxLayout* below_;
};

/// What the program is, its version, and where the library lies; a button copies what a person who
/// helps from afar needs to know.
class frmAbout : public InfoWindow
{
    Q_OBJECT

public:
    explicit frmAbout(const QString& programFolder, QWidget* parent = nullptr);
};

/// How to begin, and where the user guide lies.
class frmTutorial : public InfoWindow
{
    Q_OBJECT

public:
    explicit frmTutorial(const QString& guidePath, QWidget* parent = nullptr);
};

} // namespace varnholt
