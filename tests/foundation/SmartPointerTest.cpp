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

class Derived : public Tracked {
public:
    using Tracked::Tracked;
};

} // namespace

TEST(SmartPointerTest, CountsHandlesAndDeletesOnceWithTheLast) {
    int deletions = 0;
    auto* object = new Tracked(deletions);
    EXPECT_EQ(object->getRefCount(), 0);
    {
        SmartPointer<Tracked> first(object);
        SmartPointer<Tracked> second(first);
        SmartPointer<Tracked> third;
        third = second;
        EXPECT_EQ(object->getRefCount(), 3);
        SmartPointer<Tracked> moved(std::move(third)); // moving hands the reference over
        EXPECT_EQ(object->getRefCount(), 3);
        second = std::move(moved); // same object on both sides: one reference goes away
        EXPECT_EQ(object->getRefCount(), 2);
    }
    EXPECT_EQ(deletions, 1);
}

TEST(SmartPointerTest, SelfAssignmentKeepsTheCountAndReassignmentReleases) {
    int deletionsA = 0;
    int deletionsB = 0;
    SmartPointer<Tracked> handle(new Tracked(deletionsA));
    SmartPointer<Tracked>& alias = handle;
    handle = alias;
    handle = handle.get();
    EXPECT_EQ(handle->getRefCount(), 1);
    EXPECT_EQ(deletionsA, 0);

    handle = new Tracked(deletionsB);
    EXPECT_EQ(deletionsA, 1);
    handle = SmartPointer<Tracked>();
    EXPECT_EQ(deletionsB, 1);
    EXPECT_TRUE(handle.isNull());
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
        SmartPointer<Tracked> base(SmartPointer<Derived>(new Derived(deletions)));
        EXPECT_EQ(base->getRefCount(), 1);
    }
    EXPECT_EQ(deletions, 3); // the derived one through the virtual destructor
}
