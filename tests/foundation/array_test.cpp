// NSArray and NSMutableArray: bounds, nil, enumeration safety, equality,
// sorting, ownership and descriptions.
#include <gtest/gtest.h>

#include <Foundation/NSArray.h>
#include <Foundation/NSNull.h>
#include <Foundation/NSNumber.h>
#include <Foundation/NSString.h>

#include <objc/block.h>

#include <random>
#include <string>

namespace {

// Counts its deaths, so that tests see exactly when an array lets go.
class ArrayTestTracked : public NSObject {
    OBJC_CLASS(ArrayTestTracked)
    ~ArrayTestTracked() override { ++deaths; }
    static inline int deaths = 0;
    int tag = 0;

  private:
    void imp_poke() { ++pokes; }

  public:
    static inline int pokes = 0;
};

}  // namespace

OBJC_DEFINE_CLASS(ArrayTestTracked, NSObject, "ArrayTestTracked")
void ArrayTestTracked::objcDefine(objc::ClassBuilder<ArrayTestTracked>& b) {
    b.method<&ArrayTestTracked::imp_poke>("poke");
}

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

std::string text(NSString* s) {
    return s != nullptr ? s->utf8() : std::string("(nil)");
}

objc::Strong<NSString> str(const char* s) {
    return NSString::create(s);
}

TEST(Array, AnswersItsElementsInOrder) {
    objc::AutoreleasePool pool;
    auto a = str("a"), b = str("b"), c = str("c");
    auto array = NSArray::create({a, b, c});
    EXPECT_EQ(array->count(), 3u);
    EXPECT_EQ(array->objectAtIndex(1), b.get());
    EXPECT_EQ(array->objectAtIndexedSubscript(2), c.get());
    EXPECT_EQ(array->firstObject(), a.get());
    EXPECT_EQ(array->lastObject(), c.get());
    std::vector<id> seen;
    for (id element : *array) seen.push_back(element);
    EXPECT_EQ(seen, (std::vector<id>{a, b, c}));

    NSArray* empty = NSArray::array();
    EXPECT_EQ(empty->count(), 0u);
    EXPECT_EQ(empty->firstObject(), nullptr);
    EXPECT_EQ(empty->lastObject(), nullptr);
    EXPECT_EQ(NSArray::arrayWithObject(a)->objectAtIndex(0), a.get());
}

TEST(Array, IndexErrorsRaiseRangeExceptionsWithThePlatformWording) {
    objc::AutoreleasePool pool;
    auto array = NSArray::create({NSSTR("a"), NSSTR("b"), NSSTR("c")});
    auto e = raised([&] { array->objectAtIndex(5); });
    EXPECT_EQ(e.name(), "NSRangeException");
    EXPECT_NE(e.reason().find("index 5 beyond bounds [0 .. 2]"), std::string::npos) << e.reason();
    EXPECT_EQ(raised([&] { array->objectAtIndexedSubscript(3); }).name(), "NSRangeException");
    EXPECT_EQ(raised([&] { array->at(3); }).name(), "NSRangeException");
    EXPECT_EQ(raised([&] { array->subarrayWithRange(NSMakeRange(2, 2)); }).name(),
              "NSRangeException");
    // A range whose end overflows is still out of range.
    EXPECT_EQ(raised([&] { array->subarrayWithRange(NSMakeRange(1, NSUIntegerMax)); }).name(),
              "NSRangeException");
    EXPECT_EQ(raised([] { NSArray::array()->objectAtIndex(0); }).name(), "NSRangeException");

    auto mutableArray = NSMutableArray::create({NSSTR("a")});
    mutableArray->insertObjectAtIndex(NSSTR("z"), 1);  // at count: appends
    EXPECT_EQ(text(static_cast<NSString*>(mutableArray->lastObject())), "z");
    EXPECT_EQ(raised([&] { mutableArray->insertObjectAtIndex(NSSTR("x"), 3); }).name(),
              "NSRangeException");
    EXPECT_EQ(raised([&] { mutableArray->removeObjectAtIndex(2); }).name(), "NSRangeException");
    EXPECT_EQ(raised([&] { mutableArray->replaceObjectAtIndexWithObject(2, NSSTR("x")); }).name(),
              "NSRangeException");
    EXPECT_EQ(raised([&] { mutableArray->exchangeObjectAtIndexWithObjectAtIndex(0, 2); }).name(),
              "NSRangeException");
    EXPECT_EQ(raised([&] { mutableArray->setObjectAtIndexedSubscript(NSSTR("x"), 3); }).name(),
              "NSRangeException");
    mutableArray->setObjectAtIndexedSubscript(NSSTR("y"), 2);  // at count: appends
    EXPECT_EQ(mutableArray->count(), 3u);
    mutableArray->removeAllObjects();
    mutableArray->removeLastObject();  // nothing to remove: no effect
    EXPECT_EQ(mutableArray->count(), 0u);
}

