// NSDictionary and NSMutableDictionary: lookup, key copying, nil, enumeration, ownership.
#include <gtest/gtest.h>

#include <Foundation/NSArray.h>
#include <Foundation/NSDictionary.h>
#include <Foundation/NSMutableString.h>
#include <Foundation/NSNumber.h>
#include <Foundation/NSString.h>

#include <objc/block.h>

#include <string>

#include "foundation_helpers.h"

namespace {

using namespace testsupport;

// A counted, copyable key, equal by value and hashed into few buckets so collisions are common.
class DictionaryTestKey : public NSObject {
    OBJC_CLASS(DictionaryTestKey)
    ~DictionaryTestKey() override { ++deaths; }
    static objc::Strong<DictionaryTestKey> make(int value) {
        auto key = objc::make<DictionaryTestKey>();
        key->value = value;
        return key;
    }
    static inline int deaths = 0;
    static inline int copies = 0;
    int value = 0;

  private:
    bool imp_isEqual(id other) {
        auto* key = objc::cast<DictionaryTestKey>(other);
        return key != nullptr && key->value == value;
    }
    NSUInteger imp_hash() const { return static_cast<NSUInteger>(value % 7); }
    id imp_copyWithZone(void*) {
        ++copies;
        return make(value).leak();
    }
};

}  // namespace

OBJC_DEFINE_CLASS(DictionaryTestKey, NSObject, "DictionaryTestKey")
void DictionaryTestKey::objcDefine(objc::ClassBuilder<DictionaryTestKey>& b) {
    b.method<&DictionaryTestKey::imp_isEqual>("isEqual:")
        .method<&DictionaryTestKey::imp_hash>("hash")
        .method<&DictionaryTestKey::imp_copyWithZone>("copyWithZone:");
}

