#pragma once

#include <maya/MStatus.h>

#include <iosfwd>
#include <string>

class MStringArray;

/// Text, held as UTF-8. Functions whose names end in W count in code points, the others in bytes.
///
/// Numbers are written and read the same way in every locale. A double is written with at most 10 significant digits
/// and a float with at most 7, without trailing zeros: 0.1, 1234567, 1e+20.
class OPENMAYA_EXPORT MString {
public:
    MString();
    /// A null pointer gives an empty text, here and wherever a pointer to characters is taken.
    MString(const char* charString);
    MString(const wchar_t* wcharString);
    /// Takes `charLength` bytes; a negative length gives an empty text.
    MString(const char* charString, int charLength);
    MString(const wchar_t* wcharString, int wcharLength);
    MString(const MString& other);
    ~MString();

    MString& operator+=(const MString& other);
    MString& operator+=(const char* other);
    MString& operator+=(double other);
    MString& operator+=(int other);
    MString& operator+=(unsigned int other);
    MString& operator+=(float other);
    MString& operator=(const MString& other);
    MString& operator=(const char* other);
    MString& operator=(double value);

    bool operator==(const MString& other) const;
    bool operator==(const char* other) const;
    bool operator!=(const MString& other) const;
    bool operator!=(const char* other) const;

    MString operator+(const MString& other) const;
    MString operator+(const char* other) const;
    MString operator+(double value) const;

    /// Makes it empty.
    void clear();
    MStatus set(const char* charString);
    MStatus setUTF8(const char* utf8String);
    MStatus setWChar(const wchar_t* wcharString);
    /// kInvalidParameter when the length is negative.
    MStatus set(const char* charString, int charLength);
    MStatus setWChar(const wchar_t* wcharString, int wcharLength);
    MStatus set(double value);
    /// Writes `precision` digits (0 to 60, else kInvalidParameter) after the point.
    MStatus set(double value, int precision);

    /// The text as UTF-8 with a terminating zero, valid until the text changes.
    const char* asChar() const;
    const char* asChar(int& charLength) const;
    const char* asUTF8() const;
    const char* asUTF8(int& utf8Length) const;
    const wchar_t* asWChar() const;
    const wchar_t* asWChar(int& wcharLength) const;

    /// Length in bytes.
    unsigned int length() const;
    /// Length in code points.
    unsigned int numChars() const;

    /// Position of the first (r: last) occurrence, or -1.
    int index(char searchChar) const;
    int indexW(char searchChar) const;
    int indexW(wchar_t searchChar) const;
    int indexW(const MString& searchStr) const;
    int rindex(char searchChar) const;
    int rindexW(char searchChar) const;
    int rindexW(wchar_t searchChar) const;
    int rindexW(const MString& searchStr) const;

    /// Replaces `theArray` with the parts between occurrences of the character; empty parts are dropped.
    MStatus split(char theChar, MStringArray& theArray) const;
    MStatus split(wchar_t theWChar, MStringArray& theArray) const;

    /// The part from position `start` to position `end`, both inclusive. Positions outside the text are moved to its
    /// ends; where nothing lies between them the result is empty.
    MString substring(int start, int end) const;
    MString substringW(int start, int end) const;

    /// Change the case of the ASCII letters.
    MString& toUpperCase();
    MString& toLowerCase();

    /// is...: whether the whole text, blanks around it aside, is a number of that type and within its range.
    /// as...: the number that the text begins with, held to the type's range; 0 when it begins with none.
    bool isShort() const;
    short asShort() const;
    bool isInt() const;
    int asInt() const;
    bool isUnsigned() const;
    unsigned int asUnsigned() const;
    bool isFloat() const;
    float asFloat() const;
    bool isDouble() const;
    double asDouble() const;

    /// Replaces $NAME and ${NAME} by the variable's value (nothing when it is not set) and a leading ~ by the home
    /// folder.
    MString expandEnvironmentVariablesAndTilde(MStatus* ReturnStatus = NULL) const;
    /// As above; a relative path is then made absolute.
    MString expandFilePath(MStatus* ReturnStatus = NULL) const;

    /// Replaces ^1s, ^2s... in `fmt` by the arguments. A place without an argument is left as it is and gives
    /// kInvalidParameter.
    MStatus format(const MString& fmt, const MStringArray& args);
    MStatus format(const MString& fmt, const MString& arg1 = MString::argUnused,
                   const MString& arg2 = MString::argUnused, const MString& arg3 = MString::argUnused,
                   const MString& arg4 = MString::argUnused, const MString& arg5 = MString::argUnused,
                   const MString& arg6 = MString::argUnused, const MString& arg7 = MString::argUnused,
                   const MString& arg8 = MString::argUnused, const MString& arg9 = MString::argUnused,
                   const MString& arg10 = MString::argUnused);

    /// Replaces every occurrence (substituteFirst: the first one) of `src` by `target`. kInvalidParameter when `src`
    /// is empty.
    MStatus substitute(const MString& src, const MString& target);
    MStatus substituteFirst(const MString& src, const MString& target);

    /// Stands for an argument of format() that is not given.
    static const MString argUnused;

private:
    std::string text_;
    mutable std::wstring wide_; // filled when asked for: asWChar() hands out a pointer into it
};

OPENMAYA_EXPORT std::ostream& operator<<(std::ostream& s, const MString& str);
OPENMAYA_EXPORT MString operator+(const char* first, const MString& second);

// Behind the class: they need it themselves.
#include <maya/MStringArray.h>
