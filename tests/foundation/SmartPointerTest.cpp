#include "foundation/SmartPointer.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

using Tamrik::SmartPointable;
using Tamrik::SmartPointer;

namespace {

// Counts its own destructions so that tests can see exactly-once deletion.
class Tracked : public SmartPointable {
public:
    explicit Tracked(int& deletions) : deletions(deletions) {}
    ~Tracked() override { ++deletions; }

private:
    int& deletions;
};

class Base : public SmartPointable {};
class Derived : public Base {
public:
    explicit Derived(bool& gone) : gone(gone) {}
    ~Derived() override { gone = true; }

private:
    bool& gone;
};

} // namespace

TEST(SmartPointerTest, CountsHandlesAndDeletesOnceWithTheLast) {
    int deletions = 0;
    auto* object = new Tracked(deletions);
    EXPECT_EQ(object->getRefCount(), 0);
    {
        SmartPointer<Tracked> first(object);
        EXPECT_EQ(object->getRefCount(), 1);
        {
            SmartPointer<Tracked> second(first);
            SmartPointer<Tracked> third;
            third = second;
            EXPECT_EQ(object->getRefCount(), 3);
        }
        EXPECT_EQ(object->getRefCount(), 1);
        EXPECT_EQ(deletions, 0);
    }
    EXPECT_EQ(deletions, 1);
}

TEST(SmartPointerTest, SelfAssignmentKeepsTheCount) {
    int deletions = 0;
    SmartPointer<Tracked> handle(new Tracked(deletions));
    SmartPointer<Tracked>& alias = handle;
    handle = alias;
    handle = handle.get();
    EXPECT_EQ(handle->getRefCount(), 1);
    EXPECT_EQ(deletions, 0);
}

TEST(SmartPointerTest, AssigningNullOrAnotherObjectReleasesTheOld) {
    int deletionsA = 0;
    int deletionsB = 0;
    SmartPointer<Tracked> handle(new Tracked(deletionsA));
    handle = new Tracked(deletionsB);
    EXPECT_EQ(deletionsA, 1);
    handle = SmartPointer<Tracked>();
    EXPECT_EQ(deletionsB, 1);
    EXPECT_TRUE(handle.isNull());
    EXPECT_FALSE(handle);
}

TEST(SmartPointerTest, MovingHandsTheReferenceOver) {
    int deletions = 0;
    SmartPointer<Tracked> source(new Tracked(deletions));
    SmartPointer<Tracked> target(std::move(source));
    EXPECT_EQ(target->getRefCount(), 1);
    SmartPointer<Tracked> other(target);
    other = std::move(target); // same object on both sides: one reference goes away
    EXPECT_EQ(other->getRefCount(), 1);
    other = SmartPointer<Tracked>();
    EXPECT_EQ(deletions, 1);
}

TEST(SmartPointerTest, WorksInStandardContainersAndThroughBaseHandles) {
    int deletions = 0;
    {
        std::vector<SmartPointer<Tracked>> list;
        SmartPointer<Tracked> shared(new Tracked(deletions));
        for (int i = 0; i < 100; ++i) {
            list.push_back(shared); // reallocation copies or moves handles
        }
        EXPECT_EQ(shared->getRefCount(), 101);
        std::map<std::string, SmartPointer<Tracked>> byName;
        byName["a"] = shared;
        byName["a"] = SmartPointer<Tracked>(new Tracked(deletions));
        EXPECT_EQ(shared->getRefCount(), 101);
    }
    EXPECT_EQ(deletions, 2);

    bool gone = false;
    {
        SmartPointer<Base> base(SmartPointer<Derived>(new Derived(gone)));
        EXPECT_EQ(base->getRefCount(), 1);
    }
    EXPECT_TRUE(gone); // deleted through the virtual destructor
}

TEST(SmartPointerTest, CopiedObjectStartsWithoutHandles) {
    int deletions = 0;
    SmartPointer<Tracked> handle(new Tracked(deletions));
    Tracked copy(*handle);
    EXPECT_EQ(copy.getRefCount(), 0);
}
