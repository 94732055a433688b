// Floor: Strings
// Message templates with numbered placeholders, and cutting a text at a separator.
#pragma once

#include <ORLConfig.h>
#include <ORLResult.h>
#include <tvxcore/String.h>

#include <cstddef>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

namespace ORL {

/// The parameters of a template, in order: parameter 1 is the first element. T is UTF16String or std::string.
template <class T>
class ParamVectorImpl
{
public:
    using value_type = T;
    using const_iterator = typename std::vector<T>::const_iterator;

    ParamVectorImpl() = default;
    ParamVectorImpl(std::initializer_list<T> inParams) : mParams(inParams) {}

    void push_back(T inParam) { mParams.push_back(std::move(inParam)); }

    const_iterator begin() const { return mParams.begin(); }
    const_iterator end() const { return mParams.end(); }
    std::size_t size() const { return mParams.size(); }
    bool empty() const { return mParams.empty(); }

private:
    std::vector<T> mParams;
};

using ParamVector = ParamVectorImpl<UTF16String>;
using StdParamVector = ParamVectorImpl<std::string>;

/// Fills the placeholders "%1", "%2" ... of inFormat with the parameters, one after the other, and stores the text.
///
/// Every parameter must be used: with an empty list, or where a placeholder does not occur, the answer is
/// kGeneralFailure and outResult stays as it was. Only the first occurrence of a placeholder is filled, the search
/// sees text that earlier parameters brought in, and "%1" also matches the start of "%10". A "%" cannot be escaped.
/// Thread-safe. outResult may be the format or a parameter.
ORL_API Result ParseString(const UTF16String& inFormat, const ParamVectorImpl<UTF16String>& inParams,
                           UTF16String& outResult);

/// The same on 8-bit text.
ORL_API Result ParseStdString(const std::string& inFormat, const ParamVectorImpl<std::string>& inParams,
                              std::string& outResult);

/// Cuts off the first two tokens of inString. A run of separators counts as one, but not at the start, where the first
/// token is then empty. Text behind the second token is dropped; a missing token comes out empty. Made for separators
/// of one character: behind a longer one only a single character is stepped over. Thread-safe.
ORL_API void SplitString(const UTF16String& inString, const UTF16String& inSeparator, UTF16String& outFirst,
                         UTF16String& outSecond);

} // namespace ORL
