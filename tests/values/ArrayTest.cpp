#include <maya/MDoubleArray.h>
#include <maya/MFloatArray.h>
#include <maya/MFloatPointArray.h>
#include <maya/MFloatVectorArray.h>
#include <maya/MIntArray.h>
#include <maya/MPointArray.h>
#include <maya/MStringArray.h>
#include <maya/MUintArray.h>
#include <maya/MVectorArray.h>

#include <gtest/gtest.h>

#include <climits>
#include <sstream>

namespace {

template <class Array>
class AnyArray : public testing::Test {
public:
    using Element = std::remove_cvref_t<decltype(std::declval<Array&>()[0])>;

    static Element element(int i) {
        if constexpr (std::is_same_v<Element, MString>)
            return MString(std::to_string(i).c_str());
        else if constexpr (std::is_arithmetic_v<Element>)
            return static_cast<Element>(i);
        else
            return Element(static_cast<float>(i), static_cast<float>(i + 1), 0.0f);
    }
};

using ArrayTypes = testing::Types<MIntArray, MUintArray, MFloatArray, MDoubleArray, MStringArray, MPointArray,
                                  MFloatPointArray, MVectorArray, MFloatVectorArray>;
TYPED_TEST_SUITE(AnyArray, ArrayTypes);

// Fault: an element placed or removed one off, or an index past the end taken.
TYPED_TEST(AnyArray, ChecksItsBounds) {
    const auto e = [](int i) { return AnyArray<TypeParam>::element(i); };
    TypeParam array;
    EXPECT_EQ(array.remove(0), MStatus::kInvalidParameter);
    EXPECT_EQ(array.set(e(1), 0), MStatus::kInvalidParameter);
    EXPECT_EQ(array.insert(e(1), 1), MStatus::kInvalidParameter);
    EXPECT_TRUE(array.insert(e(3), 0));
    EXPECT_TRUE(array.insert(e(1), 0));
    EXPECT_TRUE(array.insert(e(2), 1));
    EXPECT_TRUE(array.append(array[0])); // an element of its own, while it grows
    EXPECT_TRUE(array.set(e(9), 2));
    ASSERT_EQ(array.length(), 4u);
    const TypeParam copy(array);
    EXPECT_TRUE(array.remove(1));
    EXPECT_EQ(array.remove(3), MStatus::kInvalidParameter);
    EXPECT_EQ(array.remove(UINT_MAX), MStatus::kInvalidParameter);
    EXPECT_TRUE(array[0] == e(1) && array[1] == e(9) && array[2] == e(1));
    EXPECT_TRUE(copy[1] == e(2) && copy.length() == 4u);
    EXPECT_TRUE(array.clear());
    EXPECT_EQ(array.length(), 0u);
}

// Fault: a negative length taken for four thousand million elements.
TYPED_TEST(AnyArray, RefusesAbsurdLengths) {
    TypeParam array;
    EXPECT_TRUE(array.setLength(2));
    EXPECT_TRUE(array[1] == typename AnyArray<TypeParam>::Element());
    EXPECT_EQ(array.setLength(static_cast<unsigned int>(-1)), MStatus::kInsufficientMemory);
    EXPECT_EQ(array.length(), 2u);
    EXPECT_EQ(TypeParam(UINT_MAX, AnyArray<TypeParam>::element(1)).length(), 0u);
    EXPECT_EQ(TypeParam(3, AnyArray<TypeParam>::element(1)).length(), 3u);
}

// Fault: components in the wrong order, or a precision that is not converted.
TEST(Arrays, ConvertFromAndToPlainNumbers) {
    const float floats[][4]{{1, 2, 3, 4}, {5, 6, 7, 8}};
    double doubles[2][4]{};
    EXPECT_TRUE(MPointArray(floats, 2).get(doubles));
    EXPECT_EQ(MPoint(doubles[1]), MPoint(5, 6, 7, 8));
    const double triples[][3]{{1, 2, 3}, {4, 5, 6}};
    float singles[2][3]{};
    EXPECT_TRUE(MFloatVectorArray(triples, 2).get(singles));
    EXPECT_EQ(MFloatVector(singles[1]), MFloatVector(4, 5, 6));
    const double numbers[]{0.5, 1.5};
    double back[2]{};
    EXPECT_TRUE(MFloatArray(numbers, 2).get(back));
    EXPECT_EQ(back[1], 1.5);

    MPointArray points;
    EXPECT_TRUE(points.append(1.0, 2.0));
    EXPECT_TRUE(points.set(0u, 3.0, 4.0, 5.0));
    EXPECT_EQ(points[0], MPoint(3, 4, 5, 1));
    EXPECT_EQ(points.set(1u, 0.0, 0.0), MStatus::kInvalidParameter);

    const char* words[]{"one", "two"};
    char first[8], second[8];
    char* buffers[]{first, second};
    EXPECT_TRUE(MStringArray(words, 2).get(buffers));
    EXPECT_STREQ(second, "two");
    std::ostringstream os;
    os << MStringArray(words, 2) << MVectorArray(2, MVector(0.5, 1, 2)) << MUintArray(1, 4000000000u);
    EXPECT_EQ(os.str(), "[one, two][(0.5, 1, 2), (0.5, 1, 2)][4000000000]");
}

} // namespace