namespace {

objc::Strong<NSString> str(const std::string& s) {
    return NSString::create(s);
}

std::string joined(NSArray* array) {
    return text(array->componentsJoinedByString(NSSTR(",")));
}

using Dictionary = testsupport::PoolTest;

TEST_F(Dictionary, MutableKeysAreCopiedOnInsertion) {
    auto key = NSMutableString::create("alpha");
    auto dict = NSMutableDictionary::create();
    dict->setObjectForKey(NSSTR("first"), key);
    key->appendString(NSSTR("beta"));  // must not move the stored entry
    EXPECT_EQ(text(dict->objectForKey(NSSTR("alpha"))), "first");
    EXPECT_EQ(dict->objectForKey(key), nullptr);
    id storedKey = dict->allKeys()->objectAtIndex(0);
    EXPECT_NE(storedKey, static_cast<id>(key.get()));
    EXPECT_EQ(object_getClass(storedKey), NSString::objcClass());
    const int copiesBefore = DictionaryTestKey::copies;
    auto custom = DictionaryTestKey::make(42);
    dict->setObjectForKey(NSSTR("v"), custom);
    EXPECT_EQ(DictionaryTestKey::copies, copiesBefore + 1);
    custom->value = 7;  // the dictionary holds its own copy
    EXPECT_EQ(text(dict->objectForKey(DictionaryTestKey::make(42))), "v");
    // Replacing the value of an existing key keeps the stored key, uncopied.
    dict->setObjectForKey(NSSTR("w"), DictionaryTestKey::make(42));
    EXPECT_EQ(DictionaryTestKey::copies, copiesBefore + 1);
    EXPECT_EQ(text(dict->objectForKey(DictionaryTestKey::make(42))), "w");
}

TEST_F(Dictionary, NilKeysAndObjectsRaiseAndANilSubscriptRemoves) {
    const std::string invalid = "NSInvalidArgumentException";
    auto dict = NSMutableDictionary::create({{NSSTR("a"), NSSTR("1")}});
    EXPECT_EQ(raisedName([&] { dict->setObjectForKey(nullptr, NSSTR("k")); }), invalid);
    EXPECT_EQ(raisedName([&] { dict->setObjectForKey(NSSTR("v"), nullptr); }), invalid);
    EXPECT_EQ(raisedName([&] { dict->removeObjectForKey(nullptr); }), invalid);
    EXPECT_EQ(raisedName([] { NSDictionary::create({{NSSTR("k"), nullptr}}); }), invalid);
    EXPECT_EQ(raisedName([] {
                  NSDictionary::dictionaryWithObjectsForKeys(NSArray::create({NSSTR("v")}),
                                                             NSArray::array());
              }),
              invalid);
    EXPECT_EQ(dict->count(), 1u);
    // A nil value through the subscript removes the key instead.
    dict->setObjectForKeyedSubscript(nullptr, str("a"));
    dict->setObjectForKeyedSubscript(nullptr, str("never there"));
    EXPECT_EQ(dict->count(), 0u);
}

TEST_F(Dictionary, EnumerationFollowsInsertionOrderAndRaisesOnMutation) {
    auto dict = NSMutableDictionary::create({{NSSTR("a"), NSSTR("1")}, {NSSTR("b"), NSSTR("2")}});
    EXPECT_EQ(raisedName([&] {
                  dict->forEach([&](id, id) { dict->setObjectForKey(NSSTR("x"), NSSTR("new")); });
              }),
              "NSGenericException");
    auto remover = objc::makeBlock<void(id, id, bool*)>(
        [&](id key, id, bool*) { dict->removeObjectForKey(key); });
    EXPECT_EQ(raisedName([&] { dict->enumerateKeysAndObjectsUsingBlock(remover); }),
              "NSGenericException");
    // Changing the value of an existing key is a mutation as well.
    EXPECT_EQ(raisedName([&] {
                  dict->forEach([&](id key, id) { dict->setObjectForKey(NSSTR("0"), key); });
              }),
              "NSGenericException");
    // Enumeration follows insertion order.
    auto ordered = NSMutableDictionary::create();
    for (const char* k : {"delta", "alpha", "charlie", "bravo"}) {
        ordered->setObjectForKey(str(std::string(k) + "!"), str(k));
    }
    ordered->removeObjectForKey(NSSTR("alpha"));
    ordered->setObjectForKey(NSSTR("again"), NSSTR("alpha"));
    EXPECT_EQ(joined(ordered->allKeys()), "delta,charlie,bravo,alpha");
    EXPECT_EQ(joined(ordered->allValues()), "delta!,charlie!,bravo!,again");
    std::string order;
    ordered->forEach([&](id key, id) { order += text(key).substr(0, 1); });
    EXPECT_EQ(order, "dcba");
}

TEST_F(Dictionary, SurvivesGrowthRemovalAndCollisions) {
    // Every key hashes into one of seven buckets, so probes pass many others.
    auto dict = NSMutableDictionary::create();
    for (int i = 0; i < 600; ++i) {
        dict->setObjectForKey(NSNumber::numberWithInt(i), DictionaryTestKey::make(i));
    }
    for (int i = 0; i < 600; i += 2) dict->removeObjectForKey(DictionaryTestKey::make(i));
    for (int i = 0; i < 100; i += 2) {
        dict->setObjectForKey(NSNumber::numberWithInt(-i), DictionaryTestKey::make(i));
    }
    EXPECT_EQ(dict->count(), 350u);
    for (int i = 0; i < 600; ++i) {
        auto* found = static_cast<NSNumber*>(dict->objectForKey(DictionaryTestKey::make(i)));
        if (i % 2 == 1) {
            ASSERT_NE(found, nullptr) << i;
            EXPECT_EQ(found->intValue(), i);
        } else if (i < 100) {
            ASSERT_NE(found, nullptr) << i;
            EXPECT_EQ(found->intValue(), -i);
        } else {
            EXPECT_EQ(found, nullptr) << i;
        }
    }
    // Many removals leave holes to compact; order survives it.
    auto strings = NSMutableDictionary::create();
    for (int i = 0; i < 2000; ++i)
        strings->setObjectForKey(str("v"), str("key" + std::to_string(i)));
    for (int i = 0; i < 1990; ++i) strings->removeObjectForKey(str("key" + std::to_string(i)));
    EXPECT_EQ(joined(strings->allKeys()).substr(0, 15), "key1990,key1991");
    EXPECT_EQ(strings->objectForKey(str("key5")), nullptr);
}

TEST_F(Dictionary, HoldsKeysAndValuesUntilRemoved) {
    const int before = DictionaryTestKey::deaths;
    {
        objc::AutoreleasePool pool;
        auto dict = NSMutableDictionary::create();
        auto value = DictionaryTestKey::make(100);
        dict->setObjectForKey(value, DictionaryTestKey::make(1));
        EXPECT_EQ(objc_retainCount(value), 2u);
        // The caller's key is gone; the dictionary's copy stays.
        const int afterInsert = DictionaryTestKey::deaths;
        dict->setObjectForKey(DictionaryTestKey::make(200), DictionaryTestKey::make(1));
        EXPECT_EQ(objc_retainCount(value), 1u);  // replaced values are released
        dict->removeObjectForKey(DictionaryTestKey::make(1));
        // Two probe keys died, and the entry took the key's copy and the value 200 along.
        EXPECT_EQ(DictionaryTestKey::deaths, afterInsert + 4);
        dict->setObjectForKey(value, NSSTR("k"));
        dict->removeAllObjects();
        EXPECT_EQ(objc_retainCount(value), 1u);
        dict->setObjectForKey(value, NSSTR("k"));
    }
    // The dictionary's death released the rest; nothing is left alive.
    EXPECT_EQ(DictionaryTestKey::deaths - before, 6);
}

}  // namespace
