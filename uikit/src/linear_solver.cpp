#include <UIKit/linear_solver.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace uikit {

namespace {

constexpr double kEpsilon = 1.0e-8;

bool nearZero(double value) {
    return std::abs(value) < kEpsilon;
}

}  // namespace

// Rows -------------------------------------------------------------------

double LinearSolver::Row::coefficientFor(Symbol s) const {
    const auto it = std::lower_bound(cells.begin(), cells.end(), s,
                                     [](const auto& cell, Symbol key) { return cell.first < key; });
    return it != cells.end() && it->first == s ? it->second : 0.0;
}

void LinearSolver::Row::insert(Symbol s, double coefficient) {
    const auto it = std::lower_bound(cells.begin(), cells.end(), s,
                                     [](const auto& cell, Symbol key) { return cell.first < key; });
    if (it != cells.end() && it->first == s) {
        it->second += coefficient;
        if (nearZero(it->second)) cells.erase(it);
    } else if (!nearZero(coefficient)) {
        cells.insert(it, {s, coefficient});
    }
}

void LinearSolver::Row::insert(const Row& other, double coefficient) {
    constant += other.constant * coefficient;
    for (const auto& [s, c] : other.cells) insert(s, c * coefficient);
}

void LinearSolver::Row::remove(Symbol s) {
    const auto it = std::lower_bound(cells.begin(), cells.end(), s,
                                     [](const auto& cell, Symbol key) { return cell.first < key; });
    if (it != cells.end() && it->first == s) cells.erase(it);
}

void LinearSolver::Row::reverseSign() {
    constant = -constant;
    for (auto& cell : cells) cell.second = -cell.second;
}

// From `0 = constant + c*s + rest` to `s = -(constant + rest) / c`.
void LinearSolver::Row::solveFor(Symbol s) {
    const double scale = -1.0 / coefficientFor(s);
    remove(s);
    constant *= scale;
    for (auto& cell : cells) cell.second *= scale;
}

// From `lhs = row` (rhs among its cells) to `rhs = ...`.
void LinearSolver::Row::solveFor(Symbol lhs, Symbol rhs) {
    insert(lhs, -1.0);
    solveFor(rhs);
}

void LinearSolver::Row::substitute(Symbol s, const Row& row) {
    const double coefficient = coefficientFor(s);
    if (coefficient == 0.0) return;
    remove(s);
    insert(row, coefficient);
}

// The tableau -------------------------------------------------------------

std::size_t LinearSolver::addVariable() {
    variableSymbol_.push_back(newSymbol(Kind::External));
    return variableSymbol_.size() - 1;
}

LinearSolver::Symbol LinearSolver::newSymbol(Kind kind) {
    kinds_.push_back(kind);
    state_.rowIndex.push_back(-1);
    return static_cast<Symbol>(kinds_.size() - 1);
}

LinearSolver::Row* LinearSolver::rowOf(Symbol s) {
    const int index = state_.rowIndex[static_cast<std::size_t>(s)];
    return index < 0 ? nullptr : &state_.rows[static_cast<std::size_t>(index)].row;
}

const LinearSolver::Row* LinearSolver::rowOf(Symbol s) const {
    const int index = state_.rowIndex[static_cast<std::size_t>(s)];
    return index < 0 ? nullptr : &state_.rows[static_cast<std::size_t>(index)].row;
}

void LinearSolver::putRow(Symbol s, Row row) {
    state_.rowIndex[static_cast<std::size_t>(s)] = static_cast<int>(state_.rows.size());
    state_.rows.push_back({s, std::move(row)});
}

LinearSolver::Row LinearSolver::takeRow(Symbol s) {
    const auto index = static_cast<std::size_t>(state_.rowIndex[static_cast<std::size_t>(s)]);
    Row row = std::move(state_.rows[index].row);
    state_.rowIndex[static_cast<std::size_t>(s)] = -1;
    if (index + 1 != state_.rows.size()) {
        state_.rows[index] = std::move(state_.rows.back());
        state_.rowIndex[static_cast<std::size_t>(state_.rows[index].symbol)] =
            static_cast<int>(index);
    }
    state_.rows.pop_back();
    return row;
}

double LinearSolver::value(std::size_t variable) const {
    const Row* row = rowOf(variableSymbol_.at(variable));
    return row == nullptr ? 0.0 : row->constant;
}

