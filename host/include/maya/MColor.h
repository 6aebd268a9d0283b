#pragma once

#include <maya/MStatus.h>

#include <iosfwd>

/// A colour: red, green, blue and alpha, usually 0 to 1. Arithmetic acts on the colour; the alpha is that of the left
/// (or only) colour.
class OPENMAYA_EXPORT MColor {
public:
    /// Components of the models: RGB, CMY and CMYK 0 to 1; hue 0 to 360 degrees, saturation and value 0 to 1. In kCMYK
    /// the place of alpha holds black.
    enum MColorType { kRGB, kHSV, kCMY, kCMYK };

    /// Opaque black.
    inline MColor() : r(0.0f), g(0.0f), b(0.0f), a(1.0f) {}
    inline MColor(const MColor& src) : r(src.r), g(src.g), b(src.b), a(src.a) {}
    inline MColor(float rr, float gg, float bb = 0.0, float aa = 1.0) : r(rr), g(gg), b(bb), a(aa) {}
    inline MColor(const float d[3]) : r(d[0]), g(d[1]), b(d[2]), a(1.0f) {}
    /// Black with this alpha.
    inline MColor(float alpha) : r(0.0f), g(0.0f), b(0.0f), a(alpha) {}
    /// The whole range of the integer type stands for the whole range of the component.
    MColor(MColor::MColorType colorModel, unsigned char c1, unsigned char c2, unsigned char c3,
           unsigned char alpha = 255U);
    MColor(MColor::MColorType colorModel, unsigned short c1, unsigned short c2, unsigned short c3,
           unsigned short alpha = 65535U);
    MColor(MColor::MColorType colorModel, float c1, float c2, float c3, float alpha = 1.0);
    MColor(MColor::MColorType colorModel, double c1, double c2, double c3, double alpha = 1.0);
    ~MColor();

    inline MColor& operator=(const MColor& src);
    inline float operator()(unsigned int i) const { return (&r)[i]; }
    inline float operator[](unsigned int i) const { return (&r)[i]; }
    inline float& operator()(unsigned int i) { return (&r)[i]; }
    inline float& operator[](unsigned int i) { return (&r)[i]; }

    MColor& operator*=(float scalar);
    MColor operator*(float scalar) const;
    MColor& operator*=(const MColor& other);
    MColor operator*(const MColor& other) const;
    MColor& operator/=(float scalar);
    MColor operator/(float scalar) const;
    MColor& operator+=(const MColor& other);
    MColor operator+(const MColor& other) const;
    MColor operator-() const;
    MColor operator-(const MColor& other) const;
    bool operator==(const MColor& other) const;
    bool operator!=(const MColor& other) const;

    inline bool get(float d[3]) const;
    /// False for an unknown model. The form without alpha leaves out black in kCMYK.
    bool get(MColor::MColorType colorModel, float& c1, float& c2, float& c3) const;
    bool get(MColor::MColorType colorModel, float& c1, float& c2, float& c3, float& alpha) const;
    bool set(MColor::MColorType colorModel, float c1, float c2, float c3, float alpha = 1.0);

    static const MColor kOpaqueBlack;

    float r;
    float g;
    float b;
    float a;
};

OPENMAYA_EXPORT MColor operator*(float scalar, const MColor& other);
OPENMAYA_EXPORT std::ostream& operator<<(std::ostream& os, const MColor& c);

inline MColor& MColor::operator=(const MColor& src) {
    r = src.r;
    g = src.g;
    b = src.b;
    a = src.a;
    return *this;
}

inline bool MColor::get(float d[3]) const {
    d[0] = r;
    d[1] = g;
    d[2] = b;
    return true;
}
