#include "selection/frmMain.h"

#include "library/Library.h"
#include "selection/MoreFrame.h"
#include "selection/QuotaColumn.h"
#include "selection/RecentTests.h"
#include "selection/build_run.h"
#include "selection/frmSlides.h"
#include "selection/past_build.h"
#include "selection/test_record.h"
#include "store/services.h"
#include "toolkit/ListBox.h"

#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QRadioButton>

#include <algorithm>
#include <utility>

namespace varnholt {

void frmMain::connectMore()
{
    fraMore_->setWishes(LoadWishes(services_.programFolder));
    connect(fraMore_, &MoreFrame::wishesChanged, this, [this] {
        SaveWishes(services_.programFolder, fraMore_->wishes());
        ranks_.reset();
        showFresh();
    });
    fraMore_->saySlides(LoadSlideWishes(services_.programFolder).inWords());
    connect(fraMore_, &MoreFrame::slidesClicked, this, &frmMain::cmdSlides_Click);
    connect(fraRecent_, &RecentTests::makeAgain, this, &frmMain::makeAgain);
    connect(quotaColumn_, &QuotaColumn::quotasChanged, this, &frmMain::quotasChanged);
    connect(cmdEvenShare_, &QPushButton::clicked, this, &frmMain::cmdEvenShare_Click);
    connect(txtQuestions_, &QLineEdit::textChanged, this, &frmMain::showQuotas);
}

void frmMain::cmdSlides_Click()
{
    frmSlides dialog(LoadSlideWishes(services_.programFolder),
                     LoadShowWishes(services_.programFolder), window());
    if (dialog.exec() == QDialog::Accepted) {
        SaveSlideWishes(services_.programFolder, dialog.wishes());
        SaveShowWishes(services_.programFolder, dialog.showWishes());
        fraMore_->saySlides(dialog.wishes().inWords());
    }
}

std::int64_t frmMain::now() const
{
    constexpr std::int64_t millisecondsPerSecond = 1000;
    return services_.clock->millisecondsSinceEpoch() / millisecondsPerSecond;
}

void frmMain::loadMemory()
{
    std::vector<PastTest> recent;
    try {
        const std::int32_t chosen = fraMore_->wishes().classId;
        fraMore_->setClasses(library_.pastTests().classes());
        const DrawWishes wishes = fraMore_->wishes();
        if (wishes.classId != chosen) {
            SaveWishes(services_.programFolder, wishes);
        }
        recent = library_.pastTests().list(RecentTests::rows);
    } catch (const DatabaseError&) {
        // The group "Last Tests" stays away; the draw does without.
    }
    fraRecent_->setTests(recent);
    forgetUses();
    showFresh();
}

void frmMain::forgetUses()
{
    book_.reset();
    ranks_.reset();
}

const UseBook& frmMain::useBook()
{
    if (!book_) {
        book_ = library_.useBook(state_.CurrentAssessmentNum);
    }
    return *book_;
}

const FreshRanks& frmMain::freshRanks()
{
    if (!ranks_) {
        const QString name = fraMore_->wishes().className;
        const std::int32_t classId = library_.pastTests().classNamed(name);
        // To a class that nobody knows yet everything is new.
        ranks_ = classId == 0 && !name.isEmpty() ? FreshRanks() : useBook().ranks(classId, now());
    }
    return *ranks_;
}

void frmMain::showFresh()
{
    const DrawWishes wishes = fraMore_->wishes();
    if (wishes.rule == DrawRule::Any && wishes.className.isEmpty()) {
        fraMore_->say({});
        return;
    }
    QString text;
    try {
        const FreshRanks& ranks = freshRanks();
        int fresh = 0;
        for (const QuestionRecord& question : state_.QuestionList) {
            fresh += selection_.IsQuestionInSelection(question.TopicID, question.SubtopicNum) &&
                             ranks.of(question.SOLIndex) == 0
                         ? 1
                         : 0;
        }
        const QLocale locale;
        text = wishes.className.isEmpty()
                   ? tr("%1 of %2 new")
                         .arg(locale.toString(fresh), locale.toString(SelectedQuestionCount_))
                   : tr("%1 of %2 new for %3")
                         .arg(locale.toString(fresh), locale.toString(SelectedQuestionCount_),
                              wishes.className);
    } catch (const DatabaseError& error) {
        text = error.message();
    }
    if (const FeatureState features = library_.features(); !features.on) {
        text += u'\n' + features.reason + u' ' + tr("Tests made now are not remembered.");
    }
    fraMore_->say(text);
}

Quotas frmMain::questionsOfTopics() const
{
    Quotas available;
    for (const ListBox::Row& row : lstTopics_->rows()) {
        if (row.selected) {
            available[row.itemData] = 0;
        }
    }
    for (const QuestionRecord& question : state_.QuestionList) {
        if (selection_.IsQuestionInSelection(question.TopicID, question.SubtopicNum)) {
            ++available[question.TopicID];
        }
    }
    return available;
}

Quotas frmMain::activeQuotas() const
{
    Quotas active;
    for (const auto& [topic, wanted] : quotaColumn_->quotas()) {
        if (selection_.topicSelected(topic)) {
            active[topic] = wanted;
        }
    }
    return active;
}

void frmMain::loadQuotas()
{
    Quotas known;
    for (const auto& [topic, wanted] :
         LoadQuotas(services_.programFolder, state_.CurrentAssessmentNum)) {
        if (std::any_of(state_.TopicList.begin(), state_.TopicList.end(),
                        [topic = topic](const TopicRecord& t) { return t.TopicID == topic; })) {
            known[topic] = wanted;
        }
    }
    quotaColumn_->setQuotas(std::move(known));
    showQuotas();
}

void frmMain::quotasChanged()
{
    SaveQuotas(services_.programFolder, state_.CurrentAssessmentNum, quotaColumn_->quotas());
    showQuotas();
}

void frmMain::showQuotas()
{
    const Quotas active = activeQuotas();
    int fixed = 0;
    for (const auto& [topic, wanted] : active) {
        fixed += wanted;
    }
    if (fixed == 0) {
        lblQuotas_->hide();
        return;
    }
    const auto asked =
        static_cast<int>(std::clamp(ParseNumber(txtQuestions_->text()).value_or(0), 0.0, 1e9));
    const std::vector<ShortTopic> shortTopics = ShortTopics(active, questionsOfTopics());
    int possible = fixed;
    for (const ShortTopic& topic : shortTopics) {
        possible -= topic.wanted - topic.available;
    }
    QStringList lines{
        possible <= asked
            ? tr("%1 asked, %2 fixed").arg(asked).arg(fixed)
            : tr("%1 asked, but %2 fixed: not all of them can come.").arg(asked).arg(fixed)};
    lines += ShortTopicsInWords(shortTopics, state_.TopicList);
    constexpr qsizetype mostLines = 3;
    lblQuotas_->setText(lines.mid(0, mostLines).join(u'\n'));
    lblQuotas_->show();
}

void frmMain::cmdEvenShare_Click()
{
    const Quotas available = questionsOfTopics();
    std::vector<std::pair<std::int32_t, int>> topics;
    for (const ListBox::Row& row : lstTopics_->rows()) {
        if (row.selected) {
            topics.emplace_back(row.itemData, available.at(row.itemData));
        }
    }
    const double asked = ParseNumber(txtQuestions_->text()).value_or(0);
    Quotas even = EvenShare(topics, static_cast<int>(std::clamp(asked, 0.0, 1e6)));
    std::erase_if(even, [](const auto& entry) { return entry.second == 0; });
    // Pressed a second time it takes them back.
    quotaColumn_->setQuotas(even == quotaColumn_->quotas() ? Quotas() : std::move(even));
    quotasChanged();
}

QuotaOrder frmMain::shape(Draw& draw)
{
    const DrawWishes wishes = fraMore_->wishes();
    if (wishes.rule != DrawRule::Any) {
        try {
            PreferFresh(draw.DrawPool, freshRanks(), wishes.rule, draw.RequestedQuestionCount);
        } catch (const DatabaseError& error) {
            services_.messageBoxes->inform(tr("Database Error"), error.message());
        }
    }
    return QuotaOrder(activeQuotas(), draw.DrawPool, draw.RequestedQuestionCount);
}

NewTest frmMain::testOf(const Draw& draw) const
{
    NewTest test{NameOfTest(state_, draw),
                 state_.CurrentAssessmentNum,
                 fraMore_->wishes().className,
                 draw.seed,
                 {},
                 ItemsOf(state_, draw)};
    test.options.topicLine = optTopicYes_->isChecked();
    test.options.answerKey = optKeyYes_->isChecked();
    test.options.slides = LoadSlideWishes(services_.programFolder);
    return test;
}

BuildOutcome frmMain::buildSlides(QWidget* window, const Draw& draw, const SlideOptions& options)
{
    TestRecord record(library_, testOf(draw));
    BuildOutcome outcome = RunBuild(window, services_, state_, draw, options);
    FinishTest(services_, record, outcome);
    if (outcome.end == BuildOutcome::End::Complete) {
        Q_EMIT testMade(drawnTest(draw));
    }
    return outcome;
}

DrawnTest frmMain::drawnTest(const Draw& draw) const
{
    return {PaperTestOf(draw, state_, services_.programFolder), testOf(draw)};
}

bool frmMain::keepForLater(const Draw& draw)
{
    try {
        NewTest test = testOf(draw);
        test.options.asked = draw.RequestedQuestionCount;
        KeepTest(library_, std::move(test));
        return true;
    } catch (const Error& error) {
        services_.messageBoxes->inform(tr("Keep for Later"), error.message());
        return false;
    }
}

void frmMain::memoryChanged(const LibraryChange& change)
{
    if (change.touches(ItemKind::Test) || change.touches(ItemKind::Class) || change.items.empty()) {
        loadMemory();
    } else {
        forgetUses();
        showFresh();
    }
}

void frmMain::makeAgain(const PastTest& test)
{
    try {
        MakeTestAgain(window(), services_, library_, test);
    } catch (const DatabaseError& error) {
        services_.messageBoxes->inform(tr("Database Error"), error.message());
    }
}

QString frmMain::usesInWords(std::int32_t solIndex)
{
    try {
        return UseInWords(library_, useBook(), solIndex, now());
    } catch (const DatabaseError&) {
        return {};
    }
}

} // namespace varnholt