TEST(Array, NilElementsRaiseInvalidArgument) {
    objc::AutoreleasePool pool;
    const std::string invalid = "NSInvalidArgumentException";
    EXPECT_EQ(raised([] { NSArray::create({NSSTR("a"), nullptr}); }).name(), invalid);
    EXPECT_EQ(raised([] { NSArray::arrayWithObject(nullptr); }).name(), invalid);
    auto array = NSMutableArray::create({NSSTR("a")});
    EXPECT_EQ(raised([&] { array->addObject(nullptr); }).name(), invalid);
    EXPECT_EQ(raised([&] { array->insertObjectAtIndex(nullptr, 0); }).name(), invalid);
    EXPECT_EQ(raised([&] { array->replaceObjectAtIndexWithObject(0, nullptr); }).name(), invalid);
    EXPECT_EQ(raised([&] { array->setObjectAtIndexedSubscript(nullptr, 0); }).name(), invalid);
    EXPECT_EQ(raised([&] { array->arrayByAddingObject(nullptr); }).name(), invalid);
    EXPECT_EQ(array->count(), 1u);  // nothing half-done
    const id objects[] = {NSSTR("a"), nullptr};
    EXPECT_EQ(raised([&] { NSArray::arrayWithObjectsCount(objects, 2); }).name(), invalid);
}

