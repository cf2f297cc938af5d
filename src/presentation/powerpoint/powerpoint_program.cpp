#include "presentation/powerpoint/powerpoint_program.h"

#include "presentation/powerpoint/powerpoint.h"
#include "presentation/powerpoint/powerpoint_connection.h"
#include "presentation/powerpoint/powerpoint_document.h"
#include "presentation/slide_text.h"

#include <QDir>

namespace varnholt {

namespace {

/// With carriage returns between paragraphs.
std::wstring paragraphs(const QString& text)
{
    return slideParagraphs(text).join(u'\r').toStdWString();
}

/// The number that Windows has for a language such as "en-GB"; 0 where it has none.
std::int32_t languageNumber(const QString& language)
{
    const LCID number = LocaleNameToLCID(language.toStdWString().c_str(), 0);
    return number == LOCALE_CUSTOM_UNSPECIFIED ? 0 : static_cast<std::int32_t>(number);
}

class AutomatedPowerPoint final : public PowerPoint
{
public:
    explicit AutomatedPowerPoint(std::chrono::milliseconds busyLimit)
        : busyLimit_(busyLimit)
    {}

    [[nodiscard]] std::unique_ptr<PresentationProgram> start(const KeepGoing& keepGoing) override
    {
        if (!connection_ || connection_->isGivenUp()) {
            connection_ = std::make_shared<PowerPointConnection>(busyLimit_);
        }
        return std::make_unique<PowerPointProgram>(connection_, keepGoing);
    }

private:
    std::chrono::milliseconds busyLimit_;
    std::shared_ptr<PowerPointConnection> connection_;
};

} // namespace

std::unique_ptr<PowerPoint> FindPowerPoint(std::chrono::milliseconds busyLimit)
{
    if (!automation::Object::isRegistered(PowerPointDocument::className)) {
        return nullptr;
    }
    return std::make_unique<AutomatedPowerPoint>(busyLimit);
}

PowerPointProgram::PowerPointProgram(std::shared_ptr<PowerPointConnection> connection,
                                     const KeepGoing& keepGoing)
    : connection_(std::move(connection))
{
    connection_->connect(keepGoing);
}

PowerPointProgram::~PowerPointProgram()
{
    connection_->endBuild();
}

void PowerPointProgram::addPresentation()
{
    connection_->run([](PowerPointDocument& document) { document.addPresentation(); });
    if (!facts_.language.isEmpty()) {
        connection_->run(
            [name = facts_.name.toStdWString(), language = languageNumber(facts_.language)](
                PowerPointDocument& document) { document.describe(name, language); });
    }
}

void PowerPointProgram::setVisible()
{
    connection_->run([](PowerPointDocument& document) { document.show(); });
}

void PowerPointProgram::appendBlankSlide()
{
    connection_->run([](PowerPointDocument& document) { document.appendBlankSlide(); });
}

void PowerPointProgram::addTextBox(double left, double top, double width, double height,
                                   LongLines /*longLines*/)
{
    connection_->run([=](PowerPointDocument& document) {
        document.addTextBox(float(left), float(top), float(width), float(height));
    });
}

void PowerPointProgram::setShapeText(int shape, const QString& text)
{
    setText(std::int32_t(shape), text);
}

void PowerPointProgram::setFirstShapeText(const QString& text)
{
    setText(std::int16_t(1), text);
}

template <typename Index>
void PowerPointProgram::setText(Index shape, const QString& text)
{
    connection_->run([shape, words = paragraphs(text)](PowerPointDocument& document) {
        document.setText(shape, words);
    });
}

void PowerPointProgram::addPicture(const QString& path, double left, double top, double width,
                                   double height, const QString& description)
{
    const QString native = QDir::toNativeSeparators(pictures_.of(path).file);
    connection_->run([=, file = native.toStdWString(),
                      words = description.toStdWString()](PowerPointDocument& document) {
        document.addPicture(file, float(left), float(top), float(width), float(height), words);
    });
}

void PowerPointProgram::scaleHeight(int shape, double factor)
{
    connection_->run(
        [=](PowerPointDocument& document) { document.scaleHeight(shape, float(factor)); });
}

void PowerPointProgram::scaleWidth(int shape, double factor)
{
    connection_->run(
        [=](PowerPointDocument& document) { document.scaleWidth(shape, float(factor)); });
}

void PowerPointProgram::showSlide(int index)
{
    connection_->run([=](PowerPointDocument& document) { document.selectSlide(index); });
}

void PowerPointProgram::addTitle(double left, double top, double width, double height,
                                 double textSize, const QString& text)
{
    connection_->run([=, words = paragraphs(text)](PowerPointDocument& document) {
        document.addTitle(float(left), float(top), float(width), float(height), float(textSize),
                          words);
    });
}

void PowerPointProgram::emphasise(int shape, double textSize)
{
    connection_->run(
        [=](PowerPointDocument& document) { document.emphasise(shape, float(textSize)); });
}

void PowerPointProgram::setNotes(const QString& text)
{
    connection_->run(
        [words = paragraphs(text)](PowerPointDocument& document) { document.setNotes(words); });
}

void PowerPointProgram::setAdvance(int seconds)
{
    connection_->run([=](PowerPointDocument& document) { document.setAdvance(float(seconds)); });
}

QSizeF PowerPointProgram::pictureSize(const QString& path)
{
    return pictures_.of(path).points;
}

} // namespace varnholt
