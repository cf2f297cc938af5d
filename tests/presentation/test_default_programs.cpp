#include "presentation/build_fixture.h"
#include "presentation/default_programs.h"
#include "presentation/pptx/pptx_program.h"
#include "store/errors.h"

using namespace Qt::StringLiterals;
using namespace varnholt;
using namespace varnholt::test;

namespace {

class DefaultPrograms : public BuildFixture
{
protected:
    std::unique_ptr<PresentationProgram> start(const QString& asked, bool display = false)
    {
        PresentationSettings settings;
        settings.program = asked;
        settings.hasDisplay = [display] { return display; };
        settings.open = [this](const QString& path) {
            opened_ = path;
            return false;
        };
        programs_ = std::make_unique<DefaultPresentationPrograms>(boxes_, folder_.path(), settings);
        return programs_->start();
    }

    std::unique_ptr<DefaultPresentationPrograms> programs_;
    QString opened_;
};

TEST_F(DefaultPrograms, WithoutADisplayOrByNameItIsTheFile)
{
    for (const auto& [asked, display] : {std::pair{u""_s, false}, std::pair{u"pptx"_s, true}}) {
        const auto program = start(asked, display);
        EXPECT_NE(dynamic_cast<PptxProgram*>(program.get()), nullptr) << qPrintable(asked);
    }
}

TEST_F(DefaultPrograms, ANameThatCannotBeHadIsAnError)
{
    EXPECT_THROW(start(u"powerpoint"_s), Error);
    EXPECT_THROW(start(u"keynote"_s), Error);
}

TEST_F(DefaultPrograms, TheFileIsBuiltOpenedAndItsPlaceToldWhenNothingOpensIt)
{
    writePicture(picture(1), {60, 30}, 96);
    addQuestion(u"A"_s);
    const auto program = start(u"pptx"_s);
    const QString folder = folder_.filePath(u"Presentations"_s);
    boxes_.beforeAnswer = [&] {
        boxes_.beforeAnswer = nullptr;
        EXPECT_EQ(QDir(folder).entryList(QDir::Files), QStringList{opened_.section(u'/', -1)});
    };
    const QString place =
        folder + QDateTime::currentDateTime().toString(u"'/Varnholt' yyyy-MM-dd HH.mm'.pptx'"_s);
    boxes_.expectInform(u"Presentation"_s,
                        u"The presentation is finished, but there is no program on this computer "
                        "to show it. You find it here:\n\n"_s +
                            place);
    EXPECT_EQ(build(*program, true, true), BuildOutcome::complete);
    EXPECT_EQ(opened_, place);
}

} // namespace