TEST(Array, MutationDuringEnumerationRaisesInsteadOfMisbehaving) {
    objc::AutoreleasePool pool;
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

TEST(Array, EnumerationVisitsInOrderAndStops) {
    objc::AutoreleasePool pool;
    auto array = NSArray::create({NSSTR("a"), NSSTR("b"), NSSTR("c")});
    std::string visited;
    auto block = objc::makeBlock<void(id, NSUInteger, bool*)>([&](id o, NSUInteger i, bool* stop) {
        visited += text(static_cast<NSString*>(o)) + std::to_string(i);
        *stop = i == 1;
    });
    array->enumerateObjectsUsingBlock(block);
    EXPECT_EQ(visited, "a0b1");
    EXPECT_EQ(raised([&] { array->enumerateObjectsUsingBlock(nullptr); }).name(),
              "NSInvalidArgumentException");
}

TEST(Array, EqualityFollowsElementsAndAgreesWithHash) {
    objc::AutoreleasePool pool;
    // Built separately: equal, never identical.
    auto one = NSArray::create({str("x"), str("y")});
    auto two = NSMutableArray::create({str("x"), str("y")});
    auto reversed = NSArray::create({str("y"), str("x")});
    EXPECT_TRUE(one->isEqual(two));
    EXPECT_TRUE(two->isEqual(one));
    EXPECT_TRUE(one->isEqualToArray(two));
    EXPECT_EQ(one->hash(), two->hash());
    EXPECT_FALSE(one->isEqual(reversed));
    EXPECT_FALSE(one->isEqual(NSSTR("x")));
    EXPECT_FALSE(one->isEqual(nullptr));
    EXPECT_FALSE(one->isEqualToArray(NSArray::create({str("x")})));

    auto y = str("y");
    EXPECT_TRUE(one->containsObject(y));
    EXPECT_EQ(one->indexOfObject(y), 1u);
    EXPECT_EQ(one->indexOfObject(NSSTR("nope")), static_cast<NSUInteger>(NSNotFound));
    EXPECT_EQ(one->indexOfObject(nullptr), static_cast<NSUInteger>(NSNotFound));
}

TEST(Array, RemoveObjectRemovesEveryEqualElement) {
    objc::AutoreleasePool pool;
    auto array = NSMutableArray::create({str("a"), str("b"), str("a"), str("c"), str("a")});
    array->removeObject(str("a"));
    EXPECT_EQ(text(array->componentsJoinedByString(NSSTR(","))), "b,c");
    array->removeObject(str("absent"));
    EXPECT_EQ(array->count(), 2u);
}

TEST(Array, DerivedArraysAndJoining) {
    objc::AutoreleasePool pool;
    auto array = NSArray::create({NSSTR("a"), NSSTR("b"), NSSTR("c"), NSSTR("d")});
    EXPECT_EQ(
        text(array->subarrayWithRange(NSMakeRange(1, 2))->componentsJoinedByString(NSSTR("-"))),
        "b-c");
    EXPECT_EQ(array->subarrayWithRange(NSMakeRange(4, 0))->count(), 0u);
    NSArray* longer = array->arrayByAddingObject(NSSTR("e"));
    EXPECT_EQ(longer->count(), 5u);
    EXPECT_EQ(array->count(), 4u);
    EXPECT_EQ(array->arrayByAddingObjectsFromArray(array)->count(), 8u);
    EXPECT_EQ(object_getClass(longer), NSArray::objcClass());
    auto mixed = NSArray::create({NSNumber::numberWithInt(7), NSSTR("x"), NSNull::null()});
    EXPECT_EQ(text(mixed->componentsJoinedByString(NSSTR(", "))), "7, x, <null>");
    EXPECT_EQ(text(NSArray::array()->componentsJoinedByString(NSSTR(","))), "");
}

TEST(Array, SortsStablyBySelectorAndByComparator) {
    objc::AutoreleasePool pool;
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

TEST(Array, InconsistentComparatorsNeverBreakTheArray) {
    objc::AutoreleasePool pool;
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

TEST(Array, HoldsAndReleasesItsElements) {
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
        array->addObject(objc::make<ArrayTestTracked>());
        array->removeLastObject();
        EXPECT_EQ(ArrayTestTracked::deaths, before + 3);

        auto kept = objc::make<ArrayTestTracked>();
        array->addObject(kept);
        array->removeObject(kept);
        EXPECT_EQ(objc_retainCount(kept), 1u);
        array->addObject(kept);
        array->removeAllObjects();
        EXPECT_EQ(objc_retainCount(kept), 1u);
        EXPECT_EQ(ArrayTestTracked::deaths, before + 4);
    }
    EXPECT_EQ(ArrayTestTracked::deaths, before + 5);
}

TEST(Array, CopiesAreImmutableSnapshots) {
    objc::AutoreleasePool pool;
    auto immutable = NSArray::create({NSSTR("a")});
    auto same = objc::adopt(static_cast<NSArray*>(immutable->copy()));
    EXPECT_EQ(same.get(), immutable.get());

    auto mutableCopy = objc::adopt(static_cast<NSMutableArray*>(immutable->mutableCopy()));
    EXPECT_EQ(object_getClass(mutableCopy), NSMutableArray::objcClass());
    mutableCopy->addObject(NSSTR("b"));
    EXPECT_EQ(immutable->count(), 1u);

    auto snapshot = objc::adopt(static_cast<NSArray*>(mutableCopy->copy()));
    EXPECT_EQ(object_getClass(snapshot), NSArray::objcClass());
    mutableCopy->removeAllObjects();
    EXPECT_EQ(snapshot->count(), 2u);
    EXPECT_FALSE(snapshot->respondsToSelector(objc::sel<"addObject:">()));

    EXPECT_EQ(object_getClass(NSMutableArray::array()), NSMutableArray::objcClass());
    EXPECT_EQ(object_getClass(NSMutableArray::arrayWithCapacity(10)), NSMutableArray::objcClass());
    EXPECT_EQ(NSArray::arrayWithArray(snapshot)->count(), 2u);
}

TEST(Array, MakeObjectsPerformSelectorSendsToEach) {
    objc::AutoreleasePool pool;
    const int before = ArrayTestTracked::pokes;
    auto array = NSArray::create({objc::make<ArrayTestTracked>(), objc::make<ArrayTestTracked>()});
    array->makeObjectsPerformSelector(objc::sel<"poke">());
    EXPECT_EQ(ArrayTestTracked::pokes, before + 2);
}

TEST(Null, IsOneImmortalPlaceholder) {
    objc::AutoreleasePool pool;
    NSNull* null = NSNull::null();
    EXPECT_EQ(null, NSNull::null());
    objc_release(null);
    objc_release(null);
    EXPECT_GE(objc_retainCount(null), objc_object::kImmortalRefs);
    EXPECT_EQ(objc::adopt(null->copy()).get(), static_cast<id>(null));
    EXPECT_EQ(text(null->description()), "<null>");
    // It stands in for nil where collections refuse nil.
    auto array = NSArray::create({NSSTR("a"), null});
    EXPECT_TRUE(array->containsObject(NSNull::null()));
}

TEST(Array, DescribesItselfAsAnOldStylePropertyList) {
    objc::AutoreleasePool pool;
    EXPECT_EQ(text(NSArray::create({NSSTR("a"), NSSTR("b")})->description()),
              "(\n    a,\n    b\n)");
    EXPECT_EQ(text(NSArray::array()->description()), "(\n)");
    auto nested = NSArray::create({NSArray::create({NSSTR("x")}), NSSTR("hello world"),
                                   NSNumber::numberWithInt(3), NSNull::null(), NSSTR(""),
                                   NSSTR("say \"hi\"")});
    EXPECT_EQ(text(nested->description()),
              "(\n"
              "    (\n"
              "        x\n"
              "    ),\n"
              "    \"hello world\",\n"
              "    3,\n"
              "    \"<null>\",\n"
              "    \"\",\n"
              "    \"say \\\"hi\\\"\"\n"
              ")");
}

}  // namespace
