#include <UIKit/linear_solver.h>

#include <gtest/gtest.h>

#include <vector>

namespace {

using uikit::LinearSolver;
using Rel = LinearSolver::Relation;
constexpr double kRequired = LinearSolver::kRequired;

// `a*x + b*y + constant REL 0`, as the tests write it.
objc::Result<void> add(LinearSolver& s, std::vector<LinearSolver::Term> terms, double constant,
                       Rel rel, double strength = kRequired) {
    return s.addConstraint(terms, constant, rel, strength);
}

TEST(LinearSolverTest, EqualitiesAndInequalitiesHold) {
    LinearSolver s;
    const auto left = s.addVariable();
    const auto width = s.addVariable();
    const auto right = s.addVariable();
    // right = left + width; left = 10; width >= 50; right <= 40 is weaker.
    ASSERT_TRUE(add(s, {{right, 1}, {left, -1}, {width, -1}}, 0, Rel::Equal));
    ASSERT_TRUE(add(s, {{left, 1}}, -10, Rel::Equal));
    ASSERT_TRUE(add(s, {{width, 1}}, -50, Rel::GreaterOrEqual));
    ASSERT_TRUE(add(s, {{right, 1}}, -40, Rel::LessOrEqual, 500));
    EXPECT_DOUBLE_EQ(s.value(left), 10);
    EXPECT_DOUBLE_EQ(s.value(width), 50);  // the required minimum beats the optional maximum
    EXPECT_DOUBLE_EQ(s.value(right), 60);

    // An optional inequality that can hold does hold, with a required one
    // pulling the other way only as far as allowed.
    LinearSolver t;
    const auto x = t.addVariable();
    ASSERT_TRUE(add(t, {{x, 1}}, -100, Rel::LessOrEqual));
    ASSERT_TRUE(add(t, {{x, 1}}, -30, Rel::GreaterOrEqual, 250));
    ASSERT_TRUE(add(t, {{x, 1}}, 0, Rel::Equal, 50));  // as small as possible, weakly
    EXPECT_DOUBLE_EQ(t.value(x), 30);
}

TEST(LinearSolverTest, StrongerOptionalConstraintsWinAndMultipliersScale) {
    LinearSolver s;
    const auto w = s.addVariable();
    const auto h = s.addVariable();
    ASSERT_TRUE(add(s, {{w, 1}}, -200, Rel::Equal, 250));
    ASSERT_TRUE(add(s, {{w, 1}}, -100, Rel::Equal, 750));
    ASSERT_TRUE(add(s, {{h, 1}, {w, -0.5}}, -4, Rel::Equal));  // h = w/2 + 4
    EXPECT_DOUBLE_EQ(s.value(w), 100);
    EXPECT_DOUBLE_EQ(s.value(h), 54);
}

TEST(LinearSolverTest, ContradictoryRequiredConstraintFailsAndLeavesTheSolution) {
    LinearSolver s;
    const auto a = s.addVariable();
    const auto b = s.addVariable();
    ASSERT_TRUE(add(s, {{a, 1}}, -10, Rel::Equal));
    ASSERT_TRUE(add(s, {{b, 1}, {a, -1}}, -5, Rel::Equal));
    ASSERT_TRUE(add(s, {{b, 1}}, -15, Rel::Equal));  // redundant, consistent
    EXPECT_FALSE(add(s, {{b, 1}}, -20, Rel::Equal));
    EXPECT_FALSE(add(s, {{b, 1}, {a, -1}}, -1, Rel::LessOrEqual));  // b - a <= 1 cannot hold
    // Optional constraints around a failed one still work afterwards.
    const auto c = s.addVariable();
    ASSERT_TRUE(add(s, {{c, 1}, {b, -1}}, 0, Rel::GreaterOrEqual));
    ASSERT_TRUE(add(s, {{c, 1}}, 0, Rel::Equal, 50));
    EXPECT_DOUBLE_EQ(s.value(a), 10);
    EXPECT_DOUBLE_EQ(s.value(b), 15);
    EXPECT_DOUBLE_EQ(s.value(c), 15);
    // A later, stronger wish moves it; a weaker one would not have.
    ASSERT_TRUE(add(s, {{c, 1}}, -1000, Rel::Equal, 100));
    EXPECT_DOUBLE_EQ(s.value(c), 1000);
}

}  // namespace
