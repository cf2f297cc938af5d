#pragma once

#include "store/list1.h"
#include "store/modMain.h"

#include <QListView>

namespace varnholt {

class PictureStripModel;

/// The pictures of the browsed questions, small and in a row; the one on show is the current one.
/// They are decoded as they come into view.
class PictureStrip : public QListView
{
    Q_OBJECT

public:
    /// `programFolder` holds the folder of the pictures.
    explicit PictureStrip(QString programFolder, QWidget* parent = nullptr);

    void setQuestions(const List1<QuestionRecord>& questions);
    /// The pictures may have changed.
    void forgetPictures();
    /// Makes a picture current (1-based; none with 0) and brings it into view. Not a choice.
    void setPosition(int position);

Q_SIGNALS:
    /// The user has chosen a picture, by mouse or keyboard.
    void chosen(int position);

protected:
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    PictureStripModel* model_;
    /// While the program makes a picture current.
    bool quiet_ = false;
};

} // namespace varnholt
