#include "selection/show_draw.h"

#include "pictures/picture_files.h"
#include "selection/question_draw.h"
#include "store/catalogue.h"

namespace varnholt {

ShowTest ShowTestOf(const Draw& draw, const ProgramState& state, const QString& programFolder,
                    bool topicLine)
{
    ShowTest test;
    test.topicLine = topicLine;
    test.take = [&state, programFolder](const QuestionRecord& question) {
        return ShowItem{question, GetTopicText(state, question),
                        FindPictureFile(programFolder, question.PictureIndex)};
    };
    for (int i = 1; i <= draw.DrawPool.upperBound(); ++i) {
        const DrawnQuestion& question = draw.DrawPool(i);
        if (question.Selected) {
            test.items.push_back(test.take(question));
        } else if (i > draw.judged) {
            test.spares.push_back(question);
        }
    }
    return test;
}

} // namespace varnholt
