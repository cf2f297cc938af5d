#include "selection/paper_draw.h"

#include "pictures/picture_files.h"
#include "selection/question_draw.h"
#include "store/catalogue.h"

namespace varnholt {

PaperTest PaperTestOf(const Draw& draw, const ProgramState& state, const QString& programFolder)
{
    PaperTest test;
    for (const AssessmentRecord& assessment : state.AssessmentList) {
        if (assessment.AssessmentNum == state.CurrentAssessmentNum) {
            test.title = assessment.AssessmentName;
        }
    }
    for (const DrawnQuestion& question : draw.DrawPool) {
        if (question.Selected) {
            test.questions.push_back({question.Answer, GetTopicText(state, question),
                                      FindPictureFile(programFolder, question.PictureIndex)});
        }
    }
    return test;
}

} // namespace varnholt