objc::Result<void> LinearSolver::addConstraint(std::span<const Term> terms, double constant,
                                               Relation relation, double strength) {
    const bool required = strength >= kRequired;
    // The constraint as a row over the parametric symbols: basic variables
    // are replaced by their rows.
    Row row;
    row.constant = constant;
    for (const Term& term : terms) {
        const Symbol s = variableSymbol_.at(term.variable);
        if (const Row* basic = rowOf(s)) {
            row.insert(*basic, term.coefficient);
        } else {
            row.insert(s, term.coefficient);
        }
    }
    Symbol marker = kNone;
    Symbol other = kNone;
    if (relation == Relation::Equal) {
        if (required) {
            marker = newSymbol(Kind::Dummy);
            row.insert(marker, 1.0);
        } else {
            marker = newSymbol(Kind::Error);
            other = newSymbol(Kind::Error);
            row.insert(marker, -1.0);
            row.insert(other, 1.0);
            state_.objective.insert(marker, strength);
            state_.objective.insert(other, strength);
        }
    } else {
        // expression <= 0 becomes expression + slack = 0, slack >= 0.
        const double sign = relation == Relation::LessOrEqual ? 1.0 : -1.0;
        marker = newSymbol(Kind::Slack);
        row.insert(marker, sign);
        if (!required) {
            other = newSymbol(Kind::Error);
            row.insert(other, -sign);
            state_.objective.insert(other, strength);
        }
    }
    if (row.constant < 0.0) row.reverseSign();

    const Symbol subject = chooseSubject(row, marker, other);
    if (subject == kNone) {
        const bool onlyDummies =
            std::all_of(row.cells.begin(), row.cells.end(), [&](const auto& c) {
                return kinds_[static_cast<std::size_t>(c.first)] == Kind::Dummy;
            });
        if (onlyDummies) {
            // Redundant if it already holds, contradictory otherwise.
            if (!nearZero(row.constant)) return objc::Error{0, "unsatisfiable constraint"};
        } else {
            State saved = state_;
            if (!addWithArtificialVariable(row)) {
                state_ = std::move(saved);
                state_.rowIndex.resize(kinds_.size(), -1);  // symbols made since stay unused
                return objc::Error{0, "unsatisfiable constraint"};
            }
        }
    } else {
        row.solveFor(subject);
        substitute(subject, row);
        putRow(subject, std::move(row));
    }
    optimize(state_.objective);
    return {};
}

// An external symbol if there is one; otherwise the constraint's own slack
// or error symbol, if entering it keeps the row feasible.
LinearSolver::Symbol LinearSolver::chooseSubject(const Row& row, Symbol marker,
                                                 Symbol other) const {
    for (const auto& [s, c] : row.cells) {
        if (kinds_[static_cast<std::size_t>(s)] == Kind::External) return s;
    }
    for (const Symbol s : {marker, other}) {
        if (s == kNone) continue;
        const Kind kind = kinds_[static_cast<std::size_t>(s)];
        if ((kind == Kind::Slack || kind == Kind::Error) && row.coefficientFor(s) < 0.0) return s;
    }
    return kNone;
}

// Enters the row with an artificial slack and minimises it: the constraint
// is satisfiable exactly when the artificial variable can reach zero.
bool LinearSolver::addWithArtificialVariable(const Row& row) {
    const Symbol art = newSymbol(Kind::Slack);
    putRow(art, row);
    artificial_ = row;
    optimize(*artificial_);
    const bool success = nearZero(artificial_->constant);
    artificial_.reset();
    if (rowOf(art) != nullptr) {
        Row basic = takeRow(art);
        if (basic.cells.empty()) return success;
        const auto pivot = std::find_if(basic.cells.begin(), basic.cells.end(), [&](const auto& c) {
            const Kind kind = kinds_[static_cast<std::size_t>(c.first)];
            return kind == Kind::Slack || kind == Kind::Error;
        });
        if (pivot == basic.cells.end()) return false;
        const Symbol entering = pivot->first;
        basic.solveFor(art, entering);
        substitute(entering, basic);
        putRow(entering, std::move(basic));
    }
    for (auto& entry : state_.rows) entry.row.remove(art);
    state_.objective.remove(art);
    return success;
}

void LinearSolver::substitute(Symbol s, const Row& row) {
    for (auto& entry : state_.rows) entry.row.substitute(s, row);
    state_.objective.substitute(s, row);
    if (artificial_) artificial_->substitute(s, row);
}

void LinearSolver::optimize(Row& objective) {
    for (;;) {
        const Symbol entering = enteringSymbol(objective);
        if (entering == kNone) return;
        const Symbol leaving = leavingSymbol(entering);
        // The objective is bounded below by zero errors, so a pivot exists.
        if (leaving == kNone) return;
        Row row = takeRow(leaving);
        row.solveFor(leaving, entering);
        substitute(entering, row);
        putRow(entering, std::move(row));
    }
}

LinearSolver::Symbol LinearSolver::enteringSymbol(const Row& objective) const {
    for (const auto& [s, c] : objective.cells) {
        if (kinds_[static_cast<std::size_t>(s)] != Kind::Dummy && c < 0.0) return s;
    }
    return kNone;
}

// The basic symbol whose row limits the entering symbol most (ratio test).
LinearSolver::Symbol LinearSolver::leavingSymbol(Symbol entering) const {
    double ratio = std::numeric_limits<double>::max();
    Symbol found = kNone;
    for (const auto& entry : state_.rows) {
        if (kinds_[static_cast<std::size_t>(entry.symbol)] == Kind::External) continue;
        const double c = entry.row.coefficientFor(entering);
        if (c >= 0.0) continue;
        const double r = -entry.row.constant / c;
        if (r < ratio) {
            ratio = r;
            found = entry.symbol;
        }
    }
    return found;
}

}  // namespace uikit
