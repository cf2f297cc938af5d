#pragma once

#include "library/items.h"
#include "many/normal_picture.h"

#include <QImage>
#include <QString>

#include <cstdint>
#include <vector>

namespace varnholt {

class Library;

/// Pictures that are to become questions. They wait in the folder "Pending" beside the library,
/// as files that are ready to be a question's picture, and survive whatever happens to the program.
/// Each has a number of its own; they are in the order of their numbers.
///
/// Everything throws `Error`. Adding pictures may happen on another thread than the rest as long
/// as only one thread is in here.
class PendingPictures
{
public:
    explicit PendingPictures(Library& library);

    /// What an earlier run has left. What that had saved already goes, and so does what it had
    /// taken out.
    [[nodiscard]] std::vector<int> resume();

    /// Take a picture in, as `WriteNormalPicture` makes it; its number.
    int add(const QString& file, Margins margins, int quality = usualQuality);
    int add(const QImage& picture, Margins margins, int quality = usualQuality);
    [[nodiscard]] QString path(int number) const;
    /// What has been typed for a picture so far, for who comes after a crash. Where it cannot be
    /// written nothing is said: it is only in the window then.
    void keepAnswer(int number, const QString& answer);
    [[nodiscard]] QString keptAnswer(int number) const;
    void replace(int number, const QImage& picture);
    /// A picture taken out is no longer there, but can be put back.
    void takeOut(int number);
    void putBack(int number);
    /// What was taken out goes for good.
    void forgetTakenOut();

    /// Makes a question of a picture, or leaves everything as it is; the question's key.
    std::int32_t save(int number, const Filing& filing, const QString& answer);

private:
    int next();
    [[nodiscard]] QString place(const QString& name) const;
    [[nodiscard]] QString answerPath(int number) const;
    [[nodiscard]] bool isQuestion(std::int32_t key);

    Library& library_;
    QString folder_;
    int newest_ = 0;
};

} // namespace varnholt
