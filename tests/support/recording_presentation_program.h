#pragma once

#include "presentation/presentation_program.h"
#include "store/errors.h"

#include <QStringList>

#include <map>

namespace varnholt::test {

/// A presentation program that only writes down what it is asked, one line a call, for example
/// "addTextBox 0 40 100 100" or "setShapeText 2 #1", and fails where it is told to.
class RecordingPresentationProgram : public PresentationProgram
{
public:
    QStringList calls;

    /// The call whose line starts with `what` fails the `nth` time, after being recorded.
    void failAt(const QString& what, int nth = 1) { failures_[what] = nth; }

    /// The recorded calls that start with `what`.
    [[nodiscard]] QStringList callsOf(const QString& what) const
    {
        QStringList found;
        for (const QString& call : calls) {
            if (call.startsWith(what)) {
                found.append(call);
            }
        }
        return found;
    }

    void addPresentation() override { record(QStringLiteral("addPresentation")); }
    void setVisible() override { record(QStringLiteral("setVisible")); }
    int slideCount() override
    {
        record(QStringLiteral("slideCount"));
        return slides_;
    }
    void addBlankSlide(int index) override
    {
        record(QStringLiteral("addBlankSlide %1").arg(index));
        ++slides_;
    }
    void selectSlide(int index) override
    {
        record(QStringLiteral("selectSlide %1").arg(index));
        if (index < 1 || index > slides_) {
            throw Error(QStringLiteral("no such slide"));
        }
    }
    void addTextBox(double left, double top, double width, double height) override
    {
        record(QStringLiteral("addTextBox %1 %2 %3 %4").arg(left).arg(top).arg(width).arg(height));
    }
    void setShapeText(int shape, const QString& text) override
    {
        record(QStringLiteral("setShapeText %1 %2").arg(shape).arg(text));
    }
    void addPicture(const QString& path, double left, double top, double width, double height,
                    const QString&) override
    {
        record(QStringLiteral("addPicture %1 %2 %3 %4 %5")
                   .arg(path)
                   .arg(left)
                   .arg(top)
                   .arg(width)
                   .arg(height));
    }
    void scaleHeight(int shape, double factor) override
    {
        record(QStringLiteral("scaleHeight %1 %2").arg(shape).arg(factor));
    }
    void scaleWidth(int shape, double factor) override
    {
        record(QStringLiteral("scaleWidth %1 %2").arg(shape).arg(factor));
    }
    void finish() override { record(QStringLiteral("finish")); }

private:
    void record(const QString& call)
    {
        calls.append(call);
        for (auto& [what, left] : failures_) {
            if (call.startsWith(what) && --left == 0) {
                throw Error(QStringLiteral("told to fail"));
            }
        }
    }

    std::map<QString, int> failures_;
    int slides_ = 0;
};

} // namespace varnholt::test
