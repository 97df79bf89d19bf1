// NSArray and NSMutableArray: bounds, nil, enumeration safety, equality, sorting, ownership.
#include <gtest/gtest.h>

#include <Foundation/NSArray.h>
#include <Foundation/NSNull.h>
#include <Foundation/NSNumber.h>
#include <Foundation/NSString.h>

#include <objc/block.h>

#include <random>
#include <string>

#include "foundation_helpers.h"

namespace {

using namespace testsupport;

// Counts its deaths, so that tests see exactly when an array lets go.
class ArrayTestTracked : public NSObject {
    OBJC_CLASS(ArrayTestTracked)
    ~ArrayTestTracked() override { ++deaths; }
    static inline int deaths = 0;
};

}  // namespace

OBJC_DEFINE_CLASS(ArrayTestTracked, NSObject, "ArrayTestTracked")
void ArrayTestTracked::objcDefine(objc::ClassBuilder<ArrayTestTracked>&) {}

namespace {

template <class F>
objc::Exception raised(F&& f) {
    try {
        f();
    } catch (const objc::Exception& e) {
        return e;
    }
    return objc::Exception("", "nothing raised");
}

using Array = testsupport::PoolTest;

TEST_F(Array, IndexErrorsAndNilElementsRaiseWithThePlatformWording) {
    auto array = NSArray::create({NSSTR("a"), NSSTR("b"), NSSTR("c")});
    auto e = raised([&] { array->objectAtIndex(5); });
    EXPECT_EQ(e.name(), "NSRangeException");
    EXPECT_NE(e.reason().find("index 5 beyond bounds [0 .. 2]"), std::string::npos) << e.reason();
    EXPECT_EQ(raised([&] { array->subarrayWithRange(NSMakeRange(2, 2)); }).name(),
              "NSRangeException");
    // A range whose end overflows is still out of range.
    EXPECT_EQ(raised([&] { array->subarrayWithRange(NSMakeRange(1, NSUIntegerMax)); }).name(),
              "NSRangeException");
    auto mutableArray = NSMutableArray::create({NSSTR("a")});
    mutableArray->insertObjectAtIndex(NSSTR("z"), 1);  // at count: appends
    EXPECT_EQ(text(static_cast<NSString*>(mutableArray->lastObject())), "z");
    EXPECT_EQ(raised([&] { mutableArray->insertObjectAtIndex(NSSTR("x"), 3); }).name(),
              "NSRangeException");
    EXPECT_EQ(raised([&] { mutableArray->exchangeObjectAtIndexWithObjectAtIndex(0, 2); }).name(),
              "NSRangeException");
    EXPECT_EQ(raised([&] { mutableArray->setObjectAtIndexedSubscript(NSSTR("x"), 3); }).name(),
              "NSRangeException");
    mutableArray->removeAllObjects();
    mutableArray->removeLastObject();  // nothing to remove: no effect
    EXPECT_EQ(mutableArray->count(), 0u);
    // Nil elements raise an invalid argument.
    const std::string invalid = "NSInvalidArgumentException";
    EXPECT_EQ(raised([] { NSArray::create({NSSTR("a"), nullptr}); }).name(), invalid);
    EXPECT_EQ(raised([] { NSArray::arrayWithObject(nullptr); }).name(), invalid);
    mutableArray->addObject(NSSTR("a"));
    EXPECT_EQ(raised([&] { mutableArray->addObject(nullptr); }).name(), invalid);
    EXPECT_EQ(raised([&] { mutableArray->insertObjectAtIndex(nullptr, 0); }).name(), invalid);
    EXPECT_EQ(raised([&] { mutableArray->setObjectAtIndexedSubscript(nullptr, 0); }).name(),
              invalid);
    EXPECT_EQ(mutableArray->count(), 1u);  // nothing half-done
    const id objects[] = {NSSTR("a"), nullptr};
    EXPECT_EQ(raised([&] { NSArray::arrayWithObjectsCount(objects, 2); }).name(), invalid);
}

TEST_F(Array, MutationDuringEnumerationRaisesInsteadOfMisbehaving) {
    auto array = NSMutableArray::create({NSSTR("a"), NSSTR("b"), NSSTR("c")});
    auto e = raised([&] {
        for (id element : *array) {
            if (element != nullptr) array->addObject(NSSTR("more"));
        }
    });
    EXPECT_EQ(e.name(), "NSGenericException");
    EXPECT_NE(e.reason().find("was mutated while being enumerated"), std::string::npos);
    EXPECT_EQ(array->count(), 4u);
    // Removal, which would leave a plain iterator dangling, is caught too.
    EXPECT_EQ(raised([&] {
                  for (id element : *array) {
                      (void)element;
                      array->removeAllObjects();
                  }
              }).name(),
              "NSGenericException");
    array->addObjectsFromArray(NSArray::create({NSSTR("x"), NSSTR("y")}));
    auto remover = objc::makeBlock<void(id, NSUInteger, bool*)>(
        [&](id, NSUInteger, bool*) { array->removeLastObject(); });
    EXPECT_EQ(raised([&] { array->enumerateObjectsUsingBlock(remover); }).name(),
              "NSGenericException");
    EXPECT_EQ(array->count(), 1u);
}

TEST_F(Array, EqualityFollowsElementsAndAgreesWithHash) {
    // Built separately: equal, never identical.
    auto one = NSArray::create({S("x"), S("y")});
    auto two = NSMutableArray::create({S("x"), S("y")});
    auto reversed = NSArray::create({S("y"), S("x")});
    EXPECT_TRUE(one->isEqual(two));
    EXPECT_TRUE(two->isEqual(one));
    EXPECT_EQ(one->hash(), two->hash());
    EXPECT_FALSE(one->isEqual(reversed));
    EXPECT_FALSE(one->isEqual(NSSTR("x")));
    EXPECT_FALSE(one->isEqualToArray(NSArray::create({S("x")})));
    auto y = S("y");
    EXPECT_TRUE(one->containsObject(y));
    EXPECT_EQ(one->indexOfObject(y), 1u);
    EXPECT_EQ(one->indexOfObject(nullptr), static_cast<NSUInteger>(NSNotFound));
    // removeObject: removes every equal element.
    auto array = NSMutableArray::create({S("a"), S("b"), S("a"), S("c"), S("a")});
    array->removeObject(S("a"));
    EXPECT_EQ(text(array->componentsJoinedByString(NSSTR(","))), "b,c");
    array->removeObject(S("absent"));
    EXPECT_EQ(array->count(), 2u);
}

TEST_F(Array, SortsStablyBySelectorAndByComparator) {
    auto words = NSArray::create({NSSTR("pear"), NSSTR("apple"), NSSTR("fig"), NSSTR("banana")});
    NSArray* sorted = words->sortedArrayUsingSelector(objc::sel<"compare:">());
    EXPECT_EQ(text(sorted->componentsJoinedByString(NSSTR(" "))), "apple banana fig pear");
    // Equal keys (same length) keep their original order.
    auto byLength = objc::makeBlock<NSInteger(id, id)>([](id a, id b) -> NSInteger {
        const auto la = static_cast<NSString*>(a)->length();
        const auto lb = static_cast<NSString*>(b)->length();
        return la < lb ? -1 : la > lb ? 1 : 0;
    });
    auto mutableWords =
        NSMutableArray::create({NSSTR("bb"), NSSTR("a"), NSSTR("cc"), NSSTR("aa"), NSSTR("b")});
    mutableWords->sortUsingComparator(byLength);
    EXPECT_EQ(text(mutableWords->componentsJoinedByString(NSSTR(" "))), "a b bb cc aa");
    // Blocks typed with NSComparisonResult are accepted too.
    auto descending = objc::makeBlock<NSComparisonResult(id, id)>(
        [](id a, id b) { return static_cast<NSString*>(b)->compare(static_cast<NSString*>(a)); });
    EXPECT_EQ(
        text(words->sortedArrayUsingComparator(descending)->componentsJoinedByString(NSSTR(" "))),
        "pear fig banana apple");
    auto wrongSignature = objc::makeBlock<void(id)>([](id) {});
    EXPECT_EQ(raised([&] { words->sortedArrayUsingComparator(wrongSignature); }).name(),
              "NSInvalidArgumentException");
}

TEST_F(Array, InconsistentComparatorsNeverBreakTheArray) {
    std::vector<objc::Strong<NSNumber>> numbers;
    std::vector<id> raw;
    for (int i = 0; i < 200; ++i) {
        numbers.push_back(NSNumber::create(i));
        raw.push_back(numbers.back());
    }
    auto array = NSMutableArray::create(raw);
    std::mt19937 random(42);
    auto chaos = objc::makeBlock<NSInteger(id, id)>(
        [&](id, id) -> NSInteger { return static_cast<NSInteger>(random() % 3) - 1; });
    array->sortUsingComparator(chaos);
    ASSERT_EQ(array->count(), 200u);
    for (id n : numbers) EXPECT_TRUE(array->containsObject(n));
    // A comparator that raises leaves the array as it was.
    auto before = objc::adopt(static_cast<NSArray*>(array->copy()));
    int calls = 0;
    auto failing = objc::makeBlock<NSInteger(id, id)>([&](id, id) -> NSInteger {
        if (++calls == 50) objc::raise("TestException", "comparison failed");
        return 1;
    });
    EXPECT_EQ(raised([&] { array->sortUsingComparator(failing); }).name(), "TestException");
    EXPECT_TRUE(array->isEqualToArray(before));
    // A comparator that changes the array being sorted is reported, not obeyed.
    auto meddler = objc::makeBlock<NSInteger(id, id)>([&](id, id) -> NSInteger {
        array->removeLastObject();
        return 0;
    });
    EXPECT_EQ(raised([&] { array->sortUsingComparator(meddler); }).name(), "NSGenericException");
}

TEST_F(Array, HoldsAndReleasesItsElements) {
    const int before = ArrayTestTracked::deaths;
    {
        objc::AutoreleasePool pool;
        auto a = objc::make<ArrayTestTracked>();
        auto b = objc::make<ArrayTestTracked>();
        auto array = NSMutableArray::create({a, b});
        EXPECT_EQ(objc_retainCount(a), 2u);
        a.reset();
        b.reset();
        EXPECT_EQ(ArrayTestTracked::deaths, before);
        array->removeObjectAtIndex(0);
        EXPECT_EQ(ArrayTestTracked::deaths, before + 1);
        array->replaceObjectAtIndexWithObject(0, objc::make<ArrayTestTracked>());
        EXPECT_EQ(ArrayTestTracked::deaths, before + 2);
        auto kept = objc::make<ArrayTestTracked>();
        array->addObject(kept);
        array->removeObject(kept);
        EXPECT_EQ(objc_retainCount(kept), 1u);
        array->addObject(kept);
        array->removeAllObjects();
        EXPECT_EQ(objc_retainCount(kept), 1u);
        EXPECT_EQ(ArrayTestTracked::deaths, before + 3);
    }
    EXPECT_EQ(ArrayTestTracked::deaths, before + 4);
}

TEST_F(Array, CopiesAreImmutableSnapshots) {
    auto immutable = NSArray::create({NSSTR("a")});
    auto mutableCopy = objc::adopt(static_cast<NSMutableArray*>(immutable->mutableCopy()));
    mutableCopy->addObject(NSSTR("b"));
    EXPECT_EQ(immutable->count(), 1u);
    auto snapshot = objc::adopt(static_cast<NSArray*>(mutableCopy->copy()));
    EXPECT_EQ(object_getClass(snapshot), NSArray::objcClass());
    mutableCopy->removeAllObjects();
    EXPECT_EQ(snapshot->count(), 2u);
    EXPECT_FALSE(snapshot->respondsToSelector(objc::sel<"addObject:">()));
}

}  // namespace
