#include <scoremodel/platform/CObject.h>

#include <gtest/gtest.h>

#include <memory>

namespace
{
class TestShape : public CObject
{
    DECLARE_DYNAMIC(TestShape)
};
IMPLEMENT_DYNAMIC(TestShape, CObject)

class TestCircle : public TestShape
{
    DECLARE_DYNCREATE(TestCircle)
};
IMPLEMENT_DYNCREATE(TestCircle, TestShape)

class TestSquare : public TestShape
{
    DECLARE_DYNCREATE(TestSquare)
};
IMPLEMENT_DYNCREATE(TestSquare, TestShape)
} // namespace

TEST(RuntimeClass, KindOfFollowsTheWholeBaseChainAndNoSideBranch)
{
    std::unique_ptr<CObject> circle(RUNTIME_CLASS(TestCircle)->CreateObject());
    ASSERT_TRUE(circle);
    EXPECT_EQ(circle->GetRuntimeClass(), RUNTIME_CLASS(TestCircle));
    EXPECT_TRUE(circle->IsKindOf(RUNTIME_CLASS(TestCircle)));
    EXPECT_TRUE(circle->IsKindOf(RUNTIME_CLASS(TestShape)));
    EXPECT_TRUE(circle->IsKindOf(RUNTIME_CLASS(CObject)));
    EXPECT_FALSE(circle->IsKindOf(RUNTIME_CLASS(TestSquare)));
    EXPECT_FALSE(RUNTIME_CLASS(TestShape)->IsDerivedFrom(RUNTIME_CLASS(TestCircle)));
}

TEST(RuntimeClass, ClassesAreCreatedByNameButNotAbstractOnesOrUnknownNames)
{
    std::unique_ptr<CObject> square(CRuntimeClass::CreateObject("TestSquare"));
    ASSERT_TRUE(square);
    EXPECT_TRUE(square->IsKindOf(RUNTIME_CLASS(TestSquare)));
    EXPECT_FALSE(square->IsSerializable()) << "only classes with a real schema are serializable";
    EXPECT_EQ(RUNTIME_CLASS(TestShape)->CreateObject(), nullptr);
    EXPECT_EQ(CRuntimeClass::CreateObject("NoSuchClass"), nullptr);
    EXPECT_EQ(CRuntimeClass::FromName(nullptr), nullptr);
}
