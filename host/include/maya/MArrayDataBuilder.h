#pragma once

#include <maya/MArrayDataHandle.h>
#include <maya/MDataHandle.h>
#include <maya/MObject.h>
#include <maya/MStatus.h>

#include <memory>

class MDataBlock;

/// Makes the elements of an array attribute anew: MArrayDataHandle::builder() gives one that has the array's elements,
/// MArrayDataHandle::set() puts its elements in their place. Copies of a builder build the same elements.
///
/// An index beyond 2^28 and an element that is not there give kInvalidParameter. A builder for something that is no
/// array attribute that uses builders (MFnAttribute::setUsesArrayDataBuilder) gives kFailure, and builds nothing.
class OPENMAYA_EXPORT MArrayDataBuilder {
public:
    MArrayDataBuilder(const MObject& attribute, unsigned int numElements, MStatus* ReturnStatus = NULL);
    MArrayDataBuilder(MDataBlock* block, const MObject& attribute, unsigned int numElements,
                      MStatus* ReturnStatus = NULL);
    MArrayDataBuilder(const MArrayDataBuilder& other);
    MArrayDataBuilder& operator=(const MArrayDataBuilder& other);
    ~MArrayDataBuilder();
    /// A new element behind the last one.
    MDataHandle addLast(MStatus* ReturnStatus = NULL);
    /// The element of that index, made when it is not there.
    MDataHandle addElement(unsigned int index, MStatus* ReturnStatus = NULL);
    /// The same where the elements are arrays; other attributes give kInvalidParameter.
    MArrayDataHandle addLastArray(MStatus* ReturnStatus = NULL);
    MArrayDataHandle addElementArray(unsigned int index, MStatus* ReturnStatus = NULL);
    MStatus removeElement(unsigned int index);
    unsigned int elementCount(MStatus* ReturnStatus = NULL) const;
    /// Hints only.
    MStatus growArray(unsigned int amount);
    MStatus setGrowSize(unsigned int size);
    static const char* className();

private:
    friend class MArrayDataHandle;
    struct Elements;
    explicit MArrayDataBuilder(std::shared_ptr<Elements> elements);
    std::shared_ptr<Elements> elements_;
};

// Behind the class: it needs this one itself.
#include <maya/MDataBlock.h>
