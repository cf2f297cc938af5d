#pragma once

#include <QMap>
#include <QString>

#include <memory>
#include <optional>

struct sqlite3;

namespace varnholt {

/// Values of single-letter variables.
using Variables = QMap<QString, double>;

/// Evaluates the formulas of the sample questions: the notation of the typeset formulas
/// (`\frac{1}{2}`, `\sqrt{5}`, `x^2`, `3x(x - 1)`, ×, ÷, π) and of plain answers
/// ("12 cm", "3x + 2"). SQLite does the arithmetic, on real numbers throughout;
/// angles of functions are in radians, `radians()` converts.
class Expression
{
public:
    Expression();
    ~Expression();
    Expression(const Expression&) = delete;
    Expression& operator=(const Expression&) = delete;

    /// The value, or nothing where the text is no formula.
    std::optional<double> evaluate(const QString& text, const Variables& variables = {}) const;

private:
    struct Close
    {
        void operator()(sqlite3* database) const;
    };
    std::unique_ptr<sqlite3, Close> m_database;
};

} // namespace varnholt
