#pragma once

#include <maya/MTypes.h>

/// Coordinate spaces that values are asked for or given in.
class OPENMAYA_EXPORT MSpace {
public:
    enum Space {
        kInvalid,
        kTransform,     ///< relative to the transform's own parent
        kPreTransform,  ///< before the transform is applied
        kPostTransform, ///< after the transform is applied
        kWorld,         ///< after every transform is applied
        kObject,        ///< the same as kPreTransform
        kLast
    };
};
