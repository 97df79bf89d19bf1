// A linear-constraint solver in the Cassowary style: an incremental simplex
// tableau over equalities and inequalities, each required or optional with a
// strength. Optional constraints are met as far as the required ones allow,
// trading their errors off by strength. Plain C++: the layout code feeds it
// numbers and reads numbers back.
#pragma once

#include <objc/export.h>
#include <objc/result.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace uikit {

class PV_EXPORT LinearSolver {
  public:
    enum class Relation : std::uint8_t { LessOrEqual, Equal, GreaterOrEqual };
    // Strengths range over (0, kRequired]; kRequired is a hard constraint.
    static constexpr double kRequired = 1000.0;

    struct Term {
        std::size_t variable;
        double coefficient;
    };

    std::size_t addVariable();
    // Adds `sum(terms) + constant RELATION 0`. A required constraint that
    // contradicts the required ones already added fails and leaves the
    // solver as it was.
    objc::Result<void> addConstraint(std::span<const Term> terms, double constant,
                                     Relation relation, double strength);
    // The variable's value in the current solution.
    double value(std::size_t variable) const;

  private:
    enum class Kind : std::uint8_t { External, Slack, Error, Dummy };
    using Symbol = int;
    static constexpr Symbol kNone = -1;

    // symbol = constant + sum(coefficient * cell symbol), cells sorted by symbol.
    struct Row {
        double constant = 0;
        std::vector<std::pair<Symbol, double>> cells;

        double coefficientFor(Symbol s) const;
        void insert(Symbol s, double coefficient);
        void insert(const Row& other, double coefficient);
        void remove(Symbol s);
        void reverseSign();
        void solveFor(Symbol s);
        void solveFor(Symbol lhs, Symbol rhs);
        void substitute(Symbol s, const Row& row);
    };
    struct BasicRow {
        Symbol symbol;
        Row row;
    };
    struct State {
        std::vector<BasicRow> rows;
        std::vector<int> rowIndex;  // per symbol: its row in `rows`, or -1
        Row objective;
    };

    Symbol newSymbol(Kind kind);
    Row* rowOf(Symbol s);
    const Row* rowOf(Symbol s) const;
    void putRow(Symbol s, Row row);
    Row takeRow(Symbol s);

    Symbol chooseSubject(const Row& row, Symbol marker, Symbol other) const;
    bool addWithArtificialVariable(const Row& row);
    void substitute(Symbol s, const Row& row);
    void optimize(Row& objective);
    Symbol enteringSymbol(const Row& objective) const;
    Symbol leavingSymbol(Symbol entering) const;

    std::vector<Kind> kinds_;             // per symbol
    std::vector<Symbol> variableSymbol_;  // per variable
    State state_;
    std::optional<Row> artificial_;
};

}  // namespace uikit
