#include "manage/structure_maintenance.h"

#include "library/Library.h"
#include "store/statements.h"

#include <limits>

namespace varnholt {

std::int32_t HighestAssessmentNum(Connection& connection)
{
    try {
        Recordset rows = connection.read(statements::SelectMaxAssessmentNum());
        return rows.next() ? rows.integer(rows.field("NewAssessmentNum")) : 0;
    } catch (const DatabaseError&) {
        return 0;
    }
}

void RememberAssessment(ProgramState& state, Library& library, std::int32_t assessmentNum)
{
    state.CurrentAssessmentNum = assessmentNum;
    library.rememberAssessment(assessmentNum);
}

QString LargeKeyHint(const QString& sentence, std::int32_t key)
{
    constexpr int largest = std::numeric_limits<std::int16_t>::max();
    return key <= largest ? QString() : sentence.arg(key).arg(largest);
}

} // namespace varnholt
