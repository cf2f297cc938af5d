// Tests on paper: the layout by its properties, the PDF by programs that are not ours.

#include "paper/PaperPreview.h"
#include "paper/frmPaper.h"
#include "paper/paper_pdf.h"
#include "store/errors.h"
#include "support/file_size_limit.h"
#include "support/gui.h"
#include "support/run_program.h"
#include "support/test_services.h"

#include <QComboBox>
#include <QDir>
#include <QPrinter>
#include <QPushButton>
#include <QRegularExpression>
#include <QSpinBox>

#include <gtest/gtest.h>

#include <cerrno>
#include <set>

namespace varnholt::test {
namespace {

using namespace Qt::Literals::StringLiterals;
using Key = PaperOptions::Key;
using Space = PaperOptions::AnswerSpace;

class Paper : public testing::Test, protected TestWorld
{
protected:
    /// A test of so many questions whose pictures are of these sizes in turn.
    PaperTest makeTest(int questions, const QList<QSize>& sizes = {{400, 200}}, int versions = 1)
    {
        PaperTest test{u"Prüfung — Алгебра"_s, u"7b"_s, u"22 November"_s, {}, {}};
        for (int i = 1; i <= questions; ++i) {
            const QString path = library.picturePath(i);
            test.questions.push_back({u"A%1"_s.arg(i), u"Roots π"_s, path});
            testPicture(sizes.at(i % sizes.size()), i).save(path, "JPG");
        }
        test.versions = MakePaperVersions(test.questions.size(), versions, random);
        return test;
    }
    PaperLayout layOut(const PaperTest& test, const PaperOptions& options)
    {
        font = PaperFont::forTest(test);
        return LayOutPaper(test, options, ReadPaperPictureSizes(test), font.widths());
    }

