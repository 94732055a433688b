#include "Json.h"

#include <nlohmann/json.hpp>

#include <utility>

namespace orl {

namespace {

using Library = nlohmann::ordered_json;

std::string Text(const Library& inValue, int inIndent)
{
    return inValue.dump(inIndent, ' ', false, Library::error_handler_t::replace);
}

} // namespace

struct Json::Value
{
    Library mLibrary;
};

Json::Json(Internal, Value&& inValue) : mValue(std::make_unique<Value>(std::move(inValue)))
{
}

Json::Json() : Json(Internal{}, Value{nullptr})
{
}
Json::Json(bool inValue) : Json(Internal{}, Value{inValue})
{
}
Json::Json(int inValue) : Json(Internal{}, Value{inValue})
{
}
Json::Json(unsigned int inValue) : Json(Internal{}, Value{inValue})
{
}
Json::Json(long inValue) : Json(Internal{}, Value{inValue})
{
}
Json::Json(unsigned long inValue) : Json(Internal{}, Value{inValue})
{
}
Json::Json(long long inValue) : Json(Internal{}, Value{inValue})
{
}
Json::Json(unsigned long long inValue) : Json(Internal{}, Value{inValue})
{
}
Json::Json(double inValue) : Json(Internal{}, Value{inValue})
{
}
Json::Json(const char* inText) : Json(Internal{}, Value{inText})
{
}
Json::Json(const std::string& inText) : Json(Internal{}, Value{inText})
{
}
Json::Json(const std::vector<std::string>& inTexts) : Json(Internal{}, Value{inTexts})
{
}

Json::Json(std::initializer_list<Member> inMembers) : Json(Internal{}, Value{Library::object()})
{
    for (const Member& member : inMembers) {
        Set(member.mName, member.mValue);
    }
}

Json::Json(const Json& inOther) : mValue(std::make_unique<Value>(*inOther.mValue))
{
}
Json::Json(Json&& inOther) noexcept = default;
Json& Json::operator=(Json&& inOther) noexcept = default;
Json::~Json() = default;

Json& Json::operator=(const Json& inOther)
{
    mValue = std::make_unique<Value>(*inOther.mValue);
    return *this;
}

Json Json::Array()
{
    return Json(Internal{}, Value{Library::array()});
}

Json Json::Object()
{
    return Json(Internal{}, Value{Library::object()});
}

Json Json::Number(const std::string& inText)
{
    return Json(Internal{}, Value{Library::parse(inText)});
}

void Json::Set(const std::string& inName, const Json& inValue)
{
    mValue->mLibrary[inName] = inValue.mValue->mLibrary;
}

void Json::Append(const Json& inValue)
{
    mValue->mLibrary.push_back(inValue.mValue->mLibrary);
}

std::string Json::Document() const
{
    constexpr int kIndent = 2;
    return Text(mValue->mLibrary, kIndent) + '\n';
}

std::string Json::Line() const
{
    constexpr int kOnOneLine = -1;
    return Text(mValue->mLibrary, kOnOneLine);
}

} // namespace orl
