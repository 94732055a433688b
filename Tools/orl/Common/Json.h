// JSON output. This header does not include the JSON library, because that library is slow to compile.
#pragma once

#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

namespace orl {

/// A JSON value. Members of objects keep the order in which they are added.
class Json
{
public:
    struct Member;

    Json(); // null
    Json(bool inValue);
    Json(int inValue);
    Json(unsigned int inValue);
    Json(long inValue);
    Json(unsigned long inValue);
    Json(long long inValue);
    Json(unsigned long long inValue);
    Json(double inValue);
    Json(const char* inText);
    Json(const std::string& inText);
    Json(const std::vector<std::string>& inTexts);

    /// Makes an object.
    Json(std::initializer_list<Member> inMembers);

    Json(const Json& inOther);
    Json(Json&& inOther) noexcept;
    Json& operator=(const Json& inOther);
    Json& operator=(Json&& inOther) noexcept;
    ~Json();

    static Json Array();
    static Json Object();

    /// Makes a number from its decimal digits.
    static Json Number(const std::string& inText);

    /// Adds a member to an object, or replaces it.
    void Set(const std::string& inName, const Json& inValue);

    /// Adds an element to an array.
    void Append(const Json& inValue);

    /// Returns the value on several lines, with a final line end. Invalid UTF-8 becomes U+FFFD, because JSON cannot
    /// represent it.
    std::string Document() const;

    /// Returns the value on one line, without a trailing newline.
    std::string Line() const;

private:
    struct Value;
    struct Internal // distinguishes this constructor from braced lists of members
    {
    };
    Json(Internal, Value&& inValue);

    std::unique_ptr<Value> mValue;
};

struct Json::Member
{
    std::string mName;
    Json mValue;
};

} // namespace orl