    PaperFont font;
};

bool within(const PaperLayout::Rectangle& r, const PaperLayout& page)
{
    constexpr double edge = 40;
    return r.left >= edge && r.top >= edge && r.left + r.width <= page.width - edge &&
           r.top + r.height <= page.height - edge;
}

TEST_F(Paper, EveryLayoutHoldsEveryQuestionOnceAVersionInsideThePageAndNothingOverlaps)
{
    // Usual, tall, wide and tiny pictures, and one that is missing.
    PaperTest test = makeTest(11, {{600, 350}, {10, 3000}, {3000, 40}, {40, 30}}, 3);
    test.questions[4].picturePath = u"/nowhere.jpg"_s;
    test.questions[6].answer = QString(400, u'w');
    const std::vector<PaperPictureSize> sizes = ReadPaperPictureSizes(test);
    const TextWidth widthOf = PaperFont::forTest(test).widths();
    int layouts = 0;
    for (const int perPage : {0, 1, 2, 4}) {
        for (const Space space : {Space::None, Space::Line, Space::Box, Space::Choices}) {
            for (const Key key : {Key::None, Key::OwnPage, Key::AfterEach}) {
                const bool large = ++layouts % 5 == 0;
                const auto paper =
                    layouts % 2 ? PaperOptions::Paper::A4 : PaperOptions::Paper::Letter;
                const PaperOptions options{paper, perPage, space, key, layouts % 3 == 0, large};
                const PaperLayout layout = LayOutPaper(test, options, sizes, widthOf);
                SCOPED_TRACE(layouts);
                std::multiset<std::size_t> shown;
                QMap<QString, int> numbers;
                for (const PaperLayout::Page& page : layout.pages) {
                    const int most = large ? 1 : perPage;
                    EXPECT_TRUE(most == 0 || page.pictures.size() <= std::size_t(most));
                    std::vector<QRectF> taken;
                    for (const PaperLayout::Picture& picture : page.pictures) {
                        const PaperLayout::Rectangle& r = picture.place;
                        const PaperPictureSize own = sizes[picture.question];
                        EXPECT_TRUE(within(r, layout));
                        EXPECT_NEAR(r.width / r.height, own.width / own.height,
                                    0.001 * own.width / own.height);
                        EXPECT_LE(r.width, own.width * 1.5 + 0.001);
                        taken.emplace_back(r.left, r.top, r.width, r.height);
                        shown.insert(picture.question);
                    }
                    for (const PaperLayout::Rectangle& r : page.outlines) {
                        EXPECT_TRUE(within(r, layout));
                        taken.emplace_back(r.left, r.top, r.width, std::max(r.height, 0.1));
                    }
                    for (const PaperLayout::Text& text : page.texts) {
                        const double width = widthOf(text.text, text.size, text.bold);
                        EXPECT_TRUE(text.hidden || text.left + width < layout.width - 40)
                            << text.text.toStdString();
                        EXPECT_TRUE(text.baseline > 40 && text.baseline < layout.height - 40);
                        numbers[text.text] += text.bold ? 1 : 0;
                        const QRectF line(text.left, text.baseline - text.size * 0.7, width,
                                          text.size * 0.7);
                        if (!text.hidden) {
                            taken.push_back(line);
                        }
                    }
                    for (std::size_t a = 0; a < taken.size(); ++a) {
                        for (std::size_t b = 0; b < a; ++b) {
                            const QRectF both = taken[a].intersected(taken[b]);
                            // The letters in boxes to tick stand beside them, not in them.
                            EXPECT_FALSE(both.width() > 0.5 && both.height() > 0.5)
                                << a << " on " << b;
                        }
                    }
                }
                for (std::size_t question = 0; question < test.questions.size(); ++question) {
                    EXPECT_EQ(shown.count(question), question == 4 ? 0U : 3U);
                    const QString number = QString::number(question + 1) + u'.';
                    EXPECT_EQ(numbers[number], key == Key::OwnPage ? 4 : 3);
                }
            }
        }
    }
}

TEST_F(Paper, VersionsArePermutationsAndTheKeySaysThem)
{
    const PaperTest test = makeTest(60, {{40, 30}}, 6);
    ASSERT_EQ(test.versions.size(), 6U);
    std::set<std::vector<std::size_t>> different;
    for (std::vector<std::size_t> order : test.versions) {
        different.insert(order);
        std::sort(order.begin(), order.end());
        EXPECT_EQ(order, test.versions[0]);
    }
    EXPECT_EQ(different.size(), 6U);
    const QString pdf = library.folder() + u"/key.pdf"_s;
    SavePaperPdf(pdf, test, layOut(test, {.key = Key::OwnPage}), font);
    // Six columns behind the number, one for each version.
    static const QRegularExpression row(u"^ *(\\d+)\\.((?: +A\\d+){6})$"_s,
                                        QRegularExpression::MultilineOption);
    const QString text = QString::fromUtf8(output(u"pdftotext"_s, {u"-layout"_s, pdf, u"-"_s}));
    auto rows = row.globalMatch(text);
    std::size_t count = 0;
    while (rows.hasNext()) {
        const auto match = rows.next();
        const auto position = match.captured(1).toULongLong() - 1;
        const QStringList answers = match.captured(2).split(u' ', Qt::SkipEmptyParts);
        for (std::size_t version = 0; version < 6; ++version) {
            EXPECT_EQ(answers.at(qsizetype(version)),
                      test.questions[test.versions[version][position]].answer);
        }
        ++count;
    }
    EXPECT_EQ(count, 60U);
}

TEST_F(Paper, ThePdfIsSoundAndHoldsTheVeryPictures)
{
    PaperTest test = makeTest(5, {{400, 200}}, 2);
    // A progressive one, one that is no JPEG, a broken one, and one that is shown twice.
    output(u"sh"_s, {u"-c"_s,
                     u"cd \"$0\" && convert 1.jpg -interlace JPEG JPG:p && mv p 1.jpg && "
                     "convert 2.jpg -colorspace CMYK c.jpg && mv c.jpg 2.jpg && "
                     "convert 3.jpg BMP:b && mv b 3.jpg && truncate -s 900 4.jpg"_s,
                     library.folder() + u"/Files"_s});
    const QString pdf = library.folder() + u"/test.pdf"_s;
    const PaperOptions options{.questionsPerPage = 2, .key = Key::AfterEach, .topicLines = true};
    const PaperLayout layout = layOut(test, options);
    int reported = 0;
    SavePaperPdf(pdf, test, layout, font, [&](int page, int) { EXPECT_EQ(page, ++reported); });
    EXPECT_EQ(reported, 6);
    EXPECT_TRUE(output(u"qpdf"_s, {u"--check"_s, pdf}).contains("No syntax"));
    EXPECT_FALSE(output(u"pdffonts"_s, {pdf}).contains(" no  yes")) << "all fonts are in it";
    EXPECT_TRUE(output(u"pdfinfo"_s, {pdf}).contains("Алгебра"));
    const QByteArray text = output(u"pdftotext"_s, {u"-layout"_s, pdf, u"-"_s});
    for (const QByteArray& words :
         {QByteArray("Алгебра"), QByteArray("Roots π"), QByteArray("Version B"),
          QByteArray("Picture of question 1: Roots"), QByteArray("missing or damaged")}) {
        EXPECT_TRUE(text.contains(words)) << words.constData();
    }
    for (int number = 1; number <= 5; ++number) {
        EXPECT_EQ(text.count("Answer: A" + QByteArray::number(number)), 2);
        const QRegularExpression label(u"^[\f ]*%1\\. "_s.arg(number),
                                       QRegularExpression::MultilineOption);
        EXPECT_EQ(QString::fromUtf8(text).count(label), 2) << text.constData();
    }

    output(u"pdfimages"_s, {u"-all"_s, pdf, library.folder() + u"/out"_s});
    std::set<QByteArray> inside;
    for (const QString& name : QDir(library.folder()).entryList({u"out-*"_s})) {
        QFile file(library.folder() + u'/' + name);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        inside.insert(file.readAll());
    }
    EXPECT_EQ(inside.size(), 4U);
    for (const int same : {1, 2, 5}) {
        QFile file(library.picturePath(same));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_TRUE(inside.contains(file.readAll())) << same;
    }
    EXPECT_THROW(SavePaperPdf(u"/nowhere/a.pdf"_s, test, layout, font), Error);
    try {
        const FileSizeLimit full(20'000);
        SavePaperPdf(library.folder() + u"/full.pdf"_s, test, layout, font);
        ADD_FAILURE() << "there was no room";
    } catch (const Error& error) {
        EXPECT_TRUE(error.message().contains(qt_error_string(EFBIG)))
            << qPrintable(error.message());
    }
    EXPECT_EQ(QDir(library.folder()).entryList({u"full*"_s}), QStringList());
}

TEST_F(Paper, TheWindowShowsSavesPrintsAndRemembers)
{
    PaperTest test = makeTest(7);
    test.versions.clear();
    int told = 0;
    for (const bool again : {false, true}) {
        frmPaper form(services, test);
        form.onDone = [&](const PaperTest& done) { told += done.versions.size() == 2 ? 1 : 100; };
        form.show();
        form.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&form));
        const auto* preview = control<PaperPreview>(&form, "picPreview");
        auto* perPage = control<QComboBox>(&form, "cboPerPage");
        if (again) {
            EXPECT_EQ(perPage->currentText(), u"1");
            control<QComboBox>(&form, "cboPaper")->setCurrentIndex(1);
            EXPECT_EQ(preview->layout().width, 612);
        } else {
            perPage->setCurrentIndex(perPage->findText(u"1"_s));
            control<QSpinBox>(&form, "txtVersions")->setValue(2);
        }
        EXPECT_EQ(preview->layout().pages.size(), 15U);
        files.answers.emplace_back(library.folder() + u"/saved"_s);
        if (again) {
            messages.expectYesNo(
                u"Replace File?"_s,
                u"There is a file %1/saved.pdf already. Replace it?"_s.arg(library.folder()), true);
        }
        QTest::keyClick(&form, Qt::Key_S, Qt::ControlModifier);
        EXPECT_EQ(files.calls.at(again ? 1 : 0), u"save PDF Files (*.pdf)|Prüfung — Алгебра.pdf");
        const QByteArray info = output(u"pdfinfo"_s, {library.folder() + u"/saved.pdf"_s});
        EXPECT_TRUE(info.contains(again ? "Page size:       612 x 792" : "Pages:           15"));
        QPrinter printer(QPrinter::HighResolution);
        printer.setOutputFileName(library.folder() + u"/printed.pdf"_s);
        form.printOn(printer);
        QTest::keyClick(&form, Qt::Key_Escape);
        EXPECT_FALSE(form.isVisible());
    }
    const QByteArray printed =
        output(u"pdftotext"_s, {u"-layout"_s, library.folder() + u"/printed.pdf"_s, u"-"_s});
    EXPECT_TRUE(printed.contains("Answer Key") && printed.contains("Version B, page 7 of 7"));
    EXPECT_EQ(told, 4);

    // A place that takes no file, and a test without questions.
    frmPaper form(services, test);
    form.onDone = [](const PaperTest&) { ADD_FAILURE() << "nothing was saved"; };
    files.answers.emplace_back(u"/nowhere/a.pdf"_s);
    messages.beforeAnswer = [&] { EXPECT_TRUE(form.isEnabled()); };
    messages.expectInform(u"The Test Was Not Finished"_s,
                          u"The file /nowhere/a.pdf could not be saved (No such file or "
                          "directory). Choose another place or make room and try again."_s);
    form.cmdSavePdf_Click();
    const frmPaper empty(services, {});
    EXPECT_FALSE(empty.findChild<QPushButton*>(u"cmdSavePdf"_s)->isEnabled());
}

} // namespace
} // namespace varnholt::test
